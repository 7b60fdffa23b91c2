#pragma once

#import <Foundation/Foundation.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

// What a test scripts in the fake Foundation, and reads from it.

@interface NSError ()
- (instancetype)initWithDomain:(NSString*)domain code:(NSInteger)code text:(NSString*)text;
@end

@interface NSAttributedString ()
/// "text" for each run, with the attributes that it has.
@property(readonly) NSArray<NSAttributedString*>* runs;
@property(readonly, strong) NSDictionary<NSAttributedStringKey, id>* attributes;
@end

@interface NSNotificationCenter ()
- (void)post:(NSNotificationName)name userInfo:(NSDictionary*)userInfo;
@property(readonly) NSUInteger observerCount;
@end

@interface NSOperationQueue ()
/// Whether what is added waits for `drain`, as it does when another thread posts.
@property BOOL isDeferring;
- (void)add:(void (^)(void))operation;
- (void)drain;
@end

@interface NSUserDefaults ()
- (id)storedObjectForKey:(NSString*)key;
@end

@interface NSBundle ()
- (instancetype)initWithPath:(NSString*)path identifier:(NSString*)identifier info:(NSDictionary*)info;
@end

namespace fake_mac {

/// Empty for nil.
[[nodiscard]] std::string utf8(NSString* string);
[[nodiscard]] NSString* string(const std::string& utf8);

constexpr int ownPid = 4711;

/// The objects that the system keeps for the life of a process, made when they are first asked for, and what a test
/// says of the system.
struct Foundation {
    NSBundle* mainBundle;
    std::map<std::string, NSBundle*> bundlesByPath;
    NSProcessInfo* processInfo;
    NSUserDefaults* defaults;
    NSNotificationCenter* localCenter;
    NSDistributedNotificationCenter* distributedCenter;
    NSOperationQueue* mainQueue;
    NSOperatingSystemVersion systemVersion{};
    /// The user's calendar is so many years ahead of the Gregorian one.
    int calendarYearsAhead = 0;
    /// Those that have begun and not ended.
    std::vector<NSActivityOptions> activities;
};
[[nodiscard]] Foundation& foundation();

/// The one object that the system keeps at this place.
template <typename Kind>
[[nodiscard]] Kind* shared(Kind* __strong& place) {
    if (place == nil) {
        place = [[Kind alloc] init];
    }
    return place;
}

}  // namespace fake_mac
