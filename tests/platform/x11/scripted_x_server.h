#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>
#include <thread>
#include <utility>

namespace ferrowyn {

/// As much of an X server as a client needs that asks for one version of XInput: real servers cannot be had without the
/// extension or with an old one. It answers on a thread of its own until the client's connection ends.
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

}  // namespace ferrowyn
