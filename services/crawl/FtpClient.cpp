#include "crawl/FtpClient.h"

#include <array>
#include <mutex>
#include <new>
#include <utility>

#include <curl/curl.h>

#include "crawl/ftp_listing.h"
#include "ground/percent_coding.h"

namespace quarrynet::services {

namespace {

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

FtpClient::FtpClient(const CrawlAddress& address, std::string certificates)
    : site_("ftp" + address.site.substr(address.site.find("://")))
    , encrypted_(address.scheme == CrawlAddress::Scheme::Ftps)
    , certificates_(std::move(certificates))
{
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
    handle_ = std::make_unique<Handle>();
}

FtpClient::~FtpClient() = default;

Outcome<ListedDirectory> FtpClient::list(std::string_view path)
{
    CURL* const curl = handle_->curl;
    if (curl == nullptr)
        return Failure{"out of memory"};
    ListedDirectory directory;
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
    std::array<char, CURL_ERROR_SIZE> fault{};
    set(CURLOPT_ERRORBUFFER, fault.data());
    if (encrypted_) {
        set(CURLOPT_USE_SSL, static_cast<long>(CURLUSESSL_ALL));
        set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
        set(CURLOPT_SSL_VERIFYPEER, 1L);
        set(CURLOPT_SSL_VERIFYHOST, 2L);
        if (!certificates_.empty()) {
            // The blob replaces the system's bundle, whose certificates the system's folder holds as well.
            curl_blob blob{};
            blob.data = certificates_.data();
            blob.len = certificates_.size();
            blob.flags = CURL_BLOB_COPY;
            set(CURLOPT_CAINFO_BLOB, &blob);
        }
    }
    if (result == CURLE_OK)
        result = curl_easy_perform(curl);
    // The handle outlives the buffer.
    curl_easy_setopt(curl, CURLOPT_ERRORBUFFER, nullptr);
    directory.listing = std::move(listing.text);
    if (listing.outOfMemory)
        result = CURLE_OUT_OF_MEMORY;
    if (result == CURLE_OK) {
        directory.entries = hasMlsd_ ? readMlsd(directory.listing) : readList(directory.listing);
        if (directory.entries.size() > kMaxListedEntries)
            return refusedDirectory("it is too large");
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
        return refusedDirectory(result == CURLE_WRITE_ERROR ? "it is too large" : "");
    }
    return Failure{address + ": " + (fault.front() != '\0' ? fault.data() : curl_easy_strerror(result))};
}

} // namespace quarrynet::services
