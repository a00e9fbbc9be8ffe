#pragma once

#include <string_view>

#include <QString>

#include "common/runtime_error.h"

class QWidget;

/// The program's message boxes. All are modal with a single OK button and return when they have been answered; the
/// title is the program's unless said otherwise.
namespace quarrynet {

/// An input problem or a search without results: information icon.
void showInformation(QWidget* owner, const QString& text);

/// A cancelled operation: critical icon.
void showCritical(QWidget* owner, const QString& text);

/// A socket's error: exclamation icon, title "Error". `description` is UTF-8.
void showSocketError(QWidget* owner, int number, std::string_view description);

/// A step that could not be carried out: critical icon.
void showRuntimeError(QWidget* owner, RuntimeError error);

/// A setting that cannot be used: critical icon, with the settings file and what is wrong with which setting.
void showSettingError(QWidget* owner, RuntimeError error, const QString& path, const QString& reason);

/// A file or folder that the program needs and cannot write: critical icon, with the path and the reason.
void showFileError(QWidget* owner, const QString& path, const QString& reason);

} // namespace quarrynet
