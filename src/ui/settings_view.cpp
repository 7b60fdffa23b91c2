#include "ui/settings_view.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QStackedWidget>

#include "core/texts.h"
#include "platform/platform.h"
#include "ui/about_pane.h"
#include "ui/appearance_pane.h"
#include "ui/favourites_pane.h"
#include "ui/general_pane.h"
#include "ui/hairline.h"
#include "ui/settings_sidebar.h"
#include "ui/shortcut_pane.h"
#include "ui/window_theme.h"
#include "ui/windows_pane.h"

namespace ferrowyn {

namespace {

constexpr QSize firstSize(720, 500);
constexpr QSize leastSize(560, 340);

}  // namespace

SettingsView::SettingsView(const Platform& platform, const SettingsServices& services) {
    const WindowTexts& texts = platform.texts.windows;
    sidebar_ = new SettingsSidebar(texts);
    panes_ = new QStackedWidget;
    // In the order of the sidebar.
    panes_->addWidget(new GeneralPane(texts, services));
    panes_->addWidget(new ShortcutPane(platform.texts, services.preferences));
    panes_->addWidget(new AppearancePane(texts, services.preferences));
    panes_->addWidget(new WindowsPane(texts, services.preferences));
    panes_->addWidget(new FavouritesPane(platform, services));
    panes_->addWidget(new AboutPane(platform));

    auto* const line = new QHBoxLayout(this);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(1);
    line->addWidget(sidebar_);
    line->addWidget(panes_, 1);
    connect(sidebar_, &QListWidget::currentRowChanged, panes_, &QStackedWidget::setCurrentIndex);
    setFocusProxy(sidebar_);
}

SettingsView::~SettingsView() = default;

SettingsPane SettingsView::selection() const {
    return sidebar_->selection();
}

void SettingsView::select(SettingsPane pane) {
    sidebar_->select(pane);
}

QSize SettingsView::sizeHint() const {
    return firstSize.expandedTo(minimumSizeHint());
}

QSize SettingsView::minimumSizeHint() const {
    // The panes scroll downward only.
    return leastSize.expandedTo(layout()->minimumSize());
}

void SettingsView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const WindowTheme theme = WindowTheme::current();
    painter.fillRect(rect(), theme.ground);
    const QRectF sidebar(sidebar_->x(), 0, sidebar_->width(), height());
    painter.fillRect(sidebar, theme.sidebar);
    const double line = hairline::width(painter.deviceTransform().m11());
    painter.fillRect(QRectF(isRightToLeft() ? sidebar.left() - line : sidebar.right(), 0, line, height()),
                     theme.hairline);
}

}  // namespace ferrowyn
