#include "app/privileges.h"

#include <cerrno>
#include <cstring>
#include <grp.h>
#include <pwd.h>
#include <unistd.h>

#ifdef __linux__
#include <sys/capability.h>
#include <sys/prctl.h>
#endif

namespace quarrynet::services {

namespace {

Failure describe(const char* what)
{
    return Failure{std::string("cannot give up ") + what + ": " + std::strerror(errno)};
}

#ifdef __linux__

bool dropCapabilities()
{
    const cap_t none = cap_init();
    const cap_t held = cap_get_proc();
    // A service manager that starts this program without capabilities may forbid the call that changes them.
    const bool holdsNone = none != nullptr && held != nullptr && cap_compare(none, held) == 0;
    const bool dropped = holdsNone || (none != nullptr && cap_set_proc(none) == 0);
    cap_free(held);
    cap_free(none);
    return dropped;
}

#endif

} // namespace

Outcome<User> findUser(const std::string& name)
{
    const std::string wanted = name.empty() ? "nobody" : name;
    const passwd* entry = ::getpwnam(wanted.c_str());
    if (entry == nullptr)
        return Failure{"there is no user \"" + wanted + "\""};
    if (entry->pw_uid == 0)
        return Failure{"\"" + wanted + "\" is root; choose a user without root's rights"};
    return User{wanted, entry->pw_uid, entry->pw_gid};
}

Outcome<Done> dropPrivileges(const User& user)
{
    if (::geteuid() == 0 && (::initgroups(user.name.c_str(), user.group) != 0 || ::setgid(user.group) != 0 ||
                             ::setuid(user.user) != 0 || ::setuid(0) == 0))
        return describe("root's rights");
#ifdef __linux__
    if (!dropCapabilities() || ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0)
        return describe("capabilities");
#endif
    return Done{};
}

} // namespace quarrynet::services
