#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Fetches from servers of the internet over HTTP and HTTPS. Certificates and host names are verified against the
/// system's trust store, TLS is version 1.2 at least, and every fetch has a bound in bytes and time.
namespace quarrynet::services {

/// The only name by which the services introduce themselves to servers.
std::string userAgent();

inline constexpr int kMostRedirects = 3;
inline constexpr std::size_t kMaxAnswerHead = 128 * 1024;

struct FetchOrder
{
    std::string address; ///< http or https
    std::size_t maxBytes = 0;
    std::chrono::steady_clock::time_point end; ///< redirects included
    std::string accept = "*/*";
    std::string language = "*";
    /// Decides whether a redirect is followed; null stands for followsOnSite().
    std::function<bool(std::string_view from, std::string_view to)> mayRedirect = nullptr;
    int mostRedirects = kMostRedirects;
    bool cut = false; ///< keeps the first maxBytes of a longer body, unless it is a redirect's
};

struct Fetched
{
    enum class Fault : std::uint8_t
    {
        None, ///< there is an answer, of whatever status
        TimeOut,
        Tls,
        HostNotFound,
        NoConnection,
        TooLarge,
        Redirect, ///< one that is not followed, or too many of them
        Broken,
    };

    Fault fault = Fault::None;
    std::string detail; ///< the reason of a fault in words; with Fault::Redirect, the address that it leads to
    int status = 0;
    std::string body;
    std::string contentType;
    std::optional<std::chrono::seconds> retryAfter = std::nullopt; ///< not negative
    std::chrono::milliseconds time{0};
};

/// Returns whether `to` has the host of `from`, and its scheme and port; only from http to https may these change.
/// So a request never reaches another host and never loses its encryption.
bool followsOnSite(std::string_view from, std::string_view to);

/// The hosts that fetches reach.
enum class Reach : std::uint8_t
{
    Everywhere,
    /// Only addresses of the public internet (isPublicAddress). The address of every connection is checked, so that
    /// neither a redirect nor a name server can lead elsewhere.
    PublicOnly,
};

/// The connections of the fetches, kept for later ones. Several threads may use it.
class FetchPool
{
public:
    /// `certificates` (PEM) are trusted besides the system's. All connections of a pool have one reach, because a kept
    /// one is not checked again.
    explicit FetchPool(std::string certificates = {}, Reach reach = Reach::Everywhere)
        : certificates_(std::move(certificates)), reach_(reach)
    {}
    ~FetchPool();
    FetchPool(const FetchPool&) = delete;
    FetchPool& operator=(const FetchPool&) = delete;

private:
    friend class Fetches;
    void* take();
    void giveBack(void* multi);

    std::string certificates_;
    Reach reach_;
    std::mutex mutex_;
    std::vector<void*> idle_; ///< libcurl's multi handles
};

/// Several fetches at the same time, made by the thread that calls run().
class Fetches
{
public:
    using Done = std::function<void(Fetched)>;

    explicit Fetches(FetchPool& pool);
    /// Cancels what is not done.
    ~Fetches();
    Fetches(const Fetches&) = delete;
    Fetches& operator=(const Fetches&) = delete;

    /// Starts a fetch. run() calls `done`, which may start others. Before run(), nothing is called.
    void start(FetchOrder order, Done done);

    /// Runs all fetches to their ends. Returns false, with fetches left undone, when this thread's task (CurrentTask)
    /// is abandoned or `wanted` returns false; that is asked at least every 50 milliseconds.
    bool run(const std::function<bool()>& wanted = nullptr);

private:
    struct Transfer;
    using Transfers = std::list<std::unique_ptr<Transfer>>;

    void begin(Transfer& transfer);
    void end(Transfers::iterator place, int result);
    void collect();

    FetchPool& pool_;
    void* multi_;
    Transfers transfers_;
};

} // namespace quarrynet::services
