#pragma once

#include <deque>
#include <string>
#include <utility>
#include <vector>

#include <QObject>

#include "platform/HistoryFile.h"

class QMenu;
class QWidget;

namespace quarrynet {

class EntryPopup;
class SearchTab;

/// Keeps what was searched for and offers it in the fields, unless the user has switched that off.
///
/// While it is off, nothing is written, read or offered, and an existing history stays until it is cleared. The switch
/// is a section of the settings file, in which any value but "on", also an empty one, means off; the history has a file
/// of its own beside it. Both are read when they are needed, not at the start, so that all windows agree.
class FieldHistory final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(FieldHistory)

public:
    /// Both paths are as toPathBytes gives them. Error boxes belong to `window`.
    FieldHistory(std::string settingsPath, std::string historyPath, QWidget& window);
    ~FieldHistory() override;

    /// Offers entries in the tab's fields, whose kinds are `kinds`, and keeps what they hold when a search starts.
    void watch(SearchTab& tab, const std::vector<HistoryKind>& kinds);

    /// Adds the entries that switch the history and clear it.
    void addTo(QMenu& menu);

private:
    bool isOn() const;
    void setOn(bool on);
    void clear();
    QStringList entries(HistoryKind kind) const;
    bool forget(HistoryKind kind, const QString& entry);
    void keep(HistoryKind kind, const QString& text);
    void flush();
    void refreshPopups();

    std::string settingsPath_;
    HistoryFile file_;
    QWidget& window_;
    std::vector<EntryPopup*> popups_;
    std::deque<std::pair<HistoryKind, std::string>> pending_; // started, but not yet written
    bool flushIsDue_ = false;
};

} // namespace quarrynet
