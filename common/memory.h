#pragma once

#include <cstddef>

/// How much memory the machine has, and what of it may be taken for what comes from outside.
namespace quarrynet {

/// The machine's physical memory in bytes; 2 GiB where the system does not tell.
std::size_t physicalMemory();

/// The longest response that is received, in bytes: a quarter of the physical memory. The tab that parses it keeps a
/// second one.
std::size_t responseAllowance();

/// What texts cut or made out of one page may sum up to, in bytes: a sixteenth of the physical memory, for lists and
/// views keep them up to four times over. At most 1 GiB, which already takes most of a second to make.
std::size_t textAllowance();

/// Gives the system back what was freed but is still held for later; for after something large has gone.
void releaseFreedMemory();

} // namespace quarrynet
