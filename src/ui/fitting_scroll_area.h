#pragma once

#include <memory>

#include "ui/plain_scroll_area.h"

namespace ferrowyn {

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
