#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <memory>

#include "platform/event_tap.h"
#include "platform/macos/mac_event_tap.h"
#include "platform/macos/owned.h"

namespace ferrowyn {

/// The source of one tap's port, in the common modes of the loop it is added to. Each call from the thread that its
/// interface says.
class MacTapRunLoopSource final : public TapRunLoopSource {
public:
    /// Null when the system makes none.
    [[nodiscard]] static std::shared_ptr<MacTapRunLoopSource> create(std::shared_ptr<MacEventTap> tap);

    void addTo(TapRunLoop& loop) override;
    void removeFrom(TapRunLoop& loop) override;

private:
    MacTapRunLoopSource(std::shared_ptr<MacEventTap> tap, Owned<CFRunLoopSourceRef> source)
        : tap_(std::move(tap)), source_(std::move(source)) {}

    /// What the source delivers goes to the tap, which therefore lives as long.
    std::shared_ptr<MacEventTap> tap_;
    Owned<CFRunLoopSourceRef> source_;
};

}  // namespace ferrowyn
