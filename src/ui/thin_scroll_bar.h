#pragma once

#include <QScrollBar>

namespace ferrowyn {

/// A vertical scroll bar without arrows, as quiet as what it stands beside. Main thread.
class ThinScrollBar final : public QScrollBar {
    Q_OBJECT

public:
    explicit ThinScrollBar(QWidget* parent);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    [[nodiscard]] QRectF thumb() const;
    /// The value at which the thumb's upper edge stands here.
    [[nodiscard]] int valueAt(double top) const;

    double grabbedAt_ = 0;
};

}  // namespace ferrowyn
