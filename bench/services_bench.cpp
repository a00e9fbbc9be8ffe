#include <algorithm>
#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "index/database.h"
#include "searches/DownloadService.h"
#include "searches/FileService.h"
#include "searches/WebService.h"
#include "sources/indexing.h"

/// Measures the local searches over this machine's package lists, compared with the same queries on the tables without
/// a full-text index. The targets are a median below 20 ms, and an index of 63,000 packages within 20 s.

using namespace quarrynet;
using namespace quarrynet::services;

namespace {

/// An index of the machine's package lists in a temporary folder.
class Machine
{
public:
    Machine()
    {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "quarrynet-bench-").string() + std::string(6, 'X');
        folder_ = ::mkdtemp(pattern.data());
        build();
        index_.emplace(folder_);
        readWords();
    }
    ~Machine()
    {
        index_.reset();
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;

    void build()
    {
        const Outcome<IndexCounts> counts = buildIndex(folder_, {}, [](const std::string&) {});
        if (counts)
            counts_ = *counts;
    }

    IndexPool& index() { return *index_; }
    const IndexCounts& counts() const { return counts_; }

    /// Returns a typical search word: the first part of a program name, from all over the alphabet.
    const std::string& word(std::size_t number) const { return words_[number % words_.size()]; }

private:
    void readWords()
    {
        words_.emplace_back("library");
        Outcome<IndexPool::Lease> lease = index_->borrow();
        if (!lease)
            return;
        Outcome<Statement> names = (*lease)->prepare("SELECT name FROM program WHERE id % 157 = 0");
        while (names && names->step() == Statement::Step::Row) {
            const std::string_view name = names->text(0);
            words_.emplace_back(name.substr(0, name.find_first_of("-0123456789.+")));
        }
    }

    std::string folder_;
    IndexCounts counts_;
    std::optional<IndexPool> index_;
    std::vector<std::string> words_;
};

Machine& machine()
{
    static Machine made;
    return made;
}

/// Sends one query per iteration, each for another word, and reports the median, 95th percentile and maximum time.
template <class Ask>
void askAll(benchmark::State& state, Ask ask)
{
    if (machine().counts().programs == 0) {
        state.SkipWithError("this machine has no package lists");
        return;
    }
    std::vector<double> milliseconds;
    std::size_t number = 0;
    for ([[maybe_unused]] auto _ : state) {
        const auto begin = std::chrono::steady_clock::now();
        if (!ask(machine().word(number++))) {
            state.SkipWithError("the search failed");
            return;
        }
        milliseconds.push_back(
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count());
    }
    std::sort(milliseconds.begin(), milliseconds.end());
    state.counters["median_ms"] = milliseconds[milliseconds.size() / 2];
    state.counters["p95_ms"] = milliseconds[milliseconds.size() * 95 / 100];
    state.counters["worst_ms"] = milliseconds.back();
    state.counters["rows"] = static_cast<double>(machine().counts().programs);
}

/// Measures the same query without an index: `sql` has ?1 for the LIKE pattern.
void scanAll(benchmark::State& state, const std::string& sql)
{
    askAll(state, [&sql](const std::string& word) {
        Outcome<IndexPool::Lease> lease = machine().index().borrow();
        if (!lease)
            return false;
        Outcome<Statement> rows = (*lease)->prepare(sql);
        if (!rows)
            return false;
        rows->bind(1, "%" + word + "%");
        Statement::Step step = rows->step();
        while (step == Statement::Step::Row)
            step = rows->step();
        return step == Statement::Step::Finished;
    });
}

void indexPackages(benchmark::State& state)
{
    machine();
    for ([[maybe_unused]] auto _ : state)
        machine().build();
    state.counters["packages"] = static_cast<double>(machine().counts().packages);
}

void searchWeb(benchmark::State& state)
{
    WebService service(machine().index(), "http://127.80.0.1");
    askAll(state, [&service](const std::string& word) { return static_cast<bool>(service.search(word, 0)); });
}

void scanWeb(benchmark::State& state)
{
    scanAll(state, "SELECT address, title FROM web_page WHERE title LIKE ?1 OR description LIKE ?1 ORDER BY title");
}

void searchDownloads(benchmark::State& state)
{
    DownloadService service(machine().index());
    askAll(state, [&service](const std::string& word) { return static_cast<bool>(service.search(word, 0)); });
}

void scanDownloads(benchmark::State& state)
{
    scanAll(state, "SELECT name, description FROM program WHERE name LIKE ?1 OR description LIKE ?1 ORDER BY name");
}

void searchFiles(benchmark::State& state)
{
    FileService service(machine().index());
    askAll(state, [&service](const std::string& word) { return static_cast<bool>(service.search(word, 0)); });
}

void scanFiles(benchmark::State& state)
{
    scanAll(state, "SELECT name FROM file_entry WHERE name LIKE ?1 ORDER BY id");
}

} // namespace

BENCHMARK(indexPackages)->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(searchWeb)->Iterations(400)->Unit(benchmark::kMillisecond);
BENCHMARK(scanWeb)->Iterations(100)->Unit(benchmark::kMillisecond);
BENCHMARK(searchDownloads)->Iterations(400)->Unit(benchmark::kMillisecond);
BENCHMARK(scanDownloads)->Iterations(100)->Unit(benchmark::kMillisecond);
BENCHMARK(searchFiles)->Iterations(400)->Unit(benchmark::kMillisecond);
BENCHMARK(scanFiles)->Iterations(100)->Unit(benchmark::kMillisecond);
