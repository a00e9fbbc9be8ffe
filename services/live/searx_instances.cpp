#include "live/searx_instances.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

#include "ground/percent_coding.h"

namespace quarrynet::services {

namespace {

using Clock = std::chrono::steady_clock;
using Kind = SourceFault::Kind;

/// How long an instance rests that asks to wait and does not say how long.
constexpr std::chrono::seconds kUsualRest{60};

/// An instance is not given up earlier while others could still be asked.
constexpr std::chrono::seconds kLeastTime{2};

SourceFault faultOf(const std::string& instance, const Fetched& fetched)
{
    switch (fetched.fault) {
    case Fetched::Fault::TimeOut:
        return {Kind::TimeOut, instance, ""};
    case Fetched::Fault::Tls:
        return {Kind::Tls, instance, fetched.detail};
    case Fetched::Fault::HostNotFound:
        return {Kind::NotFound, instance, ""};
    case Fetched::Fault::NoConnection:
        return {Kind::NoConnection, instance, ""};
    case Fetched::Fault::Redirect:
        return {Kind::Moved, instance, fetched.detail.substr(0, fetched.detail.find_first_of("?#"))};
    case Fetched::Fault::TooLarge:
        return {Kind::Nonsense, instance,
                "the answer is larger than " + std::to_string(kMaxSearxAnswer / 1024 / 1024) + " MB"};
    default:
        return {Kind::Nonsense, instance, fetched.detail};
    }
}

/// One question to several instances.
struct Round
{
    Fetches& fetches;
    InstanceTable& table;
    std::vector<std::string> instances;
    SearxQuery query;
    Clock::time_point end;
    std::function<void(Expected<SearxPage, SourceFault>)> done;
    std::size_t next = 0;
    SourceFault fault{};
};

void askNext(const std::shared_ptr<Round>& round)
{
    if (round->next == round->instances.size() || (round->next > 0 && Clock::now() >= round->end)) {
        round->done(round->fault);
        return;
    }
    const std::string& instance = round->instances[round->next++];
    const auto left = round->end - Clock::now();
    const auto others = static_cast<Clock::rep>(round->instances.size() - round->next + 1);
    const auto share = std::min<Clock::duration>(left, std::max<Clock::duration>(left / others, kLeastTime));
    FetchOrder order;
    order.address = searxAddress(instance, round->query);
    order.maxBytes = kMaxSearxAnswer;
    order.end = Clock::now() + share;
    // Instances that admit only browsers and well-behaved programs look for text/html and a language.
    order.accept = "application/json, text/html;q=0.5";
    order.language = round->query.language == "all" ? "*" : round->query.language;
    round->fetches.start(std::move(order), [round, &instance](const Fetched& fetched) {
        Expected<SearxPage, SourceFault> page = searxPage(instance, fetched, round->query.category);
        if (page) {
            round->table.answered(instance);
            round->done(std::move(page));
            return;
        }
        round->fault = page.error();
        if (round->fault.kind == Kind::RateLimit)
            round->table.mustRest(instance, round->fault.retry);
        askNext(round);
    });
}

} // namespace

std::vector<std::string> InstanceTable::order(const std::vector<std::string>& instances)
{
    const std::lock_guard<std::mutex> lock(mutex_);
    std::vector<std::string> ordered = instances;
    const auto latest =
        std::max_element(ordered.begin(), ordered.end(), [this](const std::string& a, const std::string& b) {
            return entries_[a].answered < entries_[b].answered;
        });
    if (latest != ordered.end())
        std::rotate(ordered.begin(), latest, latest + 1);
    return ordered;
}

std::chrono::seconds InstanceTable::restOf(const std::string& instance)
{
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto found = entries_.find(instance);
    if (found == entries_.end())
        return std::chrono::seconds(0);
    return std::max(std::chrono::seconds(0),
                    std::chrono::ceil<std::chrono::seconds>(found->second.restsUntil - now_()));
}

void InstanceTable::answered(const std::string& instance)
{
    const std::lock_guard<std::mutex> lock(mutex_);
    entries_[instance].answered = ++answers_;
}

void InstanceTable::mustRest(const std::string& instance, std::chrono::seconds time)
{
    const std::lock_guard<std::mutex> lock(mutex_);
    entries_[instance].restsUntil = std::max(entries_[instance].restsUntil, now_() + time);
}

std::string searxAddress(const std::string& instance, const SearxQuery& query)
{
    std::string address = instance + "/search?q=" + encodeComponent(query.words);
    address += query.category == SearxCategory::Images ? "&categories=images" : "&categories=general";
    address += "&pageno=" + std::to_string(query.page);
    address += "&language=" + encodeComponent(query.language);
    address += "&safesearch=" + std::to_string(static_cast<int>(query.safeSearch));
    return address + "&format=json";
}

Expected<SearxPage, SourceFault> searxPage(const std::string& instance, const Fetched& fetched, SearxCategory category)
{
    if (fetched.fault != Fetched::Fault::None)
        return faultOf(instance, fetched);
    if (fetched.status == 429 || (fetched.status != 200 && fetched.retryAfter))
        return SourceFault{Kind::RateLimit, instance, "", fetched.retryAfter.value_or(kUsualRest)};
    if (fetched.status == 403)
        return SourceFault{Kind::NoJson, instance, ""};
    if (fetched.status == 508)
        return SourceFault{Kind::Loop, instance, ""};
    if (fetched.status != 200)
        return SourceFault{Kind::Status, instance, "status " + std::to_string(fetched.status)};
    Outcome<SearxAnswer> answer = readSearxAnswer(fetched.body, category);
    if (!answer)
        return SourceFault{Kind::Nonsense, instance, answer.error().message};
    if (answer->listed == 0 && !answer->silent.empty()) {
        std::string engines;
        for (const auto& [name, reason] : answer->silent)
            engines.append(engines.empty() ? "" : ", ").append(name).append(" (").append(reason).append(")");
        return SourceFault{Kind::Engines, instance, engines};
    }
    return SearxPage{std::move(*answer), instance, fetched.time};
}

void askInstances(Fetches& fetches, InstanceTable& table, const std::vector<std::string>& instances,
                  const SearxQuery& query, std::chrono::steady_clock::time_point end,
                  std::function<void(Expected<SearxPage, SourceFault>)> done)
{
    auto round = std::make_shared<Round>(Round{fetches, table, {}, query, end, std::move(done)});
    std::optional<SourceFault> resting;
    for (const std::string& instance : table.order(instances)) {
        const std::chrono::seconds rest = table.restOf(instance);
        if (rest.count() == 0)
            round->instances.push_back(instance);
        else if (!resting || rest < resting->retry)
            resting = SourceFault{Kind::RateLimit, instance, "", rest};
    }
    if (resting)
        round->fault = *resting;
    askNext(round);
}

} // namespace quarrynet::services
