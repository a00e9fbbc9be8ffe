#pragma once

#include <string>
#include <string_view>

/// ASCII letters and digits, independent of the locale. Bytes above 127 are neither.
namespace quarrynet {

constexpr bool isAscii(char c)
{
    return static_cast<unsigned char>(c) < 0x80;
}

/// Returns whether `c` is a byte below the blank, or DEL.
constexpr bool isAsciiControl(char c)
{
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
}

/// Returns whether `c` is whitespace or a control byte.
constexpr bool isBlankOrControl(char c)
{
    return c == ' ' || isAsciiControl(c);
}

constexpr bool isAsciiDigit(char c)
{
    return c >= '0' && c <= '9';
}

constexpr bool isAsciiUpper(char c)
{
    return c >= 'A' && c <= 'Z';
}

constexpr bool isAsciiLower(char c)
{
    return c >= 'a' && c <= 'z';
}

constexpr bool isAsciiLetter(char c)
{
    return isAsciiUpper(c) || isAsciiLower(c);
}

constexpr bool isAsciiAlphanumeric(char c)
{
    return isAsciiDigit(c) || isAsciiLetter(c);
}

/// Returns the value of a hexadecimal digit in either case, or -1 for any other byte.
constexpr int hexDigitValue(char c)
{
    if (isAsciiDigit(c))
        return c - '0';
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return -1;
}

constexpr char toLowerAscii(char c)
{
    return isAsciiUpper(c) ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Returns `text` with A to Z in lower case; other bytes are unchanged.
std::string toLowerAscii(std::string_view text);

/// Returns whether the texts are equal; A to Z are case-insensitive.
bool equalsIgnoringCase(std::string_view a, std::string_view b);
bool startsWithIgnoringCase(std::string_view text, std::string_view beginning);
bool endsWithIgnoringCase(std::string_view text, std::string_view ending);

} // namespace quarrynet
