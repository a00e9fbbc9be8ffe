#include <map>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "search/download/results.h"
#include "searches/DownloadService.h"
#include "sources/SoftwareCatalog.h"
#include "sources/indexing.h"
#include "tests/services/support/service_support.h"

using namespace quarrynet;
using namespace quarrynet::services;
using namespace std::string_literals;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

namespace {

constexpr const char* kHeader = "---\nFile: DEP-11\nVersion: '0.16'\nOrigin: test\nMediaBaseUrl: https://m.example/\n"
                                "Package: never\n...\n";

constexpr const char* kPainter = R"(---
Type: desktop-application
ID: org.example.Easel.desktop
Package: easel
Name:
  de: Staffelei
  C: Easel Painter
Summary:
  C: Paint pictures
  de: Bilder malen
ProjectLicense: GPL-3.0-or-later AND CC0-1.0
Description:
  C: >-
    <p>A long text
    --- with dashes</p>
Url:
  homepage: https://easel.example/
Categories:
- Graphics
- RasterGraphics
Keywords:
  C:
  - brush
  - canvas
  de:
  - Pinsel
Icon:
  cached:
  - {name: easel_easel.png, width: 64, height: 64}
)";

struct Read
{
    std::vector<CatalogEntry> entries;
    std::size_t skipped = 0;
};

Read readInPieces(std::string_view catalog, std::size_t piece)
{
    Read read;
    CatalogReader reader([&read](const CatalogEntry& entry) { read.entries.push_back(entry); });
    for (std::size_t at = 0; at < catalog.size(); at += piece)
        reader.feed(ExactCopy(catalog.substr(at, piece)).view());
    reader.finish();
    read.skipped = reader.skipped();
    return read;
}

Read read(std::string_view catalog)
{
    return readInPieces(catalog, catalog.size() + 1);
}

std::string document(const std::string& package, const std::string& more = {})
{
    return std::string("---\nPackage: ").append(package).append("\n").append(more);
}

CatalogEntry application(const std::string& id, const std::string& name, const std::string& license = "MIT",
                         const std::string& type = "desktop-application")
{
    return {"pack", id, type, name, name + " summary", license, ""};
}

class CataloguedDownloads : public ::testing::Test
{
protected:
    void build(const std::string& stanzas, const std::string& catalog)
    {
        IndexSources sources{{input_.write("list", stanzas)}, "http://mirror.example/d/"};
        sources.catalogFiles = {input_.write("catalog.yml", catalog)};
        const Outcome<IndexCounts> counts = buildIndex(data_.path(), sources, [](const std::string&) {});
        ASSERT_TRUE(counts) << counts.error().message;
        catalogued_ = counts->catalogued;
    }

    std::vector<std::string> namesOf(const std::string& typed)
    {
        std::vector<std::string> names;
        const Outcome<ProgramAnswer> answer = service_.search(typed, 0);
        EXPECT_TRUE(answer);
        for (const ProgramHit& hit : answer->hits)
            names.push_back(hit.name);
        return names;
    }

    TemporaryFolder data_;
    TemporaryFolder input_;
    IndexPool pool_{data_.path()};
    DownloadService service_{pool_};
    std::size_t catalogued_ = 0;
};

std::string stanza(const std::string& name, const std::string& summary, const std::string& section = "graphics")
{
    return "Package: " + name + "\nDescription: " + summary + "\nSection: " + section +
           "\nSize: 2048\nArchitecture: amd64\nFilename: pool/" + name + ".deb\n\n";
}

} // namespace

TEST(CatalogReader, KeepsTheTextsOfItsMainLanguage)
{
    const Read catalog = read(std::string(kHeader) + kPainter);
    ASSERT_EQ(catalog.entries.size(), 2U);
    const CatalogEntry& entry = catalog.entries[1];
    EXPECT_EQ(entry.package, "easel");
    EXPECT_EQ(entry.id, "org.example.Easel.desktop");
    EXPECT_EQ(entry.type, "desktop-application");
    EXPECT_EQ(entry.name, "Easel Painter");
    EXPECT_EQ(entry.summary, "Paint pictures");
    EXPECT_EQ(entry.license, "GPL-3.0-or-later AND CC0-1.0");
    EXPECT_EQ(entry.words, "Graphics RasterGraphics brush canvas");
    EXPECT_EQ(catalog.skipped, 0U);
}

TEST(CatalogReader, CatalogReadsAlikeInAnyPieces)
{
    const std::string catalog = kPainter + document("b") + document("c", "Name: [\n") + "---\n---\n" + document("d");
    const Read whole = read(catalog);
    ASSERT_EQ(whole.entries.size(), 3U);
    EXPECT_EQ(whole.skipped, 1U);
    for (std::size_t piece = 1; piece < catalog.size(); ++piece) {
        const Read other = readInPieces(catalog, piece);
        ASSERT_EQ(other.entries.size(), 3U) << piece;
        EXPECT_EQ(other.entries[0].words, whole.entries[0].words);
        EXPECT_EQ(other.skipped, 1U);
    }
}

TEST(CatalogReader, OtherShapesAreIgnored)
{
    EXPECT_THAT(read("").entries, IsEmpty());
    EXPECT_THAT(read("- Package\n- a\n").entries, IsEmpty());
    EXPECT_THAT(read("Package:\n  C: a\n").entries, IsEmpty());
    EXPECT_THAT(read("a: {Package: b}\n").entries, IsEmpty());
    const Read odd = read(document("a", "Name: plain\nSummary:\n- C\nCategories: one\nKeywords:\n- two\n"
                                        "ProjectLicense: {C: MIT}\nType:\n"));
    ASSERT_EQ(odd.entries.size(), 1U);
    EXPECT_EQ(odd.entries[0].name + odd.entries[0].summary + odd.entries[0].words + odd.entries[0].license, "");
}

TEST(CatalogReader, TextsBecomeOneLineOfUtf8)
{
    const Read catalog = read(document("a", "Name:\n  C: \"a\\nb\\u202Ec\\0d\"\nSummary:\n  C: |\n    x\n    y\n"));
    ASSERT_EQ(catalog.entries.size(), 1U);
    EXPECT_EQ(catalog.entries[0].summary, "x y");
    EXPECT_EQ(catalog.entries[0].name.find_first_of(std::string_view("\n\0", 2)), std::string::npos);
}

TEST(CatalogReader, BrokenDocumentsAreSkippedAndTheNextIsRead)
{
    const std::string good = document("good");
    for (const std::string& broken :
         {document("a", "Name: {\n"), document("a", "\xff\xfe\n"), document("a", "Name: \"\n"),
          document("a", "\t: x\n"), document("a", std::string("Name: \0\n", 8)), document("a", "? [a]\n: b\n"),
          document("a", "Name: " + std::string(kMaxCatalogDepth, '[') + std::string(kMaxCatalogDepth, ']') + "\n"),
          document("a", "Name: " + std::string(500'000, '[')), document("a", "Name: " + std::string(500'000, '{'))}) {
        const Read catalog = read(broken + "\n" + good);
        EXPECT_EQ(catalog.skipped, 1U) << broken.substr(0, 100);
        ASSERT_EQ(catalog.entries.size(), 1U) << broken.substr(0, 100);
        EXPECT_EQ(catalog.entries[0].package, "good");
    }
}

TEST(CatalogReader, AliasesDoNotMultiply)
{
    std::string bomb = "a0: &a0 [x, x, x, x, x, x, x, x, x, x]\n";
    for (int i = 1; i < 20; ++i) {
        const std::string before = std::string("*a").append(std::to_string(i - 1));
        bomb.append("a").append(std::to_string(i)).append(": &a").append(std::to_string(i)).append(" [").append(before);
        for (int k = 0; k < 9; ++k)
            bomb.append(", ").append(before);
        bomb.append("]\n");
    }
    const Read catalog = read(document("a", bomb + "Categories: *a19\nKeywords: {C: [one, *a19, two]}\n"));
    ASSERT_EQ(catalog.entries.size(), 1U);
    EXPECT_LT(catalog.entries[0].words.size(), 20U);
}

TEST(CatalogReader, LongDocumentsAreSkippedAtTheBound)
{
    const std::string beginning = document("a", "Name:\n  C: b\nText: ");
    const auto ofLength = [&](std::size_t length) {
        return beginning + std::string(length - beginning.size() - 1, 'x') + "\n";
    };
    EXPECT_EQ(read(ofLength(kMaxCatalogDocument)).entries.size(), 1U);
    EXPECT_EQ(read(ofLength(kMaxCatalogDocument + 1)).skipped, 1U);
    const Read many = read(ofLength(5 * kMaxCatalogDocument) + document("b") + document("c", "\n\n"));
    EXPECT_EQ(many.skipped, 1U);
    EXPECT_EQ(many.entries.size(), 2U);
    EXPECT_EQ(read(document("a", "Name:\n  C: " + std::string(100'000, 'n') + "\n")).entries[0].name.size(),
              kMaxCatalogText);
}

TEST(SoftwareCatalog, TheProgramWithThePackagesNameStandsForIt)
{
    SoftwareCatalog catalog;
    catalog.add("m/", application("org.example.Other", "Other"));
    catalog.add("m/", application("pack.desktop", "The Pack", "Apache-2.0"));
    EXPECT_EQ(catalog.find("m/", "pack").title, "The Pack");
    EXPECT_EQ(catalog.find("m/", "pack").license, "Apache-2.0");
    EXPECT_THAT(catalog.find("m/", "pack").words, HasSubstr("Other"));
    EXPECT_EQ(catalog.find("n/", "pack").title, "");
    EXPECT_EQ(catalog.find("m/", "other").words, "");
}

TEST(SoftwareCatalog, SeveralProgramsOfAPackageNameItAfterNone)
{
    SoftwareCatalog catalog;
    catalog.add("m/", application("a", "Red Game"));
    catalog.add("m/", application("b", "Blue Game"));
    CataloguedProgram found = catalog.find("m/", "pack");
    EXPECT_EQ(found.title, "");
    EXPECT_EQ(found.summary, "");
    EXPECT_EQ(found.license, "MIT");
    EXPECT_THAT(found.words, HasSubstr("Blue Game"));
    catalog.add("m/", application("c", "Green Game", "GPL-2.0"));
    EXPECT_EQ(catalog.find("m/", "pack").license, "");
    // A font or an extension of the package is no program.
    SoftwareCatalog mixed;
    mixed.add("m/", application("a", "Extension", "MIT", "addon"));
    mixed.add("m/", application("b", "Program"));
    EXPECT_EQ(mixed.find("m/", "pack").title, "Program");
}

TEST(SoftwareCatalog, IsBounded)
{
    SoftwareCatalog catalog;
    std::size_t added = 0;
    while (catalog.add("m/", application(std::to_string(added), "x")))
        ++added;
    EXPECT_EQ(added, 64U);
    CatalogEntry other = application("a", "x");
    for (std::size_t i = added; i < kMaxCatalogEntries; ++i) {
        other.package = std::to_string(i);
        ASSERT_TRUE(catalog.add("m/", other));
    }
    other.package = "one more";
    EXPECT_FALSE(catalog.add("m/", other));
}

TEST(LicenseText, SaysWhatIsKnown)
{
    EXPECT_EQ(licenseText(""), "");
    EXPECT_EQ(licenseText("GPL-2.0-only OR MIT"), "GPL-2.0-only OR MIT");
    EXPECT_EQ(licenseText("LicenseRef-proprietary=https://x.example/"), "Proprietary");
    EXPECT_EQ(licenseText("LicenseRef-free"), "Free");
}

TEST_F(CataloguedDownloads, RowsHaveWhatTheCatalogSays)
{
    build(stanza("easel", "canvas tool for X") + stanza("plain", "paint in the terminal") +
              stanza("closed", "paint for money", "non-free/graphics"),
          std::string(kHeader) + kPainter);
    EXPECT_EQ(catalogued_, 1U);
    const ProgramAnswer answer = *service_.search("paint", 0);
    // The window reads the rows as well.
    std::map<std::string, std::pair<std::string, std::string>> rows;
    for (const DownloadRow& row : parseDownloadResults(downloadResultsPage(answer, "paint")).rows)
        rows[row.name] = {row.description, row.license};
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows["Easel Painter (easel)"], std::make_pair("Paint pictures"s, "GPL-3.0-or-later AND CC0-1.0"s));
    EXPECT_EQ(rows["plain"], std::make_pair("paint in the terminal"s, "Unknown"s));
    EXPECT_EQ(rows["closed"], std::make_pair("paint for money"s, "Non-free"s));
    const ProgramAnswer one = *service_.search("easel", 0);
    EXPECT_EQ(one.hits.at(0).address, "http://mirror.example/d/pool/easel.deb");
    EXPECT_EQ(one.hits.at(0).size, 2048);
}

TEST_F(CataloguedDownloads, ProgramsAreFoundByAllTheirNamesAndWords)
{
    build(stanza("easel", "canvas tool for X") + stanza("easel-painter-tools", "tools") + stanza("aa", "easel painter"),
          kPainter);
    for (const char* typed :
         {"easel", "Easel Painter", "easel p", "paint pictures", "brush", "graphics", "canvas tool"})
        EXPECT_EQ(namesOf(typed).at(0), "Easel Painter (easel)") << typed;
    EXPECT_THAT(namesOf("staffelei"), IsEmpty());
}

TEST_F(CataloguedDownloads, WithoutACatalogNothingChanges)
{
    build(stanza("easel", "canvas tool"), "");
    EXPECT_THAT(namesOf("easel"), ElementsAre("easel"));
    EXPECT_EQ(service_.search("canvas", 0)->hits.at(0).description, "canvas tool");
    EXPECT_EQ(service_.search("canvas", 0)->hits.at(0).license, "Unknown");
}
