#include "tests/x11/harness/child_process.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

extern "C" {
// In glibc 2.36 this header does not declare its functions extern "C".
#include <sys/pidfd.h>
}

namespace ferrowyn::x11test {
namespace {

[[noreturn]] void becomeProgram(const ChildProcess::Options& options, int terminal) {
    setsid();
    dup2(terminal, STDOUT_FILENO);
    dup2(terminal, STDERR_FILENO);
    if (const int input = open("/dev/null", O_RDONLY); input >= 0) {
        dup2(input, STDIN_FILENO);
    }
    const int firstToClose = STDERR_FILENO + 1;
    for (int descriptor = firstToClose; descriptor < 256; ++descriptor) {
        if (descriptor != options.inheritedDescriptor.value_or(-1)) {
            close(descriptor);
        }
    }
    for (const auto& [name, value] : options.environment) {
        if (value.empty()) {
            unsetenv(name.c_str());
        } else {
            setenv(name.c_str(), value.c_str(), 1);
        }
    }
    std::vector<char*> arguments;
    for (const auto& argument : options.command) {
        arguments.push_back(const_cast<char*>(argument.c_str()));
    }
    arguments.push_back(nullptr);
    execvp(arguments.front(), arguments.data());
    _exit(127);
}

}  // namespace

ChildProcess::ChildProcess(const Options& options) {
    int childSide = -1;
    termios raw{};
    cfmakeraw(&raw);
    if (openpty(&terminal_, &childSide, nullptr, &raw, nullptr) != 0) {
        throw std::runtime_error("no pseudo-terminal for " + options.command.front());
    }
    fcntl(terminal_, F_SETFL, O_NONBLOCK);
    fcntl(terminal_, F_SETFD, FD_CLOEXEC);
    pid_ = fork();
    if (pid_ < 0) {
        throw std::runtime_error("cannot start " + options.command.front());
    }
    if (pid_ == 0) {
        becomeProgram(options, childSide);
    }
    close(childSide);
    exit_ = pidfd_open(pid_, 0);
    if (exit_ < 0) {
        kill(-pid_, SIGKILL);
        throw std::runtime_error("cannot watch " + options.command.front());
    }
}

ChildProcess::~ChildProcess() {
    if (isRunning()) {
        kill(-pid_, SIGTERM);
        if (!waitForExit(milliseconds{3000})) {
            kill(-pid_, SIGKILL);
            static_cast<void>(waitForExit());
        }
    }
    // Processes that the program has started are in its process group too.
    kill(-pid_, SIGKILL);
    close(exit_);
    close(terminal_);
}

bool ChildProcess::isRunning() {
    if (status_) {
        return false;
    }
    int status = 0;
    if (waitpid(pid_, &status, WNOHANG) != pid_) {
        return true;
    }
    status_ = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return false;
}

void ChildProcess::readAvailable() {
    std::array<char, 4096> buffer{};
    ssize_t length = 0;
    while ((length = read(terminal_, buffer.data(), buffer.size())) > 0) {
        output_.append(buffer.data(), static_cast<std::size_t>(length));
    }
    // When no process has the other side open, nothing more comes, but poll would always report the terminal as ready.
    hasTerminalEnded_ = length == 0 || errno == EIO;
}

void ChildProcess::waitForOutputOrExit(const Deadline& deadline) {
    std::array<pollfd, 2> waiting{{{exit_, POLLIN, 0}, {hasTerminalEnded_ ? -1 : terminal_, POLLIN, 0}}};
    poll(waiting.data(), waiting.size(), deadline.remainingMilliseconds());
}

std::string ChildProcess::output() {
    readAvailable();
    return output_;
}

void ChildProcess::discardOutput() {
    readAvailable();
    output_.clear();
}

bool ChildProcess::waitForOutput(const std::string& text, milliseconds budget) {
    return waitUntilOutput([&] { return output_.find(text) != std::string::npos; }, budget);
}

bool ChildProcess::waitUntilOutput(const std::function<bool()>& predicate, milliseconds budget) {
    const Deadline deadline(budget);
    while (true) {
        // Determined before reading, so that output from just before the program's end is checked too.
        const bool isLastLook = !isRunning() || deadline.hasPassed();
        readAvailable();
        if (predicate()) {
            return true;
        }
        if (isLastLook) {
            return false;
        }
        waitForOutputOrExit(deadline);
    }
}

void ChildProcess::signal(int number) const {
    kill(pid_, number);
}

void ChildProcess::stop() const {
    signal(SIGSTOP);
    // Told once the last of its threads has stopped.
    siginfo_t stopped{};
    waitid(P_PID, static_cast<id_t>(pid_), &stopped, WSTOPPED | WNOWAIT);
}

std::optional<int> ChildProcess::waitForExit(milliseconds budget) {
    const Deadline deadline(budget);
    while (isRunning() && !deadline.hasPassed()) {
        // A program whose terminal is full is blocked and cannot end.
        readAvailable();
        waitForOutputOrExit(deadline);
    }
    readAvailable();
    return status_;
}

std::optional<pid_t> childNamed(pid_t parent, const std::string& name) {
    // The kernel cuts process names.
    constexpr std::size_t longestKernelName = 15;
    const auto kernelName = '(' + name.substr(0, longestKernelName) + ')';
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        std::ifstream file(entry.path() / "stat");
        std::string line;
        if (!std::getline(file, line)) {
            continue;
        }
        std::istringstream rest(line.substr(line.rfind(')') + 1));
        char state = 0;
        pid_t itsParent = 0;
        rest >> state >> itsParent;
        if (itsParent == parent && line.find(kernelName) != std::string::npos) {
            return std::stoi(entry.path().filename());
        }
    }
    return std::nullopt;
}

TemporaryFolder::TemporaryFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "ferrowyn-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr) {
        throw std::runtime_error("no temporary folder");
    }
    path_ = pattern;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

void TemporaryFolder::write(const std::string& relativePath, const std::string& content) const {
    const auto file = std::filesystem::path(path_) / relativePath;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file) << content;
}

}  // namespace ferrowyn::x11test
