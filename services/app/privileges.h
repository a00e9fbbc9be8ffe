#pragma once

#include <string>
#include <sys/types.h>

#include "ground/Outcome.h"

/// The rights that the services give up once they listen: what answers strangers needs neither root's rights nor the
/// capability to listen below port 1024.
namespace quarrynet::services {

struct User
{
    std::string name;
    uid_t user = 0;
    gid_t group = 0;
};

/// Looks up the user `name`, or "nobody" for an empty text. Fails for unknown users and for root itself.
Outcome<User> findUser(const std::string& name);

/// Drops rights for good: root becomes `user`, with that user's groups; all capabilities are dropped, and no program
/// executed later gains any. Call while there is only one thread. Unless the caller is root, `user` is ignored.
Outcome<Done> dropPrivileges(const User& user);

} // namespace quarrynet::services
