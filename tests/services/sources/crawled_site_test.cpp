#include <set>

#include <gtest/gtest.h>

#include "index/database.h"
#include "searches/FileService.h"
#include "sources/crawled_site.h"
#include "sources/indexing.h"
#include "tests/services/support/service_support.h"

using namespace quarrynet;
using namespace quarrynet::services;

TEST(StoreCrawl, IsFoundByTheFileSearchAndReplacesTheCrawlBefore)
{
    const TemporaryFolder data;
    const TemporaryFolder input;
    IndexSources sources;
    sources.packageFiles = {input.write("list", "Package: a\nFilename: pool/apple_1.deb\nSize: 1\n")};
    sources.mirror = "ftp://h/";
    const auto quiet = [](const std::string&) {};
    ASSERT_TRUE(buildIndex(data.path(), sources, quiet));
    IndexPool pool(data.path());
    FileService files(pool);
    const auto find = [&files](const char* typed) {
        std::set<std::string> addresses;
        const Outcome<FileAnswer> answer = files.search(typed, 0);
        EXPECT_TRUE(answer);
        for (const FileHit& hit : answer->hits)
            addresses.insert(hit.address);
        return addresses;
    };
    const auto store = [&](const char* base, const std::string& name) {
        Crawl found;
        found.folders = {"", "dir/"};
        found.files = {{0, "dir", std::nullopt, true}, {1, name, 5, false}};
        const Outcome<Done> stored = storeCrawl(data.path(), base, 1, std::move(found));
        ASSERT_TRUE(stored) << stored.error().message;
    };
    store("ftp://c/", "apple one");
    EXPECT_EQ(find("apple"), (std::set<std::string>{"ftp://c/dir/apple%20one", "ftp://h/pool/apple_1.deb"}));
    store("ftp://c/", "apple two");
    EXPECT_EQ(find("apple"), (std::set<std::string>{"ftp://c/dir/apple%20two", "ftp://h/pool/apple_1.deb"}));
    EXPECT_EQ(find("ftp://c/dir/"), (std::set<std::string>{"ftp://c/dir/apple%20two"}));
    // A crawl of a mirror replaces the files of its package lists, also in the next index.
    store("ftp://h/", "apple three");
    EXPECT_EQ(find("apple"), (std::set<std::string>{"ftp://c/dir/apple%20two", "ftp://h/dir/apple%20three"}));
    ASSERT_TRUE(buildIndex(data.path(), sources, quiet));
    EXPECT_EQ(find("apple"), (std::set<std::string>{"ftp://c/dir/apple%20two", "ftp://h/dir/apple%20three"}));
}
