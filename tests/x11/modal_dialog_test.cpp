#include <gtest/gtest.h>

#include <string>

#include "tests/x11/desk_test.h"

namespace ferrowyn::x11test {
namespace {

/// A document in front of another window, and a modal dialog of the document that has the focus.
class ModalDialogTest : public ManagedDeskTest {
protected:
    void startWithDialog(const std::string& title, std::size_t listed) {
        openActive({.title = "Other", .className = "Elsewhere"});
        openActive({.title = "Document"});
        openActive({.title = title,
                    .type = "_NET_WM_WINDOW_TYPE_DIALOG",
                    .transientFor = window(2),
                    .states = {"_NET_WM_STATE_MODAL"}});
        FerrowynProgram::Options options;
        program = std::make_unique<FerrowynProgram>(FERROWYN_PROGRAM, server, options);
        ASSERT_TRUE(program->waitUntilActive()) << "it said: " << program->process().output();
        ASSERT_TRUE(program->waitForList(listed, listed == 3 ? dialog() : document()))
            << "it said: " << program->process().output();
    }

    /// The program has seen that its choice of this window was carried out, and does not ask for it again and again.
    void expectConfirmed(xcb_window_t window) {
        EXPECT_TRUE(program->process().waitForOutput("Window " + std::to_string(window) + " active after"))
            << "it said: " << program->process().output();
    }

    [[nodiscard]] xcb_window_t other() const { return window(1); }
    [[nodiscard]] xcb_window_t document() const { return window(2); }
    [[nodiscard]] xcb_window_t dialog() const { return window(3); }
};

TEST_P(ModalDialogTest, AQuickSwitchFromTheDialogLeavesTheApplication) {
    startWithDialog("Save as", 3);
    for (const auto expected : {other(), dialog(), other()}) {
        input.chord({key::leftAlt, key::tab});
        expectSwitchTo(expected);
    }
}

TEST_P(ModalDialogTest, ChoosingTheBlockedWindowLeadsToItsDialog) {
    startWithDialog("Save as", 3);
    use(other());
    hold();
    type({key::d, key::o, key::c, key::u});
    input.tap(key::enter);
    expectSwitchTo(dialog());
    letGo();
    expectConfirmed(document());
    input.chord({key::leftAlt, key::tab});
    expectSwitchTo(other());
}

TEST_P(ModalDialogTest, ForADialogThatIsNotListedItsWindowStands) {
    startWithDialog("", 2);
    input.chord({key::leftAlt, key::tab});
    expectSwitchTo(other());
    // It has no row: its window's leads to it.
    input.chord({key::leftAlt, key::tab});
    EXPECT_TRUE(desktop.waitForActiveWindow(dialog())) << desktop.activeWindow() << " is active";
    EXPECT_TRUE(program->waitForFirst(document())) << "it said: " << program->process().output();
    expectConfirmed(document());
    input.chord({key::leftAlt, key::tab});
    expectSwitchTo(other());
}

INSTANTIATE_TEST_SUITE_P(X11, ModalDialogTest, testing::Values("openbox", "xfwm4"), managerName);
INSTANTIATE_TEST_SUITE_P(FurtherManagers, ModalDialogTest,
                         testing::Values("icewm", "metacity", "i3", "kwin_x11", "mutter"), managerName);

}  // namespace
}  // namespace ferrowyn::x11test
