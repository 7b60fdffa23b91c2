#pragma once

#include <filesystem>
#include <vector>

namespace ferrowyn {

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
