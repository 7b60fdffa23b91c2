#include "platform/qt/http_response_parser.h"

namespace ferrowyn {
namespace {

using State = HttpResponseParser::State;

constexpr std::size_t largestBody = 20;

HttpResponseParser parse(std::string_view answer, bool isClosed = true, std::size_t pieceSize = 1000) {
    HttpResponseParser parser(largestBody);
    while (!answer.empty()) {
        parser.take(answer.substr(0, pieceSize));
        answer.remove_prefix(std::min(pieceSize, answer.size()));
    }
    if (isClosed) {
        parser.end();
    }
    return parser;
}

struct Answer {
    const char* text;
    State state;
    int status = 0;
    const char* body = "";
};

const Answer answers[] = {
    {"HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello", State::complete, 200, "hello"},
    {"HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello and more", State::complete, 200, "hello"},
    {"HTTP/1.0 200\r\ncontent-length:\t5 \r\n\r\nhello", State::complete, 200, "hello"},
    {"HTTP/1.1 200 OK\nContent-Length: 5\n\nhello", State::complete, 200, "hello"},
    {"HTTP/1.1 404 \r\nContent-Length: 0\r\n\r\n", State::complete, 404, ""},
    {"HTTP/1.1 200 OK\r\n\r\nuntil the end", State::complete, 200, "until the end"},
    {"HTTP/1.1 200 OK\r\n\r\n", State::complete, 200, ""},
    {"HTTP/1.1 204 None\r\nContent-Length: 9999\r\n\r\n", State::complete, 204, ""},
    {"HTTP/1.1 304 Same\r\nTransfer-Encoding: chunked\r\n\r\n", State::complete, 304, ""},
    {"HTTP/1.1 100 Go on\r\n\r\nHTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nhi", State::complete, 200, "hi"},
    {"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5;a=b\r\nhello\r\nA \r\n, 10 bytes\r\n0\r\nX: y\r\n\r\n",
     State::complete, 200, "hello, 10 bytes"},
    {"HTTP/1.1 200 OK\r\nContent-Length: 9999\r\nTransfer-Encoding: Chunked\r\n\r\n1\r\nx\r\n0\r\n\r\n",
     State::complete, 200, "x"},
    // Not as long as it says.
    {"HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhell", State::malformed, 200, "hell"},
    {"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nhello\r\n", State::malformed, 200, "hello"},
    {"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nhello\r\n0\r\n", State::malformed, 200, "hello"},
    {"HTTP/1.1 200 OK\r\nContent-Le", State::malformed, 200, ""},
    {"HTTP/1.1 2", State::malformed, 0, ""},
    {"HTTP/1.1 100 Go on\r\n\r\n", State::malformed, 0, ""},
    // Against the rules.
    {"HTTP/1.1 200 OK\r\nno colon\r\n\r\n", State::malformed, 200, ""},
    {"HTTP/1.1 200 OK\r\n: no name\r\n\r\n", State::malformed, 200, ""},
    {"HTTP/1.1 200 OK\r\nContent-Length: 5x\r\n\r\nhello", State::malformed, 200, ""},
    {"HTTP/1.1 200 OK\r\nContent-Length: -5\r\n\r\nhello", State::malformed, 200, ""},
    {"HTTP/1.1 200 OK\r\nContent-Length:\r\n\r\nhello", State::malformed, 200, ""},
    {"HTTP/1.1 200 OK\r\nContent-Length: 5\r\nContent-Length: 4\r\n\r\nhello", State::malformed, 200, ""},
    {"HTTP/1.1 200 OK\r\nContent-Length: 99999999999999999999\r\n\r\n", State::malformed, 200, ""},
    {"HTTP/1.1 200 OK\r\nTransfer-Encoding: gzip\r\n\r\n", State::malformed, 200, ""},
    {"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\nTransfer-Encoding: chunked\r\n\r\n", State::malformed, 200, ""},
    {"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nzz\r\n", State::malformed, 200, ""},
    {"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n\r\n", State::malformed, 200, ""},
    {"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n1FFFFFFFFFFFFFFFF\r\n", State::malformed, 200, ""},
    {"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n1\r\nxy\r\n", State::malformed, 200, "x"},
    // Too long.
    {"HTTP/1.1 200 OK\r\nContent-Length: 21\r\n\r\n", State::tooLong, 200, ""},
    {"HTTP/1.1 200 OK\r\nContent-Length: 18446744073709551615\r\n\r\n", State::tooLong, 200, ""},
    {"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nhello\r\n10\r\n", State::tooLong, 200, "hello"},
    {"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nhello\r\nFFFFFFFFFFFFFFFF\r\n", State::tooLong, 200,
     "hello"},
    // Something else.
    {"", State::notHttp},
    {"\r\n", State::notHttp},
    {"220 mail.example ESMTP ready\r\n", State::notHttp},
    {"SSH-2.0", State::notHttp},
    {"HTTP/2 200\r\n", State::notHttp},
    {"HTTP/1.1 20\r\n", State::notHttp},
    {"HTTP/1.1 2000 OK\r\n", State::notHttp},
    {"HTTP/1.1 +20 OK\r\n", State::notHttp},
    {"HTTP/1.1\t200 OK\r\n", State::notHttp},
};

TEST(HttpResponseParserTest, ReadsAnAnswerWhereverItIsCutIntoPieces) {
    for (const auto& answer : answers) {
        for (const std::size_t pieceSize : {std::size_t{1}, std::size_t{2}, std::size_t{7}, std::size_t{1000}}) {
            const auto parser = parse(answer.text, true, pieceSize);
            EXPECT_EQ(parser.state(), answer.state) << answer.text << " by " << pieceSize;
            EXPECT_EQ(parser.status(), answer.status) << answer.text << " by " << pieceSize;
            EXPECT_EQ(parser.body(), answer.body) << answer.text << " by " << pieceSize;
        }
    }
}

TEST(HttpResponseParserTest, IsCompleteAsSoonAsItCanBeKnown) {
    EXPECT_EQ(parse("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello", false).state(), State::complete);
    EXPECT_EQ(parse("HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n", false).state(), State::complete);
    EXPECT_EQ(parse("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n0\r\n\r\n", false).state(), State::complete);
    EXPECT_EQ(parse("HTTP/1.1 200 OK\r\n\r\nhello", false).state(), State::incomplete);
}

TEST(HttpResponseParserTest, KnowsWhereARedirectLeadsWithItsHead) {
    const auto parser = parse("HTTP/1.1 302 Found\r\nLOCATION:  /else where \r\nContent-Length: 9999\r\n\r\n", false);
    EXPECT_TRUE(parser.hasHead());
    EXPECT_EQ(parser.location(), "/else where");
    EXPECT_FALSE(parse("HTTP/1.1 302 Found\r\nLocation: /elsewhere\r\n", false).hasHead());
    EXPECT_EQ(parse("HTTP/1.1 103 Hints\r\nLocation: /a\r\n\r\nHTTP/1.1 200 OK\r\n\r\n").location(), "");
}

TEST(HttpResponseParserTest, ABodyUntilTheEndMayBeAsLongAsAllowed) {
    const std::string head = "HTTP/1.1 200 OK\r\n\r\n";
    EXPECT_EQ(parse(head + std::string(largestBody, 'x')).state(), State::complete);
    EXPECT_EQ(parse(head + std::string(largestBody + 1, 'x')).state(), State::tooLong);
}

TEST(HttpResponseParserTest, AllThatIsNotTheBodyCountsAgainstOneBound) {
    const std::string line(1000, 'x');
    const std::string chunked = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
    for (const std::string& start : {std::string("HTTP/1.1 200 OK\r\n"), chunked + "1;", chunked + "0\r\n",
                                     std::string("HTTP/1.1 103 Hints\r\n")}) {
        HttpResponseParser parser(largestBody);
        parser.take(start);
        std::size_t taken = 0;
        while (parser.state() == State::incomplete && taken < HttpResponseParser::largestHead) {
            parser.take("X: " + line + "\r\n");
            taken += line.size();
        }
        // The second of the lines after a chunk's size stands where the chunk must be.
        EXPECT_EQ(parser.state(), start == chunked + "1;" ? State::malformed : State::tooLong) << start;
    }
    for (const std::string& start :
         {std::string("HTTP/1.1 200 OK\r\nX:"), chunked + "1;", chunked + "0\r\nX:", std::string("HTTP/1.1 200 ")}) {
        EXPECT_EQ(parse(start + std::string(HttpResponseParser::largestHead, 'x'), false).state(), State::tooLong);
    }
    EXPECT_EQ(parse(std::string(HttpResponseParser::largestHead + 1, 'x'), false).state(), State::notHttp);
}

}  // namespace
}  // namespace ferrowyn
