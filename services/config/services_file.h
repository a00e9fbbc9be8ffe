#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "config/crawl_address.h"
#include "ground/Expected.h"
#include "ground/Outcome.h"

/// The configuration of the services: one TOML file that says which sources each service asks. Without a file each
/// service asks the index.
namespace quarrynet::services {

inline constexpr std::size_t kMaxServicesFile = 256 * 1024;
inline constexpr std::size_t kMaxCaFile = 4 * 1024 * 1024;
inline constexpr std::size_t kMostSources = 8;
inline constexpr std::size_t kMostInstances = 8;
inline constexpr std::size_t kMaxSourceAddress = 1024;

/// A source that a search asks.
struct SourceSetting
{
    /// Addresses of SearXNG or searx instances that stand in for each other, without a trailing slash. Empty: the
    /// index.
    std::vector<std::string> instances;
    std::size_t line = 0; ///< in the file, counted from 1

    bool isIndex() const { return instances.empty(); }
};

enum class SafeSearch : std::uint8_t
{
    Off,
    Moderate,
    Strict,
};

/// The table of one service.
struct ServiceSettings
{
    std::vector<SourceSetting> sources{SourceSetting{}}; ///< in the order of their results; never empty
    std::string language = "all";                        ///< "all", or a language code such as "de" or "pt-BR"
    SafeSearch safeSearch = SafeSearch::Off;
    std::chrono::seconds wait{6}; ///< for the sources, per search

    /// Returns whether a source other than the index is asked.
    bool asksOthers() const;
};

inline constexpr std::size_t kMostCrawls = 64;

/// A server that "crawl --due" lists: a table [[crawl]].
struct CrawlSetting
{
    CrawlAddress address;
    std::chrono::hours interval{168};
    std::uint32_t depth = 32; ///< this and the following as the options of "crawl"
    std::uint32_t entries = 1'000'000;
    std::uint32_t minutes = 60;
    std::uint32_t rate = 10;
};

/// The content of the file. A further table is one more member here, and one more entry in readServicesFile().
struct ServicesFile
{
    ServiceSettings web;
    ServiceSettings image;
    /// Whether pictures may be fetched from private and loopback addresses ("private-pictures" in [image]).
    bool privatePictures = false;
    bool logQueries = false; ///< write what people type to the error output
    std::string path;        ///< as in messages; empty without a file
    std::vector<CrawlSetting> crawls;
    std::string caFile; ///< certificates (PEM) to trust besides the system's; may be empty
};

/// Lines "FILE:LINE: message" for a person to read; never empty.
using FileFaults = std::vector<std::string>;

/// A file as far as it can be used.
struct UsableServices
{
    ServicesFile file;
    FileFaults faults; ///< of the whole file; empty if nothing is wrong
    /// The first fault that leaves unknown which sources the web or the image search should ask; empty if there is
    /// none. A fault in one service's table concerns that service, and one outside of all tables both.
    std::string webFault;
    std::string imageFault;
};

/// Parses the content of the file; `name` is its name in messages.
Expected<ServicesFile, FileFaults> readServicesFile(std::string_view text, const std::string& name);

/// Reads the file `chosen`, or if that is empty, "quarrynet/services.toml" in $XDG_CONFIG_HOME or ~/.config (the XDG
/// base directories). Returns the defaults when nothing was chosen and there is no file.
Expected<ServicesFile, FileFaults> loadServicesFile(const std::string& chosen);

/// Does the same, but returns what a faulty file still says.
UsableServices loadUsableServices(const std::string& chosen);

/// Returns the content of `caFile`, or an empty text if that is empty.
Outcome<std::string> readCertificates(const std::string& caFile);

} // namespace quarrynet::services
