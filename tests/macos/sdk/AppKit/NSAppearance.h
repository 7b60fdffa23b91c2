// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

typedef NSString* NSAppearanceName NS_TYPED_EXTENSIBLE_ENUM;
APPKIT_EXTERN NSAppearanceName const NSAppearanceNameAqua;
APPKIT_EXTERN NSAppearanceName const NSAppearanceNameDarkAqua API_AVAILABLE(macos(10.14));

@interface NSAppearance : NSObject
+ (nullable NSAppearance*)appearanceNamed:(NSAppearanceName)name;
- (void)performAsCurrentDrawingAppearance:(void(NS_NOESCAPE ^)(void))block API_AVAILABLE(macos(11.0));
@end

NS_ASSUME_NONNULL_END
