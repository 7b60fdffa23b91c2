#pragma once

#include <QScrollArea>
#include <QScrollBar>
#include <memory>

namespace ferrowyn {

namespace window_metrics {

/// What the desktop's frame takes of a screen's height, which is known only once a window is there: about that much.
inline constexpr int titleBarHeight = 32;

}  // namespace window_metrics

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

/// Scrolls downward what does not fit, without a frame or a ground of its own, and asks for room again whenever its
/// content does. Main thread.
class PlainScrollArea : public QScrollArea {
    Q_OBJECT

public:
    PlainScrollArea();

protected:
    /// Once; the area owns it from then on.
    void setContent(QWidget* content);
    bool eventFilter(QObject* watched, QEvent* event) override;
};

/// Asks for as much room as its content needs, but for no more than the screen has: there the content scrolls
/// downward, so that its last button can still be reached. Main thread.
class FittingScrollArea final : public PlainScrollArea {
    Q_OBJECT

public:
    explicit FittingScrollArea(std::unique_ptr<QWidget> content);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

private:
    [[nodiscard]] QSize contentSize() const;
};

}  // namespace ferrowyn
