#include "tests/macos/running/runtime/References.h"

#include "tests/macos/running/messages/Properties.h"
#include "tests/macos/running/runtime/Loading.h"

#include <cstdio>
#include <cstdlib>
#include <map>
#include <set>
#include <string_view>
#include <unordered_map>

extern objc_class constantStringClass asm("._OBJC_CLASS_NSConstantString");
extern "C" {
extern void* _NSConcreteStackBlock[];
extern void* _NSConcreteGlobalBlock[];
extern void* _NSConcreteMallocBlock[];
void* _Block_copy(const void* block);
void _Block_release(const void* block);
}

namespace harbrook::running {

namespace {

/// Stands before every object.
struct Header {
    long holders;
    long number;
    unsigned long serial;
    unsigned long padding;
};

/// At any moment only one thread runs.
struct Objects {
    std::map<unsigned long, id> living;
    std::unordered_map<std::string, long> counts;
    std::set<const void*> blocks;
    unsigned long made = 0;
};

Objects& objects() {
    static auto* const all = new Objects;
    return *all;
}

Header& headerOf(id object) {
    return reinterpret_cast<Header*>(object)[-1];
}

/// Classes, constant texts and dispatch queues live as long as the program.
bool isCounted(id object) {
    return object->isa && !isClass(object) && object->isa != &constantStringClass;
}

void destroy(id object) {
    // Nothing here passes it on to the superclass, so that each class's own is called.
    for (Class part = object->isa; part; part = part->super)
        callOwnMethod(object, part, "dealloc");
    for (Class part = object->isa; part; part = part->super) {
        callOwnMethod(object, part, ".cxx_destruct");
    }
    forgetProperties(object);
    objects().living.erase(headerOf(object).serial);
    std::free(&headerOf(object));
}

std::vector<id>& autoreleased() {
    static thread_local std::vector<id> all;
    return all;
}

} // namespace

std::string publicName(Class which) {
    while (std::string_view(which->name).starts_with("StandIn") && which->super->super)
        which = which->super;
    return which->name;
}

id makeObject(Class which) {
    prepareClass(which);
    auto* const header =
        static_cast<Header*>(std::calloc(1, sizeof(Header) + static_cast<std::size_t>(which->instanceSize)));
    auto& all = objects();
    *header = {1, ++all.counts[publicName(which)], ++all.made, 0};
    const auto object = reinterpret_cast<id>(header + 1);
    object->isa = which;
    all.living.emplace(header->serial, object);
    for (Class part = which; part; part = part->super)
        callOwnMethod(object, part, ".cxx_construct");
    return object;
}

long numberOf(id object) {
    return headerOf(object).number;
}

unsigned long serialOf(id object) {
    return object && !isBlock(object) && isCounted(object) ? headerOf(object).serial : 0;
}

bool isAlive(const void* object, unsigned long serial) {
    const auto found = objects().living.find(serial);
    return found != objects().living.end() && found->second == object;
}

bool isBlock(id object) {
    const void* const kind = object->isa;
    return kind == _NSConcreteStackBlock || kind == _NSConcreteGlobalBlock || kind == _NSConcreteMallocBlock;
}

bool isClass(id object) {
    return object->isa->isMetaclass();
}

std::vector<std::string> livingObjects() {
    std::vector<std::string> names;
    for (const auto& [serial, object] : objects().living)
        names.push_back(publicName(object->isa) + ("#" + std::to_string(headerOf(object).number)));
    for (std::size_t i = 0; i < objects().blocks.size(); ++i)
        names.emplace_back("block");
    return names;
}

void restartNumbers() {
    objects().counts.clear();
}

void noteBlock(const void* block, bool isAlive) {
    if (isAlive) {
        objects().blocks.insert(block);
    } else {
        objects().blocks.erase(block);
    }
}

} // namespace harbrook::running

using namespace harbrook::running;

extern "C" {

id objc_retain(id object) {
    if (!object) return object;
    if (isBlock(object)) return static_cast<id>(_Block_copy(object));
    if (isCounted(object)) ++headerOf(object).holders;
    return object;
}

void objc_release(id object) {
    if (!object) return;
    if (isBlock(object)) return _Block_release(object);
    if (!isCounted(object)) return;
    auto& header = headerOf(object);
    if (--header.holders == 0) destroy(object);
}

id objc_autorelease(id object) {
    if (object) autoreleased().push_back(object);
    return object;
}

void* objc_autoreleasePoolPush() {
    return reinterpret_cast<void*>(autoreleased().size());
}

void objc_autoreleasePoolPop(void* pool) {
    auto& all = autoreleased();
    while (all.size() > reinterpret_cast<std::size_t>(pool)) {
        const auto object = all.back();
        all.pop_back();
        objc_release(object);
    }
    if (all.empty()) all.shrink_to_fit();
}

id objc_autoreleaseReturnValue(id object) {
    return objc_autorelease(object);
}

id objc_retainAutoreleaseReturnValue(id object) {
    return objc_autorelease(objc_retain(object));
}

id objc_retainAutorelease(id object) {
    return objc_autorelease(objc_retain(object));
}

id objc_retainAutoreleasedReturnValue(id object) {
    return objc_retain(object);
}

id objc_retainBlock(id object) {
    return objc_retain(object);
}

void objc_storeStrong(id* place, id value) {
    const auto before = *place;
    *place = objc_retain(value);
    objc_release(before);
}

void objc_enumerationMutation(id) {
    std::fputs("a collection was changed while it was gone through\n", stderr);
    std::abort();
}

int __gxx_personality_v0();
int __gnustep_objcxx_personality_v0(
    int version, int actions, unsigned long kind, void* exception, void* context) {
    const auto personality =
        reinterpret_cast<int (*)(int, int, unsigned long, void*, void*)>(&__gxx_personality_v0);
    return personality(version, actions, kind, exception, context);
}
}
