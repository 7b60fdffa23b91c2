#pragma once

#include <memory>

#include "platform/qt/hosted_widget.h"

class QWindow;

namespace ferrowyn {

/// A widget whose window is placed in a view that the toolkit did not make. Main thread, with a QApplication.
class QtHostedWidget final : public HostedWidget {
public:
    /// Both outlive this object.
    QtHostedWidget(QWidget& widget, std::uintptr_t view);
    ~QtHostedWidget() override;
    QtHostedWidget(const QtHostedWidget&) = delete;
    QtHostedWidget& operator=(const QtHostedWidget&) = delete;

    void fill(const Size& size) override;
    void setVisible(bool isVisible) override;
    void movePointer(const Point& place) override;
    void removePointer() override;

private:
    QWidget& widget_;
    /// The toolkit's window for the view.
    std::unique_ptr<QWindow> parent_;
};

/// A `WidgetHost` that makes a QtHostedWidget.
[[nodiscard]] std::unique_ptr<HostedWidget> hostQtWidget(QWidget& widget, std::uintptr_t view);

}  // namespace ferrowyn
