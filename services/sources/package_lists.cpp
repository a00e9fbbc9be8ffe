#include "sources/package_lists.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <unordered_map>
#include <utility>

#include "ground/ChildProcess.h"
#include "ground/ascii.h"
#include "ground/decimal.h"
#include "ground/utf8.h"
#include "text/markup.h"

namespace quarrynet::services {

namespace {

constexpr std::size_t kMaxStanza = 1024 * 1024;

std::string oneLine(const std::string& text)
{
    return collapseBlanks(toUtf8(text));
}

/// Returns the size in bytes that `text` states, or 0 if it is not a number or exceeds any package's size.
std::int64_t byteCount(std::string_view text)
{
    constexpr std::size_t kMaxDigits = 15;
    return text.size() > kMaxDigits ? 0 : wholeNumberAs<std::int64_t>(text).value_or(0);
}

std::string_view withoutUser(std::string_view address, std::string& cleaned)
{
    const std::size_t start = address.find("://") + 3;
    const std::size_t end = std::min(address.find('/', start), address.size());
    const std::size_t at = address.rfind('@', end);
    if (at == std::string_view::npos || at < start)
        return address;
    cleaned = std::string(address.substr(0, start)) + std::string(address.substr(at + 1));
    return cleaned;
}

} // namespace

void StanzaReader::feed(std::string_view piece)
{
    while (!piece.empty()) {
        const std::size_t end = piece.find('\n');
        if (end == std::string_view::npos) {
            appendBounded(piece);
            return;
        }
        if (line_.empty()) {
            takeLine(piece.substr(0, end));
        } else {
            appendBounded(piece.substr(0, end));
            takeLine(line_);
            line_.clear();
        }
        piece.remove_prefix(end + 1);
    }
}

void StanzaReader::appendBounded(std::string_view text)
{
    // Keeps one byte more than a stanza may have, so that a truncated line counts as too long.
    line_.append(text.substr(0, kMaxStanza + 1 - std::min(line_.size(), kMaxStanza + 1)));
}

void StanzaReader::finish()
{
    if (!line_.empty())
        takeLine(line_);
    line_.clear();
    endStanza();
}

void StanzaReader::takeLine(std::string_view line)
{
    if (!line.empty() && line.back() == '\r')
        line.remove_suffix(1);
    if (line.empty()) {
        endStanza();
        return;
    }
    stanzaBytes_ += line.size();
    if (stanzaBytes_ > kMaxStanza)
        return;
    if (line.front() == ' ' || line.front() == '\t') {
        // A line with a single full stop is an empty line of the description.
        if (field_ == &package_.description && line.substr(1) != ".")
            field_->append(line);
        return;
    }
    field_ = nullptr;
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos)
        return;
    const std::string_view name = line.substr(0, colon);
    std::string_view value = line.substr(colon + 1);
    while (!value.empty() && (value.front() == ' ' || value.front() == '\t'))
        value.remove_prefix(1);

    const std::array<std::pair<std::string_view, std::string*>, 7> kept{{{"Package", &package_.name},
                                                                         {"Homepage", &package_.homepage},
                                                                         {"Source", &package_.source},
                                                                         {"Section", &package_.section},
                                                                         {"Architecture", &package_.architecture},
                                                                         {"Filename", &package_.file},
                                                                         {"Description", &package_.summary}}};
    for (const auto& [key, target] : kept) {
        if (equalsIgnoringCase(name, key)) {
            *target = std::string(value);
            field_ = target == &package_.summary ? &package_.description : target;
            return;
        }
    }
    // The field name of a translated description includes its language; the untranslated description takes precedence.
    if (name.size() > 12 && startsWithIgnoringCase(name, "Description-") &&
        !equalsIgnoringCase(name, "Description-md5") && package_.summary.empty()) {
        package_.summary = std::string(value);
        field_ = &package_.description;
    } else if (equalsIgnoringCase(name, "Size")) {
        package_.size = byteCount(value);
    }
}

void StanzaReader::endStanza()
{
    package_.name = oneLine(package_.name);
    if (!package_.name.empty()) {
        for (std::string* text : {&package_.summary, &package_.description, &package_.homepage, &package_.source,
                                  &package_.section, &package_.architecture, &package_.file})
            *text = oneLine(*text);
        // A version may follow: "Source: vim (2:9.0.1378-2)".
        package_.source.resize(std::min(package_.source.find(' '), package_.source.size()));
        if (package_.source.empty())
            package_.source = package_.name;
        take_(package_);
    }
    package_ = Package();
    field_ = nullptr;
    stanzaBytes_ = 0;
}

Outcome<Done> readInstalledLists(const std::function<void(const Package&)>& take)
{
    StanzaReader reader(take);
    Outcome<Done> result =
        readProgramOutput({"apt-cache", "dumpavail"}, [&reader](std::string_view piece) { reader.feed(piece); });
    reader.finish();
    return result;
}

Outcome<Done> readListFile(const std::string& path, const std::function<void(const Package&)>& take)
{
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return Failure{"cannot read " + path};
    StanzaReader reader(take);
    std::vector<char> buffer(256 * 1024);
    while (file) {
        file.read(buffer.data(), static_cast<std::streamsize>(buffer.size()));
        reader.feed(std::string_view(buffer.data(), static_cast<std::size_t>(file.gcount())));
    }
    reader.finish();
    if (file.bad())
        return Failure{"cannot read " + path};
    return Done{};
}

std::vector<Repository> repositoriesFrom(std::string_view targets)
{
    std::vector<Repository> repositories;
    std::unordered_map<std::string, std::size_t> numbers; // by base
    while (!targets.empty()) {
        const std::size_t end = std::min(targets.find('\n'), targets.size());
        const std::string_view line = targets.substr(0, end);
        targets.remove_prefix(std::min(end + 1, targets.size()));
        const std::size_t tab = line.find('\t');
        if (tab == std::string_view::npos)
            continue;
        std::string_view base = line.substr(0, tab);
        if (base.substr(0, 7) != "http://" && base.substr(0, 8) != "https://" && base.substr(0, 6) != "ftp://")
            continue;
        std::string cleaned;
        std::string address = tidyAddress(withoutUser(base, cleaned));
        if (address.back() != '/')
            address.push_back('/');
        const auto [known, isNew] = numbers.try_emplace(address, repositories.size());
        if (isNew)
            repositories.push_back({std::move(address), {}});
        repositories[known->second].lists.emplace_back(line.substr(tab + 1));
    }
    return repositories;
}

std::vector<Repository> installedRepositories()
{
    std::string targets;
    const auto result =
        readProgramOutput({"apt-get", "indextargets", "--format", "$(REPO_URI)\t$(FILENAME)", "Identifier: Packages"},
                          [&targets](std::string_view piece) { targets.append(piece); });
    return result ? repositoriesFrom(targets) : std::vector<Repository>();
}

Outcome<Done> readDownloadedList(const std::string& path, const std::function<void(const Package&)>& take)
{
    StanzaReader reader(take);
    Outcome<Done> result = readProgramOutput({"/usr/lib/apt/apt-helper", "cat-file", path},
                                             [&reader](std::string_view piece) { reader.feed(piece); });
    reader.finish();
    return result;
}

} // namespace quarrynet::services
