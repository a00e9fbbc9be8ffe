#pragma once

#include <atomic>

namespace quarrynet {

/// Says for whom this thread works: while the object lives, long work on the same thread (a query, a wait for a
/// thumbnail) asks abandoned() now and then and gives up when nobody wants its result any more.
class CurrentTask
{
public:
    /// `abandoned` is set by another thread and outlives the object.
    explicit CurrentTask(const std::atomic<bool>& abandoned);
    ~CurrentTask();
    CurrentTask(const CurrentTask&) = delete;
    CurrentTask& operator=(const CurrentTask&) = delete;

    /// Returns whether this thread's work is wanted no more; false for a thread that has no task.
    static bool abandoned();

private:
    const std::atomic<bool>* outer_;
};

} // namespace quarrynet
