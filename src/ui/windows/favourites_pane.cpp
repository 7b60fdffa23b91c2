#include "ui/windows/favourites_pane.h"

#include <QFontMetrics>
#include <QHBoxLayout>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>
#include <utility>

#include "core/app_window.h"
#include "core/texts.h"
#include "platform/icon_source.h"
#include "platform/workspace.h"
#include "services/favourites_store.h"
#include "services/icon_provider.h"
#include "services/preferences.h"
#include "ui/common/accessibility.h"
#include "ui/common/display_text.h"
#include "ui/common/text_line.h"
#include "ui/common/translation.h"
#include "ui/windows/controls.h"
#include "ui/windows/labels.h"
#include "ui/windows/utility_theme.h"

namespace ferrowyn {

namespace {

constexpr double iconSide = 24;
constexpr double behindIcon = 10;
constexpr double starPoints = 11;
constexpr double starSide = SymbolImages::boxSide(starPoints);
constexpr double aroundStar = 8;
constexpr int buttonOverhang = 5;

}  // namespace

FavouriteRow::FavouriteRow(const std::string& name, IconLoader loadIcon, const UtilityTexts& texts)
    : name_(display_text::singleLine(name)), loadIcon_(std::move(loadIcon)) {
    remove_ = makeSymbolButton(translated(settings_lines::removeHelp(name_.toStdString(), texts)), "minus.circle.fill");
    auto* const line = new QHBoxLayout(this);
    // The symbol in the button stands as far from the edge as the switches do.
    constexpr int behindButton = group_metrics::rowInset - buttonOverhang;
    line->setContentsMargins(isRightToLeft() ? behindButton : 0, 0, isRightToLeft() ? 0 : behindButton, 0);
    line->addStretch();
    line->addWidget(remove_);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAccessibleRole(*this, QAccessible::ListItem);
    setAccessibleName(name_);
}

QSize FavouriteRow::sizeHint() const {
    return {minimumSizeHint().width(), group_metrics::rowHeight};
}

QRectF FavouriteRow::nameRect() const {
    const double left = group_metrics::rowInset + iconSide + behindIcon;
    const double right = starRect().left() - aroundStar;
    return {left, 0, right - left, static_cast<double>(height())};
}

QRectF FavouriteRow::starRect() const {
    const QRectF button = control_painting::mirrored(*this, remove_->geometry());
    return {button.left() - aroundStar - starSide, (height() - starSide) / 2, starSide, starSide};
}

void FavouriteRow::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    layout()->activate();
    // A tooltip shows the full name where it is cut.
    const bool isCut = QFontMetricsF(fontFor(TextStyle::body)).horizontalAdvance(name_) > nameRect().width();
    setToolTip(isCut ? name_ : QString());
}

void FavouriteRow::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const UtilityTheme theme = UtilityTheme::current();
    const double scale = painter.deviceTransform().m11();
    if (loadIcon_) {
        icon_ = std::exchange(loadIcon_, nullptr)();
    }
    const QImage& image = icons_.image(icon_, static_cast<int>(std::lround(iconSide * scale)));
    const QRectF iconRect(group_metrics::rowInset, (height() - iconSide) / 2, iconSide, iconSide);
    painter.drawImage(control_painting::mirrored(*this, iconRect), image);
    control_painting::paintText(painter, *this, control_painting::mirrored(*this, nameRect()), name_,
                                fontFor(TextStyle::body), theme.textPrimary);
    const QPointF star = control_painting::mirrored(*this, starRect()).center();
    symbols_.paint(painter, "star.fill", star.x(), star.y(), starPoints, theme.favourite);
}

FavouritesPane::FavouritesPane(const Platform& platform, const SettingsServices& services)
    : SettingsPaneView({platform.texts.utility.settings.favouritesTitle, {}}),
      platform_(platform),
      services_(services) {
    addOrdering();
    addPinnedApps();
}

void FavouritesPane::addOrdering() {
    SettingsGroup& group = addGroup();
    auto* const first = new SwitchRow({platform_.texts.utility.settings.favouritesFirst, {}});
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
    const UtilityTexts::Settings& words = platform_.texts.utility.settings;
    pinned_ = &addGroup({words.pinnedSection, {}});
    nothingPinned_ = pinned_->addInsetRow(new TextLabel({words.nothingPinned, {}}, TextStyle::body, Tone::secondary));
    removeAll_ = makeButton({words.removeAll, {}});
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
            name, [this, identifier, name] { return icon(identifier, name); }, platform_.texts.utility);
        connect(&row->removeButton(), &QAbstractButton::clicked, this,
                [this, identifier] { services_.favourites.remove(identifier); });
        pinned_->addRow(row);
        // Shown at once, not only when the layout is next computed: a hidden button cannot get the focus.
        row->show();
        rows_.push_back(row);
    }
    nothingPinned_->setVisible(rows_.empty());
    removeAll_->setEnabled(!rows_.empty());
    // With the Tab key too, the rows come before the button that removes all.
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
    // Not through the icon provider, which would keep the stand-in when the application starts.
    if (const auto path = platform_.workspace.installedApplicationPath(identifier)) {
        if (auto image = platform_.icons.iconForFile(*path)) {
            return image;
        }
    }
    return platform_.icons.genericApplicationIcon(name);
}

}  // namespace ferrowyn
