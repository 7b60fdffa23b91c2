#pragma once

#include <QWidget>
#include <functional>

#include "core/published.h"

namespace ferrowyn {

struct TextTable;
class Preferences;

/// The part of the setup window that shows how to use the switcher, once it can be used. Main thread. The texts and
/// preferences outlive it.
class GrantedState final : public QWidget {
    Q_OBJECT

public:
    GrantedState(const TextTable& texts, const Preferences& preferences, std::function<void()> onDone);

private:
    Subscription modifierSubscription_;
};

}  // namespace ferrowyn
