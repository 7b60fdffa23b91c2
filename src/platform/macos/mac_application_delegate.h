#pragma once

#include <functional>
#include <memory>

namespace ferrowyn {

/// What the system tells the application's delegate. Each may be empty.
struct MacApplicationEvents {
    std::function<void()> onDidFinishLaunching;
    /// The user opens the program while it runs; the answer is whether the system may do what it does then, too.
    std::function<bool(bool hasVisibleWindows)> onShouldHandleReopen;
    std::function<void()> onWillTerminate;
};

/// The delegate of the application object for as long as this lives. The toolkit's own delegate passes on to the one
/// that is there before it, so this is made before the QApplication. Main thread.
class MacApplicationDelegate {
public:
    explicit MacApplicationDelegate(MacApplicationEvents events);
    ~MacApplicationDelegate();
    MacApplicationDelegate(const MacApplicationDelegate&) = delete;
    MacApplicationDelegate& operator=(const MacApplicationDelegate&) = delete;

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}  // namespace ferrowyn
