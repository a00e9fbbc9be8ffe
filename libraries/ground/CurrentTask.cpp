#include "ground/CurrentTask.h"

#include <utility>

namespace quarrynet {

namespace {

thread_local const std::atomic<bool>* current = nullptr;

} // namespace

CurrentTask::CurrentTask(const std::atomic<bool>& abandoned) : outer_(std::exchange(current, &abandoned)) {}

CurrentTask::~CurrentTask()
{
    current = outer_;
}

bool CurrentTask::abandoned()
{
    return current != nullptr && current->load(std::memory_order_relaxed);
}

} // namespace quarrynet
