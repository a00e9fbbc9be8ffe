#pragma once

#include <QString>

namespace quarrynet {

/// The folder of the settings file and the local pages.
struct ProgramFolder
{
    QString path; // with the system's separators
    bool writable;
};

/// Returns `beside`, the executable's folder, if the program is a portable copy (or in a build tree) and the user may
/// write there, otherwise `data`, the user's data folder, which is created if it is missing. A program whose manual is
/// in an installation's folder of shared files is not portable, unless its settings file is beside it. If neither
/// folder is writable, returns the data folder's path with `writable` false.
ProgramFolder chooseProgramFolder(const QString& beside, const QString& data);

/// Returns chooseProgramFolder() for the running program's folder and the user's data folder. Needs the application
/// object.
ProgramFolder findProgramFolder();

} // namespace quarrynet
