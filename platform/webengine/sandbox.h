#pragma once

namespace quarrynet {

/// How the engine may run the processes that read pages.
enum class Sandbox
{
    Usable,
    NotForRoot, // the engine has to be told to do without: it refuses to run otherwise
    Refused,    // the system forbids it to this user: the engine would end the program
};

/// What this system and this user allow. It is found out in a process of its own, so nothing of this one changes.
Sandbox sandboxOfThisSystem();

} // namespace quarrynet
