#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "core/published.h"
#include "platform/linux/desktop_entry.h"
#include "platform/linux/xdg_folders.h"

namespace ferrowyn {

class DesktopEntryIndex;
class MainLoop;

/// Looks up installed applications. Reads the folders at the first lookup, and again at the first lookup after they
/// changed. Any thread may look up; everything else is on the main thread. The returned entries are shared and
/// immutable, so they stay valid when the folders change.
class DesktopEntries {
public:
    using EntryPtr = std::shared_ptr<const DesktopEntry>;

    /// `locale` as in LC_MESSAGES; see `currentLocale`.
    DesktopEntries(MainLoop& mainLoop, const XdgFolders& folders, std::string_view locale);
    ~DesktopEntries();
    DesktopEntries(const DesktopEntries&) = delete;
    DesktopEntries& operator=(const DesktopEntries&) = delete;

    /// The value of LC_ALL, LC_MESSAGES or LANG, the first that is set.
    [[nodiscard]] static std::string currentLocale();

    /// Reads the folders now if the next lookup would do so. A worker calls this to keep the disk off the main thread.
    void read() const { static_cast<void>(index()); }

    /// Finds an entry by its desktop-file id, with or without ".desktop"; null when there is none.
    [[nodiscard]] EntryPtr byId(std::string_view id) const;
    /// Finds an entry by its file's absolute path; null when there is none.
    [[nodiscard]] EntryPtr byPath(std::string_view path) const;
    /// Finds the entry for a window's WM_CLASS; null when there is none. Compares StartupWMClass first, then ids, then
    /// their last components, then the program's name. An exact match comes before one that ignores case, and an entry
    /// that menus show before one that they do not.
    [[nodiscard]] EntryPtr byWindowClass(std::string_view instance, std::string_view className) const;

    /// `onChange` is called when entries may have changed, shortly after the last change of a folder. Main thread.
    [[nodiscard]] Subscription observeChanges(std::function<void()> onChange) const;

private:
    [[nodiscard]] std::shared_ptr<const DesktopEntryIndex> index() const;
    void foldersChanged();

    MainLoop& mainLoop_;
    std::vector<std::filesystem::path> folders_;
    std::vector<std::string> locales_;
    mutable std::mutex mutex_;
    /// Null until the first lookup after a change; guarded by `mutex_`.
    mutable std::shared_ptr<const DesktopEntryIndex> index_;
    Subject<bool> changes_;
    Subscription pendingChange_;
    std::unique_ptr<DesktopFolderWatcher> watcher_;
};

}  // namespace ferrowyn
