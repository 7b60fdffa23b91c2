#include "main/doctor.h"

#include <fmt/format.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QSysInfo>
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <system_error>
#include <utility>
#include <variant>

#include "main/doctor_display.h"
#include "main/single_instance.h"
#include "platform/linux/atomic_file.h"
#include "platform/linux/desktop_entry.h"
#include "platform/linux/ini_document.h"
#include "platform/linux/session_lock.h"
#include "platform/linux/xdg_login_item.h"
#include "platform/x11/x11_connection.h"

namespace ferrowyn {

namespace {

using Verdict = DoctorFinding::Verdict;

std::string_view label(Verdict verdict) {
    switch (verdict) {
        case Verdict::good:
            return "ok";
        case Verdict::notice:
            return "note";
        case Verdict::bad:
            return "FAIL";
    }
    return "";
}

}  // namespace

bool switchingCanWork(const DoctorReport& report) {
    return std::ranges::none_of(report, [](const auto& finding) { return finding.verdict == Verdict::bad; });
}

std::string formatted(const DoctorReport& report) {
    std::size_t width = 0;
    for (const auto& finding : report) {
        width = std::max(width, finding.subject.size());
    }
    std::string text = switchingCanWork(report) ? "Switching windows can work here.\n\n"
                                                : "Switching windows cannot work here yet.\n\n";
    for (const auto& finding : report) {
        text += fmt::format("[{:^4}] {:<{}}  {}\n", label(finding.verdict), finding.subject, width, finding.text);
        if (!finding.advice.empty()) {
            text += fmt::format("{:{}}-> {}\n", "", width + 9, finding.advice);
        }
    }
    return text;
}

namespace {

namespace fs = std::filesystem;
using Verdict = DoctorFinding::Verdict;

/// In microseconds. A service that answers later counts as missing.
constexpr std::uint64_t patienceWithBus = 3'000'000;
constexpr std::size_t largestSettings = 4U << 20U;

/// The path for a bug report: without the user's name.
std::string shown(const fs::path& path) {
    const char* const home = std::getenv("HOME");
    const auto text = path.string();
    const auto prefix = home != nullptr && *home != '\0' ? std::string(home) + "/" : std::string();
    return !prefix.empty() && text.starts_with(prefix) ? "~/" + text.substr(prefix.size()) : text;
}

struct BusCloser {
    void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using Bus = std::unique_ptr<sd_bus, BusCloser>;
using BusMessage = std::unique_ptr<sd_bus_message, BusCloser>;

/// Uses systemd's calls and not Qt's: Qt's bus thread runs until the process ends, and in a program as short as this
/// one it then reads messages after parts of Qt are gone, and prints warnings to standard error.
Bus connectedTo(const std::string& address) {
    sd_bus* made = nullptr;
    if (sd_bus_new(&made) < 0) {
        return nullptr;
    }
    Bus bus(made);
    const bool isConnected =
        sd_bus_set_address(bus.get(), address.c_str()) >= 0 && sd_bus_set_bus_client(bus.get(), 1) >= 0 &&
        sd_bus_set_method_call_timeout(bus.get(), patienceWithBus) >= 0 && sd_bus_start(bus.get()) >= 0;
    return isConnected ? std::move(bus) : nullptr;
}

bool hostIsRegistered(sd_bus& bus) {
    sd_bus_message* made = nullptr;
    if (sd_bus_message_new_method_call(&bus, &made, "org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher",
                                       "org.freedesktop.DBus.Properties", "Get") < 0) {
        return false;
    }
    const BusMessage question(made);
    sd_bus_message_set_auto_start(question.get(), 0);
    sd_bus_message_append(question.get(), "ss", "org.kde.StatusNotifierWatcher", "IsStatusNotifierHostRegistered");
    sd_bus_message* received = nullptr;
    if (sd_bus_call(&bus, question.get(), patienceWithBus, nullptr, &received) < 0) {
        return false;
    }
    const BusMessage answer(received);
    int hasHost = 0;
    return sd_bus_message_read(answer.get(), "v", "b", &hasHost) >= 0 && hasHost != 0;
}

}  // namespace

DoctorSession::DoctorSession(XdgFolders folders, std::optional<std::string> busAddress)
    : folders_(std::move(folders)), busAddress_(std::move(busAddress)) {}

DoctorFinding DoctorSession::trayHost(bool hasEmbeddingTray) const {
    if (hasTrayHostOnBus()) {
        return {Verdict::good, "tray", "a StatusNotifierItem host on the session bus", {}};
    }
    if (hasEmbeddingTray) {
        return {Verdict::good, "tray", "an XEmbed tray", {}};
    }
    return {Verdict::notice, "tray", busAddress_ ? "none" : "none, and no session bus",
            "Without an icon, \"ferrowyn --settings\" and \"ferrowyn --quit\" reach the program."};
}

bool DoctorSession::hasTrayHostOnBus() const {
    const auto bus = busAddress_ ? connectedTo(*busAddress_) : nullptr;
    return bus != nullptr && hostIsRegistered(*bus);
}

DoctorFinding DoctorSession::autostart() const {
    const XdgLoginItem item(
        folders_, {std::string(applicationId), "Ferrowyn", QCoreApplication::applicationFilePath().toStdString()});
    switch (item.status()) {
        case LoginItem::Status::enabled:
            return {Verdict::good, "autostart", "on", {}};
        case LoginItem::Status::requiresApproval:
            return {Verdict::notice, "autostart", "there is an entry, but it is turned off or changed",
                    "Allow Ferrowyn in your desktop's settings for autostart."};
        case LoginItem::Status::notFound:
            return {Verdict::notice, "autostart",
                    fmt::format("{} cannot be written", shown(item.userEntry().parent_path())),
                    "Make sure that the folder is yours."};
        case LoginItem::Status::notRegistered:
            break;
    }
    return {Verdict::good, "autostart", "off", {}};
}

fs::path DoctorSession::settingsPath() const {
    return folders_.configHome / "Ferrowyn" / "Ferrowyn.ini";
}

DoctorFinding DoctorSession::settingsFile() const {
    const auto file = settingsPath();
    std::error_code error;
    const auto text = readFile(file, largestSettings, error);
    if (error == std::errc::no_such_file_or_directory) {
        return {
            Verdict::good, "settings", fmt::format("{} is not there yet; the defaults are in force", shown(file)), {}};
    }
    if (error) {
        return {Verdict::notice, "settings", fmt::format("{} cannot be read: {}", shown(file), error.message()),
                "Make sure that the file is yours."};
    }
    if (!IniDocument::parse(text)) {
        return {Verdict::notice, "settings", fmt::format("{} is damaged", shown(file)),
                "Ferrowyn will keep it aside and start with the defaults."};
    }
    if (::access(file.c_str(), W_OK) != 0 || ::access(file.parent_path().c_str(), W_OK) != 0) {
        return {Verdict::notice, "settings", fmt::format("{} cannot be written", shown(file)),
                "Changes last until Ferrowyn ends."};
    }
    return {Verdict::good, "settings", shown(file), {}};
}

SwitcherModifier DoctorSession::trigger() const {
    std::error_code error;
    const auto document = IniDocument::parse(readFile(settingsPath(), largestSettings, error));
    if (error || !document) {
        return SwitcherModifier::option;
    }
    const auto values = document->values();
    const auto stored = values.find("switcher.modifier");
    const auto* const raw = stored != values.end() ? std::get_if<std::string>(&stored->second) : nullptr;
    return raw != nullptr ? switcherModifierFromRawValue(*raw).value_or(SwitcherModifier::option)
                          : SwitcherModifier::option;
}

DoctorFinding DoctorSession::versions(const std::string& ownVersion) {
    return {Verdict::good,
            "versions",
            fmt::format("Ferrowyn {}, Qt {}, {}, kernel {}", ownVersion, qVersion(),
                        QSysInfo::prettyProductName().toStdString(), QSysInfo::kernelVersion().toStdString()),
            {}};
}

namespace {

using Verdict = DoctorFinding::Verdict;

/// `refusal` is the text that the program itself prints: its first line says what is wrong, the others what to do.
DoctorFinding withoutDisplay(const std::string& refusal) {
    const auto end = refusal.find('\n');
    DoctorFinding finding{Verdict::bad, "display", refusal.substr(0, end), {}};
    if (end != std::string::npos) {
        finding.advice = refusal.substr(end + 1);
    }
    for (auto* text : {&finding.text, &finding.advice}) {
        for (auto& character : *text) {
            character = character == '\n' ? ' ' : character;
        }
    }
    constexpr std::string_view speaker = "ferrowyn: ";
    if (finding.text.starts_with(speaker)) {
        finding.text.erase(0, speaker.size());
    }
    return finding;
}

void addDisplay(DoctorReport& report, const DoctorDisplay& display) {
    report.push_back(display.server());
    report.push_back(display.windowManager());
    if (report.back().verdict != Verdict::bad) {
        report.push_back(display.activation());
    }
    report.push_back(display.inputExtension());
    report.push_back(display.triggerKeys());
    report.push_back(display.secureInput());
    report.push_back(display.compositor());
    report.push_back(display.program());
}

}  // namespace

DoctorReport examineSession(const std::string& ownVersion) {
    const DoctorSession session(XdgFolders::fromEnvironment(), SessionLock::Buses::fromEnvironment().session);
    const auto environment = SessionEnvironment::current();
    auto refusal = sessionRefusal(environment);
    const auto connection = refusal ? nullptr : X11Connection::open();
    if (!refusal && !connection) {
        refusal = unreachableDisplayMessage(environment);
    } else if (connection && isServerOfWaylandSession(connection->get(), connection->root())) {
        refusal = waylandMessage();
    }

    DoctorReport report;
    bool hasEmbeddingTray = false;
    if (refusal) {
        report.push_back(withoutDisplay(*refusal));
    } else {
        const DoctorDisplay display(*connection, environment.display, session.trigger());
        addDisplay(report, display);
        hasEmbeddingTray = display.hasEmbeddingTray();
    }
    report.push_back(session.trayHost(hasEmbeddingTray));
    report.push_back(session.autostart());
    report.push_back(session.settingsFile());
    report.push_back(DoctorSession::versions(ownVersion));
    return report;
}

}  // namespace ferrowyn
