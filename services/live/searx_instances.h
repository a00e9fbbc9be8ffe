#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "config/services_file.h"
#include "ground/Expected.h"
#include "live/fetch.h"
#include "live/searx_answer.h"
#include "live/source_fault.h"

namespace quarrynet::services {

/// What is known of the instances that the services asked. All searches share it, so that an instance that limits their
/// rate is left alone by all of them. Several threads may use it.
class InstanceTable
{
public:
    using Now = std::function<std::chrono::steady_clock::time_point()>;

    explicit InstanceTable(Now now = &std::chrono::steady_clock::now) : now_(std::move(now)) {}

    /// Returns the addresses in the order in which to ask them: the one that answered last comes first.
    std::vector<std::string> order(const std::vector<std::string>& instances);
    /// Returns how long the instance must not be asked; zero if it may be.
    std::chrono::seconds restOf(const std::string& instance);

    void answered(const std::string& instance);
    void mustRest(const std::string& instance, std::chrono::seconds time);

private:
    struct Entry
    {
        std::chrono::steady_clock::time_point restsUntil;
        std::uint64_t answered = 0; ///< the larger the later; 0: it never did
    };

    Now now_;
    std::mutex mutex_;
    std::uint64_t answers_ = 0;
    std::map<std::string, Entry> entries_; ///< only instances of the configuration, so they are few
};

/// One page of an instance's answer.
struct SearxPage
{
    SearxAnswer answer;
    std::string instance; ///< the one that gave it
    std::chrono::milliseconds time{0};
};

/// What a search asks of a source.
struct SearxQuery
{
    std::string words; ///< UTF-8
    int page = 1;      ///< counted from 1
    SearxCategory category = SearxCategory::General;
    std::string language;
    SafeSearch safeSearch = SafeSearch::Off;
};

/// Returns the address of an instance's answer to a query.
std::string searxAddress(const std::string& instance, const SearxQuery& query);

/// Returns the page in an answer of `instance`, or why there is none.
Expected<SearxPage, SourceFault> searxPage(const std::string& instance, const Fetched& fetched, SearxCategory category);

/// Asks the instances in turn, until one answers or `end` comes. Fetches::run() calls `done` with the page, or with the
/// fault of the instance asked last. An instance that must rest is not asked.
void askInstances(Fetches& fetches, InstanceTable& table, const std::vector<std::string>& instances,
                  const SearxQuery& query, std::chrono::steady_clock::time_point end,
                  std::function<void(Expected<SearxPage, SourceFault>)> done);

} // namespace quarrynet::services
