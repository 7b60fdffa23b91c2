// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

typedef NSString* NSAccessibilityRole NS_TYPED_EXTENSIBLE_ENUM;
APPKIT_EXTERN NSAccessibilityRole const NSAccessibilityButtonRole;

NS_ASSUME_NONNULL_END
