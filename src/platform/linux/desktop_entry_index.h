#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/linux/desktop_entry.h"

namespace ferrowyn {

/// All desktop entries of some folders at one moment. Immutable, so any thread may ask.
class DesktopEntryIndex {
public:
    using EntryPtr = std::shared_ptr<const DesktopEntry>;

    /// Reads the "applications" folders with everything below them, the most important first: an entry hides those of
    /// the same id in later folders, also when it only says that it was deleted.
    [[nodiscard]] static DesktopEntryIndex scan(const std::vector<std::filesystem::path>& applicationFolders,
                                                const std::vector<std::string>& locales);

    [[nodiscard]] EntryPtr byId(std::string_view id) const;
    [[nodiscard]] EntryPtr byPath(std::string_view path) const;
    [[nodiscard]] EntryPtr byWindowClass(std::string_view instance, std::string_view className) const;

    /// The folders that were read.
    [[nodiscard]] const std::vector<std::filesystem::path>& folders() const { return folders_; }

private:
    /// Looked up by exact text, then by the text in lower case.
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
    /// Deleted entries included, so that they hide what follows.
    std::unordered_map<std::string, EntryPtr> byId_;
    std::unordered_map<std::string, EntryPtr> byPath_;
    Names windowClasses_;
    Names ids_;
    Names idComponents_;
    Names executables_;
};

}  // namespace ferrowyn
