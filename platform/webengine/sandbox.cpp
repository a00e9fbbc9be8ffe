#include "platform/webengine/sandbox.h"

#ifdef __linux__
#include <cerrno>
#include <sched.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace quarrynet {

#ifdef __linux__

namespace {

// Returns whether a process can create the namespaces of a sandbox. A user namespace alone is not enough: some systems
// grant it and then forbid everything in it.
bool canMakeNamespaces()
{
    const pid_t child = fork();
    if (child < 0)
        return false;
    if (child == 0)
        _exit(unshare(CLONE_NEWUSER) == 0 && unshare(CLONE_NEWPID | CLONE_NEWNET) == 0 ? 0 : 1);
    int status = 0;
    while (waitpid(child, &status, 0) < 0) {
        if (errno != EINTR)
            return false;
    }
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace

Sandbox sandboxOfThisSystem()
{
    if (geteuid() == 0)
        return Sandbox::NotForRoot;
    return canMakeNamespaces() ? Sandbox::Usable : Sandbox::Refused;
}

#else

Sandbox sandboxOfThisSystem()
{
    return Sandbox::Usable;
}

#endif

} // namespace quarrynet
