#include "platform/macos/mac_icon_source.h"

#import <AppKit/AppKit.h>
#import <UniformTypeIdentifiers/UniformTypeIdentifiers.h>

#include "platform/macos/mac_icon_image.h"
#include "platform/macos/mac_strings.h"

namespace ferrowyn {

std::shared_ptr<const IconImage> MacIconSource::iconForFile(std::string_view path) {
    return std::make_shared<MacIconImage>([NSWorkspace.sharedWorkspace iconForFile:nsString(path)]);
}

std::shared_ptr<const IconImage> MacIconSource::iconForProcess(Pid pid) {
    NSImage* const icon = [NSRunningApplication runningApplicationWithProcessIdentifier:pid].icon;
    return icon == nil ? nullptr : std::make_shared<MacIconImage>(icon);
}

std::shared_ptr<const IconImage> MacIconSource::genericApplicationIcon(std::string_view /*name*/) {
    return std::make_shared<MacIconImage>([NSWorkspace.sharedWorkspace iconForContentType:UTTypeApplicationBundle]);
}

}  // namespace ferrowyn
