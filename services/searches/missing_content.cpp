#include "searches/missing_content.h"

#include <string_view>

#include "text/markup.h"

namespace quarrynet::services {

namespace {

std::string noteOf(Missing kind, const IndexPool& index, Language language)
{
    if (kind == Missing::Programs)
        return translated("The index has no programs, because this machine has no package lists. Connect it to a "
                          "network, run \"sudo apt update\", then \"%1\".",
                          language, index.makingCommand());
    // The units of the system's services see only what is installed.
    if (index.isSystems())
        return translated("The index has no pictures, because this machine has none where it looked. Install a package "
                          "with pictures, then run \"%1\".",
                          language, index.makingCommand());
    return translated("The index has no pictures, because this machine has none where it looked. Run "
                      "\"%1 --pictures FOLDER\" with a folder of pictures.",
                      language, index.makingCommand());
}

} // namespace

void noteMissing(std::string& page, IndexPool& index, Missing kind, Language language)
{
    constexpr std::string_view kEnd = "</body></html>\n";
    Outcome<IndexPool::Lease> lease = index.borrow();
    if (!lease || !page.ends_with(kEnd))
        return;
    Outcome<Statement> row = (*lease)->prepare(kind == Missing::Programs ? "SELECT 1 FROM program LIMIT 1"
                                                                         : "SELECT 1 FROM picture LIMIT 1");
    if (!row || row->step() != Statement::Step::Finished)
        return;
    page.resize(page.size() - kEnd.size());
    page.append("<p>").append(escapeText(noteOf(kind, index, language))).append("</p>\n");
    page += kEnd;
}

} // namespace quarrynet::services
