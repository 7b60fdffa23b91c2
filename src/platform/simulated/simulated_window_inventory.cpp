#include "platform/simulated/simulated_window_inventory.h"

#include <utility>

#include "platform/simulated/simulated_window_model.h"

namespace ferrowyn {

namespace {

using Window = SimulatedWindowState;

class SimulatedReading final : public InventoryReading {
public:
    explicit SimulatedReading(SimulatedWindowModel model) : model_(std::move(model)) {}

    [[nodiscard]] std::optional<std::vector<WindowServerEntry>> windowList() const override {
        if (!model_.windowServerAnswers) {
            return std::nullopt;
        }
        std::vector<WindowServerEntry> entries;
        for (const Window& window : model_.windows) {
            if (window.isListedByWindowServer) {
                entries.push_back(entry(window));
            }
        }
        return entries;
    }

    [[nodiscard]] std::unordered_set<WindowId> onScreenWindowIds() const override {
        std::unordered_set<WindowId> ids;
        for (const Window& window : model_.windows) {
            if (model_.windowServerAnswers && window.isListedByWindowServer && isOnScreen(window)) {
                ids.insert(window.id);
            }
        }
        return ids;
    }

    [[nodiscard]] std::vector<RunningApplication> runningApplications() const override {
        std::vector<RunningApplication> applications;
        applications.reserve(model_.apps.size());
        for (const auto& app : model_.apps) {
            applications.push_back(app.describe());
        }
        return applications;
    }

    [[nodiscard]] std::optional<AccessibleApplication> windowsOf(Pid pid, Seconds) const override {
        const auto* app = model_.app(pid);
        if (app == nullptr || app->isHung) {
            return std::nullopt;
        }
        AccessibleApplication answer;
        if (app->focusedWindow) {
            answer.focusedWindow = SimulatedElement::reference(*app->focusedWindow);
        }
        for (const Window& window : model_.windows) {
            if (window.pid == pid && window.isListedByAccessibility) {
                answer.windows.push_back(accessible(window));
            }
        }
        return answer;
    }

    [[nodiscard]] bool hasWindowNumberLookup() const override { return model_.hasWindowNumberLookup; }

private:
    [[nodiscard]] bool isOnScreen(const Window& window) const {
        const auto* app = model_.app(window.pid);
        return window.isOnActiveSpace && !window.isMinimized && (app == nullptr || !app->isHidden);
    }

    [[nodiscard]] WindowServerEntry entry(const Window& window) const {
        const auto* app = model_.app(window.pid);
        return {.id = window.id,
                .ownerName = app != nullptr ? app->state.localizedName : std::nullopt,
                .isOnScreen = isOnScreen(window),
                .bounds = window.serverBounds.value_or(window.frame),
                .alpha = window.alpha,
                .layer = window.layer,
                .ownerPid = window.pid};
    }

    [[nodiscard]] AccessibleWindow accessible(const Window& window) const {
        AccessibleWindow answer{.element = SimulatedElement::reference(window.id),
                                .windowNumber = model_.lookUpNumber(window),
                                .subrole = window.subrole,
                                .title = window.title,
                                .isMinimized = window.isMinimized,
                                .isFullScreen = window.isFullScreen,
                                .position = std::nullopt,
                                .size = std::nullopt,
                                .blockedBy = std::nullopt};
        if (window.hasAccessibilityFrame) {
            answer.position = Point{window.frame.x, window.frame.y};
            answer.size = Size{window.frame.width, window.frame.height};
        }
        if (const auto* dialog = window.blockedBy ? model_.window(*window.blockedBy) : nullptr) {
            answer.blockedBy = ModalDialog{dialog->id, SimulatedElement::reference(dialog->id), dialog->pid};
        }
        return answer;
    }

    SimulatedWindowModel model_;
};

}  // namespace

std::unique_ptr<InventoryReading> SimulatedWindowInventory::beginReading() const {
    return std::make_unique<SimulatedReading>(model_);
}

std::optional<std::vector<std::optional<WindowId>>> SimulatedWindowInventory::windowOrder() const {
    if (!model_.windowServerAnswers) {
        return std::nullopt;
    }
    std::vector<std::optional<WindowId>> order;
    for (const Window& window : model_.windows) {
        if (window.isListedByWindowServer) {
            order.emplace_back(window.id);
        }
    }
    return order;
}

std::optional<WindowId> SimulatedWindowInventory::focusedWindowNumber(Pid pid, Seconds) const {
    const auto* app = model_.app(pid);
    if (app == nullptr || app->isHung || !app->focusedWindow) {
        return std::nullopt;
    }
    const Window* window = model_.window(*app->focusedWindow);
    return window != nullptr ? model_.lookUpNumber(*window) : std::nullopt;
}

}  // namespace ferrowyn
