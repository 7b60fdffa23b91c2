#pragma once

#include <functional>
#include <memory>

#include "core/app_window.h"
#include "platform/panel.h"

namespace ferrowyn {

class Preferences;
class SwitcherViewModel;
struct TextTable;

/// What the panel's content reports back. Called on the main thread; each holds the controller weakly.
struct SwitcherContentCallbacks {
    /// A row was clicked.
    std::function<void(const AppWindow&)> onActivate;
    /// The pointer is over the row with this index.
    std::function<void(int)> onHover;
    /// A row's favourite button was clicked.
    std::function<void(const AppWindow&)> onToggleFavourite;
    /// The button of the permission state was clicked.
    std::function<void()> onRequestPermissions;
    /// The content looks different now (colours, fonts): a frame that was drawn ahead is not what it would show.
    std::function<void()> onAppearanceChanged;
};

/// Makes the panel's content. It stands between the controller and the user interface, which is above it. The view
/// model and the preferences outlive the content.
using SwitcherContentFactory = std::function<std::unique_ptr<PanelContent>(
    SwitcherViewModel& viewModel, Preferences& preferences, SwitcherContentCallbacks callbacks)>;

}  // namespace ferrowyn
