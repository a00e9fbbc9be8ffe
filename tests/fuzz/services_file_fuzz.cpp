#include "config/services_file.h"
#include "tests/fuzz/fuzz_input.h"

using namespace quarrynet;
using namespace quarrynet::services;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto file = readServicesFile(fuzz::textOf(data, size), "s.toml");
    if (!file) {
        fuzz::check(!file.error().empty() && file.error().size() <= 20, "the number of faults is in range");
        for (const std::string& fault : file.error()) {
            fuzz::check(fault.starts_with("s.toml:"), "a fault has a place");
            fuzz::check(fault.find('\n') == std::string::npos, "a fault is one line");
        }
        return 0;
    }
    for (const ServiceSettings* service : {&file->web, &file->image}) {
        fuzz::check(!service->sources.empty(), "a service has a source");
        for (const SourceSetting& source : service->sources) {
            for (const std::string& instance : source.instances)
                fuzz::check(instance.starts_with("http") && instance.find_first_of("\r\n <>\"@?#") == std::string::npos,
                            "an instance has an address");
        }
    }
    return 0;
}
