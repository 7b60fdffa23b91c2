#include "ui/favourites_pane.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "core/app_window.h"
#include "core/texts.h"
#include "platform/icon_source.h"
#include "platform/workspace.h"
#include "services/favourites_store.h"
#include "services/icon_provider.h"
#include "services/preferences.h"
#include "ui/favourite_row.h"
#include "ui/setting_binding.h"
#include "ui/settings_group.h"
#include "ui/settings_lines.h"
#include "ui/switch_row.h"
#include "ui/text_label.h"
#include "ui/window_button.h"

namespace ferrowyn {

FavouritesPane::FavouritesPane(const Platform& platform, const SettingsServices& services)
    : SettingsPaneView({platform.texts.windows.settings.favouritesTitle, {}}),
      platform_(platform),
      services_(services) {
    addOrdering();
    addPinnedApps();
}

void FavouritesPane::addOrdering() {
    SettingsGroup& group = addGroup();
    auto* const first = new SwitchRow({platform_.texts.windows.settings.favouritesFirst, {}});
    group.addRow(first);
    auto* const note = new TextLabel(TextStyle::note, Tone::secondary);
    group.addNote(note);
    keep(bindSwitch(*first, services_.preferences.favouritesFirst));
    // The keys that pin depend on the trigger.
    keep(services_.preferences.modifier.published().subscribe([this, first, note](SwitcherModifier trigger) {
        note->setPhrase(settings_lines::favouritesFirstNote(trigger, platform_.texts));
        first->setAccessibleDescription(note->text());
    }));
}

void FavouritesPane::addPinnedApps() {
    const WindowTexts::Settings& words = platform_.texts.windows.settings;
    pinned_ = &addGroup({words.pinnedSection, {}});
    nothingPinned_ = pinned_->addInsetRow(new TextLabel({words.nothingPinned, {}}, TextStyle::body, Tone::secondary));
    removeAll_ = new WindowButton({words.removeAll, {}});
    addWidget(removeAll_, Qt::AlignRight);
    connect(removeAll_, &QAbstractButton::clicked, this, [this] { services_.favourites.removeAll(); });
    keep(services_.favourites.bundleIdentifiers().subscribe(
        [this](const std::vector<std::string>& identifiers) { showFavourites(identifiers); }));
}

void FavouritesPane::showFavourites(const std::vector<std::string>& identifiers) {
    std::optional<std::size_t> focused;
    for (std::size_t index = 0; index < rows_.size(); ++index) {
        if (rows_[index]->removeButton().hasFocus()) {
            focused = index;
        }
        pinned_->removeRow(rows_[index]);
    }
    rows_.clear();
    for (const auto& identifier : identifiers) {
        const std::string name = services_.favourites.displayName(identifier);
        auto* const row = new FavouriteRow(
            name, [this, identifier, name] { return icon(identifier, name); }, platform_.texts.windows);
        connect(&row->removeButton(), &QAbstractButton::clicked, this,
                [this, identifier] { services_.favourites.remove(identifier); });
        pinned_->addRow(row);
        // Not only when the layout gets to it: the keyboard can go to nothing that is hidden.
        row->show();
        rows_.push_back(row);
    }
    nothingPinned_->setVisible(rows_.empty());
    removeAll_->setEnabled(!rows_.empty());
    // Rows stand before the button in the order of the Tab key too.
    QWidget* before = nullptr;
    for (FavouriteRow* const row : rows_) {
        if (before != nullptr) {
            setTabOrder(before, &row->removeButton());
        }
        before = &row->removeButton();
    }
    if (before != nullptr) {
        setTabOrder(before, removeAll_);
    }
    if (focused && !rows_.empty()) {
        rows_[std::min(*focused, rows_.size() - 1)]->removeButton().setFocus(Qt::OtherFocusReason);
    }
}

std::shared_ptr<const IconImage> FavouritesPane::icon(const std::string& identifier, const std::string& name) const {
    for (const auto& application : platform_.workspace.runningApplications()) {
        if (application.bundleIdentifier == identifier) {
            AppWindow window;
            window.pid = application.pid;
            window.bundleIdentifier = identifier;
            window.appName = application.localizedName.value_or(name);
            window.bundleURL = application.bundleURL;
            return services_.icons.icon(window).image;
        }
    }
    // Not through the provider: it would go on showing a stand-in when the application starts.
    if (const auto path = platform_.workspace.installedApplicationPath(identifier)) {
        if (auto image = platform_.icons.iconForFile(*path)) {
            return image;
        }
    }
    return platform_.icons.genericApplicationIcon(name);
}

}  // namespace ferrowyn
