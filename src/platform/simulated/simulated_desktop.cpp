#include "platform/simulated/simulated_desktop.h"

#include <utility>

#include "core/texts.h"
#include "platform/simulated/simulated_display.h"
#include "platform/simulated/simulated_keyboard_tap.h"
#include "platform/simulated/simulated_main_loop.h"
#include "platform/simulated/simulated_system.h"
#include "platform/simulated/simulated_window_control.h"
#include "platform/simulated/simulated_window_inventory.h"
#include "platform/simulated/simulated_window_model.h"
#include "platform/simulated/simulated_workspace.h"

namespace ferrowyn {

namespace {

constexpr auto atOnce = SimulatedWindows::Telling::atOnce;

SimulatedWindows::Telling unless(bool silently) {
    return silently ? SimulatedWindows::Telling::nobody : atOnce;
}

}  // namespace

class SimulatedDesktop::Implementation {
public:
    SimulatedMainLoop mainLoop;
    SimulatedBackgroundWork backgroundWork{mainLoop};
    SimulatedLog log;
    SimulatedUserDefaults userDefaults;
    SimulatedApplication application{ownPid};
    SimulatedWindowModel model;
    std::vector<std::string> controlCalls;
    SimulatedWorkspace workspace{model, controlCalls};
    SimulatedWindowInventory windowInventory{model};
    SimulatedAccessibilityObservers observers{model};
    SimulatedWindows windows{model, observers, workspace, mainLoop};
    SimulatedWindowControl windowControl{model, windows, controlCalls};
    SimulatedTrust trust;
    SimulatedKeyboardTaps keyboardTaps;
    SimulatedScreens screens;
    SimulatedPointer pointer;
    SimulatedPanel panel;
    SimulatedIcons icons;
    SimulatedHttpClient httpClient;
    SimulatedLoginItem loginItem;
    Platform platform{mainLoop,        backgroundWork, log,           userDefaults, application,  workspace,
                      windowInventory, observers,      windowControl, trust,        keyboardTaps, screens,
                      pointer,         panel,          icons,         httpClient,   loginItem,    macTexts()};
};

SimulatedDesktop::SimulatedDesktop() : implementation_(std::make_unique<Implementation>()) {}

SimulatedDesktop::~SimulatedDesktop() = default;

const Platform& SimulatedDesktop::platform() const {
    return implementation_->platform;
}

// --- the clock and the main loop
// --------------------------------------------------------------------------------------

void SimulatedDesktop::advance(Seconds duration) {
    implementation_->mainLoop.advance(duration);
}

void SimulatedDesktop::settle() {
    implementation_->mainLoop.settle();
}

bool SimulatedDesktop::runOneTask() {
    return implementation_->mainLoop.runOne();
}

void SimulatedDesktop::stall(Seconds duration) {
    implementation_->mainLoop.stall(duration);
}

std::size_t SimulatedDesktop::postedTaskCount() const {
    return implementation_->mainLoop.postedTaskCount();
}

TimePoint SimulatedDesktop::now() const {
    return implementation_->mainLoop.now();
}

WallTime SimulatedDesktop::wallTime() const {
    return implementation_->mainLoop.wallTime();
}

void SimulatedDesktop::setWallTime(WallTime time) {
    implementation_->mainLoop.setWallTime(time);
}

std::size_t SimulatedDesktop::pendingTimerCount() const {
    return implementation_->mainLoop.pendingTimerCount();
}

void SimulatedDesktop::holdBackgroundWork(bool isHeld) {
    implementation_->backgroundWork.hold(isHeld);
}

void SimulatedDesktop::dropBackgroundWork() {
    implementation_->backgroundWork.dropWaiting();
}

std::size_t SimulatedDesktop::heldBackgroundWorkCount() const {
    return implementation_->backgroundWork.waitingCount();
}

// --- applications and windows
// -----------------------------------------------------------------------------------------

void SimulatedDesktop::launch(const AppSpec& app, bool silently) {
    implementation_->windows.launch(app, unless(silently));
}

void SimulatedDesktop::terminate(Pid pid) {
    implementation_->windows.terminate(pid);
}

void SimulatedDesktop::openWindow(const WindowSpec& window, bool silently) {
    implementation_->windows.open(window, unless(silently));
}

void SimulatedDesktop::closeWindow(WindowId id, bool silently) {
    implementation_->windows.close(id, unless(silently));
}

void SimulatedDesktop::changeWindow(WindowId id, const std::function<void(WindowSpec&)>& change) {
    if (auto* window = implementation_->model.window(id)) {
        change(*window);
    }
}

void SimulatedDesktop::setTitle(WindowId id, std::string title) {
    implementation_->windows.setTitle(id, std::move(title));
}

void SimulatedDesktop::focusWindow(WindowId id) {
    implementation_->windows.focusByUser(id);
}

void SimulatedDesktop::restack(const std::vector<WindowId>& frontToBack) {
    for (auto id = frontToBack.rbegin(); id != frontToBack.rend(); ++id) {
        implementation_->model.moveToFront(*id);
    }
}

void SimulatedDesktop::setFrontmost(std::optional<Pid> pid) {
    implementation_->model.frontmost = pid;
    implementation_->model.noteFocus();
}

void SimulatedDesktop::setHidden(Pid pid, bool isHidden) {
    implementation_->windows.setHidden(pid, isHidden, atOnce);
}

bool SimulatedDesktop::isHidden(Pid pid) const {
    const auto* app = implementation_->model.app(pid);
    return app != nullptr && app->isHidden;
}

std::optional<Pid> SimulatedDesktop::frontmostPid() const {
    return implementation_->model.frontmost;
}

std::optional<WindowId> SimulatedDesktop::focusedWindow(Pid pid) const {
    const auto* app = implementation_->model.app(pid);
    return app != nullptr ? app->focusedWindow : std::nullopt;
}

const SimulatedDesktop::WindowSpec* SimulatedDesktop::window(WindowId id) const {
    return implementation_->model.window(id);
}

AXElementRef SimulatedDesktop::elementOf(WindowId id) const {
    return SimulatedElement::reference(id);
}

void SimulatedDesktop::setHung(Pid pid, bool isHung) {
    if (auto* app = implementation_->model.app(pid)) {
        app->isHung = isHung;
    }
}

void SimulatedDesktop::setIgnoresActivation(Pid pid, bool ignores) {
    if (auto* app = implementation_->model.app(pid)) {
        app->ignoresActivation = ignores;
    }
}

void SimulatedDesktop::setUnobservable(Pid pid, bool isUnobservable) {
    if (auto* app = implementation_->model.app(pid)) {
        app->isUnobservable = isUnobservable;
    }
}

void SimulatedDesktop::setWindowServerAnswers(bool answers) {
    implementation_->model.windowServerAnswers = answers;
}

void SimulatedDesktop::setHasWindowNumberLookup(bool hasLookup) {
    implementation_->model.hasWindowNumberLookup = hasLookup;
}

void SimulatedDesktop::setSpaceChanged() {
    implementation_->workspace.announce({WorkspaceEvent::Kind::activeSpaceDidChange, std::nullopt});
}

void SimulatedDesktop::setScreenParametersChanged() {
    implementation_->workspace.announce({WorkspaceEvent::Kind::screenParametersDidChange, std::nullopt});
}

std::vector<AccessibilityNotification> SimulatedDesktop::windowNotifications(WindowId id) const {
    return implementation_->observers.windowNotifications(id);
}

std::vector<AccessibilityNotification> SimulatedDesktop::applicationNotifications(Pid pid) const {
    return implementation_->observers.applicationNotifications(pid);
}

void SimulatedDesktop::notify(Pid pid, AccessibilityNotification notification) {
    implementation_->observers.notify(pid, notification);
}

void SimulatedDesktop::notifyLate(Pid pid, AccessibilityNotification notification) {
    implementation_->observers.notifyLate(pid, notification);
}

std::size_t SimulatedDesktop::liveObserverCount() const {
    return implementation_->observers.liveCount();
}

bool SimulatedDesktop::isObserved() const {
    const auto& desktop = *implementation_;
    return desktop.workspace.isObserved() || desktop.screens.isObserved() || desktop.pointer.isObserved() ||
           desktop.trust.isObserved() || desktop.icons.isObserved() || desktop.application.isObserved();
}

void SimulatedDesktop::setInstalledApplicationName(std::string bundleIdentifier, std::optional<std::string> name) {
    implementation_->workspace.setInstalledApplicationName(std::move(bundleIdentifier), std::move(name));
}

std::vector<std::string> SimulatedDesktop::takeControlCalls() {
    return std::exchange(implementation_->controlCalls, {});
}

// --- trust and secure input
// -------------------------------------------------------------------------------------------

void SimulatedDesktop::setTrusted(bool isTrusted, bool announced) {
    implementation_->trust.setTrusted(isTrusted);
    if (announced) {
        announceTrustChange();
    }
}

void SimulatedDesktop::announceTrustChange() {
    implementation_->trust.announceChange();
}

int SimulatedDesktop::trustPromptCount() const {
    return implementation_->trust.promptCount();
}

void SimulatedDesktop::makeServerUnusable() {
    implementation_->trust.makeServerUnusable();
}

void SimulatedDesktop::loseTrigger() {
    implementation_->trust.loseTrigger();
}

void SimulatedDesktop::setSecureInput(bool isActive) {
    implementation_->trust.setSecureInput(isActive);
}

SimulatedApplication& SimulatedDesktop::application() {
    return implementation_->application;
}

SimulatedHttpClient& SimulatedDesktop::httpClient() {
    return implementation_->httpClient;
}

SimulatedLoginItem& SimulatedDesktop::loginItem() {
    return implementation_->loginItem;
}

void SimulatedDesktop::becomeActiveApplication() {
    implementation_->application.becomeActive();
}

// --- the keyboard
// -----------------------------------------------------------------------------------------------------

bool SimulatedDesktop::keyDown(const Key& key) {
    return implementation_->keyboardTaps.press(TapEvent::Type::keyDown, key);
}

bool SimulatedDesktop::keyUp(const Key& key) {
    return implementation_->keyboardTaps.press(TapEvent::Type::keyUp, key);
}

bool SimulatedDesktop::flagsChanged(std::uint64_t flags) {
    return implementation_->keyboardTaps.press(TapEvent::Type::flagsChanged,
                                               {.flags = flags, .text = {}, .textWithReducedFlags = {}});
}

void SimulatedDesktop::disableTapByTimeout() {
    if (auto* const tap = implementation_->keyboardTaps.installed()) {
        tap->disableBySystem(TapEvent::Type::disabledByTimeout);
    }
}

void SimulatedDesktop::disableTapByUserInput() {
    if (auto* const tap = implementation_->keyboardTaps.installed()) {
        tap->disableBySystem(TapEvent::Type::disabledByUserInput);
    }
}

void SimulatedDesktop::disableTapSilently() {
    if (auto* const tap = implementation_->keyboardTaps.installed()) {
        tap->setEnabled(false);
    }
}

void SimulatedDesktop::enableTapSilently() {
    if (auto* const tap = implementation_->keyboardTaps.installed()) {
        tap->setEnabled(true);
    }
}

void SimulatedDesktop::giveUpTapRequest() {
    if (auto* const tap = implementation_->keyboardTaps.installed()) {
        tap->giveUpRequest();
    }
}

TapVerdict SimulatedDesktop::lastTapVerdict() const {
    return implementation_->keyboardTaps.lastVerdict();
}

bool SimulatedDesktop::tapIsInstalled() const {
    return implementation_->keyboardTaps.installed() != nullptr;
}

bool SimulatedDesktop::tapIsEnabled() const {
    const auto* const tap = implementation_->keyboardTaps.installed();
    return tap != nullptr && tap->isEnabled();
}

int SimulatedDesktop::tapStartCount() const {
    return implementation_->keyboardTaps.startCount();
}

void SimulatedDesktop::refuseKeyboardTap(std::string words) {
    implementation_->keyboardTaps.setRefusal(std::move(words));
}

void SimulatedDesktop::allowKeyboardTap() {
    implementation_->keyboardTaps.setRefusal({});
}

bool SimulatedDesktop::tapSessionIsOpen() const {
    const auto* const tap = implementation_->keyboardTaps.installed();
    return tap != nullptr && tap->isSessionOpen();
}

std::optional<SwitcherModifier> SimulatedDesktop::tapTrigger() const {
    const auto* const tap = implementation_->keyboardTaps.installed();
    return tap != nullptr ? std::optional(tap->trigger()) : std::nullopt;
}

// --- screens, pointer, panel
// ------------------------------------------------------------------------------------------

void SimulatedDesktop::setScreens(std::vector<Screen> screens, std::optional<std::size_t> mainIndex) {
    implementation_->screens.set(std::move(screens), mainIndex);
}

void SimulatedDesktop::movePointer(Point location) {
    implementation_->pointer.move(location);
}

void SimulatedDesktop::movePointerUnnoticed(Point location) {
    implementation_->pointer.moveUnnoticed(location);
}

void SimulatedDesktop::clickElsewhere() {
    implementation_->pointer.clickElsewhere();
}

const SimulatedDesktop::PanelState& SimulatedDesktop::panel() const {
    return implementation_->panel.state();
}

// --- icons, defaults, log
// ---------------------------------------------------------------------------------------------

void SimulatedDesktop::setFileHasIcon(std::string path, bool hasIcon) {
    implementation_->icons.setFileHasIcon(std::move(path), hasIcon);
}

void SimulatedDesktop::setProcessHasIcon(Pid pid, bool hasIcon) {
    implementation_->icons.setProcessHasIcon(pid, hasIcon);
}

std::vector<std::string> SimulatedDesktop::takeIconLoads() {
    return implementation_->icons.takeLoads();
}

UserDefaults& SimulatedDesktop::userDefaults() {
    return implementation_->userDefaults;
}

void SimulatedDesktop::setStoreWritesFail(bool fail) {
    implementation_->userDefaults.setWritesFail(fail);
}

void SimulatedDesktop::forgetUnwrittenValues() {
    implementation_->userDefaults.forgetUnwritten();
}

const std::vector<std::pair<std::string, DefaultsValue>>& SimulatedDesktop::storedValues() const {
    return implementation_->userDefaults.writes();
}

std::vector<SimulatedDesktop::LogLine> SimulatedDesktop::takeLog() {
    return implementation_->log.take();
}

}  // namespace ferrowyn
