#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "core/geometry.h"

class QImage;
class QWidget;

namespace ferrowyn {

/// What the panel's content draws behind everything else.
enum class PanelBackground {
    /// A colour, to the square corners: nothing blends the panel with what is behind it.
    opaque,
    /// A colour that lets a little of what is behind the panel through, with round corners. Needs a compositor.
    translucent,
    /// Nothing: the host has a material of the desktop behind the content, with the same round corners.
    material,
};

/// What the panel shows. Made by the user interface, hosted by the adapter. Main thread.
class PanelContent {
public:
    virtual ~PanelContent() = default;

    /// The widget to host, owned by this content; null where nothing is drawn (the simulated desktop). Qt is the
    /// toolkit on every desktop, so the forward declaration is all that the logic ever knows of it.
    [[nodiscard]] virtual QWidget* widget() = 0;

    /// Makes the widget show what the model holds right now, without waiting for the loop: called before the panel is
    /// shown, so that the very first frame is right.
    virtual void synchronize() = 0;

    /// Opaque at first. The host says so whenever it changes.
    virtual void setBackground(PanelBackground background) = 0;

    /// Draws into the whole image, at the image's device pixel ratio, what the widget would show in its first frame if
    /// a session began now. Changes nothing else; nothing is drawn where `widget` is null.
    virtual void renderPreview(QImage& target) = 0;
    /// Whether the first frame of what the model holds right now is the picture that `renderPreview` drew last. Cheap:
    /// only what that picture shows is compared.
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
    /// Lays the content out and draws it once where nobody sees it, so that the first real show does not pay for it.
    virtual void layOutContent() = 0;
    /// The state that the next session will most likely open with is known and the loop is idle: an adapter may draw
    /// the frame ahead of the key press. `frame` is where it would appear.
    virtual void prepare(const Rect& frame) = 0;
    virtual void orderFront() = 0;
    /// In front of everything without activating this program. The content is on its way to the screen when it returns.
    virtual void orderFrontRegardless() = 0;
    virtual void orderOut() = 0;
};

}  // namespace ferrowyn
