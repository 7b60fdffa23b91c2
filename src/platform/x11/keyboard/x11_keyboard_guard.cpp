#include "platform/x11/keyboard/x11_keyboard_guard.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

#include "platform/log.h"
#include "platform/x11/x11_connection.h"
#include "platform/x11/xcb_reply.h"

namespace ferrowyn {

namespace {

using Kind = X11KeyboardGuardMessage::Kind;

constexpr std::string_view category = "input";
constexpr const char* programName = "ferrowyn-keyboard-guard";

/// Looks in the program's folder, then in the folder for helper programs of an installation.
std::optional<std::string> findProgram() {
    std::error_code error;
    const auto folder = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
    if (error) {
        return std::nullopt;
    }
    for (const auto& path : {folder / programName, folder.parent_path() / "libexec" / "ferrowyn" / programName}) {
        if (access(path.c_str(), X_OK) == 0) {
            return path.string();
        }
    }
    return std::nullopt;
}

/// Makes a resource of this connection. With its XID the guard can close the connection (KillClient).
xcb_pixmap_t makeHandle(const X11Connection& connection) {
    const auto handle = xcb_generate_id(connection.get());
    xcb_create_pixmap(connection.get(), 1, handle, connection.root(), 1, 1);
    // The server must have made it before the guard looks for it.
    const XcbReply<xcb_get_input_focus_reply_t> sync(
        xcb_get_input_focus_reply(connection.get(), xcb_get_input_focus(connection.get()), nullptr));
    return handle;
}

/// Starts the guard in a new session, so that a signal from the terminal that stops the program does not stop the
/// guard.
std::optional<pid_t> spawn(const std::string& path, const std::string& display, xcb_pixmap_t handle, int socket) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        posix_spawn_file_actions_addopen(&actions, standard, "/dev/null", O_RDWR, 0);
    }
    posix_spawn_file_actions_adddup2(&actions, socket, x11KeyboardGuardSocket);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
    auto program = path;
    auto displayName = display;
    auto handleName = std::to_string(handle);
    const std::array<char*, 4> arguments{program.data(), handleName.data(),
                                         displayName.empty() ? nullptr : displayName.data(), nullptr};
    pid_t process = 0;
    const int error = posix_spawn(&process, path.c_str(), &actions, &attributes, arguments.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return error == 0 ? std::optional(process) : std::nullopt;
}

}  // namespace

std::unique_ptr<X11KeyboardGuard> X11KeyboardGuard::start(const X11Connection& connection, const std::string& display,
                                                          Log& log) {
    const auto path = findProgram();
    std::array<int, 2> ends{};
    if (!path || socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, ends.data()) != 0) {
        log.write(LogLevel::standard, category, fmt::format("{} is missing; keys are not held back", programName));
        return nullptr;
    }
    const auto process = spawn(*path, display, makeHandle(connection), ends[1]);
    ::close(ends[1]);
    if (!process) {
        ::close(ends[0]);
        log.write(LogLevel::standard, category, fmt::format("{} does not start; keys are not held back", programName));
        return nullptr;
    }
    return std::unique_ptr<X11KeyboardGuard>(new X11KeyboardGuard(*process, ends[0]));
}

X11KeyboardGuard::~X11KeyboardGuard() {
    close();
    // SIGKILL also ends a stopped guard, and the guard has nothing to clean up.
    kill(process_, SIGKILL);
    while (waitpid(process_, nullptr, 0) < 0 && errno == EINTR) {
    }
}

void X11KeyboardGuard::answer() {
    X11KeyboardGuardMessage message;
    while (isThere()) {
        const auto size = recv(socket_, &message, sizeof message, 0);
        if (size == sizeof message) {
            send(Kind::answer);
        } else if (size < 0 && (errno == EAGAIN || errno == EINTR)) {
            return;
        } else {
            close();
        }
    }
}

void X11KeyboardGuard::setFreezingModifiers(std::uint32_t modifiers) {
    if (std::exchange(freezingModifiers_, modifiers) != modifiers) {
        send(Kind::freezingModifiers, modifiers);
    }
}

void X11KeyboardGuard::noteHeld(bool isHeld) {
    send(isHeld ? Kind::held : Kind::free);
}

void X11KeyboardGuard::send(Kind kind, std::uint32_t value) {
    const X11KeyboardGuardMessage message{kind, value};
    // When the socket is full, the guard is stopped and cannot do its work: it counts as gone.
    if (isThere() && ::send(socket_, &message, sizeof message, MSG_NOSIGNAL) != sizeof message) {
        close();
    }
}

void X11KeyboardGuard::close() {
    if (isThere()) {
        ::close(std::exchange(socket_, -1));
    }
}

}  // namespace ferrowyn
