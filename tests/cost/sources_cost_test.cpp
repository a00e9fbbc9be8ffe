#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "ground/ascii.h"
#include "index/IndexWriter.h"
#include "sources/HomePages.h"
#include "sources/ListedFiles.h"
#include "sources/PoolFiles.h"
#include "sources/Programs.h"
#include "sources/contents_lists.h"
#include "sources/document_folders.h"
#include "sources/picture_folders.h"
#include "tests/cost/step_counter.h"
#include "tests/services/support/service_support.h"

/// Compares the cost of collecting index data from folders and package lists of single and double size.
using namespace quarrynet;
using namespace quarrynet::cost;
using namespace quarrynet::services;

namespace {

constexpr std::size_t kFiles = 300;
constexpr std::size_t kPackages = 2000;

using Name = std::function<std::string(std::size_t)>;

/// Returns shapes of folders: each names its i-th file in a different way.
std::vector<std::pair<std::string, Name>> folders()
{
    const auto numbered = [](std::size_t i) { return std::to_string(i); };
    return {
        {"one folder", [=](std::size_t i) { return "picture" + numbered(i) + ".png"; }},
        {"a folder for each", [=](std::size_t i) { return "folder" + numbered(i) + "/a.png"; }},
        {"all sizes of one picture",
         [=](std::size_t i) { return "a-" + numbered(1 + i % 90) + "x" + numbered(1 + i / 90) + ".png"; }},
        {"a folder for each size",
         [=](std::size_t i) { return numbered(1 + i) + "x" + numbered(1 + i) + "/theme/a.png"; }},
        {"long names", [=](std::size_t i) { return numbered(i) + std::string(200, 'a') + ".png"; }},
        {"names of many words", [=](std::size_t i) { return numbered(i) + filled("aA1", 200) + ".png"; }},
        {"names full of marks", [=](std::size_t i) { return numbered(i) + filled("-@_", 200) + ".png"; }},
        {"names that are no UTF-8", [=](std::size_t i) { return numbered(i) + filled("\xff\xc3", 200) + ".png"; }},
        {"deep folders",
         [=](std::size_t i) { return numbered(i / 50) + "/" + filled("d/", 2 * (i % 50 + 1)) + "a.png"; }},
        {"hidden files", [=](std::size_t i) { return "." + numbered(i) + ".png"; }},
        {"files of other kinds", [=](std::size_t i) { return numbered(i) + ".txt"; }},
    };
}

/// Expects that walking a folder costs in proportion to its number of files.
void expectProportionalWalk(const std::string& what, const std::function<void(const std::string&)>& walk)
{
    // Kept, because making a folder takes longer than walking it.
    static std::map<std::pair<std::string, std::size_t>, TemporaryFolder> made;
    for (const auto& [shape, nameOf] : folders()) {
        expectProportional(
            what + ", " + shape,
            [&, &shapeName = shape, &name = nameOf](std::size_t files) {
                const auto [place, isNew] = made.try_emplace({shapeName, files});
                for (std::size_t i = 0; isNew && i < files; ++i)
                    place->second.write(name(i), "x");
                return stepsOf([&] { walk(place->second.path()); });
            },
            kFiles);
    }
}

/// Expects cost in proportion to the number of packages, which `gather` collects and writes into an index.
void expectProportionalLists(const std::string& what,
                             const std::function<void(std::size_t count, IndexWriter& writer)>& gather)
{
    expectProportional(
        what,
        [&](std::size_t count) {
            const TemporaryFolder folder;
            Outcome<IndexWriter> writer = IndexWriter::begin(folder.path());
            EXPECT_TRUE(writer);
            return stepsOf([&] { gather(count, *writer); });
        },
        kPackages);
}

} // namespace

TEST(SourcesCost, FoldersOfFiles)
{
    expectProportionalWalk("files", [](const std::string& folder) {
        const auto isPicture = [](std::string_view name) { return endsWithIgnoringCase(name, ".png"); };
        findFiles(folder, isPicture, [](const std::string&) {});
    });
    expectProportionalWalk("HTML files",
                           [](const std::string& folder) { findHtmlFiles(folder, [](const std::string&) {}); });
    expectProportionalWalk("pictures", [](const std::string& folder) {
        LeftOut left;
        findPictures(folder, left);
    });
}

TEST(SourcesCost, NamesOfPictures)
{
    for (const std::string pattern : {"x", "/", "48x48/", "48/", "1/", "scalable/", "-48x48", "@2x", "-", "_", "@", "9",
                                      "aA", "a1", "A", ".", ".symbolic", "\xff"}) {
        const auto make = [&](std::size_t length) { return filled(pattern, length); };
        expectProportionalText("path without sizes, " + pattern, make,
                               [](const std::string& path) { sizelessPath(path); });
        expectProportionalText("spaced words, " + pattern, make, [](const std::string& path) { spacedWords(path); });
    }
    for (const std::string pattern : {"x", "../", "x/", "./", "%2e", "//", "?", "x/../"}) {
        const auto make = [&](std::size_t length) { return filled(pattern, length); };
        expectProportionalText("path of a shown picture, " + pattern, make,
                               [](const std::string& address) { pathSeenFrom("a/b/c.html", address); });
        expectProportionalText("path of a page, " + pattern, make,
                               [](const std::string& page) { pathSeenFrom(page, "../a.png"); });
    }
    expectProportionalText(
        "path that leads all the way up", [](std::size_t length) { return filled("a/", length); },
        [](const std::string& page) { pathSeenFrom(page, filled("../", page.size())); });
}

TEST(SourcesCost, HomePages)
{
    const auto package = [](std::size_t i) {
        Package made;
        made.name = "package" + std::to_string(i);
        made.source = made.name;
        made.summary = "summary " + std::to_string(i);
        made.description = "Description number " + std::to_string(i) + " of many.";
        made.homepage = "http://h.example/" + std::to_string(i);
        return made;
    };
    const std::vector<std::pair<std::string, std::function<void(Package&, std::size_t)>>> shapes = {
        {"a page for each", [](Package&, std::size_t) {}},
        {"one page of all", [](Package& made, std::size_t) { made.homepage = "http://h.example/"; }},
        {"one page, one text",
         [](Package& made, std::size_t) {
             made.homepage = "http://h.example/";
             made.summary = made.description = "the same";
         }},
        {"one page, names of the address",
         [](Package& made, std::size_t i) {
             made.homepage = "http://h.example/" + filled("package-", 200) + (i % 2 == 0 ? "/" : "");
         }},
        {"one page, companions",
         [](Package& made, std::size_t) {
             made.homepage = "http://h.example/";
             made.name += "-dev-data-doc";
         }},
        {"long addresses that differ at their ends",
         [](Package& made, std::size_t i) {
             made.homepage = "http://h.example/" + std::string(1000, 'a') + std::to_string(i);
         }},
        {"one page, long texts that differ at their ends",
         [](Package& made, std::size_t i) {
             made.homepage = "http://h.example/";
             made.description = std::string(1000, 'a') + std::to_string(i);
         }},
        {"addresses that are none", [](Package& made, std::size_t) { made.homepage = std::string(100, '/'); }},
    };
    for (const auto& [shape, change] : shapes) {
        expectProportionalLists("home pages, " + shape, [&, &make = change](std::size_t count, IndexWriter& writer) {
            HomePages pages;
            for (std::size_t i = 0; i < count; ++i) {
                Package made = package(i);
                make(made, i);
                pages.add(made);
            }
            ASSERT_TRUE(pages.write(writer));
        });
    }
}

TEST(SourcesCost, PoolFiles)
{
    const auto numbered = [](std::size_t i) { return std::to_string(i); };
    struct Shape
    {
        std::string what;
        Name base;
        Name file;
    };
    const Name mirror = [](std::size_t) { return "http://m.example/"; };
    const std::vector<Shape> shapes = {
        {"one folder", mirror, [=](std::size_t i) { return "pool/" + numbered(i) + "_1_all.deb"; }},
        {"a folder for each", mirror, [=](std::size_t i) { return "pool/" + numbered(i) + "/a.deb"; }},
        {"deep folders", mirror,
         [=](std::size_t i) { return filled("d" + numbered(i) + "/", 8 * (4 + numbered(i).size())) + "a.deb"; }},
        {"too deep folders", mirror, [=](std::size_t) { return filled("d/", 200) + "a.deb"; }},
        {"names that begin alike", mirror,
         [=](std::size_t i) { return "pool/" + std::string(500, 'a') + numbered(i) + ".deb"; }},
        {"one name", mirror, [=](std::size_t) { return "pool/a.deb"; }},
        {"slashes", mirror, [=](std::size_t i) { return filled("/", 500) + numbered(i); }},
        {"a mirror for each", [=](std::size_t i) { return "http://m" + numbered(i) + ".example/"; },
         [](std::size_t) { return "pool/a.deb"; }},
    };
    for (const Shape& shape : shapes) {
        expectProportionalLists("pool files, " + shape.what, [&](std::size_t count, IndexWriter& writer) {
            PoolFiles files;
            for (std::size_t i = 0; i < count; ++i)
                files.add(shape.base(i), shape.file(i), 1);
            ASSERT_TRUE(files.write(writer));
        });
    }
}

TEST(SourcesCost, ListedFiles)
{
    const auto numbered = [](std::size_t i) { return std::to_string(i); };
    const std::vector<std::pair<std::string, Name>> shapes = {
        {"one folder", [=](std::size_t i) { return "usr/bin/tool" + numbered(i); }},
        {"a folder for each", [=](std::size_t i) { return numbered(i) + "/copyright"; }},
        {"one file", [=](std::size_t) { return "usr/bin/tool"; }},
        {"names that begin alike", [=](std::size_t i) { return "usr/" + std::string(500, 'a') + numbered(i); }},
        {"names that end alike", [=](std::size_t i) { return "usr/" + numbered(i) + std::string(500, 'a'); }},
        {"names that are no UTF-8", [=](std::size_t i) { return numbered(i) + filled("\xff\xc3", 200); }},
    };
    for (const auto& [shape, pathOf] : shapes) {
        expectProportionalLists("listed files, " + shape, [&, &path = pathOf](std::size_t count, IndexWriter& writer) {
            ListedFiles files;
            const std::uint32_t package = files.addPackage(1);
            for (std::size_t i = 0; i < count; ++i)
                files.add(path(i), package);
            ASSERT_TRUE(files.write(writer));
        });
    }
}

TEST(SourcesCost, ContentsLines)
{
    for (const std::string pattern : {"x", " ", "\t", "/", ",", "\n", "a b\n", "a b,", "./", "\r", "a/b c/d,e/f\n"}) {
        expectProportionalText(
            "contents list, " + pattern, [&](std::size_t length) { return filled(pattern, length); },
            [](const std::string& list) {
                ContentsReader reader([](std::string_view, std::string_view packages) {
                    forEachPackageName(packages, [](std::string_view) {});
                });
                reader.feed(list);
                reader.finish();
            });
    }
}

TEST(SourcesCost, Programs)
{
    const std::vector<std::pair<std::string, Name>> shapes = {
        {"numbered names", [](std::size_t i) { return "program" + std::to_string(i); }},
        {"companions", [](std::size_t i) { return "program" + std::to_string(i / 2) + (i % 2 == 0 ? "" : "-data"); }},
        {"endings of companions", [](std::size_t i) { return std::to_string(i) + filled("-data", 200); }},
        {"names that begin alike", [](std::size_t i) { return std::string(500, 'a') + std::to_string(i); }},
        {"one name", [](std::size_t) { return "program"; }},
        {"dashes", [](std::size_t i) { return std::to_string(i) + filled("-", 200); }},
    };
    for (const auto& [shape, nameOf] : shapes) {
        expectProportionalLists("programs, " + shape, [&, &name = nameOf](std::size_t count, IndexWriter& writer) {
            Programs programs;
            const Outcome<std::int64_t> mirror = writer.addMirror("http://m.example/");
            for (std::size_t i = 0; i < count; ++i) {
                Program program;
                program.name = name(i);
                program.description = "A program";
                program.mirror = *mirror;
                program.file = "pool/" + program.name + ".deb";
                programs.add(program, program.name);
            }
            ASSERT_TRUE(programs.write(writer));
        });
    }
}
