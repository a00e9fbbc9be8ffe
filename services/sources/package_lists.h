#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "ground/Outcome.h"

/// The package lists of the machine, as `apt-cache dumpavail` prints them.
namespace quarrynet::services {

/// One package. Texts are UTF-8 on one line; a missing field is empty or 0.
struct Package
{
    std::string name;
    std::string summary;     ///< the description's first line
    std::string description; ///< its other lines
    std::string homepage;
    std::string source;  ///< name of the source package; `name` when there is no such field
    std::string section; ///< including its area: "games", "non-free/sound"
    std::string architecture;
    std::string file; ///< path below the mirror's base, such as "pool/main/h/hello/hello_2.10-3_amd64.deb"
    std::int64_t size = 0;
};

/// Parses stanzas of "Name: value" lines from text that arrives in pieces of any size. Lines that begin with a blank
/// continue the field above them; field names are case-insensitive; other lines are skipped. A stanza without a package
/// name is ignored. At most a megabyte of each stanza is used, in whole lines.
class StanzaReader
{
public:
    explicit StanzaReader(std::function<void(const Package&)> take) : take_(std::move(take)) {}

    void feed(std::string_view piece);

    /// Call after the last piece: the last stanza may lack the empty line after it.
    void finish();

private:
    void appendBounded(std::string_view text);
    void takeLine(std::string_view line);
    void endStanza();

    std::function<void(const Package&)> take_;
    std::string line_;
    std::string* field_ = nullptr; ///< the field that continuation lines belong to, or null when it is not used
    Package package_;
    std::size_t stanzaBytes_ = 0;
};

/// Reads all package lists of the machine, without a shell, and passes every package to `take`.
Outcome<Done> readInstalledLists(const std::function<void(const Package&)>& take);

/// Reads one file of stanzas, and passes every package to `take`.
Outcome<Done> readListFile(const std::string& path, const std::function<void(const Package&)>& take);

/// A repository of the machine's package sources.
struct Repository
{
    std::string base;               ///< its address, ending in "/", without user name and password
    std::vector<std::string> lists; ///< its downloaded list files, possibly compressed
};

/// Returns the machine's repositories with an http, https or ftp address, or none when they cannot be determined.
std::vector<Repository> installedRepositories();

/// Reads one downloaded list file, decompresses it, and passes every package to `take`.
Outcome<Done> readDownloadedList(const std::string& path, const std::function<void(const Package&)>& take);

/// Parses the output of the package tool, "base TAB file" per line. Public for tests.
std::vector<Repository> repositoriesFrom(std::string_view targets);

} // namespace quarrynet::services
