#include <algorithm>
#include <string>

#include "common/letter_case.h"
#include "search/page/keywords.h"
#include "search/page/presence.h"
#include "tests/fuzz/fuzz_input.h"

using namespace quarrynet;

// The input is the typed text, a NUL, and the page.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string_view page = fuzz::textOf(data, size);
    const std::string_view typed = fuzz::takeText(page);
    const std::vector<std::string> entries = keywordEntries(typed);
    const std::string lowerPage = lowerCase(page);
    const std::vector<PresenceRow> any = presenceRows(page, entries, typed, static_cast<int>(MatchMode::AnyKeyword));
    fuzz::check(any.size() == entries.size(), "there is a row for each keyword");
    bool all = true;
    for (const PresenceRow& row : any) {
        const bool found = lowerPage.find(row.keyword) != std::string::npos;
        fuzz::check(row.result == (found ? "Found" : "Not Found"), "a keyword is found if and only if it occurs");
        all = all && found;
    }
    const auto rows = presenceRows(page, entries, typed, static_cast<int>(MatchMode::AllKeywords));
    fuzz::check(all ? rows == any : rows.size() == 1 && !rows[0].result, "the rows are all keywords, or the summary");
    fuzz::check(presenceRows(page, entries, typed, static_cast<int>(MatchMode::ExactSearch)).size() == 1,
                "the phrase has one row");
    fuzz::check(presenceRows(page, entries, typed, 7).empty(), "an unknown mode has no rows");
    return 0;
}
