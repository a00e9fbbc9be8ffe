#include <string>
#include <string_view>

#include <benchmark/benchmark.h>

#include "search/download/results.h"
#include "search/file/results.h"
#include "search/image/results.h"
#include "search/web/results.h"
#include "tests/core/page_samples.h"

/// Measures the result parsers with a page as the services send it (should take less than a millisecond), with a page
/// of 400 or 1,000 times as many rows (the time per row should stay the same), and with hostile pages of 10 MB (less
/// than a second each).

using namespace quarrynet;
using namespace quarrynet::samples;

namespace {

constexpr std::size_t kHostileSize = 10'000'000;

std::string filled(std::string_view piece)
{
    return repeated(piece, kHostileSize / piece.size());
}

std::string webPageOf(std::size_t results)
{
    std::string page = heading("1,234");
    for (std::size_t i = 0; i < results; ++i)
        page += webEntry("http://orchard" + std::to_string(i) + ".example/red/apple.html",
                         "<b>Red</b> apple, number " + std::to_string(i)) +
                repeated(" and where it grows", 12);
    return page;
}

std::string downloadPageOf(std::size_t rows)
{
    std::string page = downloadHead("10,000", "1 - " + std::to_string(rows));
    for (std::size_t i = 0; i < rows; ++i)
        page += downloadEntry("Program " + std::to_string(i), "/redir?pid=" + std::to_string(i)) +
                repeated("<td> </td>", 12);
    return page;
}

void webResults(benchmark::State& state)
{
    const std::string page = webPageOf(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(parseWebResults(page));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(webResults)->Arg(30)->Arg(30000)->Unit(benchmark::kMicrosecond);

void imageResultsAndGallery(benchmark::State& state)
{
    const std::string page = heading("1,234") + repeated(thumbnail("host.example/pics/red_apple.jpg"), 10);
    for (auto _ : state)
        benchmark::DoNotOptimize(parseImageResults(page, "engine.example"));
}
BENCHMARK(imageResultsAndGallery)->Unit(benchmark::kMicrosecond);

void downloadResults(benchmark::State& state)
{
    const std::string page = downloadPageOf(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(parseDownloadResults(page));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(downloadResults)->Arg(25)->Arg(10000)->Unit(benchmark::kMicrosecond);

void fileResults(benchmark::State& state)
{
    const std::string page = filePage(17, 3);
    for (auto _ : state)
        benchmark::DoNotOptimize(parseFileResults(page));
}
BENCHMARK(fileResults)->Unit(benchmark::kMicrosecond);

void hostileWeb(benchmark::State& state, std::string page)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(parseWebResults(page));
}
BENCHMARK_CAPTURE(hostileWeb, markersOnly, filled("<p><a"))->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(hostileWeb, noTagEnd, heading("9") + filled("<p><a href=http"))->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(hostileWeb, noLinkEnd, heading("9") + filled("<p><a href=http>"))->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(hostileWeb, noRedirectEnd, heading("9") + filled("<p><a href=/http></a>"))
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(hostileWeb, sharedRedirectEnd, heading("9") + filled("<p><a href=/http></a>") + "&e=")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(hostileWeb, sharedLinkEnd, heading("9") + filled("<p><a href=http>") + "</a>")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(hostileWeb, shortestResults, heading("9") + filled("<p><a href=http></a>"))
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(hostileWeb, titleOfTags, heading("9") + "<p><a href=http>" + filled("<b>") + "</a>")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(hostileWeb, titleOfNestedTags,
                  heading("9") + "<p><a href=http>" + filled("<b") + filled("b>") + "</a>")
    ->Unit(benchmark::kMillisecond);

void hostileImage(benchmark::State& state, std::string page)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(parseImageResults(page, "engine.example"));
}
BENCHMARK_CAPTURE(hostileImage, noBlank, filled("src=/images?q=tbn:"))->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(hostileImage, sharedBlank, filled("src=/images?q=tbn::") + " ")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(hostileImage, noColon, filled("src=/images?q=tbn "))->Unit(benchmark::kMillisecond);

void hostileDownload(benchmark::State& state, std::string page)
{
    std::size_t rows = 0;
    for (auto _ : state)
        rows = parseDownloadResults(page).rows.size();
    state.counters["rows"] = static_cast<double>(rows);
}
const std::string kEndlessRange = downloadHead("9", "1 - 2000000000");
BENCHMARK_CAPTURE(hostileDownload, nothingElse, kEndlessRange + filled("x"))->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(hostileDownload, tagBeginsOnly, kEndlessRange + filled("<"))->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(hostileDownload, boldOnly, kEndlessRange + filled("<b>"))->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(hostileDownload, boldEndsOnly, kEndlessRange + filled(" </b"))->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(hostileDownload, classesOnly, kEndlessRange + filled("clas"))->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(hostileDownload, shortestEntries, kEndlessRange + filled("<b></b>class><OS:> </b></b></redir?>"))
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(hostileDownload, noLink, kEndlessRange + filled("<b></b>class><OS:> </b></b></redir>"))
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(hostileDownload, linkAtTheEnd,
                  kEndlessRange + filled("<b></b>class><OS:> </b></b></redir>") + "<b></b>/redir?>")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(hostileDownload, hugeNames, kEndlessRange + downloadEntry(filled("x")))
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(hostileDownload, mediumTexts, kEndlessRange + downloadEntry(repeated("x", 400)) + filled("y"))
    ->Unit(benchmark::kMillisecond);

void hostileFile(benchmark::State& state, std::string page)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(parseFileResults(page));
}
BENCHMARK_CAPTURE(hostileFile, sizesOnly, "/form" + filled("<b> "))->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(hostileFile, noClass, "/form" + filled("<b> <a href=ftp:clas>"))->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(hostileFile, classAtTheEnd, "/form:=" + filled("clas") + " class>n<i><b> 1<")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(hostileFile, directoriesOnly, filled("&lt;dir&gt; "))->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(hostileFile, linksOnly, "&lt;dir&gt; " + filled("<a") + "q= class<b>n</b>")
    ->Unit(benchmark::kMillisecond);

} // namespace
