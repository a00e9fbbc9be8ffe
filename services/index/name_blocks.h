#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ground/Outcome.h"

/// The names of the files in packages, of which a machine's lists have millions. A row for each name, and a full-text
/// entry for each row, would take gigabytes and minutes. So the names are stored in blocks, in the order in which
/// searches show them, and for each trigram (three bytes of a name) the index has the numbers of the blocks that
/// contain it. A search intersects the lists of its trigrams and reads the few blocks that remain.
namespace quarrynet::services {

/// The number of different names in a block. Larger blocks make the lists shorter, and more of a block is read in vain.
inline constexpr std::size_t kBlockNames = 32;

/// Stands before, between and after the names of a block, so that trigrams with it find where names begin and end.
inline constexpr char kNameBorder = '\n';

/// Trigrams are counted by slots, whose number bounds the memory for their lists. Two trigrams may share a slot, which
/// only makes a search read further blocks.
inline constexpr std::size_t kTrigramSlots = std::size_t{1} << 20U;

/// Passes the slot of each trigram of `text` to `take`, with repetitions. Letters A to Z count as a to z.
void forEachTrigram(std::string_view text, const std::function<void(std::uint32_t slot)>& take);

/// Appends a number in groups of seven bits, the lowest first; all but the last have the high bit.
void appendVarint(std::string& bytes, std::uint64_t number);

/// Removes a number from the front of `bytes`. Returns nothing, and leaves `bytes` in an unspecified state, when they
/// do not begin with a complete number of at most 63 bits.
std::optional<std::uint64_t> takeVarint(std::string_view& bytes);

/// Collects which blocks contain which trigram.
class TrigramLists
{
public:
    TrigramLists();

    /// Adds the trigrams of a block's text. `block` must be greater than that of the call before, and at least 1.
    void add(std::uint32_t block, std::string_view text);

    /// Passes each slot that has blocks, and its list for readBlockList(), to `take` until that fails.
    Outcome<Done> forEach(const std::function<Outcome<Done>(std::uint32_t slot, std::string_view list)>& take) const;

private:
    std::vector<std::string> lists_;       ///< by slot: the differences between successive numbers
    std::vector<std::uint32_t> lastBlock_; ///< by slot: the last number in the list, or 0
};

/// Returns the numbers in a list, in ascending order. Ends at the first byte that no list has.
std::vector<std::uint32_t> readBlockList(std::string_view list);

/// A place of a name: its folder and the package that contains the file, as numbers of their tables.
struct ListedPlace
{
    std::uint32_t folder = 0;
    std::uint32_t package = 0;

    bool operator==(const ListedPlace&) const = default;
};

/// Appends the places of one name, in ascending order of their folders.
void appendPlaces(std::string& bytes, const std::vector<ListedPlace>& places);

/// The places of one name, still encoded.
struct EncodedPlaces
{
    std::uint64_t count = 0;
    std::string_view bytes;
};

/// Removes the places of one name from the front of `bytes`. Returns nothing when `bytes` do not begin with them.
std::optional<EncodedPlaces> takePlaces(std::string_view& bytes);

/// Returns `most` places after the first `skip`, or fewer when there are no more.
std::vector<ListedPlace> readPlaces(const EncodedPlaces& places, std::uint64_t skip, std::size_t most);

} // namespace quarrynet::services
