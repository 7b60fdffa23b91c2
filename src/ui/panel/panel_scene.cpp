#include "ui/panel/panel_scene.h"

#include <QPainter>

#include "core/window_presentation.h"
#include "services/icon_provider.h"
#include "ui/common/display_text.h"
#include "ui/panel/footer_view.h"
#include "ui/panel/panel_messages.h"
#include "ui/panel/row_views.h"
#include "ui/panel/search_line_view.h"
#include "ui/panel/visual_effect_background.h"

namespace ferrowyn {

namespace {

bool intersects(const Rect& a, const Rect& b) {
    return toQt(a).intersects(toQt(b));
}

}  // namespace

PanelGeometry PanelScene::geometry(const Size& size) const {
    PanelGeometry::Input input{layout, size, 0, {}, showsHints};
    if (showsRows()) {
        input.rowCount = static_cast<int>(rows.size());
    }
    if (layout == SwitcherLayout::grouped) {
        for (int index = 0; index < input.rowCount; ++index) {
            if (rows[static_cast<std::size_t>(index)].startsGroup) {
                input.groupStarts.push_back(index);
            }
        }
    }
    return PanelGeometry(std::move(input));
}

std::optional<Rect> PanelScene::favouriteButton(int index, const Rect& rect) const {
    const auto& row = rows.at(static_cast<std::size_t>(index));
    const bool isSelected = index == selectedIndex;
    if (layout == SwitcherLayout::grid) {
        return WindowCardView{row, nullptr, isSelected, index + 1, {}}.favouriteButton(rect);
    }
    return WindowRowView{row, nullptr, isSelected, index + 1, true, false, {}}.favouriteButton(rect);
}

int PanelScene::paint(QPainter& painter, const PanelGeometry& geometry, const Rect& exposed,
                      const PaintContext& context) const {
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    const Rect panel{0, 0, geometry.size().width, geometry.size().height};
    const VisualEffectBackground background{VisualEffectBackground::Material::panel,
                                            context.theme.isTranslucent
                                                ? VisualEffectBackground::BlendingMode::behindWindow
                                                : VisualEffectBackground::BlendingMode::withinWindow};
    background.paint(painter, panel, context);
    if (intersects(exposed, geometry.searchLine())) {
        const SearchLineView line{display_text::singleLine(query), layout, static_cast<int>(rows.size()), caretOpacity};
        line.paint(painter, geometry.searchLine(), context);
    }
    int paintedRows = 0;
    if (intersects(exposed, geometry.body())) {
        if (!isAccessibilityTrusted) {
            PermissionStateView{isButtonHovered, isButtonPressed}.paint(painter, geometry.body(), context);
        } else if (rows.empty()) {
            EmptyStateView{WindowPresentation::emptyState(query)}.paint(painter, geometry.body(), context);
        } else {
            paintedRows = paintRows(painter, geometry, exposed, context);
        }
    }
    if (const auto footer = geometry.footer(); footer && intersects(exposed, *footer)) {
        const FooterView view{WindowPresentation::footerHints(modifier, layout, context.texts),
                              staysOpen ? WindowPresentation::stayingOpenNote : std::string_view()};
        view.paint(painter, *footer, context);
    }
    background.paintOutline(painter, panel, context);
    return paintedRows;
}

int PanelScene::paintRows(QPainter& painter, const PanelGeometry& geometry, const Rect& exposed,
                          const PaintContext& context) const {
    painter.save();
    painter.setClipRect(toQt(geometry.body()), Qt::IntersectClip);
    int painted = 0;
    const auto [first, last] = geometry.visibleRows(scroll);
    for (int index = first; index < last; ++index) {
        if (const auto header = geometry.header(index, scroll); header && intersects(*header, exposed)) {
            paintHeader(painter, index, *header, context);
        }
        const Rect rect = geometry.row(index, scroll);
        if (intersects(rect, exposed)) {
            paintRow(painter, index, rect, context);
            ++painted;
        }
    }
    painter.restore();
    return painted;
}

void PanelScene::paintRow(QPainter& painter, int index, const Rect& rect, const PaintContext& context) const {
    const auto& row = rows[static_cast<std::size_t>(index)];
    const bool isSelected = index == selectedIndex;
    const auto toggle = [this, &row] { onToggleFavourite(row.window); };
    if (layout == SwitcherLayout::grid) {
        WindowCardView{row, icon(row.window), isSelected, index + 1, toggle}.paint(painter, rect, context);
        return;
    }
    const bool isGrouped = layout == SwitcherLayout::grouped;
    WindowRowView{row, icon(row.window), isSelected, index + 1, !isGrouped, isGrouped, toggle}.paint(painter, rect,
                                                                                                     context);
}

void PanelScene::paintHeader(QPainter& painter, int index, const Rect& rect, const PaintContext& context) const {
    const auto& row = rows[static_cast<std::size_t>(index)];
    GroupHeaderView{display_text::singleLine(row.window->appName), icon(row.window), row.groupSize}.paint(painter, rect,
                                                                                                          context);
}

std::shared_ptr<const IconImage> PanelScene::icon(const AppWindow& window) const {
    return icons.icon(window).image;
}

namespace {

/// Compares exactly what is painted of a row, which differs from what its equality compares.
bool looksTheSame(const SwitcherViewModel::Row& a, const SwitcherViewModel::Row& b) {
    const AppWindow& first = a.window;
    const AppWindow& second = b.window;
    return first.title == second.title && first.appName == second.appName && first.isMinimized == second.isMinimized &&
           first.isFullScreen == second.isFullScreen && first.isOnActiveSpace == second.isOnActiveSpace &&
           a.highlightedTitleIndices == b.highlightedTitleIndices && a.startsGroup == b.startsGroup &&
           a.groupSize == b.groupSize && a.isFavourite == b.isFavourite;
}

}  // namespace

PreviewRecord::PreviewRecord(const PanelScene& scene, const PanelGeometry& geometry, const Theme& theme)
    : size_(geometry.size()),
      theme_(theme),
      visible_(geometry.visibleRows(scene.scroll)),
      rowCount_(scene.rows.size()),
      selectedIndex_(scene.selectedIndex),
      query_(scene.query),
      isAccessibilityTrusted_(scene.isAccessibilityTrusted),
      layout_(scene.layout),
      modifier_(scene.modifier),
      showsHints_(scene.showsHints),
      staysOpen_(scene.staysOpen),
      scroll_(scene.scroll) {
    visibleRows_.assign(scene.rows.begin() + visible_.first, scene.rows.begin() + visible_.last);
    for (const auto& row : visibleRows_) {
        visibleIcons_.push_back(scene.icons.icon(row.window).image);
    }
}

bool PreviewRecord::matches(const PanelScene& scene, const Theme& theme) const {
    return rowCount_ == scene.rows.size() && selectedIndex_ == scene.selectedIndex && query_ == scene.query &&
           isAccessibilityTrusted_ == scene.isAccessibilityTrusted && layout_ == scene.layout &&
           modifier_ == scene.modifier && showsHints_ == scene.showsHints && staysOpen_ == scene.staysOpen &&
           scroll_ == scene.scroll && !scene.isButtonHovered && theme_ == theme && rowsMatch(scene);
}

bool PreviewRecord::rowsMatch(const PanelScene& scene) const {
    for (std::size_t position = 0; position < visibleRows_.size(); ++position) {
        const auto& row = scene.rows[static_cast<std::size_t>(visible_.first) + position];
        if (!looksTheSame(visibleRows_[position], row) ||
            visibleIcons_[position] != scene.icons.icon(row.window).image) {
            return false;
        }
    }
    return true;
}

}  // namespace ferrowyn
