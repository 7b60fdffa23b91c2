#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "core/app_window.h"
#include "platform/window_inventory.h"

namespace ferrowyn::simulation {

/// The window list that the program must publish, computed the slow and obvious way from what the desktop reported. It
/// shares nothing with the program but the plain value types.
class ExpectedList {
public:
    explicit ExpectedList(Pid ownPid) : ownPid_(ownPid) {}

    /// What must be published now.
    [[nodiscard]] const std::vector<AppWindow>& windows() const { return windows_; }
    /// The windows of the last refresh, whose elements must be observed.
    [[nodiscard]] const std::vector<AppWindow>& refreshed() const { return refreshed_; }
    [[nodiscard]] std::size_t rankCount() const { return uses_.size(); }

    /// An application reported this focused window.
    void noteFocus(WindowId id);
    /// The activator reported this window.
    void noteActivated(WindowId id);
    /// A refresh begins, and reads the desktop a little later.
    void notePassBegin() { usesAtPassBegin_ = useCount_; }
    void read(const InventoryReading& reading);
    /// The refresh ends: the last reading becomes the list.
    void refresh(std::optional<Pid> frontmost);
    /// Observation ended. The order of use is kept.
    void clear();

private:
    struct Use {
        WindowId id = 0;
        std::int64_t number = 0;
    };

    void use(WindowId id);
    void touch(WindowId id);
    void seed(const std::vector<AppWindow>& windows, std::optional<Pid> frontmost);
    [[nodiscard]] std::vector<AppWindow> ordered(const std::vector<AppWindow>& windows) const;
    [[nodiscard]] bool lists(WindowId id) const;

    Pid ownPid_;
    std::vector<AppWindow> windows_;
    std::vector<AppWindow> refreshed_;
    /// Most recent first.
    std::vector<Use> uses_;
    std::int64_t useCount_ = 0;
    std::int64_t usesAtPassBegin_ = 0;

    std::vector<AppWindow> read_;
    std::unordered_set<WindowId> live_;
    std::unordered_set<WindowId> onScreen_;
};

/// Whether the two lists show the same windows in the same order, with everything that a row shows of them.
[[nodiscard]] bool sameWindow(const AppWindow& a, const AppWindow& b);
[[nodiscard]] bool sameWindows(const std::vector<AppWindow>& a, const std::vector<AppWindow>& b);
/// The ids, for a message.
[[nodiscard]] std::string idsOf(const std::vector<AppWindow>& windows);
[[nodiscard]] bool isAdmitted(const RunningApplication& application, Pid ownPid);
[[nodiscard]] std::string_view trimmed(std::string_view text, std::string_view blanks);

}  // namespace ferrowyn::simulation
