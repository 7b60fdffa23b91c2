#include "platform/linux/desktop_programs.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QProcess>
#include <QStandardPaths>
#include <QStringList>
#include <QUrl>
#include <algorithm>
#include <array>
#include <chrono>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/linux/bus.h"
#include "platform/linux/xdg_folders.h"

namespace ferrowyn {

namespace {

/// Enough for a file manager that the bus has to start, and as long as a user waits.
constexpr std::chrono::milliseconds fileManagerTimeout{5000};

QString addressOf(const std::filesystem::path& file) {
    return QUrl::fromLocalFile(QString::fromStdString(file.string())).toString(QUrl::FullyEncoded);
}

}  // namespace

void revealInFileManager(const QDBusConnection& bus, const std::filesystem::path& file,
                         std::function<void(const QString& address)> openAddress) {
    auto openFolder = [folder = addressOf(file.parent_path()), open = std::move(openAddress)] { open(folder); };
    if (!bus.isConnected()) {
        // A call without a connection gets no reply.
        QMetaObject::invokeMethod(QCoreApplication::instance(), std::move(openFolder), Qt::QueuedConnection);
        return;
    }
    auto call = methodCall("org.freedesktop.FileManager1", "/org/freedesktop/FileManager1",
                           "org.freedesktop.FileManager1", "ShowItems", {QStringList{addressOf(file)}, QString()});
    call.setAutoStartService(true);
    callAsync(
        bus, call, *QCoreApplication::instance(),
        [openFolder = std::move(openFolder)](const QDBusMessage& reply) {
            if (reply.type() != QDBusMessage::ReplyMessage) {
                openFolder();
            }
        },
        fileManagerTimeout);
}

namespace {

struct DesktopSettings {
    std::string_view desktop;
    std::string_view program;
    /// Empty for programs without pages.
    std::string_view page;
};

/// In the order of preference. KDE's settings application comes before the older program that shows only this page.
/// GNOME's settings have no such page, but its Tweaks do.
constexpr std::array settingsOfDesktops{
    DesktopSettings{"XFCE", "xfce4-session-settings", ""},
    DesktopSettings{"MATE", "mate-session-properties", ""},
    DesktopSettings{"LXQt", "lxqt-config-session", ""},
    DesktopSettings{"LXDE", "lxsession-edit", ""},
    DesktopSettings{"X-Cinnamon", "cinnamon-settings", "startup"},
    DesktopSettings{"KDE", "systemsettings", "kcm_autostart"},
    DesktopSettings{"KDE", "systemsettings5", "kcm_autostart"},
    DesktopSettings{"KDE", "kcmshell5", "kcm_autostart"},
    DesktopSettings{"GNOME", "gnome-tweaks", ""},
};

}  // namespace

std::optional<std::vector<std::string>> autostartSettingsCommand(const XdgLoginItem::Session& session) {
    const auto desktops = splitAtColons(session.currentDesktop);
    QStringList folders;
    for (const auto& folder : splitAtColons(session.path)) {
        folders.append(QString::fromLocal8Bit(folder.c_str()));
    }
    for (const auto& settings : settingsOfDesktops) {
        // Without folders `findExecutable` would search the environment's PATH.
        if (folders.isEmpty() || std::ranges::find(desktops, settings.desktop) == desktops.end()) {
            continue;
        }
        const auto program = QStandardPaths::findExecutable(
            QString::fromLatin1(settings.program.data(), static_cast<qsizetype>(settings.program.size())), folders);
        if (!program.isEmpty()) {
            std::vector<std::string> command{program.toLocal8Bit().toStdString()};
            if (!settings.page.empty()) {
                command.emplace_back(settings.page);
            }
            return command;
        }
    }
    return std::nullopt;
}

void openAutostartSettings(const QDBusConnection& bus, const std::filesystem::path& entry,
                           std::function<void(const QString& address)> openAddress) {
    if (const auto command = autostartSettingsCommand(XdgLoginItem::Session::fromEnvironment())) {
        QStringList arguments;
        for (auto argument = command->begin() + 1; argument != command->end(); ++argument) {
            arguments.append(QString::fromStdString(*argument));
        }
        if (QProcess::startDetached(QString::fromStdString(command->front()), arguments)) {
            return;
        }
    }
    std::error_code error;
    if (std::filesystem::exists(entry, error)) {
        revealInFileManager(bus, entry, std::move(openAddress));
        return;
    }
    auto folder = entry.parent_path();
    while (folder.has_relative_path() && !std::filesystem::is_directory(folder, error)) {
        folder = folder.parent_path();
    }
    openAddress(QUrl::fromLocalFile(QString::fromStdString(folder.string())).toString(QUrl::FullyEncoded));
}

}  // namespace ferrowyn
