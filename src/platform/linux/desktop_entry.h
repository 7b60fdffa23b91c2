#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ferrowyn {

/// The installed program's id on the desktop: the name of its desktop file, icon, autostart entry and session bus
/// service.
inline constexpr std::string_view applicationId = "com.larkmoor.ferrowyn";

/// One application as its desktop file describes it.
struct DesktopEntry {
    /// The desktop-file id without ".desktop": "org.gnome.Terminal".
    std::string id;
    /// The file's absolute path.
    std::string path;
    /// The name in the user's language.
    std::string name;
    /// An icon name of the theme, or an absolute path; may be empty.
    std::string icon;
    std::string startupWmClass;
    /// The file name of the program that Exec starts, without folders, "env" and its variables; may be empty.
    std::string executable;
    /// The user or an update has marked the entry as deleted.
    bool isHidden = false;
    /// Menus do not show the entry, but it still describes windows.
    bool noDisplay = false;

    friend bool operator==(const DesktopEntry&, const DesktopEntry&) = default;
};

/// The suffixes that keys have for a locale ("de_AT.UTF-8@euro"), best first: "de_AT@euro", "de_AT", "de@euro", "de".
/// Empty for the C locale.
[[nodiscard]] std::vector<std::string> localeVariants(std::string_view locale);

/// Parses the text of a desktop file; nullopt when it does not describe an application with a name. `id` and `path`
/// stay empty.
[[nodiscard]] std::optional<DesktopEntry> parseDesktopEntry(std::string_view text,
                                                            const std::vector<std::string>& locales);

}  // namespace ferrowyn
