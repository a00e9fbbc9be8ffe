#include "ground/utf8.h"
#include "tests/fuzz/fuzz_input.h"
#include "text/html_document.h"

using namespace quarrynet;
using namespace quarrynet::services;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr std::size_t kMaxText = 1000;
    const HtmlDocument document = readHtml(fuzz::textOf(data, size), kMaxText);
    fuzz::check(isUtf8(document.title) && isUtf8(document.text), "title and text are UTF-8");
    fuzz::check(document.text.size() <= kMaxText, "the text is bounded");
    for (const std::string_view text : {std::string_view(document.title), std::string_view(document.text)}) {
        for (const char c : text)
            fuzz::check(static_cast<unsigned char>(c) >= ' ', "title and text have no control characters");
    }
    return 0;
}
