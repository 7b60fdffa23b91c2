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

/// The colours of the program's own menu, light or dark as the panel's. A plain value.
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

/// The menu's first row: the program's icon and name, how it is doing, and a gear that opens the settings. It is 58
/// high and stretches with the menu. Main thread.
class MenuHeaderView {
public:
    static constexpr double iconSide = 32;
    static constexpr double iconLeft = 14;
    static constexpr double gearSide = 26;
    static constexpr double gearRightInset = 14;
    static constexpr double textLeft = 54;
    static constexpr double gearSymbolPoints = 14;

    MenuHeaderView();
    ~MenuHeaderView();
    MenuHeaderView(const MenuHeaderView&) = delete;
    MenuHeaderView& operator=(const MenuHeaderView&) = delete;

    /// The parts within the header's rectangle, y growing downward, where lines run from left to right.
    [[nodiscard]] static Rect iconRect(const Rect& header);
    [[nodiscard]] static Rect gearArea(const Rect& header);
    [[nodiscard]] static Rect titleRect(const Rect& header);
    [[nodiscard]] static Rect subtitleRect(const Rect& header);

    /// The pointer moved to a point, or left; true when the picture has changed. The gear's area is as it is drawn.
    bool pointerMoved(const Rect& gear, const Point& point);
    bool pointerExited();
    [[nodiscard]] bool isHoveringGear() const { return isHoveringGear_; }

    /// `hasKeyboard` while the arrow keys have chosen the gear.
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
    /// How wide the menu has to be for the row to be whole.
    [[nodiscard]] double neededWidth(const PaintContext& context) const;
    /// The key equivalent as this desktop writes it; empty for none.
    [[nodiscard]] static QString keyEquivalentText(const MenuRow& row, const TextTable& texts);

private:
    void paintItem(QPainter& painter, const Rect& rect, const MenuColors& colors, const PaintContext& context) const;
    [[nodiscard]] QString suffixText() const;
};

}  // namespace ferrowyn
