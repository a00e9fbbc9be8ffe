#pragma once

#include <string>

#include "ground/Expected.h"

namespace quarrynet {

/// A failure for a person to read: one English sentence without a final full stop.
struct Failure
{
    std::string message;
};

/// What a function returns that can fail for reasons that a person has to read.
template <class T>
using Outcome = Expected<T, Failure>;

/// The value of a function that has nothing to return but its success.
struct Done
{};

} // namespace quarrynet
