#include "app/own_program.h"

#include <system_error>

namespace quarrynet::services {

std::filesystem::path ownProgram()
{
    std::error_code error;
    std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::filesystem::path() : program;
}

std::string manualFolder(const std::filesystem::path& program)
{
    if (program.empty())
        return {};
    for (const char* place : {"manual", QUARRYNET_INSTALLED_MANUAL}) {
        std::error_code error;
        const std::filesystem::path folder = (program.parent_path() / place).lexically_normal();
        if (std::filesystem::is_directory(folder, error))
            return folder.string();
    }
    return {};
}

std::filesystem::path thumbnailProgram(const std::filesystem::path& program)
{
    constexpr const char* kName = "quarrynet-thumbnails";
    std::filesystem::path beside = program.parent_path() / kName;
    std::filesystem::path installed = (program.parent_path() / QUARRYNET_INSTALLED_HELPERS / kName).lexically_normal();
    std::error_code error;
    const bool isInstalled = !std::filesystem::exists(beside, error) && std::filesystem::exists(installed, error);
    return isInstalled ? installed : beside;
}

} // namespace quarrynet::services
