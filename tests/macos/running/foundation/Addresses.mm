#include "tests/macos/running/foundation/Foundation.h"

#include "platform/URL.h"

using namespace harbrook::running;

@interface StandInURL : NSURL {
@public
    std::string address;
    std::string path;
}
@end

@implementation NSURL

+ (instancetype)URLWithString:(NSString*)address {
    if (characters(address).find(' ') != std::string::npos) return nil;
    StandInURL* const made = [StandInURL alloc];
    made->address = characters(address);
    return objc_autorelease(made);
}

+ (NSURL*)URLWithDataRepresentation:(NSData*)data relativeToURL:(NSURL*)base {
    StandInURL* const made = [StandInURL alloc];
    made->address = bytes(data);
    return objc_autorelease(made);
}

+ (NSURL*)fileURLWithPath:(NSString*)path {
    StandInURL* const made = [StandInURL alloc];
    made->path = characters(path);
    made->address = harbrook::URL::fileURLWithPath(made->path).absoluteString();
    return objc_autorelease(made);
}

- (NSString*)absoluteString {
    return text(static_cast<StandInURL*>(self)->address);
}

- (NSString*)path {
    return text(static_cast<StandInURL*>(self)->path);
}

@end

@implementation StandInURL
@end

@interface StandInError : NSError {
@public
    std::string description;
    std::string domain;
    NSInteger code;
}
@end

@implementation NSError

- (NSString*)localizedDescription {
    return text(static_cast<StandInError*>(self)->description);
}

- (NSString*)domain {
    return text(static_cast<StandInError*>(self)->domain);
}

- (NSInteger)code {
    return static_cast<StandInError*>(self)->code;
}

@end

@implementation StandInError
@end

namespace harbrook::running {

NSError* error(const std::string& description, NSInteger code, std::string_view domain) {
    StandInError* const made = [StandInError alloc];
    made->description = description;
    made->domain = domain;
    made->code = code;
    return objc_autorelease(made);
}

std::filesystem::path placeOf(NSString* path) {
    return world().placeOf(characters(path));
}

std::filesystem::path placeOf(NSURL* url) {
    return world().placeOf(static_cast<StandInURL*>(url)->path);
}

} // namespace harbrook::running
