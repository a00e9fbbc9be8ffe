#pragma once

#include <functional>
#include <vector>

#include <QObject>

class QAction;
class QMainWindow;
class QMenu;

namespace quarrynet {

class SearchTab;
class TabStrip;

/// The window's commands for the list of the tab in front: "Save List..." in the File menu (Ctrl+S), and the line that
/// filters the rows (Ctrl+F). Tabs without a list have neither.
class ListCommands final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ListCommands)

public:
    /// `front` returns the tab in front, or null. The menu gets the entry before its action `next`.
    ListCommands(QMainWindow& window, QMenu& menu, QAction* next, const std::vector<SearchTab*>& tabs, TabStrip& strip,
                 std::function<SearchTab*()> front);

private:
    void updateEntry();
    void filter();

    /// Asks for a file and writes the rows of the tab's list to it, in the format that the file's extension names. A
    /// failure has a message box and leaves an existing file as it was. Does nothing without rows.
    void save(SearchTab& tab);
    void saveRows(SearchTab& tab); // throws std::bad_alloc

    QMainWindow& window_;
    std::function<SearchTab*()> front_;
    QAction* entry_;
    QString folder_; // of the last file that could be saved
};

} // namespace quarrynet
