#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "live/source_fault.h"

using namespace quarrynet::services;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

namespace {

using Kind = SourceFault::Kind;

HttpResponse pageAt(const std::string& place)
{
    HttpRequest request;
    request.method = "GET";
    request.path = place.substr(0, place.find('?'));
    request.query = place.find('?') == std::string::npos ? "" : place.substr(place.find('?') + 1);
    return helpPage(request);
}

} // namespace

TEST(SourceFaultTest, EachFaultHasATitleAdviceAndAHelpPage)
{
    for (int kind = 0; kind <= static_cast<int>(Kind::Index); ++kind) {
        const SourceFault fault{static_cast<Kind>(kind), "https://s.example", "the detail"};
        EXPECT_THAT(faultTitle(fault), HasSubstr(": the detail"));
        const HttpResponse page = pageAt(faultPath(fault));
        EXPECT_EQ(page.status, 200);
        EXPECT_THAT(page.body, HasSubstr("https://s.example"));
        EXPECT_THAT(page.body, HasSubstr("the detail"));
        EXPECT_THAT(page.body, HasSubstr(faultAdvice(fault)));
    }
}

TEST(SourceFaultTest, RateLimitSaysWhenTheSourceIsAskedAgain)
{
    const auto title = [](int seconds) {
        return faultTitle({Kind::RateLimit, "https://s.example", "", std::chrono::seconds(seconds)});
    };
    EXPECT_EQ(title(1), "s.example: too many searches; asked again in 1 second");
    EXPECT_THAT(title(119), HasSubstr("in 119 seconds"));
    EXPECT_THAT(title(121), HasSubstr("in 3 minutes"));
}

TEST(SourceFaultTest, HelpPagesShowHostileTextsAsText)
{
    const HttpResponse page =
        pageAt("/help/source-nonsense?source=%3Cscript%3Ealert(1)%3C/script%3E&detail=%00%FF%0A%3Cb");
    EXPECT_THAT(page.body, HasSubstr("&lt;script>"));
    EXPECT_THAT(page.body, Not(HasSubstr("<script")));
    EXPECT_LT(pageAt("/help/source-nonsense?source=" + std::string(15'000, 'x')).body.size(), 3'000U);
    EXPECT_EQ(pageAt("/help/source-timeout").status, 200);
    for (const char* place : {"/help/", "/help/other", "/help/source-timeout/", "/help", "/"})
        EXPECT_EQ(pageAt(place).status, 404) << place;
}

TEST(SourceFaultTest, AddressOfAHelpPageHasOneLineWithoutBlanks)
{
    const std::string path = faultPath({Kind::Tls, "https://s.example", "a b\r\n<>:\"" + std::string(10'000, 'x')});
    EXPECT_THAT(path, StartsWith("/help/source-tls?source=https%3A%2F%2Fs.example&detail=a%20b%0D%0A"));
    EXPECT_EQ(path.find_first_of(" \r\n<>:\""), std::string::npos);
    EXPECT_LT(path.size(), 2'000U);
}
