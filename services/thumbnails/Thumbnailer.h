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

/// Makes thumbnails in other processes (the program quarrynet-thumbnails), which take a picture's bytes and give the
/// thumbnail's. Whatever a hostile picture does to the reader of its format happens there: a process that crashes,
/// takes too much memory or does not come to an end is replaced, and that picture has no thumbnail.
class Thumbnailer
{
public:
    struct Limits
    {
        /// For one picture.
        std::chrono::milliseconds time = std::chrono::seconds(4);
        std::size_t processes = 2;
    };

    /// `program` is the path of quarrynet-thumbnails.
    explicit Thumbnailer(std::string program) : Thumbnailer(std::move(program), Limits{}) {}
    Thumbnailer(std::string program, Limits limits);
    ~Thumbnailer();
    Thumbnailer(const Thumbnailer&) = delete;
    Thumbnailer& operator=(const Thumbnailer&) = delete;

    /// Returns a PNG or JPEG picture of at most 120 by 120 pixels, or nothing when there is none to be had or this
    /// thread's task (CurrentTask) is abandoned. From any thread.
    std::optional<std::string> make(PictureFormat format, std::string_view content);
    /// The same for a file, which is never in memory as a whole.
    std::optional<std::string> make(PictureFormat format, const OpenFile& file);

private:
    /// Gives the bytes of a picture from an offset on: some of them, or all; none when there is a fault.
    using Source = std::function<std::string_view(std::size_t offset)>;

    class Process;
    std::optional<std::string> make(PictureFormat format, std::size_t size, const Source& source);
    std::unique_ptr<Process> borrow(); ///< null: the task was abandoned

    std::string program_;
    Limits limits_;
    std::mutex mutex_;
    std::condition_variable returned_;
    std::size_t lent_ = 0;
    std::vector<std::unique_ptr<Process>> idle_;
};

} // namespace quarrynet::services
