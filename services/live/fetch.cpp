#include "live/fetch.h"

#include <algorithm>
#include <array>
#include <utility>

#include <curl/curl.h>

#include "ground/CurrentTask.h"
#include "ground/ascii.h"
#include "http/message.h"
#include "live/public_address.h"

namespace quarrynet::services {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kPollMilliseconds = 50;
constexpr long kConnectMilliseconds = 5'000;
constexpr std::chrono::seconds kMostRetryAfter = std::chrono::hours(24);

/// Where an address leads: in lower case, without the usual port.
struct Site
{
    std::string scheme;
    std::string authority;
};

Site siteOf(std::string_view address)
{
    const std::size_t end = std::min(address.find("://"), address.size());
    std::string scheme = toLowerAscii(address.substr(0, end));
    address.remove_prefix(std::min(end + 3, address.size()));
    std::string_view authority = address.substr(0, address.find_first_of("/?#"));
    const std::string_view usual = scheme == "https" ? ":443" : ":80";
    if (authority.ends_with(usual))
        authority.remove_suffix(usual.size());
    return {std::move(scheme), toLowerAscii(authority)};
}

Fetched::Fault faultOf(CURLcode result)
{
    switch (result) {
    case CURLE_OK:
        return Fetched::Fault::None;
    case CURLE_OPERATION_TIMEDOUT:
        return Fetched::Fault::TimeOut;
    case CURLE_COULDNT_RESOLVE_HOST:
        return Fetched::Fault::HostNotFound;
    case CURLE_COULDNT_CONNECT:
        return Fetched::Fault::NoConnection;
    case CURLE_FILESIZE_EXCEEDED:
        return Fetched::Fault::TooLarge;
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CIPHER:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_ISSUER_ERROR:
    case CURLE_SSL_INVALIDCERTSTATUS:
        return Fetched::Fault::Tls;
    default:
        return Fetched::Fault::Broken;
    }
}

} // namespace

std::string userAgent()
{
    return std::string(kOwnAgent) + QUARRYNET_VERSION;
}

bool followsOnSite(std::string_view from, std::string_view to)
{
    const Site old = siteOf(from);
    const Site next = siteOf(to);
    return old.authority == next.authority &&
           (old.scheme == next.scheme || (old.scheme == "http" && next.scheme == "https"));
}

struct Fetches::Transfer
{
    FetchOrder order;
    Done done;
    CURL* curl = nullptr;
    curl_slist* fields = nullptr;
    Fetched fetched;
    std::size_t head = 0;
    int redirects = 0;
    bool tooLarge = false;
    bool isCut = false;
    Clock::time_point began = Clock::now();
    std::array<char, CURL_ERROR_SIZE> message{};

    Transfer(FetchOrder wanted, Done call) : order(std::move(wanted)), done(std::move(call)), curl(curl_easy_init()) {}
    ~Transfer()
    {
        curl_easy_cleanup(curl);
        curl_slist_free_all(fields);
    }
    Transfer(const Transfer&) = delete;
    Transfer& operator=(const Transfer&) = delete;

    static std::size_t takeBody(char* bytes, std::size_t size, std::size_t count, void* to) noexcept
    {
        auto& transfer = *static_cast<Transfer*>(to);
        try {
            const std::size_t left = transfer.order.maxBytes - transfer.fetched.body.size();
            if (size * count > left) {
                // libcurl says where a redirect leads only after its whole body.
                long status = 0;
                curl_easy_getinfo(transfer.curl, CURLINFO_RESPONSE_CODE, &status);
                if (transfer.order.cut && (status < 300 || status >= 400)) {
                    transfer.fetched.body.append(bytes, left);
                    transfer.isCut = true;
                } else {
                    transfer.tooLarge = true;
                }
                return 0;
            }
            transfer.fetched.body.append(bytes, size * count);
            return size * count;
        } catch (const std::exception&) {
            return 0;
        }
    }

    static std::size_t takeHead(char* /*bytes*/, std::size_t size, std::size_t count, void* to) noexcept
    {
        auto& transfer = *static_cast<Transfer*>(to);
        transfer.head += size * count;
        transfer.tooLarge = transfer.tooLarge || transfer.head > kMaxAnswerHead;
        return transfer.tooLarge ? 0 : size * count;
    }

    /// Makes the socket for a connection to an address, after the name was looked up.
    static curl_socket_t openSocket(void* reach, curlsocktype purpose, curl_sockaddr* address) noexcept
    {
        if (purpose != CURLSOCKTYPE_IPCXN ||
            (*static_cast<const Reach*>(reach) == Reach::PublicOnly && !isPublicAddress(address->addr)))
            return CURL_SOCKET_BAD;
        return ::socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
    }

    CURLcode setUp(const std::string& certificates, const Reach& reach);
};

CURLcode Fetches::Transfer::setUp(const std::string& certificates, const Reach& reach)
{
    if (curl == nullptr)
        return CURLE_OUT_OF_MEMORY;
    CURLcode result = CURLE_OK;
    const auto set = [this, &result](CURLoption option, auto value) {
        if (result == CURLE_OK)
            result = curl_easy_setopt(curl, option, value);
    };
    const std::string agent = userAgent();
    const std::string accept = "Accept: " + order.accept;
    const std::string language = "Accept-Language: " + order.language;
    curl_slist_free_all(std::exchange(fields, nullptr)); // those before a redirect
    for (const std::string* field : {&accept, &language}) {
        curl_slist* longer = curl_slist_append(fields, field->c_str());
        if (longer == nullptr)
            return CURLE_OUT_OF_MEMORY;
        fields = longer;
    }
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(order.end - Clock::now()).count();
    set(CURLOPT_URL, order.address.c_str());
    set(CURLOPT_PRIVATE, static_cast<void*>(this));
    set(CURLOPT_ERRORBUFFER, message.data());
    set(CURLOPT_PROTOCOLS_STR, "http,https");
    set(CURLOPT_PROXY, "");
    set(CURLOPT_NOSIGNAL, 1L);
    // A name that is still being looked up must not keep the thread.
    set(CURLOPT_QUICK_EXIT, 1L);
    set(CURLOPT_USERAGENT, agent.c_str());
    set(CURLOPT_HTTPHEADER, fields);
    set(CURLOPT_ACCEPT_ENCODING, "gzip, deflate");
    set(CURLOPT_FOLLOWLOCATION, 0L);
    set(CURLOPT_CONNECTTIMEOUT_MS, kConnectMilliseconds);
    set(CURLOPT_TIMEOUT_MS, std::max<long>(1, static_cast<long>(left)));
    if (!order.cut)
        set(CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(order.maxBytes));
    set(CURLOPT_WRITEFUNCTION, takeBody);
    set(CURLOPT_WRITEDATA, static_cast<void*>(this));
    set(CURLOPT_HEADERFUNCTION, takeHead);
    set(CURLOPT_HEADERDATA, static_cast<void*>(this));
    set(CURLOPT_OPENSOCKETFUNCTION, openSocket);
    set(CURLOPT_OPENSOCKETDATA, const_cast<Reach*>(&reach));
    set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
    set(CURLOPT_SSL_VERIFYPEER, 1L);
    set(CURLOPT_SSL_VERIFYHOST, 2L);
    if (!certificates.empty()) {
        // The blob replaces the system's bundle, whose certificates the system's folder holds as well.
        curl_blob blob{};
        blob.data = const_cast<char*>(certificates.data());
        blob.len = certificates.size();
        blob.flags = CURL_BLOB_COPY;
        set(CURLOPT_CAINFO_BLOB, &blob);
    }
    return result;
}

FetchPool::~FetchPool()
{
    for (void* multi : idle_)
        curl_multi_cleanup(multi);
}

void* FetchPool::take()
{
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
    const std::lock_guard<std::mutex> lock(mutex_);
    if (idle_.empty())
        return curl_multi_init();
    void* multi = idle_.back();
    idle_.pop_back();
    return multi;
}

void FetchPool::giveBack(void* multi)
{
    if (multi == nullptr)
        return;
    try {
        const std::lock_guard<std::mutex> lock(mutex_);
        idle_.push_back(multi);
    } catch (const std::exception&) {
        curl_multi_cleanup(multi);
    }
}

Fetches::Fetches(FetchPool& pool) : pool_(pool), multi_(pool.take()) {}

Fetches::~Fetches()
{
    for (const auto& transfer : transfers_)
        curl_multi_remove_handle(multi_, transfer->curl);
    transfers_.clear();
    pool_.giveBack(multi_);
}

void Fetches::start(FetchOrder order, Done done)
{
    transfers_.push_back(std::make_unique<Transfer>(std::move(order), std::move(done)));
    begin(*transfers_.back());
}

/// A transfer that cannot begin ends in collect(), so that `done` is never called by start().
void Fetches::begin(Transfer& transfer)
{
    transfer.fetched = Fetched();
    transfer.head = 0;
    transfer.isCut = false;
    if (multi_ == nullptr || transfer.setUp(pool_.certificates_, pool_.reach_) != CURLE_OK ||
        curl_multi_add_handle(multi_, transfer.curl) != CURLM_OK)
        transfer.fetched.fault = Fetched::Fault::Broken;
}

void Fetches::end(Transfers::iterator place, int result)
{
    Transfer& transfer = **place;
    curl_multi_remove_handle(multi_, transfer.curl);
    Fetched& fetched = transfer.fetched;
    fetched.time = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - transfer.began);
    fetched.fault = transfer.isCut ? Fetched::Fault::None : faultOf(static_cast<CURLcode>(result));
    if (transfer.tooLarge)
        fetched.fault = Fetched::Fault::TooLarge;
    if (fetched.fault != Fetched::Fault::None) {
        const char* reason = transfer.message.data();
        fetched.detail = *reason != '\0' ? reason : curl_easy_strerror(static_cast<CURLcode>(result));
    } else {
        long status = 0;
        curl_off_t retry = 0;
        const char* type = nullptr;
        const char* next = nullptr;
        curl_easy_getinfo(transfer.curl, CURLINFO_RESPONSE_CODE, &status);
        curl_easy_getinfo(transfer.curl, CURLINFO_RETRY_AFTER, &retry);
        curl_easy_getinfo(transfer.curl, CURLINFO_CONTENT_TYPE, &type);
        curl_easy_getinfo(transfer.curl, CURLINFO_REDIRECT_URL, &next);
        fetched.status = static_cast<int>(status);
        if (type != nullptr)
            fetched.contentType.assign(type);
        if (retry > 0)
            fetched.retryAfter = std::min(std::chrono::seconds(retry), kMostRetryAfter);
        if (next != nullptr && status >= 300 && status < 400) {
            const std::string target = next;
            const bool follows = transfer.order.mayRedirect ? transfer.order.mayRedirect(transfer.order.address, target)
                                                            : followsOnSite(transfer.order.address, target);
            if (follows && transfer.redirects < transfer.order.mostRedirects) {
                ++transfer.redirects;
                transfer.order.address = target;
                begin(transfer);
                return;
            }
            fetched.fault = Fetched::Fault::Redirect;
            fetched.detail = target;
        }
    }
    const std::unique_ptr<Transfer> ended = std::move(*place);
    transfers_.erase(place);
    ended->done(std::move(ended->fetched));
}

void Fetches::collect()
{
    const auto ended = [this](auto fits) { return std::find_if(transfers_.begin(), transfers_.end(), fits); };
    for (auto place = ended([](const auto& transfer) { return transfer->fetched.fault != Fetched::Fault::None; });
         place != transfers_.end();
         place = ended([](const auto& transfer) { return transfer->fetched.fault != Fetched::Fault::None; }))
        end(place, CURLE_OUT_OF_MEMORY);
    int left = 0;
    while (const CURLMsg* message = multi_ == nullptr ? nullptr : curl_multi_info_read(multi_, &left)) {
        if (message->msg != CURLMSG_DONE)
            continue;
        CURL* const curl = message->easy_handle;
        const CURLcode result = message->data.result; // the message is gone once the handle is removed
        const auto place = ended([curl](const auto& transfer) { return transfer->curl == curl; });
        if (place != transfers_.end())
            end(place, result);
    }
}

bool Fetches::run(const std::function<bool()>& wanted)
{
    while (!transfers_.empty()) {
        if (CurrentTask::abandoned() || (wanted && !wanted()))
            return false;
        int running = 0;
        if (multi_ != nullptr)
            curl_multi_perform(multi_, &running);
        const std::size_t before = transfers_.size();
        collect();
        if (running > 0 && transfers_.size() == before)
            curl_multi_poll(multi_, nullptr, 0, kPollMilliseconds, nullptr);
    }
    return true;
}

} // namespace quarrynet::services
