#pragma once

#include <QtGlobal>

namespace quarrynet {

/// The process that draws a page, as the system sees it. `process` is its number, and above 0.

/// Returns the bytes of memory that it holds, or 0 where the system does not tell.
qint64 processMemory(qint64 process);

/// Ends it at once, however busy it is. The engine would ask it first.
void endProcess(qint64 process);

} // namespace quarrynet
