#pragma once

#include <cstddef>

/// The size of the machine's memory, and limits derived from it for data from outside.
namespace quarrynet {

/// Returns the machine's physical memory in bytes, or 2 GiB if the system does not tell.
std::size_t physicalMemory();

/// Returns the maximum length of a response, in bytes: a quarter of the physical memory. The tab that parses it keeps a
/// second copy.
std::size_t responseAllowance();

/// Returns the maximum total length of the texts made from one page, in bytes: a sixteenth of the physical memory,
/// because lists and views keep up to four copies, and at most 1 GiB, which already takes most of a second to build.
std::size_t textAllowance();

/// Gives the system the freed memory that the allocator still holds. Call after freeing something large.
void releaseFreedMemory();

} // namespace quarrynet
