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

#include "ground/ascii.h"
#include "ground/utf8.h"

namespace quarrynet {

#ifdef _WIN32

std::string lowerCase(std::string_view text)
{
    constexpr std::size_t kPortion = std::size_t{1} << 30; // the call takes 32-bit lengths
    std::string lower(text);
    for (std::size_t from = 0; from < lower.size(); from += kPortion)
        ::CharLowerBuffA(lower.data() + from, static_cast<DWORD>(std::min(kPortion, lower.size() - from)));
    return lower;
}

std::size_t letterBoundary(std::string_view text, std::size_t)
{
    return text.size(); // in a double-byte code page, only a scan from the start could tell
}

#else

namespace {

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

} // namespace

std::string lowerCase(std::string_view text)
{
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
    const auto continues = [text](std::size_t i) { return isUtf8Continuation(text[i]); };
    // A letter has at most three continuation bytes, so a fourth one in a row belongs to no letter.
    const auto cannotContinue = [&](std::size_t i) {
        return i >= 3 && continues(i - 1) && continues(i - 2) && continues(i - 3);
    };
    while (at > 0 && at < text.size() && continues(at) && !cannotContinue(at))
        ++at;
    return at;
}

#endif

} // namespace quarrynet
