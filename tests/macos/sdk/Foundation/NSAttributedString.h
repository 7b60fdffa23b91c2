// Declarations written for this project from public documentation, only of what it calls. They are used for checks on
// Linux alone, are not Apple's headers, and are never on the include path of a build on a Mac.
#pragma once

#include <Foundation/NSDictionary.h>
#include <Foundation/NSString.h>

NS_ASSUME_NONNULL_BEGIN

typedef NSString* NSAttributedStringKey NS_TYPED_EXTENSIBLE_ENUM;

@interface NSAttributedString : NSObject <NSCopying>
@property(readonly, copy) NSString* string;
- (instancetype)initWithString:(NSString*)string
                    attributes:(nullable NSDictionary<NSAttributedStringKey, id>*)attributes;
@end

@interface NSMutableAttributedString : NSAttributedString
- (void)appendAttributedString:(NSAttributedString*)string;
@end

NS_ASSUME_NONNULL_END
