#include <arpa/inet.h>
#include <cstring>
#include <netinet/in.h>
#include <string>
#include <sys/un.h>

#include <gtest/gtest.h>

#include "live/public_address.h"

using namespace quarrynet::services;

namespace {

bool isPublic(const std::string& text)
{
    sockaddr_in6 six{};
    if (::inet_pton(AF_INET6, text.c_str(), &six.sin6_addr) == 1) {
        six.sin6_family = AF_INET6;
        return isPublicAddress(reinterpret_cast<const sockaddr&>(six));
    }
    sockaddr_in four{};
    four.sin_family = AF_INET;
    EXPECT_EQ(::inet_pton(AF_INET, text.c_str(), &four.sin_addr), 1) << text;
    return isPublicAddress(reinterpret_cast<const sockaddr&>(four));
}

} // namespace

TEST(IsPublicAddress, HostsOfTheInternet)
{
    for (const char* address :
         {"1.1.1.1",          "9.255.255.255",   "11.0.0.0",      "100.63.255.255",  "100.128.0.0",  "126.255.255.255",
          "128.0.0.0",        "169.253.255.255", "169.255.0.0",   "172.15.255.255",  "172.32.0.0",   "191.255.255.255",
          "192.0.1.0",        "192.0.3.0",       "192.88.98.255", "192.167.255.255", "192.169.0.0",  "198.17.255.255",
          "198.20.0.0",       "198.51.99.0",     "203.0.114.0",   "223.255.255.255", "2000::",       "2001:200::",
          "2001:db7:ffff::1", "2001:db9::",      "2003::1",       "2606:4700::1",    "3ffe:ffff::1", "3fff:1000::",
          "::ffff:1.1.1.1",   "64:ff9b::1.1.1.1"})
        EXPECT_TRUE(isPublic(address)) << address;
}

TEST(IsPublicAddress, SpecialRangesAtBothEnds)
{
    for (const char* address :
         {"0.0.0.0",     "0.255.255.255",  "10.0.0.0",        "10.255.255.255", "100.64.0.0",      "100.127.255.255",
          "127.0.0.0",   "127.0.0.1",      "127.255.255.255", "169.254.0.0",    "169.254.169.254", "169.254.255.255",
          "172.16.0.0",  "172.31.255.255", "192.0.0.0",       "192.0.0.255",    "192.0.2.0",       "192.0.2.255",
          "192.88.99.1", "192.168.0.0",    "192.168.255.255", "198.18.0.0",     "198.19.255.255",  "198.51.100.7",
          "203.0.113.7", "224.0.0.0",      "239.255.255.255", "240.0.0.0",      "255.255.255.255"}) {
        EXPECT_FALSE(isPublic(address)) << address;
        EXPECT_FALSE(isPublic(std::string("::ffff:") + address)) << address;
        EXPECT_FALSE(isPublic(std::string("64:ff9b::") + address)) << address;
        EXPECT_FALSE(isPublic(std::string("::") + address)) << address;
    }
    for (const char* address : {"::",
                                "::1",
                                "::1.1.1.1",
                                "1fff:ffff::1",
                                "64:ff9b:1::1.1.1.1",
                                "64:ff9a::1.1.1.1",
                                "100::1",
                                "2001::1",
                                "2001:1ff:ffff::1",
                                "2001:db8::",
                                "2001:db8:ffff::1",
                                "2002::",
                                "2002:101:101::1",
                                "2002:ffff::1",
                                "3fff::",
                                "3fff:fff::1",
                                "4000::1",
                                "5f00::1",
                                "fc00::1",
                                "fdff::1",
                                "fe80::1",
                                "febf::1",
                                "fec0::1",
                                "ff02::1",
                                "::fffe:1.1.1.1",
                                "::1:ffff:1.1.1.1"})
        EXPECT_FALSE(isPublic(address)) << address;
}

TEST(IsPublicAddress, OtherFamiliesAreNot)
{
    sockaddr_un local{};
    local.sun_family = AF_UNIX;
    EXPECT_FALSE(isPublicAddress(reinterpret_cast<const sockaddr&>(local)));
    EXPECT_FALSE(isPublicAddress(sockaddr{}));
}
