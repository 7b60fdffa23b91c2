#pragma once

#include <HIServices/HIServices.h>

#include <string>
#include <vector>

#include "core/app_window.h"
#include "tests/macos/fake/fake_object.h"
#include "tests/macos/fake/fake_run_loop.h"
#include "tests/macos/fake/fake_value.h"

namespace ferrowyn::fake {

/// An observer of one application, with a source that delivers all that waits in one go, whatever a callback does to
/// the observer in between.
class Observer final : public Object {
public:
    Observer(Pid pid, AXObserverCallback callback);
    ~Observer() override;

    [[nodiscard]] Pid pid() const { return pid_; }
    [[nodiscard]] RunLoopSource& source() { return *source_.get(); }

    /// False when it is registered already.
    bool add(ElementId element, const std::string& notification, void* refcon);
    /// False when it is not registered.
    bool remove(ElementId element, const std::string& notification);
    void enqueue(ElementId element, const std::string& notification);

private:
    struct Registration {
        ElementId element;
        std::string notification;
        void* refcon;
    };

    bool deliver();

    Pid pid_;
    AXObserverCallback callback_;
    std::vector<Registration> registrations_;
    std::vector<Registration> waiting_;
    Held<RunLoopSource> source_;
};

}  // namespace ferrowyn::fake
