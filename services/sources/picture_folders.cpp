#include "sources/picture_folders.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <map>
#include <system_error>
#include <tuple>

#include "ground/ascii.h"
#include "ground/decimal.h"
#include "ground/utf8.h"
#include "sources/document_folders.h"
#include "text/markup.h"
#include "thumbnails/picture_format.h"

namespace quarrynet::services {

namespace fs = std::filesystem;

namespace {

/// Removes the number of at most four digits at the beginning of `text` and returns it, or returns 0 when there is
/// none.
int takeNumber(std::string_view& text)
{
    constexpr std::size_t kMaxDigits = 4;
    const std::size_t length = countLeadingDigits(text);
    if (length > kMaxDigits)
        return 0;
    const int number = wholeNumber(text.substr(0, length)).value_or(0);
    text.remove_prefix(length);
    return number;
}

/// Returns the size in pixels that a folder name states; 0 for none, the largest for "scalable".
int folderSize(std::string_view part)
{
    constexpr std::array<int, 16> kIconSizes{8, 16, 20, 22, 24, 32, 36, 42, 48, 64, 72, 96, 128, 192, 256, 512};
    constexpr int kScalable = 100000;
    if (part.substr(0, 8) == "scalable")
        return kScalable;
    const int width = takeNumber(part);
    if (width == 0)
        return 0;
    if (part.substr(0, 1) == "x") {
        part.remove_prefix(1);
        if (takeNumber(part) != width)
            return 0;
    } else if (std::find(kIconSizes.begin(), kIconSizes.end(), width) == kIconSizes.end()) {
        return 0; // a year or a serial number
    }
    int factor = 1;
    if (part.substr(0, 1) == "@") {
        part.remove_prefix(1);
        factor = std::max(1, takeNumber(part));
        if (part.substr(0, 1) == "x")
            part.remove_prefix(1);
    }
    return part.empty() ? width * factor : 0;
}

/// Returns the length of `stem` without a trailing "@2x" and "-48x48", and sets `size` to the size that they state.
std::size_t lengthWithoutSize(std::string_view stem, int& size)
{
    std::size_t end = stem.size();
    const std::size_t at = stem.rfind('@');
    int factor = 1;
    if (at != std::string_view::npos && at > 0) {
        std::string_view rest = stem.substr(at + 1);
        const int number = takeNumber(rest);
        if (number > 0 && rest == "x") {
            factor = number;
            end = at;
        }
    }
    const std::size_t mark = stem.substr(0, end).find_last_of("-_");
    if (mark != std::string_view::npos && mark > 0) {
        std::string_view rest = stem.substr(mark + 1, end - mark - 1);
        const int width = takeNumber(rest);
        if (width > 0 && rest.substr(0, 1) == "x") {
            rest.remove_prefix(1);
            if (takeNumber(rest) > 0 && rest.empty()) {
                size = width * factor;
                return mark;
            }
        }
    }
    if (factor > 1)
        size = std::max(size, 1) * factor;
    return end;
}

std::string_view withoutEnding(std::string_view text, std::string_view ending)
{
    return endsWithIgnoringCase(text, ending) ? text.substr(0, text.size() - ending.size()) : text;
}

struct Taken
{
    std::string group; ///< the path without sizes
    std::size_t stemBegin = 0;
    int size = 0;
};

Taken withoutSizes(std::string_view path)
{
    Taken taken;
    std::size_t at = 0;
    for (std::size_t slash = path.find('/'); slash != std::string_view::npos; slash = path.find('/', at)) {
        const std::string_view part = path.substr(at, slash - at);
        const int size = folderSize(part);
        if (size > 0) {
            taken.size = std::max(taken.size, size);
        } else {
            taken.group += part;
            taken.group.push_back('/');
        }
        at = slash + 1;
    }
    std::string_view stem = path.substr(at);
    stem = stem.substr(0, std::min(stem.rfind('.'), stem.size()));
    stem = withoutEnding(stem, ".symbolic"); // a raster version of a symbolic icon
    taken.stemBegin = taken.group.size();
    taken.group += stem.substr(0, lengthWithoutSize(stem, taken.size));
    return taken;
}

/// One size of a picture.
struct Candidate
{
    std::string path;
    std::string stem;
    bool drawn = false;
    int size = 0;
    std::uintmax_t bytes = 0;
    std::int64_t version = 0;

    auto quality() const { return std::make_tuple(drawn, size, bytes); }
};

} // namespace

std::string sizelessPath(std::string_view path)
{
    return withoutSizes(path).group;
}

std::string spacedWords(std::string_view text)
{
    std::string spaced;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (i > 0 && ((isAsciiLower(text[i - 1]) && isAsciiUpper(text[i])) ||
                      (isAsciiDigit(text[i - 1]) != isAsciiDigit(text[i]))))
            spaced.push_back(' ');
        spaced.push_back(text[i]);
    }
    return spaced.size() == text.size() ? spaced : std::string(text) + " " + spaced;
}

std::vector<Picture> findPictures(const std::string& root, LeftOut& left)
{
    std::map<std::string, Candidate> best;
    left.add(findFiles(root, hasPictureName, [&](const std::string& path) {
        std::error_code error;
        const fs::path file = fs::path(root) / path;
        Candidate candidate;
        candidate.path = path;
        candidate.bytes = fs::file_size(file, error);
        const fs::file_time_type changed = error ? fs::file_time_type() : fs::last_write_time(file, error);
        if (error)
            left.add(file.string(), error.message());
        if (error || candidate.bytes == 0)
            return;
        Taken taken = withoutSizes(path);
        candidate.stem = toLowerAscii(withoutEnding(taken.group, "-symbolic").substr(taken.stemBegin));
        candidate.drawn = endsWithIgnoringCase(path, ".svg");
        candidate.size = taken.size;
        const auto mixed = static_cast<std::uint64_t>(changed.time_since_epoch().count()) * 31 + candidate.bytes;
        candidate.version = static_cast<std::int64_t>(mixed & 0xFFFFFFFFU);
        const auto [place, isNew] = best.try_emplace(std::move(taken.group), candidate);
        if (!isNew && std::tuple(place->second.quality(), path) < std::tuple(candidate.quality(), place->second.path))
            place->second = std::move(candidate);
    }));
    std::vector<Picture> pictures;
    pictures.reserve(best.size());
    const std::string rootWords = spacedWords(toUtf8((fs::path(root) / "").parent_path().filename().string()));
    for (const auto& [group, candidate] : best) {
        const std::string path = collapseBlanks(toUtf8(candidate.path));
        const std::size_t slash = path.rfind('/');
        const std::size_t split = slash == std::string::npos ? 0 : slash + 1;
        pictures.push_back({candidate.path, spacedWords(path.substr(split)),
                            rootWords + " " + spacedWords(path.substr(0, split)), toUtf8(candidate.stem),
                            candidate.version});
    }
    std::sort(pictures.begin(), pictures.end(), [](const Picture& a, const Picture& b) { return a.path < b.path; });
    return pictures;
}

} // namespace quarrynet::services
