#pragma once

namespace quarrynet::services {

/// Gives up for good what the reading of pictures never needs: root's rights, rights gained by starting programs,
/// memory and files without end, and every system call but those for memory, threads, time, and the descriptors that
/// are open. No file, socket or program can be opened afterwards, so whatever a program will load has to be loaded
/// before. Returns false when the system refuses any of it; the caller should end then.
bool confineProcess();

} // namespace quarrynet::services
