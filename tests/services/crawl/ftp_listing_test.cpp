#include <random>

#include <gtest/gtest.h>

#include "crawl/ftp_listing.h"
#include "tests/services/support/service_support.h"

using namespace quarrynet::services;

namespace {

using Kind = ListedEntry::Kind;

std::vector<std::string> namesOf(const std::vector<ListedEntry>& entries)
{
    std::vector<std::string> names;
    for (const ListedEntry& entry : entries)
        names.push_back(entry.name);
    return names;
}

} // namespace

TEST(ReadMlsd, TakesNamesKindsSizesAndUniqueFacts)
{
    const auto entries = readMlsd("type=cdir;perm=el; .\r\ntype=pdir; ..\r\n"
                                  "type=file;size=1024990;modify=20000101;unique=801g2; a b;c.zip\r\n"
                                  "Type=DIR;Unique=801g3; sub\r\n"
                                  "type=OS.unix=slink:/there/x;size=3; link\r\n");
    ASSERT_EQ(namesOf(entries), (std::vector<std::string>{"a b;c.zip", "sub", "link"}));
    EXPECT_EQ(entries[0].kind, Kind::File);
    EXPECT_EQ(entries[0].size, 1024990);
    EXPECT_EQ(entries[0].unique, "801g2");
    EXPECT_EQ(entries[1].kind, Kind::Directory);
    EXPECT_EQ(entries[1].unique, "801g3");
    EXPECT_EQ(entries[2].kind, Kind::Link);
    EXPECT_EQ(entries[2].target, "/there/x");
    EXPECT_FALSE(entries[2].size);
}

TEST(ReadMlsd, NamesWithoutFactsAndSizesOutOfRangeStayReadable)
{
    const auto entries = readMlsd(" bare\ntype=file;size=99999999999999999999; huge\nsize=-1; minus\nsize=; none\n");
    ASSERT_EQ(namesOf(entries), (std::vector<std::string>{"bare", "huge", "minus", "none"}));
    for (const ListedEntry& entry : entries)
        EXPECT_FALSE(entry.size) << entry.name;
}

TEST(ReadList, UnderstandsUnixServers)
{
    const auto entries = readList("total 12\r\n"
                                  "drwxr-xr-x    3 0        0            4096 Nov 21 02:13 sub\r\n"
                                  "-rw-r--r--    1 1000     users           2 Jan  1  2020  two blanks\r\n"
                                  "-rw-r--r-- 1 owner 77 Feb 29 23:59 no group\r\n"
                                  "lrwxrwxrwx    1 0        0               8 Nov 21 02:13 a.txt -> ../file -> x\r\n"
                                  "-rw-r--r-- 1 Jan May 5 Dec 31 1999 months as owners\r\n"
                                  "crw-r--r-- 1 0 0 1, 3 Nov 21 02:13 null\r\n");
    ASSERT_EQ(namesOf(entries),
              (std::vector<std::string>{"sub", " two blanks", "no group", "a.txt", "months as owners"}));
    EXPECT_EQ(entries[0].kind, Kind::Directory);
    EXPECT_FALSE(entries[0].size);
    EXPECT_EQ(entries[1].size, 2);
    EXPECT_EQ(entries[2].size, 77);
    EXPECT_EQ(entries[3].kind, Kind::Link);
    EXPECT_EQ(entries[3].target, "../file -> x");
    EXPECT_EQ(entries[4].size, 5);
}

TEST(ReadList, UnderstandsWindowsServers)
{
    const auto entries = readList("01-31-20  12:00PM       <DIR>          Program Files\r\n"
                                  "2020-01-31  12:00                12345 a b.zip\r\n");
    ASSERT_EQ(namesOf(entries), (std::vector<std::string>{"Program Files", "a b.zip"}));
    EXPECT_EQ(entries[0].kind, Kind::Directory);
    EXPECT_EQ(entries[1].size, 12345);
}

TEST(FtpListing, NamesThatLeadElsewhereArePassedOver)
{
    for (const std::string name : {"..", ".", "", "a/b", "/etc", "../x", "a\rb", "a\x01", "a\x7F", "a\tb"}) {
        EXPECT_TRUE(readMlsd("type=dir; " + name + "\r\n").empty()) << name;
        EXPECT_TRUE(readList("drwxr-xr-x 3 0 0 4096 Nov 21 02:13 " + name + "\r\n").empty()) << name;
    }
    EXPECT_TRUE(readMlsd(std::string("type=dir; a\0b\n", 14)).empty());
    EXPECT_TRUE(readMlsd("type=file; " + std::string(kMaxListedName + 1, 'x') + "\n").empty());
    EXPECT_EQ(readMlsd(std::string(100'000, 'x') + " a\ntype=file; b\n").size(), 1U);
    EXPECT_EQ(readMlsd("type=file; \xFF\xC3\xA4\n").size(), 1U);
}

TEST(FtpListing, AnythingIsReadToItsEnd)
{
    std::mt19937 random(7); // NOLINT(bugprone-random-generator-seed): the same run every time
    const std::vector<std::string> parts{
        "type=", "dir", "OS.unix=s", ":",    ";",  "=",  " ",     "-rw",  "d",     "l",
        "Jan",   "1",   "12:00",     " -> ", "\r", "\n", "<DIR>", "\xFF", "size=", std::string(1, '\0')};
    for (int i = 0; i < 3000; ++i) {
        std::string text;
        for (std::size_t length = random() % 24; length > 0; --length)
            text += parts[random() % parts.size()];
        for (const auto& entries : {readMlsd(ExactCopy(text).view()), readList(ExactCopy(text).view())}) {
            for (const ListedEntry& entry : entries)
                EXPECT_EQ(entry.name.find_first_of("/\r\n"), std::string::npos);
        }
    }
}
