#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "common/ServiceHosts.h"

using namespace quarrynet;
namespace fs = std::filesystem;

namespace {

class ReadServiceHosts : public testing::Test
{
protected:
    ReadServiceHosts()
        : folder_(fs::temp_directory_path() / ("quarrynet-hosts-" + std::to_string(std::random_device()())))
    {
        fs::create_directories(folder_);
    }
    ~ReadServiceHosts() override
    {
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
    }

    /// Returns the hosts, separated by blanks, that are read from a file with this content.
    std::string read(const std::string& content) const
    {
        std::ofstream(folder_ / "Quarrynet.ini", std::ios::binary) << content;
        return texts(readServiceHosts((folder_ / "Quarrynet.ini").string(), {"w", "i", "d", "f", 8080}));
    }

    static std::string texts(const ServiceHosts& hosts)
    {
        return hosts.webSearch + " " + hosts.imageSearch + " " + hosts.downloadSite + " " + hosts.fileSearch + " " +
               std::to_string(hosts.port);
    }

    fs::path folder_;
};

} // namespace

TEST_F(ReadServiceHosts, EachKeyOverridesItsHost)
{
    EXPECT_EQ(read("[Services]\nWebSearchHost=a.example\nImageSearchHost=10.0.0.2\n"
                   "DownloadSiteHost = \"c.example\" \nFILESEARCHHOST=d.example\n"),
              "a.example 10.0.0.2 c.example d.example 8080");
    EXPECT_EQ(read("[ProxyHost]\nValue=p\n[services]\r\nDownloadSiteHost=c.example\r\n"), "w i c.example f 8080");
}

TEST_F(ReadServiceHosts, MissingAndEmptyKeysKeepTheDefault)
{
    for (const char* content : {"", "[Services]", "[Services]\nWebSearchHost=\nImageSearchHost=  \nFileSearchHost",
                                "WebSearchHost=a", "[Service]\nWebSearchHost=a", "[Services]\nWebSearchHosts=a"})
        EXPECT_EQ(read(content), "w i d f 8080") << content;
    EXPECT_EQ(texts(readServiceHosts((folder_ / "none.ini").string(), {"w", "i", "d", "f", 80})), "w i d f 80");
    EXPECT_EQ(texts(readServiceHosts("", {"w", "i", "d", "f", 80})), "w i d f 80");
}

TEST_F(ReadServiceHosts, ValuesEndAtALineEndOrNul)
{
    EXPECT_EQ(read("[Services]\nWebSearchHost=a\r\nX: y\n"), "a i d f 8080");
    EXPECT_EQ(read(std::string("[Services]\nWebSearchHost=a\0b\n", 29)), "a i d f 8080");
}
