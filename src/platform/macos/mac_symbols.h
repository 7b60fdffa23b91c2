#pragma once

#import <AppKit/AppKit.h>

#include <string_view>

#include "platform/status_item.h"

namespace ferrowyn {

[[nodiscard]] NSColor* _Nonnull systemColor(MenuTint tint);

/// A symbol of the system that its surroundings tint; nil when the system has none of this name.
[[nodiscard]] NSImage* _Nullable templateSymbol(std::string_view name, NSString* _Nullable accessibilityDescription);
[[nodiscard]] NSImage* _Nullable templateSymbol(std::string_view name, NSString* _Nullable accessibilityDescription,
                                                double pointSize);
/// A symbol in a colour of its own: for drawing by oneself, where nothing would tint a template.
[[nodiscard]] NSImage* _Nullable coloredSymbol(std::string_view name, NSString* _Nullable accessibilityDescription,
                                               double pointSize, NSColor* _Nonnull color);
/// As the symbols of menu rows are drawn; one in another colour than the menu's own is no template.
[[nodiscard]] NSImage* _Nullable menuSymbol(std::string_view name, MenuTint tint);

}  // namespace ferrowyn
