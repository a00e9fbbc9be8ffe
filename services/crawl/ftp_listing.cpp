#include "crawl/ftp_listing.h"

#include <algorithm>
#include <array>
#include <functional>

#include "ground/ascii.h"
#include "ground/decimal.h"

namespace quarrynet::services {

namespace {

std::vector<ListedEntry> readLines(std::string_view listing,
                                   const std::function<std::optional<ListedEntry>(std::string_view)>& readLine)
{
    std::vector<ListedEntry> entries;
    while (!listing.empty() && entries.size() <= kMaxListedEntries) {
        const std::size_t end = std::min(listing.find('\n'), listing.size());
        std::string_view line = listing.substr(0, end);
        listing.remove_prefix(std::min(end + 1, listing.size()));
        if (!line.empty() && line.back() == '\r')
            line.remove_suffix(1);
        if (line.size() > kMaxListingLine)
            continue;
        std::optional<ListedEntry> entry = readLine(line);
        if (entry && canBeListedName(entry->name))
            entries.push_back(std::move(*entry));
    }
    return entries;
}

/// Parses one fact "name=value" of an MLSD line. Returns false when the line is not about an entry of the directory.
bool takeFact(ListedEntry& entry, std::string_view fact)
{
    const std::size_t equals = std::min(fact.find('='), fact.size());
    const std::string_view name = fact.substr(0, equals);
    const std::string_view value = fact.substr(std::min(equals + 1, fact.size()));
    if (equalsIgnoringCase(name, "type")) {
        if (equalsIgnoringCase(value, "cdir") || equalsIgnoringCase(value, "pdir"))
            return false;
        constexpr std::string_view kLink = "OS.unix=s"; // "slink:target" or "symlink"
        if (equalsIgnoringCase(value, "dir")) {
            entry.kind = ListedEntry::Kind::Directory;
        } else if (startsWithIgnoringCase(value, kLink)) {
            entry.kind = ListedEntry::Kind::Link;
            entry.target = std::string(value.substr(std::min(value.find(':'), value.size() - 1) + 1));
        }
    } else if (equalsIgnoringCase(name, "size")) {
        entry.size = wholeNumberAs<std::int64_t>(value);
    } else if (equalsIgnoringCase(name, "unique") && value.size() <= kMaxUniqueFact) {
        entry.unique = std::string(value);
    }
    return true;
}

std::optional<ListedEntry> readMlsdLine(std::string_view line)
{
    // The facts end at the first blank; everything after it is the name, including blanks.
    const std::size_t blank = line.find(' ');
    if (blank == std::string_view::npos)
        return std::nullopt;
    ListedEntry entry;
    entry.name = std::string(line.substr(blank + 1));
    std::string_view facts = line.substr(0, blank);
    while (!facts.empty()) {
        const std::size_t end = std::min(facts.find(';'), facts.size());
        if (!takeFact(entry, facts.substr(0, end)))
            return std::nullopt;
        facts.remove_prefix(std::min(end + 1, facts.size()));
    }
    if (entry.kind != ListedEntry::Kind::File)
        entry.size.reset();
    return entry;
}

/// Removes the next word of `rest` with the blanks before it, and returns the word.
std::string_view takeWord(std::string_view& rest)
{
    rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
    const std::string_view word = rest.substr(0, rest.find(' '));
    rest.remove_prefix(word.size());
    return word;
}

bool isMonth(std::string_view word)
{
    constexpr std::array<std::string_view, 12> kMonths{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                       "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    return std::any_of(kMonths.begin(), kMonths.end(),
                       [word](std::string_view month) { return equalsIgnoringCase(word, month); });
}

/// "hh:mm" or a year.
bool isTimeOrYear(std::string_view word)
{
    return word.size() >= 4 && word.size() <= 5 &&
           std::all_of(word.begin(), word.end(), [](char c) { return isAsciiDigit(c) || c == ':'; });
}

/// Parses "drwxr-xr-x 2 owner group 4096 Jan 31 12:00 name". The number of words before the size differs between
/// servers, so this looks for the date.
std::optional<ListedEntry> readUnixLine(std::string_view line)
{
    ListedEntry entry;
    switch (line.empty() ? ' ' : line.front()) {
    case 'd':
        entry.kind = ListedEntry::Kind::Directory;
        break;
    case 'l':
        entry.kind = ListedEntry::Kind::Link;
        break;
    case '-':
        break;
    default:
        return std::nullopt; // devices, pipes, "total 12"
    }
    std::string_view rest = line;
    std::string_view before = takeWord(rest);
    constexpr int kMaxWords = 8;
    for (int i = 0; i < kMaxWords; ++i) {
        const std::string_view word = takeWord(rest);
        const std::optional<std::int64_t> size = wholeNumberAs<std::int64_t>(before);
        before = word;
        if (!size || !isMonth(word))
            continue;
        std::string_view date = rest;
        const std::optional<std::int64_t> day = wholeNumberAs<std::int64_t>(takeWord(date));
        if (!day || *day < 1 || *day > 31 || !isTimeOrYear(takeWord(date)) || date.size() < 2)
            continue;
        date.remove_prefix(1); // further blanks are part of the name
        if (entry.kind == ListedEntry::Kind::File)
            entry.size = size;
        if (entry.kind == ListedEntry::Kind::Link) {
            const std::size_t arrow = std::min(date.find(" -> "), date.size());
            entry.target = std::string(date.substr(std::min(arrow + 4, date.size())));
            date = date.substr(0, arrow);
        }
        entry.name = std::string(date);
        return entry;
    }
    return std::nullopt;
}

/// Parses "01-31-20  12:00PM       <DIR>          name".
std::optional<ListedEntry> readWindowsLine(std::string_view line)
{
    std::string_view rest = line;
    takeWord(rest);
    const std::string_view time = takeWord(rest);
    const std::string_view size = takeWord(rest);
    if (time.find(':') == std::string_view::npos || rest.size() < 2)
        return std::nullopt;
    ListedEntry entry;
    if (size == "<DIR>") {
        entry.kind = ListedEntry::Kind::Directory;
        rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
    } else {
        entry.size = wholeNumberAs<std::int64_t>(size);
        if (!entry.size)
            return std::nullopt;
        rest.remove_prefix(1);
    }
    entry.name = std::string(rest);
    return entry;
}

} // namespace

std::vector<ListedEntry> readMlsd(std::string_view listing)
{
    return readLines(listing, readMlsdLine);
}

std::vector<ListedEntry> readList(std::string_view listing)
{
    return readLines(listing, [](std::string_view line) {
        return !line.empty() && isAsciiDigit(line.front()) ? readWindowsLine(line) : readUnixLine(line);
    });
}

} // namespace quarrynet::services
