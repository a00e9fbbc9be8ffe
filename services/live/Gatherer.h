#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "config/services_file.h"
#include "ground/Outcome.h"
#include "live/fetch.h"
#include "live/searx_instances.h"

namespace quarrynet::services {

/// A result of a search over several sources.
struct GatheredRow
{
    std::string address;
    std::string title; ///< UTF-8, with kMatchBegin and kMatchEnd if it comes from the index
    std::string text;  ///< likewise
    std::string thumbnail;
    bool fromIndex = false;
};

/// One page of a search over several sources.
struct Gathered
{
    std::int64_t total = 0; ///< at least so many results are there
    std::vector<GatheredRow> rows;
    std::vector<SourceFault> faults; ///< why sources contributed nothing now; to be shown before the rows
};

/// Returns the total to announce for a page after the first `start` results. Faults count only on a page without
/// results, which the window would otherwise report as a search that found nothing.
std::int64_t totalOf(const Gathered& gathered, std::int64_t start);

/// How the faults of sources are shown: besides the rows of a page, or in their places.
enum class FaultRows
{
    Besides,
    TakePlaces
};

/// Searches the sources of one service: gathers their pages ahead as far as needed, merges their rows in turn, in the
/// configured order, and drops rows whose address came before. What was merged is kept for some minutes, so that pages
/// neither repeat nor lose results, and that paging back asks nobody. Several threads may use it.
class Gatherer
{
public:
    struct Limits
    {
        std::chrono::steady_clock::duration keep = std::chrono::minutes(5);
        std::size_t searches = 64;            ///< kept
        std::size_t bytes = 32 * 1024 * 1024; ///< of all rows kept
        std::size_t bytesPerSearch = 4 * 1024 * 1024;
        int pages = 50;          ///< of a source per search, whatever it still offers
        int pagesAtOnce = 4;     ///< asked of a source at the same time
        int pagesPerAnswer = 10; ///< asked of a source for one response
        /// A search waits this long in any case; longer only while fewer than `patient` others do.
        std::chrono::steady_clock::duration patience = std::chrono::seconds(2);
        int patient = 2;
    };

    /// One page of the index: the rows after the first `start`, and the number of all.
    struct IndexPage
    {
        std::int64_t total = 0;
        std::vector<GatheredRow> rows;
    };
    using AskIndex = std::function<Outcome<IndexPage>(std::int64_t start)>;
    using Now = std::function<std::chrono::steady_clock::time_point()>;

    Gatherer(FetchPool& pool, InstanceTable& table, ServiceSettings settings, SearxCategory category)
        : Gatherer(pool, table, std::move(settings), category, Limits(), &std::chrono::steady_clock::now)
    {}
    /// `now` measures how long results are kept.
    Gatherer(FetchPool& pool, InstanceTable& table, ServiceSettings settings, SearxCategory category, Limits limits,
             Now now);
    ~Gatherer();
    Gatherer(const Gatherer&) = delete;
    Gatherer& operator=(const Gatherer&) = delete;

    /// Returns `count` results after the first `start`, fewer when there are no more. `typed` may be any bytes; without
    /// a character other than blanks nobody is asked. With FaultRows::TakePlaces, `start` is a multiple of `count`, and
    /// a page has at most `count` results and faults: a first page without room for both keeps its faults for as long
    /// as its results, and every further page begins so many results earlier. Those pages have faults only if there is
    /// room.
    Gathered gather(std::string_view typed, std::int64_t start, std::int64_t count, const AskIndex& index,
                    FaultRows faultRows = FaultRows::Besides);

private:
    struct Stream;
    struct Search;
    class Reservation;
    class Round;

    std::shared_ptr<Search> searchFor(const std::string& words);
    bool reserve(Search& search);
    void free(Search& search);
    static std::int64_t countKnown(const Search& search, bool more);
    void account(const std::string& words, const std::shared_ptr<Search>& search);

    FetchPool& pool_;
    InstanceTable& table_;
    ServiceSettings settings_;
    SearxCategory category_;
    Limits limits_;
    Now now_;
    std::atomic<int> patient_ = 0;  ///< searches that wait for longer than the usual patience
    std::condition_variable freed_; ///< a search is no longer reserved
    std::mutex mutex_;              ///< guards what follows
    std::map<std::string, std::shared_ptr<Search>> searches_;
    std::list<std::string> order_; ///< keys of searches_, oldest first
    std::size_t bytes_ = 0;
};

} // namespace quarrynet::services
