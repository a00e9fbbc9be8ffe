#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "ground/Outcome.h"

/// The package lists of the machine, as `apt-cache dumpavail` prints them.
namespace quarrynet::services {

/// One package. Texts are UTF-8 on one line; what a stanza does not say is empty or 0.
struct Package
{
    std::string name;
    std::string summary;     ///< the description's first line
    std::string description; ///< its other lines
    std::string homepage;
    std::string source;  ///< name of the source package; its own when it does not say
    std::string section; ///< with its area: "games", "non-free/sound"
    std::string architecture;
    std::string file; ///< path below the mirror's base, such as "pool/main/h/hello/hello_2.10-3_amd64.deb"
    std::int64_t size = 0;
};

/// Reads stanzas of "Name: value" lines from text that arrives in pieces of any size. Lines that begin with a blank
/// continue the field above them; field names are compared without case; anything else that is no field is passed over.
/// A stanza without a package name gives nothing. Of one stanza at most a
/// megabyte is kept, in whole lines.
class StanzaReader
{
public:
    explicit StanzaReader(std::function<void(const Package&)> take) : take_(std::move(take)) {}

    void feed(std::string_view piece);

    /// After the last piece: the last stanza may end without an empty line.
    void finish();

private:
    void appendBounded(std::string_view text);
    void takeLine(std::string_view line);
    void endStanza();

    std::function<void(const Package&)> take_;
    std::string line_;
    std::string* field_ = nullptr; ///< what continuation lines belong to; null: nothing that is kept
    Package package_;
    std::size_t stanzaBytes_ = 0;
};

/// Reads all package lists that the machine has, without a shell, and gives every package to `take`.
Outcome<Done> readInstalledLists(const std::function<void(const Package&)>& take);

/// Reads one file of stanzas.
Outcome<Done> readListFile(const std::string& path, const std::function<void(const Package&)>& take);

/// A repository of the machine's package sources.
struct Repository
{
    std::string base;               ///< its address, ending in "/", without user name and password
    std::vector<std::string> lists; ///< its downloaded list files, possibly compressed
};

/// The repositories of the machine with an http, https or ftp address. Empty when there are none or they cannot be
/// asked for.
std::vector<Repository> installedRepositories();

/// Reads one downloaded list file, decompressed.
Outcome<Done> readDownloadedList(const std::string& path, const std::function<void(const Package&)>& take);

/// Cuts the output of the machine's package tool, "base TAB file" per line, into repositories. Pure, for tests.
std::vector<Repository> repositoriesFrom(std::string_view targets);

} // namespace quarrynet::services
