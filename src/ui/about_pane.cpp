#include "ui/about_pane.h"

#include "core/texts.h"
#include "platform/platform.h"
#include "ui/about_content.h"

namespace ferrowyn {

namespace {

constexpr int iconSize = 96;

}  // namespace

AboutPane::AboutPane(const Platform& platform) : SettingsPaneView({platform.texts.windows.settings.aboutTitle, {}}) {
    addWidget(new AboutContent(platform, iconSize));
}

}  // namespace ferrowyn
