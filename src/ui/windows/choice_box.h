#pragma once

#include <QComboBox>

namespace ferrowyn {

/// A drop-down list that shows the chosen text. Main thread.
class ChoiceBox final : public QComboBox {
    Q_OBJECT

public:
    ChoiceBox();

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void adopt();
};

}  // namespace ferrowyn
