#include "common/letter_case.h"

#include <cstddef>

#ifndef _WIN32
#include <cwctype>
#include <locale.h>
#endif
#ifdef __APPLE__
#include <xlocale.h>
#endif

#ifdef _WIN32
#include "common/windows_text.h"
#endif
#include "ground/ascii.h"
#include "ground/utf8.h"

namespace quarrynet {

namespace {

#ifdef _WIN32

char32_t lower(char32_t letter)
{
    return lowerCaseLetter(letter);
}

/// Returns the first boundary from `at` on in a code page whose letters have one or two bytes.
std::size_t codePageBoundary(std::string_view text, std::size_t at)
{
    // A byte that never begins a letter of two bytes ends a letter, whatever is before it. Reads forward from the last
    // such byte.
    std::size_t letter = at;
    while (letter > 0 && beginsLongLetter(text[letter - 1]))
        --letter;
    while (letter < at)
        letter += codePageLetterLength(text.substr(letter));
    return letter;
}

#else

/// Returns the first of these locales that the system has. The second name is that of macOS. Every system has the last
/// one, which only has ASCII letters.
locale_t letters()
{
    static const locale_t all = [] {
        locale_t found = nullptr;
        for (const char* name : {"C.UTF-8", "UTF-8", "C"}) {
            if (found == nullptr)
                found = ::newlocale(LC_CTYPE_MASK, name, nullptr);
        }
        return found;
    }();
    return all;
}

char32_t lower(char32_t letter)
{
    static_assert(sizeof(wchar_t) == sizeof(char32_t));
    return static_cast<char32_t>(::towlower_l(static_cast<wint_t>(letter), letters()));
}

#endif

} // namespace

std::string lowerCase(std::string_view text)
{
#ifdef _WIN32
    if (!codePageIsUtf8())
        return lowerCaseInCodePage(text);
#endif
    std::string out(text);
    std::size_t plain = 0;
    for (; plain < out.size() && isAscii(out[plain]); ++plain) {
        const char c = out[plain];
        out[plain] = toLowerAscii(c);
    }
    if (plain == out.size())
        return out;

    out.resize(plain);
    for (std::size_t at = plain; at < text.size();) {
        const char c = text[at];
        if (isAscii(c)) {
            out.push_back(toLowerAscii(c));
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
#ifdef _WIN32
    if (!codePageIsUtf8())
        return codePageBoundary(text, at);
#endif
    const auto continues = [text](std::size_t i) { return isUtf8Continuation(text[i]); };
    // A letter has at most three continuation bytes, so a fourth one in a row belongs to no letter.
    const auto cannotContinue = [&](std::size_t i) {
        return i >= 3 && continues(i - 1) && continues(i - 2) && continues(i - 3);
    };
    while (at > 0 && at < text.size() && continues(at) && !cannotContinue(at))
        ++at;
    return at;
}

} // namespace quarrynet
