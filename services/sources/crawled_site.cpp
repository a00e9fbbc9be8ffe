#include "sources/crawled_site.h"

#include <algorithm>
#include <tuple>
#include <vector>

#include "index/IndexWriter.h"

namespace quarrynet::services {

Outcome<Done> storeCrawl(const std::string& dataFolder, std::string_view base, std::int64_t time, Crawl crawl,
                         const std::function<bool()>& again)
{
    Outcome<IndexWriter> writer = IndexWriter::extend(dataFolder, again);
    if (!writer)
        return writer.error();
    Outcome<Done> removed = writer->removeFileSite(base);
    if (!removed)
        return removed;
    const Outcome<std::int64_t> site = writer->addFileSite(base, time);
    if (!site)
        return site.error();
    std::vector<std::int64_t> folders;
    for (const std::string& path : crawl.folders) {
        const Outcome<std::int64_t> folder = writer->addFileFolder(*site, path);
        if (!folder)
            return folder.error();
        folders.push_back(*folder);
    }
    const Outcome<std::int64_t> first = writer->nextCrawledFile();
    if (!first)
        return first.error();
    // Searches show short names first, which a typed text covers best.
    std::sort(crawl.files.begin(), crawl.files.end(), [](const CrawledFile& a, const CrawledFile& b) {
        return std::make_tuple(a.name.size(), a.directory, std::string_view(a.name), a.folder) <
               std::make_tuple(b.name.size(), b.directory, std::string_view(b.name), b.folder);
    });
    std::int64_t number = *first;
    for (const CrawledFile& file : crawl.files) {
        Outcome<Done> added = writer->addFile(number++, {folders[file.folder], file.name, file.size, file.directory});
        if (!added)
            return added;
    }
    return writer->commit();
}

} // namespace quarrynet::services
