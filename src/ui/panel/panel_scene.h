#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/switcher_options.h"
#include "core/switcher_view_model.h"
#include "platform/icon_source.h"
#include "ui/common/paint_context.h"
#include "ui/common/theme.h"
#include "ui/panel/panel_geometry.h"

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

/// What a frame that was drawn ahead of time depended on: only what is inside the panel is kept, so that comparing is
/// as cheap as one frame is small.
class PreviewRecord {
public:
    PreviewRecord(const PanelScene& scene, const PanelGeometry& geometry, const Theme& theme);

    /// Whether this scene, at the same size, would be drawn as the recorded one was.
    [[nodiscard]] bool matches(const PanelScene& scene, const Theme& theme) const;
    [[nodiscard]] const Size& size() const { return size_; }

private:
    [[nodiscard]] bool rowsMatch(const PanelScene& scene) const;

    Size size_;
    Theme theme_;
    PanelGeometry::Range visible_;
    std::vector<SwitcherViewModel::Row> visibleRows_;
    std::vector<std::shared_ptr<const IconImage>> visibleIcons_;
    std::size_t rowCount_ = 0;
    int selectedIndex_ = 0;
    std::string query_;
    bool isAccessibilityTrusted_ = false;
    SwitcherLayout layout_ = SwitcherLayout::list;
    SwitcherModifier modifier_ = SwitcherModifier::option;
    bool showsHints_ = true;
    bool staysOpen_ = false;
    double scroll_ = 0;
};

}  // namespace ferrowyn
