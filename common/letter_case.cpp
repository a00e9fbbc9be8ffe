#include "common/letter_case.h"

#include <cstddef>

#ifdef _WIN32
#include <algorithm>

#include <windows.h>
#else
#include <cwctype>
#include <locale.h>
#endif
#ifdef __APPLE__
#include <xlocale.h>
#endif

#include "common/utf8.h"

namespace quarrynet {

#ifdef _WIN32

std::string lowerCase(std::string_view text)
{
    constexpr std::size_t kPortion = std::size_t{1} << 30; // the call counts in 32 bits
    std::string lower(text);
    for (std::size_t from = 0; from < lower.size(); from += kPortion)
        ::CharLowerBuffA(lower.data() + from, static_cast<DWORD>(std::min(kPortion, lower.size() - from)));
    return lower;
}

std::size_t letterBoundary(std::string_view text, std::size_t)
{
    return text.size(); // in a code page with letters of two bytes, only reading from the start would tell
}

#else

namespace {

/// A locale that knows all letters; null where the system has none.
locale_t letters()
{
    static const locale_t all = [] {
        for (const char* name : {"C.UTF-8", "C.utf8", "UTF-8", "en_US.UTF-8"}) {
            if (const locale_t found = ::newlocale(LC_CTYPE_MASK, name, nullptr))
                return found;
        }
        return locale_t(nullptr);
    }();
    return all;
}

/// For a system without such a locale: Latin-1, Greek and Cyrillic, and the pairs of Latin Extended-A.
char32_t lowerWithoutLocale(char32_t letter)
{
    if ((letter >= 0xC0 && letter <= 0xDE && letter != 0xD7) ||
        (letter >= 0x391 && letter <= 0x3AB && letter != 0x3A2) || (letter >= 0x410 && letter <= 0x42F))
        return letter + 0x20;
    if (letter >= 0x400 && letter <= 0x40F)
        return letter + 0x50;
    if ((letter >= 0x100 && letter <= 0x12E) || (letter >= 0x132 && letter <= 0x136) ||
        (letter >= 0x14A && letter <= 0x176) || (letter >= 0x460 && letter <= 0x480))
        return letter | 1;
    if (((letter >= 0x139 && letter <= 0x147) || (letter >= 0x179 && letter <= 0x17D)) && letter % 2 == 1)
        return letter + 1;
    return letter;
}

char32_t lower(char32_t letter)
{
    static_assert(sizeof(wchar_t) == sizeof(char32_t));
    if (letters() == nullptr)
        return lowerWithoutLocale(letter);
    return static_cast<char32_t>(::towlower_l(static_cast<wint_t>(letter), letters()));
}

bool isAscii(char c)
{
    return static_cast<unsigned char>(c) < 0x80;
}

} // namespace

std::string lowerCase(std::string_view text)
{
    std::string out(text);
    std::size_t plain = 0;
    for (; plain < out.size() && isAscii(out[plain]); ++plain) {
        const char c = out[plain];
        out[plain] = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    if (plain == out.size())
        return out;

    out.resize(plain);
    for (std::size_t at = plain; at < text.size();) {
        const char c = text[at];
        if (isAscii(c)) {
            out.push_back(c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c);
            ++at;
            continue;
        }
        const Utf8Character latin1{static_cast<unsigned char>(c), 1};
        const Utf8Character character = utf8Character(text.substr(at)).value_or(latin1);
        appendUtf8(out, lower(character.number));
        at += character.length;
    }
    return out;
}

std::size_t letterBoundary(std::string_view text, std::size_t at)
{
    const auto continues = [text](std::size_t i) { return (static_cast<unsigned char>(text[i]) & 0xC0U) == 0x80; };
    // A letter has three continuation bytes at most; where as many precede, the next one belongs to none.
    const auto cannotContinue = [&](std::size_t i) {
        return i >= 3 && continues(i - 1) && continues(i - 2) && continues(i - 3);
    };
    while (at > 0 && at < text.size() && continues(at) && !cannotContinue(at))
        ++at;
    return at;
}

#endif

} // namespace quarrynet
