#pragma once

#include <QtGlobal>

namespace quarrynet {

/// The operating system's functions for the process that renders a page. `process` is its number, greater than 0.

/// Returns how many bytes of memory it uses, or 0 if the system does not tell.
qint64 processMemory(qint64 process);

/// Kills it at once, however busy it is. The engine would first send it a request.
void endProcess(qint64 process);

} // namespace quarrynet
