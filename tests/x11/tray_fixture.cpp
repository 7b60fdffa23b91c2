#include "tests/x11/tray_fixture.h"

#include <algorithm>

#include "platform/x11/x11_connection.h"
#include "platform/x11/x11_tray_icon.h"

namespace ferrowyn::x11test {

namespace {

QImage plainIcon(const std::string& /*symbol*/, int side, const std::optional<QColor>& /*color*/) {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(QColor::fromRgb(iconColor));
    return image;
}

}  // namespace

TrayRig::TrayRig(const Options& options)
    : server({options.screen}),
      bus(server),
      manager(server, "openbox"),
      desktop(server.display()),
      input(server.display()) {
    qputenv("DISPLAY", QByteArray::fromStdString(server.display()));
    qputenv("QT_QPA_PLATFORM", "xcb");
    qputenv("QT_SCALE_FACTOR", QByteArray::fromStdString(options.scale));
    qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
    application = std::make_unique<QApplication>(argumentCount, arguments);
    QApplication::setQuitOnLastWindowClosed(false);
    mainLoop = std::make_unique<QtMainLoop>();
    backgroundWork = std::make_unique<QtBackgroundWork>();
    const TraySymbolPainter painter = options.draws ? options.draws : plainIcon;
    const auto makeEmbedded = [this, painter] {
        return std::make_unique<X11TrayIcon>(X11Connection::open(server.display().c_str()), *mainLoop, painter);
    };
    icon = std::make_unique<LinuxTrayIcon>(*mainLoop, *backgroundWork,
                                           options.hasBus ? std::optional(bus.address()) : std::nullopt, painter,
                                           options.hasFallback ? LinuxTrayIcon::MakeFallback(makeEmbedded) : nullptr);
    item = std::make_unique<PopupStatusItem>(*icon, linuxTexts());
    item->setButton({"macwindow.on.rectangle", "Ferrowyn", "Ferrowyn"});
    item->setMenu(test::statusMenu(test::Health::ready));
    item->setActionHandler([this](const MenuRow& row) { chosen.push_back(row.action); });
}

bool TrayRig::waitForHost(LinuxTrayIcon::Host host) {
    return runUntil([&] { return icon->shownBy() == host; });
}

std::optional<TestDesktop::Place> TrayRig::iconPlace() const {
    const int width = desktop.screen()->width_in_pixels;
    const int height = desktop.screen()->height_in_pixels;
    // Trays are at the upper and the lower edge.
    constexpr int strip = 40;
    for (const int top : {0, height - strip}) {
        const auto pixels = desktop.pixels({0, top, width, strip});
        int left = width, right = -1, upper = strip, lower = -1;
        for (int index = 0; index < static_cast<int>(pixels.size()); ++index) {
            if ((pixels[static_cast<std::size_t>(index)] & 0xFFFFFFU) == iconColor) {
                left = std::min(left, index % width);
                right = std::max(right, index % width);
                upper = std::min(upper, index / width);
                lower = std::max(lower, index / width);
            }
        }
        if (right >= 0) {
            return TestDesktop::Place{left, top + upper, right - left + 1, lower - upper + 1};
        }
    }
    return std::nullopt;
}

std::optional<TestDesktop::Place> TrayRig::waitForIcon() {
    std::optional<TestDesktop::Place> place;
    int timesSeen = 0;
    const bool isStill = runUntil([&] {
        const auto now = iconPlace();
        timesSeen = now && now == place ? timesSeen + 1 : 0;
        place = now;
        return timesSeen == 5;
    });
    return isStill ? place : std::nullopt;
}

std::optional<TestDesktop::Place> TrayRig::openMenu(std::uint8_t button) {
    const auto place = waitForIcon();
    if (!place) {
        return std::nullopt;
    }
    input.click(place->x + place->width / 2, place->y + place->height / 2, button);
    std::optional<TestDesktop::Place> menu;
    static_cast<void>(runUntil([&] {
        const auto window = desktop.visiblePanel();
        menu = window ? desktop.placeOf(*window) : std::nullopt;
        // It holds the keyboard once it can be used.
        return menu && !desktop.keyboardIsFree();
    }));
    return menu;
}

bool TrayRig::waitUntilMenuIsGone() {
    return runUntil(
        [&] { return item->openPopup() == nullptr && !desktop.visiblePanel() && desktop.keyboardIsFree(); });
}

}  // namespace ferrowyn::x11test
