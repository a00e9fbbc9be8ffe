#include <string>

#include <gtest/gtest.h>

#include "common/response_end.h"

using namespace quarrynet;

namespace {

const std::string kOk = "HTTP/1.1 200 OK\r\n";
const std::string kChunked = kOk + "Transfer-Encoding: chunked\r\n\r\n";

// Expects that the response is complete, and that no beginning of it is.
void expectCompleteOnlyWhole(const std::string& response)
{
    EXPECT_TRUE(isCompleteResponse(response)) << response;
    for (std::size_t length = 0; length < response.size(); ++length) {
        const std::string cut(response, 0, length); // an own copy, so that the sanitizer sees reads beyond it
        EXPECT_FALSE(isCompleteResponse(cut)) << response << " cut at " << length;
    }
}

} // namespace

TEST(IsCompleteResponse, ContentLengthCountsTheBody)
{
    expectCompleteOnlyWhole(kOk + "Content-Length: 5\r\n\r\nhello");
    expectCompleteOnlyWhole(kOk + "Server: x\r\ncontent-LENGTH:5 \t\r\nX: y\r\n\r\nhe\r\n\r");
    expectCompleteOnlyWhole(kOk + "Content-Length: 0\r\n\r\n");
    expectCompleteOnlyWhole(kOk + "Content-Length: 3\r\nContent-Length: 3\r\n\r\na" + std::string(2, '\0'));
    EXPECT_TRUE(isCompleteResponse(kOk + "Content-Length: 5\r\n\r\nhello, more"));
}

TEST(IsCompleteResponse, ChunksEndWithTheLastOne)
{
    expectCompleteOnlyWhole(kChunked + "5\r\nhello\r\n0\r\n\r\n");
    expectCompleteOnlyWhole(kChunked + "00a;name=\"0\"\r\n0\r\n\r\n0\r\n\r\n\r\n1 \r\nx\r\n000\r\nTrailer: 1\r\n\r\n");
    expectCompleteOnlyWhole(kOk + "Transfer-Encoding: gzip, Chunked\r\nContent-Length: 1\r\n\r\n0\r\n\r\n");
}

TEST(IsCompleteResponse, SomeStatusesHaveNoContent)
{
    expectCompleteOnlyWhole("HTTP/1.1 204 No Content\r\n\r\n");
    expectCompleteOnlyWhole("HTTP/1.0 304 Not Modified\r\nContent-Length: 7\r\n\r\n");
    expectCompleteOnlyWhole("HTTP/1.1 103 Early Hints\r\nLink: x\r\n\r\n" + kOk + "Content-Length: 1\r\n\r\n.");
}

TEST(IsCompleteResponse, HeadersThatLeaveTheEndToTheConnectionAreNever)
{
    for (const std::string& header :
         {std::string("Content-Type: text/html"), std::string("Content-Length: "), std::string("Content-Length: -1"),
          std::string("Content-Length: 1x"), std::string("Content-Length: 99999999999999999999"),
          std::string("Content-Length: 1\r\nContent-Length: 2"), std::string("Content-Length : 1"),
          std::string("Transfer-Encoding: gzip\r\nContent-Length: 1"), std::string("Transfer-Encoding: identity")})
        EXPECT_FALSE(isCompleteResponse(kOk + header + "\r\n\r\nbody")) << header;
    EXPECT_FALSE(isCompleteResponse("Content-Length: 1\r\n\r\nbody"));
    EXPECT_FALSE(isCompleteResponse("HTTP/1.1 2x0\r\nContent-Length: 1\r\n\r\nbody"));
    EXPECT_FALSE(isCompleteResponse("\r\n\r\nContent-Length: 1\r\n\r\nbody"));
}

TEST(IsCompleteResponse, BrokenChunksAreNever)
{
    for (const std::string body : {"x\r\n0\r\n\r\n", "\r\n\r\n", "-1\r\n\r\n0\r\n\r\n", "2\r\nabc\r\n0\r\n\r\n",
                                   "ffffffffffffffff\r\n0\r\n\r\n", "fffffffffffffff\r\n0\r\n\r\n", "1 x\r\n0\r\n\r\n"})
        EXPECT_FALSE(isCompleteResponse(kChunked + body)) << body;
}
