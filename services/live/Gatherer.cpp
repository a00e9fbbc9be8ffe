#include "live/Gatherer.h"

#include <algorithm>
#include <deque>
#include <optional>
#include <utility>

#include "ground/CurrentTask.h"
#include "ground/utf8.h"
#include "text/markup.h"

namespace quarrynet::services {

namespace {

using Clock = std::chrono::steady_clock;

/// Longer words are cut: no instance accepts them.
constexpr std::size_t kMaxWords = 1024;

/// How often a thread that waits for another asks whether it is still wanted.
constexpr std::chrono::milliseconds kReservePause{50};

/// The index is asked for at most this many pages for one response.
constexpr int kIndexPagesPerAnswer = 100;

/// Estimated memory of an entry of a set of hashes.
constexpr std::size_t kSetEntry = 64;

std::size_t sizeOf(const GatheredRow& row)
{
    return sizeof(GatheredRow) + row.address.size() * 2 + row.title.size() + row.text.size() + row.thumbnail.size();
}

void keepFirst(std::vector<SourceFault>& faults, std::size_t most)
{
    if (faults.size() > most)
        faults.erase(faults.begin() + static_cast<std::ptrdiff_t>(most), faults.end());
}

} // namespace

std::int64_t totalOf(const Gathered& gathered, std::int64_t start)
{
    if (!gathered.rows.empty())
        return gathered.total;
    return std::max(gathered.total, start + static_cast<std::int64_t>(gathered.faults.size()));
}

/// What one source has given for a search so far.
struct Gatherer::Stream
{
    const SourceSetting* setting = nullptr;
    std::deque<GatheredRow> waiting; ///< not merged yet
    std::set<std::size_t> seen;      ///< hashes of the addresses, to notice a source that repeats itself
    int nextPage = 1;
    std::size_t pageRows = 0;    ///< rows of the last page; 0: unknown
    std::int64_t indexTaken = 0; ///< rows that the index gave
    std::int64_t indexTotal = 0;
    bool ended = false;
};

struct Gatherer::Search
{
    // Used by one search at a time, the one that has set `busy`.
    std::vector<Stream> streams;
    std::size_t turn = 0; ///< the stream whose row comes next
    std::vector<GatheredRow> merged;
    std::set<std::string> addresses;
    std::size_t mergedBytes = 0;
    std::int64_t announced = 0; ///< largest total so far
    /// The faults that have places on the first page; nothing before that page is full.
    std::optional<std::vector<SourceFault>> leading;

    bool busy = false;       ///< guarded by the Gatherer's mutex
    Clock::time_point begun; ///< guarded by the Gatherer's mutex
    std::size_t counted = 0; ///< likewise: bytes of this search in Gatherer::bytes_

    std::size_t bytes() const
    {
        std::size_t sum = mergedBytes;
        for (const Stream& stream : streams) {
            sum += stream.seen.size() * kSetEntry;
            for (const GatheredRow& row : stream.waiting)
                sum += sizeOf(row);
        }
        return sum;
    }
};

/// Frees a reserved search at its end.
class Gatherer::Reservation
{
public:
    Reservation(Gatherer& gatherer, Search& search) : gatherer_(gatherer), search_(search) {}
    ~Reservation() { gatherer_.free(search_); }
    Reservation(const Reservation&) = delete;
    Reservation& operator=(const Reservation&) = delete;

private:
    Gatherer& gatherer_;
    Search& search_;
};

/// The questions that one response asks.
class Gatherer::Round
{
public:
    Round(Gatherer& gatherer, Search& search, const std::string& words, std::size_t wanted, const AskIndex& index,
          Clock::time_point begin)
        : gatherer_(gatherer)
        , search_(search)
        , words_(words)
        , wanted_(wanted)
        , index_(index)
        , begin_(begin)
        , end_(begin + gatherer.settings_.wait)
        , fetches_(gatherer.pool_)
        , states_(search.streams.size())
    {}
    ~Round()
    {
        if (patient_)
            --gatherer_.patient_;
    }
    Round(const Round&) = delete;
    Round& operator=(const Round&) = delete;

    std::vector<SourceFault> run();

private:
    /// A stream's state in this round.
    struct State
    {
        int pending = 0; ///< pages that were asked and did not answer yet
        int asked = 0;
        std::map<int, SearxAnswer> pages; ///< answers that wait for an earlier page
        std::optional<SourceFault> fault;
        bool busy = false; ///< askInstances() may answer at once; the pump must not enter itself
    };

    bool canAsk(std::size_t i) const
    {
        const Stream& stream = search_.streams[i];
        const int most = stream.setting->isIndex() ? kIndexPagesPerAnswer : gatherer_.limits_.pagesPerAnswer;
        return !stream.ended && !states_[i].fault && states_[i].asked < most;
    }
    bool mayWait();
    void pump();
    void askIndex(std::size_t i);
    void askSearx(std::size_t i, std::size_t needed);
    void take(std::size_t i, int page, Expected<SearxPage, SourceFault> result);
    static void append(Stream& stream, int page, SearxAnswer answer);
    bool merge();

    Gatherer& gatherer_;
    Search& search_;
    const std::string& words_;
    std::size_t wanted_;
    const AskIndex& index_;
    Clock::time_point begin_;
    Clock::time_point end_;
    bool patient_ = false;
    bool late_ = false;
    Fetches fetches_;
    std::vector<State> states_;
};

/// Returns whether the round may go on. A source that is slow must not occupy all threads of a service.
bool Gatherer::Round::mayWait()
{
    const auto waited = Clock::now() - begin_;
    if (waited < gatherer_.limits_.patience || patient_)
        return true;
    if (++gatherer_.patient_ <= gatherer_.limits_.patient) {
        patient_ = true;
        return true;
    }
    --gatherer_.patient_;
    late_ = true;
    return false;
}

void Gatherer::Round::askIndex(std::size_t i)
{
    Stream& stream = search_.streams[i];
    ++states_[i].asked;
    Outcome<IndexPage> page = index_(stream.indexTaken);
    if (!page) {
        states_[i].fault = SourceFault{SourceFault::Kind::Index, "", page.error().message};
        return;
    }
    stream.indexTotal = page->total;
    stream.indexTaken += static_cast<std::int64_t>(page->rows.size());
    stream.ended = page->rows.empty() || stream.indexTaken >= page->total;
    for (GatheredRow& row : page->rows) {
        row.fromIndex = true;
        stream.waiting.push_back(std::move(row));
    }
}

void Gatherer::Round::askSearx(std::size_t i, std::size_t needed)
{
    Stream& stream = search_.streams[i];
    State& state = states_[i];
    const auto pages = stream.pageRows == 0 ? 1 : (needed + stream.pageRows - 1) / stream.pageRows;
    const int ahead =
        std::min({static_cast<int>(std::min<std::size_t>(pages, 100)), gatherer_.limits_.pagesAtOnce,
                  gatherer_.limits_.pagesPerAnswer - state.asked, gatherer_.limits_.pages - stream.nextPage + 1});
    state.busy = true;
    for (int k = 0; k < ahead && !state.fault; ++k) {
        const int number = stream.nextPage + k;
        ++state.asked;
        ++state.pending;
        askInstances(
            fetches_, gatherer_.table_, stream.setting->instances,
            {words_, number, gatherer_.category_, gatherer_.settings_.language, gatherer_.settings_.safeSearch}, end_,
            [this, i, number](Expected<SearxPage, SourceFault> result) {
                take(i, number, std::move(result));
                pump();
            });
    }
    state.busy = false;
}

void Gatherer::Round::append(Stream& stream, int page, SearxAnswer answer)
{
    stream.nextPage = page + 1;
    stream.pageRows = answer.rows.size();
    bool fresh = false;
    for (SearxRow& row : answer.rows) {
        fresh = stream.seen.insert(std::hash<std::string>()(row.address)).second || fresh;
        stream.waiting.push_back(
            {std::move(row.address), std::move(row.title), std::move(row.text), std::move(row.thumbnail), false});
    }
    // A page of rows that all came before would be followed by others like it, without an end.
    stream.ended = !fresh;
}

void Gatherer::Round::take(std::size_t i, int page, Expected<SearxPage, SourceFault> result)
{
    Stream& stream = search_.streams[i];
    State& state = states_[i];
    --state.pending;
    // After the last page, engines have nothing left to answer. Such a page counts as an empty one, so that it ends the
    // stream only after the pages before it, which may arrive later.
    const bool past = !result && result.error().kind == SourceFault::Kind::Engines && page > 1;
    if (!result && !past) {
        if (!state.fault)
            state.fault = result.error();
        return;
    }
    state.pages.emplace(page, past ? SearxAnswer{} : std::move(result->answer));
    for (auto next = state.pages.find(stream.nextPage); next != state.pages.end() && !stream.ended;
         next = state.pages.find(stream.nextPage)) {
        append(stream, next->first, std::move(next->second));
        state.pages.erase(next);
    }
    if (stream.nextPage > gatherer_.limits_.pages)
        stream.ended = true;
}

/// Asks each source for what is missing.
void Gatherer::Round::pump()
{
    std::size_t giving = 0;
    for (std::size_t i = 0; i < states_.size(); ++i)
        giving += canAsk(i) || !search_.streams[i].waiting.empty() ? 1 : 0;
    if (giving == 0 || search_.merged.size() >= wanted_ || Clock::now() >= end_)
        return;
    const std::size_t share = (wanted_ - search_.merged.size() + giving - 1) / giving;
    for (std::size_t i = 0; i < states_.size(); ++i) {
        Stream& stream = search_.streams[i];
        if (states_[i].busy || states_[i].pending > 0)
            continue;
        if (stream.setting->isIndex()) {
            while (canAsk(i) && stream.waiting.size() < share)
                askIndex(i);
        } else if (canAsk(i) && stream.waiting.size() < share) {
            askSearx(i, share - stream.waiting.size());
        }
    }
}

/// Merges rows in turn. Returns whether further rows could make the page fuller.
bool Gatherer::Round::merge()
{
    std::size_t dry = 0;
    while (search_.merged.size() < wanted_ && dry < states_.size()) {
        Stream& stream = search_.streams[search_.turn];
        if (stream.waiting.empty()) {
            // A source that could give more must be asked before the others take its turn.
            if (canAsk(search_.turn) && !late_ && Clock::now() < end_)
                return true;
            ++dry;
        } else {
            GatheredRow row = std::move(stream.waiting.front());
            stream.waiting.pop_front();
            dry = 0;
            if (!search_.addresses.insert(row.address).second)
                continue;
            search_.mergedBytes += sizeOf(row);
            search_.merged.push_back(std::move(row));
        }
        search_.turn = (search_.turn + 1) % states_.size();
    }
    return false;
}

std::vector<SourceFault> Gatherer::Round::run()
{
    while (merge()) {
        pump();
        const bool ran = fetches_.run([this] { return mayWait(); });
        if (CurrentTask::abandoned())
            return {};
        for (std::size_t i = 0; i < states_.size(); ++i) {
            if (!ran && states_[i].pending > 0 && !states_[i].fault)
                states_[i].fault =
                    SourceFault{SourceFault::Kind::TimeOut, search_.streams[i].setting->instances.front(), ""};
        }
        late_ = late_ || !ran;
    }
    std::vector<SourceFault> faults;
    for (State& state : states_) {
        if (state.fault)
            faults.push_back(std::move(*state.fault));
    }
    return faults;
}

Gatherer::Gatherer(FetchPool& pool, InstanceTable& table, ServiceSettings settings, SearxCategory category,
                   Limits limits, Now now)
    : pool_(pool)
    , table_(table)
    , settings_(std::move(settings))
    , category_(category)
    , limits_(limits)
    , now_(std::move(now))
{}

Gatherer::~Gatherer() = default;

/// Returns the kept search for these words, or a new one.
std::shared_ptr<Gatherer::Search> Gatherer::searchFor(const std::string& words)
{
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto now = now_();
    while (!order_.empty()) {
        const auto oldest = searches_.find(order_.front());
        const bool fits = searches_.size() <= limits_.searches && bytes_ <= limits_.bytes;
        if (fits && now - oldest->second->begun < limits_.keep)
            break;
        bytes_ -= oldest->second->counted;
        searches_.erase(oldest);
        order_.pop_front();
    }
    std::shared_ptr<Search>& search = searches_[words];
    if (search == nullptr) {
        search = std::make_shared<Search>();
        search->begun = now;
        search->streams.resize(settings_.sources.size());
        for (std::size_t i = 0; i < settings_.sources.size(); ++i)
            search->streams[i].setting = &settings_.sources[i];
        order_.push_back(words);
    }
    return search;
}

/// Waits until no other thread uses the search, and reserves it. Returns false when that takes longer than the usual
/// patience, or the task of this thread is abandoned.
bool Gatherer::reserve(Search& search)
{
    const auto end = Clock::now() + limits_.patience;
    std::unique_lock<std::mutex> lock(mutex_);
    while (!freed_.wait_for(lock, kReservePause, [&search] { return !search.busy; })) {
        if (CurrentTask::abandoned() || Clock::now() > end)
            return false;
    }
    search.busy = true;
    return true;
}

void Gatherer::free(Search& search)
{
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        search.busy = false;
    }
    freed_.notify_all();
}

/// Counts the bytes of a search that is still kept. The search must be reserved.
void Gatherer::account(const std::string& words, const std::shared_ptr<Search>& search)
{
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto kept = searches_.find(words);
    if (kept == searches_.end() || kept->second != search)
        return;
    const std::size_t bytes = search->bytes();
    bytes_ += bytes - search->counted;
    search->counted = bytes;
}

/// Returns how many results are known. Rows that wait may be doubles; they are compared once there are no `more`.
std::int64_t Gatherer::countKnown(const Search& search, bool more)
{
    auto known = static_cast<std::int64_t>(search.merged.size());
    std::set<std::string_view> waiting;
    for (const Stream& stream : search.streams) {
        if (stream.setting->isIndex())
            known += std::max<std::int64_t>(0, stream.indexTotal - stream.indexTaken);
        if (more) {
            known += static_cast<std::int64_t>(stream.waiting.size());
            continue;
        }
        for (const GatheredRow& row : stream.waiting)
            known += search.addresses.count(row.address) == 0 && waiting.insert(row.address).second ? 1 : 0;
    }
    return known;
}

Gathered Gatherer::gather(std::string_view typed, std::int64_t start, std::int64_t count, const AskIndex& index,
                          FaultRows faultRows)
{
    const auto begin = Clock::now();
    const std::string words(clipUtf8(collapseBlanks(toUtf8(typed)), kMaxWords));
    Gathered gathered;
    if (words.empty())
        return gathered;
    const std::shared_ptr<Search> search = searchFor(words);
    if (!reserve(*search)) {
        const auto slow = std::find_if(settings_.sources.begin(), settings_.sources.end(),
                                       [](const SourceSetting& source) { return !source.isIndex(); });
        if (!CurrentTask::abandoned() && slow != settings_.sources.end())
            gathered.faults.push_back({SourceFault::Kind::TimeOut, slow->instances.front(), ""});
        return gathered;
    }
    const Reservation reservation(*this, *search);
    constexpr std::int64_t kFar = 1'000'000;
    const auto first = static_cast<std::size_t>(std::clamp<std::int64_t>(start, 0, kFar));
    const std::size_t last = first + static_cast<std::size_t>(count);
    {
        Round round(*this, *search, words, last, index, begin);
        gathered.faults = round.run();
    }
    if (search->bytes() > limits_.bytesPerSearch) {
        for (Stream& stream : search->streams)
            stream.ended = true;
    }
    account(words, search);

    const auto page = static_cast<std::size_t>(count);
    const std::size_t merged = search->merged.size();
    const bool full = merged >= page || merged + gathered.faults.size() > page;
    if (faultRows == FaultRows::TakePlaces && full && !search->leading && !CurrentTask::abandoned()) {
        search->leading = gathered.faults;
        keepFirst(*search->leading, page - 1);
    }
    const std::size_t lead = search->leading ? search->leading->size() : 0;
    for (std::size_t i = first - std::min(first, lead); i < std::min(last - lead, merged); ++i)
        gathered.rows.push_back(search->merged[i]);
    if (lead > 0 && first == 0)
        gathered.faults = *search->leading;
    else if (faultRows == FaultRows::TakePlaces)
        keepFirst(gathered.faults, page - gathered.rows.size());

    const bool more = std::any_of(search->streams.begin(), search->streams.end(),
                                  [](const Stream& stream) { return !stream.setting->isIndex() && !stream.ended; });
    std::int64_t known = countKnown(*search, more);
    // While there is more, one further page is announced by its first result, so that the program's slider can go on.
    // The program takes a total that is a multiple of its page for a number of pages, but never one that exceeds a
    // multiple by 1.
    const bool reached = search->merged.size() >= last;
    if (more && reached)
        known = known > start + count ? (known - 1) / count * count + 1 : start + count + 1;
    const auto shifted = known + static_cast<std::int64_t>(lead);
    if ((shifted - 1) / count > (known - 1) / count)
        known = (shifted - 1) / count * count + 1; // the faults move the last results to a further page
    search->announced = more ? std::max(search->announced, known) : known;
    gathered.total = search->announced;
    return gathered;
}

} // namespace quarrynet::services
