#pragma once

#include <QString>

namespace quarrynet {

/// Where the settings file and the local pages live.
struct ProgramFolder
{
    QString path;
    bool writable;
};

/// The executable's folder when the user may write there (a portable copy, a build tree), else the user's data folder,
/// which is made when it is missing. When neither can be written, the data folder's path with `writable` false.
/// Needs the application object.
ProgramFolder findProgramFolder();

} // namespace quarrynet
