#include "tests/macos/running/messages/Properties.h"

#include "tests/macos/running/runtime/References.h"

#include <map>
#include <utility>

namespace harbrook::running {

namespace {

using Values = std::map<std::string, Property>;

std::map<id, Values>& allProperties() {
    static auto* const all = new std::map<id, Values>;
    return *all;
}

void release(const Property& property) {
    if (property.isKept) objc_release(reinterpret_cast<id>(property.word));
}

} // namespace

void setProperty(id object, const std::string& name, Property value) {
    const auto held = reinterpret_cast<id>(value.word);
    if (value.type == '@' && value.isKept) value.word = reinterpret_cast<std::uintptr_t>(objc_retain(held));
    if (value.type == '@' && !value.isKept) value.serial = serialOf(held);
    release(std::exchange(allProperties()[object][name], value));
}

const Property* property(id object, const std::string& name) {
    const auto owner = allProperties().find(object);
    if (owner == allProperties().end()) return nullptr;
    const auto found = owner->second.find(name);
    if (found == owner->second.end()) return nullptr;
    auto& value = found->second;
    const bool isWeak = value.type == '@' && !value.isKept && value.word != 0;
    if (isWeak && !isAlive(reinterpret_cast<const void*>(value.word), value.serial)) value.word = 0;
    return &value;
}

void forgetProperties(id object) {
    const auto owner = allProperties().extract(object);
    if (!owner) return;
    for (const auto& [name, value] : owner.mapped())
        release(value);
}

void forgetClassProperties() {
    std::vector<id> classes;
    for (const auto& [object, values] : allProperties()) {
        if (isClass(object)) classes.push_back(object);
    }
    for (const auto owner : classes)
        forgetProperties(owner);
}

void give(id object, const std::string& name, id value) {
    setProperty(object, name, {'@', reinterpret_cast<std::uintptr_t>(value), {}, true, 0});
}

void give(id object, const std::string& name, long value) {
    setProperty(object, name, {'q', static_cast<std::uintptr_t>(value), {}, false, 0});
}

} // namespace harbrook::running
