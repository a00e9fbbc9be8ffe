#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ground/OpenFile.h"
#include "thumbnails/picture_format.h"

namespace quarrynet::services {

/// Makes thumbnails in child processes (quarrynet-thumbnails), which receive a picture's bytes and return the
/// thumbnail's. A hostile picture can harm only such a process: one that crashes, takes too much memory or exceeds the
/// time limit is replaced, and that picture has no thumbnail.
class Thumbnailer
{
public:
    struct Limits
    {
        /// For one picture.
        std::chrono::milliseconds time = std::chrono::seconds(4);
        std::size_t processes = 2;
        /// For a free process. The default exceeds what the pictures of all other threads of a service take.
        std::chrono::milliseconds wait = std::chrono::seconds(30);
    };

    /// `program` is the path of quarrynet-thumbnails.
    explicit Thumbnailer(std::string program) : Thumbnailer(std::move(program), Limits{}) {}
    Thumbnailer(std::string program, Limits limits);
    ~Thumbnailer();
    Thumbnailer(const Thumbnailer&) = delete;
    Thumbnailer& operator=(const Thumbnailer&) = delete;

    /// Returns a PNG or JPEG picture of at most 120 by 120 pixels, or an empty text when `content` is no picture that
    /// can be shown. Returns nothing when no process answered in time, or this thread's task (CurrentTask) is
    /// abandoned: that says nothing about the picture. Thread-safe.
    std::optional<std::string> ask(PictureFormat format, std::string_view content);

    /// Returns a PNG or JPEG picture of at most 120 by 120 pixels, or nothing when that fails or this thread's task
    /// (CurrentTask) is abandoned. Thread-safe.
    std::optional<std::string> make(PictureFormat format, std::string_view content);
    /// Does the same for a file, which is never in memory as a whole.
    std::optional<std::string> make(PictureFormat format, const OpenFile& file);

private:
    /// Returns bytes of a picture from an offset on, not necessarily all; none on an error.
    using Source = std::function<std::string_view(std::size_t offset)>;

    class Process;
    std::optional<std::string> ask(PictureFormat format, std::size_t size, const Source& source);
    std::unique_ptr<Process> borrow(); ///< null when the task is abandoned, or none is free in time

    std::string program_;
    Limits limits_;
    std::mutex mutex_;
    std::condition_variable returned_;
    std::size_t lent_ = 0;
    std::vector<std::unique_ptr<Process>> idle_;
};

} // namespace quarrynet::services
