// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers (see README.md here).
#pragma once

#include <FerrowynChecksOnly.h>

#if defined(__OBJC_BOOL_IS_BOOL) && __OBJC_BOOL_IS_BOOL
typedef bool BOOL;
#else
typedef signed char BOOL;
#endif
#define YES __objc_yes
#define NO __objc_no
#define nil nullptr
#define Nil nullptr

typedef long NSInteger;
typedef unsigned long NSUInteger;

#define NS_ASSUME_NONNULL_BEGIN _Pragma("clang assume_nonnull begin")
#define NS_ASSUME_NONNULL_END _Pragma("clang assume_nonnull end")

#define NS_ENUM(_type, _name) \
    enum _name : _type _name; \
    enum __attribute__((enum_extensibility(open))) _name : _type
// In C++ the options are a plain integer, so that they can be combined.
#define NS_OPTIONS(_type, _name) \
    _type _name;                 \
    enum __attribute__((flag_enum, enum_extensibility(open))) : _name
#define NS_TYPED_EXTENSIBLE_ENUM

#define NS_DESIGNATED_INITIALIZER __attribute__((objc_designated_initializer))
#define NS_REQUIRES_SUPER __attribute__((objc_requires_super))
#define NS_UNAVAILABLE __attribute__((unavailable))
#define NS_RETURNS_RETAINED __attribute__((ns_returns_retained))
#define NS_RETURNS_INNER_POINTER __attribute__((objc_returns_inner_pointer))
#define NS_NOESCAPE __attribute__((noescape))
#define NS_FORMAT_FUNCTION(F, A) __attribute__((format(__NSString__, F, A)))
#define NS_WARN_UNUSED_RESULT __attribute__((warn_unused_result))

#define FOUNDATION_EXPORT extern "C" __attribute__((visibility("default")))
#define APPKIT_EXTERN FOUNDATION_EXPORT

#define API_AVAILABLE_macos(version) availability(macos, introduced = version)
#define API_AVAILABLE(platform) __attribute__((API_AVAILABLE_##platform))
#define API_DEPRECATED_macos(from, to) availability(macos, introduced = from, deprecated = to)
#define API_DEPRECATED(text, platform) __attribute__((API_DEPRECATED_##platform))

NS_ASSUME_NONNULL_BEGIN

@class NSCoder;

@protocol NSObject
- (Class)class;
- (BOOL)isKindOfClass:(Class)aClass;
- (BOOL)respondsToSelector:(SEL)aSelector;
@end

@protocol NSCopying
- (id)copyWithZone:(nullable void*)zone NS_RETURNS_RETAINED;
@end

@protocol NSCoding
- (nullable instancetype)initWithCoder:(NSCoder*)coder;
@end

@interface NSObject <NSObject> {
    Class isa;
}
+ (instancetype)alloc;
- (instancetype)init NS_DESIGNATED_INITIALIZER;
- (void)dealloc;
- (id)copy;
+ (Class)class;
@end

@interface NSCoder : NSObject
@end

NS_ASSUME_NONNULL_END
