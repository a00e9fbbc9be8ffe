#include <fstream>
#include <iterator>
#include <set>

#include <gtest/gtest.h>

#include "crawl/http_listing.h"
#include "tests/services/support/service_support.h"

using namespace quarrynet;
using namespace quarrynet::services;

namespace {

constexpr std::string_view kAddress = "http://files.example/pub/";

std::string page(const std::string& name)
{
    std::ifstream file(std::string(QUARRYNET_TEST_DATA) + "/listings/" + name, std::ios::binary);
    EXPECT_TRUE(file) << name;
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string withLinks(const std::string& links, const std::string& title = "Index of /pub/")
{
    return "<html><head><title>" + title + "</title></head><body><pre>" + links + "</pre></body></html>";
}

std::set<std::string> namesOf(const std::string& page)
{
    std::set<std::string> names;
    const std::optional<HttpListing> listing = readHttpListing(ExactCopy(page).view(), kAddress);
    EXPECT_TRUE(listing);
    for (const ListedEntry& entry : listing ? listing->entries : std::vector<ListedEntry>())
        names.insert(entry.name + (entry.kind == ListedEntry::Kind::Directory ? "/" : ""));
    return names;
}

} // namespace

class ListingShapes : public ::testing::TestWithParam<const char*>
{};

TEST_P(ListingShapes, EntriesHaveWholeNamesAndSizes)
{
    const std::optional<HttpListing> listing = readHttpListing(ExactCopy(page(GetParam())).view(), kAddress);
    ASSERT_TRUE(listing);
    ASSERT_EQ(listing->entries.size(), 4U);
    const bool isExact = std::string(GetParam()) == "nginx.html";
    EXPECT_EQ(listing->entries[0].name, "music & more");
    EXPECT_EQ(listing->entries[0].kind, ListedEntry::Kind::Directory);
    EXPECT_FALSE(listing->entries[0].size);
    EXPECT_EQ(listing->entries[1].name, "a-very-long-name-of-an-archive-that-the-page-shortens-1.0.tar.gz");
    EXPECT_EQ(listing->entries[1].kind, ListedEntry::Kind::File);
    EXPECT_EQ(listing->entries[1].size, isExact ? 1234567 : 1258291);
    EXPECT_EQ(listing->entries[2].name, "class.txt");
    EXPECT_EQ(listing->entries[2].size, 0);
    EXPECT_EQ(listing->entries[3].name, "caf\xC3\xA9.txt");
    EXPECT_TRUE(listing->entries[3].size);
}

TEST_P(ListingShapes, CutPageGivesTheEntriesBeforeTheCut)
{
    const std::string whole = page(GetParam());
    const std::set<std::string> names = namesOf(whole);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const std::optional<HttpListing> listing =
            readHttpListing(ExactCopy(std::string_view(whole).substr(0, length)).view(), kAddress);
        for (const ListedEntry& entry : listing ? listing->entries : std::vector<ListedEntry>()) {
            const bool isDirectory = entry.kind == ListedEntry::Kind::Directory;
            EXPECT_TRUE(names.contains(entry.name + (isDirectory ? "/" : ""))) << length << entry.name;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Servers, ListingShapes,
                         ::testing::Values("nginx.html", "apache_lines.html", "apache_table.html", "lighttpd.html"));

TEST(HttpListing, OtherPagesAreNone)
{
    for (const std::string& text :
         {std::string(), std::string("<a href=x>x</a>"), withLinks("<a href=x>x</a>", "Welcome"),
          std::string(100, '\0'), withLinks("<a href=x>x</a>", "My index of things"), std::string("\xff\xfe\x00<", 4)})
        EXPECT_FALSE(readHttpListing(ExactCopy(text).view(), kAddress)) << text;
    EXPECT_EQ(namesOf(withLinks("")), std::set<std::string>());
    EXPECT_EQ(namesOf(withLinks("<a href=x>x</a>", "Directory listing for /pub/")), std::set<std::string>{"x"});
    EXPECT_EQ(namesOf("<h1>Index of /pub/</h1><a href=x>x</a>"), std::set<std::string>{"x"});
}

TEST(HttpListing, OnlyLinksDirectlyBelowAreEntries)
{
    EXPECT_EQ(nameOfLink("a.txt", kAddress), "a.txt");
    EXPECT_EQ(nameOfLink(" ./a/ ", kAddress), "a/");
    EXPECT_EQ(nameOfLink("/pub/a", kAddress), "a");
    EXPECT_EQ(nameOfLink("//files.example/pub/a/", kAddress), "a/");
    EXPECT_EQ(nameOfLink("http://files.example/pub/a", kAddress), "a");
    EXPECT_EQ(nameOfLink("HTTP://FILES.example/pub/a", kAddress), "a");
    EXPECT_EQ(nameOfLink("%61%3Ab", kAddress), "a:b");
    EXPECT_EQ(nameOfLink("./a:b", kAddress), "a:b");
    EXPECT_EQ(nameOfLink("a%3FC=N", kAddress), "a?C=N");
    EXPECT_EQ(nameOfLink("a#part", kAddress), "a");
    EXPECT_EQ(nameOfLink("/p%75b/a", kAddress), "a");
    for (const char* link : {"",
                             "/",
                             "../",
                             "..",
                             ".",
                             "./",
                             "?C=N;O=D",
                             "a?b",
                             "/pub/",
                             "/pub/?C=M",
                             "#top",
                             "a/b",
                             "a//",
                             "/other/a",
                             "/pubs/a",
                             "//other.example/pub/a",
                             "http://other.example/pub/a",
                             "https://files.example/pub/a",
                             "http://files.example.evil/pub/a",
                             "http://files.example:81/pub/a",
                             "javascript:alert(1)",
                             "mailto:a@b",
                             "data:text/html,x",
                             "ftp://files.example/pub/a",
                             "a%2Fb",
                             "a%2F",
                             "/pub/a%2Fb",
                             "/pub/a%2F",
                             "%2e%2e/",
                             "%2e",
                             "a%00b",
                             "a%0Ab",
                             "a\\b",
                             "%2F",
                             "/pub/../etc/passwd",
                             "/pub/%2e%2e/x"})
        EXPECT_EQ(nameOfLink(link, kAddress), std::nullopt) << link;
    EXPECT_EQ(nameOfLink(std::string(kMaxListedName, 'a'), kAddress), std::string(kMaxListedName, 'a'));
    EXPECT_EQ(nameOfLink(std::string(kMaxListedName + 1, 'a'), kAddress), std::nullopt);
    EXPECT_EQ(nameOfLink(std::string(1024 * 1024, 'a'), kAddress), std::nullopt);
}

TEST(HttpListing, SizeFollowsTheTimeOfDay)
{
    EXPECT_EQ(sizeInText("02-Jan-2026 03:04   1234"), 1234);
    EXPECT_EQ(sizeInText("2026-01-02 03:04  1.5K  text"), 1536);
    EXPECT_EQ(sizeInText("2026-Jan-02 03:04:05 2.0G application/zip"), std::int64_t{2} << 30U);
    EXPECT_EQ(sizeInText("2026-01-02 03:04 1 KiB"), 1024);
    EXPECT_EQ(sizeInText("2026-01-02 03:04 12 text"), 12);
    for (const char* text : {"", "2026-01-02 03:04", "2026-01-02 03:04 -", "2026-01-02 03:04  -  ", "1234", "03:0x 5",
                             "03:04 99999999999999999999T", "03:04 -5", "03:04 1e9x", "03:04 x"})
        EXPECT_EQ(sizeInText(text), std::nullopt) << text;
}

TEST(HttpListing, NameIsListedOnce)
{
    EXPECT_EQ(namesOf(withLinks("<a href=a><img></a> <a href=a>a</a> 03:04 5\n<a href=b>b</a>\n<a href=a>a</a>")),
              (std::set<std::string>{"a", "b"}));
}

// The title has the address, so pages of one directory under two addresses differ.
TEST(HttpListing, IdentityIsTheSameUnderAnyAddress)
{
    const std::string links = "<a href=\"../\">../</a>\n<a href=\"a/\">a/</a> 02-Jan-2026 03:04 -\n";
    const std::optional<HttpListing> outer = readHttpListing(withLinks(links, "Index of /a/"), "http://h/a/");
    const std::optional<HttpListing> inner = readHttpListing(withLinks(links, "Index of /a/a/"), "http://h/a/a/");
    const std::optional<HttpListing> other =
        readHttpListing(withLinks("<a href=\"a/\">a/</a> 03-Jan-2026 03:04 -\n"), "http://h/a/");
    ASSERT_TRUE(outer && inner && other);
    EXPECT_EQ(outer->identity, inner->identity);
    EXPECT_NE(outer->identity, other->identity);
    EXPECT_FALSE(outer->identity.empty());
}

TEST(HttpListing, HostilePagesEnd)
{
    std::string deep = "<title>Index of /</title>";
    for (int i = 0; i < 100'000; ++i)
        deep += "<div><a href=x>";
    (void)readHttpListing(deep, kAddress);
    std::string many = "<title>Index of /</title>";
    for (int i = 0; i < 20'000; ++i)
        many += "<a href=\"f" + std::to_string(i) + "\">f</a> 01-Jan-2026 00:00 1\n";
    const std::optional<HttpListing> listing = readHttpListing(many, kAddress);
    ASSERT_TRUE(listing);
    EXPECT_EQ(listing->entries.size(), 20'000U);
    EXPECT_FALSE(readHttpListing(std::string(kMaxListing + 1, ' '), kAddress));
}
