#include "tests/simulation/expected_list.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <map>
#include <tuple>

namespace ferrowyn::simulation {

namespace {

constexpr std::size_t mostRanks = 2048;

struct Listed {
    std::int64_t position = 0;
    WindowServerEntry entry;
    bool isOnScreen = false;
};
using Table = std::map<WindowId, Listed>;

Table tableOf(const InventoryReading& reading) {
    Table table;
    const auto list = reading.windowList();
    if (!list) {
        return table;
    }
    const auto onScreen = reading.onScreenWindowIds();
    for (std::size_t position = 0; position < list->size(); ++position) {
        const auto& entry = (*list)[position];
        if (entry.id) {
            table[*entry.id] = {static_cast<std::int64_t>(position), entry, onScreen.contains(*entry.id)};
        }
    }
    return table;
}

bool isEmpty(const Rect& frame) {
    return frame.width <= 0 || frame.height <= 0;
}

bool isLargeEnough(const Rect& frame) {
    return frame.width >= 48 && frame.height >= 48;
}

bool isWithinTwoPoints(const Rect& a, const Rect& b) {
    return std::abs(a.x - b.x) <= 2 && std::abs(a.y - b.y) <= 2 && std::abs(a.width - b.width) <= 2 &&
           std::abs(a.height - b.height) <= 2;
}

/// The rule for one window of an admitted application.
bool isKept(const AccessibleWindow& window, const std::optional<Rect>& frame, const Listed* listed) {
    const bool isStandard = window.subrole == "AXStandardWindow";
    const bool isDialog = !window.subrole || window.subrole == "AXDialog" || window.subrole == "AXSystemDialog";
    if (!isStandard && (!isDialog || trimmed(window.title.value_or(""), " \t").empty())) {
        return false;
    }
    if (window.isMinimized.value_or(false)) {
        return true;
    }
    if (frame && !isEmpty(*frame) && !isLargeEnough(*frame)) {
        return false;
    }
    if (listed == nullptr) {
        return true;
    }
    const Rect bounds = listed->entry.bounds.value_or(Rect{});
    return listed->entry.layer.value_or(0) == 0 && listed->entry.alpha.value_or(1) > 0.05 &&
           isLargeEnough(!isEmpty(bounds) ? bounds : frame.value_or(Rect{}));
}

/// Of several windows that lie there, one that no other window of the application has yet, the front-most first.
std::optional<WindowId> idByPlace(const Table& table, Pid pid, const Rect& frame,
                                  const std::unordered_set<WindowId>& taken) {
    std::optional<WindowId> found;
    for (const bool mayBeTaken : {false, true}) {
        for (const auto& [id, listed] : table) {
            const bool fits = listed.entry.ownerPid == pid && taken.contains(id) == mayBeTaken &&
                              isWithinTwoPoints(listed.entry.bounds.value_or(Rect{}), frame);
            if (fits && (!found || listed.position < table.at(*found).position)) {
                found = id;
            }
        }
        if (found) {
            break;
        }
    }
    return found;
}

std::vector<AppWindow> windowsOf(const InventoryReading& reading, const RunningApplication& application,
                                 const Table& table) {
    std::vector<AppWindow> windows;
    const auto answer = reading.windowsOf(application.pid, Seconds(0.35));
    if (!answer || application.pid <= 0) {
        return windows;
    }
    std::unordered_set<WindowId> taken;
    for (const AccessibleWindow& window : answer->windows) {
        std::optional<Rect> frame;
        if (window.position && window.size) {
            frame = Rect{window.position->x, window.position->y, window.size->width, window.size->height};
        }
        auto id = reading.hasWindowNumberLookup() ? window.windowNumber : std::nullopt;
        if (id.value_or(0) == 0) {
            id = frame && !isEmpty(*frame) ? idByPlace(table, application.pid, *frame, taken) : std::nullopt;
        }
        if (!id) {
            continue;
        }
        taken.insert(*id);
        const auto found = table.find(*id);
        const Listed* listed = found == table.end() ? nullptr : &found->second;
        if (!frame || isEmpty(*frame)) {
            frame = listed != nullptr ? listed->entry.bounds : std::nullopt;
        }
        if (!isKept(window, frame, listed)) {
            continue;
        }
        const bool isMinimized = window.isMinimized.value_or(false);
        windows.push_back({.id = *id,
                           .axElement = window.element,
                           .pid = application.pid,
                           .bundleIdentifier = application.bundleIdentifier,
                           .appName = application.localizedName.value_or("Unknown"),
                           .title = window.title.value_or(""),
                           .isMinimized = isMinimized,
                           .isFullScreen = window.isFullScreen.value_or(false),
                           .isOnActiveSpace = isMinimized || (listed != nullptr && listed->isOnScreen),
                           .isAppFocusedWindow = answer->focusedWindow == window.element,
                           .frame = frame.value_or(Rect{}),
                           .zOrder = listed != nullptr ? listed->position : unlistedZOrder,
                           .bundleURL = application.bundleURL,
                           .blockedBy = window.blockedBy});
    }
    return windows;
}

/// As a person orders names: letters without their case, digits as numbers.
std::vector<std::int64_t> keyOf(std::string_view name) {
    std::vector<std::int64_t> key;
    for (std::size_t at = 0; at < name.size();) {
        if (std::isdigit(static_cast<unsigned char>(name[at])) == 0) {
            key.push_back(name[at] == ' ' ? 0 : 1000 + std::tolower(static_cast<unsigned char>(name[at])));
            ++at;
            continue;
        }
        std::int64_t number = 0;
        for (; at < name.size() && std::isdigit(static_cast<unsigned char>(name[at])) != 0; ++at) {
            number = number * 10 + (name[at] - '0');
        }
        key.push_back(1 + number);
    }
    return key;
}

/// The windows that differ for who publishes lists; a window that only moved is the same.
bool isSameForPublishing(const AppWindow& a, const AppWindow& b) {
    return std::tie(a.id, a.pid, a.title, a.isMinimized, a.isFullScreen, a.isOnActiveSpace, a.zOrder) ==
               std::tie(b.id, b.pid, b.title, b.isMinimized, b.isFullScreen, b.isOnActiveSpace, b.zOrder) &&
           a.blockedBy == b.blockedBy;
}

}  // namespace

std::string_view trimmed(std::string_view text, std::string_view blanks) {
    const auto begin = text.find_first_not_of(blanks);
    return begin == std::string_view::npos ? "" : text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

bool isAdmitted(const RunningApplication& application, Pid ownPid) {
    if (application.pid == ownPid || application.isTerminated ||
        application.activationPolicy == ActivationPolicy::prohibited) {
        return false;
    }
    // Of the excluded names, those that the simulated applications have.
    return application.bundleIdentifier ? application.bundleIdentifier != "com.apple.dock"
                                        : application.localizedName != "WindowServer";
}

bool sameWindow(const AppWindow& a, const AppWindow& b) {
    return isSameForPublishing(a, b) && a.appName == b.appName && a.bundleIdentifier == b.bundleIdentifier;
}

bool sameWindows(const std::vector<AppWindow>& a, const std::vector<AppWindow>& b) {
    return std::ranges::equal(a, b, sameWindow);
}

std::string idsOf(const std::vector<AppWindow>& windows) {
    std::string ids;
    for (const AppWindow& window : windows) {
        ids += (ids.empty() ? "" : " ") + std::to_string(window.id);
    }
    return "[" + ids + "]";
}

void ExpectedList::noteFocus(WindowId id) {
    if (!lists(id)) {
        // A dialog that is not listed stands for the first window that it blocks.
        const auto blocked = std::ranges::find_if(
            windows_, [id](const AppWindow& window) { return window.blockedBy && window.blockedBy->id == id; });
        id = blocked != windows_.end() ? blocked->id : id;
    }
    use(id);
}

void ExpectedList::noteActivated(WindowId id) {
    use(id);
    const auto activated = std::ranges::find(windows_, id, &AppWindow::id);
    if (activated != windows_.end() && activated->blockedBy && lists(activated->blockedBy->id)) {
        use(activated->blockedBy->id);
    }
}

void ExpectedList::read(const InventoryReading& reading) {
    const Table table = tableOf(reading);
    read_.clear();
    live_.clear();
    onScreen_.clear();
    for (const RunningApplication& application : reading.runningApplications()) {
        if (!isAdmitted(application, ownPid_)) {
            continue;
        }
        const auto windows = windowsOf(reading, application, table);
        read_.insert(read_.end(), windows.begin(), windows.end());
        for (const auto& [id, listed] : table) {
            if (listed.entry.ownerPid == application.pid && listed.entry.layer.value_or(0) == 0) {
                live_.insert(id);
                if (listed.isOnScreen) {
                    onScreen_.insert(id);
                }
            }
        }
    }
    std::ranges::stable_sort(read_, [](const AppWindow& a, const AppWindow& b) {
        return std::tie(a.zOrder, a.appName, a.id) < std::tie(b.zOrder, b.appName, b.id);
    });
    // Two windows with one number are one row, that of the front-most.
    std::vector<AppWindow> unique;
    for (const AppWindow& window : read_) {
        if (std::ranges::find(unique, window.id, &AppWindow::id) == unique.end()) {
            unique.push_back(window);
        }
    }
    read_ = unique;
}

void ExpectedList::refresh(std::optional<Pid> frontmost) {
    std::vector<AppWindow> merged = read_;
    for (AppWindow known : windows_) {
        if (std::ranges::find(read_, known.id, &AppWindow::id) == read_.end() && live_.contains(known.id)) {
            known.isOnActiveSpace = onScreen_.contains(known.id);
            if (known.blockedBy && !live_.contains(known.blockedBy->id)) {
                known.blockedBy.reset();
            }
            merged.push_back(known);
        }
    }
    if (uses_.empty()) {
        seed(merged, frontmost);
    }
    if (merged.size() < uses_.size()) {
        std::erase_if(uses_, [&](const Use& use) {
            return use.number <= usesAtPassBegin_ && std::ranges::find(merged, use.id, &AppWindow::id) == merged.end();
        });
    }
    refreshed_ = ordered(merged);
    if (!std::ranges::equal(refreshed_, windows_, isSameForPublishing)) {
        windows_ = refreshed_;
    }
}

void ExpectedList::clear() {
    windows_.clear();
    refreshed_.clear();
}

void ExpectedList::use(WindowId id) {
    touch(id);
    const auto used = std::ranges::find(windows_, id, &AppWindow::id);
    if (used != windows_.end()) {
        std::rotate(windows_.begin(), used, std::next(used));
    }
}

void ExpectedList::touch(WindowId id) {
    std::erase_if(uses_, [id](const Use& use) { return use.id == id; });
    uses_.insert(uses_.begin(), {id, ++useCount_});
    if (uses_.size() > mostRanks) {
        uses_.resize(mostRanks / 2);
    }
}

void ExpectedList::seed(const std::vector<AppWindow>& windows, std::optional<Pid> frontmost) {
    std::vector<AppWindow> backToFront = windows;
    std::ranges::stable_sort(backToFront, [](const AppWindow& a, const AppWindow& b) { return a.zOrder > b.zOrder; });
    for (const AppWindow& window : backToFront) {
        if (window.zOrder != unlistedZOrder) {
            touch(window.id);
        }
    }
    const auto focused = std::ranges::find(windows, true, &AppWindow::isAppFocusedWindow);
    if (focused != windows.end() && frontmost == focused->pid) {
        touch(focused->id);
    }
}

std::vector<AppWindow> ExpectedList::ordered(const std::vector<AppWindow>& windows) const {
    std::vector<AppWindow> order;
    std::vector<AppWindow> unused = windows;
    for (const Use& use : uses_) {
        const auto found = std::ranges::find(unused, use.id, &AppWindow::id);
        if (found != unused.end()) {
            order.push_back(*found);
            unused.erase(found);
        }
    }
    std::ranges::stable_sort(unused, [](const AppWindow& a, const AppWindow& b) {
        if (a.zOrder != b.zOrder) {
            return a.zOrder < b.zOrder;
        }
        if (a.appName == b.appName) {
            return a.id < b.id;
        }
        return std::tuple(keyOf(a.appName), a.appName) < std::tuple(keyOf(b.appName), b.appName);
    });
    order.insert(order.end(), unused.begin(), unused.end());
    return order;
}

bool ExpectedList::lists(WindowId id) const {
    return std::ranges::find(windows_, id, &AppWindow::id) != windows_.end();
}

}  // namespace ferrowyn::simulation
