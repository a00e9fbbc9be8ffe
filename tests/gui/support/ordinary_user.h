#pragma once

#include <QString>

/// Lets root run tests of features that root does not get.
namespace ordinary_user {

/// If root runs this process, restarts it as "nobody" with a new home folder. Call before anything else. Returns an
/// empty text, or the reason why the tests cannot run as that user.
QString become(char* const* arguments);

/// Returns whether this user may create the namespaces that a browser's sandbox needs.
bool mayMakeNamespaces();

} // namespace ordinary_user
