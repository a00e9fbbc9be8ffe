#pragma once

#include <QString>
#include <QStringList>

#include "platform/PageLook.h"

/// The scripts of the program's own that a page cannot access. They run in a world of their own, although the pages'
/// scripts do not run, and give the gallery a grid and keys without a change of the page's bytes.
namespace quarrynet {

/// Returns the script that gives a page the style sheet of `look` and the gallery's keys, and each picture's tool tip
/// its line of `notes`. Run it when a document is created, in each frame.
QString galleryScript(const PageLook& look, const QStringList& notes);

/// Returns the script that replaces the sheet in a page and its frames by that of `look`. Run it in the page.
QString restylingScript(const PageLook& look);

} // namespace quarrynet
