// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers (see README.md here).
#pragma once

#include <CoreGraphics/CoreGraphics.h>
#include <objc/NSObject.h>

NS_ASSUME_NONNULL_BEGIN

typedef struct {
    unsigned long state;
    id __unsafe_unretained _Nullable* _Nullable itemsPtr;
    unsigned long* _Nullable mutationsPtr;
    unsigned long extra[5];
} NSFastEnumerationState;

@protocol NSFastEnumeration
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id __unsafe_unretained _Nullable[_Nonnull])buffer
                                    count:(NSUInteger)length;
@end

@interface NSArray<__covariant ObjectType> : NSObject <NSCopying, NSFastEnumeration>
@property(readonly) NSUInteger count;
- (ObjectType)objectAtIndex:(NSUInteger)index;
@property(nullable, nonatomic, readonly) ObjectType firstObject;
+ (instancetype)array;
+ (instancetype)arrayWithObjects:(const ObjectType _Nonnull[_Nullable])objects count:(NSUInteger)count;
@end

@interface NSMutableArray<ObjectType> : NSArray <ObjectType>
+ (instancetype)arrayWithCapacity:(NSUInteger)capacity;
- (void)addObject:(ObjectType)object;
@end

@interface NSDictionary<__covariant KeyType, __covariant ObjectType> : NSObject <NSCopying>
@property(readonly, copy) NSArray<KeyType>* allKeys;
- (nullable ObjectType)objectForKey:(KeyType)key;
+ (instancetype)dictionary;
+ (instancetype)dictionaryWithObjects:(const ObjectType _Nonnull[_Nullable])objects
                              forKeys:(const KeyType<NSCopying> _Nonnull[_Nullable])keys
                                count:(NSUInteger)count;
@end

@interface NSMutableDictionary<KeyType, ObjectType> : NSDictionary <KeyType, ObjectType>
+ (instancetype)dictionaryWithCapacity:(NSUInteger)capacity;
- (void)setObject:(ObjectType)object forKey:(KeyType<NSCopying>)key;
@end

typedef NSUInteger NSStringEncoding;
enum : NSStringEncoding { NSUTF8StringEncoding = 4 };

@interface NSString : NSObject <NSCopying>
@property(nullable, readonly) const char* UTF8String NS_RETURNS_INNER_POINTER;
- (BOOL)isEqualToString:(NSString*)string;
- (NSString*)stringByAppendingString:(NSString*)string;
- (nullable instancetype)initWithBytes:(const void*)bytes length:(NSUInteger)length encoding:(NSStringEncoding)encoding;
@end

typedef NSString* NSAttributedStringKey NS_TYPED_EXTENSIBLE_ENUM;

@interface NSAttributedString : NSObject <NSCopying>
@property(readonly, copy) NSString* string;
- (instancetype)initWithString:(NSString*)string
                    attributes:(nullable NSDictionary<NSAttributedStringKey, id>*)attributes;
@end

@interface NSMutableAttributedString : NSAttributedString
- (void)appendAttributedString:(NSAttributedString*)string;
@end

@interface NSURL : NSObject <NSCopying>
+ (nullable instancetype)URLWithString:(NSString*)string;
@property(nullable, readonly, copy) NSString *absoluteString, *path;
@end

@interface NSBundle : NSObject
@property(class, readonly, strong) NSBundle* mainBundle;
+ (nullable instancetype)bundleWithURL:(NSURL*)url;
@property(readonly, copy) NSURL* bundleURL;
@property(readonly, copy) NSString* bundlePath;
@property(nullable, readonly, copy) NSString* bundleIdentifier;
- (nullable id)objectForInfoDictionaryKey:(NSString*)key;
@end

typedef double NSTimeInterval;

@interface NSDate : NSObject
+ (instancetype)dateWithTimeIntervalSince1970:(NSTimeInterval)secs;
@property(readonly) NSTimeInterval timeIntervalSince1970;
@end

typedef NS_OPTIONS(NSUInteger, NSCalendarUnit) { NSCalendarUnitYear = 1UL << 2 };

@interface NSCalendar : NSObject
@property(class, readonly, copy) NSCalendar* currentCalendar;
- (NSInteger)component:(NSCalendarUnit)unit fromDate:(NSDate*)date;
@end

typedef NSString* NSErrorDomain;

@interface NSError : NSObject
@property(readonly, copy) NSErrorDomain domain;
@property(readonly, copy) NSString* localizedDescription;
@property(readonly) NSInteger code;
@end

typedef NSString* NSExceptionName;
FOUNDATION_EXPORT NSExceptionName const NSInternalInconsistencyException;

@interface NSException : NSObject
+ (void)raise:(NSExceptionName)name format:(NSString*)format, ... NS_FORMAT_FUNCTION(2, 3)__attribute__((noreturn));
@end

typedef CGPoint NSPoint;
typedef CGSize NSSize;
typedef CGRect NSRect;

typedef struct NSEdgeInsets {
    CGFloat top, left, bottom, right;
} NSEdgeInsets;

static inline NSPoint NSMakePoint(CGFloat x, CGFloat y) {
    return {x, y};
}
static inline NSSize NSMakeSize(CGFloat width, CGFloat height) {
    return {width, height};
}
static inline NSRect NSMakeRect(CGFloat x, CGFloat y, CGFloat width, CGFloat height) {
    return {{x, y}, {width, height}};
}
static inline CGFloat NSMaxY(NSRect rect) {
    return rect.origin.y + rect.size.height;
}
static inline NSEdgeInsets NSEdgeInsetsMake(CGFloat top, CGFloat left, CGFloat bottom, CGFloat right) {
    return {top, left, bottom, right};
}
static const NSRect NSZeroRect = {{0, 0}, {0, 0}};

static inline NSRect NSInsetRect(NSRect rect, CGFloat dx, CGFloat dy) {
    return {{rect.origin.x + dx, rect.origin.y + dy}, {rect.size.width - 2 * dx, rect.size.height - 2 * dy}};
}
static inline BOOL NSPointInRect(NSPoint point, NSRect rect) {
    return point.x >= rect.origin.x && point.x < rect.origin.x + rect.size.width && point.y >= rect.origin.y &&
           point.y < rect.origin.y + rect.size.height;
}

typedef NSString* NSNotificationName NS_TYPED_EXTENSIBLE_ENUM;
@class NSOperationQueue;

@interface NSNotification : NSObject <NSCopying>
@property(readonly, copy) NSNotificationName name;
@property(nullable, readonly, strong) id object;
@property(nullable, readonly, copy) NSDictionary* userInfo;
@end

@interface NSNotificationCenter : NSObject
@property(class, readonly, strong) NSNotificationCenter* defaultCenter;
- (void)addObserver:(id)observer
           selector:(SEL)selector
               name:(nullable NSNotificationName)name
             object:(nullable id)object;
- (void)removeObserver:(id)observer;
- (id<NSObject>)addObserverForName:(nullable NSNotificationName)name
                            object:(nullable id)object
                             queue:(nullable NSOperationQueue*)queue
                        usingBlock:(void (^)(NSNotification* notification))block NS_WARN_UNUSED_RESULT;
@end

@interface NSDistributedNotificationCenter : NSNotificationCenter
+ (NSDistributedNotificationCenter*)defaultCenter;
- (void)addObserver:(id)observer
           selector:(SEL)selector
               name:(nullable NSNotificationName)name
             object:(nullable NSString*)object;
- (void)removeObserver:(id)observer name:(nullable NSNotificationName)name object:(nullable NSString*)object;
@end

@interface NSOperationQueue : NSObject
@property(class, readonly, strong) NSOperationQueue* mainQueue;
@end

typedef struct {
    NSInteger majorVersion, minorVersion, patchVersion;
} NSOperatingSystemVersion;

typedef NS_OPTIONS(unsigned long long, NSActivityOptions) {
    NSActivityIdleSystemSleepDisabled = 1ULL << 20,
    NSActivityUserInitiated = 0x00FFFFFFULL | NSActivityIdleSystemSleepDisabled,
    NSActivityUserInitiatedAllowingIdleSystemSleep = NSActivityUserInitiated & ~NSActivityIdleSystemSleepDisabled,
};

@interface NSProcessInfo : NSObject
@property(class, readonly, strong) NSProcessInfo* processInfo;
@property(readonly) int processIdentifier;
@property(readonly) NSOperatingSystemVersion operatingSystemVersion;
- (id<NSObject>)beginActivityWithOptions:(NSActivityOptions)options reason:(NSString*)reason NS_WARN_UNUSED_RESULT;
- (void)endActivity:(id<NSObject>)activity;
@end

@interface NSUserDefaults : NSObject
@property(class, readonly, strong) NSUserDefaults* standardUserDefaults;
- (nullable id)objectForKey:(NSString*)key;
- (void)setObject:(nullable id)value forKey:(NSString*)key;
- (void)registerDefaults:(NSDictionary<NSString*, id>*)defaults;
@end

@interface NSNumber : NSObject <NSCopying>
+ (NSNumber*)numberWithBool:(BOOL)value;
+ (NSNumber*)numberWithInt:(int)value;
+ (NSNumber*)numberWithLongLong:(long long)value;
+ (NSNumber*)numberWithDouble:(double)value;
@property(readonly) const char* objCType NS_RETURNS_INNER_POINTER;
@property(readonly) BOOL boolValue;
@property(readonly) long long longLongValue;
@property(readonly) double doubleValue;
@end

NS_ASSUME_NONNULL_END
