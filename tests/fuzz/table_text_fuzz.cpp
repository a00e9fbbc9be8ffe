#include "common/table_text.h"
#include "fuzz_input.h"
#include "ground/utf8.h"

using namespace quarrynet;
using namespace quarrynet::fuzz;

// The input is a column of cells, each ended by a NUL.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string_view rest = textOf(data, size);
    Table table{std::string(takeText(rest)), {"A"}, {}, 0};
    while (!rest.empty())
        table.rows.push_back({std::string(takeText(rest))});

    const std::string csv = csvText(table);
    bool quoted = false;
    for (std::size_t i = 0; i < csv.size(); ++i) {
        if (csv[i] == '"')
            quoted = !quoted;
        const bool begins = i > 0 && csv[i - 1] == '"' && (i < 2 || csv[i - 2] == '\n');
        check(!(quoted && begins && std::string_view("=+-@\t\r").find(csv[i]) != std::string_view::npos),
              "no cell begins a formula");
    }
    check(!quoted && isUtf8(csv), "comma-separated values");

    const std::string json = jsonText(table);
    check(isUtf8(json) && json.find('\t') == std::string::npos, "JSON");
    const std::string html = htmlPage(table);
    check(isUtf8(html) && html.find("<script") == std::string::npos && html.find('\0') == std::string::npos, "HTML");
    const std::string name = suggestedFileName(table.title, "tab", "2026-01-31");
    check(name.size() <= 200 && name.find_first_of("<>:\"/\\|?*\n") == std::string::npos, "a file's name");
    return 0;
}
