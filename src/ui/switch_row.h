#pragma once

#include <QCheckBox>

#include "core/texts.h"

namespace ferrowyn {

/// One row of a group: a text and, at the right edge, a switch. The whole row can be clicked. Main thread.
class SwitchRow final : public QCheckBox {
    Q_OBJECT

public:
    explicit SwitchRow(const Phrase& text);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    [[nodiscard]] bool hitButton(const QPoint& position) const override { return rect().contains(position); }

private:
    [[nodiscard]] QRectF switchRect() const;
    /// What a row of this width leaves for the text, and how high the text is then.
    [[nodiscard]] int textWidth(int width) const;
    [[nodiscard]] int textHeight(int width) const;
};

}  // namespace ferrowyn
