#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/switcher_options.h"
#include "core/switcher_view_model.h"
#include "platform/icon_source.h"
#include "ui/paint_context.h"
#include "ui/panel_geometry.h"

class QPainter;

namespace ferrowyn {

class IconProvider;

/// Everything that one frame of the panel shows. The rows are referred to, not copied: there may be thousands.
struct PanelScene {
    const std::vector<SwitcherViewModel::Row>& rows;
    IconProvider& icons;
    int selectedIndex = 0;
    std::string query;
    bool isAccessibilityTrusted = false;
    SwitcherLayout layout = SwitcherLayout::list;
    SwitcherModifier modifier = SwitcherModifier::option;
    bool showsHints = true;
    /// Letting go of the trigger does not switch.
    bool staysOpen = false;

    /// What passes while the panel is open.
    double scroll = 0;
    double caretOpacity = 1;
    bool isButtonHovered = false;
    bool isButtonPressed = false;
    std::function<void(const AppWindow&)> onToggleFavourite;

    [[nodiscard]] bool showsRows() const { return isAccessibilityTrusted && !rows.empty(); }
    [[nodiscard]] PanelGeometry geometry(const Size& size) const;
    /// Where the star of this row stands in the row's rectangle; nothing when it has none.
    [[nodiscard]] std::optional<Rect> favouriteButton(int index, const Rect& rect) const;

    /// Paints what of the panel lies inside `exposed`; returns how many rows that were.
    int paint(QPainter& painter, const PanelGeometry& geometry, const Rect& exposed, const PaintContext& context) const;

private:
    [[nodiscard]] std::shared_ptr<const IconImage> icon(const AppWindow& window) const;
    int paintRows(QPainter& painter, const PanelGeometry& geometry, const Rect& exposed,
                  const PaintContext& context) const;
    void paintRow(QPainter& painter, int index, const Rect& rect, const PaintContext& context) const;
    void paintHeader(QPainter& painter, int index, const Rect& rect, const PaintContext& context) const;
};

}  // namespace ferrowyn
