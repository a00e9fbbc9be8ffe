// tools/tidy.sh analyses this source first: an analysis that does not report this fault would not report any other.

#include <string>
#include <utility>

std::size_t lengthOfMoved(std::string text)
{
    const std::string other = std::move(text);
    return text.size() + other.size();
}
