#include "searches/listed_files.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "ground/ascii.h"
#include "index/name_blocks.h"

namespace quarrynet::services {

namespace {

// A few trigrams leave few blocks; a long word need not look up all of its own.
constexpr std::size_t kMaxTrigrams = 16;

using Blocks = std::vector<std::uint32_t>;

/// Looks up which blocks may contain a text.
class BlockFinder
{
public:
    explicit BlockFinder(Statement& lists) : lists_(lists) {}

    /// Restricts `blocks` to those that may contain `text`. Does nothing when `text` has no trigram. `blocks` without a
    /// value are all blocks.
    Outcome<Done> restrict(std::optional<Blocks>& blocks, std::string_view text);

private:
    Statement& lists_;
};

Outcome<Done> BlockFinder::restrict(std::optional<Blocks>& blocks, std::string_view text)
{
    std::set<std::uint32_t> slots;
    forEachTrigram(text, [&slots](std::uint32_t slot) {
        if (slots.size() < kMaxTrigrams)
            slots.insert(slot);
    });
    std::vector<std::string> lists;
    for (const std::uint32_t slot : slots) {
        lists_.reset();
        lists_.bind(1, std::int64_t{slot});
        const Statement::Step step = lists_.step();
        if (step == Statement::Step::Failed)
            return lists_.failure();
        lists.emplace_back(step == Statement::Step::Row ? lists_.text(0) : std::string_view());
    }
    // The shortest list leaves the least to compare.
    std::sort(lists.begin(), lists.end(),
              [](const std::string& a, const std::string& b) { return a.size() < b.size(); });
    for (const std::string& list : lists) {
        if (blocks && blocks->empty())
            return Done{};
        Blocks have = readBlockList(list);
        if (!blocks) {
            blocks = std::move(have);
            continue;
        }
        Blocks both;
        std::set_intersection(blocks->begin(), blocks->end(), have.begin(), have.end(), std::back_inserter(both));
        blocks = std::move(both);
    }
    return Done{};
}

/// Returns the blocks that may have names of the group, or nothing for all blocks.
Outcome<std::optional<Blocks>> blocksOf(Database& index, const NameQuery& names, NameGroup group)
{
    Outcome<Statement> lists = index.prepare("SELECT blocks FROM listed_trigram WHERE id = ?1");
    if (!lists)
        return lists.error();
    BlockFinder finder(*lists);
    std::optional<Blocks> blocks;
    const std::string& first = names.words.front();
    std::string beginning(1, kNameBorder);
    beginning += first;
    if (group == NameGroup::Exact) {
        Blocks all;
        for (const char next : {kNameBorder, '_', '.'}) {
            std::optional<Blocks> some;
            const Outcome<Done> found = finder.restrict(some, beginning + next);
            if (!found)
                return found.error();
            Blocks both;
            std::set_union(all.begin(), all.end(), some->begin(), some->end(), std::back_inserter(both));
            all = std::move(both);
        }
        blocks = std::move(all);
    } else {
        const Outcome<Done> found = finder.restrict(blocks, group == NameGroup::Beginning ? beginning : first);
        if (!found)
            return found.error();
    }
    for (std::size_t i = 1; i < names.words.size(); ++i) {
        const Outcome<Done> found = finder.restrict(blocks, names.words[i]);
        if (!found)
            return found.error();
    }
    return blocks;
}

/// Returns the group of a name (in lower case) that contains all words, or nothing for another name.
std::optional<NameGroup> groupOf(std::string_view name, const std::vector<std::string>& words)
{
    for (const std::string& word : words) {
        if (name.find(word) == std::string_view::npos)
            return std::nullopt;
    }
    const std::string& first = words.front();
    if (name.substr(0, first.size()) != first)
        return NameGroup::Rest;
    const bool isExact = name.size() == first.size() || name[first.size()] == '_' || name[first.size()] == '.';
    return isExact ? NameGroup::Exact : NameGroup::Beginning;
}

/// Reads the files of one search from blocks.
class BlockReader
{
public:
    BlockReader(const NameQuery& names, NameGroup group, std::int64_t skip, std::size_t most, Statement& hit,
                std::vector<FileHit>& hits)
        : names_(names), group_(group), skip_(skip), most_(most), hit_(hit), hits_(hits)
    {}

    /// Reads a row of listed_block. Returns false when the hits are complete.
    Outcome<bool> read(const Statement& row);

    std::int64_t passed() const { return passed_; }

private:
    Outcome<Done> take(std::string_view name, const EncodedPlaces& places);

    const NameQuery& names_;
    NameGroup group_;
    std::int64_t skip_;
    std::size_t most_;
    Statement& hit_;
    std::vector<FileHit>& hits_;
    std::int64_t passed_ = 0;
};

Outcome<Done> BlockReader::take(std::string_view name, const EncodedPlaces& places)
{
    const auto count = static_cast<std::int64_t>(places.count);
    const std::int64_t skipped = std::clamp<std::int64_t>(skip_ - passed_, 0, count);
    passed_ += skipped;
    for (const ListedPlace& place : readPlaces(places, static_cast<std::uint64_t>(skipped), most_ - hits_.size())) {
        hit_.reset();
        hit_.bind(1, std::int64_t{place.folder});
        hit_.bind(2, std::int64_t{place.package});
        const Statement::Step step = hit_.step();
        if (step == Statement::Step::Failed)
            return hit_.failure();
        ++passed_;
        if (step != Statement::Step::Row)
            continue;
        FileHit hit;
        hit.name.append("/").append(hit_.text(0)).append(name);
        const std::string_view file = hit_.text(2);
        hit.address = addressBelow(hit_.text(1), file);
        hit.parent = addressBelow(hit_.text(1), file.substr(0, file.rfind('/') + 1));
        hit.size = hit_.number(3);
        hits_.push_back(std::move(hit));
    }
    return Done{};
}

Outcome<bool> BlockReader::read(const Statement& row)
{
    const std::string_view block = row.text(0);
    const std::string lower = toLowerAscii(block);
    // Only names with the first word are looked at, and the places of other names are skipped when one is found.
    const std::string& first = names_.words.front();
    std::string_view places;
    std::size_t placed = 0; // the border before the name whose places come next
    bool hasPlaces = false;
    for (std::size_t at = lower.find(first); at != std::string::npos;) {
        const std::size_t begin = lower.rfind(kNameBorder, at);
        const std::size_t end = lower.find(kNameBorder, at);
        if (begin == std::string::npos || end == std::string::npos)
            break;
        const std::string_view name = std::string_view(lower).substr(begin + 1, end - begin - 1);
        at = lower.find(first, end);
        if (groupOf(name, names_.words) != group_)
            continue;
        if (!hasPlaces)
            places = row.text(1);
        hasPlaces = true;
        for (; placed < begin; placed = lower.find(kNameBorder, placed + 1)) {
            if (!takePlaces(places))
                return Failure{"the index is damaged"};
        }
        const std::optional<EncodedPlaces> own = takePlaces(places);
        if (!own)
            return Failure{"the index is damaged"};
        placed = end;
        const Outcome<Done> taken = take(block.substr(begin + 1, name.size()), *own);
        if (!taken)
            return taken.error();
        if (hits_.size() >= most_)
            return false;
    }
    return true;
}

} // namespace

Outcome<std::int64_t> findListedFiles(Database& index, const NameQuery& names, NameGroup group, std::int64_t skip,
                                      std::size_t most, std::vector<FileHit>& hits)
{
    const Outcome<std::optional<Blocks>> found = blocksOf(index, names, group);
    if (!found)
        return found.error();
    Outcome<Statement> hit =
        index.prepare("SELECT folder.path, mirror.base, program.file, program.size FROM listed_folder AS folder, "
                      "listed_package AS package JOIN program ON program.id = package.program JOIN mirror ON mirror.id "
                      "= program.mirror WHERE folder.id = ?1 AND package.id = ?2");
    if (!hit)
        return hit.error();
    BlockReader reader(names, group, skip, most, *hit, hits);
    const std::optional<Blocks>& blocks = *found;
    Outcome<Statement> rows = index.prepare(blocks ? "SELECT names, places FROM listed_block WHERE id = ?1"
                                                   : "SELECT names, places FROM listed_block ORDER BY id");
    if (!rows)
        return rows.error();
    for (std::size_t i = 0; !blocks || i < blocks->size(); ++i) {
        if (blocks) {
            rows->reset();
            rows->bind(1, std::int64_t{(*blocks)[i]});
        }
        const Statement::Step step = rows->step();
        if (step == Statement::Step::Failed)
            return rows->failure();
        if (step != Statement::Step::Row) {
            if (!blocks)
                break;
            continue;
        }
        const Outcome<bool> more = reader.read(*rows);
        if (!more)
            return more.error();
        if (!*more)
            break;
    }
    return reader.passed();
}

} // namespace quarrynet::services
