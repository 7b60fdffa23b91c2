#pragma once

#include <memory>

#include "platform/status_item.h"
#include "ui/menu_colors.h"
#include "ui/paint_context.h"

class QPainter;
class QSvgRenderer;

namespace ferrowyn {

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

}  // namespace ferrowyn
