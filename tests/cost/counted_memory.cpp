#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>

#include "tests/cost/step_counter.h"

/// Replaces the memory functions of the C library by ones that count the bytes. A program's definitions take precedence
/// in the libraries that it uses, too, such as the code of std::string.

using quarrynet::cost::countSteps;

namespace {

const unsigned char* bytesOf(const void* block)
{
    return static_cast<const unsigned char*>(block);
}

} // namespace

extern "C" {

void* memcpy(void* __restrict to, const void* __restrict from, std::size_t count) noexcept
{
    countSteps(count);
    auto* target = static_cast<unsigned char*>(to);
    const unsigned char* source = bytesOf(from);
    for (std::size_t i = 0; i < count; ++i)
        target[i] = source[i];
    return to;
}

void* memmove(void* to, const void* from, std::size_t count) noexcept
{
    countSteps(count);
    auto* target = static_cast<unsigned char*>(to);
    const unsigned char* source = bytesOf(from);
    if (target <= source) {
        for (std::size_t i = 0; i < count; ++i)
            target[i] = source[i];
    } else {
        for (std::size_t i = count; i > 0; --i)
            target[i - 1] = source[i - 1];
    }
    return to;
}

void* memset(void* to, int value, std::size_t count) noexcept
{
    countSteps(count);
    auto* target = static_cast<unsigned char*>(to);
    for (std::size_t i = 0; i < count; ++i)
        target[i] = static_cast<unsigned char>(value);
    return to;
}

int memcmp(const void* left, const void* right, std::size_t count) noexcept
{
    const unsigned char* a = bytesOf(left);
    const unsigned char* b = bytesOf(right);
    for (std::size_t i = 0; i < count; ++i) {
        if (a[i] != b[i]) {
            countSteps(i + 1);
            return a[i] < b[i] ? -1 : 1;
        }
    }
    countSteps(count);
    return 0;
}

std::size_t strlen(const char* text) noexcept
{
    std::size_t length = 0;
    while (text[length] != '\0')
        ++length;
    countSteps(length);
    return length;
}

} // extern "C"

// <cstring> declares overloads of these two, so they are defined under other names.
extern "C" void* countedMemchr(const void* block, int value, std::size_t count) __asm__("memchr");
extern "C" void* countedMemrchr(const void* block, int value, std::size_t count) __asm__("memrchr");

void* countedMemchr(const void* block, int value, std::size_t count)
{
    const unsigned char* bytes = bytesOf(block);
    for (std::size_t i = 0; i < count; ++i) {
        if (bytes[i] == static_cast<unsigned char>(value)) {
            countSteps(i + 1);
            return const_cast<unsigned char*>(bytes + i);
        }
    }
    countSteps(count);
    return nullptr;
}

void* countedMemrchr(const void* block, int value, std::size_t count)
{
    const unsigned char* bytes = bytesOf(block);
    for (std::size_t i = count; i > 0; --i) {
        if (bytes[i - 1] == static_cast<unsigned char>(value)) {
            countSteps(count - i + 1);
            return const_cast<unsigned char*>(bytes + i - 1);
        }
    }
    countSteps(count);
    return nullptr;
}

void* operator new(std::size_t count)
{
    countSteps(count);
    if (void* block = std::malloc(count == 0 ? 1 : count))
        return block;
    throw std::bad_alloc();
}

void operator delete(void* block) noexcept
{
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    std::free(block);
}
