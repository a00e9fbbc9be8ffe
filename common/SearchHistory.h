#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quarrynet {

/// The kinds of input fields. Each kind has a list of its own.
enum class HistoryKind : std::uint8_t
{
    Keywords,
    Addresses,
    FileNames,
};

/// What was searched for earlier, newest first. Texts are UTF-8.
class SearchHistory
{
public:
    static constexpr std::size_t kMaxEntries = 100;     ///< of a kind
    static constexpr std::size_t kMaxEntryBytes = 2000; ///< longer texts are not kept
    /// Bytes of the longest file that is read. The longest one that text() makes is shorter.
    static constexpr std::size_t kMaxFileBytes = std::size_t{1} << 20;

    /// Reads what text() has made. `text` may be anything: lines of an unknown kind, entries that mayBeKept() rejects,
    /// repeated and surplus entries, and a last line without a line end, which may have been cut, are left out.
    static SearchHistory fromText(std::string_view text);

    /// Returns a line for each entry: the name of its kind, a tab, the entry.
    std::string text() const;

    /// Returns the entries of a kind, newest first.
    const std::vector<std::string>& entries(HistoryKind kind) const { return listOf(kind); }

    /// Makes `typed`, without the blanks around it, the newest entry of its kind. The oldest one gives way when there
    /// are too many. Does nothing if mayBeKept() rejects it.
    void add(HistoryKind kind, std::string_view typed);

    void remove(HistoryKind kind, std::string_view entry);

private:
    static constexpr std::size_t kKinds = 3;

    std::vector<std::string>& listOf(HistoryKind kind) { return lists_[static_cast<std::size_t>(kind)]; }
    const std::vector<std::string>& listOf(HistoryKind kind) const { return lists_[static_cast<std::size_t>(kind)]; }

    std::array<std::vector<std::string>, kKinds> lists_;
};

/// Returns whether a text may become an entry. Returns false for an empty or a long text, for one that is not UTF-8 or
/// contains control characters or characters that change the text direction, because it could not be shown as it is,
/// and for one with an address that may carry a password or an access token ("user:password@host", "token@host").
bool mayBeKept(HistoryKind kind, std::string_view text);

} // namespace quarrynet
