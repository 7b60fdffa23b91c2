#include "platform/linux/linux_appearance.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "platform/linux/bus_thread.h"
#include "platform/linux/session_lock.h"
#include "platform/linux/settings_portal_listener.h"
#include "platform/main_loop.h"

namespace ferrowyn {

LinuxAppearance::Options LinuxAppearance::Options::fromEnvironment() {
    const char* const desktop = std::getenv("XDG_CURRENT_DESKTOP");
    return {.folders = XdgFolders::fromEnvironment(),
            .busAddress = SessionLock::Buses::fromEnvironment().session,
            .currentDesktop = desktop == nullptr ? "" : desktop};
}

LinuxAppearance::LinuxAppearance(MainLoop& mainLoop, const Options& options)
    : sources_(AppearanceSources{.isPlasma = std::ranges::count(splitAtColons(options.currentDesktop), "KDE") > 0}),
      files_(options.folders, [this] { readFiles(); }) {
    readFiles();
    if (options.busAddress) {
        startListening(mainLoop, *options.busAddress);
    }
}

LinuxAppearance::~LinuxAppearance() = default;

void LinuxAppearance::setXsettingsTheme(std::optional<std::string> name) {
    auto sources = sources_.get();
    sources.xsettingsTheme = std::move(name);
    sources_.setIfChanged(std::move(sources));
}

void LinuxAppearance::readFiles() {
    auto sources = sources_.get();
    files_.read(sources);
    sources_.setIfChanged(std::move(sources));
}

void LinuxAppearance::startListening(MainLoop& mainLoop, const std::string& busAddress) {
    // What the listener posts may arrive after this object is gone.
    const std::weak_ptr<bool> alive = alive_;
    auto* const listener =
        new SettingsPortalListener(busAddress, [this, &mainLoop, alive](const SettingsPortalListener::Answer& answer) {
            mainLoop.post([this, alive, answer] {
                if (alive.expired()) {
                    return;
                }
                auto sources = sources_.get();
                sources.portalScheme = answer.scheme;
                sources.portalAccent = answer.accent;
                sources_.setIfChanged(std::move(sources));
            });
        });
    portal_ = std::make_unique<BusThread>("ferrowyn-portal", listener, [listener] { listener->start(); });
}

}  // namespace ferrowyn
