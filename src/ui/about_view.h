#pragma once

#include <QWidget>
#include <functional>

namespace ferrowyn {

struct Platform;

/// The content of the about window. Main thread. The platform outlives it.
class AboutView final : public QWidget {
    Q_OBJECT

public:
    /// `onClose` closes the about window.
    AboutView(const Platform& platform, std::function<void()> onClose);

protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace ferrowyn
