#include "ground/ascii.h"

#include <algorithm>

namespace quarrynet {

std::string toLowerAscii(std::string_view text)
{
    std::string lower(text);
    for (char& c : lower)
        c = toLowerAscii(c);
    return lower;
}

bool equalsIgnoringCase(std::string_view a, std::string_view b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return toLowerAscii(x) == toLowerAscii(y); });
}

bool startsWithIgnoringCase(std::string_view text, std::string_view beginning)
{
    return equalsIgnoringCase(text.substr(0, beginning.size()), beginning);
}

bool endsWithIgnoringCase(std::string_view text, std::string_view ending)
{
    return text.size() >= ending.size() && equalsIgnoringCase(text.substr(text.size() - ending.size()), ending);
}

} // namespace quarrynet
