#include "tests/macos/running/messages/Describe.h"

#include "platform/recording/Format.h"
#include "tests/macos/running/appkit/Drawing.h"
#include "tests/macos/running/foundation/Session.h"

// How the log writes objects: values by what they are, others by class and number.

namespace harbrook::running {

namespace {

std::string describeArray(NSArray* array) {
    std::string all;
    for (id element in array)
        all += (all.empty() ? "" : ", ") + describe(element);
    return "[" + all + "]";
}

std::string describeDictionary(NSDictionary* dictionary) {
    std::map<std::string, std::string> entries;
    for (id key in dictionary)
        entries[characters(key)] = describe([dictionary objectForKeyedSubscript:key]);
    std::string all;
    for (const auto& [key, value] : entries)
        all += (all.empty() ? "" : ", ") + key + ": " + value;
    return "{" + all + "}";
}

std::string describeNumber(NSNumber* number) {
    const bool isBoolean = isKind(number, "StandInBoolean");
    return isBoolean ? recording::format(number.boolValue != NO) : recording::format(number.doubleValue);
}

} // namespace

bool isKind(id object, std::string_view name) {
    for (Class which = object ? [object class] : nil; which; which = superclassOf(which)) {
        if (nameOfClass(which) == name) return true;
    }
    return false;
}

std::string describe(id object) {
    if (!object) return "nil";
    if (isBlock(object)) return "^";
    if (isClass(object)) return nameOfClass(reinterpret_cast<Class>(object));
    if (isKind(object, "NSString")) return recording::inQuotes(characters(object));
    if (isKind(object, "NSNumber")) return describeNumber(object);
    if (isKind(object, "NSArray")) return describeArray(object);
    if (isKind(object, "NSDictionary")) return describeDictionary(object);
    if (isKind(object, "NSURL")) return characters(static_cast<NSURL*>(object).absoluteString);
    if (isKind(object, "NSData")) return recording::inQuotes(bytes(object));
    if (isKind(object, "NSNull")) return "null";
    if (isKind(object, "NSColor")) return describeColor(object);
    if (isKind(object, "NSFont")) return describeFont(object);
    if (isKind(object, "NSMutableURLRequest")) return describeRequest(object);
    return nameOf(object);
}

std::string nameOf(id object) {
    return publicName([static_cast<NSObject*>(object) class]) + ("#" + std::to_string(numberOf(object)));
}

} // namespace harbrook::running
