#pragma once

#include <QByteArray>
#include <QDBusArgument>
#include <QImage>
#include <QList>
#include <QString>

namespace ferrowyn {

/// An icon as it crosses the bus: ARGB with straight alpha, each pixel in network byte order.
struct StatusNotifierPixmap {
    int width = 0;
    int height = 0;
    QByteArray bytes;

    [[nodiscard]] static StatusNotifierPixmap fromImage(const QImage& image);
};
using StatusNotifierPixmaps = QList<StatusNotifierPixmap>;

struct StatusNotifierToolTip {
    QString iconName;
    StatusNotifierPixmaps icon;
    QString title;
    QString description;
};

/// So that the bus knows how to carry them. Harmless to call again.
void registerStatusNotifierTypes();

QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierPixmap& pixmap);
const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierPixmap& pixmap);
QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierToolTip& toolTip);
const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierToolTip& toolTip);

}  // namespace ferrowyn

Q_DECLARE_METATYPE(ferrowyn::StatusNotifierPixmap)
Q_DECLARE_METATYPE(ferrowyn::StatusNotifierPixmaps)
Q_DECLARE_METATYPE(ferrowyn::StatusNotifierToolTip)
