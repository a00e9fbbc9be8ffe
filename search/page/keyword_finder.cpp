#include "search/page/keyword_finder.h"

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

std::vector<KeywordFinder::State> KeywordFinder::link()
{
    std::vector<State> byDepth(parents_.size());
    std::iota(byDepth.begin(), byDepth.end(), kRoot);
    std::stable_sort(byDepth.begin(), byDepth.end(), [this](State a, State b) { return depths_[a] < depths_[b]; });
    fallbacks_.assign(parents_.size(), kRoot);
    for (const State state : byDepth) {
        if (depths_[state] > 1)
            fallbacks_[state] = next(fallbacks_[parents_[state]], bytes_[state]);
    }
    return byDepth;
}

std::vector<bool> KeywordFinder::foundIn(std::string_view text)
{
    const std::vector<State> byDepth = link();
    std::vector<bool> reached(parents_.size());
    State state = kRoot;
    for (const char byte : text) {
        state = next(state, byte);
        reached[state] = true;
    }
    // Where a state was reached, so was what its bytes end with: passed on once, from the longest to the shortest.
    for (auto it = byDepth.rbegin(); it != byDepth.rend(); ++it) {
        if (reached[*it])
            reached[fallbacks_[*it]] = true;
    }
    std::vector<bool> found;
    found.reserve(ends_.size());
    for (const State end : ends_)
        found.push_back(end == kRoot || reached[end]);
    return found;
}

} // namespace quarrynet
