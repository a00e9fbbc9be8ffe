#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "sources/document_folders.h"
#include "sources/picture_folders.h"
#include "thumbnails/ThumbnailCache.h"
#include "thumbnails/Thumbnailer.h"
#include "thumbnails/picture_format.h"

/// Measures thumbnails of this machine's icons: made by a running process, taken from the cache, and made by a new
/// process.

using namespace quarrynet::services;

namespace {

struct Source
{
    PictureFormat format = PictureFormat::Png;
    std::string content;
};

/// Returns at most 200 of the machine's icons, SVG and raster.
const std::vector<Source>& sources()
{
    static const std::vector<Source> read = [] {
        std::vector<Source> found;
        const std::string folder = "/usr/share/icons";
        const std::vector<Picture> pictures = findPictures(folder);
        const std::size_t step = pictures.size() / 200 + 1;
        for (std::size_t i = 0; i < pictures.size(); i += step) {
            const auto content = readFile(folder + "/" + pictures[i].path, 1 << 20);
            const auto format = content ? pictureFormat(*content) : std::nullopt;
            if (format)
                found.push_back({*format, *content});
        }
        return found;
    }();
    return read;
}

/// Returns whether the cache has a thumbnail of picture `number`, after making it if it is missing.
bool show(ThumbnailCache& cache, Thumbnailer& thumbnailer, std::size_t number)
{
    const Source& source = sources()[number % sources().size()];
    return cache.get(std::to_string(number), [&] { return thumbnailer.make(source.format, source.content); })
        .has_value();
}

/// Shows each picture under a new key if `cold`, otherwise the same pictures again and again.
void showAll(benchmark::State& state, bool cold)
{
    if (sources().empty()) {
        state.SkipWithError("this machine has no icons");
        return;
    }
    Thumbnailer thumbnailer(QUARRYNET_THUMBNAILS);
    ThumbnailCache cache(32 * 1024 * 1024);
    std::size_t number = 0;
    for (; number < sources().size(); ++number)
        benchmark::DoNotOptimize(show(cache, thumbnailer, number));
    std::size_t shown = 0;
    for ([[maybe_unused]] auto _ : state) {
        shown += show(cache, thumbnailer, cold ? number : number % sources().size()) ? 1U : 0U;
        ++number;
    }
    state.counters["shown"] = static_cast<double>(shown);
    state.SetItemsProcessed(state.iterations());
}

void thumbnailsCold(benchmark::State& state)
{
    showAll(state, true);
}

void thumbnailsCached(benchmark::State& state)
{
    showAll(state, false);
}

void thumbnailOfANewProcess(benchmark::State& state)
{
    for ([[maybe_unused]] auto _ : state) {
        Thumbnailer thumbnailer(QUARRYNET_THUMBNAILS);
        ThumbnailCache cache(1 << 20);
        if (sources().empty() || !show(cache, thumbnailer, 0)) {
            state.SkipWithError("no thumbnail could be made");
            return;
        }
    }
    state.SetItemsProcessed(state.iterations());
}

} // namespace

BENCHMARK(thumbnailsCold)->Iterations(1000)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(thumbnailsCached)->Iterations(100000)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(thumbnailOfANewProcess)->Iterations(20)->Unit(benchmark::kMicrosecond)->UseRealTime();
