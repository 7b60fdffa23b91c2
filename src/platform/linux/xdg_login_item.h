#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "platform/linux/xdg_folders.h"
#include "platform/login_item.h"

namespace ferrowyn {

class DesktopFileDocument;

/// Starts the program at login through an entry in the user's autostart folder, which overrides a system entry with the
/// same name. An entry maps onto the four states like this:
///
/// - enabled: the session starts this program;
/// - requires approval: there is an entry, but the user or another program has disabled it: it is hidden, turned off in
///   the desktop's settings, not meant for this desktop, or has another command;
/// - not registered: there is no entry, this program turned it off, or its command does not exist;
/// - not found: like "not registered", and the folder cannot be written.
///
/// Registering and unregistering keep what the user wrote into the entry. Main thread; reads and writes small files.
class XdgLoginItem final : public LoginItem {
public:
    struct Program {
        /// The desktop-file id, without ".desktop".
        std::string id;
        std::string name;
        /// Absolute.
        std::filesystem::path executable;
    };
    /// Two environment variables, each a list separated by colons: XDG_CURRENT_DESKTOP and PATH.
    struct Session {
        std::string currentDesktop;
        std::string path;

        [[nodiscard]] static Session fromEnvironment();
    };

    XdgLoginItem(const XdgFolders& folders, Program program, const Session& session = Session::fromEnvironment());

    [[nodiscard]] Status status() const override;
    [[nodiscard]] std::optional<Error> registerProgram() override;
    [[nodiscard]] std::optional<Error> unregisterProgram() override;

    /// The path of the user's entry, which need not exist.
    [[nodiscard]] const std::filesystem::path& userEntry() const { return userEntry_; }

private:
    [[nodiscard]] Status entryStatus() const;
    [[nodiscard]] std::optional<DesktopFileDocument> entryInForce() const;
    [[nodiscard]] std::optional<DesktopFileDocument> systemEntry() const;
    [[nodiscard]] bool isTurnedOff(const DesktopFileDocument& entry) const;
    [[nodiscard]] bool isShownHere(const DesktopFileDocument& entry) const;
    /// Changes OnlyShowIn and NotShowIn so that this desktop starts the entry.
    void showHere(DesktopFileDocument& entry) const;
    [[nodiscard]] bool startsSomething(const DesktopFileDocument& entry) const;
    [[nodiscard]] bool startsThisProgram(const DesktopFileDocument& entry) const;
    /// Whether another program in the command, such as a shell, starts this program.
    [[nodiscard]] bool startsThisProgramIndirectly(const DesktopFileDocument& entry) const;
    /// Whether the command is one that this program does not write: another program, or one with arguments.
    [[nodiscard]] bool startsSomethingElse(const DesktopFileDocument& entry) const;
    [[nodiscard]] bool exists(const std::filesystem::path& program) const;
    [[nodiscard]] bool isFolderWritable() const;
    [[nodiscard]] std::optional<Error> write(const DesktopFileDocument& entry) const;
    [[nodiscard]] Error error(std::error_code code) const;

    Program program_;
    std::filesystem::path userEntry_;
    /// Most important first.
    std::vector<std::filesystem::path> systemEntries_;
    std::vector<std::string> currentDesktops_;
    std::vector<std::filesystem::path> searchPath_;
};

}  // namespace ferrowyn
