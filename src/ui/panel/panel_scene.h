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

/// Everything that one frame of the panel shows. It refers to the rows, of which there may be thousands, and does not
/// copy them.
struct PanelScene {
    const std::vector<SwitcherViewModel::Row>& rows;
    IconProvider& icons;
    int selectedIndex = 0;
    std::string query;
    bool isAccessibilityTrusted = false;
    SwitcherLayout layout = SwitcherLayout::list;
    SwitcherModifier modifier = SwitcherModifier::option;
    bool showsHints = true;
    /// Releasing the trigger does not switch.
    bool staysOpen = false;

    /// State that changes while the panel is open.
    double scroll = 0;
    double caretOpacity = 1;
    bool isButtonHovered = false;
    bool isButtonPressed = false;
    std::function<void(const AppWindow&)> onToggleFavourite;

    [[nodiscard]] bool showsRows() const { return isAccessibilityTrusted && !rows.empty(); }
    [[nodiscard]] PanelGeometry geometry(const Size& size) const;
    /// The rectangle of the star in that of the row; absent when the row has none.
    [[nodiscard]] std::optional<Rect> favouriteButton(int index, const Rect& rect) const;

    /// Paints the part of the panel inside `exposed`. Returns how many rows it painted.
    int paint(QPainter& painter, const PanelGeometry& geometry, const Rect& exposed, const PaintContext& context) const;

private:
    [[nodiscard]] std::shared_ptr<const IconImage> icon(const AppWindow& window) const;
    int paintRows(QPainter& painter, const PanelGeometry& geometry, const Rect& exposed,
                  const PaintContext& context) const;
    void paintRow(QPainter& painter, int index, const Rect& rect, const PaintContext& context) const;
    void paintHeader(QPainter& painter, int index, const Rect& rect, const PaintContext& context) const;
};

/// What a frame that was rendered in advance depends on. Only the visible rows are kept, so that comparing is cheap.
class PreviewRecord {
public:
    PreviewRecord(const PanelScene& scene, const PanelGeometry& geometry, const Theme& theme);

    /// Whether this scene, at the same size, looks like the recorded one.
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
