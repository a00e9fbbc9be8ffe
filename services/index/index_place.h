#pragma once

#include <cstdint>
#include <string>

#include "ground/Outcome.h"

/// Where an index is, and which commands make it.
namespace quarrynet::services {

/// The folder of the index of the system's services, as their units set it.
inline constexpr const char* kSystemDataFolder = "/var/lib/quarrynet";

/// Returns whether the system's services use the index in this folder, so that their units make it.
bool isSystemsFolder(const std::string& dataFolder);

/// Returns the folder that is used if no option names another: "quarrynet" in the user's data folder (XDG Base
/// Directory Specification). Fails if the environment names no home.
Outcome<std::string> usualDataFolder();

/// Who reads a message about the index.
enum class Reader : std::uint8_t
{
    Owner,   ///< the user who started this program, at the terminal
    Anybody, ///< readers of a page, who see the word DATA-FOLDER instead of the folder's path
};

/// Commands as a person types them. They name the data folder unless it is the usual one, and begin with "sudo" if
/// this process is root by sudo, because the usual folder is root's then.
struct IndexCommands
{
    std::string make;    ///< makes the index
    std::string replace; ///< replaces even an index of a newer version
    std::string crawl;   ///< adds the configured servers that are due
    std::string serve;   ///< answers from it
    std::string look;    ///< says as root what the index has
};

/// Returns the commands for the index in `dataFolder`. Call it before the process gives up root's rights.
IndexCommands indexCommands(const std::string& dataFolder, Reader reader);

/// Returns what a person can do about an index of a newer version: a clause without a full stop.
std::string newerIndexRemedy(const IndexCommands& commands);

/// Returns what a person can do about a new index that has much less than the one in use: a clause without a full stop.
std::string poorerIndexRemedy(const std::string& dataFolder);

} // namespace quarrynet::services
