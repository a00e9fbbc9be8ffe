#pragma once

#include <string>
#include <string_view>

#include <QString>

/// The one border between bytes, in which the program searches and cuts, and text for people. The bytes are in the
/// system's code page: UTF-8 on Linux and macOS, the ANSI code page on Windows.
namespace quarrynet {

/// Bytes as text to be shown. Never fails: a byte that is not valid in the system's code page is shown as the Latin-1
/// character of its number.
QString toText(std::string_view bytes);

/// `bytes` as one line on the screen, for cells, captions, tool tips and whatever else shows words that came from
/// outside. Control characters, line ends among them, become blanks. Each character that turns the direction of reading
/// becomes U+FFFD, so that an address cannot be made to read backwards. At most 4,096 UTF-16 units are shown: laying
/// out megabytes that nobody could read would stop the window. A longer text is cut between two characters and ends in
/// an ellipsis.
QString toLine(std::string_view bytes);

/// The same for what is text already.
QString toLine(QStringView text);

/// Typed text as bytes. What the code page cannot say becomes "?" (on Windows; UTF-8 can say everything but an unpaired
/// surrogate).
std::string toBytes(const QString& text);

} // namespace quarrynet
