#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "searches/DownloadService.h"
#include "searches/FileService.h"
#include "searches/ImageService.h"
#include "searches/WebService.h"
#include "searches/missing_content.h"
#include "sources/indexing.h"
#include "tests/services/support/service_support.h"

using namespace quarrynet::services;
using ::testing::HasSubstr;
using ::testing::Not;

namespace {

HttpRequest requestFor(const std::string& path, const std::string& query)
{
    return {"GET", "127.80.0.1", path, query, false};
}

} // namespace

// Once a machine without package lists got pages without results, and no reason.
TEST(MissingContent, PagesWithoutResultsSayWhatTheIndexLacks)
{
    const TemporaryFolder folder;
    IndexSources sources{{folder.write("list", "Package: bare\nDescription: without a file\n")}};
    ASSERT_TRUE(buildIndex(folder.path(), sources, [](const std::string&) {}));
    IndexPool index(folder.path());
    const auto pages = [&index] {
        return std::vector<std::string>{
            WebService(index, "http://127.80.0.1").answer(requestFor("/search", "q=pear")).body,
            DownloadService(index).answer(requestFor("/3120-20-0-1-5.html", "qt=pear&ca=20")).body,
            FileService(index).answer(requestFor("/cgi-bin/s", "t=f&q=pear")).body,
        };
    };
    for (const std::string& page : pages()) {
        EXPECT_THAT(page, HasSubstr("sudo apt update"));
        EXPECT_TRUE(page.ends_with("</body></html>\n")) << page;
    }
    EXPECT_THAT(ImageService(index, "127.80.0.2", nullptr).answer(requestFor("/images", "q=pear")).body,
                HasSubstr("index --data DATA-FOLDER --pictures FOLDER"));

    sources.packageFiles = {folder.write("list", "Package: apple\nFilename: apple.deb\n")};
    sources.mirror = "http://mirror.example/";
    ASSERT_TRUE(buildIndex(folder.path(), sources, [](const std::string&) {}));
    for (const std::string& page : pages())
        EXPECT_THAT(page, Not(HasSubstr("apt update"))) << "this index only lacks the word";
}

TEST(MissingContent, NothingIsAddedWithoutAnIndexOrToOtherPages)
{
    const TemporaryFolder folder;
    IndexPool index(folder.path());
    std::string page = "<html><body></body></html>\n";
    noteMissing(page, index, Missing::Programs, Language::English);
    EXPECT_EQ(page, "<html><body></body></html>\n");
    IndexSources sources{{folder.write("list", "Package: bare\n")}};
    ASSERT_TRUE(buildIndex(folder.path(), sources, [](const std::string&) {}));
    std::string other = "not a page";
    noteMissing(other, index, Missing::Programs, Language::English);
    EXPECT_EQ(other, "not a page");
    std::string empty;
    noteMissing(empty, index, Missing::Pictures, Language::English);
    EXPECT_EQ(empty, "");
}
