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

/// The beginning of `bytes` as text, as much as one line on the screen can ever show: laying out megabytes that nobody
/// could read would stop the window.
QString toLine(std::string_view bytes);

/// Typed text as bytes. What the code page cannot say becomes "?" (on Windows; UTF-8 can say everything but an unpaired
/// surrogate).
std::string toBytes(const QString& text);

} // namespace quarrynet
