#include "ui/preview_record.h"

#include "services/icon_provider.h"

namespace ferrowyn {

namespace {

/// Narrower and wider than the equality of rows: everything that is drawn, and nothing else.
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
