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

/// The objects that the system keeps for the life of a process, made when they are first asked for.
void forgetFoundation();
void forgetNotificationCentres();
void setMainBundle(NSBundle* bundle);
/// Makes the bundle the one at its path.
void installBundle(NSBundle* bundle);
/// The user's calendar is so many years ahead of the Gregorian one.
void setCalendarAhead(int years);
/// The activities that have begun and not ended.
[[nodiscard]] std::vector<NSActivityOptions> activities();
void setSystemVersion(NSInteger major, NSInteger minor, NSInteger patch);
constexpr int ownPid = 4711;

}  // namespace fake_mac
