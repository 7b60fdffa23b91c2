#include "platform/linux/desktop_entries.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <system_error>
#include <unordered_map>
#include <utility>

#include "platform/linux/atomic_file.h"
#include "platform/linux/xdg_folders.h"
#include "platform/main_loop.h"

namespace ferrowyn {

/// All desktop entries of some folders at one moment. Immutable, so any thread may use it.
class DesktopEntryIndex {
public:
    using EntryPtr = std::shared_ptr<const DesktopEntry>;

    /// Reads the "applications" folders and their subfolders. The folders come in the order of their importance: an
    /// entry hides those with the same id in later folders, also when it is marked as deleted.
    [[nodiscard]] static DesktopEntryIndex scan(const std::vector<std::filesystem::path>& applicationFolders,
                                                const std::vector<std::string>& locales);

    [[nodiscard]] EntryPtr byId(std::string_view id) const;
    [[nodiscard]] EntryPtr byPath(std::string_view path) const;
    [[nodiscard]] EntryPtr byWindowClass(std::string_view instance, std::string_view className) const;

    /// The folders that were read, subfolders included.
    [[nodiscard]] const std::vector<std::filesystem::path>& folders() const { return folders_; }

private:
    /// Entries by one of their names, for exact lookup and for lookup that ignores case.
    class Names {
    public:
        void add(std::string_view name, const EntryPtr& entry);
        [[nodiscard]] EntryPtr exact(std::string_view name) const;
        [[nodiscard]] EntryPtr anyCase(std::string_view name) const;

    private:
        std::unordered_map<std::string, EntryPtr> exact_;
        std::unordered_map<std::string, EntryPtr> lowerCase_;
    };

    void add(std::string id, const std::filesystem::path& file, const std::vector<std::string>& locales);

    std::vector<std::filesystem::path> folders_;
    /// Includes entries marked as deleted, which hide those in later folders.
    std::unordered_map<std::string, EntryPtr> byId_;
    std::unordered_map<std::string, EntryPtr> byPath_;
    Names windowClasses_;
    Names ids_;
    Names idComponents_;
    Names executables_;
};

namespace {

/// Installing a package changes the folders many times within this time.
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

Subscription DesktopEntries::observeChanges(std::function<void()> onChange) const {
    return changes_.subscribe([onChange = std::move(onChange)](bool) { onChange(); });
}

std::shared_ptr<const DesktopEntryIndex> DesktopEntries::index() const {
    // The lock is held while the folders are read. A second thread that looks up needs the same index and waits for it.
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
                // The index knows the subfolders too.
                watcher_->add(index_->folders());
            }
            index_.reset();
        }
        changes_.send(true);
    });
}

namespace {

constexpr std::string_view fileSuffix = ".desktop";
constexpr std::size_t largestFile = 1U << 20U;

/// Programs that run other programs. Their name does not identify the application.
constexpr std::array<std::string_view, 12> launchers{"sh",      "bash", "env",  "python", "python3", "perl",
                                                     "flatpak", "snap", "java", "wine",   "gjs",     "electron"};

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    // Ids and window classes are ASCII.
    std::ranges::transform(lower, lower.begin(), [](char character) {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
    });
    return lower;
}

std::string_view lastComponent(std::string_view id) {
    const auto dot = id.rfind('.');
    return dot == std::string_view::npos ? id : id.substr(dot + 1);
}

std::string idOf(const std::filesystem::path& relative) {
    std::string id = relative.string();
    std::ranges::replace(id, '/', '-');
    id.resize(id.size() - fileSuffix.size());
    return id;
}

}  // namespace

DesktopEntryIndex DesktopEntryIndex::scan(const std::vector<std::filesystem::path>& applicationFolders,
                                          const std::vector<std::string>& locales) {
    namespace fs = std::filesystem;
    DesktopEntryIndex index;
    for (const auto& folder : applicationFolders) {
        index.folders_.push_back(folder);
        std::error_code error;
        fs::recursive_directory_iterator files(folder, fs::directory_options::skip_permission_denied, error);
        // A folder that is missing or cannot be read is skipped; the others still count.
        for (; !error && files != fs::recursive_directory_iterator(); files.increment(error)) {
            std::error_code ignored;
            if (files->is_directory(ignored)) {
                index.folders_.push_back(files->path());
            } else if (files->path().extension() == fileSuffix) {
                index.add(idOf(files->path().lexically_relative(folder)), files->path(), locales);
            }
        }
    }
    return index;
}

void DesktopEntryIndex::add(std::string id, const std::filesystem::path& file,
                            const std::vector<std::string>& locales) {
    if (byId_.contains(id)) {
        return;
    }
    std::error_code error;
    auto parsed = parseDesktopEntry(readFile(file, largestFile, error), locales);
    if (!parsed) {
        return;
    }
    parsed->id = std::move(id);
    parsed->path = file.string();
    const auto entry = std::make_shared<const DesktopEntry>(*std::move(parsed));
    byId_.emplace(entry->id, entry);
    if (entry->isHidden) {
        return;
    }
    byPath_.emplace(entry->path, entry);
    windowClasses_.add(entry->startupWmClass, entry);
    ids_.add(entry->id, entry);
    idComponents_.add(lastComponent(entry->id), entry);
    if (std::ranges::find(launchers, entry->executable) == launchers.end()) {
        executables_.add(entry->executable, entry);
    }
}

DesktopEntryIndex::EntryPtr DesktopEntryIndex::byId(std::string_view id) const {
    if (id.ends_with(fileSuffix)) {
        id.remove_suffix(fileSuffix.size());
    }
    const auto found = byId_.find(std::string(id));
    return found == byId_.end() || found->second->isHidden ? nullptr : found->second;
}

DesktopEntryIndex::EntryPtr DesktopEntryIndex::byPath(std::string_view path) const {
    const auto found = byPath_.find(std::string(path));
    return found == byPath_.end() ? nullptr : found->second;
}

DesktopEntryIndex::EntryPtr DesktopEntryIndex::byWindowClass(std::string_view instance,
                                                             std::string_view className) const {
    // StartupWMClass is explicit, so it comes before a guess from the file's name. The class identifies the
    // application, so it comes before the instance, which the user can choose.
    for (const auto* names : {&windowClasses_, &ids_, &idComponents_, &executables_}) {
        for (const auto lookUp : {&Names::exact, &Names::anyCase}) {
            for (const auto name : {className, instance}) {
                if (auto entry = (names->*lookUp)(name)) {
                    return entry;
                }
            }
        }
    }
    // "Some Program" is often some-program.desktop.
    std::string dashed(className);
    std::ranges::replace(dashed, ' ', '-');
    return dashed == className ? nullptr : ids_.anyCase(dashed);
}

void DesktopEntryIndex::Names::add(std::string_view name, const EntryPtr& entry) {
    if (name.empty()) {
        return;
    }
    const auto addTo = [&entry](auto& names, std::string key) {
        auto& held = names.try_emplace(std::move(key), entry).first->second;
        if (held->noDisplay && !entry->noDisplay) {
            held = entry;
        }
    };
    addTo(exact_, std::string(name));
    addTo(lowerCase_, lowerCase(name));
}

DesktopEntryIndex::EntryPtr DesktopEntryIndex::Names::exact(std::string_view name) const {
    const auto found = exact_.find(std::string(name));
    return found == exact_.end() ? nullptr : found->second;
}

DesktopEntryIndex::EntryPtr DesktopEntryIndex::Names::anyCase(std::string_view name) const {
    const auto found = lowerCase_.find(lowerCase(name));
    return found == lowerCase_.end() ? nullptr : found->second;
}

}  // namespace ferrowyn
