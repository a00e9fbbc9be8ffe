#include "common/link_file.h"
#include "fuzz_input.h"

using namespace quarrynet;
using namespace quarrynet::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    for (const char* name : {"a.url", "a.desktop", "a.webloc"}) {
        const std::optional<std::string> address = addressInLinkFile(name, textOf(data, size));
        const std::optional<std::string> checked = address ? checkableAddress(*address) : std::nullopt;
        check(!checked || checked->starts_with("http"), "an address of the web");
        check(!checked || checked->find_first_of("\r\n #") == std::string::npos, "one word without a fragment");
    }
    return 0;
}
