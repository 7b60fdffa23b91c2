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
#include <stdexcept>

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
}

ChildProcess::~ChildProcess() {
    if (isRunning()) {
        kill(-pid_, SIGTERM);
        if (!waitForExit(milliseconds{3000})) {
            kill(-pid_, SIGKILL);
            static_cast<void>(waitForExit());
        }
    }
    // What the program itself started and left behind is in its process group.
    kill(-pid_, SIGKILL);
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

void ChildProcess::readAvailable(int timeoutMilliseconds) {
    pollfd waiting{terminal_, POLLIN, 0};
    if (poll(&waiting, 1, timeoutMilliseconds) <= 0) {
        return;
    }
    std::array<char, 4096> buffer{};
    ssize_t length = 0;
    while ((length = read(terminal_, buffer.data(), buffer.size())) > 0) {
        output_.append(buffer.data(), static_cast<std::size_t>(length));
    }
}

std::string ChildProcess::output() {
    readAvailable(0);
    return output_;
}

void ChildProcess::discardOutput() {
    readAvailable(0);
    output_.clear();
}

bool ChildProcess::waitForOutput(const std::string& text, milliseconds budget) {
    return waitUntilOutput([&] { return output_.find(text) != std::string::npos; }, budget);
}

bool ChildProcess::waitUntilOutput(const std::function<bool()>& predicate, milliseconds budget) {
    const Deadline deadline(budget);
    while (true) {
        readAvailable(0);
        if (predicate()) {
            return true;
        }
        if (!isRunning() || deadline.hasPassed()) {
            return false;
        }
        // A pseudo-terminal does not say that its other side ended in a way that poll could wait for.
        readAvailable(std::min(deadline.remainingMilliseconds(), 50));
    }
}

void ChildProcess::signal(int number) const {
    kill(pid_, number);
}

std::optional<int> ChildProcess::waitForExit(milliseconds budget) {
    const Deadline deadline(budget);
    while (isRunning() && !deadline.hasPassed()) {
        readAvailable(5);
        if (isRunning()) {
            usleep(1000);
        }
    }
    readAvailable(0);
    return status_;
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
