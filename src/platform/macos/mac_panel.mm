#include "platform/macos/mac_panel.h"

#include <utility>

#include "platform/macos/mac_geometry.h"
#include "platform/macos/mac_panel_material.h"
#include "platform/macos/mac_panel_window.h"
#include "platform/macos/mac_views.h"

namespace ferrowyn {

namespace {

/// Who handles the moves of the pointer for the toolkit's view, which need not be the view itself.
id pointerHandler(NSView* view) {
    for (NSTrackingArea* area in view.trackingAreas) {
        const id owner = area.owner;
        if ([owner respondsToSelector:@selector(mouseMoved:)]) {
            return owner;
        }
    }
    return view;
}

/// The toolkit follows the pointer only while its application is the active one, which the panel's never is.
void followPointer(NSView* view) {
    [view addTrackingArea:[[NSTrackingArea alloc] initWithRect:NSZeroRect
                                                       options:NSTrackingMouseEnteredAndExited | NSTrackingMouseMoved |
                                                               NSTrackingActiveAlways | NSTrackingInVisibleRect
                                                         owner:pointerHandler(view)
                                                      userInfo:nil]];
}

}  // namespace

struct MacPanel::Parts {
    WidgetHost host;
    FerrowynSwitcherPanel* window;
    std::unique_ptr<HostedWidget> widget;
    bool isShown = false;
};

MacPanel::MacPanel(WidgetHost host, double cornerRadius)
    : parts_(new Parts{.host = std::move(host), .window = [FerrowynSwitcherPanel switcherPanel]}) {
    NSRect bounds = parts_->window.frame;
    bounds.origin = NSMakePoint(0, 0);
    parts_->window.contentView = makePanelMaterial(bounds, cornerRadius);
    parts_->window.acceptsMouseMovedEvents = YES;
}

MacPanel::~MacPanel() {
    orderOut();
    parts_->widget.reset();
    [parts_->window close];
}

void MacPanel::setContent(std::unique_ptr<PanelContent> content) {
    content_ = std::move(content);
    content_->setTranslucent(true);
    if (content_->widget() == nullptr) {
        return;
    }
    parts_->widget = parts_->host(*content_->widget(), addressOf(parts_->window.contentView));
    const NSSize size = parts_->window.frame.size;
    parts_->widget->fill({.width = size.width, .height = size.height});
    followPointer(viewAt(parts_->widget->view()));
}

void MacPanel::setFrame(const Rect& frame) {
    if (parts_->isShown && content_) {
        content_->synchronize();
    }
    takeFrame(frame);
    if (parts_->isShown) {
        // It follows the outline of what is drawn, which the system does not watch.
        [parts_->window invalidateShadow];
    }
}

void MacPanel::takeFrame(const Rect& frame) {
    [parts_->window setFrame:toNSRect(frame) display:NO];
    if (parts_->widget) {
        parts_->widget->fill({.width = frame.width, .height = frame.height});
    }
}

void MacPanel::layOutContent() {
    if (content_) {
        content_->synchronize();
    }
    [parts_->window.contentView layoutSubtreeIfNeeded];
    [parts_->window displayIfNeeded];
}

void MacPanel::prepare(const Rect& frame) {
    if (!parts_->isShown) {
        takeFrame(frame);
    }
}

void MacPanel::orderFront() {
    beginShowing();
    [parts_->window orderFront:nil];
}

void MacPanel::orderFrontRegardless() {
    beginShowing();
    [parts_->window orderFrontRegardless];
}

void MacPanel::beginShowing() {
    if (content_) {
        content_->synchronize();
    }
    if (parts_->widget) {
        parts_->widget->setVisible(true);
    }
    parts_->isShown = true;
}

void MacPanel::orderOut() {
    [parts_->window orderOut:nil];
    if (parts_->widget) {
        parts_->widget->setVisible(false);
    }
    parts_->isShown = false;
}

}  // namespace ferrowyn
