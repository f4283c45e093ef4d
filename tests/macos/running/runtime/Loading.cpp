#include "tests/macos/running/runtime/Loading.h"

#include <string>
#include <unordered_set>

namespace harbrook::running {

const char* uniqueName(const char* name) {
    static std::unordered_set<std::string> names;
    return names.emplace(name).first->c_str();
}

namespace {

objc_method* ownMethod(Class which, const char* name) {
    for (auto* list = which->methods; list; list = list->next) {
        for (int i = 0; i < list->count; ++i) {
            if (list->methods[i].selector->name == name) return &list->methods[i];
        }
    }
    return nullptr;
}

} // namespace

FoundMethod findMethod(Class from, const char* name) {
    for (Class owner = from; owner; owner = owner->super) {
        if (auto* const method = ownMethod(owner, name)) return {method, owner};
    }
    return {};
}

void callOwnMethod(id object, Class which, const char* name) {
    objc_selector selector{uniqueName(name), nullptr};
    if (const auto* const method = ownMethod(which, selector.name))
        reinterpret_cast<void (*)(id, SEL)>(method->implementation)(object, &selector);
}

void prepareClass(Class which) {
    if (!which || which->prepared || which->isMetaclass()) return;
    which->prepared = which;
    prepareClass(which->super);
    which->isa->isa = which->isa;
    // The root's metaclass answers with the root's own methods last.
    which->isa->super = which->super ? which->super->isa : which;
    long size = which->super ? which->super->instanceSize : 0;
    const int count = which->ivars ? which->ivars->count : 0;
    for (int i = 0; i < count; ++i) {
        const auto& ivar = which->ivars->ivars[i];
        const long alignment = 1L << (ivar.flags >> 3);
        size = (size + alignment - 1) / alignment * alignment;
        *ivar.offset = static_cast<int>(size);
        size += ivar.size;
    }
    which->instanceSize = size;
}

} // namespace harbrook::running

namespace {

/// What a program hands over when it is loaded; the rest of the structure is not needed here.
struct LoadedSections {
    long version;
    objc_selector* firstSelector;
    objc_selector* lastSelector;
    Class* firstClass;
    Class* lastClass;
};

} // namespace

extern "C" void __objc_load(LoadedSections* sections) {
    for (auto* selector = sections->firstSelector; selector < sections->lastSelector; ++selector) {
        if (selector->name) selector->name = harbrook::running::uniqueName(selector->name);
    }
    for (auto* which = sections->firstClass; which < sections->lastClass; ++which) {
        if (*which) harbrook::running::prepareClass(*which);
    }
}
