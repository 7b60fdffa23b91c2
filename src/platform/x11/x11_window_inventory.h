#pragma once

#include <atomic>

#include "platform/window_inventory.h"
#include "platform/x11/x11_application_directory.h"
#include "platform/x11/x11_desktop_model.h"
#include "platform/x11/x11_desktop_reader.h"
#include "platform/x11/x11_focus_history.h"

namespace ferrowyn {

/// Readings come over the reader's connection on worker threads; what the main thread asks is answered by the model.
class X11WindowInventory final : public WindowInventory {
public:
    /// `scale` is device pixels a point. All references outlive this.
    X11WindowInventory(X11DesktopReader& reader, const X11DesktopModel& model, const X11ApplicationDirectory& directory,
                       const X11FocusHistory& history, const std::atomic<double>& scale)
        : reader_(reader), model_(model), directory_(directory), history_(history), scale_(scale) {}

    [[nodiscard]] std::unique_ptr<InventoryReading> beginReading() const override;
    [[nodiscard]] std::optional<std::vector<std::optional<WindowId>>> windowOrder() const override;
    [[nodiscard]] std::optional<WindowId> focusedWindowNumber(Pid pid, Seconds messagingTimeout) const override;

private:
    X11DesktopReader& reader_;
    const X11DesktopModel& model_;
    const X11ApplicationDirectory& directory_;
    const X11FocusHistory& history_;
    const std::atomic<double>& scale_;
};

}  // namespace ferrowyn
