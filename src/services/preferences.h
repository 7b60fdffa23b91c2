#pragma once

#include <functional>
#include <utility>

#include "core/published.h"
#include "core/switcher_options.h"

namespace ferrowyn {

class UserDefaults;

/// The user's settings. Each is read once at construction. Every assignment calls the subscribers, then writes the
/// value to the store. Main thread; AppServices owns it, and the defaults store outlives it.
class Preferences {
public:
    /// One setting: a published value whose assignment is also stored.
    template <typename Value>
    class Setting {
    public:
        using Store = std::function<void(const Value&)>;

        Setting(Value initial, Store store) : published_(std::move(initial)), store_(std::move(store)) {}

        [[nodiscard]] const Value& get() const { return published_.get(); }
        [[nodiscard]] const Published<Value>& published() const { return published_; }
        void set(Value value) {
            published_.set(std::move(value));
            store_(published_.get());
        }

    private:
        Published<Value> published_;
        Store store_;
    };

    static constexpr int fewestVisibleRows = 4;
    static constexpr int mostVisibleRows = 16;

    explicit Preferences(UserDefaults& defaults);

private:
    UserDefaults& defaults_;

public:
    Setting<SwitcherModifier> modifier;
    Setting<bool> includeMinimized;
    Setting<bool> includeOtherSpaces;
    Setting<bool> showShortcutHints;
    Setting<bool> confirmOnModifierRelease;
    /// 4 to 16. Clamped when it is read from the store; an assigned value must be in this range.
    Setting<int> maximumVisibleRows;
    Setting<SwitcherLayout> layout;
    Setting<bool> showActiveAppWindowsFirst;
    Setting<bool> favouritesFirst;
    Setting<bool> automaticUpdateChecks;

    [[nodiscard]] SessionSettings sessionSettings() const;
};

}  // namespace ferrowyn
