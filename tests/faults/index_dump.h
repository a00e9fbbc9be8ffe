#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "index/database.h"
#include "index/sqlite.h"

/// Reads an index for comparison in tests.
namespace quarrynet::services {

inline std::string fileContent(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Returns all rows of the index in a data folder as sorted lines of text. Adds an error message if the index cannot be
/// read, or if its full-text tables do not match the others.
inline std::string dumpOf(const std::string& dataFolder)
{
    // Reads a copy, so that the index itself does not change.
    const std::string copy = dataFolder + ".copy";
    std::error_code error;
    std::filesystem::copy_file(indexPath(dataFolder), copy, std::filesystem::copy_options::overwrite_existing, error);
    if (error)
        return "no copy: " + error.message();
    std::string dump;
    Outcome<Database> index = Database::open(copy, Database::Access::Create);
    if (!index)
        return index.error().message;
    for (const char* table : {"web_page_text", "program_text", "file_name", "picture_text"}) {
        const std::string name = table;
        const std::string check = "INSERT INTO " + name + "(" + name + ", rank) VALUES ('integrity-check', 1)";
        if (const Outcome<Done> whole = index->execute(check.c_str()); !whole)
            dump += name + ": " + whole.error().message + "\n";
    }
    for (const char* sql : {
             "PRAGMA integrity_check",
             "SELECT path FROM folder ORDER BY 1",
             "SELECT path FROM document ORDER BY 1",
             "SELECT path FROM shown_picture ORDER BY 1",
             "SELECT address || '|' || title || '|' || description FROM web_page ORDER BY 1",
             "SELECT name || '|' || address FROM page_name JOIN web_page ON web_page.id = page ORDER BY 1",
             "SELECT name || '|' || description || '|' || system || '|' || size || '|' || licence || '|' || base || "
             "'|' || file FROM program JOIN mirror ON mirror.id = mirror ORDER BY 1",
             "SELECT base || '|' || path || '|' || name || '|' || ifnull(size, '-') || '|' || directory FROM "
             "file_entry "
             "JOIN file_folder ON file_folder.id = folder JOIN file_site ON file_site.id = site ORDER BY 1",
             "SELECT picture.path || '|' || name || '|' || place || '|' || stem FROM picture JOIN picture_folder "
             "ON picture_folder.id = folder ORDER BY 1",
         }) {
        Outcome<Statement> rows = index->prepare(sql);
        if (!rows)
            return dump + rows.error().message;
        Statement::Step step = rows->step();
        for (; step == Statement::Step::Row; step = rows->step())
            dump += std::string(rows->text(0)) + "\n";
        if (step == Statement::Step::Failed)
            return dump + rows->failure().message;
    }
    return dump;
}

} // namespace quarrynet::services
