#include <gmock/gmock.h>

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QProxyStyle>
#include <QWheelEvent>
#include <algorithm>
#include <string>

#include "tests/ui/panel/switcher_view_fixture.h"

namespace ferrowyn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SwitcherViewTest : public test::SwitcherViewFixture {};

QColor colorAt(const QImage& image, double x, double y) {
    return image.pixelColor(static_cast<int>(x), static_cast<int>(y));
}

TEST_F(SwitcherViewTest, OnlyTheSelectedRowStandsOnTheAccent) {
    const QImage image = picture();
    for (int index = 0; index < 9; ++index) {
        const Rect row = view.rowRect(index);
        const QColor expected = index == 1 ? view.theme().selection : view.theme().background;
        EXPECT_EQ(colorAt(image, row.midX(), row.y + 4), expected) << "row " << index;
    }
}

TEST_F(SwitcherViewTest, FollowsTheSelectionWithoutWaitingForTheLoop) {
    model.viewModel.move(3);
    view.synchronize();
    const QImage image = picture();
    EXPECT_EQ(colorAt(image, 320, view.rowRect(4).y + 4), view.theme().selection);
    EXPECT_EQ(colorAt(image, 320, view.rowRect(1).y + 4), view.theme().background);
}

TEST_F(SwitcherViewTest, AFrameCostsTheSameForTenRowsAndTenThousand) {
    (void)picture();
    const int forNine = view.paintedRowCount();
    model.viewModel.endSession();
    model.show(test::PanelModel::windows(10'000, 20));
    model.viewModel.beginSession(false);
    const int shapedBefore = view.shapedLineCount();
    (void)picture();
    EXPECT_EQ(forNine, 9);
    EXPECT_LE(view.paintedRowCount(), 10);
    EXPECT_LE(view.shapedLineCount() - shapedBefore, 30) << "no line outside the panel is shaped";
    const int shapedOnce = view.shapedLineCount();
    (void)picture();
    EXPECT_EQ(view.shapedLineCount(), shapedOnce) << "an unchanged frame shapes nothing";
}

TEST_F(SwitcherViewTest, WithoutHintsThereIsNoFooterAndMoreRoomForRows) {
    EXPECT_TRUE(view.geometryNow().footer());
    model.preferences.showShortcutHints.set(false);
    view.synchronize();
    EXPECT_FALSE(view.geometryNow().footer());
    EXPECT_EQ(view.geometryNow().body().maxY(), view.height());
}

TEST_F(SwitcherViewTest, TheFooterSaysWhenLettingGoDoesNotSwitch) {
    const auto footer = [this] {
        view.synchronize();
        return picture().copy(toQt(*view.geometryNow().footer()).toAlignedRect().adjusted(0, 2, 0, -2));
    };
    const QImage switching = footer();
    model.viewModel.deleteBackward();
    EXPECT_EQ(footer(), switching);
    model.viewModel.insertText("w");
    const QImage staying = footer();
    EXPECT_NE(staying, switching);
    model.viewModel.clearQuery();
    EXPECT_EQ(footer(), staying) << "an empty filter does not let go again";
    model.viewModel.endSession();
    model.viewModel.beginSession(false);
    EXPECT_EQ(footer(), switching);
    model.preferences.confirmOnModifierRelease.set(false);
    EXPECT_EQ(footer(), staying);
}

TEST_F(SwitcherViewTest, InGridLayoutRowsFlowFiveToALine) {
    model.preferences.layout.set(SwitcherLayout::grid);
    view.resize(760, 600);
    view.synchronize();
    EXPECT_EQ(view.rowRect(4).y, view.rowRect(0).y);
    EXPECT_GT(view.rowRect(5).y, view.rowRect(4).y);
    EXPECT_EQ(view.rowRect(5).x, view.rowRect(0).x);
    (void)picture();
    EXPECT_EQ(view.paintedRowCount(), 9);
}

TEST_F(SwitcherViewTest, TheIndicatorChangesWithTheLayout) {
    const auto indicator = [this] { return picture().copy(570, 10, 60, 36); };
    const QImage list = indicator();
    model.preferences.layout.set(SwitcherLayout::grouped);
    view.synchronize();
    const QImage grouped = indicator();
    model.preferences.layout.set(SwitcherLayout::grid);
    view.synchronize();
    EXPECT_NE(list, grouped);
    EXPECT_NE(grouped, indicator());
}

TEST_F(SwitcherViewTest, ALongQueryDoesNotRunOverTheMagnifier) {
    const int textLeft = 46;
    const auto searchLine = [this](const std::string& query) {
        model.viewModel.clearQuery();
        model.viewModel.insertText(query);
        view.synchronize();
        return picture().copy(toQt(view.geometryNow().searchLine()).toAlignedRect());
    };
    const QImage brief = searchLine("mm");
    const QImage endless = searchLine(std::string(200, 'm'));
    // A letter may reach a pixel out of its box.
    const QRect before(0, 0, textLeft - 1, brief.height());
    EXPECT_TRUE(endless.copy(before) == brief.copy(before));
    // Below the outline of the panel.
    const QImage firstLetters = endless.copy(textLeft, 1, 20, brief.height() - 1);
    QImage blank = firstLetters;
    blank.fill(view.theme().background);
    EXPECT_NE(firstLetters, blank) << "the text fills its room";
}

TEST_F(SwitcherViewTest, WithoutWindowsTheBodySaysSo) {
    model.viewModel.endSession();
    model.show({});
    model.viewModel.beginSession(false);
    view.resize(640, 188 + 34);
    view.synchronize();
    const QImage empty = picture();
    EXPECT_EQ(view.paintedRowCount(), 0);
    EXPECT_FALSE(view.showsRows());
    const QRect message = toQt(view.geometryNow().body()).toAlignedRect().adjusted(20, 30, -20, -20);
    QImage blank = empty.copy(message);
    blank.fill(view.theme().background);
    EXPECT_NE(empty.copy(message), blank);
}

TEST_F(SwitcherViewTest, WithoutTrustThePermissionStateIsShownWhateverTheRowsHold) {
    model.setTrusted(false);
    view.synchronize();
    EXPECT_FALSE(view.showsRows());
    (void)picture();
    EXPECT_EQ(view.paintedRowCount(), 0);
    click(centre(view.permissionButtonRect()));
    EXPECT_EQ(permissionRequests, 1);
    EXPECT_THAT(activated, IsEmpty());
}

TEST_F(SwitcherViewTest, ThePermissionButtonShowsThatThePointerIsOnIt) {
    model.setTrusted(false);
    view.synchronize();
    const QImage atRest = picture();
    move(centre(view.permissionButtonRect()));
    EXPECT_NE(picture(), atRest);
    move({5, 5});
    EXPECT_EQ(picture(), atRest);
}

TEST_F(SwitcherViewTest, AClickNeedsPressAndReleaseOnTheSameRow) {
    click(centre(view.rowRect(2)));
    EXPECT_THAT(activated, ElementsAre(3U));
    press(centre(view.rowRect(2)));
    release(centre(view.rowRect(3)));
    EXPECT_THAT(activated, ElementsAre(3U));
    send(QEvent::MouseButtonPress, centre(view.rowRect(2)), Qt::RightButton);
    send(QEvent::MouseButtonRelease, centre(view.rowRect(2)), Qt::RightButton);
    EXPECT_THAT(activated, ElementsAre(3U));
}

TEST_F(SwitcherViewTest, MovingOverRowsReportsThemAndNothingElse) {
    move(centre(view.rowRect(5)));
    move(centre(view.geometryNow().searchLine()));
    EXPECT_THAT(hovered, ElementsAre(5));
}

TEST_F(SwitcherViewTest, APointerThatRestsWhereThePanelAppearsHoversNothing) {
    const QPointF onARow = centre(view.rowRect(3));
    view.show();
    // All that a panel which comes to the pointer causes is that the pointer is now inside.
    QEnterEvent enter(onARow, onARow, view.mapToGlobal(onARow));
    QApplication::sendEvent(&view, &enter);
    view.synchronize();
    (void)picture();
    EXPECT_THAT(hovered, IsEmpty());
    move(onARow + QPointF(1, 0));
    EXPECT_THAT(hovered, ElementsAre(3)) << "a motion over the same row";
    view.hide();
}

TEST_F(SwitcherViewTest, OnlyFavouritesAndTheSelectedRowHaveAStarToClick) {
    const auto starOf = [this](int index) {
        const Rect row = view.rowRect(index);
        return QPointF(row.maxX() - 12 - 20 - 12 - 7, row.midY());
    };
    click(starOf(1));
    EXPECT_THAT(toggled, ElementsAre(2U)) << "the selected row";
    click(starOf(3));
    EXPECT_THAT(toggled, ElementsAre(2U)) << "no star there";
    EXPECT_THAT(activated, ElementsAre(4U));
    model.favourites.identifiers.set({"App 1"});
    view.synchronize();
    click(starOf(3));
    EXPECT_THAT(toggled, ElementsAre(2U, 4U));
}

TEST_F(SwitcherViewTest, TheWheelScrollsWithinTheRows) {
    model.viewModel.endSession();
    model.show(test::PanelModel::windows(50, 3));
    model.viewModel.beginSession(false);
    view.synchronize();
    const auto turn = [this](int units) {
        QWheelEvent event({320, 300}, {320, 300}, {}, {0, units}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase,
                          false);
        QApplication::sendEvent(&view, &event);
    };
    turn(-120);
    EXPECT_EQ(view.scroll(), 52);
    turn(1200);
    EXPECT_EQ(view.scroll(), 0);
    turn(-120'000);
    EXPECT_EQ(view.scroll(), view.geometryNow().maximumScroll());
}

TEST_F(SwitcherViewTest, ANewSessionStartsAtTheTop) {
    model.viewModel.endSession();
    model.show(test::PanelModel::windows(50, 3));
    model.viewModel.beginSession(false);
    model.viewModel.moveToEdge(false);
    view.synchronize();
    EXPECT_EQ(view.scroll(), view.geometryNow().maximumScroll());
    model.viewModel.endSession();
    model.viewModel.beginSession(false);
    view.synchronize();
    EXPECT_EQ(view.scroll(), 0);
}

TEST_F(SwitcherViewTest, NothingMovesWhileHiddenOrWithReducedMotion) {
    EXPECT_FALSE(view.isAnimating());
    model.viewModel.endSession();
    model.show(test::PanelModel::windows(50, 3));
    model.viewModel.beginSession(false);
    qputenv("FERROWYN_REDUCED_MOTION", "1");
    view.show();
    EXPECT_FALSE(view.isAnimating());
    model.viewModel.moveToEdge(false);
    view.synchronize();
    EXPECT_EQ(view.scroll(), view.geometryNow().maximumScroll()) << "at once";
    view.hide();
    qunsetenv("FERROWYN_REDUCED_MOTION");
    EXPECT_FALSE(view.isAnimating());
}

class MovingStyle final : public QProxyStyle {
public:
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override {
        return hint == SH_Widget_Animation_Duration ? 200 : QProxyStyle::styleHint(hint, option, widget, data);
    }
};

TEST_F(SwitcherViewTest, TheSelectionScrollsIntoViewSmoothlyAndEverythingRestsWhenHidden) {
    MovingStyle style;
    view.setStyle(&style);
    model.viewModel.endSession();
    model.show(test::PanelModel::windows(50, 3));
    model.viewModel.beginSession(false);
    view.show();
    EXPECT_TRUE(view.isAnimating()) << "the caret blinks";
    model.viewModel.moveToEdge(false);
    view.synchronize();
    EXPECT_LT(view.scroll(), view.geometryNow().maximumScroll()) << "not at once";
    const QDeadlineTimer deadline(20'000);
    while (view.scroll() < view.geometryNow().maximumScroll() && !deadline.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    EXPECT_EQ(view.scroll(), view.geometryNow().maximumScroll());
    view.hide();
    EXPECT_FALSE(view.isAnimating());
    view.setStyle(nullptr);
}

/// Milliseconds from the start of the scrolling to its end, and whether the view was seen on its way.
struct Scrolling {
    qint64 milliseconds = 0;
    bool isSeenBetween = false;
};
Scrolling watchScrolling(const SwitcherView& view, double target) {
    const double start = view.scroll();
    Scrolling seen;
    QElapsedTimer clock;
    clock.start();
    while (view.scroll() != target && clock.elapsed() < 20'000) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        seen.isSeenBetween = seen.isSeenBetween || (view.scroll() != start && view.scroll() != target);
    }
    seen.milliseconds = clock.elapsed();
    return seen;
}

TEST_F(SwitcherViewTest, ASelectionThatChangesWithTheQueryScrollsIntoViewLikeAnyOther) {
    MovingStyle style;
    view.setStyle(&style);
    model.viewModel.endSession();
    model.show(test::PanelModel::windows(50, 3));
    model.viewModel.beginSession(false);
    view.resize(640, 56 + 16 + 4 * 52 + 3 + 34);
    view.show();
    for (const bool isResized : {false, true}) {
        model.viewModel.move(30);
        view.synchronize();
        ASSERT_TRUE(watchScrolling(view, view.geometryNow().scrollShowing(31, 0)).isSeenBetween);
        model.viewModel.insertText("w");
        view.synchronize();
        EXPECT_EQ(model.viewModel.selectedIndex.get(), 0);
        EXPECT_GT(view.scroll(), 0) << "not at once";
        if (isResized) {
            // As the panel is when it holds fewer or more rows than before.
            view.resize(640, view.height() + 52);
            EXPECT_GT(view.scroll(), 0) << "nor when the panel is sized anew";
        }
        const Scrolling scrolling = watchScrolling(view, 0);
        EXPECT_TRUE(scrolling.isSeenBetween);
        // The frames are the clock's: a busy machine may add to the tenth of a second, nothing takes from it.
        EXPECT_GE(scrolling.milliseconds, 80);
        model.viewModel.endSession();
        model.viewModel.beginSession(false);
        view.synchronize();
    }
    view.hide();
    view.setStyle(nullptr);
}

/// Fifty rows in a view that moves them as it does where the user has not turned animations off.
class ScrollingSwitcherViewTest : public SwitcherViewTest {
protected:
    ScrollingSwitcherViewTest() {
        view.setStyle(&style_);
        model.viewModel.endSession();
        model.show(test::PanelModel::windows(50, 3));
        model.viewModel.beginSession(false);
    }
    ~ScrollingSwitcherViewTest() override {
        view.hide();
        view.setStyle(nullptr);
    }

    void scrollToTheLastRow() {
        view.show();
        model.viewModel.moveToEdge(false);
        view.synchronize();
    }

private:
    MovingStyle style_;
};

TEST_F(ScrollingSwitcherViewTest, ScrollingTakesATenthOfASecondAndSlowsDownTowardsItsEnd) {
    scrollToTheLastRow();
    const QVariantAnimation& scrolling = view.scrollAnimation();
    ASSERT_EQ(scrolling.state(), QAbstractAnimation::Running);
    EXPECT_EQ(scrolling.totalDuration(), 100);
    EXPECT_EQ(scrolling.endValue().toDouble(), view.geometryNow().maximumScroll());
    const QEasingCurve curve = scrolling.easingCurve();
    EXPECT_EQ(curve.type(), QEasingCurve::OutQuad);
    EXPECT_NEAR(curve.valueForProgress(0.5), 0.75, 0.001) << "most of the way lies in the first half";
}

TEST_F(ScrollingSwitcherViewTest, ScrollingStartsWithinTheRowsThatAreLeft) {
    scrollToTheLastRow();
    (void)watchScrolling(view, view.geometryNow().maximumScroll());
    model.viewModel.insertText("window 1");
    view.synchronize();
    EXPECT_LE(view.scroll(), view.geometryNow().maximumScroll()) << "no empty place is shown below the last row";
}

TEST_F(ScrollingSwitcherViewTest, ScrollingNeverPassesTheEndOfRowsThatBecomeFewerMeanwhile) {
    // Of a filtered list, windows that are closed leave at once.
    model.viewModel.insertText("window");
    model.viewModel.moveToEdge(false);
    view.show();
    ASSERT_EQ(model.viewModel.selectedIndex.get(), 49);
    ASSERT_EQ(view.scroll(), view.geometryNow().maximumScroll());
    std::vector<AppWindow> left;
    for (int row = 0; row < 33; ++row) {
        left.push_back(model.viewModel.rows.get()[static_cast<std::size_t>(row)].window);
    }
    model.viewModel.move(-19);
    view.synchronize();
    model.show(left);
    view.synchronize();
    ASSERT_EQ(model.viewModel.selectedIndex.get(), 30) << "nothing scrolls the selection into view again";
    ASSERT_EQ(view.scrollAnimation().state(), QAbstractAnimation::Running);
    const double end = view.geometryNow().maximumScroll();
    ASSERT_GT(view.scrollAnimation().endValue().toDouble(), end) << "the selected row would have stood at the top";
    double furthest = view.scroll();
    const QDeadlineTimer deadline(20'000);
    while (view.scrollAnimation().state() == QAbstractAnimation::Running && !deadline.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        furthest = std::max(furthest, view.scroll());
    }
    EXPECT_LE(furthest, end) << "no empty place is shown below the last row";
    EXPECT_EQ(view.scroll(), end);
}

TEST_F(SwitcherViewTest, RowsOfALaterSessionAreFoundReadyWhenTheyMatchThePreview) {
    model.viewModel.endSession();
    QImage preview(view.size(), QImage::Format_ARGB32_Premultiplied);
    EXPECT_FALSE(view.matchesPreview()) << "nothing was drawn ahead";
    view.renderPreview(preview);
    model.viewModel.beginSession(false);
    view.synchronize();
    EXPECT_TRUE(view.matchesPreview());
    EXPECT_EQ(picture(), preview) << "the promise";
    model.viewModel.move(1);
    EXPECT_FALSE(view.matchesPreview());
    model.viewModel.move(-1);
    EXPECT_TRUE(view.matchesPreview());
    model.preferences.showShortcutHints.set(false);
    EXPECT_FALSE(view.matchesPreview());
}

TEST_F(SwitcherViewTest, APreviewIsOutdatedByATitleInsideThePanelOnly) {
    model.viewModel.endSession();
    auto windows = test::PanelModel::windows(50, 3);
    model.show(windows);
    QImage preview(view.size(), QImage::Format_ARGB32_Premultiplied);
    view.renderPreview(preview);
    windows[40].title = "elsewhere";
    model.show(windows);
    model.viewModel.beginSession(false);
    EXPECT_TRUE(view.matchesPreview());
    model.viewModel.endSession();
    windows[3].title = "in sight";
    model.show(windows);
    model.viewModel.beginSession(false);
    EXPECT_FALSE(view.matchesPreview());
}

TEST_F(SwitcherViewTest, NewColoursOutdateThePreviewAndAskForAnother) {
    model.viewModel.endSession();
    QImage preview(view.size(), QImage::Format_ARGB32_Premultiplied);
    view.renderPreview(preview);
    model.viewModel.beginSession(false);
    ASSERT_TRUE(view.matchesPreview());
    model.viewModel.isPinned.set(true);
    EXPECT_FALSE(view.matchesPreview()) << "which says that it stays open";
    model.viewModel.isPinned.set(false);
    ASSERT_TRUE(view.matchesPreview());
    appearanceChanges = 0;
    QPalette dark = view.palette();
    dark.setColor(QPalette::Window, Qt::black);
    view.setPalette(dark);
    EXPECT_GE(appearanceChanges, 1);
    EXPECT_FALSE(view.matchesPreview());
}

TEST_F(SwitcherViewTest, CornersAreRoundOnlyWhenACompositorBlendsThem) {
    EXPECT_EQ(picture().pixelColor(0, 0).alpha(), 255);
    view.setBackground(PanelBackground::translucent);
    QImage image(view.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    view.render(&image, {}, {}, QWidget::RenderFlags());
    EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0);
    EXPECT_GT(image.pixelColor(320, 3).alpha(), 230);
    EXPECT_LT(image.pixelColor(320, 3).alpha(), 255);
}

TEST_F(SwitcherViewTest, NothingIsDrawnOverAMaterialOfTheDesktopButTheContent) {
    view.setBackground(PanelBackground::material);
    QPalette dark = view.palette();
    dark.setColor(QPalette::Window, Qt::black);
    for (const bool isDark : {false, true}) {
        if (isDark) {
            view.setPalette(dark);
        }
        QImage image(view.size(), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::red);
        view.render(&image, {}, {}, QWidget::RenderFlags());
        EXPECT_EQ(image.pixelColor(320, 3).alpha(), 0) << (isDark ? "dark" : "light");
        EXPECT_EQ(image.pixelColor(3, image.height() / 2).alpha(), 0);
        const Rect selected = view.rowRect(1);
        EXPECT_EQ(image.pixelColor(320, static_cast<int>(selected.y) + 4), view.theme().selection);
    }
}

TEST_F(SwitcherViewTest, MatchedCharactersStandOut) {
    model.viewModel.insertText("window 3");
    view.synchronize();
    ASSERT_EQ(model.viewModel.rows.get().size(), 1U);
    model.viewModel.deleteBackward();
    view.synchronize();
    const QImage image = picture();
    const Rect second = view.rowRect(1);
    bool isEmphasised = false;
    for (int y = static_cast<int>(second.y); y < second.maxY(); ++y) {
        for (int x = 60; x < 300; ++x) {
            isEmphasised = isEmphasised || image.pixelColor(x, y) == view.theme().matchedCharacters;
        }
    }
    EXPECT_TRUE(isEmphasised);
}

}  // namespace
}  // namespace ferrowyn
