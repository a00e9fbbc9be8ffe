#include <algorithm>
#include <string>

#include "common/SearchHistory.h"
#include "tests/fuzz/fuzz_input.h"

using namespace quarrynet;

// The input is a typed text, terminated by a NUL, and the content of a history file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string_view text = fuzz::textOf(data, size);
    const std::string_view typed = fuzz::takeText(text);
    SearchHistory history = SearchHistory::fromText(text);
    for (const HistoryKind kind : {HistoryKind::Keywords, HistoryKind::Addresses, HistoryKind::FileNames}) {
        for (const std::string& entry : history.entries(kind))
            fuzz::check(mayBeKept(kind, entry), "an entry may be kept");
        const std::size_t before = history.entries(kind).size();
        history.add(kind, typed);
        fuzz::check(history.entries(kind).size() >= before, "nothing is lost");
    }
    const std::string written = history.text();
    fuzz::check(SearchHistory::fromText(written).text() == written, "what is written is read");
    return 0;
}
