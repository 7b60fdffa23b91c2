#include "ui/windows/about_view.h"

#include <QDateTime>
#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>
#include <QVBoxLayout>
#include <chrono>
#include <utility>

#include "platform/main_loop.h"
#include "platform/platform.h"
#include "platform/workspace.h"
#include "ui/common/accessibility.h"
#include "ui/common/images.h"
#include "ui/common/translation.h"
#include "ui/windows/controls.h"
#include "ui/windows/labels.h"

namespace ferrowyn {

namespace about_lines {

std::string productName(const BundleInfo& bundle) {
    return bundle.name.value_or("Ferrowyn");
}

std::string version(const BundleInfo& bundle) {
    return bundle.shortVersion.value_or("1.0");
}

Phrase versionLine(const BundleInfo& bundle, const UtilityTexts& texts) {
    return {texts.about.version, {version(bundle)}};
}

Phrase copyrightLine(const BundleInfo& bundle, int year, const UtilityTexts& texts) {
    return bundle.copyright ? Phrase::verbatim(*bundle.copyright)
                            : Phrase{texts.about.copyright, {std::to_string(year)}};
}

Phrase accessibilitySummary(const BundleInfo& bundle, const UtilityTexts& texts) {
    return {texts.about.summary, {productName(bundle), version(bundle)}};
}

std::string siteName(std::string_view address) {
    constexpr std::string_view scheme = "https://";
    if (address.starts_with(scheme)) {
        address.remove_prefix(scheme.size());
    }
    while (address.ends_with('/')) {
        address.remove_suffix(1);
    }
    return std::string(address);
}

}  // namespace about_lines

ProductIcon::ProductIcon(int side, const QString& name) {
    setFixedSize(side, side);
    setAccessibleRole(*this, QAccessible::Graphic);
    setAccessibleName(name);
}

void ProductIcon::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    QSvgRenderer(productIconFile()).render(&painter, rect());
}

QIcon programIcon() {
    QSvgRenderer drawing(productIconFile());
    QIcon icon;
    for (const int side : {16, 24, 32, 48, 64, 128}) {
        QPixmap pixmap(side, side);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        drawing.render(&painter);
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

namespace {

constexpr int belowIcon = 12;
constexpr int belowName = 3;
constexpr int belowVersion = 10;
constexpr int belowTagline = 14;
constexpr int belowSite = 12;

int currentYear(const Platform& platform) {
    using std::chrono::duration_cast;
    const WallTime now = platform.mainLoop.wallTime();
    if (const auto year = platform.application.calendarYear(now)) {
        return *year;
    }
    const auto sinceEpoch = duration_cast<std::chrono::milliseconds>(now.time_since_epoch());
    // In the user's time zone.
    return QDateTime::fromMSecsSinceEpoch(sinceEpoch.count()).date().year();
}

}  // namespace

QWidget* makeSiteLink(const Platform& platform) {
    const auto homePage = platform.application.bundleInfo().homePage;
    if (!homePage) {
        auto* const text =
            new TextLabel({platform.texts.utility.about.noHomePage, {}}, TextStyle::note, Tone::secondary);
        text->setWordWrap(false);
        return text;
    }
    auto* const site = makeLink(Phrase::verbatim(about_lines::siteName(*homePage)));
    QObject::connect(site, &QAbstractButton::clicked, site,
                     [&workspace = platform.workspace, page = *homePage] { workspace.open(page); });
    return site;
}

AboutContent::AboutContent(const Platform& platform, int iconSize) {
    const UtilityTexts& texts = platform.texts.utility;
    const BundleInfo bundle = platform.application.bundleInfo();
    const QString name = QString::fromStdString(about_lines::productName(bundle));
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(new ProductIcon(iconSize, name), 0, Qt::AlignHCenter);
    column->addSpacing(belowIcon);
    column->addWidget(TextLabel::centred(Phrase::verbatim(name.toStdString()), TextStyle::productName, Tone::primary));
    column->addSpacing(belowName);
    column->addWidget(TextLabel::centred(about_lines::versionLine(bundle, texts), TextStyle::note, Tone::secondary));
    column->addSpacing(belowVersion);
    column->addWidget(TextLabel::centred({texts.about.tagline, {}}, TextStyle::body, Tone::primary));
    column->addSpacing(belowTagline);
    column->addWidget(makeSiteLink(platform), 0, Qt::AlignHCenter);
    column->addSpacing(belowSite);
    column->addWidget(TextLabel::centred(about_lines::copyrightLine(bundle, currentYear(platform), texts),
                                         TextStyle::note, Tone::secondary));
    setAccessibleRole(*this, QAccessible::Grouping);
    setAccessibleName(translated(about_lines::accessibilitySummary(bundle, texts)));
}

namespace {

constexpr int windowWidth = 380;
constexpr int iconSize = 112;
constexpr QMargins margins(30, 30, 30, 22);
constexpr int aboveButton = 22;

}  // namespace

AboutView::AboutView(const Platform& platform, std::function<void()> onClose) {
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(margins);
    column->setSpacing(0);
    auto* const content = new AboutContent(platform, iconSize);
    column->addWidget(content);
    column->addSpacing(aboveButton);
    auto* const close = makeButton({platform.texts.utility.about.close, {}});
    column->addWidget(close, 0, Qt::AlignHCenter);
    connect(close, &QAbstractButton::clicked, this, [told = std::move(onClose)] { told(); });
    setFixedWidth(windowWidth);
    setAccessibleName(content->accessibleName());
}

}  // namespace ferrowyn
