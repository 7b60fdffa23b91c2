#include "platform/linux/status_notifier_object.h"

#include <utility>

namespace ferrowyn {

StatusNotifierObject::StatusNotifierObject(QObject& parent) : QDBusAbstractAdaptor(&parent) {
    registerStatusNotifierTypes();
}

void StatusNotifierObject::setIcon(StatusNotifierPixmaps icon) {
    icon_ = std::move(icon);
    emit NewIcon();
}

void StatusNotifierObject::setToolTip(const QString& title) {
    if (std::exchange(toolTip_, title) != title) {
        emit NewToolTip();
    }
}

void StatusNotifierObject::press(int x, int y) const {
    if (onPress_) {
        onPress_(x, y);
    }
}

}  // namespace ferrowyn
