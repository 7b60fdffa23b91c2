#include "platform/x11/x11_application.h"

#include <fmt/format.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDesktopServices>
#include <QSysInfo>
#include <QUrl>
#include <QVersionNumber>
#include <algorithm>
#include <string_view>
#include <utility>

#include "platform/linux/desktop_programs.h"

namespace ferrowyn {

namespace {

std::optional<std::string> unlessEmpty(std::string_view text) {
    return text.empty() ? std::nullopt : std::optional(std::string(text));
}

}  // namespace

Pid X11Application::ownPid() const {
    return getpid();
}

Subscription X11Application::observeDidBecomeActive(std::function<void()> handler) {
    return model_.workspaceEvents().subscribe([own = ownPid(), told = std::move(handler)](const WorkspaceEvent& event) {
        if (event.kind == WorkspaceEvent::Kind::didActivate && event.application && event.application->pid == own) {
            told();
        }
    });
}

BundleInfo X11Application::bundleInfo() const {
    return {.name = "Ferrowyn",
            .shortVersion = FERROWYN_VERSION,
            .path = QCoreApplication::applicationFilePath().toStdString(),
            .updateHost = unlessEmpty(FERROWYN_UPDATE_HOST),
            .homePage = unlessEmpty(FERROWYN_HOME_PAGE)};
}

std::string X11Application::systemVersion() const {
    const auto version = QVersionNumber::fromString(QSysInfo::productVersion());
    return fmt::format("{}.{}", std::max(version.majorVersion(), 0), std::max(version.minorVersion(), 0));
}

std::optional<int> X11Application::calendarYear(WallTime /*moment*/) const {
    return std::nullopt;
}

void X11Application::setActivationPolicy(ActivationPolicy /*policy*/) {}

/// The window manager decides that for each window, when it is asked to activate one.
void X11Application::activate() {}

/// As a pager asks, which no manager refuses: the user chose to see this window, a moment ago and perhaps elsewhere.
void X11Application::bringToFront(WindowId window) {
    windows_.bringToFront(window);
}

void X11Application::terminate() {
    QCoreApplication::quit();
}

void X11Application::revealInFileManager() {
    ferrowyn::revealInFileManager(QDBusConnection::sessionBus(), bundleInfo().path,
                                  [](const QString& address) { QDesktopServices::openUrl(QUrl(address)); });
}

}  // namespace ferrowyn
