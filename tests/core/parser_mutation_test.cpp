#include <cstddef>
#include <functional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "tests/core/page_checks.h"
#include "tests/core/page_markers.h"
#include "tests/core/page_samples.h"
#include "tests/support/test_data.h"

using namespace quarrynet;
using namespace quarrynet::samples;

/// Parses thousands of broken pages, which a seeded generator makes from whole ones, the same in every run.
namespace {

constexpr int kRounds = 20000;

class Mutator
{
public:
    explicit Mutator(unsigned seed) : random_(seed) {}

    std::string mutated(std::string page)
    {
        for (std::size_t steps = 1 + below(8); steps > 0; --steps)
            mutate(page);
        return page;
    }

private:
    std::size_t below(std::size_t bound) { return random_() % bound; }

    void mutate(std::string& page)
    {
        const std::size_t at = below(page.size() + 1);
        const std::size_t length = below(2) == 0 ? below(12) : below(page.size() + 1);
        switch (below(8)) {
        case 0:
            page.erase(at, length);
            break;
        case 1:
            page.insert(at, kMarkers[below(kMarkers.size())]);
            break;
        case 2:
            page.replace(at, length % 16, kMarkers[below(kMarkers.size())]);
            break;
        case 3:
            page.resize(at);
            break;
        case 4:
            page.insert(below(page.size() + 1), page.substr(at, length % 400));
            break;
        case 5:
            if (at < page.size())
                page[at] = static_cast<char>(below(256));
            break;
        case 6:
            eraseAll(page, kMarkers[below(kMarkers.size())]);
            break;
        default:
            page.insert(at, below(20), '\0');
            break;
        }
    }

    static void eraseAll(std::string& page, std::string_view marker)
    {
        for (std::size_t i = page.find(marker); i != std::string::npos; i = page.find(marker, i))
            page.erase(i, marker.size());
    }

    std::mt19937 random_;
};

void runMutations(const std::string& page, unsigned seed, const std::function<void(std::string_view)>& check)
{
    Mutator mutator(seed);
    for (int round = 0; round < kRounds && !testing::Test::HasFailure(); ++round) {
        const std::string broken = mutator.mutated(page);
        SCOPED_TRACE("round " + std::to_string(round));
        check(ExactBytes(broken));
    }
}

} // namespace

TEST(ParserMutation, WebPages)
{
    runMutations(dataFile("web_results.html").substr(0, 2500), 1, checks::checkWeb);
}

TEST(ParserMutation, ImagePages)
{
    runMutations(dataFile("image_results.html"), 2, checks::checkImage);
}

TEST(ParserMutation, DownloadPages)
{
    runMutations(dataFile("download_results.html").substr(0, 1500), 3, checks::checkDownload);
}

TEST(ParserMutation, FilePages)
{
    runMutations(dataFile("file_results.html"), 4, checks::checkFile);
}

TEST(ParserMutation, LinkPages)
{
    runMutations(dataFile("download_link.html"), 5, checks::checkLink);
}

TEST(ParserMutation, PagesOfOtherTabs)
{
    const std::string all = dataFile("file_results.html") + dataFile("web_results.html").substr(0, 1000) +
                            dataFile("download_results.html").substr(0, 1000) + dataFile("image_results.html");
    runMutations(all, 6, [](std::string_view page) {
        checks::checkWeb(page);
        checks::checkImage(page);
        checks::checkFile(page);
        checks::checkLink(page);
    });
}
