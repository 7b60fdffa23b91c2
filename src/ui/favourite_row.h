#pragma once

#include <QWidget>
#include <memory>
#include <string>

#include "ui/icon_images.h"
#include "ui/symbol_images.h"

namespace ferrowyn {

struct WindowTexts;
class IconImage;
class WindowButton;

/// A pinned application: its icon, name and star, and a button that removes it. Main thread.
class FavouriteRow final : public QWidget {
    Q_OBJECT

public:
    FavouriteRow(const std::string& name, std::shared_ptr<const IconImage> icon, const WindowTexts& texts);

    [[nodiscard]] WindowButton& removeButton() { return *remove_; }
    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    /// As they are when lines run from left to right.
    [[nodiscard]] QRectF nameRect() const;
    [[nodiscard]] QRectF starRect() const;

    QString name_;
    std::shared_ptr<const IconImage> icon_;
    WindowButton* remove_ = nullptr;
    IconImages icons_;
    SymbolImages symbols_;
};

}  // namespace ferrowyn
