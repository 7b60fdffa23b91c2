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

    /// The address of the widget's own view.
    [[nodiscard]] virtual std::uintptr_t view() const = 0;
    /// Makes the widget fill a view of this size.
    virtual void fill(const Size& size) = 0;
    /// Lets the widget know whether it can be seen; what it shows is laid out before this returns.
    virtual void setVisible(bool isVisible) = 0;
};

/// Puts the widget into the view at this address. Both outlive the result.
using WidgetHost = std::function<std::unique_ptr<HostedWidget>(QWidget& widget, std::uintptr_t view)>;

}  // namespace ferrowyn
