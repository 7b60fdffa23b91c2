#pragma once

#include <QString>
#include <memory>

#include "platform/icon_source.h"
#include "ui/paint_context.h"

class QPainter;

namespace ferrowyn {

/// Over the first row of an application in grouped layout. A plain value.
struct GroupHeaderView {
    QString appName;
    std::shared_ptr<const IconImage> icon;
    int count = 0;

    void paint(QPainter& painter, const Rect& rect, const PaintContext& context) const;
};

}  // namespace ferrowyn
