#pragma once

#include <QStringList>

class QWidget;

namespace quarrynet {

/// Returns the tool tip that shows `text`, the text of a cell: plain text, wrapped to less than half the width of the
/// screen of `owner`, and at most 1,200 characters long. Text that looks like HTML is shown as it is written.
QString cellTip(const QString& text, const QWidget& owner);

/// Returns the tool tip that shows the texts of several cells, with an empty line between them. The limit is for all of
/// them, and each gets the same share of it.
QString cellsTip(const QStringList& texts, const QWidget& owner);

} // namespace quarrynet
