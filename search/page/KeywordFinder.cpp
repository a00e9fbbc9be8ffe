#include "search/page/KeywordFinder.h"

#include <algorithm>
#include <numeric>

namespace quarrynet {

KeywordFinder::KeywordFinder() : steps_(256), parents_{kRoot}, bytes_{'\0'}, depths_{0} {}

std::size_t KeywordFinder::place(std::uint64_t key) const
{
    const std::size_t mask = steps_.size() - 1;
    std::size_t at = static_cast<std::size_t>((key * 0x9E3779B97F4A7C15U) >> 20) & mask;
    while (steps_[at].from != kFree && steps_[at].from != key)
        at = (at + 1) & mask;
    return at;
}

KeywordFinder::State KeywordFinder::step(State state, char byte) const
{
    const Step& found = steps_[place(key(state, byte))];
    return found.from == kFree ? kRoot : found.to;
}

void KeywordFinder::insert(std::uint64_t key, State to)
{
    if (2 * (used_ + 1) > steps_.size()) {
        std::vector<Step> old(2 * steps_.size());
        old.swap(steps_);
        for (const Step& step : old) {
            if (step.from != kFree)
                steps_[place(step.from)] = step;
        }
    }
    steps_[place(key)] = {key, to};
    ++used_;
}

void KeywordFinder::add(std::string_view keyword)
{
    State state = kRoot;
    for (std::size_t i = 0; i < keyword.size(); ++i) {
        State to = step(state, keyword[i]);
        if (to == kRoot) {
            to = static_cast<State>(parents_.size());
            insert(key(state, keyword[i]), to);
            parents_.push_back(state);
            bytes_.push_back(keyword[i]);
            depths_.push_back(static_cast<std::uint32_t>(i + 1));
        }
        state = to;
    }
    ends_.push_back(state);
}

KeywordFinder::State KeywordFinder::next(State state, char byte) const
{
    while (true) {
        if (const State to = step(state, byte); to != kRoot || state == kRoot)
            return to;
        state = fallbacks_[state];
    }
}

void KeywordFinder::link()
{
    byDepth_.resize(parents_.size());
    std::iota(byDepth_.begin(), byDepth_.end(), kRoot);
    std::stable_sort(byDepth_.begin(), byDepth_.end(), [this](State a, State b) { return depths_[a] < depths_[b]; });
    fallbacks_.assign(parents_.size(), kRoot);
    reached_.assign(parents_.size(), false);
    for (const State state : byDepth_) {
        if (depths_[state] > 1)
            fallbacks_[state] = next(fallbacks_[parents_[state]], bytes_[state]);
    }
}

void KeywordFinder::read(std::string_view piece)
{
    if (byDepth_.empty())
        link();
    for (const char byte : piece) {
        state_ = next(state_, byte);
        reached_[state_] = true;
    }
}

std::vector<bool> KeywordFinder::found()
{
    read({});
    // Reaching a state also reaches every suffix of its bytes. One pass, from the longest to the shortest, marks them
    // all.
    for (auto state = byDepth_.rbegin(); state != byDepth_.rend(); ++state) {
        if (reached_[*state])
            reached_[fallbacks_[*state]] = true;
    }
    std::vector<bool> answers;
    answers.reserve(ends_.size());
    for (const State end : ends_)
        answers.push_back(end == kRoot || reached_[end]);
    return answers;
}

} // namespace quarrynet
