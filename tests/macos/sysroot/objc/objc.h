// Our own declarations of what the language needs before any class exists: numbers, geometry, the root
// protocol, availability. Everything else is generated from api-facts.tsv.
#pragma once

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
#define FACTS_BEGIN extern "C" {
#define FACTS_END }
#define nil nullptr
#else
#define FACTS_BEGIN
#define FACTS_END
#define nil ((id)0)
#endif

#define API_AVAILABLE(version) __attribute__((availability(macos, introduced = version)))
#define NS_ENUM(type, name) enum name : type name; enum name : type
#ifdef __cplusplus
#define NS_OPTIONS(type, name) type name; enum : type
#else
#define NS_OPTIONS(type, name) enum __attribute__((flag_enum)) name : type name; enum __attribute__((flag_enum)) name : type
#endif

#define NS_ASSUME_NONNULL_BEGIN _Pragma("clang assume_nonnull begin")
#define NS_ASSUME_NONNULL_END _Pragma("clang assume_nonnull end")

#define YES __objc_yes
#define NO __objc_no

#pragma clang assume_nonnull begin
FACTS_BEGIN

#if defined(__arm64__)
typedef bool BOOL;
#else
typedef signed char BOOL;
#endif
typedef long NSInteger;
typedef unsigned long NSUInteger;
typedef double CGFloat;
typedef double NSTimeInterval;
typedef NSInteger NSModalResponse;
typedef struct CGPoint { CGFloat x, y; } CGPoint, NSPoint;
typedef struct CGSize { CGFloat width, height; } CGSize, NSSize;
typedef struct CGRect { CGPoint origin; CGSize size; } CGRect, NSRect;
typedef struct _NSRange { NSUInteger location, length; } NSRange;

static inline NSPoint NSMakePoint(CGFloat x, CGFloat y) { NSPoint point = {x, y}; return point; }
static inline NSSize NSMakeSize(CGFloat width, CGFloat height) { NSSize size = {width, height}; return size; }
static inline NSRect NSMakeRect(CGFloat x, CGFloat y, CGFloat width, CGFloat height) {
    NSRect rect = {{x, y}, {width, height}};
    return rect;
}

@class NSString, Protocol;
typedef struct _NSZone NSZone;
typedef NSString *NSAppearanceName;
typedef NSString *NSNotificationName;

@protocol NSObject
- (BOOL)isEqual:(nullable id)object;
@property (readonly) NSUInteger hash;
@property (readonly) Class superclass;
- (Class)class;
- (instancetype)self;
- (BOOL)isKindOfClass:(Class)aClass;
- (BOOL)conformsToProtocol:(Protocol *)aProtocol;
- (BOOL)respondsToSelector:(SEL)aSelector;
@property (readonly, copy) NSString *description;
@end

typedef struct {
    unsigned long state;
    id __unsafe_unretained _Nullable *_Nullable itemsPtr;
    unsigned long *_Nullable mutationsPtr;
    unsigned long extra[5];
} NSFastEnumerationState;

FACTS_END
#pragma clang assume_nonnull end
