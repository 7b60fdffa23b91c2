#include "platform/x11/x11_applications.h"

#include <algorithm>
#include <fstream>
#include <string_view>

#include "platform/linux/desktop_entries.h"
#include "platform/x11/x11_owners.h"
#include "platform/x11/x11_text.h"

namespace ferrowyn {

namespace {

/// Other programs choose these texts, so the cache needs a limit.
constexpr std::size_t maximumKnown = 1024;
/// The same for the numbers of applications. When the limit is reached, running applications get new numbers too: their
/// windows stay listed, but the applications seem to have been restarted.
constexpr std::size_t maximumNumbers = 16384;
std::string processName(Pid pid) {
    if (pid >= X11Owners::firstStandIn) {
        return {};
    }
    std::ifstream file("/proc/" + std::to_string(pid) + "/comm");
    std::string name;
    std::getline(file, name);
    return textFromProperty(name, X11TextEncoding::utf8, false);
}

/// The window whose identity names the application: the oldest window that a user can switch to. The stacking order
/// must not matter, because an application's windows may have different identities.
const X11WindowFacts& representative(const std::vector<const X11WindowFacts*>& windows) {
    const auto rank = [](const X11WindowFacts* window) {
        return std::pair(window->kind != X11WindowKind::normal || window->skipsTaskbar, window->id);
    };
    return **std::ranges::min_element(windows, {}, rank);
}

/// The window, or for a dialog the parent window at the end of the chain.
const X11WindowFacts& principal(const X11WindowFacts& window, const X11ApplicationDirectory::FindWindow& find) {
    const X11WindowFacts* current = &window;
    for (int depth = 0; depth < deepestDialogNesting && current->transientFor != XCB_WINDOW_NONE; ++depth) {
        const auto* const parent = find(current->transientFor);
        if (parent == nullptr || parent->process != window.process) {
            break;
        }
        current = parent;
    }
    return *current;
}

}  // namespace

void X11ApplicationDirectory::forgetAll() {
    const std::scoped_lock lock(mutex_);
    known_.clear();
}

RunningApplication X11ApplicationDirectory::describe(Pid pid, const std::vector<const X11WindowFacts*>& windows) const {
    const auto& identity = representative(windows).identity;
    RunningApplication application;
    application.pid = pid;
    // A program that has only panels or desktop windows is not one to switch to.
    const bool hasOrdinaryWindow =
        std::ranges::any_of(windows, [](const X11WindowFacts* window) { return !window->isDesktopElement(); });
    application.activationPolicy = hasOrdinaryWindow ? ActivationPolicy::regular : ActivationPolicy::accessory;
    if (auto entry = installed(identity)) {
        application.bundleIdentifier = std::move(entry->identifier);
        application.bundleURL = std::move(entry->desktopFilePath);
        if (!entry->localizedName.empty()) {
            application.localizedName = std::move(entry->localizedName);
        }
    }
    if (!application.localizedName) {
        std::string name = !identity.wmClassName.empty() ? identity.wmClassName : identity.wmClassInstance;
        if (name.empty()) {
            name = processName(representative(windows).process);
        }
        if (!name.empty()) {
            application.localizedName = std::move(name);
        }
    }
    return application;
}

Pid X11ApplicationDirectory::numberFor(const X11WindowFacts& window, const FindWindow& find) const {
    if (window.process == ownProcess_) {
        return window.process;
    }
    const auto key = keyOf(principal(window, find));
    const std::scoped_lock lock(mutex_);
    if (const auto found = numbers_.find(key); found != numbers_.end()) {
        return found->second;
    }
    if (numbers_.size() >= maximumNumbers) {
        numbers_.clear();
        usedNumbers_.clear();
    }
    const bool isFree = usedNumbers_.insert(window.process).second;
    const Pid number = isFree ? window.process : nextNumber_++;
    numbers_.emplace(key, number);
    return number;
}

std::string X11ApplicationDirectory::keyOf(const X11WindowFacts& window) const {
    const auto& identity = window.identity;
    if (const auto entry = installed(identity)) {
        return "entry " + entry->identifier;
    }
    const auto& name = !identity.wmClassName.empty() ? identity.wmClassName : identity.wmClassInstance;
    return name.empty() ? "process " + std::to_string(window.process) : "class " + name;
}

std::optional<X11InstalledApplication> X11ApplicationDirectory::installed(
    const X11ApplicationIdentity& identity) const {
    // NUL cannot occur in the texts, so it separates them safely.
    const std::string separator(1, '\0');
    const auto key = identity.gtkApplicationId + separator + identity.kdeDesktopFile + separator +
                     identity.wmClassInstance + separator + identity.wmClassName;
    {
        const std::scoped_lock lock(mutex_);
        if (const auto found = known_.find(key); found != known_.end()) {
            return found->second;
        }
    }
    auto entry = lookup_ ? lookup_(identity) : std::nullopt;
    const std::scoped_lock lock(mutex_);
    if (known_.size() >= maximumKnown) {
        known_.clear();
    }
    known_.emplace(key, entry);
    return entry;
}

namespace {

DesktopEntries::EntryPtr byFileName(const DesktopEntries& entries, std::string_view name) {
    if (name.empty()) {
        return nullptr;
    }
    return name.starts_with('/') ? entries.byPath(name) : entries.byId(name);
}

}  // namespace

std::optional<X11InstalledApplication> findInstalledApplication(const DesktopEntries& entries,
                                                                const X11ApplicationIdentity& identity) {
    auto entry = byFileName(entries, identity.gtkApplicationId);
    if (entry == nullptr) {
        entry = byFileName(entries, identity.kdeDesktopFile);
    }
    if (entry == nullptr && !(identity.wmClassInstance.empty() && identity.wmClassName.empty())) {
        entry = entries.byWindowClass(identity.wmClassInstance, identity.wmClassName);
    }
    if (entry == nullptr) {
        return std::nullopt;
    }
    return X11InstalledApplication{entry->id, entry->name, entry->path};
}

}  // namespace ferrowyn
