#include <algorithm>
#include <map>

#include <gtest/gtest.h>

#include "app/service_table.h"
#include "tests/services/support/service_support.h"

using namespace quarrynet::services;

namespace {

Service named(const std::string& name, const std::string& host, std::map<std::string, std::string>& bases)
{
    return {name, host, "",
            [name](const HttpRequest&) {
                HttpResponse response;
                response.body = name;
                return response;
            },
            [name, &bases](const std::string& base) { bases[name] = base; }};
}

} // namespace

// Once the web and the image search used the addresses of the first and the last entry of the table as their own.
TEST(StartServices, EachGetsItsOwnAddressInWhateverOrder)
{
    std::vector<std::string> order{"a", "b", "c"};
    do {
        HttpServer server;
        Router router;
        std::map<std::string, std::string> bases;
        std::vector<Service> services;
        std::vector<HandedSocket> none;
        for (const std::string& name : order)
            services.push_back(named(name, "127.80.1." + std::to_string(name[0] - 'a' + 1), bases));
        startServices(server, router, 0, services, none,
                      [](const Service& service, const HttpServer::Refusal&) { FAIL() << service.name; });
        ASSERT_EQ(bases.size(), 3U);
        for (const Service& service : services) {
            EXPECT_EQ(service.host, service.usualHost);
            EXPECT_EQ(service.address.rfind("http://" + service.host + ":", 0), 0U) << service.address;
            EXPECT_EQ(bases[service.name] + "/", service.address);
            EXPECT_EQ(router.answerAsProxy({"GET", service.host, "/", "", true}).body, service.name);
        }
    } while (std::next_permutation(order.begin(), order.end()));
}

TEST(StartServices, OneThatCannotListenBeginsAllTheSame)
{
    HttpServer server;
    Router router;
    std::map<std::string, std::string> bases;
    // This machine never has an address of the documentation range.
    std::vector<Service> services{named("far", "192.0.2.1", bases), named("near", "127.80.1.2", bases)};
    services[1].host = "127.80.1.3";
    services.push_back(named("plain", "127.80.1.4", bases));
    services[2].begin = nullptr;
    std::vector<std::string> refused;
    std::vector<HandedSocket> none;
    startServices(server, router, 0, services, none,
                  [&refused](const Service& service, const HttpServer::Refusal&) { refused.push_back(service.name); });
    EXPECT_EQ(refused, (std::vector<std::string>{"far"}));
    EXPECT_EQ(services[0].address, "");
    EXPECT_EQ(bases["far"], "http://192.0.2.1");
    EXPECT_EQ(bases["near"] + "/", services[1].address);
    for (const char* host : {"127.80.1.2", "127.80.1.3"})
        EXPECT_EQ(router.answerAsProxy({"GET", host, "/", "", true}).body, "near") << host;
    EXPECT_NE(services[2].address, "");
}
