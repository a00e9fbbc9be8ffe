#include <gtest/gtest.h>

#include "http/Router.h"

using namespace quarrynet::services;

namespace {

HttpResponse echo(const HttpRequest& request)
{
    HttpResponse response;
    response.body = request.path + "?" + request.query;
    return response;
}

} // namespace

TEST(Router, ProxyLeadsToTheLocalServicesOnly)
{
    Router router;
    router.add("127.80.0.1", echo);
    router.add("127.80.0.3", [](const HttpRequest&) { return errorResponse(404, "here"); });
    HttpRequest request{"GET", "127.80.0.1", "/x", "y", true};
    EXPECT_EQ(router.answerAsProxy(request).body, "/x?y");
    request.host = "127.80.0.3";
    EXPECT_EQ(router.answerAsProxy(request).status, 404);
    request.host = "example.org";
    EXPECT_EQ(router.answerAsProxy(request).status, 403);
    request.host = "127.80.0.1";
    request.absoluteForm = false;
    EXPECT_EQ(router.answerAsProxy(request).status, 400);
}

TEST(Router, PortOfAServiceAnswersForItsOwnNamesOnly)
{
    Router router;
    router.add("Web.Search", echo);
    for (const char* host : {"127.80.0.1", "10.0.0.1", "localhost", "web.search", "[::1]", ""})
        EXPECT_EQ(router.answerAt(echo, {"GET", host, "/x", "", false}).status, 200) << host;
    for (const char* host : {"rebound.example", "1.2.3.4.example", "x"})
        EXPECT_EQ(router.answerAt(echo, {"GET", host, "/x", "", false}).status, 421) << host;
    EXPECT_EQ(router.answerAt(echo, {"GET", "other.example", "/x", "", true}).status, 403);
    EXPECT_EQ(router.answerAt(echo, {"GET", "web.search", "/x", "", true}).status, 200);
}
