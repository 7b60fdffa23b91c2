#include "tests/macos/program/mac_program_test.h"

#include "main/mac_application_events.h"
#include "platform/macos/mac_menu.h"
#include "tests/macos/fake/fake_objects.h"
#include "tests/macos/fake/fake_run_loop.h"
#include "tests/macos/objc/fakes/services.h"

namespace ferrowyn::test {

namespace {

constexpr const char* loopMode = "kCFRunLoopDefaultMode";

std::unique_ptr<HostedWidget> hostNothing(QWidget& /*widget*/, std::uintptr_t /*view*/) {
    return nullptr;
}

}  // namespace

MacProgramTest::Program::Program(const Platform& toolkit)
    : systemDelegate(passingOnTo(told)),
      adapter({.mainLoop = toolkit.mainLoop,
               .backgroundWork = toolkit.backgroundWork,
               .httpClient = toolkit.httpClient,
               .log = log,
               .hostWidget = hostNothing,
               .panelCornerRadius = 14}),
      delegate(adapter.platform(), interface),
      applicationMenu(makeApplicationMenu(interface, adapter.platform().texts, told)) {
    told = &delegate;
}

MacProgramTest::MacProgramTest() {
    accessibility.reset();
    windowServer.reset();
    keyboard.reset();
    system.reset();
    static_cast<void>(fake::Objects::shared().takeFaults());
    static_cast<void>(fake::RunLoop::main().takeJournal());
    @autoreleasepool {
        NSScreen* const screen = [NSScreen screenWithFrame:NSMakeRect(0, 0, 1440, 900)
                                              visibleFrame:NSMakeRect(0, 70, 1440, 805)];
        [NSScreen setScreens:@[ screen ] main:screen];
        NSWorkspace.sharedWorkspace.runningApplications = [NSArray array];
        addApplication(notes, @"Notes", @"com.example.Notes");
        mailElement = addApplication(mail, @"Mail", @"com.example.Mail");
        notesWindow = addWindow(notes, 77, "Shopping");
        mailWindow = addWindow(mail, 88, "Inbox");
        NSWorkspace.sharedWorkspace.frontmostApplication = running(notes);
        program = std::make_unique<Program>(toolkit->platform());
    }
}

MacProgramTest::~MacProgramTest() = default;

void MacProgramTest::TearDown() {
    @autoreleasepool {
        program.reset();
        // What waits on the loop goes with it.
        toolkit.reset();
    }
    EXPECT_EQ(fake::Objects::shared().liveCount(), 0U) << fake::Objects::shared().describeLive();
    EXPECT_THAT(fake::Objects::shared().takeFaults(), testing::IsEmpty());
    EXPECT_FALSE(fake::RunLoop::main().hasSources());
    EXPECT_FALSE(keyboard.hasTap());
    MacTest::TearDown();
}

fake::ElementId MacProgramTest::addApplication(Pid pid, NSString* name, NSString* identifier) {
    NSRunningApplication* const application = [[NSRunningApplication alloc] initWithPid:pid];
    application.localizedName = name;
    application.bundleIdentifier = identifier;
    NSMutableArray* const all = [NSMutableArray array];
    for (NSRunningApplication* other in NSWorkspace.sharedWorkspace.runningApplications) {
        [all addObject:other];
    }
    [all addObject:application];
    NSWorkspace.sharedWorkspace.runningApplications = all;
    return accessibility.addApplication(pid);
}

fake::ElementId MacProgramTest::addWindow(Pid pid, WindowId id, const std::string& title) {
    const Rect frame{100, 100, 800, 600};
    windowServer.windows.push_back({.keys = {{"kCGWindowNumber", std::int64_t{id}},
                                             {"kCGWindowOwnerPID", std::int64_t{pid}},
                                             {"kCGWindowOwnerName", title},
                                             {"kCGWindowLayer", std::int64_t{0}},
                                             {"kCGWindowAlpha", 1.0},
                                             {"kCGWindowIsOnscreen", true},
                                             {"kCGWindowBounds", frame}}});
    return accessibility.addWindow(pid, {.attributes = {{"AXSubrole", std::string("AXStandardWindow")},
                                                        {"AXTitle", title},
                                                        {"AXMinimized", false},
                                                        {"AXMain", false},
                                                        {"AXFocused", false},
                                                        {"AXPosition", Point{frame.x, frame.y}},
                                                        {"AXSize", Size{frame.width, frame.height}}},
                                         .windowNumber = id});
}

void MacProgramTest::launch() {
    [NSApplication.sharedApplication finishLaunching];
    settle();
}

void MacProgramTest::settle() {
    @autoreleasepool {
        fake::RunLoop::main().drain(loopMode);
        toolkit->settle();
    }
}

void MacProgramTest::advance(Seconds duration) {
    @autoreleasepool {
        fake::RunLoop::main().drain(loopMode);
        toolkit->advance(duration);
    }
}

MacProgramTest::Outcome MacProgramTest::press(const fake::Keyboard::Key& key) {
    const auto outcome = keyboard.press(key);
    settle();
    return outcome;
}

void MacProgramTest::timeOutTapFor(Seconds delay) {
    keyboard.disableTap(kCGEventTapDisabledByTimeout);
    settle();
    EXPECT_FALSE(keyboard.isTapEnabled());
    advance(delay);
}

NSRunningApplication* MacProgramTest::running(Pid pid) const {
    return [NSRunningApplication runningApplicationWithProcessIdentifier:pid];
}

NSPanel* MacProgramTest::panel() const {
    NSPanel* found = nil;
    for (NSWindow* window in NSApplication.sharedApplication.windows) {
        if ([window isKindOfClass:[NSPanel class]]) {
            EXPECT_EQ(found, nil) << "there is one panel";
            found = static_cast<NSPanel*>(window);
        }
    }
    return found;
}

std::vector<std::string> MacProgramTest::takeLog() {
    std::vector<std::string> messages;
    for (const auto& line : std::exchange(fake_mac::logLines(), {})) {
        if (line.type != OS_LOG_TYPE_DEBUG) {
            messages.push_back(line.category + ": " + line.text);
        }
    }
    return messages;
}

std::vector<WindowId> MacProgramTest::listedWindows() {
    std::vector<WindowId> ids;
    for (const auto& window : services().windowIndex().windows().get()) {
        ids.push_back(window.id);
    }
    return ids;
}

NSMenu* MacProgramTest::menu() {
    return [NSStatusBar onlyItem].menu;
}

NSMenuItem* MacProgramTest::row(const std::string& title) {
    return rowTitled(title);
}

std::vector<std::string> MacProgramTest::rows() {
    return shownRows();
}

bool MacProgramTest::choose(const std::string& title) {
    NSMenuItem* const item = row(title);
    EXPECT_NE(item, nil) << title;
    const bool wasSent = item != nil && [menu() choose:item];
    settle();
    return wasSent;
}

std::string MacProgramTest::buttonSymbol() {
    return text([NSStatusBar onlyItem].button.image.symbolName);
}

std::string MacProgramTest::buttonTooltip() {
    return text([NSStatusBar onlyItem].button.toolTip);
}

NSMenu* MacProgramTest::applicationMenu() {
    return NSApplication.sharedApplication.mainMenu.itemArray.firstObject.submenu;
}

std::string MacProgramTest::headerSubtitle() {
    const id header = menu().itemArray.firstObject.view;
    if (![header isKindOfClass:[FerrowynMenuHeaderView class]]) {
        return "(no header)";
    }
    return text(static_cast<NSTextField*>([static_cast<NSView*>(header).subviews objectAtIndex:2]).stringValue);
}

}  // namespace ferrowyn::test
