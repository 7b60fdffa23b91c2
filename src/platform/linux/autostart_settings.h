#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/xdg_login_item.h"

class QDBusConnection;
class QString;

namespace ferrowyn {

/// The command that opens the settings in which this desktop's user decides what starts at login; nothing where the
/// desktop has none, or they are not installed.
[[nodiscard]] std::optional<std::vector<std::string>> autostartSettingsCommand(const XdgLoginItem::Session& session);

/// Opens those settings, or, where there are none, shows the autostart entry in the file manager. Without an entry its
/// folder is shown, or the nearest folder above it that exists. `openAddress` is as in `revealInFileManager`. False
/// when the settings were found but could not be started. Main thread, with a QCoreApplication.
bool openAutostartSettings(const QDBusConnection& bus, const std::filesystem::path& entry,
                           std::function<void(const QString& address)> openAddress);

}  // namespace ferrowyn
