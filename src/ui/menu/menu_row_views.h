#pragma once

#include <QColor>
#include <QString>
#include <memory>

#include "platform/status_item.h"
#include "ui/common/paint_context.h"
#include "ui/common/theme.h"

class QPainter;
class QSvgRenderer;

namespace ferrowyn {

/// The colours of the menu, derived from the panel's. A plain value.
struct MenuColors {
    QColor background;
    QColor edge;
    QColor separator;
    QColor label;
    QColor secondaryLabel;
    QColor tertiaryLabel;
    QColor disabledLabel;
    QColor orange;
    QColor accent;
    /// Under the gear while the pointer is on it: the label colour at 10 %.
    QColor gearHover;
    QColor selection;
    QColor selectionText;
    QColor selectionTextSecondary;

    [[nodiscard]] QColor tint(MenuTint tint) const;
    [[nodiscard]] static MenuColors fromTheme(const Theme& theme);
};

/// The menu's first row: the program's icon and name, its state, and a gear that opens the settings. It is as wide as
/// the menu. Main thread.
class MenuHeaderView {
public:
    MenuHeaderView();
    ~MenuHeaderView();
    MenuHeaderView(const MenuHeaderView&) = delete;
    MenuHeaderView& operator=(const MenuHeaderView&) = delete;

    /// The parts within the header's rectangle, y growing downward, in a language that runs from left to right.
    [[nodiscard]] static Rect iconRect(const Rect& header);
    [[nodiscard]] static Rect gearArea(const Rect& header);
    [[nodiscard]] static Rect titleRect(const Rect& header);
    [[nodiscard]] static Rect subtitleRect(const Rect& header);

    /// To be called when the pointer has moved or left. They return true when the header must be painted again. `gear`
    /// is the rectangle in which the gear is painted.
    bool pointerMoved(const Rect& gear, const Point& point);
    bool pointerExited();
    [[nodiscard]] bool isHoveringGear() const { return isHoveringGear_; }

    /// `hasKeyboard` says that the arrow keys have selected the gear.
    void paint(QPainter& painter, const Rect& rect, const MenuHeader& header, bool hasKeyboard,
               const MenuColors& colors, const PaintContext& context);

private:
    std::unique_ptr<QSvgRenderer> icon_;
    bool isHoveringGear_ = false;
};

/// One row of the menu below the header: an item, a section's title or a separator. A plain value.
struct MenuRowView {
    const MenuRow& row;
    bool isSelected = false;

    void paint(QPainter& painter, const Rect& rect, const MenuColors& colors, const PaintContext& context) const;
    /// The width of the menu at which nothing of the row is cut.
    [[nodiscard]] double neededWidth(const PaintContext& context) const;
    /// The key equivalent as this desktop writes it; empty for none.
    [[nodiscard]] static QString keyEquivalentText(const MenuRow& row, const TextTable& texts);

private:
    void paintItem(QPainter& painter, const Rect& rect, const MenuColors& colors, const PaintContext& context) const;
    [[nodiscard]] QString suffixText() const;
};

}  // namespace ferrowyn
