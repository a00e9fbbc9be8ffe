#pragma once

namespace quarrynet {

/// Whether the processes that read pages can run in a sandbox. Without one, the engine is not used.
enum class Sandbox
{
    Usable,
    NotForRoot, // as root, the engine runs only without a sandbox
    Refused,    // the system forbids a sandbox to this user, and the engine would end the program
};

/// Returns what this system allows to this user. Tests it in a child process, so that this process does not change.
Sandbox sandboxOfThisSystem();

} // namespace quarrynet
