#include "tests/macos/running/runtime/Layout.h"
#include "tests/macos/running/runtime/Loading.h"
#include "tests/macos/running/runtime/References.h"

#include <map>
#include <string>

// Questions about classes, for the stand-ins, which cannot look into the runtime's structures themselves.

extern "C" {

bool standInIsKind(id object, Class which) {
    for (Class part = object->isa; part; part = part->super) {
        if (part == which) return true;
    }
    return false;
}

bool standInResponds(id object, SEL selector) {
    harbrook::running::prepareClass(object->isa);
    return harbrook::running::findMethod(object->isa, harbrook::running::uniqueName(selector->name)).method;
}

const char* standInNameOfSelector(SEL selector) {
    return selector->name;
}

SEL standInSelectorNamed(const char* name) {
    static auto* const selectors = new std::map<std::string, objc_selector>;
    auto& selector = (*selectors)[name];
    selector = {harbrook::running::uniqueName(name), nullptr};
    return &selector;
}
}

namespace harbrook::running {

id make(Class which) {
    return makeObject(which);
}

Class superclassOf(Class which) {
    return which->super;
}

std::string nameOfClass(Class which) {
    return which->name;
}

} // namespace harbrook::running
