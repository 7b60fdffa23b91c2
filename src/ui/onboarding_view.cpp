#include "ui/onboarding_view.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QVBoxLayout>
#include <utility>

#include "core/texts.h"
#include "platform/application.h"
#include "platform/platform.h"
#include "services/accessibility_authorizer.h"
#include "ui/about_content.h"
#include "ui/about_lines.h"
#include "ui/granted_state.h"
#include "ui/product_icon.h"
#include "ui/required_state.h"
#include "ui/text_label.h"
#include "ui/window_button.h"
#include "ui/window_theme.h"

namespace ferrowyn {

namespace {

constexpr int windowWidth = 480;
constexpr QMargins margins(34, 28, 34, 22);
constexpr int iconSize = 64;
constexpr int belowIcon = 10;
constexpr int belowName = 5;
constexpr int belowTagline = 2;
constexpr int aboveState = 20;
constexpr int aboveFooter = 18;

QWidget* makeHeader(const BundleInfo& bundle, const WindowTexts& texts) {
    const std::string name = about_lines::productName(bundle);
    auto* const header = new QWidget;
    auto* const column = new QVBoxLayout(header);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(new ProductIcon(iconSize, QString::fromStdString(name)), 0, Qt::AlignHCenter);
    column->addSpacing(belowIcon);
    column->addWidget(TextLabel::centred(Phrase::verbatim(name), TextStyle::productName, Tone::primary));
    column->addSpacing(belowName);
    column->addWidget(TextLabel::centred({texts.about.tagline, {}}, TextStyle::body, Tone::secondary));
    column->addSpacing(belowTagline);
    column->addWidget(TextLabel::centred(about_lines::versionLine(bundle, texts), TextStyle::note, Tone::secondary));
    return header;
}

}  // namespace

OnboardingView::OnboardingView(const Platform& platform, AccessibilityAuthorizer& authorizer,
                               const Preferences& preferences, std::function<void()> onDone,
                               std::function<std::string()> makeReport)
    : onDone_(std::move(onDone)) {
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(margins);
    column->setSpacing(0);
    column->addWidget(makeHeader(platform.application.bundleInfo(), platform.texts.windows));
    column->addSpacing(aboveState);
    auto* const granted = new GrantedState(platform.texts, preferences, [this] { onDone_(); });
    auto* const required = new RequiredState(platform, authorizer, std::move(makeReport));
    column->addWidget(granted);
    column->addWidget(required);
    column->addSpacing(aboveFooter);
    column->addWidget(makeFooter(platform));
    setFixedWidth(windowWidth);
    statusSubscription_ = authorizer.status().subscribe([granted, required](AccessibilityStatus status) {
        // The one that goes, first: for a moment the window would be as high as both.
        const bool isTrusted = status == AccessibilityStatus::trusted;
        (isTrusted ? static_cast<QWidget*>(required) : granted)->setVisible(false);
        (isTrusted ? static_cast<QWidget*>(granted) : required)->setVisible(true);
    });
}

OnboardingView::~OnboardingView() = default;

QWidget* OnboardingView::makeFooter(const Platform& platform) {
    auto* const footer = new QWidget;
    auto* const line = new QHBoxLayout(footer);
    line->setContentsMargins(0, 0, 0, 0);
    auto* const close = new WindowButton({platform.texts.windows.onboarding.close, {}});
    line->addWidget(makeSiteLink(platform));
    line->addStretch();
    line->addWidget(close);
    connect(close, &QAbstractButton::clicked, this, [this] { onDone_(); });
    return footer;
}

void OnboardingView::paintEvent(QPaintEvent* /*event*/) {
    QPainter(this).fillRect(rect(), WindowTheme::current().ground);
}

}  // namespace ferrowyn
