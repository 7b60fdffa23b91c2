#pragma once

#include <QScrollArea>
#include <memory>

namespace ferrowyn {

/// Asks for as much room as its content needs, but for no more than the screen has: there the content scrolls
/// downward, so that its last button can still be reached. Main thread.
class FittingScrollArea final : public QScrollArea {
    Q_OBJECT

public:
    explicit FittingScrollArea(std::unique_ptr<QWidget> content);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    [[nodiscard]] QSize contentSize() const;
};

}  // namespace ferrowyn
