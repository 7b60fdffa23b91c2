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

    /// Takes over what it is given, as layouts do.
    void addItem(QLayoutItem* item) override;
    [[nodiscard]] int count() const override { return static_cast<int>(items_.size()); }
    [[nodiscard]] QLayoutItem* itemAt(int index) const override;
    QLayoutItem* takeAt(int index) override;

    [[nodiscard]] Qt::Orientations expandingDirections() const override { return {}; }
    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    /// All on one line.
    [[nodiscard]] QSize sizeHint() const override;
    /// As wide as the widest of them.
    [[nodiscard]] QSize minimumSize() const override;
    void setGeometry(const QRect& rect) override;

private:
    /// Where each item stands in a width, from left to right.
    [[nodiscard]] std::vector<QRect> places(int width) const;

    std::vector<QLayoutItem*> items_;
};

}  // namespace ferrowyn
