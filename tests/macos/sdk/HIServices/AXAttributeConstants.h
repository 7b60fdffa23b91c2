// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <CoreFoundation/CFString.h>

#define kAXFocusedAttribute CFSTR("AXFocused")
#define kAXFocusedWindowAttribute CFSTR("AXFocusedWindow")
#define kAXFrontmostAttribute CFSTR("AXFrontmost")
#define kAXMainAttribute CFSTR("AXMain")
#define kAXMinimizedAttribute CFSTR("AXMinimized")
#define kAXPositionAttribute CFSTR("AXPosition")
#define kAXSizeAttribute CFSTR("AXSize")
#define kAXSubroleAttribute CFSTR("AXSubrole")
#define kAXTitleAttribute CFSTR("AXTitle")
#define kAXWindowsAttribute CFSTR("AXWindows")
