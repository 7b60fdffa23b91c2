#pragma once

#include <memory>

#include "platform/platform.h"
#include "platform/qt/hosted_widget.h"

namespace ferrowyn {

/// What the adapter does not make itself: the toolkit's event loop, which runs the system's, and what the program has
/// besides. All of it outlives the adapter, except the workers: their tasks use the adapter, so they must end before
/// it.
struct MacPlatformFoundation {
    MainLoop& mainLoop;
    BackgroundWork& backgroundWork;
    HttpClient& httpClient;
    Log& log;
    /// Puts the panel's content into the panel.
    WidgetHost hostWidget;
    /// In points, of the outline that the panel's content draws.
    double panelCornerRadius = 0;
};

/// Everything that the program asks of macOS. Main thread, made after the application object and destroyed before it.
class MacPlatform {
public:
    explicit MacPlatform(MacPlatformFoundation foundation);
    ~MacPlatform();
    MacPlatform(const MacPlatform&) = delete;
    MacPlatform& operator=(const MacPlatform&) = delete;

    [[nodiscard]] const Platform& platform() const;

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}  // namespace ferrowyn
