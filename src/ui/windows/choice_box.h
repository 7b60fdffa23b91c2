#pragma once

#include <QComboBox>

namespace ferrowyn {

/// One of several texts, the others in a list that opens below it. Main thread.
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
