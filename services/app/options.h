#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ground/Outcome.h"

namespace quarrynet::services {

/// The parsed command line.
struct Options
{
    enum class Command : std::uint8_t
    {
        Help,
        Version,
        Serve,
        Index,
        Crawl,
        Check,
        Status,
    };

    Command command = Command::Help;
    std::string help;       ///< with Command::Help: the text to print, including the last line end
    std::string dataFolder; ///< empty: the user's data folder

    // index
    bool ifNeeded = false;
    bool force = false;
    bool wait = false; ///< for another process that writes the index
    std::vector<std::string> packageFiles;
    std::string mirror;
    std::vector<std::string> contentsFiles;
    std::vector<std::string> catalogFiles;
    std::vector<std::string> folders;        ///< empty: the default folders
    std::vector<std::string> pictureFolders; ///< empty: the default folders

    // crawl
    std::string crawlAddress;
    bool crawlDue = false; ///< crawls the servers of the configuration that are due, and not `crawlAddress`
    std::uint32_t crawlDepth = 32;
    std::uint32_t crawlEntries = 1'000'000;
    std::uint32_t crawlMinutes = 60;
    std::uint32_t crawlRate = 10; ///< maximum listings per second

    // serve and status; an empty address is the service's default
    std::string webAddress;
    std::string imageAddress;
    std::string downloadAddress;
    std::string fileAddress;
    std::uint16_t port = 80;
    std::string proxyAddress = "127.0.0.1";
    std::uint16_t proxyPort = 8780;
    std::string user; ///< the user that root becomes; empty: nobody

    bool logQueries = false;

    // check
    std::string checkWords = "linux";

    std::string configFile; ///< all but index; empty: the user's configuration folder
};

/// Parses the arguments after the program's name. Options are "--name value" or "--name=value", flags just "--name".
/// Returns a Failure that names the wrong or missing argument.
Outcome<Options> parseOptions(const std::vector<std::string>& arguments);

} // namespace quarrynet::services
