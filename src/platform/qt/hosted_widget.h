#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "core/geometry.h"

class QWidget;

namespace ferrowyn {

/// A widget of the toolkit within one of the system's views. Main thread.
class HostedWidget {
public:
    virtual ~HostedWidget() = default;

    /// Makes the widget fill a view of this size.
    virtual void fill(const Size& size) = 0;
    /// Lets the widget know whether it can be seen; what it shows is laid out before this returns.
    virtual void setVisible(bool isVisible) = 0;
    /// The pointer is over the widget, at this place in points from its upper left corner, and nothing but this call
    /// tells it so.
    virtual void movePointer(const Point& place) = 0;
    /// The pointer is over the widget no longer.
    virtual void removePointer() = 0;
};

/// Puts the widget into the view at this address. Both outlive the result.
using WidgetHost = std::function<std::unique_ptr<HostedWidget>(QWidget& widget, std::uintptr_t view)>;

}  // namespace ferrowyn
