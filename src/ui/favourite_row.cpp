#include "ui/favourite_row.h"

#include <QFontMetrics>
#include <QHBoxLayout>
#include <QPainter>
#include <cmath>
#include <utility>

#include "ui/accessible_roles.h"
#include "ui/control_painting.h"
#include "ui/display_text.h"
#include "ui/group_metrics.h"
#include "ui/settings_lines.h"
#include "ui/text_style.h"
#include "ui/translated.h"
#include "ui/window_button.h"

namespace ferrowyn {

namespace {

constexpr double iconSide = 24;
constexpr double behindIcon = 10;
constexpr double starPoints = 11;
constexpr double starSide = SymbolImages::boxSide(starPoints);
constexpr double aroundStar = 8;
constexpr int buttonOverhang = 5;

}  // namespace

FavouriteRow::FavouriteRow(const std::string& name, IconLoader loadIcon, const WindowTexts& texts)
    : name_(display_text::singleLine(name)), loadIcon_(std::move(loadIcon)) {
    remove_ = new WindowButton(translated(settings_lines::removeHelp(name_.toStdString(), texts)), "minus.circle.fill");
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
    // Only a name that is cut needs to be told in full.
    const bool isCut = QFontMetricsF(fontFor(TextStyle::body)).horizontalAdvance(name_) > nameRect().width();
    setToolTip(isCut ? name_ : QString());
}

void FavouriteRow::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const WindowTheme theme = WindowTheme::current();
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

}  // namespace ferrowyn
