#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "config/services_file.h"
#include "tests/services/support/service_support.h"

using namespace quarrynet;
using namespace quarrynet::services;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

namespace {

FileFaults faultsOf(std::string_view text)
{
    const auto file = readServicesFile(ExactCopy(text).view(), "s.toml");
    return file ? FileFaults{} : file.error();
}

/// Sets a variable of the environment while it lives.
class Variable
{
public:
    Variable(const char* name, const std::string& value) : name_(name)
    {
        if (const char* old = std::getenv(name))
            old_ = old;
        ::setenv(name, value.c_str(), 1);
    }
    ~Variable()
    {
        if (old_)
            ::setenv(name_, old_->c_str(), 1);
        else
            ::unsetenv(name_);
    }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    const char* name_;
    std::optional<std::string> old_;
};

} // namespace

TEST(ServicesFile, EmptyFileAsksTheIndex)
{
    const auto file = readServicesFile("", "s.toml");
    ASSERT_TRUE(file);
    for (const ServiceSettings* service : {&file->web, &file->image}) {
        ASSERT_EQ(service->sources.size(), 1U);
        EXPECT_TRUE(service->sources[0].isIndex());
        EXPECT_FALSE(service->asksOthers());
        EXPECT_EQ(service->language, "all");
        EXPECT_EQ(service->safeSearch, SafeSearch::Off);
    }
    EXPECT_FALSE(file->logQueries);
}

TEST(ServicesFile, SourcesKeepTheirOrderAndLines)
{
    const auto file = readServicesFile("log-queries = true\n"
                                       "[web]\n"
                                       "sources = [\n"
                                       "  [\"https://a.example/\", \"https://b.example:8443/searx//\"],\n"
                                       "  \"index\",\n"
                                       "  \"http://127.0.0.1:8888\",\n"
                                       "]\n"
                                       "language = \"pt-BR\"\n"
                                       "safe-search = \"strict\"\n"
                                       "wait-seconds = 3\n"
                                       "[image]\n"
                                       "sources = [\"http://[::1]:80\"]\n",
                                       "s.toml");
    ASSERT_TRUE(file) << file.error()[0];
    ASSERT_EQ(file->web.sources.size(), 3U);
    EXPECT_THAT(file->web.sources[0].instances, ElementsAre("https://a.example", "https://b.example:8443/searx"));
    EXPECT_EQ(file->web.sources[0].line, 4U);
    EXPECT_TRUE(file->web.sources[1].isIndex());
    EXPECT_THAT(file->web.sources[2].instances, ElementsAre("http://127.0.0.1:8888"));
    EXPECT_EQ(file->web.sources[2].line, 6U);
    EXPECT_TRUE(file->web.asksOthers());
    EXPECT_EQ(file->web.language, "pt-BR");
    EXPECT_EQ(file->web.safeSearch, SafeSearch::Strict);
    EXPECT_EQ(file->web.wait, std::chrono::seconds(3));
    EXPECT_THAT(file->image.sources[0].instances, ElementsAre("http://[::1]:80"));
    EXPECT_TRUE(file->logQueries);
}

TEST(ServicesFile, WrongKeysAreNamedWithTheirLinesAndTheAllowedOnes)
{
    EXPECT_THAT(faultsOf("[web]\nsource = []\n\n[wbe]\n"),
                ElementsAre("s.toml:2: unknown key \"source\" in [web]; allowed here: sources, language, safe-search, "
                            "wait-seconds",
                            StartsWith("s.toml:4: unknown key \"wbe\"; allowed here: web, image")));
}

TEST(ServicesFile, PrivatePicturesArePermittedOnlyByTheirKey)
{
    EXPECT_FALSE(readServicesFile("", "s.toml")->privatePictures);
    EXPECT_FALSE(readServicesFile("[image]\nprivate-pictures = false", "s.toml")->privatePictures);
    EXPECT_TRUE(readServicesFile("[image]\nprivate-pictures = true", "s.toml")->privatePictures);
    EXPECT_THAT(faultsOf("[image]\nprivate-pictures = 1"), ElementsAre(StartsWith("s.toml:2: ")));
    EXPECT_THAT(faultsOf("[web]\nprivate-pictures = true"), ElementsAre(StartsWith("s.toml:2: unknown key")));
}

TEST(ServicesFile, WrongTypesAreNamedWithTheirLines)
{
    EXPECT_THAT(faultsOf("log-queries = 1\n"
                         "image = 3\n"
                         "[web]\n"
                         "sources = \"index\"\n"
                         "language = [\"de\"]\n"
                         "safe-search = \"very\"\n"
                         "wait-seconds = 2.5\n"),
                ::testing::UnorderedElementsAre(
                    "s.toml:1: \"log-queries\" takes true or false, not a whole number",
                    "s.toml:2: \"image\" takes a table: [image], not a whole number",
                    "s.toml:4: \"sources\" takes a list in square brackets, not a text",
                    "s.toml:5: \"language\" takes a text in quotes, not a list",
                    "s.toml:6: \"safe-search\" takes one of \"off\", \"moderate\", \"strict\", not \"very\"",
                    "s.toml:7: \"wait-seconds\" takes a whole number from 1 to 20, not a number with a decimal point"));
    EXPECT_THAT(faultsOf("[web]\nwait-seconds = 21"), ElementsAre(HasSubstr("not 21")));
    EXPECT_THAT(faultsOf("[web]\nwait-seconds = 0"), ElementsAre(HasSubstr("not 0")));
    EXPECT_THAT(faultsOf("[web]\nlanguage = \"d e\""), ElementsAre(HasSubstr("s.toml:2:")));
}

TEST(ServicesFile, SourcesThatAreNoneAreNamedWithTheirLines)
{
    for (const char* source : {"3",
                               "\"\"",
                               "\"searx.example\"",
                               "\"ftp://searx.example\"",
                               "\"https://\"",
                               "\"https://a b.example\"",
                               "\"https://user@a.example\"",
                               "\"https://a.example/?q=\"",
                               "\"https://a.example:0\"",
                               "\"https://a.example:65536\"",
                               "\"https://a.example:x\"",
                               "\"https://a\\u0000.example\"",
                               "\"https://a.example\\r\\nX: y\"",
                               "\"https://\\u00E4.example\"",
                               "[]",
                               "[\"index\"]",
                               "[[\"https://a\"]]",
                               "\"javascript:alert(1)\"",
                               "\"https://a\", \"https://a/\"",
                               "\"index\", \"index\""}) {
        const FileFaults faults = faultsOf(std::string("[web]\nsources = [").append(source).append("]"));
        ASSERT_EQ(faults.size(), 1U) << source;
        EXPECT_THAT(faults[0], StartsWith("s.toml:2: ")) << source;
        EXPECT_EQ(faults[0].find_first_of("\r\n"), std::string::npos) << source;
    }
    EXPECT_THAT(faultsOf("[web]\nsources = []"), ElementsAre("s.toml:2: \"sources\" is empty"));
    EXPECT_EQ(faultsOf(std::string("[web]\nsources = [\"https://").append(2'000, 'a').append("\"]")).size(), 1U);
}

TEST(ServicesFile, DownloadsAndFilesComeFromTheIndexOnly)
{
    EXPECT_TRUE(readServicesFile("[download]\nsources = [\"index\"]\n[file]\n", "s.toml"));
    for (const char* sources : {"[]", "[\"https://searx.example\"]", "[\"index\", \"index\"]", "[1]", "[[]]"}) {
        EXPECT_THAT(faultsOf(std::string("[file]\nsources = ") + sources),
                    ElementsAre(AllOf(StartsWith("s.toml:2: "), HasSubstr("[\"index\"]"))))
            << sources;
    }
    EXPECT_THAT(faultsOf("[download]\nlanguage = \"de\""), ElementsAre(StartsWith("s.toml:2: ")));
}

TEST(ServicesFile, ServersToCrawlAreRead)
{
    const auto file = readServicesFile("[[crawl]]\naddress = \"https://h/pub\"\n[[crawl]]\naddress = \"ftps://h\"\n"
                                       "interval-hours = 1\ndepth = 2\nentries = 3\nminutes = 4\nrate = 5\n",
                                       "s.toml");
    ASSERT_TRUE(file);
    ASSERT_EQ(file->crawls.size(), 2U);
    EXPECT_EQ(crawlBase(file->crawls[0].address), "https://h/pub/");
    EXPECT_EQ(file->crawls[0].interval, std::chrono::hours(168));
    EXPECT_EQ(file->crawls[0].entries, 1'000'000U);
    EXPECT_EQ(file->crawls[1].address.scheme, CrawlAddress::Scheme::Ftps);
    EXPECT_EQ(file->crawls[1].interval, std::chrono::hours(1));
    EXPECT_EQ(file->crawls[1].depth, 2U);
    EXPECT_EQ(file->crawls[1].entries, 3U);
    EXPECT_EQ(file->crawls[1].minutes, 4U);
    EXPECT_EQ(file->crawls[1].rate, 5U);
}

TEST(ServicesFile, WrongServersToCrawlAreNamedWithTheirLine)
{
    for (const auto& [text, line] : std::vector<std::pair<std::string, std::string>>{
             {"[[crawl]]\n", "s.toml:1: "},
             {"[[crawl]]\naddress = 5\n", "s.toml:2: "},
             {"[[crawl]]\naddress = \"gopher://h/\"\n", "s.toml:2: "},
             {"[[crawl]]\naddress = \"ftp://u:secret@h/\"\n", "s.toml:2: "},
             {"[[crawl]]\naddress = \"ftp://h/\"\ninterval-hours = 0\n", "s.toml:3: "},
             {"[[crawl]]\naddress = \"ftp://h/\"\nrate = \"5\"\n", "s.toml:3: "},
             {"[[crawl]]\naddress = \"ftp://h/\"\nuser = \"u\"\n", "s.toml:3: "},
             {"[[crawl]]\naddress = \"ftp://h/a\"\n[[crawl]]\naddress = \"ftp://h/a/\"\n", "s.toml:4: "},
             {"crawl = \"ftp://h/\"\n", "s.toml:1: "},
             {"[crawl]\naddress = \"ftp://h/\"\n", "s.toml:1: "}}) {
        const FileFaults faults = faultsOf(text);
        ASSERT_EQ(faults.size(), 1U) << text;
        EXPECT_EQ(faults[0].substr(0, line.size()), line) << faults[0];
        EXPECT_EQ(faults[0].find("secret"), std::string::npos);
    }
    std::string many;
    for (std::size_t i = 0; i < kMostCrawls; ++i)
        many += "[[crawl]]\naddress = \"ftp://h" + std::to_string(i) + "/\"\n";
    EXPECT_TRUE(faultsOf(many).empty());
    EXPECT_EQ(faultsOf(many + "[[crawl]]\naddress = \"ftp://h/\"\n").size(), 1U);
}

TEST(ServicesFile, TextThatIsNoTomlIsNamedWithItsLine)
{
    EXPECT_THAT(faultsOf("[web]\nsources = [\n"), ElementsAre(StartsWith("s.toml:")));
    EXPECT_THAT(faultsOf("\n\nx"), ElementsAre(StartsWith("s.toml:3: ")));
    EXPECT_THAT(faultsOf("a = 1\na = 2\n"), ElementsAre(StartsWith("s.toml:2: ")));
    EXPECT_EQ(faultsOf(std::string("a = \"\0\"", 7)).size(), 1U);
    EXPECT_EQ(faultsOf("a = \"\xFF\"").size(), 1U);
    for (const char* header : {"[=]", "[\n]", "[[,]]", "[ \xC3\xA4 ]", "[.a]", "[a.]", "[a.=]", "[", "[[", "[a", "[a]]",
                               "[]", "[#]", "[\"\"\"a\"\"\"]", "[\x01]"})
        EXPECT_EQ(faultsOf(header).size(), 1U) << header;
    EXPECT_EQ(faultsOf(std::string("[\0web]", 6)).size(), 1U);
    EXPECT_EQ(faultsOf(std::string("a = ").append(100'000, '[')).size(), 1U);
    EXPECT_EQ(faultsOf(std::string(50'000, 'a') + " = " + std::string(50'000, '{')).size(), 1U);
    EXPECT_THAT(faultsOf(std::string(kMaxServicesFile + 1, '\n')), ElementsAre(HasSubstr("larger than 256 KB")));
    EXPECT_EQ(faultsOf(std::string(kMaxServicesFile, '\n')).size(), 0U);
}

TEST(ServicesFile, OnlyTheFirstFaultsAreNamed)
{
    std::string text;
    for (int i = 0; i < 1'000; ++i)
        text.append("k").append(std::to_string(i)).append(" = 1\n");
    EXPECT_EQ(faultsOf(text).size(), 20U);
}

TEST(ServicesFile, MissingFileIsAFaultOnlyIfItWasChosen)
{
    const TemporaryFolder folder;
    const Variable config("XDG_CONFIG_HOME", folder.path());
    EXPECT_TRUE(loadServicesFile(""));
    EXPECT_FALSE(loadServicesFile(folder.path() + "/none.toml"));
    folder.write("quarrynet/services.toml", "[web]\nlanguage = \"de\"\n");
    const auto file = loadServicesFile("");
    ASSERT_TRUE(file);
    EXPECT_EQ(file->web.language, "de");
    const std::string other = folder.write("other.toml", "[web]\nlanguage = \"fr\"\n");
    EXPECT_EQ(loadServicesFile(other)->web.language, "fr");
}

TEST(ServicesFile, HomeStandsInForAMissingOrRelativeConfigurationFolder)
{
    const TemporaryFolder folder;
    folder.write(".config/quarrynet/services.toml", "log-queries = true\n");
    const Variable home("HOME", folder.path());
    for (const char* value : {"", "relative"}) {
        const Variable config("XDG_CONFIG_HOME", value);
        const auto file = loadServicesFile("");
        ASSERT_TRUE(file);
        EXPECT_TRUE(file->logQueries);
    }
}

TEST(ServicesFile, FoldersPipesAndLargeFilesAreFaults)
{
    const TemporaryFolder folder;
    EXPECT_FALSE(loadServicesFile(folder.path()));
    const std::string pipe = folder.path() + "/pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_FALSE(loadServicesFile(pipe));
    EXPECT_FALSE(loadServicesFile(folder.write("large", std::string(kMaxServicesFile + 1, '\n'))));
}
