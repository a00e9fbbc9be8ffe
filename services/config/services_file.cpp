#include "config/services_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "config/TomlTable.h"
#include "ground/Descriptor.h"
#include "ground/OpenFile.h"
#include "ground/ascii.h"
#include "ground/decimal.h"

namespace quarrynet::services {

namespace {

constexpr std::string_view kIndex = "index";
constexpr std::size_t kMaxHostName = 253; // RFC 1035, section 2.3.4

/// Returns what is wrong with a source's address, or an empty text.
std::string faultOfAddress(std::string_view address)
{
    const std::size_t scheme = address.find("://");
    const std::string_view name = address.substr(0, std::min(scheme, address.size()));
    if (name != "https" && name != "http")
        return "begins with neither https:// nor http://";
    if (address.size() > kMaxSourceAddress)
        return "is longer than " + std::to_string(kMaxSourceAddress) + " bytes";
    if (std::any_of(address.begin(), address.end(), [](char c) { return isBlankOrControl(c) || !isAscii(c); }))
        return "contains blanks, control characters or letters outside of ASCII";
    const std::string_view rest = address.substr(scheme + 3);
    if (rest.find_first_of("?#\\\"<>") != std::string_view::npos)
        return "contains a query or characters that addresses do not have; write the address of the front page";
    const std::string_view authority = rest.substr(0, rest.find('/'));
    if (authority.find('@') != std::string_view::npos)
        return "contains a user name";
    const std::size_t bracket = authority.find(']');
    const std::size_t colon = authority.find(':', bracket == std::string_view::npos ? 0 : bracket);
    const std::string_view host = authority.substr(0, colon);
    const bool numeric6 = host.size() > 2 && host.front() == '[' && host.back() == ']';
    const bool fits = std::all_of(host.begin(), host.end(), [numeric6](char c) {
        return isAsciiAlphanumeric(c) || c == '-' || c == '.' || (numeric6 && (c == ':' || c == '[' || c == ']'));
    });
    if (host.empty() || !fits || host.size() > kMaxHostName)
        return "has no valid host name";
    if (colon != std::string_view::npos) {
        const std::optional<int> port = wholeNumber(authority.substr(colon + 1));
        if (!port || *port < 1 || *port > 65535)
            return "has a wrong port";
    }
    return {};
}

std::string withoutTrailingSlash(std::string address)
{
    while (!address.empty() && address.back() == '/')
        address.pop_back();
    return address;
}

/// Takes one entry of "sources": "index", an address, or a list of addresses.
void readSource(TomlTable& table, const toml::node& node, std::vector<SourceSetting>& sources)
{
    constexpr const char* kAllowed = R"("sources" takes "index", the address of a SearXNG instance, or a list of such )"
                                     "addresses";
    SourceSetting source;
    source.line = TomlTable::lineOf(node);
    const auto take = [&](const toml::node& entry) {
        const std::optional<std::string> address = entry.value_exact<std::string>();
        const std::string fault = address ? faultOfAddress(*address) : "";
        if (!address)
            table.complain(entry, kAllowed);
        else if (!fault.empty())
            table.complain(entry, quotedForMessage(*address) + " " + fault + "; " + kAllowed);
        else
            source.instances.push_back(withoutTrailingSlash(*address));
    };
    if (const toml::array* list = node.as_array()) {
        for (const toml::node& entry : *list)
            take(entry);
        if (list->empty())
            table.complain(node, "this list of addresses is empty");
        if (list->size() > kMostInstances)
            table.complain(node, "a list of addresses has at most " + std::to_string(kMostInstances));
        if (source.instances.empty())
            return;
    } else if (node.value_exact<std::string>() != std::optional<std::string>(kIndex)) {
        take(node);
        if (source.instances.empty())
            return;
    }
    const bool again = std::any_of(sources.begin(), sources.end(), [&source](const SourceSetting& other) {
        return other.instances == source.instances;
    });
    if (again)
        table.complain(node, "this source is listed twice");
    else
        sources.push_back(std::move(source));
}

/// Reads the table of a service. `privatePictures` is null for services without pictures.
void readService(TomlTable& file, std::string_view name, FaultList& faults, ServiceSettings& settings,
                 bool* privatePictures = nullptr)
{
    const toml::table* found = file.table(name);
    if (found == nullptr)
        return;
    TomlTable table(*found, std::string("[").append(name).append("]"), faults);
    if (const toml::array* list = table.array("sources")) {
        settings.sources.clear();
        for (const toml::node& node : *list)
            readSource(table, node, settings.sources);
        if (list->empty())
            table.complain(*list, "\"sources\" is empty");
        if (list->size() > kMostSources)
            table.complain(*list, "\"sources\" has at most " + std::to_string(kMostSources) + " entries");
    }
    if (std::optional<std::string> language = table.text("language")) {
        const bool fits = !language->empty() && language->size() <= 16 &&
                          std::all_of(language->begin(), language->end(),
                                      [](char c) { return isAsciiAlphanumeric(c) || c == '-' || c == '_'; });
        if (fits)
            settings.language = std::move(*language);
        else
            table.complain(*found->get("language"),
                           R"("language" takes "all" or a code such as "de" or "pt-BR", not )" +
                               quotedForMessage(*language));
    }
    if (const std::optional<std::size_t> safe = table.choice("safe-search", {"off", "moderate", "strict"}))
        settings.safeSearch = static_cast<SafeSearch>(*safe);
    if (const std::optional<std::int64_t> wait = table.number("wait-seconds", 1, 20))
        settings.wait = std::chrono::seconds(*wait);
    if (privatePictures != nullptr)
        *privatePictures = table.flag("private-pictures").value_or(false);
    table.finish();
}

/// Reads the table of a service that has no other source than the index.
void readIndexedService(TomlTable& file, std::string_view name, FaultList& faults)
{
    const toml::table* found = file.table(name);
    if (found == nullptr)
        return;
    TomlTable table(*found, std::string("[").append(name).append("]"), faults);
    if (const toml::array* list = table.array("sources")) {
        const bool isIndexAlone =
            list->size() == 1 && list->get(0)->value_exact<std::string>() == std::optional<std::string>(kIndex);
        if (!isIndexAlone)
            table.complain(*list, R"("sources" takes ["index"] here; only [web] and [image] have other sources)");
    }
    table.finish();
}

void readCrawls(TomlTable& top, FaultList& faults, std::vector<CrawlSetting>& crawls)
{
    constexpr std::int64_t kMostHours = std::int64_t{24} * 365;
    constexpr std::int64_t kMost = 999'999'999;
    for (const toml::table* entry : top.tables("crawl")) {
        TomlTable table(*entry, "[[crawl]]", faults);
        CrawlSetting setting;
        const std::optional<std::string> text = table.text("address");
        if (const std::optional<std::int64_t> hours = table.number("interval-hours", 1, kMostHours))
            setting.interval = std::chrono::hours(*hours);
        for (const auto& [key, number] : {std::pair("depth", &setting.depth), std::pair("entries", &setting.entries),
                                          std::pair("minutes", &setting.minutes), std::pair("rate", &setting.rate)}) {
            if (const std::optional<std::int64_t> value = table.number(key, 1, kMost))
                *number = static_cast<std::uint32_t>(*value);
        }
        table.finish();
        if (entry->get("address") == nullptr)
            table.complain(*entry, R"([[crawl]] requires an "address")");
        if (!text)
            continue;
        const Outcome<CrawlAddress> address = readCrawlAddress(*text);
        if (!address) {
            table.complain(*entry->get("address"), "this cannot be crawled: " + address.error().message);
            continue;
        }
        setting.address = *address;
        const bool isKnown = std::any_of(crawls.begin(), crawls.end(), [&address](const CrawlSetting& known) {
            return crawlBase(known.address) == crawlBase(*address);
        });
        if (isKnown)
            table.complain(*entry->get("address"), "this address is crawled twice");
        else if (crawls.size() == kMostCrawls)
            table.complain(*entry, "more than " + std::to_string(kMostCrawls) + " servers to crawl");
        else
            crawls.push_back(std::move(setting));
    }
}

/// Returns the path of the file, or an empty text when there is neither a configuration folder nor a home.
std::string usualFile()
{
    const char* folder = std::getenv("XDG_CONFIG_HOME");
    // A path that is not absolute is ignored, as the XDG base directories ask for.
    if (folder != nullptr && folder[0] == '/')
        return std::string(folder) + "/quarrynet/services.toml";
    const char* home = std::getenv("HOME");
    return home == nullptr || home[0] == '\0' ? std::string() : std::string(home) + "/.config/quarrynet/services.toml";
}

/// Returns a file's content, or nothing when there is no such file.
Outcome<std::optional<std::string>> contentOf(const std::string& path, std::size_t most)
{
    // A pipe without a writer must not block.
    Descriptor descriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!descriptor) {
        if (errno == ENOENT || errno == ENOTDIR)
            return std::optional<std::string>();
        return Failure{std::string("the file cannot be read: ") + std::strerror(errno)};
    }
    struct stat status = {};
    if (::fstat(descriptor.number(), &status) != 0 || !S_ISREG(status.st_mode))
        return Failure{"this is not a regular file"};
    const OpenFile file(std::move(descriptor), static_cast<std::uint64_t>(status.st_size));
    std::optional<std::string> content = file.content(most);
    if (!content)
        return Failure{"the file cannot be read, or is larger than " + std::to_string(most / 1024) + " KB"};
    return content;
}

} // namespace

bool ServiceSettings::asksOthers() const
{
    return std::any_of(sources.begin(), sources.end(), [](const SourceSetting& source) { return !source.isIndex(); });
}

namespace {

/// Appends `added` to `faults`, up to the number that one list has.
void append(FileFaults& faults, const FaultList& added)
{
    for (const std::string& fault : added.faults()) {
        if (faults.size() < FaultList::kMostFaults)
            faults.push_back(fault);
    }
}

UsableServices usableParts(std::string_view text, const std::string& name)
{
    UsableServices result;
    ServicesFile& file = result.file;
    FaultList web(name);
    FaultList image(name);
    FaultList others(name);
    FaultList whole(name);
    const toml::parse_result parsed = text.size() > kMaxServicesFile ? toml::parse("") : toml::parse(text);
    if (text.size() > kMaxServicesFile) {
        whole.add(0, "the file is larger than " + std::to_string(kMaxServicesFile / 1024) + " KB");
    } else if (!parsed) {
        whole.add(parsed.error().source().begin.line, std::string(parsed.error().description()));
    } else {
        file.path = name;
        TomlTable top(parsed.table(), "", whole);
        readService(top, "web", web, file.web);
        readService(top, "image", image, file.image, &file.privatePictures);
        readIndexedService(top, "download", others);
        readIndexedService(top, "file", others);
        // Further tables are read here, with a TomlTable of their own; "[[NAME]]" by top.tables("NAME").
        readCrawls(top, others, file.crawls);
        if (const std::optional<bool> log = top.flag("log-queries"))
            file.logQueries = *log;
        if (std::optional<std::string> certificates = top.text("ca-file"))
            file.caFile = std::move(*certificates);
        top.finish();
    }
    for (const FaultList* list : {&web, &image, &others, &whole})
        append(result.faults, *list);
    const auto first = [&whole](const FaultList& own) {
        const FileFaults& faults = own.faults().empty() ? whole.faults() : own.faults();
        return faults.empty() ? std::string() : faults.front();
    };
    result.webFault = first(web);
    result.imageFault = first(image);
    return result;
}

} // namespace

Expected<ServicesFile, FileFaults> readServicesFile(std::string_view text, const std::string& name)
{
    UsableServices read = usableParts(text, name);
    if (!read.faults.empty())
        return read.faults;
    return std::move(read.file);
}

UsableServices loadUsableServices(const std::string& chosen)
{
    const std::string path = chosen.empty() ? usualFile() : chosen;
    if (path.empty())
        return {};
    FaultList faults(path);
    Outcome<std::optional<std::string>> content = contentOf(path, kMaxServicesFile);
    if (!content)
        faults.add(0, content.error().message);
    else if (!*content && !chosen.empty())
        faults.add(0, "there is no such file");
    if (!faults.faults().empty())
        return {{}, faults.faults(), faults.faults().front(), faults.faults().front()};
    if (!*content)
        return {};
    return usableParts(**content, path);
}

Expected<ServicesFile, FileFaults> loadServicesFile(const std::string& chosen)
{
    UsableServices loaded = loadUsableServices(chosen);
    if (!loaded.faults.empty())
        return loaded.faults;
    return std::move(loaded.file);
}

Outcome<std::string> readCertificates(const std::string& caFile)
{
    if (caFile.empty())
        return std::string();
    Outcome<std::optional<std::string>> content = contentOf(caFile, kMaxCaFile);
    if (content && !*content)
        return Failure{caFile + ": there is no such file"};
    if (!content)
        return Failure{caFile + ": " + content.error().message};
    return std::move(**content);
}

} // namespace quarrynet::services
