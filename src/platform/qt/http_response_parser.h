#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace ferrowyn {

/// Reads one answer of an HTTP/1 server (RFC 9112), piece by piece as it comes in, and keeps no more of it than it may:
/// the header fields count against a bound too. For one request with the method GET.
class HttpResponseParser {
public:
    enum class State {
        incomplete,
        complete,
        /// What answered is no HTTP server.
        notHttp,
        /// The header fields or the body are longer than they may be.
        tooLong,
        /// Begins as an HTTP answer, and breaks its rules or breaks off.
        malformed,
    };

    /// All that may stand before, between and after the pieces of the body.
    static constexpr std::size_t largestHead = std::size_t{64} << 10U;

    explicit HttpResponseParser(std::size_t largestBody) : largestBody_(largestBody) {}

    /// The next bytes. Does nothing unless the answer is incomplete.
    void take(std::string_view bytes);
    /// The server has closed the connection.
    void end();

    [[nodiscard]] State state() const { return state_; }
    /// Whether status and header fields are known.
    [[nodiscard]] bool hasHead() const { return step_ > Step::fields || state_ == State::complete; }
    /// 0 until it is known.
    [[nodiscard]] int status() const { return status_; }
    /// The value of the header field "Location", empty without one.
    [[nodiscard]] const std::string& location() const { return location_; }
    [[nodiscard]] const std::string& body() const { return body_; }

private:
    /// What the next bytes belong to.
    enum class Step { statusLine, fields, bodyOfKnownLength, bodyUntilTheEnd, chunkSize, chunk, chunkEnd, trailer };

    [[nodiscard]] static bool isByLine(Step step);
    [[nodiscard]] bool mayBeHttp() const;
    void takeLine(std::string_view line);
    void takeStatusLine(std::string_view line);
    void takeField(std::string_view line);
    void takeContentLength(std::string_view value);
    void endHead();
    void takeChunkSize(std::string_view line);
    void takeBody(std::string_view& bytes);
    void expectBytes(std::uint64_t count, Step step);
    void fail(State state) { state_ = state; }

    std::size_t largestBody_;
    State state_ = State::incomplete;
    Step step_ = Step::statusLine;
    /// Whether a status line has come in.
    bool isHttp_ = false;
    std::size_t headSize_ = 0;
    /// The beginning of a line whose end has not come yet.
    std::string line_;
    int status_ = 0;
    std::string location_;
    bool isChunked_ = false;
    bool hasLength_ = false;
    std::uint64_t length_ = 0;
    /// Of the body, or of the present chunk.
    std::uint64_t missing_ = 0;
    std::string body_;
};

}  // namespace ferrowyn
