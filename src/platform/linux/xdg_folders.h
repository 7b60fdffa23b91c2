#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace ferrowyn {

/// The parts of a list in the environment (XDG_CURRENT_DESKTOP, PATH) that colons separate. Empty parts are left out.
[[nodiscard]] std::vector<std::string> splitAtColons(std::string_view list);

/// Where a user's files and the system's shared files lie. Relative paths in the environment are ignored.
struct XdgFolders {
    std::filesystem::path configHome;
    std::filesystem::path dataHome;
    /// In the order of their importance, after `dataHome`.
    std::vector<std::filesystem::path> dataDirs;
    /// In the order of their importance, after `configHome`.
    std::vector<std::filesystem::path> configDirs;

    [[nodiscard]] static XdgFolders fromEnvironment();
    /// `dataHome`, then `dataDirs`.
    [[nodiscard]] std::vector<std::filesystem::path> allDataDirs() const;
};

}  // namespace ferrowyn
