#include "sources/ListedFiles.h"

#include <algorithm>
#include <cstring>
#include <tuple>
#include <utility>

#include "ground/ascii.h"
#include "ground/utf8.h"

namespace quarrynet::services {

namespace {

constexpr std::size_t kChunk = std::size_t{1024} * 1024;
constexpr std::size_t kFolderBytes = 128; ///< memory for a folder besides its text
constexpr unsigned kKeyBytes = 6;         ///< of a name, in its key

bool isPlain(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return isAscii(c); });
}

/// Compares texts by their bytes; letters A to Z count as a to z.
int compareIgnoringCase(std::string_view a, std::string_view b)
{
    for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
        const auto left = static_cast<unsigned char>(toLowerAscii(a[i]));
        const auto right = static_cast<unsigned char>(toLowerAscii(b[i]));
        if (left != right)
            return left < right ? -1 : 1;
    }
    return a.size() == b.size() ? 0 : (a.size() < b.size() ? -1 : 1);
}

std::uint64_t keyOf(std::string_view name)
{
    std::uint64_t key = name.size();
    for (unsigned i = 0; i < kKeyBytes; ++i)
        key = (key << 8U) | (i < name.size() ? static_cast<unsigned char>(toLowerAscii(name[i])) : 0U);
    return key;
}

} // namespace

std::string_view ListedFiles::nameOf(const Entry& entry)
{
    return {entry.name, static_cast<std::size_t>(entry.key >> (8U * kKeyBytes))};
}

bool ListedFiles::isBefore(const Entry& a, const Entry& b)
{
    if (a.key != b.key)
        return a.key < b.key;
    if (const int order = compareIgnoringCase(nameOf(a), nameOf(b)); order != 0)
        return order < 0;
    if (const int order = nameOf(a).compare(nameOf(b)); order != 0)
        return order < 0;
    return std::tie(a.place.folder, a.place.package) < std::tie(b.place.folder, b.place.package);
}

std::uint32_t ListedFiles::addPackage(std::int64_t program)
{
    packages_.push_back(program);
    return static_cast<std::uint32_t>(packages_.size() - 1);
}

const char* ListedFiles::keep(std::string_view name)
{
    if (chunks_.empty() || chunkUsed_ + name.size() > kChunk) {
        chunks_.push_back(std::make_unique<char[]>(kChunk));
        chunkUsed_ = 0;
        bytes_ += kChunk;
    }
    char* const place = chunks_.back().get() + chunkUsed_;
    std::memcpy(place, name.data(), name.size());
    chunkUsed_ += name.size();
    return place;
}

std::uint32_t ListedFiles::folderNumber(std::string_view path)
{
    if (lastFolder_ != nullptr && *lastFolder_ == path)
        return lastNumber_;
    const auto [known, isNew] =
        folderNumbers_.try_emplace(std::string(path), static_cast<std::uint32_t>(folderNumbers_.size()));
    if (isNew)
        bytes_ += path.size() + kFolderBytes;
    lastFolder_ = &known->first;
    lastNumber_ = known->second;
    return lastNumber_;
}

bool ListedFiles::add(std::string_view path, std::uint32_t package)
{
    std::string decoded;
    if (!isPlain(path)) {
        decoded = toUtf8(path);
        path = decoded;
    }
    if (entries_.size() >= limits_.files || bytes_ + sizeof(Entry) > limits_.bytes)
        return false;
    const std::size_t slash = path.rfind('/');
    const std::size_t split = slash == std::string_view::npos ? 0 : slash + 1;
    const std::string_view name = path.substr(split);
    if (name.empty())
        return true;
    bytes_ += sizeof(Entry);
    entries_.push_back({keyOf(name), keep(name), {folderNumber(path.substr(0, split)), package}});
    return true;
}

/// Numbers the folders anew, short ones first, and writes them.
Outcome<Done> ListedFiles::writeFolders(IndexWriter& writer)
{
    std::vector<const std::pair<const std::string, std::uint32_t>*> folders;
    folders.reserve(folderNumbers_.size());
    for (const auto& folder : folderNumbers_)
        folders.push_back(&folder);
    std::sort(folders.begin(), folders.end(), [](const auto* a, const auto* b) {
        return std::make_tuple(a->first.size(), std::string_view(a->first)) <
               std::make_tuple(b->first.size(), std::string_view(b->first));
    });
    std::vector<std::uint32_t> numbers(folders.size());
    for (std::size_t i = 0; i < folders.size(); ++i) {
        numbers[folders[i]->second] = static_cast<std::uint32_t>(i);
        Outcome<Done> added = writer.addListedFolder(static_cast<std::uint32_t>(i), folders[i]->first);
        if (!added)
            return added;
    }
    for (Entry& entry : entries_)
        entry.place.folder = numbers[entry.place.folder];
    lastFolder_ = nullptr;
    folderNumbers_.clear();
    return Done{};
}

Outcome<Done> ListedFiles::writeBlocks(IndexWriter& writer) const
{
    TrigramLists trigrams;
    std::uint32_t block = 0;
    std::string names;
    std::string places;
    std::size_t count = 0;
    const auto writeBlock = [&] {
        trigrams.add(++block, names);
        Outcome<Done> added = writer.addListedBlock(block, names, places);
        names.clear();
        places.clear();
        count = 0;
        return added;
    };
    std::vector<ListedPlace> ofName;
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        // The same file can be in several lists.
        if (ofName.empty() || ofName.back() != entries_[i].place)
            ofName.push_back(entries_[i].place);
        if (i + 1 < entries_.size() && nameOf(entries_[i + 1]) == nameOf(entries_[i]))
            continue;
        if (names.empty())
            names.push_back(kNameBorder);
        names += nameOf(entries_[i]);
        names.push_back(kNameBorder);
        appendPlaces(places, ofName);
        ofName.clear();
        if (++count == kBlockNames || i + 1 == entries_.size()) {
            Outcome<Done> written = writeBlock();
            if (!written)
                return written;
        }
    }
    return trigrams.forEach(
        [&writer](std::uint32_t slot, std::string_view list) { return writer.addListedTrigram(slot, list); });
}

Outcome<Done> ListedFiles::write(IndexWriter& writer)
{
    for (std::size_t i = 0; i < packages_.size(); ++i) {
        Outcome<Done> added = writer.addListedPackage(static_cast<std::uint32_t>(i), packages_[i]);
        if (!added)
            return added;
    }
    Outcome<Done> written = writeFolders(writer);
    if (!written)
        return written;
    std::sort(entries_.begin(), entries_.end(), isBefore);
    written = writeBlocks(writer);
    entries_ = {};
    chunks_.clear();
    return written;
}

} // namespace quarrynet::services
