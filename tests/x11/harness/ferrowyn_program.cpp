#include "tests/x11/harness/ferrowyn_program.h"

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

}  // namespace ferrowyn::x11test
