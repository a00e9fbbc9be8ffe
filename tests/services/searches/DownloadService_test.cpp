#include <gtest/gtest.h>

#include "searches/DownloadService.h"
#include "sources/indexing.h"
#include "tests/services/support/service_support.h"

using namespace quarrynet;
using namespace quarrynet::services;

namespace {

class Download : public ::testing::Test
{
protected:
    void build(const std::string& stanzas, const std::string& mirror = "http://mirror.example/d/")
    {
        const Outcome<IndexCounts> counts =
            buildIndex(data_.path(), {{input_.write("list", stanzas)}, mirror, {}}, [](const std::string&) {});
        ASSERT_TRUE(counts) << counts.error().message;
    }

    HttpResponse get(const std::string& path, const std::string& query = "")
    {
        return service_.answer({"GET", "127.80.0.3", path, query, false});
    }

    TemporaryFolder data_;
    TemporaryFolder input_;
    IndexPool pool_{data_.path()};
    DownloadService service_{pool_};
};

constexpr const char* kHello = "Package: hello\nDescription: greets\nArchitecture: all\nSize: 2048\n"
                               "Filename: pool/h/hello_1.deb\n\n";

bool hasRows(const HttpResponse& response)
{
    return response.body.find("main loop") != std::string::npos;
}

} // namespace

TEST_F(Download, FindsProgramsAtBothForms)
{
    build(kHello);
    EXPECT_TRUE(hasRows(get("/3120-20-0-1-5.html", "qt=hello&ca=20")));
    EXPECT_TRUE(hasRows(get("//3120-20-0-1-5.html", "qt=hello&ca=20")));
    EXPECT_TRUE(hasRows(get("/3120-20-0-1-5.html", "qt=greets")));
    EXPECT_FALSE(hasRows(get("/3120-20-0-2-5.html", "qt=hello&ca=20")));
    EXPECT_FALSE(hasRows(get("/3120-20-0-1-5.html", "qt=main+loop&ca=20")));
    EXPECT_FALSE(hasRows(get("/3120-20-0-1-5.html", "")));
}

TEST_F(Download, NameGoesBeforeDescription)
{
    build("Package: other\nDescription: says hello\nFilename: pool/o.deb\n\n" + std::string(kHello));
    const Outcome<ProgramAnswer> answer = service_.search("hello", 0);
    ASSERT_TRUE(answer);
    ASSERT_EQ(answer->hits.size(), 2U);
    EXPECT_EQ(answer->hits[0].name, "hello");
    EXPECT_EQ(answer->hits[0].address, "http://mirror.example/d/pool/h/hello_1.deb");
    EXPECT_EQ(answer->hits[0].system, "Any system");
}

TEST_F(Download, OtherPathsAreNotFound)
{
    build(kHello);
    for (const char* path : {"/3120-20-0-0-5.html", "/3120-20-0--1-5.html", "/3120-20-0-x-5.html", "/3120-20-0-1-5.htm",
                             "/3120-20-0-5.html", "/3120-20-0-99999999999-5.html", "/redir", "/none"})
        EXPECT_EQ(get(path, "qt=hello&ca=20").status, 404) << path;
    EXPECT_EQ(get("/").status, 200);
}

TEST_F(Download, RedirectLeadsToProgramsOfTheIndexOnly)
{
    build(kHello);
    const HttpResponse page = get("/redir", "destUrl=http%3A%2F%2Fmirror.example%2Fd%2Fpool%2Fh%2Fhello_1.deb");
    EXPECT_NE(page.body.find("newlocation = \"http%3A%2F%2Fmirror.example%2Fd%2Fpool%2Fh%2Fhello_1.deb#\";"),
              std::string::npos);
    EXPECT_EQ(get("/%2Fmirror.example%2Fd%2Fpool%2Fh%2Fhello_1.deb", "destUrl=x").body, page.body);
    for (const char* place : {"%2Fevil.example%2Fd%2Fpool%2Fh%2Fhello_1.deb", "%2Fmirror.example%2Fd%2Fnone", "%2F", "",
                              "%2Fmirror.example%2Fd%2Fpool%2Fh%2Fhello_1.deb%22", "%2Fmirror.example%2Fd%2F%00"}) {
        EXPECT_EQ(get(std::string("/") + place, "destUrl=http%3A%2F" + std::string(place)).status,
                  place[0] == '\0' ? 200 : 404)
            << place;
        EXPECT_EQ(get("/redir", "destUrl=http%3A%2F" + std::string(place)).status, 404) << place;
    }
}

TEST_F(Download, WithoutAMirrorThereAreNoDownloads)
{
    build(kHello, "");
    EXPECT_FALSE(hasRows(get("/3120-20-0-1-5.html", "qt=hello&ca=20")));
}

TEST_F(Download, WithoutAnIndexItSaysSo)
{
    EXPECT_EQ(get("/3120-20-0-1-5.html", "qt=hello&ca=20").status, 503);
    EXPECT_EQ(get("/redir", "destUrl=http%3A%2F%2Fa%2Fb").status, 503);
}

TEST(DownloadPage, AddressCannotLeaveTheScript)
{
    const std::string page = downloadPage("http://h/a\";alert('1')</script>");
    const std::size_t script = page.find("newlocation = ");
    EXPECT_EQ(page.substr(script, page.find(';', script) - script),
              "newlocation = \"http%3A%2F%2Fh%2Fa%22%3Balert(%271%27)%3C%2Fscript>#\"");
}
