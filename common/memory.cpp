#include "common/memory.h"

#include <algorithm>
#include <cstdint>

#ifdef _WIN32
#include <windows.h>
#else
#include <unistd.h>
#endif
#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace quarrynet {

namespace {

constexpr std::size_t kGibibyte = std::size_t{1} << 30;

} // namespace

std::size_t physicalMemory()
{
#ifdef _WIN32
    MEMORYSTATUSEX status = {};
    status.dwLength = sizeof status;
    const std::uint64_t bytes = ::GlobalMemoryStatusEx(&status) != 0 ? status.ullTotalPhys : 0;
#else
    const long pages = ::sysconf(_SC_PHYS_PAGES);
    const long size = ::sysconf(_SC_PAGESIZE);
    const std::uint64_t bytes =
        pages > 0 && size > 0 ? static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(size) : 0;
#endif
    return bytes == 0 ? 2 * kGibibyte : static_cast<std::size_t>(std::min<std::uint64_t>(bytes, SIZE_MAX));
}

std::size_t responseAllowance()
{
    return physicalMemory() / 4;
}

std::size_t textAllowance()
{
    return std::min(physicalMemory() / 16, kGibibyte);
}

void releaseFreedMemory()
{
#ifdef __GLIBC__
    ::malloc_trim(0);
#endif
}

} // namespace quarrynet
