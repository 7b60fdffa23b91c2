#pragma once

#include <functional>
#include <optional>
#include <string>

#include "core/identifiers.h"
#include "core/subscription.h"

namespace ferrowyn {

/// This process as the desktop knows it. Main thread.
class Application {
public:
    virtual ~Application() = default;

    [[nodiscard]] virtual Pid ownPid() const = 0;
    /// Told each time the program itself becomes the active one (the user came back to one of its windows).
    [[nodiscard]] virtual Subscription observeDidBecomeActive(std::function<void()> handler) = 0;
};

}  // namespace ferrowyn
