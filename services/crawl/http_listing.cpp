#include "crawl/http_listing.h"

#include <algorithm>
#include <array>
#include <gumbo.h>
#include <unordered_map>
#include <utility>

#include "ground/ascii.h"
#include "ground/decimal.h"
#include "ground/percent_coding.h"
#include "text/HtmlTree.h"
#include "text/html_walk.h"
#include "text/markup.h"

namespace quarrynet::services {

namespace {

// Listings are longer than other pages, and flatter.
constexpr HtmlLimits kLimits{kMaxListing, 64, 64, std::size_t{512} * 1024 * 1024, 10'000};
constexpr std::size_t kMaxTextAfterLink = 200;
constexpr std::size_t kMaxTitle = 200;

/// Removes the next word of `text` with the blanks before it, and returns it.
std::string_view takeWord(std::string_view& text)
{
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    const std::string_view word = text.substr(0, text.find(' '));
    text.remove_prefix(word.size());
    return word;
}

/// "10:00" or "10:00:59".
bool isTimeOfDay(std::string_view word)
{
    if (word.size() != 5 && word.size() != 8)
        return false;
    for (std::size_t i = 0; i < word.size(); ++i) {
        if (i % 3 == 2 ? word[i] != ':' : !isAsciiDigit(word[i]))
            return false;
    }
    return true;
}

bool isTitle(std::string_view title)
{
    constexpr std::array<std::string_view, 3> kBeginnings{"index of ", "directory listing", "directory: "};
    return std::any_of(kBeginnings.begin(), kBeginnings.end(),
                       [title](std::string_view beginning) { return startsWithIgnoringCase(title, beginning); });
}

/// Collects the entries while the tree is walked.
class ListingReader
{
public:
    explicit ListingReader(std::string_view address) : address_(address) {}

    /// As walk() calls them.
    bool enter(const GumboNode& node);
    void leave(const GumboNode& node);

    bool isListing() const { return isTitle(collapseBlanks(title_)) || isTitle(collapseBlanks(heading_)); }
    HttpListing finish();

private:
    void takeLink(const GumboElement& element);
    void takeText(std::string_view text);

    std::string_view address_;
    std::string title_;
    std::string heading_;
    std::string* text_ = nullptr; ///< where text goes, or null
    HttpListing listing_;
    std::vector<std::string> after_;                       ///< the text after each entry's link
    std::unordered_map<std::string, std::size_t> numbers_; ///< of the entries, by name
};

bool ListingReader::enter(const GumboNode& node)
{
    if (!isElement(node)) {
        if (node.type == GUMBO_NODE_TEXT || node.type == GUMBO_NODE_WHITESPACE || node.type == GUMBO_NODE_CDATA)
            takeText(node.v.text.text);
        return false;
    }
    switch (node.v.element.tag) {
    case GUMBO_TAG_A:
        takeLink(node.v.element);
        return false; // the name in it may be shortened
    case GUMBO_TAG_TITLE:
        text_ = &title_;
        return true;
    case GUMBO_TAG_H1:
        text_ = &heading_;
        return true;
    case GUMBO_TAG_SCRIPT:
    case GUMBO_TAG_STYLE:
    case GUMBO_TAG_TEMPLATE:
        return false;
    default:
        takeText(" "); // the cells of a table are words of their own
        return true;
    }
}

void ListingReader::leave(const GumboNode& node)
{
    if (node.v.element.tag == GUMBO_TAG_TITLE || node.v.element.tag == GUMBO_TAG_H1)
        text_ = nullptr;
}

void ListingReader::takeText(std::string_view text)
{
    if (text_ == nullptr)
        return;
    const std::size_t most = text_ == &title_ || text_ == &heading_ ? kMaxTitle : kMaxTextAfterLink;
    text_->append(text.substr(0, most - std::min(most, text_->size())));
}

void ListingReader::takeLink(const GumboElement& element)
{
    text_ = nullptr;
    const GumboAttribute* const link = gumbo_get_attribute(&element.attributes, "href");
    std::optional<std::string> name = link == nullptr ? std::nullopt : nameOfLink(link->value, address_);
    if (!name || listing_.entries.size() > kMaxListedEntries)
        return;
    ListedEntry entry;
    if (name->back() == '/') {
        entry.kind = ListedEntry::Kind::Directory;
        name->pop_back();
    }
    entry.name = *name;
    const auto [known, isNew] = numbers_.try_emplace(*name, listing_.entries.size());
    if (isNew) {
        listing_.entries.push_back(std::move(entry));
        after_.emplace_back();
        // The texts move when there are more of them, but the last one only before the next link.
        text_ = &after_.back();
    } else if (known->second + 1 == after_.size()) {
        text_ = &after_.back(); // an icon was the first link
    }
}

HttpListing ListingReader::finish()
{
    for (std::size_t i = 0; i < after_.size(); ++i) {
        ListedEntry& entry = listing_.entries[i];
        if (entry.kind == ListedEntry::Kind::File)
            entry.size = sizeInText(after_[i]);
        const std::string after = collapseBlanks(after_[i]);
        listing_.identity.append(entry.name).append("\n").append(after).append("\n");
    }
    return std::move(listing_);
}

} // namespace

std::optional<std::string> nameOfLink(std::string_view link, std::string_view address)
{
    while (!link.empty() && isBlankOrControl(link.front()))
        link.remove_prefix(1);
    while (!link.empty() && isBlankOrControl(link.back()))
        link.remove_suffix(1);
    link = link.substr(0, link.find('#'));
    if (link.find('?') != std::string_view::npos || link.find('\\') != std::string_view::npos)
        return std::nullopt;
    const std::size_t scheme = address.find("://");
    const std::size_t root = address.find('/', std::min(scheme, address.size() - 3) + 3);
    if (scheme == std::string_view::npos || root == std::string_view::npos)
        return std::nullopt;
    // What is before the path must be that of the address.
    bool isWhole = false;
    if (startsWithIgnoringCase(link, address.substr(0, root)) && link.substr(root, 1) == "/") {
        link.remove_prefix(root);
        isWhole = true;
    } else if (link.starts_with("//")) {
        const std::string_view site = address.substr(scheme + 1, root - scheme - 1);
        if (!startsWithIgnoringCase(link, site) || link.substr(site.size(), 1) != "/")
            return std::nullopt;
        link.remove_prefix(site.size());
        isWhole = true;
    }
    if (isWhole || link.starts_with("/")) {
        // Servers differ in what they escape.
        const std::string_view folder = address.substr(root);
        std::size_t end = 0;
        for (auto slashes = std::count(folder.begin(), folder.end(), '/'); slashes > 0; --slashes)
            end = std::min(link.find('/', end), link.size() - 1) + 1;
        if (decodePercent(link.substr(0, end)) != decodePercent(folder))
            return std::nullopt;
        link.remove_prefix(end);
    } else {
        // A colon before the first slash ends a scheme (RFC 3986, section 4.2).
        if (link.substr(0, link.find('/')).find(':') != std::string_view::npos)
            return std::nullopt;
        while (link.starts_with("./"))
            link.remove_prefix(2);
    }
    const bool isDirectory = link.ends_with("/");
    if (isDirectory)
        link.remove_suffix(1);
    if (link.size() > 3 * kMaxListedName || link.find('/') != std::string_view::npos)
        return std::nullopt;
    std::string name = decodePercent(link);
    if (!canBeListedName(name)) // nor may it be an escaped slash
        return std::nullopt;
    return isDirectory ? name + "/" : name;
}

std::optional<std::int64_t> sizeInText(std::string_view text)
{
    constexpr std::string_view kUnits = "KMGT";
    constexpr double kMaxSize = 1e15;
    const std::string line = collapseBlanks(text);
    std::string_view rest = line;
    std::string_view word = takeWord(rest);
    while (!word.empty() && !isTimeOfDay(word))
        word = takeWord(rest);
    word = takeWord(rest);
    if (word.empty() || !isAsciiDigit(word.front()))
        return std::nullopt;
    const std::optional<DecimalNumber> number = decimalNumber(word);
    if (!number)
        return std::nullopt;
    std::string_view unit = word.substr(number->length);
    if (unit.empty())
        unit = takeWord(rest).substr(0, 3);
    double size = number->value;
    if (!unit.empty()) {
        const char letter = isAsciiLower(unit.front()) ? static_cast<char>(unit.front() - 'a' + 'A') : unit.front();
        const std::size_t power = kUnits.find(letter);
        const std::string_view tail = unit.substr(1);
        if (power != std::string_view::npos && (tail.empty() || tail == "B" || tail == "iB")) {
            for (std::size_t i = 0; i <= power; ++i)
                size *= 1024;
        } else if (word.size() > number->length) {
            return std::nullopt;
        }
    }
    if (size > kMaxSize)
        return std::nullopt;
    return static_cast<std::int64_t>(size);
}

std::optional<HttpListing> readHttpListing(std::string_view page, std::string_view address)
{
    if (page.size() > kMaxListing)
        return std::nullopt;
    const HtmlTree tree(page, kLimits);
    if (tree.root() == nullptr)
        return std::nullopt;
    ListingReader reader(address);
    walk(
        tree.root(), [&reader](const GumboNode& node) { return reader.enter(node); },
        [&reader](const GumboNode& node) { reader.leave(node); });
    if (!reader.isListing())
        return std::nullopt;
    return reader.finish();
}

} // namespace quarrynet::services
