// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <Foundation/NSDate.h>

NS_ASSUME_NONNULL_BEGIN

typedef NS_OPTIONS(NSUInteger, NSCalendarUnit) {
    NSCalendarUnitYear = 1UL << 2,
};

@interface NSCalendar : NSObject
@property(class, readonly, copy) NSCalendar* currentCalendar;
- (NSInteger)component:(NSCalendarUnit)unit fromDate:(NSDate*)date;
@end

NS_ASSUME_NONNULL_END
