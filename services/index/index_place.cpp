#include "index/index_place.h"

#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <unistd.h>

namespace quarrynet::services {

namespace {

constexpr const char* kSystemCommand = "sudo systemctl start quarrynet-services-index.service";
constexpr const char* kSystemCrawl = "sudo systemctl enable --now quarrynet-services-crawl.timer";
constexpr const char* kProgram = "quarrynet-services ";

/// Returns the folder's whole path without detours and without a "/" at its end.
std::string tidy(const std::string& folder)
{
    std::error_code error;
    const std::filesystem::path whole = std::filesystem::absolute(folder, error);
    std::string path = (error ? std::filesystem::path(folder) : whole).lexically_normal().string();
    if (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

/// Returns `text` as one word of a shell's command.
std::string shellWord(std::string_view text)
{
    constexpr std::string_view kPlain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-./:,+@%";
    if (!text.empty() && text.find_first_not_of(kPlain) == std::string_view::npos)
        return std::string(text);
    std::string word = "'";
    for (const char c : text)
        word += c == '\'' ? std::string_view("'\\''") : std::string_view(&c, 1);
    return word + "'";
}

std::string valueOf(const char* variable)
{
    const char* value = std::getenv(variable);
    return value == nullptr ? "" : value;
}

} // namespace

bool isSystemsFolder(const std::string& dataFolder)
{
    const std::filesystem::path folder = std::filesystem::path(dataFolder).lexically_normal();
    return folder == kSystemDataFolder || folder == std::string(kSystemDataFolder) + "/";
}

Outcome<std::string> usualDataFolder()
{
    const std::string data = valueOf("XDG_DATA_HOME");
    const std::string home = valueOf("HOME");
    // A relative XDG_DATA_HOME must be ignored.
    if (data.starts_with('/'))
        return (std::filesystem::path(data) / "quarrynet").string();
    if (!home.empty())
        return (std::filesystem::path(home) / ".local/share/quarrynet").string();
    return Failure{"HOME is not set; choose a folder with --data"};
}

IndexCommands indexCommands(const std::string& dataFolder, Reader reader)
{
    const std::string program = kProgram;
    const Outcome<std::string> usual = usualDataFolder();
    std::string folder;
    if (isSystemsFolder(dataFolder) || !usual || tidy(*usual) != tidy(dataFolder))
        folder = " --data " + (reader == Reader::Owner ? shellWord(tidy(dataFolder)) : "DATA-FOLDER");
    const std::string look = "sudo " + program + "status" + folder;
    if (isSystemsFolder(dataFolder)) {
        // The unit does not replace a newer index, and everybody knows this folder. A person's own services cannot use
        // its index.
        return {kSystemCommand, "sudo " + program + "index --force --data " + kSystemDataFolder, kSystemCrawl,
                program + "serve", look};
    }
    const std::string begin = (::geteuid() == 0 && !valueOf("SUDO_USER").empty() ? "sudo " : "") + program;
    return {begin + "index" + folder, begin + "index --force" + folder, begin + "crawl --due" + folder,
            begin + "serve" + folder, look};
}

std::string newerIndexRemedy(const IndexCommands& commands)
{
    return "install that version again, or run \"" + commands.replace +
           "\" to replace the index, which loses the crawled servers";
}

std::string poorerIndexRemedy(const std::string& dataFolder)
{
    // A person repeats their own command with its options; the unit's command is not theirs.
    return isSystemsFolder(dataFolder)
               ? "to replace it, run \"" + indexCommands(dataFolder, Reader::Owner).replace + "\""
               : "use --force to replace it";
}

} // namespace quarrynet::services
