#include "sources/contents_lists.h"

#include <algorithm>

#include "ground/ChildProcess.h"
#include "ground/ascii.h"
#include "sources/downloaded_file.h"

namespace quarrynet::services {

namespace {

bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

} // namespace

void ContentsReader::feed(std::string_view piece)
{
    while (!piece.empty()) {
        const std::size_t end = piece.find('\n');
        if (end == std::string_view::npos) {
            append(piece);
            return;
        }
        if (line_.empty()) {
            takeLine(piece.substr(0, end));
        } else {
            append(piece.substr(0, end));
            takeLine(line_);
            line_.clear();
        }
        piece.remove_prefix(end + 1);
    }
}

void ContentsReader::append(std::string_view text)
{
    // Keeps one byte more than a line may have, so that a truncated line counts as too long.
    line_.append(text.substr(0, kMaxContentsLine + 1 - std::min(line_.size(), kMaxContentsLine + 1)));
}

void ContentsReader::finish()
{
    if (!line_.empty())
        takeLine(line_);
    line_.clear();
}

void ContentsReader::takeLine(std::string_view line)
{
    const auto trimEnd = [](std::string_view& text, const auto& isCut) {
        while (!text.empty() && isCut(text.back()))
            text.remove_suffix(1);
    };
    if (line.empty())
        return;
    ++skipped_;
    if (line.size() > kMaxContentsLine)
        return;
    if (line.back() == '\r')
        line.remove_suffix(1);
    trimEnd(line, isBlank);
    const std::size_t blank = line.find_last_of(" \t");
    if (blank == std::string_view::npos)
        return;
    std::string_view path = line.substr(0, blank);
    trimEnd(path, isBlank);
    if (path.substr(0, 2) == "./")
        path.remove_prefix(1);
    while (!path.empty() && path.front() == '/')
        path.remove_prefix(1);
    trimEnd(path, [](char c) { return c == '/'; });
    const std::string_view packages = line.substr(blank + 1);
    if (path.empty() || path.size() > kMaxContentsPath || std::any_of(path.begin(), path.end(), isAsciiControl) ||
        std::any_of(packages.begin(), packages.end(), isAsciiControl))
        return;
    --skipped_;
    take_(path, packages);
}

void forEachPackageName(std::string_view packages, const std::function<void(std::string_view name)>& take)
{
    while (!packages.empty()) {
        const std::size_t end = std::min(packages.find(','), packages.size());
        const std::string_view place = packages.substr(0, end);
        packages.remove_prefix(std::min(end + 1, packages.size()));
        const std::string_view name = place.substr(place.rfind('/') + 1);
        if (!name.empty())
            take(name);
    }
}

std::vector<Repository> installedContents()
{
    std::string targets;
    const auto result = readProgramOutput(
        {"apt-get", "indextargets", "--format", "$(REPO_URI)\t$(FILENAME)", "Identifier: Contents-deb"},
        [&targets](std::string_view piece) { targets.append(piece); });
    return result ? repositoriesFrom(targets) : std::vector<Repository>();
}

Outcome<std::size_t> readContentsList(const std::string& path, const ContentsReader::Take& take)
{
    ContentsReader reader(take);
    const Outcome<Done> read =
        readDownloadedFile(path, kMaxContentsBytes, [&reader](std::string_view piece) { reader.feed(piece); });
    if (!read)
        return read.error();
    reader.finish();
    return reader.skipped();
}

} // namespace quarrynet::services
