#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/platform.h"
#include "ui/settings_pane_view.h"
#include "ui/settings_services.h"

namespace ferrowyn {

class FavouriteRow;
class IconImage;
class WindowButton;

/// The pinned applications. Main thread. The platform and the services outlive it.
class FavouritesPane final : public SettingsPaneView {
    Q_OBJECT

public:
    FavouritesPane(const Platform& platform, const SettingsServices& services);

private:
    void addOrdering();
    void addPinnedApps();
    void showFavourites(const std::vector<std::string>& identifiers);
    [[nodiscard]] std::shared_ptr<const IconImage> icon(const std::string& identifier, const std::string& name) const;

    Platform platform_;
    SettingsServices services_;
    SettingsGroup* pinned_ = nullptr;
    QWidget* nothingPinned_ = nullptr;
    WindowButton* removeAll_ = nullptr;
    std::vector<FavouriteRow*> rows_;
};

}  // namespace ferrowyn
