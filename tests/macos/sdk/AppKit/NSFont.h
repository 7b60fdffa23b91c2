// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

typedef CGFloat NSFontWeight NS_TYPED_EXTENSIBLE_ENUM;
APPKIT_EXTERN const NSFontWeight NSFontWeightLight;
APPKIT_EXTERN const NSFontWeight NSFontWeightRegular;
APPKIT_EXTERN const NSFontWeight NSFontWeightMedium;
APPKIT_EXTERN const NSFontWeight NSFontWeightSemibold;

@interface NSFont : NSObject <NSCopying>
+ (NSFont*)systemFontOfSize:(CGFloat)fontSize;
+ (NSFont*)menuFontOfSize:(CGFloat)fontSize;
@property(readonly) CGFloat pointSize;
@end

APPKIT_EXTERN NSAttributedStringKey const NSFontAttributeName;
APPKIT_EXTERN NSAttributedStringKey const NSForegroundColorAttributeName;

NS_ASSUME_NONNULL_END
