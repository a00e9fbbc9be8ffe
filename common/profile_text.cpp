#include "common/profile_text.h"

#include <algorithm>

#include "ground/ascii.h"

namespace quarrynet {

namespace {

constexpr std::string_view kLineEndBytes("\r\n\0", 3);

std::string_view trim(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

enum class LineKind
{
    Blank,
    Comment,
    Section,
    Entry,
};

struct Line
{
    LineKind kind;
    std::size_t begin;
    std::size_t end;        // after the line end
    std::string_view name;  // of a section or a key
    std::string_view value; // of an entry
    bool hasValue;
};

/// The lines of a text, one after the other.
class Lines
{
public:
    explicit Lines(std::string_view text) : text_(text) {}

    std::optional<Line> next()
    {
        if (at_ >= text_.size())
            return std::nullopt;
        const std::size_t begin = at_;
        const std::size_t end = std::min(text_.find_first_of("\r\n", begin), text_.size());
        at_ = std::min(end + (text_.substr(end).starts_with("\r\n") ? 2 : 1), text_.size());
        Line line{LineKind::Blank, begin, at_, {}, {}, false};
        const std::string_view content = trim(text_.substr(begin, end - begin));
        if (content.empty())
            return line;
        if (content.front() == ';') {
            line.kind = LineKind::Comment;
        } else if (content.front() == '[') {
            line.kind = LineKind::Section;
            line.name = trim(content.substr(1, content.find(']') - 1));
        } else {
            line.kind = LineKind::Entry;
            const std::size_t sign = content.find('=');
            line.name = trim(content.substr(0, sign));
            line.hasValue = sign != std::string_view::npos;
            if (line.hasValue)
                line.value = trim(content.substr(sign + 1));
        }
        return line;
    }

    /// Moves to the line after the header of `section`. If there is none, moves to the end and returns false.
    bool enter(std::string_view section)
    {
        const std::string_view name = trim(section);
        while (const std::optional<Line> line = next()) {
            if (line->kind == LineKind::Section && equalsIgnoringCase(line->name, name))
                return true;
        }
        return false;
    }

    std::size_t at() const { return at_; }

private:
    std::string_view text_;
    std::size_t at_ = 0;
};

/// Returns the text's first line end, or LF if it has none.
std::string_view lineEndOf(std::string_view text)
{
    const std::size_t end = text.find_first_of("\r\n");
    if (end == std::string_view::npos)
        return "\n";
    return text.substr(end, text.substr(end).starts_with("\r\n") ? 2 : 1);
}

bool endsInLineEnd(std::string_view text)
{
    return text.ends_with('\n') || text.ends_with('\r');
}

std::string entryLine(std::string_view key, std::string_view value, std::string_view lineEnd)
{
    std::string line(key);
    return line.append("=").append(value).append(lineEnd);
}

/// Returns `text` with the bytes from `begin` to `end` replaced by whole lines. Adds a line end to the previous line if
/// it has none.
std::string splice(std::string_view text, std::size_t begin, std::size_t end, std::string_view lines)
{
    std::string out;
    out.reserve(text.size() + lines.size() + 2);
    out.append(text, 0, begin);
    if (!lines.empty() && begin > 0 && !endsInLineEnd(out))
        out.append(lineEndOf(text));
    return out.append(lines).append(text, end);
}

std::string sectionHeader(std::string_view section, std::string_view lineEnd)
{
    return std::string("[").append(trim(section)).append("]").append(lineEnd);
}

} // namespace

std::optional<std::string_view> profileValue(std::string_view text, std::string_view section, std::string_view key)
{
    Lines lines(text);
    if (!lines.enter(section))
        return std::nullopt;
    const std::string_view name = trim(key);
    while (const std::optional<Line> line = lines.next()) {
        if (line->kind == LineKind::Section)
            break;
        if (line->kind != LineKind::Entry || !equalsIgnoringCase(line->name, name))
            continue;
        std::string_view value = line->value;
        if (value.size() >= 2 && value.front() == value.back() && (value.front() == '"' || value.front() == '\''))
            value = value.substr(1, value.size() - 2);
        return value;
    }
    return std::nullopt;
}

std::vector<ProfileEntry> profileEntries(std::string_view text, std::string_view section)
{
    std::vector<ProfileEntry> entries;
    Lines lines(text);
    if (!lines.enter(section))
        return entries;
    while (const std::optional<Line> line = lines.next()) {
        if (line->kind == LineKind::Section)
            break;
        if (line->kind == LineKind::Entry)
            entries.push_back({line->name, line->hasValue ? std::optional(line->value) : std::nullopt});
    }
    return entries;
}

std::vector<std::string_view> profileSectionNames(std::string_view text)
{
    std::vector<std::string_view> names;
    Lines lines(text);
    while (const std::optional<Line> line = lines.next()) {
        if (line->kind == LineKind::Section)
            names.push_back(line->name);
    }
    return names;
}

std::string withProfileValue(std::string_view text, std::string_view section, std::string_view key,
                             std::string_view value)
{
    const std::string_view lineEnd = lineEndOf(text);
    const std::string_view name = trim(key);
    Lines lines(text);
    if (!lines.enter(section))
        return splice(text, text.size(), text.size(),
                      sectionHeader(section, lineEnd) + entryLine(name, value, lineEnd));
    std::size_t behind = lines.at(); // after the last line that is not blank
    while (const std::optional<Line> line = lines.next()) {
        if (line->kind == LineKind::Section)
            break;
        if (line->kind == LineKind::Entry && equalsIgnoringCase(line->name, name)) {
            const std::string_view old = text.substr(line->begin, line->end - line->begin);
            const std::size_t content = std::min(old.find_last_not_of("\r\n") + 1, old.size());
            return splice(text, line->begin, line->end, entryLine(line->name, value, old.substr(content)));
        }
        if (line->kind != LineKind::Blank)
            behind = line->end;
    }
    return splice(text, behind, behind, entryLine(name, value, lineEnd));
}

std::string withProfileEntries(std::string_view text, std::string_view section,
                               const std::vector<std::pair<std::string, std::string>>& entries)
{
    const std::string_view lineEnd = lineEndOf(text);
    std::string added;
    for (const auto& [key, value] : entries)
        added += entryLine(trim(key), value, lineEnd);
    Lines lines(text);
    if (!lines.enter(section))
        return splice(text, text.size(), text.size(), sectionHeader(section, lineEnd) + added);

    std::optional<std::size_t> place; // of the first entry, in `before`
    std::size_t behind = lines.at();  // after the last comment before that
    std::size_t bodyEnd = lines.at();
    std::string kept; // the section's lines from `place` on that are not entries
    const std::size_t body = lines.at();
    std::string before;
    while (const std::optional<Line> line = lines.next()) {
        if (line->kind == LineKind::Section)
            break;
        bodyEnd = line->end;
        if (line->kind == LineKind::Entry) {
            if (!place)
                place = before.size();
            continue;
        }
        (place ? kept : before).append(text, line->begin, line->end - line->begin);
        if (!place && line->kind == LineKind::Comment)
            behind = line->end;
    }
    if (!place) {
        kept = before.substr(behind - body);
        before.resize(behind - body);
    }
    if (!before.empty() && !endsInLineEnd(before))
        before += lineEnd;
    return splice(text, body, bodyEnd, before + added + kept);
}

bool isProfileSection(std::string_view name)
{
    return !trim(name).empty() && name.find(']') == std::string_view::npos && isProfileValue(name);
}

bool isProfileKey(std::string_view name)
{
    const std::string_view key = trim(name);
    return !key.empty() && key.front() != ';' && key.front() != '[' && key.find('=') == std::string_view::npos &&
           isProfileValue(name);
}

bool isProfileValue(std::string_view value)
{
    return value.find_first_of(kLineEndBytes) == std::string_view::npos;
}

std::string packProfileList(const std::vector<std::string>& items, std::size_t capacity)
{
    std::string packed;
    for (const std::string& item : items) {
        packed.append(item).push_back('\0');
        if (packed.size() + 1 > capacity) {
            packed.resize(capacity - 2);
            break;
        }
    }
    return packed;
}

std::string packedProfileSection(std::string_view text, std::string_view section, std::size_t capacity)
{
    std::vector<std::string> lines;
    for (const ProfileEntry& entry : profileEntries(text, section)) {
        std::string& line = lines.emplace_back(entry.key);
        if (entry.value)
            line.append("=").append(*entry.value);
    }
    return packProfileList(lines, capacity);
}

std::string packedProfileSectionNames(std::string_view text, std::size_t capacity)
{
    const std::vector<std::string_view> names = profileSectionNames(text);
    return packProfileList({names.begin(), names.end()}, capacity);
}

} // namespace quarrynet
