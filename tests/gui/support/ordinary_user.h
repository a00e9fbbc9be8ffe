#pragma once

#include <QString>

/// Tests of what root does not get, run by root.
namespace ordinary_user {

/// Makes this process an ordinary user's where it is root's, before anything else runs: it starts itself again as
/// "nobody", with a home of its own. Returns an empty text, or why the tests cannot run as that user.
QString become(char* const* arguments);

/// Whether this system lets this user make the namespaces that a browser's sandbox consists of.
bool mayMakeNamespaces();

} // namespace ordinary_user
