#pragma once

#include <optional>
#include <string>

namespace ferrowyn {

/// What the installed program says of itself. Each is absent where the installation does not say it.
struct BundleInfo {
    /// "CFBundleName" on macOS.
    std::optional<std::string> name;
    /// "CFBundleShortVersionString" on macOS.
    std::optional<std::string> shortVersion;
    /// "NSHumanReadableCopyright" on macOS.
    std::optional<std::string> copyright;
    /// Absolute path of what a file manager shows as the program.
    std::string path;
    /// The host, with a port where it needs one, that serves the update manifest over HTTPS. "FerrowynUpdateHost" on
    /// macOS.
    std::optional<std::string> updateHost;
    /// An https address. "FerrowynHomePage" on macOS.
    std::optional<std::string> homePage;
};

}  // namespace ferrowyn
