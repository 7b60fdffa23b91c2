#pragma once

#include <QLayout>
#include <vector>

namespace ferrowyn {

/// Puts widgets beside each other as long as they fit, and the others on further lines. Main thread.
class FlowLayout final : public QLayout {
    Q_OBJECT

public:
    explicit FlowLayout(int spacing);
    ~FlowLayout() override;
    FlowLayout(const FlowLayout&) = delete;
    FlowLayout& operator=(const FlowLayout&) = delete;

    /// Takes ownership of the item.
    void addItem(QLayoutItem* item) override;
    [[nodiscard]] int count() const override { return static_cast<int>(items_.size()); }
    [[nodiscard]] QLayoutItem* itemAt(int index) const override;
    QLayoutItem* takeAt(int index) override;

    [[nodiscard]] Qt::Orientations expandingDirections() const override { return {}; }
    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    /// The size of all widgets on one line.
    [[nodiscard]] QSize sizeHint() const override;
    /// The size in which each of the widgets fits.
    [[nodiscard]] QSize minimumSize() const override;
    void setGeometry(const QRect& rect) override;

private:
    /// The rectangles of the items in this width, from left to right.
    [[nodiscard]] std::vector<QRect> places(int width) const;

    std::vector<QLayoutItem*> items_;
};

}  // namespace ferrowyn
