#pragma once

#include <QScrollArea>
#include <memory>

namespace ferrowyn {

/// A vertical scroll area without a frame or a background. It asks for a new size when its content does. Main thread.
class PlainScrollArea : public QScrollArea {
    Q_OBJECT

public:
    PlainScrollArea();

protected:
    /// To be called once. The area takes ownership.
    void setContent(QWidget* content);
    bool eventFilter(QObject* watched, QEvent* event) override;
};

/// As large as its content, but not larger than the screen: there the content scrolls, so that its last button can be
/// reached. Main thread.
class FittingScrollArea final : public PlainScrollArea {
    Q_OBJECT

public:
    /// An estimate of the height of a utility window's frame in points. It is known only when the window is on the
    /// screen.
    static constexpr int titleBarHeight = 32;

    explicit FittingScrollArea(std::unique_ptr<QWidget> content);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

private:
    [[nodiscard]] QSize contentSize() const;
};

}  // namespace ferrowyn
