#pragma once

namespace quarrynet::services {

/// Gives up for good what reading pictures never needs: root's rights, gaining rights by executing programs, unlimited
/// memory and files, and all system calls except those for memory, threads, time and open descriptors. Files, sockets
/// and programs cannot be opened afterwards, so load everything before. Returns false when the system refuses any of
/// it; the caller should exit then.
bool confineProcess();

} // namespace quarrynet::services
