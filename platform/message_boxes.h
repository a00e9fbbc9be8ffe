#pragma once

#include <string_view>

#include <QString>

#include "common/runtime_error.h"

class QWidget;

/// The program's message boxes. All are modal with a single OK button, and the functions return when the box is closed.
/// The title is the program's name unless stated otherwise.
namespace quarrynet {

/// Reports an input problem or a search without results: information icon.
void showInformation(QWidget* owner, const QString& text);

/// Reports a cancelled operation: critical icon.
void showCritical(QWidget* owner, const QString& text);

/// Reports a socket's error: exclamation icon, title "Error". `description` is UTF-8.
void showSocketError(QWidget* owner, int number, std::string_view description);

/// Reports a step that failed: critical icon.
void showRuntimeError(QWidget* owner, RuntimeError error);

/// Reports an unusable setting: critical icon, the settings file, and the setting with its fault.
void showSettingError(QWidget* owner, RuntimeError error, const QString& path, const QString& reason);

/// Reports a file or folder that the program cannot write: critical icon, path and reason.
void showFileError(QWidget* owner, const QString& path, const QString& reason);

} // namespace quarrynet
