#include "platform/linux/xdg_login_item.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>
#include <utility>

#include "core/text_encoding.h"
#include "platform/linux/atomic_file.h"
#include "platform/linux/desktop_file.h"

namespace ferrowyn {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t largestEntry = 1U << 20U;
/// The keys with which desktops' settings turn an entry off; the first is used by several desktops.
constexpr std::array<std::string_view, 2> desktopSwitches{"X-GNOME-Autostart-enabled", "X-MATE-Autostart-enabled"};
/// Marks an entry that this program, not the user, has turned off.
constexpr std::string_view turnedOffByProgram = "X-Ferrowyn-TurnedOff";
constexpr std::array<std::string_view, 9> ownKeys{
    "Type", "Name", "Exec", "TryExec", "Icon", "Hidden", desktopSwitches[0], desktopSwitches[1], turnedOffByProgram};

std::string environmentText(const char* variable) {
    const char* value = std::getenv(variable);
    return value == nullptr ? "" : value;
}

std::optional<DesktopFileDocument> readEntry(const fs::path& file) {
    std::error_code error;
    const auto text = readFile(file, largestEntry, error);
    return error ? std::nullopt : DesktopFileDocument::parse(text);
}

std::vector<std::string> commandOf(const DesktopFileDocument& entry) {
    return desktop_file::splitExec(entry.value("Exec").value_or("")).value_or(std::vector<std::string>{});
}

bool namesWord(std::string_view text, std::string_view word) {
    const auto isPartOfWord = [](char character) {
        return std::isalnum(static_cast<unsigned char>(character)) != 0 || character == '_' || character == '-';
    };
    for (auto at = text.find(word); at != std::string_view::npos; at = text.find(word, at + 1)) {
        const auto end = at + word.size();
        if ((at == 0 || !isPartOfWord(text[at - 1])) && (end == text.size() || !isPartOfWord(text[end]))) {
            return true;
        }
    }
    return false;
}

bool contains(const std::optional<std::vector<std::string>>& list, const std::string& item) {
    return list && std::ranges::find(*list, item) != list->end();
}

/// An empty list removes the key.
void setList(DesktopFileDocument& entry, std::string_view key, const std::vector<std::string>& items) {
    if (items.empty()) {
        entry.remove(key);
        return;
    }
    entry.set(key, fmt::format("{};", fmt::join(items, ";")));
}

}  // namespace

XdgLoginItem::Session XdgLoginItem::Session::fromEnvironment() {
    return {environmentText("XDG_CURRENT_DESKTOP"), environmentText("PATH")};
}

XdgLoginItem::XdgLoginItem(const XdgFolders& folders, Program program, const Session& session)
    : program_(std::move(program)), currentDesktops_(splitAtColons(session.currentDesktop)) {
    const auto file = fs::path("autostart") / (program_.id + ".desktop");
    userEntry_ = folders.configHome / file;
    for (const auto& folder : folders.configDirs) {
        systemEntries_.push_back(folder / file);
    }
    for (const auto& folder : splitAtColons(session.path)) {
        searchPath_.emplace_back(folder);
    }
}

LoginItem::Status XdgLoginItem::status() const {
    const auto status = entryStatus();
    return status == Status::notRegistered && !isFolderWritable() ? Status::notFound : status;
}

LoginItem::Status XdgLoginItem::entryStatus() const {
    const auto entry = entryInForce();
    if (!entry) {
        return Status::notRegistered;
    }
    if (entry->boolean("Hidden").value_or(false) && entry->boolean(turnedOffByProgram).value_or(false)) {
        return Status::notRegistered;
    }
    if (isTurnedOff(*entry) || !isShownHere(*entry)) {
        return Status::requiresApproval;
    }
    if (!startsSomething(*entry)) {
        return Status::notRegistered;
    }
    return startsThisProgram(*entry) ? Status::enabled : Status::requiresApproval;
}

std::optional<DesktopFileDocument> XdgLoginItem::entryInForce() const {
    std::error_code error;
    // A damaged user entry still overrides the system's, as it does for the session.
    return fs::exists(fs::symlink_status(userEntry_, error)) ? readEntry(userEntry_) : systemEntry();
}

std::optional<DesktopFileDocument> XdgLoginItem::systemEntry() const {
    std::error_code error;
    const auto found = std::ranges::find_if(systemEntries_, [&](const auto& file) { return fs::exists(file, error); });
    return found != systemEntries_.end() ? readEntry(*found) : std::nullopt;
}

bool XdgLoginItem::isTurnedOff(const DesktopFileDocument& entry) const {
    return entry.boolean("Hidden").value_or(false) ||
           std::ranges::any_of(desktopSwitches, [&](const auto key) { return !entry.boolean(key).value_or(true); });
}

bool XdgLoginItem::isShownHere(const DesktopFileDocument& entry) const {
    const auto only = entry.list("OnlyShowIn");
    const auto never = entry.list("NotShowIn");
    for (const auto& desktop : currentDesktops_) {
        if (contains(only, desktop)) {
            return true;
        }
        if (contains(never, desktop)) {
            return false;
        }
    }
    return !only.has_value();
}

void XdgLoginItem::showHere(DesktopFileDocument& entry) const {
    if (isShownHere(entry)) {
        return;
    }
    if (auto never = entry.list("NotShowIn")) {
        std::erase_if(*never, [&](const auto& desktop) { return contains(currentDesktops_, desktop); });
        setList(entry, "NotShowIn", *never);
    }
    if (auto only = entry.list("OnlyShowIn"); only && !isShownHere(entry)) {
        // A session without a desktop name starts only entries without OnlyShowIn.
        only->insert(only->end(), currentDesktops_.begin(), currentDesktops_.end());
        setList(entry, "OnlyShowIn", currentDesktops_.empty() ? std::vector<std::string>{} : *only);
    }
}

bool XdgLoginItem::startsSomething(const DesktopFileDocument& entry) const {
    const auto command = commandOf(entry);
    const auto condition = entry.value("TryExec");
    return entry.value("Type") == "Application" && !command.empty() && exists(command.front()) &&
           (!condition || exists(*condition));
}

bool XdgLoginItem::startsThisProgram(const DesktopFileDocument& entry) const {
    const auto command = commandOf(entry);
    return (!command.empty() && fs::path(command.front()).filename() == program_.executable.filename()) ||
           startsThisProgramIndirectly(entry);
}

bool XdgLoginItem::startsThisProgramIndirectly(const DesktopFileDocument& entry) const {
    const auto command = commandOf(entry);
    return command.size() > 1 && fs::path(command.front()).filename() != program_.executable.filename() &&
           std::any_of(command.begin() + 1, command.end(), [&](const auto& argument) {
               return namesWord(argument, program_.executable.filename().string());
           });
}

bool XdgLoginItem::startsSomethingElse(const DesktopFileDocument& entry) const {
    const auto command = commandOf(entry);
    return command.size() > 1 || (!command.empty() && !startsThisProgram(entry));
}

bool XdgLoginItem::exists(const fs::path& program) const {
    const auto isExecutable = [](const fs::path& file) {
        std::error_code error;
        return fs::is_regular_file(file, error) && ::access(file.c_str(), X_OK) == 0;
    };
    if (program.has_parent_path()) {
        return isExecutable(program);
    }
    return std::ranges::any_of(searchPath_, [&](const auto& folder) { return isExecutable(folder / program); });
}

bool XdgLoginItem::isFolderWritable() const {
    std::error_code error;
    if (const auto status = fs::status(userEntry_, error); fs::exists(status) && !fs::is_regular_file(status)) {
        return false;
    }
    // Missing folders are made below the nearest existing one.
    auto folder = userEntry_.parent_path();
    while (folder.has_relative_path() && !fs::exists(fs::symlink_status(folder, error))) {
        folder = folder.parent_path();
    }
    return fs::is_directory(folder, error) && ::access(folder.c_str(), W_OK | X_OK) == 0;
}

std::optional<LoginItem::Error> XdgLoginItem::registerProgram() {
    const auto executable = program_.executable.string();
    if (!text::isValidUtf8(executable)) {
        return error(std::make_error_code(std::errc::illegal_byte_sequence));
    }
    auto entry = readEntry(userEntry_).value_or(DesktopFileDocument());
    entry.set("Type", "Application");
    if (!entry.value("Name")) {
        entry.set("Name", program_.name);
        entry.set("Icon", program_.id);
    }
    if (!startsThisProgramIndirectly(entry) || !startsSomething(entry)) {
        entry.set("Exec", desktop_file::quotedArgument(executable));
        entry.set("TryExec", executable);
    }
    for (const auto key : desktopSwitches) {
        if (entry.value(key)) {
            entry.set(key, "true");
        }
    }
    entry.remove("Hidden");
    entry.remove(turnedOffByProgram);
    showHere(entry);
    return write(entry);
}

std::optional<LoginItem::Error> XdgLoginItem::unregisterProgram() {
    std::error_code failure;
    const bool hasUserEntry = fs::exists(fs::symlink_status(userEntry_, failure));
    auto entry = readEntry(userEntry_);
    const bool isOwnWork = entry && entry->holdsOnly(ownKeys) && !startsSomethingElse(*entry);
    if (!systemEntry() && (!hasUserEntry || isOwnWork)) {
        fs::remove(userEntry_, failure);
        return failure ? std::optional(error(failure)) : std::nullopt;
    }
    if (!entry) {
        entry.emplace();
        entry->set("Type", "Application");
        entry->set("Name", program_.name);
    }
    entry->set("Hidden", "true");
    entry->set(turnedOffByProgram, "true");
    return write(*entry);
}

std::optional<LoginItem::Error> XdgLoginItem::write(const DesktopFileDocument& entry) const {
    removeUnfinishedFiles(userEntry_);
    const auto failure = replaceFile(userEntry_, entry.text());
    return failure ? std::optional(error(failure)) : std::nullopt;
}

LoginItem::Error XdgLoginItem::error(std::error_code code) const {
    return {code.category().name(), code.value(), fmt::format("{}: {}", userEntry_.string(), code.message())};
}

}  // namespace ferrowyn
