#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "core/geometry.h"

class QImage;
class QWidget;

namespace ferrowyn {

/// What the panel's content draws as its background.
enum class PanelBackground {
    /// An opaque colour with square corners, for a desktop without a compositor.
    opaque,
    /// A colour that lets a little of what is behind the panel through, with round corners. Needs a compositor.
    translucent,
    /// Nothing, because the host shows a material of the desktop behind the content, with round corners.
    material,
};

/// The content of the panel. The user interface makes it, and the adapter shows it. Main thread.
class PanelContent {
public:
    virtual ~PanelContent() = default;

    /// The widget to show, owned by this content; null where nothing is drawn (the simulated desktop). Qt is the
    /// toolkit on every desktop; the logic knows only this forward declaration.
    [[nodiscard]] virtual QWidget* widget() = 0;

    /// Updates the widget from the model at once. Called before the panel is shown, so that its first frame is correct.
    virtual void synchronize() = 0;

    /// Opaque at first. The adapter calls this when the background changes.
    virtual void setBackground(PanelBackground background) = 0;

    /// Fills the image, at its device pixel ratio, with the first frame that the widget would show if a session began
    /// now. Changes nothing else. Draws nothing where `widget` is null.
    virtual void renderPreview(QImage& target) = 0;
    /// Whether the first frame for the current state of the model is the picture that `renderPreview` drew last. Fast:
    /// compares only what that picture shows.
    [[nodiscard]] virtual bool matchesPreview() const = 0;
};

/// The floating window of the switcher: borderless, non-activating (it becomes neither key nor main window, so keys
/// stay with the application in front), above everything including full-screen windows, on all Spaces, ignored by
/// window cycling, not movable, with a shadow, shown and hidden without animation. Main thread.
class Panel {
public:
    virtual ~Panel() = default;

    /// Fills the panel with the content and keeps it filled when the panel is resized. Called once.
    virtual void setContent(std::unique_ptr<PanelContent> content) = 0;
    /// Points growing upward (`Screen`). Does not redraw by itself.
    virtual void setFrame(const Rect& frame) = 0;
    /// Lays the content out and draws it once off the screen, so that the first real show is fast.
    virtual void layOutContent() = 0;
    /// Called when the loop is idle and the state of the next session is likely to be known. An adapter may draw the
    /// first frame ahead of the key press. `frame` is where the panel would appear.
    virtual void prepare(const Rect& frame) = 0;
    virtual void orderFront() = 0;
    /// Shows the panel in front of everything, without activating this program. The content has been sent to the screen
    /// when it returns.
    virtual void orderFrontRegardless() = 0;
    virtual void orderOut() = 0;
};

}  // namespace ferrowyn
