#include "common/SearchHistory.h"

#include <algorithm>
#include <optional>

#include "ground/utf8.h"

namespace quarrynet {

namespace {

constexpr std::array<std::string_view, 3> kKindNames = {"keywords", "address", "file"};
constexpr std::string_view kBehindScheme = "://";
constexpr std::string_view kLongestKindName = "keywords";
constexpr std::size_t kFrameOfALine = kLongestKindName.size() + 2; // the kind's name, a tab and the line end
static_assert(kKindNames.size() * SearchHistory::kMaxEntries * (SearchHistory::kMaxEntryBytes + kFrameOfALine) <
              SearchHistory::kMaxFileBytes);

bool isShownAsItIs(char32_t character)
{
    const bool control = character < 0x20 || (character >= 0x7F && character <= 0x9F);
    const bool lineEnd = character == 0x2028 || character == 0x2029;
    return !control && !lineEnd && !turnsDirection(character);
}

/// Returns whether the text that follows an address's scheme may carry a secret. People also put "/" into a password,
/// where it ends the host, so a port together with a later "@" is suspicious, too. Before the host, browsers ignore
/// slashes and blanks that do not belong there.
bool carriesSecret(std::string_view behindScheme)
{
    behindScheme.remove_prefix(std::min(behindScheme.find_first_not_of(" /\\"), behindScheme.size()));
    const std::string_view host = behindScheme.substr(0, behindScheme.find_first_of("/?#\\"));
    return host.find('@') != std::string_view::npos ||
           (host.find(':') != std::string_view::npos && behindScheme.find('@') != std::string_view::npos);
}

/// Returns an address without its scheme, if it has one.
std::string_view withoutScheme(std::string_view address)
{
    const std::size_t end = address.find(kBehindScheme);
    const bool has =
        end != std::string_view::npos && address.substr(0, end).find_first_of(":/?#\\@.") == std::string_view::npos;
    return has ? address.substr(end + kBehindScheme.size()) : address;
}

/// Returns the complete line at the beginning of `text`, and removes it there with its line end.
std::optional<std::string_view> takeLine(std::string_view& text)
{
    const std::size_t end = text.find('\n');
    if (end == std::string_view::npos)
        return std::nullopt;
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(end + 1);
    return line;
}

std::string_view withoutBlanks(std::string_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

} // namespace

SearchHistory SearchHistory::fromText(std::string_view text)
{
    SearchHistory history;
    while (const std::optional<std::string_view> line = takeLine(text)) {
        const std::size_t tab = line->find('\t');
        if (tab == std::string_view::npos)
            continue;
        const auto* const name = std::find(kKindNames.begin(), kKindNames.end(), line->substr(0, tab));
        if (name == kKindNames.end())
            continue;
        const auto kind = static_cast<HistoryKind>(name - kKindNames.begin());
        const std::string_view entry = line->substr(tab + 1);
        std::vector<std::string>& list = history.listOf(kind);
        if (list.size() < kMaxEntries && mayBeKept(kind, entry) &&
            std::find(list.begin(), list.end(), entry) == list.end())
            list.emplace_back(entry);
    }
    return history;
}

std::string SearchHistory::text() const
{
    std::string text;
    for (std::size_t kind = 0; kind < kKinds; ++kind) {
        for (const std::string& entry : lists_[kind])
            text.append(kKindNames[kind]).append("\t").append(entry).append("\n");
    }
    return text;
}

void SearchHistory::add(HistoryKind kind, std::string_view typed)
{
    const std::string_view entry = withoutBlanks(typed);
    if (!mayBeKept(kind, entry))
        return;
    std::string newest(entry); // before the removal, because `typed` may be an entry
    remove(kind, newest);
    std::vector<std::string>& list = listOf(kind);
    if (list.size() == kMaxEntries)
        list.pop_back();
    list.insert(list.begin(), std::move(newest));
}

void SearchHistory::remove(HistoryKind kind, std::string_view entry)
{
    std::vector<std::string>& list = listOf(kind);
    list.erase(std::remove(list.begin(), list.end(), entry), list.end());
}

bool mayBeKept(HistoryKind kind, std::string_view text)
{
    if (text.empty() || text.size() > SearchHistory::kMaxEntryBytes)
        return false;
    for (std::string_view rest = text; !rest.empty();) {
        const std::optional<Utf8Character> character = utf8Character(rest);
        if (!character || !isShownAsItIs(character->number))
            return false;
        rest.remove_prefix(character->length);
    }
    if (kind == HistoryKind::Addresses && carriesSecret(withoutScheme(text)))
        return false;
    // People also paste addresses into the other fields.
    for (std::size_t at = text.find(kBehindScheme); at != std::string_view::npos;
         at = text.find(kBehindScheme, at + kBehindScheme.size())) {
        if (carriesSecret(text.substr(at + kBehindScheme.size())))
            return false;
    }
    return true;
}

} // namespace quarrynet
