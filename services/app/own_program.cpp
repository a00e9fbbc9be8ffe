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
    for (const char* place : {"manual", "../share/quarrynet/manual"}) {
        std::error_code error;
        const std::filesystem::path folder = (program.parent_path() / place).lexically_normal();
        if (std::filesystem::is_directory(folder, error))
            return folder.string();
    }
    return {};
}

} // namespace quarrynet::services
