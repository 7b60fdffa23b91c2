#pragma once

#include <QString>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/xdg_login_item.h"

class QDBusConnection;

namespace ferrowyn {

/// Shows the file, selected, in the desktop's file manager. Where none takes such requests on the bus, or the bus is
/// missing, `openAddress` gets the address of the file's folder instead, later on the main loop. Main thread, with a
/// QCoreApplication; never waits.
void revealInFileManager(const QDBusConnection& bus, const std::filesystem::path& file,
                         std::function<void(const QString& address)> openAddress);

/// The command that opens the settings in which this desktop's user decides what starts at login; nothing where the
/// desktop has none, or they are not installed.
[[nodiscard]] std::optional<std::vector<std::string>> autostartSettingsCommand(const XdgLoginItem::Session& session);

/// Opens those settings, or, where there are none or they cannot be started, shows the autostart entry in the file
/// manager. Without an entry its folder is shown, or the nearest folder above it that exists. `openAddress` is as in
/// `revealInFileManager`. Main thread, with a QCoreApplication.
void openAutostartSettings(const QDBusConnection& bus, const std::filesystem::path& entry,
                           std::function<void(const QString& address)> openAddress);

}  // namespace ferrowyn
