#pragma once

#include <QSpinBox>

namespace ferrowyn {

/// A number between two buttons that decrease and increase it by one. Main thread.
class Stepper final : public QSpinBox {
    Q_OBJECT

public:
    Stepper(int minimum, int maximum);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    enum class Part { none, fewer, more };

    [[nodiscard]] QRectF rectOf(Part part) const;
    [[nodiscard]] Part partAt(const QPointF& position) const;
    void paintPart(QPainter& painter, Part part);

    Part pressed_ = Part::none;
};

}  // namespace ferrowyn
