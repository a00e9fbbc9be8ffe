#include <gtest/gtest.h>

#include "services/router.h"

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
    request.host = "any.name";
    EXPECT_EQ(router.answerAt(echo, request).status, 200);
    request.absoluteForm = true;
    EXPECT_EQ(router.answerAt(echo, request).status, 403);
}
