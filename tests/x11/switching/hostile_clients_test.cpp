// The program on a desktop where another client writes and sends anything, and afterwards.

#include <algorithm>
#include <array>
#include <cstring>
#include <random>
#include <span>

#include "platform/x11/xcb_reply.h"
#include "tests/x11/switching/switching_desk.h"

namespace ferrowyn::x11test {
namespace {

constexpr std::array rootProperties{"_NET_CLIENT_LIST",     "_NET_CLIENT_LIST_STACKING", "_NET_ACTIVE_WINDOW",
                                    "_NET_CURRENT_DESKTOP", "_NET_SUPPORTING_WM_CHECK",  "_NET_SUPPORTED",
                                    "_NET_WORKAREA"};
constexpr std::array windowProperties{"WM_CLASS",
                                      "_NET_WM_NAME",
                                      "WM_NAME",
                                      "_NET_WM_WINDOW_TYPE",
                                      "_NET_WM_PID",
                                      "_NET_WM_WINDOW_OPACITY",
                                      "WM_TRANSIENT_FOR",
                                      "_NET_WM_ICON",
                                      "_NET_WM_STRUT_PARTIAL",
                                      "_GTK_APPLICATION_ID",
                                      "_KDE_NET_WM_DESKTOP_FILE",
                                      "WM_CLIENT_MACHINE",
                                      "WM_HINTS"};
constexpr std::array types{"WINDOW", "CARDINAL", "ATOM", "STRING", "UTF8_STRING", "COMPOUND_TEXT", "_NOBODYS_TYPE"};
constexpr std::array messages{"WM_PROTOCOLS", "MANAGER", "_NET_WM_STATE", "XdndEnter", "XdndDrop", "_XEMBED"};

class HostileClientsTest : public ManagedDeskTest {
protected:
    template <typename Choices>
    auto one(const Choices& choices) {
        return choices[random() % std::size(choices)];
    }
    /// A number that means nothing, or one that is some window's or something's size.
    std::uint32_t number() {
        const std::array<std::uint32_t, 7> numbers{static_cast<std::uint32_t>(random()),
                                                   0,
                                                   1,
                                                   0xFFFFFFFF,
                                                   static_cast<std::uint32_t>(desktop.root()),
                                                   window(1 + random() % 3),
                                                   0x7FFF};
        return one(numbers);
    }
    void writeSomething(xcb_window_t target, const std::string& property) {
        std::vector<std::uint32_t> value(one(std::array<std::size_t, 5>{0, 1, 2, 40, 4000}));
        std::ranges::generate(value, [this] { return number(); });
        const auto format = one(std::array<std::uint8_t, 3>{8, 16, 32});
        xcb_change_property(desktop.connection(), XCB_PROP_MODE_REPLACE, target, desktop.atom(property),
                            desktop.atom(one(types)), format, static_cast<std::uint32_t>(value.size()), value.data());
    }
    void sendSomething(xcb_window_t target) {
        std::array<std::uint32_t, 8> event{};
        std::ranges::generate(event, [this] { return random() % 2 == 0 ? number() : 0U; });
        event[1] = event[3] = target;
        const auto type = static_cast<std::uint8_t>(2 + random() % 33);
        if (type == XCB_CLIENT_MESSAGE) {
            event[2] = desktop.atom(one(messages));
        }
        std::array<char, sizeof event> bytes{};
        std::memcpy(bytes.data(), event.data(), sizeof event);
        bytes[0] = static_cast<char>(type);
        bytes[1] = static_cast<char>(type == XCB_CLIENT_MESSAGE ? 32U : random());
        xcb_send_event(desktop.connection(), 0, target, XCB_EVENT_MASK_NO_EVENT, bytes.data());
        xcb_send_event(desktop.connection(), 0, desktop.root(), XCB_EVENT_MASK_PROPERTY_CHANGE, bytes.data());
    }
    /// All that the program has made on the root, shown or not.
    [[nodiscard]] std::vector<xcb_window_t> windowsOfProgram() const {
        const XcbReply<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(desktop.connection(), xcb_query_tree(desktop.connection(), desktop.root()), nullptr));
        std::vector<xcb_window_t> own;
        const std::span children(xcb_query_tree_children(tree.get()),
                                 static_cast<std::size_t>(xcb_query_tree_children_length(tree.get())));
        std::ranges::copy_if(children, std::back_inserter(own), [this](xcb_window_t child) {
            return desktop.text(child, "WM_CLASS").find("ferrowyn") != std::string::npos;
        });
        return own;
    }
    /// Whether the program's services are active or suspended, as it said last.
    [[nodiscard]] bool waitForServices(bool areActive) const {
        return program->process().waitUntilOutput([&] {
            const auto said = program->process().output();
            const auto active = said.rfind("Services active");
            const auto suspended = said.rfind("Services suspended");
            return areActive == (suspended == std::string::npos || active > suspended);
        });
    }
    void synchronize() const { static_cast<void>(desktop.activeWindow()); }

    /// The same each time.
    std::mt19937 random{20};
};

TEST_P(HostileClientsTest, NothingThatIsWrittenOrSentOutlastsItsTime) {
    openWindows(3);
    startProgram();
    const auto own = windowsOfProgram();
    ASSERT_FALSE(own.empty());
    for (int round = 0; round < 400; ++round) {
        writeSomething(desktop.root(), one(rootProperties));
        writeSomething(window(1 + random() % 3), one(windowProperties));
        sendSomething(one(own));
        if (round % 40 == 0) {
            // With the panel on the screen too; whether it is depends on what has just been written.
            input.chord({key::leftAlt, key::tab});
        }
        synchronize();
    }
    // The manager may not have survived it. Another one writes everything on the root anew. The program notices with
    // its next look at the desktop, every two seconds, and hears of the windows that become active after that.
    windows.clear();
    manager.reset();
    ASSERT_TRUE(waitForServices(false)) << program->process().output();
    manager = std::make_unique<WindowManagerProcess>(server, GetParam());
    ASSERT_TRUE(waitForServices(true)) << program->process().output();
    openWindows(3);
    ASSERT_TRUE(program->waitForFirst(window(3))) << program->process().output();
    for (int round = 0; round < 3; ++round) {
        use(window(2));
        use(window(3));
        hold();
        letGo();
        expectSwitchTo(window(2));
    }
}

INSTANTIATE_TEST_SUITE_P(X11, HostileClientsTest, testing::Values("openbox", "xfwm4"), managerName);

}  // namespace
}  // namespace ferrowyn::x11test
