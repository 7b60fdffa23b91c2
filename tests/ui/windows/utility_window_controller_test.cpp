#include "ui/windows/utility_window.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QScreen>
#include <QWindow>
#include <cstdlib>

#include "platform/simulated/simulated_system.h"

namespace ferrowyn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class UtilityWindowControllerTest : public testing::Test {
protected:
    UtilityWindowController make(const char* title, bool isResizable = false) {
        return {application, Phrase{title, {}}, isResizable, [this] {
                    ++builds;
                    auto content = std::make_unique<QLabel>(QStringLiteral("content"));
                    content->setMinimumSize(200, 100);
                    return content;
                }};
    }

    static void processEvents() { QCoreApplication::processEvents(); }

    SimulatedApplication application{1};
    int builds = 0;
};

TEST_F(UtilityWindowControllerTest, NothingIsMadeBeforeTheFirstShow) {
    const UtilityWindowController controller = make("Ferrowyn Setup");
    EXPECT_EQ(controller.window(), nullptr);
    EXPECT_EQ(builds, 0);
    EXPECT_THAT(application.policies, IsEmpty());
}

TEST_F(UtilityWindowControllerTest, ProgressWithoutAnEndStandsInTheMiddleOfItsWindow) {
    UtilityWindowController controller(application, Phrase{"Ferrowyn Settings", {}}, false,
                                       [] { return std::make_unique<ProgressView>(); });
    controller.show();
    processEvents();
    EXPECT_EQ(controller.window()->size(), QSize(460, 120));
    const auto bars = controller.window()->findChildren<QProgressBar*>();
    ASSERT_EQ(bars.size(), 1);
    EXPECT_EQ(bars[0]->minimum(), bars[0]->maximum());
    const QRect place(bars[0]->mapTo(controller.window(), QPoint(0, 0)), bars[0]->size());
    EXPECT_NEAR(place.center().x(), 230, 1);
    EXPECT_NEAR(place.center().y(), 60, 1);
}

TEST_F(UtilityWindowControllerTest, ShowingMakesTheProgramRegularAndActive) {
    UtilityWindowController controller = make("Ferrowyn Setup");
    controller.show();
    processEvents();
    EXPECT_THAT(application.policies, ElementsAre(ActivationPolicy::regular));
    EXPECT_EQ(application.activationCount, 1);
    ASSERT_NE(controller.window(), nullptr);
    EXPECT_TRUE(controller.window()->isVisible());
    EXPECT_EQ(controller.window()->windowTitle(), QStringLiteral("Ferrowyn Setup"));
    EXPECT_THAT(application.broughtToFront, ElementsAre(static_cast<WindowId>(controller.window()->winId())));
}

TEST_F(UtilityWindowControllerTest, ShowingTwiceBringsTheSameWindowToTheFront) {
    UtilityWindowController controller = make("Ferrowyn Setup");
    controller.show();
    processEvents();
    const QWidget* const first = controller.window();
    controller.show();
    processEvents();
    EXPECT_EQ(controller.window(), first);
    EXPECT_EQ(builds, 1);
    EXPECT_EQ(application.activationCount, 2);
    EXPECT_EQ(application.broughtToFront.size(), 2U);
    EXPECT_TRUE(controller.window()->isActiveWindow());
}

TEST_F(UtilityWindowControllerTest, AClosedWindowIsKeptAndShownAgain) {
    UtilityWindowController controller = make("Ferrowyn Setup");
    controller.show();
    processEvents();
    controller.close();
    EXPECT_FALSE(controller.window()->isVisible());
    controller.show();
    processEvents();
    EXPECT_TRUE(controller.window()->isVisible());
    EXPECT_EQ(builds, 1);
    EXPECT_EQ(application.broughtToFront.size(), 2U);
    EXPECT_THAT(application.policies,
                ElementsAre(ActivationPolicy::regular, ActivationPolicy::accessory, ActivationPolicy::regular));
}

TEST_F(UtilityWindowControllerTest, AMinimisedWindowIsRestored) {
    UtilityWindowController controller = make("Ferrowyn Setup");
    controller.show();
    controller.window()->showMinimized();
    controller.show();
    EXPECT_FALSE(controller.window()->isMinimized());
}

TEST_F(UtilityWindowControllerTest, OnlyTheLastWindowToCloseGivesUpThePlaceAmongTheApplications) {
    UtilityWindowController setup = make("Ferrowyn Setup");
    UtilityWindowController settings = make("Ferrowyn Settings", true);
    setup.show();
    settings.show();
    application.policies.clear();
    setup.close();
    EXPECT_THAT(application.policies, IsEmpty());
    settings.close();
    EXPECT_THAT(application.policies, ElementsAre(ActivationPolicy::accessory));
}

TEST_F(UtilityWindowControllerTest, AMinimisedWindowDoesNotCountAsAnOpenOne) {
    UtilityWindowController setup = make("Ferrowyn Setup");
    UtilityWindowController settings = make("Ferrowyn Settings", true);
    setup.show();
    settings.show();
    setup.window()->showMinimized();
    application.policies.clear();
    settings.close();
    EXPECT_THAT(application.policies, ElementsAre(ActivationPolicy::accessory));
}

TEST_F(UtilityWindowControllerTest, ThePanelAndTooltipsDoNotCountAsOpenWindows) {
    QWidget panel(nullptr, Qt::Window | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint);
    QWidget tooltip(nullptr, Qt::ToolTip);
    QWidget menu(nullptr, Qt::Popup);
    QWidget passive(nullptr, Qt::Window | Qt::WindowDoesNotAcceptFocus);
    for (QWidget* const other : {&panel, &tooltip, &menu, &passive}) {
        other->show();
    }
    UtilityWindowController controller = make("Ferrowyn Setup");
    controller.show();
    application.policies.clear();
    controller.close();
    EXPECT_THAT(application.policies, ElementsAre(ActivationPolicy::accessory));
}

TEST_F(UtilityWindowControllerTest, AnotherOrdinaryWindowCounts) {
    QWidget other;
    other.show();
    UtilityWindowController controller = make("Ferrowyn Setup");
    controller.show();
    application.policies.clear();
    controller.close();
    EXPECT_THAT(application.policies, IsEmpty());
}

TEST_F(UtilityWindowControllerTest, ClosingWhatWasNeverShownDoesNothing) {
    UtilityWindowController controller = make("Ferrowyn Setup");
    controller.close();
    EXPECT_THAT(application.policies, IsEmpty());
}

TEST_F(UtilityWindowControllerTest, OnlyTheResizableOneCanBeResized) {
    UtilityWindowController fixed = make("Ferrowyn Setup");
    UtilityWindowController resizable = make("Ferrowyn Settings", true);
    EXPECT_FALSE(fixed.isResizable());
    EXPECT_TRUE(resizable.isResizable());
    fixed.show();
    resizable.show();
    processEvents();
    EXPECT_EQ(fixed.window()->minimumSize(), fixed.window()->maximumSize());
    EXPECT_FALSE(fixed.window()->windowFlags().testFlag(Qt::WindowMaximizeButtonHint));
    EXPECT_TRUE(fixed.window()->windowFlags().testFlags(Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint));
    EXPECT_TRUE(resizable.window()->windowFlags().testFlag(Qt::WindowMaximizeButtonHint));
    resizable.window()->resize(640, 480);
    EXPECT_EQ(resizable.window()->size(), QSize(640, 480));
}

TEST_F(UtilityWindowControllerTest, TheWindowIsCentred) {
    UtilityWindowController controller = make("Ferrowyn Setup");
    controller.show();
    processEvents();
    const QRect area = QGuiApplication::primaryScreen()->availableGeometry();
    const QPoint off = QRect(controller.window()->pos(), controller.window()->size()).center() - area.center();
    EXPECT_LE(std::abs(off.x()), 1);
    EXPECT_LE(std::abs(off.y()), 1);
}

TEST_F(UtilityWindowControllerTest, TheKeyboardClosesIt) {
    for (const auto& [key, modifiers] :
         {std::pair(Qt::Key_Escape, Qt::NoModifier), std::pair(Qt::Key_W, Qt::ControlModifier)}) {
        UtilityWindowController controller = make("Ferrowyn Setup");
        controller.show();
        processEvents();
        QKeyEvent press(QEvent::KeyPress, key, modifiers);
        QApplication::sendEvent(controller.window()->windowHandle(), &press);
        EXPECT_FALSE(controller.window()->isVisible()) << key;
    }
}

TEST_F(UtilityWindowControllerTest, TheDesktopConfiguresTheWindowEachTimeBeforeItIsSeen) {
    struct Configured {
        std::uintptr_t number;
        bool isResizable;
        bool wasVisible;
    };
    std::vector<Configured> configured;
    std::unique_ptr<UtilityWindowController> controller;
    controller = std::make_unique<UtilityWindowController>(
        application, Phrase{"Ferrowyn Settings", {}}, true, [] { return std::make_unique<QLabel>(); },
        [&](std::uintptr_t number, bool isResizable) {
            configured.push_back({number, isResizable, controller->window()->isVisible()});
            return 0;
        });
    for (const std::size_t times : {1U, 2U}) {
        controller->show();
        ASSERT_EQ(configured.size(), times);
        EXPECT_EQ(configured.back().number, static_cast<std::uintptr_t>(controller->window()->winId()));
        EXPECT_TRUE(configured.back().isResizable);
        EXPECT_FALSE(configured.back().wasVisible);
        controller->show();
        EXPECT_EQ(configured.size(), times) << "it is on the screen already";
        controller->close();
    }
}

TEST_F(UtilityWindowControllerTest, TheDesktopConfiguresTheWindowAgainAfterFullScreen) {
    int configurations = 0;
    UtilityWindowController controller(
        application, Phrase{"Ferrowyn Settings", {}}, true, [] { return std::make_unique<QLabel>(); },
        [&](std::uintptr_t /*number*/, bool /*isResizable*/) { return 28 + configurations++; });
    controller.show();
    processEvents();
    EXPECT_EQ(configurations, 1);
    controller.window()->showFullScreen();
    processEvents();
    EXPECT_EQ(configurations, 1);
    controller.window()->showNormal();
    processEvents();
    EXPECT_EQ(configurations, 2);
    EXPECT_EQ(controller.window()->contentsMargins().top(), 29);
    controller.window()->showMaximized();
    controller.window()->showNormal();
    processEvents();
    EXPECT_EQ(configurations, 2) << "which changes nothing of the window's looks";
}

TEST_F(UtilityWindowControllerTest, NothingOfTheContentStandsUnderATitleBarThatCoversTheWindow) {
    constexpr int titleBarHeight = 28;
    for (const bool isResizable : {false, true}) {
        const auto contentBelow = [this, isResizable](int height) {
            UtilityWindowController controller(
                application, Phrase{"Ferrowyn Setup", {}}, isResizable,
                [] {
                    auto content = std::make_unique<QWidget>();
                    content->setObjectName("content");
                    content->setMinimumSize(300, 200);
                    return content;
                },
                [height](std::uintptr_t /*number*/, bool /*isResizable*/) { return height; });
            // The second time, too, it is the same window.
            for (int times = 0; times < 2; ++times) {
                controller.show();
                processEvents();
                controller.close();
            }
            auto* const window = controller.window();
            auto* const content = window->findChild<QWidget*>("content");
            return QRect(content->mapTo(window, QPoint()), content->size());
        };
        const QRect plain = contentBelow(0);
        EXPECT_EQ(plain.top(), 0);
        EXPECT_EQ(contentBelow(titleBarHeight), plain.translated(0, titleBarHeight)) << isResizable;
    }
}

}  // namespace
}  // namespace ferrowyn
