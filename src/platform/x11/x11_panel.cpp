#include "platform/x11/x11_panel.h"

#include <xcb/xfixes.h>

#include <string>
#include <utility>

#include "platform/x11/xcb_reply.h"

namespace ferrowyn {

X11Compositor::X11Compositor(X11EventConnection& events) {
    xcb_connection_t* const connection = events.get();
    const std::string selection = "_NET_WM_CM_S" + std::to_string(events.connection().screenNumber());
    selection_ = events.connection().internAtoms({selection}).front();
    if (const auto firstEvent = events.listenToSelection(selection_)) {
        firstEvent_ = *firstEvent;
        eventSubscription_ = events.observe([this](const xcb_generic_event_t& event) { handle(event); });
    }
    // Asked after the events are selected, so that no start or stop is missed.
    const XcbReply<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, selection_), nullptr));
    owner_ = owner ? owner->owner : xcb_window_t{XCB_WINDOW_NONE};
}

Subscription X11Compositor::observe(std::function<void(bool)> onChange) const {
    return changes_.subscribe([onChange = std::move(onChange)](const bool& isRunning) { onChange(isRunning); });
}

void X11Compositor::handle(const xcb_generic_event_t& event) {
    if ((event.response_type & 0x7FU) != firstEvent_ + XCB_XFIXES_SELECTION_NOTIFY) {
        return;
    }
    const auto& notification = reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(event);
    if (notification.selection != selection_) {
        return;
    }
    const bool wasRunning = isRunning();
    // The event names the old owner also when its window was destroyed or its client has ended.
    owner_ = notification.subtype == XCB_XFIXES_SELECTION_EVENT_SET_SELECTION_OWNER ? notification.owner
                                                                                    : xcb_window_t{XCB_WINDOW_NONE};
    if (isRunning() != wasRunning) {
        changes_.send(isRunning());
    }
}

namespace {

/// Another window may raise itself again and again too, such as a screen locker. It must stay on top in the end.
constexpr int mostRaisesPerSession = 32;

}  // namespace

X11Panel::X11Panel(X11EventConnection& events, const X11Screens& screens, const X11Compositor& compositor,
                   X11Pointer& pointer)
    : events_(events), screens_(screens), compositor_(compositor), pointer_(pointer) {
    compositorSubscription_ = compositor_.observe([this](bool) { makeWindow(); });
    eventSubscription_ = events_.observe([this](const xcb_generic_event_t& event) { stayOnTop(event); });
}

X11Panel::~X11Panel() {
    orderOut();
    finishHiding();
    window_.reset();  // before the content is destroyed: the window's destructor uses the content's widget
}

void X11Panel::setContent(std::unique_ptr<PanelContent> content) {
    finishHiding();
    window_.reset();
    content_ = std::move(content);
    makeWindow();
}

void X11Panel::setFrame(const Rect& frame) {
    const auto coordinates = screens_.coordinates();
    frame_ = coordinates.toPixels(frame);
    if (window_ == nullptr || !isShown_) {
        return;
    }
    content_->synchronize();
    window_->resizeShown(frame_, coordinates.scale);
    pointer_.panelCovers(frame_);
}

void X11Panel::layOutContent() {
    if (window_ != nullptr) {
        finishHiding();
        redraw();
    }
}

void X11Panel::prepare(const Rect& frame) {
    if (window_ == nullptr || isShown_) {
        return;
    }
    finishHiding();
    prime(screens_.coordinates().toPixels(frame));
}

void X11Panel::orderFront() {
    orderFrontRegardless();
}

void X11Panel::orderFrontRegardless() {
    if (window_ == nullptr || isShown_) {
        return;
    }
    finishHiding();
    const bool isReady = isPrimed_ && prepared_ && prepared_->width == frame_.width &&
                         prepared_->height == frame_.height && content_->matchesPreview();
    if (!isReady) {
        redraw();
    }
    // Set before the panel is visible, so that a press right after that is not missed.
    pointer_.panelCovers(frame_);
    window_->reveal(frame_);
    isPrimed_ = false;
    isShown_ = true;
    raisesLeft_ = mostRaisesPerSession;
    events_.setSelectsStacking(true);
    // The server shows the panel now. The rest brings Qt's state up to date.
    if (isReady) {
        content_->synchronize();
        window_->resizeTo(frame_, screens_.coordinates().scale);
    }
    window_->show();
}

void X11Panel::orderOut() {
    if (window_ == nullptr || !isShown_) {
        return;
    }
    isShown_ = false;
    window_->conceal();
    isHidePending_ = true;
    // Qt's part is done in a later turn of the loop, so that the chosen window is activated first.
    QMetaObject::invokeMethod(
        window_.get(), [this] { finishHiding(); }, Qt::QueuedConnection);
}

/// Does Qt's part of `orderOut`. Called before anything else is done with the window.
void X11Panel::finishHiding() {
    if (std::exchange(isHidePending_, false)) {
        pointer_.panelCovers(std::nullopt);
        events_.setSelectsStacking(false);
        window_->hide();
    }
}

/// Makes the window, and makes it again when a compositor starts or stops: the depth of a window cannot be changed.
void X11Panel::makeWindow() {
    if (content_ == nullptr || content_->widget() == nullptr) {
        return;
    }
    finishHiding();
    const bool isTranslucent = compositor_.isRunning();
    content_->setBackground(isTranslucent ? PanelBackground::translucent : PanelBackground::opaque);
    const auto previous = std::exchange(
        window_, std::make_unique<X11PanelWindow>(isTranslucent, *content_->widget(),
                                                  [this](int x, int y, std::optional<std::uint32_t> pressTime) {
                                                      pointer_.moved(x, y);
                                                      if (pressTime) {
                                                          pointer_.pressed(*pressTime);
                                                      }
                                                  }));
    isPrimed_ = false;
    if (isShown_) {
        redraw();
        window_->reveal(frame_);
        window_->show();
    } else if (prepared_) {
        prime(*prepared_);
    }
}

void X11Panel::prime(const X11PixelRect& frame) {
    const double scale = screens_.coordinates().scale;
    prepared_ = frame;
    window_->resizeTo(frame, scale);
    QImage image = window_->blankImage(frame, scale);
    content_->renderPreview(image);
    window_->prime(image);
    isPrimed_ = true;
}

/// Draws the present content and makes it the window's background.
void X11Panel::redraw() {
    const double scale = screens_.coordinates().scale;
    content_->synchronize();
    window_->resizeTo(frame_, scale);
    QImage image = window_->blankImage(frame_, scale);
    window_->drawInto(image);
    window_->prime(image);
    isPrimed_ = false;
}

/// Raises the panel again after another window was raised or mapped above it.
void X11Panel::stayOnTop(const xcb_generic_event_t& event) {
    if (!isShown_ || raisesLeft_ == 0) {
        return;
    }
    // Only child windows of the root can be above the panel. Override-redirect windows, such as menus and lockers, are
    // left where their clients put them.
    const auto type = typeOf(event);
    bool concernsOther = false;
    if (type == XCB_CONFIGURE_NOTIFY) {
        const auto& change = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
        concernsOther = change.event == events_.root() && change.window != window_->id() &&
                        change.window != events_.root() && change.override_redirect == 0;
    } else if (type == XCB_MAP_NOTIFY) {
        const auto& change = reinterpret_cast<const xcb_map_notify_event_t&>(event);
        concernsOther =
            change.event == events_.root() && change.window != window_->id() && change.override_redirect == 0;
    }
    if (concernsOther) {
        --raisesLeft_;
        window_->raiseToTop();
    }
}

}  // namespace ferrowyn
