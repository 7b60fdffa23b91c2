#include "tests/x11/harness/ferrowyn_program.h"

#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace ferrowyn::x11test {
namespace {

constexpr const char* announcement = "Published ";

ChildProcess::Options childOptions(const std::string& path, const PrivateXServer& server,
                                   const FerrowynProgram::Options& options) {
    ChildProcess::Options child;
    child.command = {path};
    child.command.insert(child.command.end(), options.arguments.begin(), options.arguments.end());
    child.environment = server.clientEnvironment();
    for (const auto& [name, value] : options.environment) {
        child.environment[name] = value;
    }
    return child;
}

}  // namespace

FerrowynProgram::FerrowynProgram(const std::string& path, const PrivateXServer& server, const Options& options)
    : process_(childOptions(path, server, options)) {}

std::string FerrowynProgram::sanitizerReport() {
    const std::string output = process_.output();
    for (const char* const mark : {"Sanitizer", "runtime error: "}) {
        if (const auto start = output.find(mark); start != std::string::npos) {
            return output.substr(start);
        }
    }
    return {};
}

std::string FerrowynProgram::latestList() {
    const std::string output = process_.output();
    const auto start = output.rfind(announcement);
    return start == std::string::npos ? std::string() : output.substr(start, output.find('\n', start) - start);
}

bool FerrowynProgram::waitForList(std::size_t count, xcb_window_t first, milliseconds budget) {
    const std::string wanted = announcement + std::to_string(count) + " window(s), first " + std::to_string(first);
    return process_.waitUntilOutput([&] { return latestList() == wanted; }, budget);
}

bool FerrowynProgram::waitForFirst(xcb_window_t first, milliseconds budget) {
    const std::string wanted = " first " + std::to_string(first);
    return process_.waitUntilOutput([&] { return latestList().ends_with(wanted); }, budget);
}

namespace {

constexpr const char* fileName = "/Ferrowyn.ini";

}  // namespace

SettingsFile::SettingsFile(const PrivateXServer& server)
    : folder_(server.home().path() + "/.config/Ferrowyn"), changes_(inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {
    std::filesystem::create_directories(folder_);
    if (inotify_add_watch(changes_, folder_.c_str(), IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE) < 0) {
        close(changes_);
        throw std::runtime_error("cannot watch " + folder_);
    }
}

SettingsFile::~SettingsFile() {
    close(changes_);
}

std::string SettingsFile::text() const {
    std::ifstream file(folder_ + fileName);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void SettingsFile::write(const std::string& text) const {
    std::ofstream(folder_ + fileName) << text;
}

bool SettingsFile::waitUntil(const std::function<bool(const std::string&)>& predicate, milliseconds budget) {
    const Deadline deadline(budget);
    while (true) {
        std::array<char, 4096> seen{};
        while (read(changes_, seen.data(), seen.size()) > 0) {
        }
        if (predicate(text())) {
            return true;
        }
        pollfd waiting{changes_, POLLIN, 0};
        if (poll(&waiting, 1, deadline.remainingMilliseconds()) <= 0) {
            return predicate(text());
        }
    }
}

bool SettingsFile::waitFor(const std::string& part, milliseconds budget) {
    return waitUntil([&](const std::string& text) { return text.find(part) != std::string::npos; }, budget);
}

}  // namespace ferrowyn::x11test
