#include "services/data_folder.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace quarrynet::services {

Outcome<std::string> openDataFolder(const std::string& chosen)
{
    std::filesystem::path folder = chosen;
    if (folder.empty()) {
        const char* data = std::getenv("XDG_DATA_HOME");
        const char* home = std::getenv("HOME");
        // A relative XDG_DATA_HOME has to be ignored.
        if (data != nullptr && data[0] == '/')
            folder = std::filesystem::path(data) / "quarrynet";
        else if (home != nullptr && home[0] != '\0')
            folder = std::filesystem::path(home) / ".local/share/quarrynet";
        else
            return Failure{"no home folder is set; name a folder with --data"};
    }
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error)
        return Failure{"cannot make the folder " + folder.string() + ": " + error.message()};
    if (!std::filesystem::is_directory(folder, error))
        return Failure{folder.string() + " is not a folder"};
    return folder.string();
}

} // namespace quarrynet::services
