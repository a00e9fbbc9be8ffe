#pragma once

#include <QString>

namespace quarrynet {

/// Returns `text` in the form in which texts are compared: one form of accented letters, and one letter case. Costs
/// time in proportion to the text's length: a run of more than 30 combining characters, which no language needs, is
/// broken by U+034F after every 30 of them (see the Stream-Safe Text Format, UAX #15). Texts with such runs may differ
/// although they look the same.
QString folded(const QString& text);

} // namespace quarrynet
