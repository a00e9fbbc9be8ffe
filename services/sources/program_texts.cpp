#include "sources/program_texts.h"

#include <array>
#include <utility>

namespace quarrynet::services {

std::string systemOf(std::string_view architecture)
{
    if (architecture.empty() || architecture == "all" || architecture == "any")
        return "Any system";
    // The name of a kernel other than Linux precedes that of the processor.
    constexpr std::array<std::pair<std::string_view, std::string_view>, 4> kKernels{
        {{"hurd-", "Hurd"}, {"kfreebsd-", "FreeBSD"}, {"netbsd-", "NetBSD"}, {"linux-", "Linux"}}};
    std::string_view kernel = "Linux";
    std::string_view processor = architecture;
    for (const auto& [prefix, name] : kKernels) {
        if (architecture.substr(0, prefix.size()) == prefix) {
            kernel = name;
            processor = architecture.substr(prefix.size());
            break;
        }
    }
    return std::string(kernel) + " (" + std::string(processor) + ")";
}

std::string licenseOf(std::string_view section)
{
    const std::string_view area = section.substr(0, section.find('/'));
    if (area == "non-free" || area == "non-free-firmware" || area == "restricted" || area == "multiverse")
        return "Non-free";
    if (area == "contrib")
        return "Unknown, needs non-free";
    return "Unknown";
}

} // namespace quarrynet::services
