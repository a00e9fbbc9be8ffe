#pragma once

namespace quarrynet {

/// Whether the processes that read pages get a sandbox. Without one the engine is not used.
enum class Sandbox
{
    Usable,
    NotForRoot, // the engine runs as root only when it is told to do without
    Refused,    // the system forbids it to this user: the engine would end the program
};

/// What this system and this user allow. It is found out in a process of its own, so nothing of this one changes.
Sandbox sandboxOfThisSystem();

} // namespace quarrynet
