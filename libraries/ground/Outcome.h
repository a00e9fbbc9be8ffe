#pragma once

#include <string>

#include "ground/Expected.h"

namespace quarrynet {

/// A failure for a person to read: one English sentence without a final full stop.
struct Failure
{
    std::string message;
};

/// The result of a function whose failures a person reads.
template <class T>
using Outcome = Expected<T, Failure>;

/// The value of a function that returns only success.
struct Done
{};

} // namespace quarrynet
