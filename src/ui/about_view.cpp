#include "ui/about_view.h"

#include <QPainter>
#include <QVBoxLayout>
#include <utility>

#include "core/texts.h"
#include "platform/platform.h"
#include "ui/about_content.h"
#include "ui/window_button.h"
#include "ui/window_theme.h"

namespace ferrowyn {

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
    auto* const close = new WindowButton({platform.texts.windows.about.close, {}});
    column->addWidget(close, 0, Qt::AlignHCenter);
    connect(close, &QAbstractButton::clicked, this, [told = std::move(onClose)] { told(); });
    setFixedWidth(windowWidth);
    setAccessibleName(content->accessibleName());
}

void AboutView::paintEvent(QPaintEvent* /*event*/) {
    QPainter(this).fillRect(rect(), WindowTheme::current().ground);
}

}  // namespace ferrowyn
