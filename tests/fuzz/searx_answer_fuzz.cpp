#include "ground/utf8.h"
#include "live/searx_answer.h"
#include "tests/fuzz/fuzz_input.h"

using namespace quarrynet;
using namespace quarrynet::services;

namespace {

void checkAddress(std::string_view address)
{
    fuzz::check(address.size() <= kMaxRowAddress, "the length of an address is in range");
    fuzz::check(address.starts_with("http://") || address.starts_with("https://"), "an address can be opened");
    for (const char c : address)
        fuzz::check(c > ' ' && c < 0x7F && c != '>' && c != '"', "an address fits into a page");
}

void checkText(std::string_view text, std::size_t most)
{
    fuzz::check(text.size() <= most && isUtf8(text), "a text is UTF-8 of bounded length");
    for (const char c : text)
        fuzz::check(static_cast<unsigned char>(c) >= ' ' && c != 0x7F, "a text is one line");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    for (const SearxCategory category : {SearxCategory::General, SearxCategory::Images}) {
        const Outcome<SearxAnswer> answer = readSearxAnswer(fuzz::textOf(data, size), category);
        if (!answer)
            continue;
        fuzz::check(answer->rows.size() <= answer->listed && answer->listed <= size, "rows come from the answer");
        for (const SearxRow& row : answer->rows) {
            checkAddress(row.address);
            if (!row.thumbnail.empty())
                checkAddress(row.thumbnail);
            checkText(row.title, kMaxRowTitle);
            checkText(row.text, kMaxRowText);
        }
        for (const auto& [name, reason] : answer->silent) {
            checkText(name, kMaxRowText);
            checkText(reason, kMaxRowText);
        }
    }
    return 0;
}
