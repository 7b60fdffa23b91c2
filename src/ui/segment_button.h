#pragma once

#include <QRadioButton>
#include <string>
#include <string_view>

#include "core/texts.h"
#include "ui/symbol_images.h"

namespace ferrowyn {

/// One of several choices side by side, its symbol over its title. The arrow keys choose the neighbours. Main thread.
class SegmentButton final : public QRadioButton {
    Q_OBJECT

public:
    SegmentButton(std::string_view symbol, const Phrase& title);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] const std::string& symbol() const { return symbol_; }

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    [[nodiscard]] bool hitButton(const QPoint& position) const override { return rect().contains(position); }

private:
    std::string symbol_;
    SymbolImages symbols_;
};

}  // namespace ferrowyn
