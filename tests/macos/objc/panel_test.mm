#include <gmock/gmock.h>

#include <QApplication>
#include <QMouseEvent>
#include <QWidget>
#include <memory>
#include <utility>

#include "platform/macos/cocoa.h"
#include "platform/macos/mac_application.h"
#include "platform/macos/mac_panel.h"
#include "platform/qt/qt_hosted_widget.h"
#include "tests/macos/objc/mac_test.h"

@interface ToolkitView : NSView
- (instancetype)initWithCalls:(std::vector<std::string>*)calls;
@end

@implementation ToolkitView {
    std::vector<std::string>* _calls;
}
- (instancetype)initWithCalls:(std::vector<std::string>*)calls {
    self = [super initWithFrame:NSZeroRect];
    _calls = calls;
    [self addTrackingArea:[[NSTrackingArea alloc]
                              initWithRect:NSZeroRect
                                   options:NSTrackingMouseMoved | NSTrackingActiveAlways | NSTrackingInVisibleRect
                                     owner:self
                                  userInfo:nil]];
    return self;
}
- (void)mouseMoved:(NSEvent*)event {
    static_cast<void>(event);
    if (NSApplication.sharedApplication.active) {
        _calls->emplace_back("the toolkit follows");
    }
}
@end

namespace ferrowyn::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// What happened to the content and to the widget, in order.
using Calls = std::vector<std::string>;

class SpyContent final : public PanelContent {
public:
    SpyContent(Calls& calls, QWidget* widget) : calls_(calls), widget_(widget) {}

    QWidget* widget() override { return widget_; }
    void synchronize() override { calls_.emplace_back("synchronize"); }
    void setBackground(PanelBackground background) override {
        calls_.emplace_back(background == PanelBackground::material ? "draws no background" : "hides the material");
    }
    void renderPreview(QImage& /*target*/) override { calls_.emplace_back("renderPreview"); }
    [[nodiscard]] bool matchesPreview() const override { return false; }

private:
    Calls& calls_;
    QWidget* widget_;
};

/// Stands for the toolkit's widget: a subview of the panel's view, which always gets the moves of the pointer, and
/// ignores them while the application is not active.
class SpyWidget final : public HostedWidget {
public:
    SpyWidget(Calls& calls, std::uintptr_t parent) : calls_(calls), view_([[ToolkitView alloc] initWithCalls:&calls]) {
        [viewAt(parent) addSubview:view_];
    }
    ~SpyWidget() override { calls_.emplace_back("widget goes"); }

    void fill(const Size& size) override {
        calls_.push_back("fill " + sizeText(size.width, size.height));
        view_.frame = NSMakeRect(0, 0, size.width, size.height);
    }
    void setVisible(bool isVisible) override { calls_.emplace_back(isVisible ? "show" : "hide"); }
    void movePointer(const Point& place) override { calls_.push_back("pointer at " + sizeText(place.x, place.y)); }
    void removePointer() override { calls_.emplace_back("pointer goes"); }

private:
    static std::string sizeText(double first, double second) {
        return std::to_string(static_cast<int>(first)) + " " + std::to_string(static_cast<int>(second));
    }

    Calls& calls_;
    ToolkitView* view_;
};

class MacPanelTest : public MacTest {
protected:
    static constexpr double cornerRadius = 14;

    MacPanelTest() {
        @autoreleasepool {
            panel = std::make_unique<MacPanel>(
                [this](QWidget& /*widget*/, std::uintptr_t view) { return std::make_unique<SpyWidget>(calls, view); },
                cornerRadius);
        }
    }
    void TearDown() override {
        @autoreleasepool {
            panel.reset();
        }
        MacTest::TearDown();
    }
    [[nodiscard]] static NSPanel* window() {
        return static_cast<NSPanel*>(NSApplication.sharedApplication.windows.firstObject);
    }
    void setContent(QWidget* widget) {
        panel->setContent(std::make_unique<SpyContent>(calls, widget));
        calls.clear();
    }
    /// Only its address is used: the host above stands for the toolkit.
    [[nodiscard]] QWidget* someWidget() { return reinterpret_cast<QWidget*>(&place_); }

    Calls calls;
    std::unique_ptr<MacPanel> panel;

private:
    std::max_align_t place_{};
};

TEST_F(MacPanelTest, TheWindowFloatsAboveEverythingAndNeverTakesTheKeyboard) {
    NSPanel* const made = window();
    EXPECT_EQ(made.styleMask, 0x8080UL);
    EXPECT_EQ(made.level, 1000);
    EXPECT_EQ(made.collectionBehavior, 0x151UL);
    EXPECT_EQ(made.backing, NSBackingStoreBuffered);
    EXPECT_FALSE(made.isDeferred);
    EXPECT_TRUE(made.floatingPanel);
    EXPECT_FALSE(made.opaque);
    EXPECT_EQ(made.backgroundColor.name, "clear");
    EXPECT_TRUE(made.hasShadow);
    EXPECT_FALSE(made.hidesOnDeactivate);
    EXPECT_FALSE(made.releasedWhenClosed);
    EXPECT_EQ(made.animationBehavior, NSWindowAnimationBehaviorNone);
    EXPECT_EQ(made.tabbingMode, NSWindowTabbingModeDisallowed);
    EXPECT_FALSE(made.movable);
    EXPECT_FALSE(made.canBecomeKeyWindow);
    EXPECT_FALSE(made.canBecomeMainWindow);
    EXPECT_FALSE(made.visible);
    EXPECT_EQ(fromNSRect(made.frame), (Rect{0, 0, 640, 200}));
}

TEST_F(MacPanelTest, TheMaterialBehindTheContentIsAlwaysActiveAndRound) {
    NSView* const content = window().contentView;
    ASSERT_TRUE([content isKindOfClass:[NSVisualEffectView class]]);
    auto* const material = static_cast<NSVisualEffectView*>(content);
    EXPECT_EQ(material.blendingMode, NSVisualEffectBlendingModeBehindWindow);
    EXPECT_EQ(material.state, NSVisualEffectStateActive);
    EXPECT_EQ(material.material, NSVisualEffectMaterialPopover);
    EXPECT_EQ(material.autoresizingMask, NSViewWidthSizable | NSViewHeightSizable);
    NSImage* const mask = material.maskImage;
    EXPECT_EQ(mask.size.width, 2 * cornerRadius + 1);
    EXPECT_EQ(mask.capInsets.left, cornerRadius);
    EXPECT_EQ(mask.capInsets.bottom, cornerRadius);
    EXPECT_EQ(mask.resizingMode, NSImageResizingModeStretch);
    EXPECT_TRUE(mask.drawingHandler(NSMakeRect(0, 0, 29, 29)));
    const auto& fills = fake_mac::appKit().fills;
    ASSERT_EQ(fills.size(), 1U);
    EXPECT_EQ(fills[0].radius, cornerRadius);
    EXPECT_EQ(fills[0].color, "black");
    EXPECT_EQ(fills[0].rect.size.width, 29);
}

TEST_F(MacPanelTest, TheContentLetsTheMaterialShowAndFillsThePanel) {
    panel->setContent(std::make_unique<SpyContent>(calls, someWidget()));
    EXPECT_THAT(calls, ElementsAre("draws no background", "fill 640 200"));
    EXPECT_EQ(window().contentView.subviews.count, 1U);
}

TEST_F(MacPanelTest, TheWidgetHearsOfThePointerWhileAnotherApplicationIsActive) {
    setContent(someWidget());
    panel->setFrame({-300, 120, 640, 300});
    calls.clear();
    NSView* const content = window().contentView;
    for (const auto& [x, y] : {std::pair{30, 290}, {31, 200}, {31, 301}}) {
        [content pointerMovedTo:NSMakePoint(x, y)];
    }
    EXPECT_THAT(calls, ElementsAre("pointer at 30 10", "pointer at 31 100", "pointer goes"));
    EXPECT_TRUE(window().acceptsMouseMovedEvents);
    calls.clear();
    NSApplication.sharedApplication.active = YES;
    [content pointerMovedTo:NSMakePoint(30, 90)];
    [content pointerMovedTo:NSMakePoint(31, 90)];
    EXPECT_THAT(calls, ElementsAre("the toolkit follows", "the toolkit follows")) << "by itself";
}

TEST_F(MacPanelTest, TheWidgetLeavesTheWindowBeforeTheWindowGoesAndHearsNothingMore) {
    setContent(someWidget());
    panel->orderFrontRegardless();
    NSPanel* const kept = window();
    NSView* const content = kept.contentView;
    calls.clear();
    panel.reset();
    EXPECT_EQ(kept.calls.back(), "close");
    [content pointerMovedTo:NSMakePoint(30, 90)];
    EXPECT_EQ(content.trackingAreas.count, 0U);
    EXPECT_THAT(calls, ElementsAre("hide", "widget goes"));
}

TEST_F(MacPanelTest, ItIsShownWithWhatTheModelHoldsAndWithoutActivating) {
    setContent(someWidget());
    panel->setFrame({-300, 120, 760, 412});
    EXPECT_EQ(fromNSRect(window().frame), (Rect{-300, 120, 760, 412}));
    panel->orderFrontRegardless();
    EXPECT_TRUE(window().visible);
    EXPECT_THAT(NSApplication.sharedApplication.calls, IsEmpty());
    EXPECT_THAT(calls, ElementsAre("fill 760 412", "synchronize", "show"));
    calls.clear();
    panel->setFrame({0, 0, 640, 300});
    panel->orderOut();
    EXPECT_FALSE(window().visible);
    EXPECT_THAT(calls, ElementsAre("synchronize", "fill 640 300", "hide")) << "brought up to date while it is shown";
    EXPECT_THAT(window().calls,
                ElementsAre("setFrame", "orderFrontRegardless", "setFrame", "invalidateShadow", "orderOut"));
}

TEST_F(MacPanelTest, ItWarmsUpWhereNobodySeesIt) {
    setContent(someWidget());
    panel->setFrame({-10000, -10000, 640, 300});
    panel->orderFront();
    EXPECT_EQ(window().contentView.layoutCount, 0);
    panel->layOutContent();
    EXPECT_EQ(window().contentView.layoutCount, 1);
    panel->orderOut();
    EXPECT_THAT(calls, ElementsAre("fill 640 300", "synchronize", "show", "synchronize", "hide"));
    EXPECT_THAT(window().calls, ElementsAre("setFrame", "orderFront", "displayIfNeeded", "orderOut"));
}

TEST_F(MacPanelTest, PreparingMovesNothingThatIsShown) {
    setContent(someWidget());
    panel->prepare({10, 20, 640, 300});
    EXPECT_EQ(fromNSRect(window().frame), (Rect{10, 20, 640, 300}));
    panel->orderFrontRegardless();
    panel->prepare({50, 60, 640, 400});
    EXPECT_EQ(fromNSRect(window().frame), (Rect{10, 20, 640, 300}));
}

TEST_F(MacPanelTest, ContentThatDrawsNothingIsNotHosted) {
    setContent(nullptr);
    panel->setFrame({0, 0, 640, 300});
    panel->orderFrontRegardless();
    panel->layOutContent();
    panel->orderOut();
    EXPECT_THAT(calls, ElementsAre("synchronize", "synchronize"));
    EXPECT_EQ(window().contentView.subviews.count, 0U);
}

/// What reaches a widget of the toolkit.
class PointedWidget final : public QWidget {
public:
    Calls calls;

protected:
    void mouseMoveEvent(QMouseEvent* event) override {
        const QPointF place = event->position();
        calls.push_back("move " + std::to_string(place.x()).substr(0, 4) + " " +
                        std::to_string(place.y()).substr(0, 4));
        EXPECT_EQ(event->buttons(), Qt::NoButton);
    }
    void leaveEvent(QEvent* /*event*/) override { calls.emplace_back("leave"); }
};

TEST_F(MacTest, AWidgetInTheHostTakesItsSizeAndThePointerAndIsGivenBack) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    int argumentCount = 1;
    char name[] = "test";
    char* arguments[] = {name, nullptr};
    const QApplication application(argumentCount, arguments);
    PointedWidget widget;
    widget.setMouseTracking(true);
    {
        // Without a view of the system, everything else can still be checked.
        const auto hosted = hostQtWidget(widget, 0);
        hosted->fill({.width = 640.4, .height = 188});
        EXPECT_EQ(widget.geometry(), QRect(0, 0, 641, 188));
        EXPECT_FALSE(widget.isVisible());
        hosted->setVisible(true);
        EXPECT_TRUE(widget.isVisible());
        EXPECT_TRUE(widget.testAttribute(Qt::WA_TranslucentBackground));
        EXPECT_TRUE(widget.windowFlags().testFlag(Qt::WindowDoesNotAcceptFocus));
        EXPECT_TRUE(widget.windowFlags().testFlag(Qt::FramelessWindowHint));
        widget.calls.clear();
        hosted->movePointer({.x = 12.5, .y = 40});
        hosted->removePointer();
        EXPECT_THAT(widget.calls, ElementsAre("move 12.5 40.0", "leave"));
    }
    EXPECT_FALSE(widget.isVisible());
}

class MacWindowsTest : public MacTest {
protected:
    static NSWindow* makeWindow() {
        NSWindow* const window = [[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, 100, 100)
                                                             styleMask:NSWindowStyleMaskTitled
                                                               backing:NSBackingStoreBuffered
                                                                 defer:NO];
        window.contentView = [[NSView alloc] initWithFrame:NSZeroRect];
        return window;
    }
};

TEST_F(MacWindowsTest, UtilityWindowsReachUnderATransparentTitleBar) {
    NSWindow* const window = makeWindow();
    const auto view = addressOf(window.contentView);
    EXPECT_EQ(configureUtilityWindow(view, false), 28);
    constexpr NSUInteger fixedSize = NSWindowStyleMaskTitled | NSWindowStyleMaskClosable |
                                     NSWindowStyleMaskMiniaturizable | NSWindowStyleMaskFullSizeContentView;
    EXPECT_EQ(window.styleMask, fixedSize);
    EXPECT_TRUE(window.titlebarAppearsTransparent);
    EXPECT_FALSE(window.releasedWhenClosed);
    EXPECT_EQ(configureUtilityWindow(view, true), 28);
    EXPECT_EQ(window.styleMask, fixedSize | NSWindowStyleMaskResizable);
}

TEST_F(MacWindowsTest, TheWindowThatIsBroughtToTheFrontIsTheOneOfThatNumber) {
    NSWindow* const first = makeWindow();
    NSWindow* const second = makeWindow();
    MacApplication application;
    application.bringToFront(static_cast<WindowId>(addressOf(second.contentView)));
    EXPECT_THAT(first.calls, IsEmpty());
    EXPECT_THAT(second.calls, ElementsAre("makeKeyAndOrderFront"));
    application.bringToFront(1);
    EXPECT_THAT(first.calls, IsEmpty());
    EXPECT_EQ(second.calls.size(), 1U);
}

}  // namespace

}  // namespace ferrowyn::test
