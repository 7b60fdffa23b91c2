#pragma once

#include <xcb/xcb.h>

#include <functional>
#include <memory>

class QSocketNotifier;

namespace ferrowyn {

class X11Connection;

/// Makes this the only running program of its user on its display. The claim is an X selection: the server hands it to
/// one client at a time, and takes it back when that client goes, however it goes. Main thread.
class SingleInstance {
public:
    /// Null when another program has the claim; it has been told of this start then.
    [[nodiscard]] static std::unique_ptr<SingleInstance> claim(std::unique_ptr<X11Connection> connection);
    ~SingleInstance();
    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;

    /// Calls the handler at each later start. With a QCoreApplication, which outlives this object.
    void listen(std::function<void()> onSecondStart);

private:
    SingleInstance(std::unique_ptr<X11Connection> connection, xcb_atom_t startedAgain);

    void readEvents();

    std::unique_ptr<X11Connection> connection_;
    xcb_atom_t startedAgain_;
    std::function<void()> onSecondStart_;
    std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace ferrowyn
