#include "common/windows_text.h"

#include <array>
#include <cstdint>
#include <vector>

#include <windows.h>

#include "ground/ascii.h"
#include "ground/utf8.h"

namespace quarrynet {

namespace {

constexpr std::size_t kUnits = 0x10000;

/// Returns a table with the lower case of each UTF-16 unit.
const std::wstring& lowerUnits()
{
    static const std::wstring table = [] {
        std::wstring units(kUnits, L'\0');
        for (std::size_t i = 0; i < kUnits; ++i)
            units[i] = static_cast<wchar_t>(i);
        std::wstring lower = units;
        // The invariant locale: the program's comparisons must not change with the user's language.
        ::LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_LOWERCASE, units.data(), static_cast<int>(kUnits), lower.data(),
                        static_cast<int>(kUnits), nullptr, nullptr, 0);
        for (std::size_t i = 0; i < kUnits; ++i) {
            const bool surrogate = i >= 0xD800 && i < 0xE000;
            // A case that has a case of its own would make two passes differ from one.
            if (surrogate || lower[static_cast<std::size_t>(lower[i])] != lower[i])
                units[i] = static_cast<wchar_t>(i);
            else
                units[i] = lower[i];
        }
        return units;
    }();
    return table;
}

/// Returns one character in a code page other than UTF-8, or an empty text if the code page lacks it.
std::string encoded(const wchar_t* units, int count)
{
    std::array<char, 4> bytes = {};
    BOOL replaced = FALSE;
    const int size = ::WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, units, count, bytes.data(),
                                           static_cast<int>(bytes.size()), "?", &replaced);
    return replaced || size <= 0 ? std::string() : std::string(bytes.data(), static_cast<std::size_t>(size));
}

void appendWide(std::wstring& text, char32_t character)
{
    if (character < kUnits) {
        text.push_back(static_cast<wchar_t>(character));
        return;
    }
    const char32_t offset = character - 0x10000;
    text.push_back(static_cast<wchar_t>(0xD800 + (offset >> 10U)));
    text.push_back(static_cast<wchar_t>(0xDC00 + (offset & 0x3FFU)));
}

/// Calls `take` with each character of `text` and its units. An unpaired surrogate is given as its own number.
template <class Take>
void forEachCharacter(std::wstring_view text, Take take)
{
    for (std::size_t at = 0; at < text.size();) {
        const auto unit = static_cast<char32_t>(text[at]);
        if (unit < 0xD800 || unit >= 0xE000) {
            take(unit, text.substr(at++, 1));
            continue;
        }
        const char32_t next = at + 1 < text.size() ? static_cast<char32_t>(text[at + 1]) : U'\0';
        const bool pair = unit < 0xDC00 && next >= 0xDC00 && next < 0xE000;
        take(pair ? 0x10000 + ((unit - 0xD800) << 10U) + (next - 0xDC00) : unit, text.substr(at, pair ? 2 : 1));
        at += pair ? 2 : 1;
    }
}

/// A code page whose letters have one or two bytes, as tables: a text is read letter by letter, because the system's
/// calls do not say where the invalid bytes of a text are.
class LetterTables
{
public:
    static const LetterTables& ofSystem()
    {
        static const LetterTables tables;
        return tables;
    }

    /// Returns the index of the first letter in the tables, and its length.
    std::size_t first(std::string_view text, std::size_t& length) const
    {
        const auto byte = static_cast<unsigned char>(text[0]);
        if (leads_[byte] && text.size() > 1) {
            const std::size_t pair = std::size_t{byte} << 8U | static_cast<unsigned char>(text[1]);
            if (wide_[pair] != 0) {
                length = 2;
                return pair;
            }
        }
        length = 1;
        return byte;
    }

    bool begins(char byte) const { return leads_[static_cast<unsigned char>(byte)]; }
    wchar_t wide(std::size_t letter) const { return wide_[letter]; }
    std::uint16_t lower(std::size_t letter) const { return lower_[letter]; }

private:
    LetterTables() : wide_(256, L'\0'), lower_(256)
    {
        CPINFO info = {};
        ::GetCPInfo(CP_ACP, &info);
        for (std::size_t i = 0; i + 1 < std::size(info.LeadByte) && info.LeadByte[i] != 0; i += 2) {
            for (std::size_t byte = info.LeadByte[i]; byte <= info.LeadByte[i + 1]; ++byte)
                leads_[byte] = true;
        }
        for (std::size_t byte = 0; byte < 256; ++byte) {
            const char letter = static_cast<char>(byte);
            wchar_t wide = L'\0';
            valid_[byte] = !leads_[byte] && decodeLetter({&letter, 1}, wide);
            wide_[byte] = valid_[byte] ? wide : static_cast<wchar_t>(byte);
        }
        if (info.MaxCharSize > 1) {
            wide_.resize(kUnits, L'\0');
            for (std::size_t pair = 0x8000; pair < kUnits; ++pair) {
                const std::array<char, 2> letter = {static_cast<char>(pair >> 8U), static_cast<char>(pair & 0xFFU)};
                if (leads_[pair >> 8U])
                    decodeLetter({letter.data(), letter.size()}, wide_[pair]);
            }
        }
        lower_.resize(wide_.size());
        for (std::size_t letter = 0; letter < wide_.size(); ++letter)
            lower_[letter] = lowered(letter);
    }

    /// Sets `wide` if `letter` is one valid character.
    static bool decodeLetter(std::string_view letter, wchar_t& wide)
    {
        std::array<wchar_t, 2> units = {};
        const int count = ::MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, letter.data(),
                                                static_cast<int>(letter.size()), units.data(), 2);
        if (count == 1)
            wide = units[0];
        return count == 1;
    }

    std::uint16_t lowered(std::size_t letter) const
    {
        const auto same = static_cast<std::uint16_t>(letter);
        const wchar_t wide = wide_[letter];
        const wchar_t lower = lowerUnits()[static_cast<std::size_t>(wide)];
        if (lower == wide || (letter < 256 && !valid_[letter]))
            return same;
        const std::string bytes = encoded(&lower, 1);
        if (bytes.size() != (letter < 256 ? 1U : 2U))
            return same;
        std::size_t length = 0;
        const std::size_t result = first(bytes, length);
        return length == bytes.size() ? static_cast<std::uint16_t>(result) : same;
    }

    std::array<bool, 256> leads_{};
    std::array<bool, 256> valid_{};    // letters of one byte
    std::wstring wide_;                // by byte or pair of bytes; Latin-1 for an invalid byte, 0 for an invalid pair
    std::vector<std::uint16_t> lower_; // the letter's lower case, by the same index
};

} // namespace

bool codePageIsUtf8()
{
    return ::GetACP() == CP_UTF8;
}

bool beginsLongLetter(char byte)
{
    return LetterTables::ofSystem().begins(byte);
}

std::size_t codePageLetterLength(std::string_view text)
{
    std::size_t length = 0;
    LetterTables::ofSystem().first(text, length);
    // After a byte that begins no letter here, "A" stays, because "a" could complete one.
    return length == 1 && text.size() > 1 && beginsLongLetter(text[0]) && isAsciiUpper(text[1]) ? 2 : length;
}

std::string lowerCaseInCodePage(std::string_view text)
{
    const LetterTables& tables = LetterTables::ofSystem();
    std::string lower;
    lower.reserve(text.size());
    while (!text.empty()) {
        std::size_t length = 0;
        const std::uint16_t letter = tables.lower(tables.first(text, length));
        if (length == 2)
            lower.push_back(static_cast<char>(letter >> 8U));
        lower.push_back(static_cast<char>(letter & 0xFFU));
        const std::size_t whole = codePageLetterLength(text);
        lower.append(text.substr(length, whole - length));
        text.remove_prefix(whole);
    }
    return lower;
}

char32_t lowerCaseLetter(char32_t letter)
{
    return letter < kUnits ? static_cast<char32_t>(lowerUnits()[letter]) : letter;
}

std::wstring wideFromCodePage(std::string_view bytes)
{
    std::wstring text;
    if (codePageIsUtf8()) {
        for (std::size_t at = 0; at < bytes.size();) {
            const auto character = utf8Character(bytes.substr(at));
            appendWide(text, character ? character->number : static_cast<unsigned char>(bytes[at]));
            at += character ? character->length : 1;
        }
        return text;
    }
    const LetterTables& tables = LetterTables::ofSystem();
    text.reserve(bytes.size());
    for (std::size_t at = 0, length = 0; at < bytes.size(); at += length)
        text.push_back(tables.wide(tables.first(bytes.substr(at), length)));
    return text;
}

std::string codePageFromWide(std::wstring_view text)
{
    std::string bytes;
    bytes.reserve(text.size());
    const bool utf8 = codePageIsUtf8();
    forEachCharacter(text, [&](char32_t character, std::wstring_view units) {
        if (character < 0x80)
            bytes.push_back(static_cast<char>(character));
        else if (character >= 0xD800 && character < 0xE000)
            bytes.push_back('?');
        else if (utf8)
            appendUtf8(bytes, character);
        else if (const std::string letter = encoded(units.data(), static_cast<int>(units.size())); !letter.empty())
            bytes += letter;
        else
            bytes.push_back('?');
    });
    return bytes;
}

std::wstring wideFromUtf8(std::string_view bytes)
{
    std::wstring text;
    for (std::size_t at = 0; at < bytes.size();) {
        const auto character = utf8Character(bytes.substr(at));
        appendWide(text, character ? character->number : 0xFFFD);
        at += character ? character->length : 1;
    }
    return text;
}

std::string utf8FromWide(std::wstring_view text)
{
    std::string bytes;
    forEachCharacter(text, [&](char32_t character, std::wstring_view) { appendUtf8(bytes, character); });
    return bytes;
}

std::wstring longPath(const std::wstring& path)
{
    const DWORD size = ::GetFullPathNameW(path.c_str(), 0, nullptr, nullptr);
    std::wstring full(size, L'\0');
    full.resize(::GetFullPathNameW(path.c_str(), size, full.data(), nullptr));
    if (full.empty() || full.starts_with(L"\\\\?\\") || full.starts_with(L"\\\\.\\"))
        return full.empty() ? path : full;
    return full.starts_with(L"\\\\") ? L"\\\\?\\UNC" + full.substr(1) : L"\\\\?\\" + full;
}

} // namespace quarrynet
