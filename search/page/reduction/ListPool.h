#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>
#include <vector>

namespace quarrynet {

/// Storage for very many short lists. A list's only element is in the list itself; only longer lists take memory of the
/// pool. An element that equals `T()` cannot be stored.
template <typename T>
class ListPool
{
public:
    class List
    {
        friend ListPool;
        T only_{};
        std::uint32_t longer_ = 0; // number in the pool, from 1 on; the pool has the first element too
    };

    /// Returns the elements. The span is valid until the list grows or moves.
    std::span<const T> of(const List& list) const
    {
        if (list.longer_ != 0)
            return longer_[list.longer_ - 1];
        return {&list.only_, list.only_ == T() ? std::size_t{0} : std::size_t{1}};
    }

    void append(List& list, const T& element)
    {
        if (list.longer_ != 0) {
            longer_[list.longer_ - 1].push_back(element);
        } else if (list.only_ == T()) {
            list.only_ = element;
        } else {
            longer_.push_back({list.only_, element});
            list.longer_ = static_cast<std::uint32_t>(longer_.size());
        }
    }

private:
    std::deque<std::vector<T>> longer_;
};

} // namespace quarrynet
