#pragma once

#include <memory>
#include <vector>

#include "core/switcher_view_model.h"
#include "platform/icon_source.h"
#include "ui/panel_scene.h"
#include "ui/theme.h"

namespace ferrowyn {

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
