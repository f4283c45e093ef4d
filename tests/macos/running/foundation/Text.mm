#include "tests/macos/running/foundation/Foundation.h"

// Text and data, by their bytes.

@interface NSConstantString : NSString
@end

@interface StandInText : NSString {
@public
    std::string characters;
}
@end

@interface StandInData : NSData {
@public
    std::string content;
}
@end

extern "C" SEL standInSelectorNamed(const char* name);
extern "C" const char* standInNameOfSelector(SEL selector);

namespace {

/// Laid out by the compiler.
struct ConstantText {
    Class isa;
    unsigned flags, length, size, hash;
    const char* data;
};

bool isUTF8(std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        const auto first = static_cast<unsigned char>(text[i]);
        const std::size_t length = first < 0x80       ? 1
                                   : first >> 5 == 6  ? 2
                                   : first >> 4 == 14 ? 3
                                   : first >> 3 == 30 ? 4
                                                      : 0;
        if (length == 0 || i + length > text.size()) return false;
        for (std::size_t k = 1; k < length; ++k) {
            if ((text[i + k] & 0xC0) != 0x80) return false;
        }
        i += length;
    }
    return true;
}

} // namespace

namespace harbrook::running {

NSString* text(std::string_view characters) {
    StandInText* const made = [StandInText alloc];
    made->characters = characters;
    return objc_autorelease(made);
}

std::string characters(NSString* text) {
    if (!text) return {};
    if (isKind(text, "NSConstantString")) {
        const auto* const constant = reinterpret_cast<ConstantText*>(text);
        return {constant->data, constant->size};
    }
    return static_cast<StandInText*>(text)->characters;
}

NSData* dataOf(std::string_view bytes) {
    return [NSData dataWithBytes:bytes.data() length:bytes.size()];
}

std::string bytes(NSData* data) {
    return data ? static_cast<StandInData*>(data)->content : std::string();
}

} // namespace harbrook::running

@implementation NSString

- (instancetype)initWithBytes:(const void*)bytes length:(NSUInteger)length encoding:(NSUInteger)encoding {
    const std::string_view given(static_cast<const char*>(bytes), length);
    objc_release(self);
    if (encoding != NSUTF8StringEncoding || !isUTF8(given)) return nil;
    StandInText* const made = [StandInText alloc];
    made->characters = given;
    return made;
}

- (NSData*)dataUsingEncoding:(NSUInteger)encoding {
    return harbrook::running::dataOf(harbrook::running::characters(self));
}

- (BOOL)isEqualToString:(NSString*)other {
    return harbrook::running::characters(self) == harbrook::running::characters(other);
}

@end

@implementation StandInText
@end

@implementation NSConstantString
@end

@implementation NSData

+ (instancetype)dataWithBytes:(const void*)bytes length:(NSUInteger)length {
    StandInData* const made = [StandInData alloc];
    made->content.assign(static_cast<const char*>(bytes), length);
    return objc_autorelease(made);
}

- (NSUInteger)length {
    return static_cast<StandInData*>(self)->content.size();
}

- (const void*)bytes {
    return static_cast<StandInData*>(self)->content.data();
}

- (BOOL)writeToURL:(NSURL*)url atomically:(BOOL)atomically {
    return harbrook::running::writeFile(harbrook::running::placeOf(url), harbrook::running::bytes(self));
}

@end

@implementation StandInData
@end

SEL NSSelectorFromString(NSString* name) {
    return standInSelectorNamed(harbrook::running::characters(name).c_str());
}

NSString* NSStringFromSelector(SEL selector) {
    return harbrook::running::text(standInNameOfSelector(selector));
}
