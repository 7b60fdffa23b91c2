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

/// The installed applications. The folders are read at the first question and again at the first one after something
/// was installed or removed. Questions come from any thread, the rest happens on the main thread. An answer is a
/// shared, immutable entry: it stays valid when the folders change under the thread that holds it.
class DesktopEntries {
public:
    using EntryPtr = std::shared_ptr<const DesktopEntry>;

    /// `locale` as in LC_MESSAGES; see `currentLocale`.
    DesktopEntries(MainLoop& mainLoop, const XdgFolders& folders, std::string_view locale);
    ~DesktopEntries();
    DesktopEntries(const DesktopEntries&) = delete;
    DesktopEntries& operator=(const DesktopEntries&) = delete;

    /// What LC_ALL, LC_MESSAGES or LANG say, the first that is set.
    [[nodiscard]] static std::string currentLocale();

    /// Reads the folders now if the next question would; for a worker, so that the main thread need not.
    void read() const { static_cast<void>(index()); }

    /// All null when there is none.
    /// By desktop-file id, with or without ".desktop".
    [[nodiscard]] EntryPtr byId(std::string_view id) const;
    [[nodiscard]] EntryPtr byPath(std::string_view path) const;
    /// By a window's WM_CLASS: StartupWMClass first, then ids, then their last components, then the program's name;
    /// exact case before any case, an entry of the menus before one that is not shown there.
    [[nodiscard]] EntryPtr byWindowClass(std::string_view instance, std::string_view className) const;

    /// Told when entries may have changed, a moment after the folders did. Main thread.
    [[nodiscard]] Subscription observeChanges(std::function<void()> handler) const;

private:
    [[nodiscard]] std::shared_ptr<const DesktopEntryIndex> index() const;
    void foldersChanged();

    MainLoop& mainLoop_;
    std::vector<std::filesystem::path> folders_;
    std::vector<std::string> locales_;
    mutable std::mutex mutex_;
    /// Null until asked for; guarded by `mutex_`.
    mutable std::shared_ptr<const DesktopEntryIndex> index_;
    Subject<bool> changes_;
    Subscription pendingChange_;
    std::unique_ptr<DesktopFolderWatcher> watcher_;
};

}  // namespace ferrowyn
