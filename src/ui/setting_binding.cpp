#include "ui/setting_binding.h"

#include <QAbstractButton>

namespace ferrowyn {

Subscription bindSwitch(QAbstractButton& button, Preferences::Setting<bool>& setting) {
    // `clicked` is the user alone, by whatever means; following the setting must not set it again.
    QObject::connect(&button, &QAbstractButton::clicked, &button, [&setting](bool isOn) { setting.set(isOn); });
    return setting.published().subscribe([&button](bool isOn) { button.setChecked(isOn); });
}

}  // namespace ferrowyn
