#pragma once

#include "platform/icon_source.h"

namespace ferrowyn {

/// Has everything that is drawn use these looks for as long as this lives; the looks outlive it. As the toolkit's
/// palette, they are one for all widgets, which ask for them whenever they draw. Main thread.
class SystemLooksInUse {
public:
    explicit SystemLooksInUse(const SystemLooks& looks);
    ~SystemLooksInUse();
    SystemLooksInUse(const SystemLooksInUse&) = delete;
    SystemLooksInUse& operator=(const SystemLooksInUse&) = delete;

    /// Null on a desktop that has none.
    [[nodiscard]] static const SystemLooks* current();
};

}  // namespace ferrowyn
