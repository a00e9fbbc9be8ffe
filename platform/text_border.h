#pragma once

#include <string>
#include <string_view>

#include <QString>

/// All conversions between bytes, which the program searches and cuts, and text to show. The bytes are in the system's
/// code page: UTF-8 on Linux and macOS, the ANSI code page on Windows.
///
/// The program's manifest deliberately does not make UTF-8 its code page on Windows: the settings file is in the ANSI
/// code page for every other program, and typed words are to be sent in the encoding that this system's users expect of
/// their pages. Paths need no such manifest, because they have a conversion of their own.
namespace quarrynet {

/// Returns `bytes` as text to show. Never fails: a byte that is invalid in the system's code page becomes the Latin-1
/// character of its value.
QString toText(std::string_view bytes);

/// Returns `bytes` as one line to show in cells, captions, tool tips and other places for texts from outside. Control
/// characters, including line ends, become blanks. Characters that change the text direction become U+FFFD, so that no
/// address can be displayed backwards. A text of more than 4,096 UTF-16 units, whose layout could block the window, is
/// cut between two characters and ends in an ellipsis.
QString toLine(std::string_view bytes);

/// Does the same for text.
QString toLine(QStringView text);

/// Returns typed text as bytes. Characters that the code page lacks become "?" (on Windows; UTF-8 lacks only unpaired
/// surrogates).
std::string toBytes(const QString& text);

/// Converts the path of a file, whose bytes are UTF-8 on Windows and the file system's own elsewhere. The ANSI code
/// page lacks most letters that a folder's name may have, and a path with "?" for a letter leads nowhere.
QString toPathText(std::string_view path);
std::string toPathBytes(const QString& path);

} // namespace quarrynet
