#pragma once

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace ferrowyn::x11test {

using std::chrono::milliseconds;

/// How long a wait may take before it fails. It is long, because a loaded machine must not make a test fail; a wait
/// ends as soon as its event arrives, so only a failing test takes this long.
inline constexpr milliseconds patience{10000};

/// A moment until which to wait.
class Deadline {
public:
    explicit Deadline(milliseconds budget) : end_(std::chrono::steady_clock::now() + budget) {}

    /// The time that is left, for poll(); never negative.
    [[nodiscard]] int remainingMilliseconds() const {
        const auto left = std::chrono::duration_cast<milliseconds>(end_ - std::chrono::steady_clock::now()).count();
        return left > 0 ? static_cast<int>(left) : 0;
    }
    [[nodiscard]] bool hasPassed() const { return std::chrono::steady_clock::now() >= end_; }

private:
    std::chrono::steady_clock::time_point end_;
};

/// A program that the test started, in a new process group. The whole group is ended with this object.
/// Its output and errors go to a pseudo-terminal, because some programs write only to a terminal.
class ChildProcess {
public:
    struct Options {
        std::vector<std::string> command;
        /// Added to this process's environment. An empty value unsets the variable.
        std::map<std::string, std::string> environment;
        /// A file descriptor that the child inherits under the same number.
        std::optional<int> inheritedDescriptor;
    };

    explicit ChildProcess(const Options& options);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    [[nodiscard]] pid_t pid() const { return pid_; }
    [[nodiscard]] bool isRunning();
    /// Everything that the program has written so far.
    [[nodiscard]] std::string output();
    /// Waits until the output contains the text; false at the deadline or when the program ended without writing it.
    [[nodiscard]] bool waitForOutput(const std::string& text, milliseconds budget = patience);
    /// Waits until the predicate holds, and checks it after each output of the program. False as in `waitForOutput`.
    [[nodiscard]] bool waitUntilOutput(const std::function<bool()>& predicate, milliseconds budget = patience);
    /// Clears the output, so that a wait considers only new output.
    void discardOutput();
    void signal(int number) const;
    /// Stops it until SIGCONT. After the signal alone its threads may run on for a while; here none does.
    void stop() const;
    /// The exit status, or 128 + the number of the signal that ended the process; nullopt at the deadline.
    [[nodiscard]] std::optional<int> waitForExit(milliseconds budget = patience);

private:
    void readAvailable();
    void waitForOutputOrExit(const Deadline& deadline);

    pid_t pid_ = -1;
    int terminal_ = -1;
    bool hasTerminalEnded_ = false;
    /// A pidfd; readable when the process has ended.
    int exit_ = -1;
    std::string output_;
    std::optional<int> status_;
};

/// The child process of `parent` with this name; nullopt while there is none.
[[nodiscard]] std::optional<pid_t> childNamed(pid_t parent, const std::string& name);

/// A temporary folder, which the destructor removes.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }
    /// Writes a file below the folder and makes missing folders.
    void write(const std::string& relativePath, const std::string& content) const;

private:
    std::string path_;
};

}  // namespace ferrowyn::x11test
