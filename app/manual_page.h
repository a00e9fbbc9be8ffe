#pragma once

#include <string>

#include <QString>
#include <QStringList>

namespace quarrynet {

/// Returns the path of the manual's first page in the first of `folders` that has a manual: in `language` ("de") if it
/// is there, otherwise in English. Empty if none has one.
std::string manualPage(const QStringList& folders, const QString& language);

} // namespace quarrynet
