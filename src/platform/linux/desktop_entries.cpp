#include "platform/linux/desktop_entries.h"

#include <cstdlib>
#include <utility>

#include "platform/linux/desktop_entry_index.h"
#include "platform/linux/desktop_folder_watcher.h"
#include "platform/main_loop.h"

namespace ferrowyn {

namespace {

/// Installing a package touches the folders many times.
constexpr Seconds settlingTime{0.5};

std::vector<std::filesystem::path> applicationFolders(const XdgFolders& folders) {
    auto all = folders.allDataDirs();
    for (auto& folder : all) {
        folder /= "applications";
    }
    return all;
}

}  // namespace

DesktopEntries::DesktopEntries(MainLoop& mainLoop, const XdgFolders& folders, std::string_view locale)
    : mainLoop_(mainLoop),
      folders_(applicationFolders(folders)),
      locales_(localeVariants(locale)),
      watcher_(std::make_unique<DesktopFolderWatcher>(folders_, [this] { foldersChanged(); })) {}

DesktopEntries::~DesktopEntries() = default;

std::string DesktopEntries::currentLocale() {
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        if (const char* value = std::getenv(variable); value != nullptr && *value != '\0') {
            return value;
        }
    }
    return {};
}

DesktopEntries::EntryPtr DesktopEntries::byId(std::string_view id) const {
    return index()->byId(id);
}

DesktopEntries::EntryPtr DesktopEntries::byPath(std::string_view path) const {
    return index()->byPath(path);
}

DesktopEntries::EntryPtr DesktopEntries::byWindowClass(std::string_view instance, std::string_view className) const {
    return index()->byWindowClass(instance, className);
}

Subscription DesktopEntries::observeChanges(std::function<void()> handler) const {
    return changes_.subscribe([handler = std::move(handler)](bool) { handler(); });
}

std::shared_ptr<const DesktopEntryIndex> DesktopEntries::index() const {
    // Held while reading the folders: a second thread that asks meanwhile needs the same answer anyway.
    const std::scoped_lock lock(mutex_);
    if (!index_) {
        index_ = std::make_shared<const DesktopEntryIndex>(DesktopEntryIndex::scan(folders_, locales_));
    }
    return index_;
}

void DesktopEntries::foldersChanged() {
    pendingChange_ = mainLoop_.after(settlingTime, [this] {
        {
            const std::scoped_lock lock(mutex_);
            if (index_) {
                // Folders below the ones watched so far come and go too.
                watcher_->add(index_->folders());
            }
            index_.reset();
        }
        changes_.send(true);
    });
}

}  // namespace ferrowyn
