#pragma once

#include <QString>

namespace quarrynet {

/// The folder of the settings file and the local pages.
struct ProgramFolder
{
    QString path;
    bool writable;
};

/// Returns the executable's folder if the user may write there (a portable copy, a build tree), otherwise the user's
/// data folder, which is created if it is missing. If neither is writable, returns the data folder's path with
/// `writable` false. Needs the application object.
ProgramFolder findProgramFolder();

} // namespace quarrynet
