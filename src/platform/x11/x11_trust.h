#pragma once

#include <functional>
#include <string>

#include "core/published.h"
#include "platform/log.h"
#include "platform/trust.h"
#include "platform/x11/keyboard/x11_input_context.h"
#include "platform/x11/x11_desktop_model.h"

namespace ferrowyn {

/// On X11 no access has to be granted. Trusted means that an EWMH window manager runs and that the server has XInput
/// 2.2, with which the tap gets the trigger before the manager. Main thread.
class X11Trust final : public Trust {
public:
    /// Whether the session is locked, and how to observe changes of that.
    struct SessionLockState {
        std::function<bool()> isLocked = [] { return false; };
        std::function<Subscription(std::function<void()>)> observe = [](const auto&) { return Subscription(); };
    };

    /// `inputObstacle` says why the tap cannot work on this server; empty when it can. All references outlive this.
    X11Trust(const X11DesktopModel& model, const X11InputContext& context, SessionLockState sessionLock,
             std::string inputObstacle, Log& log);

    [[nodiscard]] bool isTrusted() const override;
    [[nodiscard]] bool canBecomeTrusted() const override { return inputObstacle_.empty(); }
    /// Writes to the log what is missing; X11 has no prompt.
    bool requestWithPrompt() override;
    [[nodiscard]] bool isSecureInputActive() const override;
    [[nodiscard]] Subscription observeLostTriggers(std::function<void()> handler) override;
    [[nodiscard]] Subscription observeChanges(std::function<void()> handler) override;

    /// The tap reports that another program answered the trigger.
    void noteLostTrigger() { lostTriggers_.send(true); }

private:
    const X11DesktopModel& model_;
    const X11InputContext& context_;
    SessionLockState sessionLock_;
    std::string inputObstacle_;
    Log& log_;
    Subject<bool> changes_;
    Subject<bool> lostTriggers_;
    Subscription managerSubscription_;
    Subscription lockSubscription_;
};

/// Why the tap cannot work on this server, in words for the log; empty when it can. Waits for the server.
[[nodiscard]] std::string inputObstacle(xcb_connection_t* connection);

}  // namespace ferrowyn
