#include "platform/cocoa/Conversions.h"

namespace harbrook::cocoa {

NSString* toNSString(std::string_view text) {
    NSString* const string = [[NSString alloc] initWithBytes:text.data()
                                                      length:text.size()
                                                    encoding:NSUTF8StringEncoding];
    return string ? string : @"";
}

std::string fromNSString(NSString* _Nullable text) {
    // By way of the bytes, because a C string would end at a zero character.
    return fromNSData([text dataUsingEncoding:NSUTF8StringEncoding]);
}

NSArray<NSString*>* toNSArray(const std::vector<std::string>& texts) {
    NSMutableArray<NSString*>* const array = [NSMutableArray arrayWithCapacity:texts.size()];
    for (const auto& text : texts)
        [array addObject:toNSString(text)];
    return array;
}

NSData* toNSData(std::string_view bytes) {
    return [NSData dataWithBytes:bytes.data() length:bytes.size()];
}

std::string fromNSData(NSData* _Nullable data) {
    return data.length ? std::string(static_cast<const char*>(data.bytes), data.length) : std::string();
}

NSURL* _Nullable toNSURL(const URL& url) {
    // By way of the bytes, because a string may hold what the platform does not allow in an address, and what
    // the engine has allowed.
    return [NSURL URLWithDataRepresentation:toNSData(url.absoluteString()) relativeToURL:nil];
}

std::optional<URL> fromNSURL(NSURL* _Nullable url) {
    return url ? URL::reported(fromNSString(url.absoluteString)) : std::nullopt;
}

NSURL* fileURL(const std::filesystem::path& path) {
    return [NSURL fileURLWithPath:toNSString(path.native())];
}

std::optional<std::filesystem::path> pathOf(NSURL* _Nullable url) {
    if (!url) return std::nullopt;
    return std::filesystem::path(fromNSString(url.path));
}

NSRect toNSRect(Rect rect) {
    return NSMakeRect(rect.origin.x, rect.origin.y, rect.size.width, rect.size.height);
}

Rect fromNSRect(NSRect rect) {
    return {{rect.origin.x, rect.origin.y}, {rect.size.width, rect.size.height}};
}

Error fromNSError(NSError* error) {
    return {fromNSString(error.localizedDescription)};
}

std::optional<Error> optionalError(BOOL succeeded, NSError* _Nullable error) {
    if (succeeded) return std::nullopt;
    return error ? fromNSError(error) : Error{};
}

std::optional<Value> fromObject(id _Nullable object) {
    if (!object || [object isKindOfClass:[NSNull class]]) return Value();
    if ([object isKindOfClass:[NSString class]]) return Value(fromNSString(object));
    if ([object isKindOfClass:[NSNumber class]]) {
        NSNumber* const number = object;
        // A number keeps whether it was made from a boolean only in its class.
        if ([number isKindOfClass:[@YES class]]) return Value(number.boolValue == YES);
        return Value(number.doubleValue);
    }
    if ([object isKindOfClass:[NSArray class]]) {
        Value::Array array;
        for (id element in static_cast<NSArray*>(object)) {
            array.push_back(fromObject(element).value_or(Value()));
        }
        return Value(std::move(array));
    }
    if ([object isKindOfClass:[NSDictionary class]]) return Value(fromNSDictionary(object));
    return std::nullopt;
}

Value::Dictionary fromNSDictionary(NSDictionary* dictionary) {
    Value::Dictionary result;
    for (id key in dictionary) {
        if (![key isKindOfClass:[NSString class]]) continue;
        if (auto value = fromObject(dictionary[key])) result.emplace(fromNSString(key), *std::move(value));
    }
    return result;
}

NSURLRequest* toNSURLRequest(const URLRequest& request) {
    NSMutableURLRequest* const result =
        [NSMutableURLRequest requestWithURL:toNSURL(request.url)
                                cachePolicy:static_cast<NSURLRequestCachePolicy>(request.cachePolicy)
                            timeoutInterval:request.timeoutInterval];
    result.HTTPMethod = toNSString(request.httpMethod);
    for (const auto& [name, value] : request.headerFields) {
        [result setValue:toNSString(value) forHTTPHeaderField:toNSString(name)];
    }
    if (request.httpBody) result.HTTPBody = toNSData(*request.httpBody);
    return result;
}

} // namespace harbrook::cocoa
