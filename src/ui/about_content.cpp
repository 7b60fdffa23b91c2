#include "ui/about_content.h"

#include <QDateTime>
#include <QVBoxLayout>
#include <chrono>

#include "core/texts.h"
#include "platform/application.h"
#include "platform/main_loop.h"
#include "platform/platform.h"
#include "platform/workspace.h"
#include "ui/about_lines.h"
#include "ui/accessible_roles.h"
#include "ui/product_icon.h"
#include "ui/text_label.h"
#include "ui/translated.h"
#include "ui/window_button.h"

namespace ferrowyn {

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
    // By the clock on the user's wall.
    return QDateTime::fromMSecsSinceEpoch(sinceEpoch.count()).date().year();
}

}  // namespace

QWidget* makeSiteLink(const Platform& platform) {
    const auto homePage = platform.application.bundleInfo().homePage;
    if (!homePage) {
        auto* const text =
            new TextLabel({platform.texts.windows.about.noHomePage, {}}, TextStyle::note, Tone::secondary);
        text->setWordWrap(false);
        return text;
    }
    auto* const site = new WindowButton(Phrase::verbatim(about_lines::siteName(*homePage)), WindowButton::Look::link);
    QObject::connect(site, &QAbstractButton::clicked, site,
                     [&workspace = platform.workspace, page = *homePage] { workspace.open(page); });
    return site;
}

AboutContent::AboutContent(const Platform& platform, int iconSize) {
    const WindowTexts& texts = platform.texts.windows;
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

}  // namespace ferrowyn
