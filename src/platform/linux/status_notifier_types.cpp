#include "platform/linux/status_notifier_types.h"

#include <QDBusMetaType>
#include <QtEndian>

namespace ferrowyn {

StatusNotifierPixmap StatusNotifierPixmap::fromImage(const QImage& image) {
    const QImage straight = image.convertToFormat(QImage::Format_ARGB32);
    StatusNotifierPixmap pixmap{straight.width(), straight.height(), {}};
    pixmap.bytes.resize(straight.sizeInBytes());
    // Lines of 32-bit pixels have no padding.
    qToBigEndian<quint32>(straight.constBits(), straight.sizeInBytes() / 4, pixmap.bytes.data());
    return pixmap;
}

void registerStatusNotifierTypes() {
    qDBusRegisterMetaType<StatusNotifierPixmap>();
    qDBusRegisterMetaType<StatusNotifierPixmaps>();
    qDBusRegisterMetaType<StatusNotifierToolTip>();
}

QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierPixmap& pixmap) {
    argument.beginStructure();
    argument << pixmap.width << pixmap.height << pixmap.bytes;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierPixmap& pixmap) {
    argument.beginStructure();
    argument >> pixmap.width >> pixmap.height >> pixmap.bytes;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierToolTip& toolTip) {
    argument.beginStructure();
    argument << toolTip.iconName << toolTip.icon << toolTip.title << toolTip.description;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierToolTip& toolTip) {
    argument.beginStructure();
    argument >> toolTip.iconName >> toolTip.icon >> toolTip.title >> toolTip.description;
    argument.endStructure();
    return argument;
}

}  // namespace ferrowyn
