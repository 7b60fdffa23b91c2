#pragma once

#include <QWidget>

namespace ferrowyn {

/// The program's own icon. Main thread.
class ProductIcon final : public QWidget {
    Q_OBJECT

public:
    /// `side` in points; `name` is what a screen reader calls it.
    ProductIcon(int side, const QString& name);

protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace ferrowyn
