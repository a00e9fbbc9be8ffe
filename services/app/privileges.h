#pragma once

#include <string>
#include <sys/types.h>

#include "ground/Outcome.h"

/// What the services give up once they listen: nothing that answers strangers needs root's rights, or the one to listen
/// below port 1024.
namespace quarrynet::services {

struct User
{
    std::string name;
    uid_t user = 0;
    gid_t group = 0;
};

/// Looks up the user `name`; "nobody" for the empty text. Fails for unknown users and for root itself.
Outcome<User> findUser(const std::string& name);

/// For good: root becomes `user`, with that user's groups; all capabilities go; no program started later gains any.
/// Call while there is one thread. For another user than root `user` counts for nothing.
Outcome<Done> dropPrivileges(const User& user);

} // namespace quarrynet::services
