#include "ftp/FtpClient.h"

#include <algorithm>
#include <mutex>
#include <new>
#include <utility>

#include <curl/curl.h>

#include "ground/ascii.h"
#include "ground/decimal.h"
#include "ground/percent_coding.h"

namespace quarrynet::services {

namespace {

constexpr std::size_t kMaxListing = 16 * 1024 * 1024;
constexpr long kConnectSeconds = 15;
constexpr long kStallSeconds = 20;
constexpr long kListingSeconds = 300;

struct Listing
{
    std::string text;
    bool outOfMemory = false;
};

/// Appends all bytes, or returns 0, which ends the transfer. Must not throw: the caller is C code.
std::size_t appendListing(char* bytes, std::size_t, std::size_t count, void* to)
{
    auto& listing = *static_cast<Listing*>(to);
    if (listing.text.size() + count > kMaxListing)
        return 0;
    try {
        listing.text.append(bytes, count);
    } catch (const std::bad_alloc&) {
        listing.outOfMemory = true;
        return 0;
    }
    return count;
}

} // namespace

struct FtpClient::Handle
{
    Handle() : curl(curl_easy_init()) {}
    ~Handle() { curl_easy_cleanup(curl); }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    CURL* curl;
};

FtpClient::FtpClient(std::string site) : site_(std::move(site))
{
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
    handle_ = std::make_unique<Handle>();
}

FtpClient::~FtpClient() = default;

Outcome<FtpDirectory> FtpClient::list(std::string_view path)
{
    CURL* const curl = handle_->curl;
    if (curl == nullptr)
        return Failure{"out of memory"};
    FtpDirectory directory;
    Listing listing;
    const std::string address = site_ + "/" + encodePath(path);
    CURLcode result = CURLE_OK;
    const auto set = [curl, &result](CURLoption option, auto value) {
        if (result == CURLE_OK)
            result = curl_easy_setopt(curl, option, value);
    };
    set(CURLOPT_URL, address.c_str());
    set(CURLOPT_PROTOCOLS_STR, "ftp");
    set(CURLOPT_PROXY, "");
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_CONNECTTIMEOUT, kConnectSeconds);
    set(CURLOPT_SERVER_RESPONSE_TIMEOUT, kStallSeconds);
    set(CURLOPT_LOW_SPEED_LIMIT, 1L);
    set(CURLOPT_LOW_SPEED_TIME, kStallSeconds);
    set(CURLOPT_TIMEOUT, kListingSeconds);
    set(CURLOPT_FTP_FILEMETHOD, static_cast<long>(CURLFTPMETHOD_SINGLECWD));
    set(CURLOPT_WRITEFUNCTION, appendListing);
    set(CURLOPT_WRITEDATA, &listing);
    set(CURLOPT_CUSTOMREQUEST, hasMlsd_ ? "MLSD" : "LIST");
    if (result == CURLE_OK)
        result = curl_easy_perform(curl);
    directory.listing = std::move(listing.text);
    if (listing.outOfMemory)
        result = CURLE_OUT_OF_MEMORY;
    if (result == CURLE_OK) {
        directory.entries = hasMlsd_ ? readMlsd(directory.listing) : readList(directory.listing);
        if (directory.entries.size() > kMaxListedEntries) {
            directory = FtpDirectory();
            directory.refused = true;
        }
        return directory;
    }
    long code = 0;
    curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &code);
    // 500 to 504 mean an unsupported command (RFC 959, section 4.2.1), other 5xx codes that the directory is refused.
    if (result == CURLE_FTP_COULDNT_RETR_FILE && code >= 500 && code <= 504 && hasMlsd_) {
        hasMlsd_ = false;
        return list(path);
    }
    if (result == CURLE_WRITE_ERROR || result == CURLE_REMOTE_ACCESS_DENIED || result == CURLE_REMOTE_FILE_NOT_FOUND ||
        (result == CURLE_FTP_COULDNT_RETR_FILE && code >= 400)) {
        directory.refused = true;
        directory.listing.clear();
        return directory;
    }
    return Failure{address + ": " + curl_easy_strerror(result)};
}

Outcome<FtpAddress> readFtpAddress(std::string_view address)
{
    constexpr std::string_view kScheme = "ftp://";
    if (address.substr(0, kScheme.size()) != kScheme)
        return Failure{std::string(address) + " does not begin with ftp://"};
    const std::string_view rest = address.substr(kScheme.size());
    const std::string_view authority = rest.substr(0, rest.find('/'));
    if (authority.find('@') != std::string_view::npos)
        return Failure{"an address with a user name cannot be crawled, because everybody can use the file search"};
    const std::string_view host = authority.substr(0, authority.rfind(':'));
    const bool hostFits = !host.empty() && std::all_of(host.begin(), host.end(), [](char c) {
        return isAsciiAlphanumeric(c) || c == '-' || c == '.';
    });
    if (!hostFits || (host.size() < authority.size() && !wholeNumber(authority.substr(host.size() + 1))))
        return Failure{std::string(authority) + " is not a valid HOST or HOST:PORT"};
    std::string path = decodePercent(rest.substr(std::min(authority.size() + 1, rest.size())));
    path.erase(0, std::min(path.find_first_not_of('/'), path.size()));
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    if (!path.empty())
        path.push_back('/');
    if (std::any_of(path.begin(), path.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; }))
        return Failure{"the path contains control characters"};
    return FtpAddress{std::string(kScheme) + std::string(authority), path};
}

} // namespace quarrynet::services
