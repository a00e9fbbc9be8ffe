#pragma once

#include <atomic>

namespace quarrynet {

/// The task of the current thread. While the object lives, long work on the same thread (a query, a wait for a
/// thumbnail) polls abandoned() and stops when its result is no longer needed.
class CurrentTask
{
public:
    /// Another thread sets `abandoned`, which must outlive the object.
    explicit CurrentTask(const std::atomic<bool>& abandoned);
    ~CurrentTask();
    CurrentTask(const CurrentTask&) = delete;
    CurrentTask& operator=(const CurrentTask&) = delete;

    /// Returns whether this thread's result is no longer needed; false for a thread without a task.
    static bool abandoned();

private:
    const std::atomic<bool>* outer_;
};

} // namespace quarrynet
