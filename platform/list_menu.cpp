#include "platform/list_menu.h"

#include <functional>
#include <vector>

#include <QActionGroup>
#include <QCoreApplication>
#include <QItemSelectionModel>
#include <QMenu>

#include "platform/ListView.h"

namespace quarrynet {

namespace {

/// Applies the list's state to the entries. Rows may arrive or go while the menu is open.
using Updates = std::vector<std::function<void()>>;

void fillSorting(QMenu& menu, ListView& list, Updates& updates)
{
    auto* group = new QActionGroup(&menu);
    const auto add = [&](const QString& text, std::optional<ListViewModel::Sorting> sorting) {
        QAction* action = menu.addAction(text, &list, [&list, sorting] { list.sortRows(sorting); });
        action->setCheckable(true);
        group->addAction(action);
        updates.emplace_back([&list, action, sorting] { action->setChecked(list.sorting() == sorting); });
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
    auto* menu = new QMenu(&list);
    menu->setObjectName(name);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    Updates updates;
    const auto add = [&](const char* id, const QString& text, const QKeySequence& key, auto isEnabled, auto command) {
        QAction* action = menu->addAction(text, &list, command);
        action->setObjectName(QLatin1String(id));
        action->setShortcut(key);
        action->setShortcutVisibleInContextMenu(true);
        // The list and the window handle the keys; a second handler would make them ambiguous.
        action->setShortcutContext(Qt::WidgetShortcut);
        updates.emplace_back([action, isEnabled] { action->setEnabled(isEnabled()); });
    };
    const auto isSelected = [&list] { return !list.selectedRows().empty(); };
    const auto isFilled = [&list] { return !list.rows().empty(); };
    add(
        "ListOpen", QCoreApplication::translate("ListMenu", "&Open"), Qt::Key_Return,
        [=, &list] { return isSelected() && list.canOpen(); }, &ListView::doubleClicked);
    add(
        "ListCopyAddress", QCoreApplication::translate("ListMenu", "Copy &address"), {},
        [=, &list] { return isSelected() && list.hasAddresses(); }, &ListView::copyAddresses);
    add("ListCopyRows", QCoreApplication::translate("ListMenu", "&Copy rows"), QKeySequence::Copy, isSelected,
        &ListView::copyRows);
    menu->addSeparator();
    add(
        "ListSelectAll", QCoreApplication::translate("ListMenu", "Select a&ll"), QKeySequence::SelectAll,
        [=, &list] { return isFilled() && list.selectionMode() == QAbstractItemView::ExtendedSelection; },
        [&list] { list.selectAll(); });
    add("ListFilter", QCoreApplication::translate("ListMenu", "&Filter..."), QKeySequence::Find, isFilled,
        &ListView::openFilter);
    QMenu* sorting = menu->addMenu(QCoreApplication::translate("ListMenu", "So&rt by"));
    sorting->setObjectName(QStringLiteral("ListSort"));
    fillSorting(*sorting, list, updates);
    updates.emplace_back([=] {
        sorting->setEnabled(isFilled());
        if (!isFilled())
            sorting->close();
    });
    menu->addSeparator();
    add(
        "ListSave", QCoreApplication::translate("ListMenu", "&Save list..."), QKeySequence::Save,
        [&list] { return list.isSavable(); }, &ListView::saveWanted);
    const auto update = [updates = std::move(updates)] {
        for (const auto& apply : updates)
            apply();
    };
    update();
    QObject::connect(&list, &ListView::rowsChanged, menu, update);
    QObject::connect(list.model(), &QAbstractItemModel::modelReset, menu, update);
    QObject::connect(list.selectionModel(), &QItemSelectionModel::selectionChanged, menu, update);
    menu->popup(place);
}

} // namespace quarrynet
