#include "app/doctor.h"

#include "app/doctor_display.h"
#include "app/doctor_session.h"
#include "app/session_check.h"
#include "platform/linux/session_lock.h"
#include "platform/x11/x11_connection.h"
#include "platform/x11/x11_wayland_session.h"

namespace ferrowyn {

namespace {

using Verdict = DoctorFinding::Verdict;

/// The refusal is what the program itself would say; its first line says what is wrong, the others what to do.
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
