#pragma once

#import <AppKit/AppKit.h>

namespace ferrowyn {

/// The blurred material behind the panel's whole content, with round corners. It always looks active: the panel never
/// is.
[[nodiscard]] NSVisualEffectView* _Nonnull makePanelMaterial(NSRect frame, double cornerRadius);

}  // namespace ferrowyn
