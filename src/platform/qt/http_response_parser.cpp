#include "platform/qt/http_response_parser.h"

#include <algorithm>
#include <charconv>

#include "core/plain_ascii.h"

namespace ferrowyn {

namespace {

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

bool equalIgnoringCase(std::string_view a, std::string_view lowerCase) {
    return std::ranges::equal(a, lowerCase, {}, plain_ascii::lower);
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t";
    const auto first = std::min(text.find_first_not_of(blanks), text.size());
    text.remove_prefix(first);
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

/// The whole text as a number without sign.
bool readNumber(std::string_view text, int base, std::uint64_t& number) {
    const auto* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number, base);
    return !text.empty() && error == std::errc{} && rest == end;
}

constexpr std::string_view protocol = "HTTP/1.";

}  // namespace

bool HttpResponseParser::isByLine(Step step) {
    return step != Step::bodyOfKnownLength && step != Step::bodyUntilTheEnd && step != Step::chunk;
}

void HttpResponseParser::take(std::string_view bytes) {
    while (state_ == State::incomplete && !bytes.empty()) {
        if (!isByLine(step_)) {
            takeBody(bytes);
            continue;
        }
        const auto end = bytes.find('\n');
        const auto piece = bytes.substr(0, std::min(end, bytes.size()));
        headSize_ += piece.size() + 1;
        line_ += piece.substr(0, largestHead);
        if (headSize_ > largestHead) {
            fail(mayBeHttp() ? State::tooLong : State::notHttp);
            return;
        }
        if (end == std::string_view::npos) {
            return;
        }
        bytes.remove_prefix(end + 1);
        if (line_.ends_with('\r')) {
            line_.pop_back();
        }
        takeLine(line_);
        line_.clear();
    }
}

void HttpResponseParser::end() {
    if (state_ != State::incomplete) {
        return;
    }
    if (step_ == Step::bodyUntilTheEnd) {
        state_ = State::complete;
    } else {
        fail(mayBeHttp() ? State::malformed : State::notHttp);
    }
}

bool HttpResponseParser::mayBeHttp() const {
    return isHttp_ || line_.starts_with(protocol);
}

void HttpResponseParser::takeLine(std::string_view line) {
    switch (step_) {
        case Step::statusLine:
            takeStatusLine(line);
            break;
        case Step::fields:
            if (line.empty()) {
                endHead();
            } else {
                takeField(line);
            }
            break;
        case Step::chunkSize:
            takeChunkSize(line);
            break;
        case Step::chunkEnd:
            if (line.empty()) {
                step_ = Step::chunkSize;
            } else {
                fail(State::malformed);
            }
            break;
        default:
            // The fields after the last chunk say nothing that matters here.
            if (line.empty()) {
                state_ = State::complete;
            }
            break;
    }
}

void HttpResponseParser::takeStatusLine(std::string_view line) {
    constexpr std::size_t statusAt = protocol.size() + 2;
    constexpr std::size_t statusEnd = statusAt + 3;
    const bool isHttp = line.starts_with(protocol) && line.size() >= statusEnd && isDigit(line[protocol.size()]) &&
                        line[statusAt - 1] == ' ' &&
                        std::ranges::all_of(line.substr(statusAt, statusEnd - statusAt), isDigit) &&
                        (line.size() == statusEnd || line[statusEnd] == ' ');
    std::uint64_t status = 0;
    if (!isHttp || !readNumber(line.substr(statusAt, statusEnd - statusAt), 10, status)) {
        fail(State::notHttp);
        return;
    }
    isHttp_ = true;
    status_ = static_cast<int>(status);
    step_ = Step::fields;
}

void HttpResponseParser::takeField(std::string_view line) {
    const auto colon = line.find(':');
    if (colon == std::string_view::npos || colon == 0) {
        fail(State::malformed);
        return;
    }
    const auto name = line.substr(0, colon);
    const auto value = trimmed(line.substr(colon + 1));
    if (equalIgnoringCase(name, "location")) {
        location_ = value;
    } else if (equalIgnoringCase(name, "content-length")) {
        takeContentLength(value);
    } else if (equalIgnoringCase(name, "transfer-encoding")) {
        // No other coding was asked for.
        if (isChunked_ || !equalIgnoringCase(value, "chunked")) {
            fail(State::malformed);
        }
        isChunked_ = true;
    }
}

void HttpResponseParser::takeContentLength(std::string_view value) {
    std::uint64_t length = 0;
    if (!readNumber(value, 10, length) || (hasLength_ && length != length_)) {
        fail(State::malformed);
        return;
    }
    hasLength_ = true;
    length_ = length;
}

void HttpResponseParser::endHead() {
    constexpr int noContent = 204;
    constexpr int notModified = 304;
    if (status_ < 200) {
        // An interim answer: the real one follows.
        step_ = Step::statusLine;
        status_ = 0;
        location_.clear();
        isChunked_ = false;
        hasLength_ = false;
    } else if (status_ == noContent || status_ == notModified) {
        state_ = State::complete;
    } else if (isChunked_) {
        step_ = Step::chunkSize;
    } else if (hasLength_) {
        expectBytes(length_, Step::bodyOfKnownLength);
    } else {
        step_ = Step::bodyUntilTheEnd;
    }
}

void HttpResponseParser::takeChunkSize(std::string_view line) {
    std::uint64_t size = 0;
    if (!readNumber(trimmed(line.substr(0, line.find(';'))), 16, size)) {
        fail(State::malformed);
    } else if (size == 0) {
        step_ = Step::trailer;
    } else {
        expectBytes(size, Step::chunk);
    }
}

void HttpResponseParser::expectBytes(std::uint64_t count, Step step) {
    step_ = step;
    missing_ = count;
    if (count > largestBody_ - body_.size()) {
        fail(State::tooLong);
    } else if (count == 0) {
        state_ = State::complete;
    }
}

void HttpResponseParser::takeBody(std::string_view& bytes) {
    if (step_ == Step::bodyUntilTheEnd) {
        if (bytes.size() > largestBody_ - body_.size()) {
            fail(State::tooLong);
        } else {
            body_ += bytes;
        }
        bytes = {};
        return;
    }
    const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(missing_, bytes.size()));
    body_ += bytes.substr(0, count);
    bytes.remove_prefix(count);
    missing_ -= count;
    if (missing_ > 0) {
        return;
    }
    if (step_ == Step::chunk) {
        step_ = Step::chunkEnd;
    } else {
        state_ = State::complete;
    }
}

}  // namespace ferrowyn
