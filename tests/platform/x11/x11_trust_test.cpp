#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>
#include <xcb/xcb.h>
#include <xcb/xcbext.h>
#include <xcb/xinput.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "platform/x11/x11_trust.h"

namespace ferrowyn {
namespace {

/// As much of an X server as a client needs that asks for one version of XInput: real servers cannot be had without the
/// extension or with an old one. It answers on another thread until the client's connection ends.
class ScriptedXServer {
public:
    struct Options {
        bool hasInputExtension = true;
        /// Major and minor; the request is unknown to the server when absent.
        std::optional<std::pair<std::uint16_t, std::uint16_t>> inputVersion;
    };

    explicit ScriptedXServer(const Options& options);
    ~ScriptedXServer();
    ScriptedXServer(const ScriptedXServer&) = delete;
    ScriptedXServer& operator=(const ScriptedXServer&) = delete;

    /// The client's side.
    [[nodiscard]] xcb_connection_t* connection() const { return connection_; }

private:
    void serve();
    void answer(std::uint8_t opcode, const std::uint8_t* request, std::uint16_t sequence) const;

    Options options_;
    int socket_ = -1;
    std::thread thread_;
    xcb_connection_t* connection_ = nullptr;
};

constexpr std::uint8_t inputOpcode = 131;
constexpr std::string_view inputName = "XInputExtension";

bool readAll(int socket, void* data, std::size_t size) {
    auto* next = static_cast<char*>(data);
    while (size > 0) {
        const auto length = ::read(socket, next, size);
        if (length <= 0) {
            return false;
        }
        next += length;
        size -= static_cast<std::size_t>(length);
    }
    return true;
}

template <typename Message>
void send(int socket, const Message& message) {
    // Each of these answers takes 32 bytes; what the client's library appends to an error is not sent.
    std::array<char, 32> padded{};
    std::memcpy(padded.data(), &message, std::min(sizeof(message), padded.size()));
    static_cast<void>(write(socket, padded.data(), padded.size()));
}

void sendSetup(int socket) {
    xcb_setup_t setup{};
    setup.status = 1;
    setup.protocol_major_version = 11;
    setup.length = (sizeof(setup) - 8) / 4;
    setup.resource_id_base = 0x200000;
    setup.resource_id_mask = 0x1FFFFF;
    setup.maximum_request_length = 0xFFFF;
    setup.min_keycode = 8;
    setup.max_keycode = 255;
    static_cast<void>(write(socket, &setup, sizeof(setup)));
}

ScriptedXServer::ScriptedXServer(const Options& options) : options_(options) {
    std::array<int, 2> ends{};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
        throw std::runtime_error("no socket for the scripted server");
    }
    socket_ = ends[0];
    thread_ = std::thread([this] { serve(); });
    connection_ = xcb_connect_to_fd(ends[1], nullptr);
}

ScriptedXServer::~ScriptedXServer() {
    // Ends the thread's reading.
    xcb_disconnect(connection_);
    thread_.join();
    close(socket_);
}

void ScriptedXServer::serve() {
    xcb_setup_request_t hello{};
    if (!readAll(socket_, &hello, sizeof(hello))) {
        return;
    }
    sendSetup(socket_);
    std::array<std::uint8_t, 4> header{};
    for (std::uint16_t sequence = 1; readAll(socket_, header.data(), header.size()); ++sequence) {
        std::uint16_t words = 0;
        std::memcpy(&words, header.data() + 2, sizeof(words));
        std::vector<std::uint8_t> request(words * std::size_t{4});
        std::memcpy(request.data(), header.data(), header.size());
        if (!readAll(socket_, request.data() + header.size(), request.size() - header.size())) {
            return;
        }
        answer(header[0], request.data(), sequence);
    }
}

void ScriptedXServer::answer(std::uint8_t opcode, const std::uint8_t* request, std::uint16_t sequence) const {
    if (opcode == XCB_QUERY_EXTENSION) {
        xcb_query_extension_request_t query{};
        std::memcpy(&query, request, sizeof(query));
        const std::string_view name(reinterpret_cast<const char*>(request) + sizeof(query), query.name_len);
        xcb_query_extension_reply_t reply{};
        reply.response_type = 1;
        reply.sequence = sequence;
        reply.present = options_.hasInputExtension && name == inputName ? 1 : 0;
        reply.major_opcode = inputOpcode;
        send(socket_, reply);
    } else if (opcode == inputOpcode && request[1] == XCB_INPUT_XI_QUERY_VERSION && options_.inputVersion) {
        xcb_input_xi_query_version_reply_t reply{};
        reply.response_type = 1;
        reply.sequence = sequence;
        reply.major_version = options_.inputVersion->first;
        reply.minor_version = options_.inputVersion->second;
        send(socket_, reply);
    } else if (opcode == XCB_GET_INPUT_FOCUS) {
        xcb_get_input_focus_reply_t reply{};
        reply.response_type = 1;
        reply.sequence = sequence;
        send(socket_, reply);
    } else {
        xcb_generic_error_t error{};
        error.error_code = XCB_REQUEST;
        error.sequence = sequence;
        error.major_code = opcode;
        error.minor_code = request[1];
        send(socket_, error);
    }
}

std::string missingOn(const ScriptedXServer::Options& options) {
    const ScriptedXServer server(options);
    EXPECT_EQ(xcb_connection_has_error(server.connection()), 0);
    return inputObstacle(server.connection());
}

TEST(InputExtensionTest, AServerWithoutXInputIsNamedAsSuch) {
    EXPECT_EQ(missingOn({.hasInputExtension = false, .inputVersion = {}}),
              "This X server has no XInput extension; Ferrowyn needs XInput 2.2 to see its shortcut: update the X "
              "server");
}

TEST(InputExtensionTest, AServerThatKnowsOnlyTheFirstXInputIsNamedAsSuch) {
    EXPECT_EQ(missingOn({.inputVersion = {}}),
              "This X server has no XInput 2; Ferrowyn needs XInput 2.2 to see its shortcut: update the X server");
}

TEST(InputExtensionTest, AnOldXInputIsNamedWithItsVersion) {
    EXPECT_EQ(missingOn({.inputVersion = {{2, 1}}}),
              "This X server has XInput 2.1; Ferrowyn needs XInput 2.2 to see its shortcut: update the X server");
    EXPECT_EQ(missingOn({.inputVersion = {{1, 9}}}),
              "This X server has XInput 1.9; Ferrowyn needs XInput 2.2 to see its shortcut: update the X server");
}

TEST(InputExtensionTest, NothingIsMissingFromTheNeededVersionOn) {
    EXPECT_EQ(missingOn({.inputVersion = {{2, 2}}}), "");
    EXPECT_EQ(missingOn({.inputVersion = {{2, 4}}}), "");
    EXPECT_EQ(missingOn({.inputVersion = {{3, 0}}}), "");
}

}  // namespace
}  // namespace ferrowyn
