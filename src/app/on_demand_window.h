#pragma once

namespace ferrowyn {

/// One of the program's ordinary windows: made when it is first shown, kept and shown again after that. Main thread.
class OnDemandWindow {
public:
    virtual ~OnDemandWindow() = default;

    /// Brings it to the front as the key window.
    virtual void show() = 0;
    virtual void close() = 0;
};

}  // namespace ferrowyn
