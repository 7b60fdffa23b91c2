#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "core/geometry.h"

class QWidget;

namespace ferrowyn {

/// A widget of the toolkit inside a view of the system. Main thread.
class HostedWidget {
public:
    virtual ~HostedWidget() = default;

    /// Makes the widget fill a view of this size.
    virtual void fill(const Size& size) = 0;
    /// Shows or hides the widget. Its content is laid out before this returns.
    virtual void setVisible(bool isVisible) = 0;
    /// The pointer is over the widget, at this place in points from its upper left corner. The widget gets no other
    /// event for that.
    virtual void movePointer(const Point& place) = 0;
    /// The pointer has left the widget.
    virtual void removePointer() = 0;
};

/// Puts the widget into the view at this address. Both outlive the result.
using WidgetHost = std::function<std::unique_ptr<HostedWidget>(QWidget& widget, std::uintptr_t view)>;

}  // namespace ferrowyn
