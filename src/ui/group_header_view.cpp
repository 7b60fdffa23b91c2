#include "ui/group_header_view.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

#include "core/window_presentation.h"
#include "ui/app_icon_view.h"

namespace ferrowyn {

void GroupHeaderView::paint(QPainter& painter, const Rect& rect, const PaintContext& context) const {
    constexpr double inset = 12;
    constexpr double iconSide = 16;
    constexpr double gap = 7;
    constexpr double countInset = 4;
    constexpr double countRadius = 4;
    const double scale = context.devicePixelRatio;
    const Theme& theme = context.theme;

    AppIconView{icon, iconSide, false}.paint(painter, {rect.x + inset, rect.y, iconSide, rect.height}, context);
    const double nameLeft = rect.x + inset + iconSide + gap;

    const QString countText = QString::fromStdString(WindowPresentation::groupCountText(count));
    const double countWidth =
        std::ceil(context.lines.line(countText, TextStyle::groupCount, rect.width).width()) + 2 * countInset;
    const double room = rect.maxX() - inset - countWidth - gap - nameLeft;
    const TextLine& name = context.lines.line(appName, TextStyle::groupName, std::max(room, 0.0));
    const double nameWidth = name.width();
    name.paint(painter, nameLeft, context.lines.centredBaseline(TextStyle::groupName, rect.y, rect.height, scale),
               theme.textSecondary);

    const auto metrics = context.lines.metrics(TextStyle::groupCount);
    const double boxHeight = std::round(metrics.ascent + metrics.descent + 2);
    const QRectF box(std::round((nameLeft + nameWidth + gap) * scale) / scale,
                     std::round((rect.midY() - boxHeight / 2) * scale) / scale, countWidth, boxHeight);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.countFill);
    painter.drawRoundedRect(box, countRadius, countRadius);
    const TextLine& number = context.lines.line(countText, TextStyle::groupCount, rect.width);
    number.paint(painter, box.center().x() - number.width() / 2,
                 context.lines.centredBaseline(TextStyle::groupCount, box.y(), box.height(), scale), theme.countText);
}

}  // namespace ferrowyn
