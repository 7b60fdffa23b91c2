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

/// Starts the program at login through an entry in the user's autostart folder, which stands before one of the system's
/// with the same name. How an entry maps onto the four states:
///
/// - enabled: the session starts it, and it starts this program;
/// - requires approval: there is one, but somebody else than this program keeps it from starting it: it is hidden,
///   turned off in the desktop's settings, not meant for this desktop, or its command was replaced by another one;
/// - not registered: there is none, this program turned it off, or it starts nothing (any more);
/// - not found: as before, and the folder cannot be written either.
///
/// What a person wrote into the entry by hand stays there.
class XdgLoginItem final : public LoginItem {
public:
    struct Program {
        /// The desktop-file id, without ".desktop".
        std::string id;
        std::string name;
        /// Absolute.
        std::filesystem::path executable;
    };
    /// The environment's, colon-separated.
    struct Session {
        std::string currentDesktop;
        std::string path;

        [[nodiscard]] static Session fromEnvironment();
    };

    XdgLoginItem(const XdgFolders& folders, Program program, const Session& session = Session::fromEnvironment());

    [[nodiscard]] Status status() const override;
    [[nodiscard]] std::optional<Error> registerProgram() override;
    [[nodiscard]] std::optional<Error> unregisterProgram() override;

    /// The user's entry, whether there is one or not.
    [[nodiscard]] const std::filesystem::path& userEntry() const { return userEntry_; }

private:
    [[nodiscard]] Status entryStatus() const;
    [[nodiscard]] std::optional<DesktopFileDocument> entryInForce() const;
    [[nodiscard]] std::optional<DesktopFileDocument> systemEntry() const;
    [[nodiscard]] bool isTurnedOff(const DesktopFileDocument& entry) const;
    [[nodiscard]] bool isShownHere(const DesktopFileDocument& entry) const;
    /// Changes the desktops that the entry is meant for so that this one is among them.
    void showHere(DesktopFileDocument& entry) const;
    [[nodiscard]] bool startsSomething(const DesktopFileDocument& entry) const;
    [[nodiscard]] bool startsThisProgram(const DesktopFileDocument& entry) const;
    /// Starts this program by way of another one, such as a shell that waits first.
    [[nodiscard]] bool startsThisProgramIndirectly(const DesktopFileDocument& entry) const;
    /// Something that this program would not write.
    [[nodiscard]] bool startsSomethingElse(const DesktopFileDocument& entry) const;
    [[nodiscard]] bool exists(const std::filesystem::path& program) const;
    [[nodiscard]] bool isFolderWritable() const;
    [[nodiscard]] std::optional<Error> write(const DesktopFileDocument& entry) const;
    [[nodiscard]] Error error(std::error_code code) const;

    Program program_;
    std::filesystem::path userEntry_;
    /// In the order of their importance.
    std::vector<std::filesystem::path> systemEntries_;
    std::vector<std::string> currentDesktops_;
    std::vector<std::filesystem::path> searchPath_;
};

}  // namespace ferrowyn
