// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <AppKit/NSAccessibility.h>
#include <AppKit/NSAppearance.h>
#include <AppKit/NSApplication.h>
#include <AppKit/NSBezierPath.h>
#include <AppKit/NSBitmapImageRep.h>
#include <AppKit/NSColor.h>
#include <AppKit/NSControls.h>
#include <AppKit/NSEvent.h>
#include <AppKit/NSFont.h>
#include <AppKit/NSGraphicsContext.h>
#include <AppKit/NSImage.h>
#include <AppKit/NSMenu.h>
#include <AppKit/NSResponder.h>
#include <AppKit/NSRunningApplication.h>
#include <AppKit/NSScreen.h>
#include <AppKit/NSStatusBar.h>
#include <AppKit/NSTrackingArea.h>
#include <AppKit/NSView.h>
#include <AppKit/NSVisualEffectView.h>
#include <AppKit/NSWindow.h>
#include <AppKit/NSWorkspace.h>
#include <Foundation/Foundation.h>
