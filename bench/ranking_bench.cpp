#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "index/database.h"
#include "index/query.h"
#include "searches/DownloadService.h"
#include "searches/FileService.h"
#include "searches/ImageService.h"
#include "searches/WebService.h"
#include "sources/indexing.h"

/// Measures the ranking of the searches: the mean reciprocal rank over a judged set, compared with that of plain bm25
/// order (for files: the order of names) over the same index.
///
///     ranking_bench bench/ranking/judged.tsv [DATA-FOLDER]
///
/// Without a data folder it indexes this machine. The target is above 0.9. Exit status: 0 when it is reached, 1 when it
/// is missed, 2 when nothing can be measured.

using namespace quarrynet;
using namespace quarrynet::services;

namespace {

constexpr double kWanted = 0.9;
constexpr std::size_t kDepth = 100; ///< an answer at a later place counts as missing

struct Judged
{
    std::string service;
    std::string typed;
    std::vector<std::string> wanted;
};

std::vector<std::string> split(const std::string& text, char divider)
{
    std::vector<std::string> parts(1);
    for (const char c : text) {
        if (c == divider)
            parts.emplace_back();
        else
            parts.back().push_back(c);
    }
    return parts;
}

std::vector<Judged> readJudged(const char* path)
{
    std::vector<Judged> judged;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        const std::vector<std::string> fields = split(line, '\t');
        if (line.substr(0, 1) != "#" && fields.size() == 3)
            judged.push_back({fields[0], fields[1], split(fields[2], '|')});
    }
    return judged;
}

/// Returns `address` as the judged set names it: without scheme and trailing slashes.
std::string addressName(std::string_view address)
{
    const std::size_t scheme = address.find("://");
    if (scheme != std::string_view::npos)
        address.remove_prefix(scheme + 3);
    while (!address.empty() && address.back() == '/')
        address.remove_suffix(1);
    return std::string(address);
}

std::string fileStem(std::string_view name)
{
    return std::string(name.substr(0, name.find('_')));
}

std::string pictureStem(std::string_view path)
{
    path = path.substr(path.rfind('/') + 1);
    path = path.substr(0, path.rfind('.'));
    constexpr std::string_view kSymbolic = "-symbolic";
    if (path.size() > kSymbolic.size() && path.substr(path.size() - kSymbolic.size()) == kSymbolic)
        path.remove_suffix(kSymbolic.size());
    return std::string(path);
}

using Names = std::vector<std::string>;
using Ask = std::function<Names(const std::string& typed)>;

/// Returns a function that collects a service's answers, page by page.
template <class Service, class Name>
Ask pagesOf(Service& service, Name name)
{
    return [&service, name](const std::string& typed) {
        Names names;
        while (names.size() < kDepth) {
            const auto answer = service.search(typed, static_cast<std::int64_t>(names.size()));
            if (!answer || answer->hits.empty())
                break;
            for (const auto& hit : answer->hits)
                names.push_back(name(hit));
        }
        return names;
    };
}

/// Returns a function that collects the answers of a plain statement. `name` turns its only column into a name; ?1 is
/// the expression for the typed words.
Ask rowsOf(IndexPool& pool, const char* sql, std::string (*name)(std::string_view))
{
    return [&pool, sql, name](const std::string& typed) {
        Names names;
        Outcome<IndexPool::Lease> index = pool.borrow();
        if (!index)
            return names;
        Outcome<Statement> rows = (*index)->prepare(sql);
        if (!rows)
            return names;
        rows->bind(1, wordExpression(typed));
        while (names.size() < kDepth && rows->step() == Statement::Step::Row)
            names.push_back(name(rows->text(0)));
        return names;
    };
}

double reciprocalRank(const Names& shown, const Judged& judged)
{
    for (std::size_t i = 0; i < shown.size() && i < kDepth; ++i) {
        if (std::find(judged.wanted.begin(), judged.wanted.end(), shown[i]) != judged.wanted.end())
            return 1.0 / static_cast<double>(i + 1);
    }
    return 0;
}

std::string rankText(double reciprocal)
{
    return reciprocal == 0 ? "-" : std::to_string(std::lround(1 / reciprocal));
}

int measure(const std::vector<Judged>& set, const std::string& data)
{
    IndexPool pool(data);
    WebService web(pool, "http://127.80.0.1");
    DownloadService downloads(pool);
    FileService files(pool);
    ImageService images(pool, "127.80.0.2", nullptr);
    const auto same = [](std::string_view text) { return std::string(text); };
    const std::map<std::string, std::pair<Ask, Ask>> services{
        {"web",
         {pagesOf(web, [](const WebHit& hit) { return addressName(hit.address); }),
          rowsOf(pool,
                 "SELECT address FROM web_page_text JOIN web_page ON web_page.id = web_page_text.rowid WHERE "
                 "web_page_text MATCH ?1 AND rank MATCH 'bm25(5.0, 1.0)' ORDER BY rank",
                 addressName)}},
        {"download",
         {pagesOf(downloads, [](const ProgramHit& hit) { return hit.name; }),
          rowsOf(pool,
                 "SELECT program.name FROM program_text JOIN program ON program.id = program_text.rowid WHERE "
                 "program_text MATCH ?1 AND rank MATCH 'bm25(5.0, 1.0)' ORDER BY rank",
                 same)}},
        {"file",
         {pagesOf(files, [](const FileHit& hit) { return fileStem(hit.name); }),
          rowsOf(pool, "SELECT name FROM file_name WHERE file_name MATCH ?1 ORDER BY name", fileStem)}},
        {"image",
         {pagesOf(images, [](const ImageHit& hit) { return pictureStem(hit.caption); }),
          rowsOf(pool,
                 "SELECT path FROM picture_text JOIN picture ON picture.id = picture_text.rowid WHERE picture_text "
                 "MATCH ?1 AND rank MATCH 'bm25(4.0, 1.0)' ORDER BY rank",
                 pictureStem)}},
    };
    double sum = 0;
    double plainSum = 0;
    std::printf("%-9s %-20s %6s %6s\n", "service", "typed", "place", "plain");
    for (const Judged& judged : set) {
        const auto service = services.find(judged.service);
        if (service == services.end()) {
            std::fprintf(stderr, "there is no service \"%s\"\n", judged.service.c_str());
            return 2;
        }
        const double rank = reciprocalRank(service->second.first(judged.typed), judged);
        const double plain = reciprocalRank(service->second.second(judged.typed), judged);
        std::printf("%-9s %-20s %6s %6s\n", judged.service.c_str(), judged.typed.c_str(), rankText(rank).c_str(),
                    rankText(plain).c_str());
        sum += rank;
        plainSum += plain;
    }
    const auto count = static_cast<double>(set.size());
    std::printf("mean reciprocal rank of %zu searches: %.3f, plain order: %.3f, wanted: above %.1f\n", set.size(),
                sum / count, plainSum / count, kWanted);
    return sum / count > kWanted ? 0 : 1;
}

int measureThisMachine(const std::vector<Judged>& set)
{
    std::string folder = (std::filesystem::temp_directory_path() / "quarrynet-bench-").string() + std::string(6, 'X');
    if (::mkdtemp(folder.data()) == nullptr)
        return 2;
    const IndexSources sources{{}, {}, {"/usr/share/doc"}, {"/usr/share/icons", "/usr/share/pixmaps"}};
    const Outcome<IndexCounts> counts = buildIndex(folder, sources, [](const std::string&) {});
    const bool usable = counts && counts->programs > 0;
    if (!usable)
        std::fprintf(stderr, "this machine has no package lists\n");
    const int status = usable ? measure(set, folder) : 2;
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
    return status;
}

} // namespace

int main(int argc, char** argv)
{
    const std::vector<Judged> set = argc > 1 ? readJudged(argv[1]) : std::vector<Judged>();
    if (set.empty()) {
        std::fprintf(stderr, "usage: ranking_bench bench/ranking/judged.tsv [DATA-FOLDER]\n");
        return 2;
    }
    return argc > 2 ? measure(set, argv[2]) : measureThisMachine(set);
}
