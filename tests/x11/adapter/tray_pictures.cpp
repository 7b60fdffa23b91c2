// Takes pictures of the icon and its menu in real trays, for looking at: ferrowyn_tray_pictures <folder>.

#include <cstdio>
#include <filesystem>

#include "tests/x11/adapter/tray_fixture.h"
#include "ui/menu/popup_status_item.h"

namespace {

using ferrowyn::LinuxTrayIcon;
using ferrowyn::x11test::TrayRig;

bool photograph(const std::string& host, LinuxTrayIcon::Host expected, const std::string& folder) {
    // A plain square until it has been found on the screen.
    bool isFound = false;
    const auto draw = [&isFound](const std::string& symbol, int side, const std::optional<QColor>& color) {
        QImage image = ferrowyn::traySymbol(symbol, side, color);
        if (!isFound) {
            image.fill(QColor::fromRgb(ferrowyn::x11test::iconColor));
        }
        return image;
    };
    TrayRig rig({.draws = draw});
    const auto process = rig.startHost(host);
    if (!rig.waitForHost(expected)) {
        std::fprintf(stderr, "%s does not show the icon\n", host.c_str());
        return false;
    }
    const auto place = rig.waitForIcon();
    if (!place) {
        std::fprintf(stderr, "the icon is not to be seen in %s\n", host.c_str());
        return false;
    }
    isFound = true;
    QEvent themeChange(QEvent::ApplicationPaletteChange);
    QCoreApplication::sendEvent(QCoreApplication::instance(), &themeChange);
    static_cast<void>(TrayRig::runUntil([&] { return !rig.iconPlace(); }));
    rig.input.click(place->x + place->width / 2, place->y + place->height / 2);
    const bool isOpen = TrayRig::runUntil([&] { return rig.desktop.visiblePanel() && !rig.desktop.keyboardIsFree(); });
    if (isOpen) {
        rig.input.tap(ferrowyn::x11test::key::down);
        static_cast<void>(TrayRig::runUntil([&] { return rig.item->openPopup()->selectedRow().has_value(); }));
        rig.item->openPopup()->repaint();
        QCoreApplication::processEvents();
    }
    rig.desktop.screenshot(folder + "/tray-" + host + ".png");
    return isOpen;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: ferrowyn_tray_pictures <folder>\n");
        return 2;
    }
    std::filesystem::create_directories(argv[1]);
    const bool isComplete = photograph("lxqt-panel", LinuxTrayIcon::Host::statusNotifier, argv[1]) &&
                            photograph("xfce4-panel", LinuxTrayIcon::Host::fallback, argv[1]) &&
                            photograph("trayer", LinuxTrayIcon::Host::fallback, argv[1]);
    return isComplete ? 0 : 1;
}
