#pragma once

#include <QLabel>

namespace ferrowyn {

/// Keys as they stand on a key cap. Main thread.
class KeyCapLabel final : public QLabel {
    Q_OBJECT

public:
    KeyCapLabel();

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace ferrowyn
