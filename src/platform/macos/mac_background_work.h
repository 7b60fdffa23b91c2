#pragma once

#include "platform/main_loop.h"

namespace ferrowyn {

/// The toolkit's workers, each task of which leaves nothing behind: their threads have no autorelease pool of their
/// own, and the system's functions autorelease too.
class MacBackgroundWork final : public BackgroundWork {
public:
    /// It is asked for as long as this is.
    explicit MacBackgroundWork(BackgroundWork& workers) : workers_(workers) {}

    void run(std::function<void()> work) override;
    void concurrentPerform(std::size_t count, const std::function<void(std::size_t)>& iteration) override;

private:
    BackgroundWork& workers_;
};

}  // namespace ferrowyn
