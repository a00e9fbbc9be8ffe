#pragma once

#include <QMenu>
#include <QMimeData>

#include "WindowFixture.h"
#include "platform/ListView.h"
#include "tab_controls.h"

/// Helpers for the tests of what all four lists have in common.

/// Adds a test row for each tab with a list, named by its frame.
inline void addListRows()
{
    QTest::addColumn<int>("tag");
    for (const TabControls& tab : kTabs) {
        if (tab.tag != 3)
            QTest::newRow(tab.frame) << tab.tag;
    }
}

inline quarrynet::ListView* listOf(WindowFixture& window, const TabControls& tab)
{
    return window.control<quarrynet::ListView>(tab.list);
}

/// Brings the tab to the front, searches, and waits for the rows.
inline quarrynet::ListView* fillList(WindowFixture& window, const TabControls& tab)
{
    window.service.answerWith(pageOf(tab));
    const char* field = fillIn(window, tab);
    QTest::keyClick(window.control<QLineEdit>(field), Qt::Key_Return);
    quarrynet::ListView* list = listOf(window, tab);
    [&] { QTRY_VERIFY(window.control<QPushButton>(tab.button)->isEnabled() && !list->rows().empty()); }();
    QCoreApplication::processEvents(); // lays the rows out, with a scroll bar where they need one
    return list;
}

/// Clicks on a row that is shown.
inline void clickRow(quarrynet::ListView& list, int row, Qt::KeyboardModifiers keys = {})
{
    const QModelIndex index = list.model()->index(row, 0);
    list.scrollTo(index);
    QTest::mouseClick(list.viewport(), Qt::LeftButton, keys, list.visualRect(index).center());
}

/// Returns the menu that is open on the list, or null.
inline QMenu* menuOf(quarrynet::ListView& list)
{
    return list.findChild<QMenu*>(QLatin1String("ListMenu"), Qt::FindDirectChildrenOnly);
}

/// Presses the right button on a row as a user does, and returns the menu.
inline QMenu* openMenu(quarrynet::ListView& list, int row)
{
    const QModelIndex index = list.model()->index(row, 0);
    list.scrollTo(index);
    const QPoint at = list.visualRect(index).center();
    QTest::mousePress(list.viewport(), Qt::RightButton, {}, at);
    QContextMenuEvent event(QContextMenuEvent::Mouse, at, list.viewport()->mapToGlobal(at));
    QApplication::sendEvent(list.viewport(), &event);
    QTest::mouseRelease(list.viewport(), Qt::RightButton, {}, at);
    return menuOf(list);
}

/// Returns an entry of the menu by its name.
inline QAction* entryOf(QMenu* menu, const char* name)
{
    auto* action = menu ? menu->findChild<QAction*>(QLatin1String(name)) : nullptr;
    if (!action)
        qFatal("no entry %s", name);
    return action;
}

/// Chooses an entry of the menu by a click.
inline void choose(QMenu* menu, const char* name)
{
    QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(entryOf(menu, name)).center());
}

/// Returns the names of the entries that are enabled.
inline QStringList enabledEntries(const QMenu* menu)
{
    QStringList names;
    for (const QAction* action : menu->actions()) {
        if (action->isEnabled() && !action->isSeparator())
            names.append(action->menu() ? action->menu()->objectName() : action->objectName());
    }
    return names;
}

/// Returns the cells of a column as they are shown.
inline QStringList columnOf(const quarrynet::ListView& list, int column)
{
    QStringList cells;
    for (int row = 0; row < list.model()->rowCount(); ++row)
        cells.append(list.model()->index(row, column).data().toString());
    return cells;
}

/// Returns the field of the line that filters the list's rows, or null while there was none.
inline QLineEdit* filterWords(const quarrynet::ListView& list)
{
    return list.parentWidget()->findChild<QLineEdit*>(QLatin1String("FilterWords"));
}

/// Opens the line of a list with rows by its key, and replaces the words in it.
inline void filterRows(quarrynet::ListView& list, const QString& words)
{
    QTest::keyClick(&list, Qt::Key_F, Qt::ControlModifier);
    QLineEdit* line = filterWords(list);
    QVERIFY(line && line->isVisible());
    line->selectAll();
    line->insert(words);
}
