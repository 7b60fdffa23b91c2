#pragma once

#include <memory>

#include "platform/macos/mac_hosted_widget.h"

class QWindow;

namespace ferrowyn {

/// A widget whose window the toolkit places in a view that is not its own. Main thread, with a QApplication.
class MacQtWidget final : public MacHostedWidget {
public:
    /// Both outlive this.
    MacQtWidget(QWidget& widget, std::uintptr_t view);
    ~MacQtWidget() override;
    MacQtWidget(const MacQtWidget&) = delete;
    MacQtWidget& operator=(const MacQtWidget&) = delete;

    [[nodiscard]] std::uintptr_t view() const override;
    void fill(const Size& size) override;
    void setVisible(bool isVisible) override;

private:
    QWidget& widget_;
    /// What stands in the toolkit for the view.
    std::unique_ptr<QWindow> parent_;
};

/// As a `MacWidgetHost`.
[[nodiscard]] std::unique_ptr<MacHostedWidget> hostQtWidget(QWidget& widget, std::uintptr_t view);

}  // namespace ferrowyn
