#include "index/summary.h"

#include <sys/stat.h>

#include "index/name_blocks.h"

namespace quarrynet::services {

namespace {

std::optional<std::int64_t> timeOf(const std::string& path)
{
    struct stat status
    {};
    if (::stat(path.c_str(), &status) != 0)
        return std::nullopt;
    return static_cast<std::int64_t>(status.st_mtime);
}

} // namespace

Outcome<IndexSummary> summarize(Database& index)
{
    IndexSummary summary;
    std::int64_t blocks = 0;
    for (const auto& [sql, number] : {std::pair("SELECT count(*) FROM web_page", &summary.webPages),
                                      std::pair("SELECT count(*) FROM picture", &summary.pictures),
                                      std::pair("SELECT count(*) FROM program", &summary.programs),
                                      std::pair("SELECT count(*) FROM file_entry", &summary.files),
                                      std::pair("SELECT count(*) FROM listed_block", &blocks)}) {
        Outcome<Statement> row = index.prepare(sql);
        if (!row)
            return row.error();
        if (row->step() != Statement::Step::Row)
            return row->failure();
        *number = row->number(0);
    }
    summary.listedFiles = blocks * static_cast<std::int64_t>(kBlockNames);
    for (const auto& [sql, list] :
         {std::pair("SELECT base FROM mirror ORDER BY id LIMIT ?1", &summary.mirrors),
          std::pair("SELECT path FROM folder ORDER BY id LIMIT ?1", &summary.folders),
          std::pair("SELECT path FROM picture_folder ORDER BY id LIMIT ?1", &summary.pictureFolders)}) {
        Outcome<Statement> rows = index.prepare(sql);
        if (!rows)
            return rows.error();
        rows->bind(1, kMostSummarized);
        Statement::Step step = rows->step();
        for (; step == Statement::Step::Row; step = rows->step())
            list->emplace_back(rows->text(0));
        if (step == Statement::Step::Failed)
            return rows->failure();
    }
    Outcome<Statement> rows =
        index.prepare("SELECT base, crawled FROM file_site WHERE crawled <> 0 ORDER BY base LIMIT ?1");
    if (!rows)
        return rows.error();
    rows->bind(1, kMostSummarized);
    Statement::Step step = rows->step();
    for (; step == Statement::Step::Row; step = rows->step())
        summary.crawls.emplace_back(std::string(rows->text(0)), rows->number(1));
    if (step == Statement::Step::Failed)
        return rows->failure();
    return summary;
}

std::optional<std::int64_t> indexTime(const std::string& path)
{
    return timeOf(path);
}

std::optional<std::int64_t> unfinishedIndexTime(const std::string& path)
{
    return timeOf(path + ".new");
}

} // namespace quarrynet::services
