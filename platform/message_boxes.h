#pragma once

#include <new>
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

/// Calls `work`. If memory runs out in it, reports that as showRuntimeError() does, after what it built is freed, and
/// calls `undo` before. For commands that leave the rest of the program as it was, so that nothing has to be reset.
template <class Work, class Undo>
void runOrReportMemory(QWidget* owner, Work work, Undo undo)
{
    try {
        work();
        return;
    } catch (const std::bad_alloc&) {
        undo();
    }
    showRuntimeError(owner, RuntimeError::OutOfMemory); // outside of the handler, because the box runs an event loop
}

template <class Work>
void runOrReportMemory(QWidget* owner, Work work)
{
    runOrReportMemory(owner, work, [] {});
}

/// Reports an unusable setting: critical icon, the settings file, and the setting with its fault.
void showSettingError(QWidget* owner, RuntimeError error, const QString& path, const QString& reason);

/// Reports a file or folder that the program cannot write: critical icon, path and reason.
void showFileError(QWidget* owner, const QString& path, const QString& reason);

} // namespace quarrynet
