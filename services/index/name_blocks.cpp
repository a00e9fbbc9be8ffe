#include "index/name_blocks.h"

#include <limits>

#include "ground/ascii.h"

namespace quarrynet::services {

void forEachTrigram(std::string_view text, const std::function<void(std::uint32_t slot)>& take)
{
    std::uint32_t trigram = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        trigram = ((trigram << 8U) | static_cast<unsigned char>(toLowerAscii(text[i]))) & 0xFFFFFFU;
        if (i < 2)
            continue;
        // The upper bits of the product depend on all bits of the trigram (Knuth, multiplicative hashing).
        constexpr std::uint32_t kFactor = 2654435769U;
        take((trigram * kFactor) >> 12U);
    }
}

void appendVarint(std::string& bytes, std::uint64_t number)
{
    for (; number >= 0x80U; number >>= 7U)
        bytes.push_back(static_cast<char>(number | 0x80U));
    bytes.push_back(static_cast<char>(number));
}

std::optional<std::uint64_t> takeVarint(std::string_view& bytes)
{
    constexpr unsigned kMaxBits = 63;
    std::uint64_t number = 0;
    for (unsigned shift = 0; shift < kMaxBits && !bytes.empty(); shift += 7) {
        const auto byte = static_cast<unsigned char>(bytes.front());
        bytes.remove_prefix(1);
        number |= static_cast<std::uint64_t>(byte & 0x7FU) << shift;
        if (byte < 0x80U)
            return number;
    }
    return std::nullopt;
}

TrigramLists::TrigramLists() : lists_(kTrigramSlots), lastBlock_(kTrigramSlots) {}

void TrigramLists::add(std::uint32_t block, std::string_view text)
{
    forEachTrigram(text, [this, block](std::uint32_t slot) {
        if (lastBlock_[slot] == block)
            return;
        appendVarint(lists_[slot], block - lastBlock_[slot]);
        lastBlock_[slot] = block;
    });
}

Outcome<Done>
TrigramLists::forEach(const std::function<Outcome<Done>(std::uint32_t slot, std::string_view list)>& take) const
{
    for (std::size_t slot = 0; slot < lists_.size(); ++slot) {
        if (lists_[slot].empty())
            continue;
        Outcome<Done> taken = take(static_cast<std::uint32_t>(slot), lists_[slot]);
        if (!taken)
            return taken;
    }
    return Done{};
}

std::vector<std::uint32_t> readBlockList(std::string_view list)
{
    std::vector<std::uint32_t> blocks;
    blocks.reserve(list.size()); // most differences take one byte
    std::uint64_t block = 0;
    while (const std::optional<std::uint64_t> step = takeVarint(list)) {
        if (*step == 0 || *step > std::numeric_limits<std::uint32_t>::max() - block)
            break;
        block += *step;
        blocks.push_back(static_cast<std::uint32_t>(block));
    }
    return blocks;
}

void appendPlaces(std::string& bytes, const std::vector<ListedPlace>& places)
{
    std::string encoded;
    std::uint32_t folder = 0;
    for (const ListedPlace& place : places) {
        appendVarint(encoded, place.folder - folder);
        appendVarint(encoded, place.package);
        folder = place.folder;
    }
    appendVarint(bytes, places.size());
    appendVarint(bytes, encoded.size());
    bytes += encoded;
}

std::optional<EncodedPlaces> takePlaces(std::string_view& bytes)
{
    const std::optional<std::uint64_t> count = takeVarint(bytes);
    const std::optional<std::uint64_t> length = count ? takeVarint(bytes) : std::nullopt;
    if (!length || *length > bytes.size())
        return std::nullopt;
    const EncodedPlaces places{*count, bytes.substr(0, *length)};
    bytes.remove_prefix(*length);
    return places;
}

std::vector<ListedPlace> readPlaces(const EncodedPlaces& places, std::uint64_t skip, std::size_t most)
{
    std::vector<ListedPlace> read;
    std::string_view bytes = places.bytes;
    std::uint64_t folder = 0;
    for (std::uint64_t i = 0; i < places.count && read.size() < most; ++i) {
        const std::optional<std::uint64_t> step = takeVarint(bytes);
        const std::optional<std::uint64_t> package = step ? takeVarint(bytes) : std::nullopt;
        if (!package)
            break;
        folder += *step;
        if (i >= skip)
            read.push_back({static_cast<std::uint32_t>(folder), static_cast<std::uint32_t>(*package)});
    }
    return read;
}

} // namespace quarrynet::services
