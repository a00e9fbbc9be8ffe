#include "searches/missing_content.h"

#include <string_view>

#include "text/markup.h"

namespace quarrynet::services {

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
    const std::string_view note =
        kind == Missing::Programs
            ? translated(
                  "The index has no programs, because this machine has no package lists. Connect it to a network, "
                  "run \"sudo apt update\", then \"quarrynet-services index\".",
                  language)
            : translated("The index has no pictures, because this machine has none where it looked. Run "
                         "\"quarrynet-services index --pictures FOLDER\" with a folder of pictures.",
                         language);
    page.append("<p>").append(escapeText(note)).append("</p>\n");
    page += kEnd;
}

} // namespace quarrynet::services
