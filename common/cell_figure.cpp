#include "common/cell_figure.h"

#include <cstddef>
#include <string>

#include "common/numbers.h"
#include "ground/ascii.h"

namespace quarrynet {

namespace {

constexpr std::string_view kNoBreakBlank = "\xc2\xa0"; // UTF-8

// No figure of a page is longer; the rest of a longer one does not change the comparison.
constexpr std::size_t kLongestFigure = 400; // bytes

void skipBlanks(std::string_view& text)
{
    while (true) {
        if (!text.empty() && isBlankOrControl(text.front()))
            text.remove_prefix(1);
        else if (text.starts_with(kNoBreakBlank))
            text.remove_prefix(kNoBreakBlank.size());
        else
            return;
    }
}

// Returns the length of a separator at the beginning of `text` that precedes exactly three digits, or 0.
std::size_t groupSeparator(std::string_view text)
{
    std::size_t length = 0;
    if (text.starts_with(kNoBreakBlank))
        length = kNoBreakBlank.size();
    else if (!text.empty() && (text.front() == ',' || text.front() == ' ' || text.front() == '\''))
        length = 1;
    else
        return 0;
    const std::string_view group = text.substr(length, 4);
    for (std::size_t i = 0; i < 3; ++i) {
        if (i >= group.size() || !isAsciiDigit(group[i]))
            return 0;
    }
    return group.size() == 4 && isAsciiDigit(group[3]) ? 0 : length;
}

double unitOf(std::string_view text)
{
    skipBlanks(text);
    std::size_t letters = 0;
    while (letters < text.size() && isAsciiLetter(text[letters]))
        ++letters;
    const std::string unit = toLowerAscii(text.substr(0, letters < 4 ? letters : 4));
    if (unit.empty() || (unit.size() > 1 && unit.substr(1) != "b" && unit.substr(1) != "ib"))
        return 1;
    const std::size_t power = std::string_view("kmgtp").find(unit.front());
    double factor = 1;
    if (power != std::string_view::npos) {
        for (std::size_t i = 0; i <= power; ++i)
            factor *= 1024;
    }
    return factor;
}

} // namespace

std::optional<double> cellFigure(std::string_view text)
{
    text = text.substr(0, kLongestFigure);
    skipBlanks(text);
    std::string digits;
    bool decimals = false;
    while (!text.empty()) {
        if (isAsciiDigit(text.front())) {
            digits += text.front();
            text.remove_prefix(1);
        } else if (const std::size_t length = decimals || digits.empty() ? 0 : groupSeparator(text)) {
            text.remove_prefix(length);
        } else if (!decimals && (text.front() == '.' || text.front() == ',') && text.size() > 1 &&
                   isAsciiDigit(text[1])) {
            decimals = true;
            digits += '.';
            text.remove_prefix(1);
        } else {
            break;
        }
    }
    if (digits.empty())
        return std::nullopt;
    return leadingNumber(digits) * unitOf(text);
}

} // namespace quarrynet
