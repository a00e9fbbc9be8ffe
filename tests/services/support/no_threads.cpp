// Linked into tests that the thread sanitizer's build omits. One that starts a thread ends here: it belongs in the list
// with_threads.

#include <cstdio>
#include <cstdlib>
#include <pthread.h>

extern "C" int pthread_create(pthread_t* /*thread*/, const pthread_attr_t* /*attributes*/, void* (* /*start*/)(void*),
                              void* /*argument*/) noexcept
{
    std::fputs("This test starts a thread; list it in with_threads (tests/services/CMakeLists.txt).\n", stderr);
    std::abort();
}
