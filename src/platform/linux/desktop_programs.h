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

/// Shows the file, selected, in the desktop's file manager. When no file manager answers on the bus, or there is no
/// bus, `openAddress` is called later on the main loop with the URL of the file's folder. Needs a QCoreApplication.
/// Main thread; never waits.
void revealInFileManager(const QDBusConnection& bus, const std::filesystem::path& file,
                         std::function<void(const QString& address)> openAddress);

/// The command that opens the desktop's settings page for programs that start at login; nullopt when the desktop has
/// none or it is not installed.
[[nodiscard]] std::optional<std::vector<std::string>> autostartSettingsCommand(const XdgLoginItem::Session& session);

/// Opens that settings page. When there is none or it cannot be started, shows the autostart entry in the file manager;
/// without an entry, its folder or the nearest existing folder above it. `openAddress` is as in `revealInFileManager`.
/// Needs a QCoreApplication. Main thread.
void openAutostartSettings(const QDBusConnection& bus, const std::filesystem::path& entry,
                           std::function<void(const QString& address)> openAddress);

}  // namespace ferrowyn
