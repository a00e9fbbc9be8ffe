#include "platform/list_menu.h"

#include <QActionGroup>
#include <QCoreApplication>
#include <QMenu>

#include "platform/ListView.h"

namespace quarrynet {

namespace {

void fillSorting(QMenu& menu, ListView& list)
{
    auto* group = new QActionGroup(&menu);
    const auto add = [&](const QString& text, std::optional<ListViewModel::Sorting> sorting) {
        QAction* action = menu.addAction(text, &list, [&list, sorting] { list.sortRows(sorting); });
        action->setCheckable(true);
        action->setChecked(list.sorting() == sorting);
        group->addAction(action);
    };
    add(QCoreApplication::translate("ListMenu", "Order of the &page"), std::nullopt);
    menu.addSeparator();
    for (int column = 0; column < list.model()->columnCount(); ++column) {
        const QString caption = list.model()->headerData(column, Qt::Horizontal).toString();
        add(QCoreApplication::translate("ListMenu", "%1, ascending").arg(caption),
            ListViewModel::Sorting{column, Qt::AscendingOrder});
        add(QCoreApplication::translate("ListMenu", "%1, descending").arg(caption),
            ListViewModel::Sorting{column, Qt::DescendingOrder});
    }
}

} // namespace

void showListMenu(ListView& list, const QPoint& place)
{
    const QString name = QStringLiteral("ListMenu");
    if (list.findChild<QMenu*>(name, Qt::FindDirectChildrenOnly))
        return;
    const bool selected = !list.selectedRows().empty();
    const bool filled = !list.rows().empty();
    auto* menu = new QMenu(&list);
    menu->setObjectName(name);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const auto add = [&](const char* id, const QString& text, const QKeySequence& key, bool enabled, auto command) {
        QAction* action = menu->addAction(text, &list, command);
        action->setObjectName(QLatin1String(id));
        action->setShortcut(key);
        action->setShortcutVisibleInContextMenu(true);
        // The list and the window handle the keys; a second handler would make them ambiguous.
        action->setShortcutContext(Qt::WidgetShortcut);
        action->setEnabled(enabled);
    };
    add("ListOpen", QCoreApplication::translate("ListMenu", "&Open"), Qt::Key_Return, selected && list.canOpen(),
        &ListView::doubleClicked);
    add("ListCopyAddress", QCoreApplication::translate("ListMenu", "Copy &address"), {},
        selected && list.hasAddresses(), &ListView::copyAddresses);
    add("ListCopyRows", QCoreApplication::translate("ListMenu", "&Copy rows"), QKeySequence::Copy, selected,
        &ListView::copyRows);
    menu->addSeparator();
    add("ListSelectAll", QCoreApplication::translate("ListMenu", "Select a&ll"), QKeySequence::SelectAll,
        filled && list.selectionMode() == QAbstractItemView::ExtendedSelection, [&list] { list.selectAll(); });
    add("ListFilter", QCoreApplication::translate("ListMenu", "&Filter..."), QKeySequence::Find, filled,
        &ListView::openFilter);
    QMenu* sorting = menu->addMenu(QCoreApplication::translate("ListMenu", "So&rt by"));
    sorting->setObjectName(QStringLiteral("ListSort"));
    sorting->setEnabled(filled);
    fillSorting(*sorting, list);
    menu->addSeparator();
    add("ListSave", QCoreApplication::translate("ListMenu", "&Save list..."), QKeySequence::Save, list.isSavable(),
        &ListView::saveWanted);
    menu->popup(place);
}

} // namespace quarrynet
