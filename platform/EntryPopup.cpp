#include "platform/EntryPopup.h"

#include <utility>

#include <QAbstractItemView>
#include <QAction>
#include <QCompleter>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QScopedValueRollback>
#include <QStringListModel>

namespace quarrynet {

namespace {

// Returns whether `field` or its window keeps this key, such as one for editing, from the shortcuts.
bool isKept(QLineEdit& field, const QKeyEvent& key)
{
    QKeyEvent question(QEvent::ShortcutOverride, key.key(), key.modifiers(), key.text());
    question.ignore();
    QCoreApplication::sendEvent(&field, &question);
    return question.isAccepted();
}

// Returns whether this key is one for the window's shortcuts.
bool isForWindow(QLineEdit& field, const QKeyEvent& key)
{
    switch (key.key()) {
    case Qt::Key_Escape:
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Alt:
    case Qt::Key_AltGr:
    case Qt::Key_Control:
    case Qt::Key_Shift:
    case Qt::Key_Meta:
        return false;
    default:
        break;
    }
    if (key.key() >= Qt::Key_F1 && key.key() <= Qt::Key_F35)
        return true;
    const bool isAlt = key.modifiers().testFlag(Qt::AltModifier);
    const bool isControl = key.modifiers().testFlag(Qt::ControlModifier);
    if (isAlt && isControl) // the AltGr key of some systems
        return key.text().isEmpty() || !key.text().front().isPrint();
    return (isAlt || isControl) && !isKept(field, key);
}

} // namespace

EntryPopup::EntryPopup(QLineEdit& field, std::function<QStringList()> entries,
                       std::function<bool(const QString&)> forget)
    : QObject(&field), field_(field), readEntries_(std::move(entries)), forget_(std::move(forget))
{
    field.installEventFilter(this);
    connect(&field, &QLineEdit::textEdited, this, &EntryPopup::offer);
}

EntryPopup::~EntryPopup() = default;

void EntryPopup::refresh()
{
    areRead_ = false;
    if (isOpen())
        completer_->popup()->hide();
}

const QStringList& EntryPopup::entries()
{
    if (!areRead_) {
        entries_ = readEntries_();
        areRead_ = true;
    }
    return entries_;
}

bool EntryPopup::isOpen() const
{
    return completer_ && completer_->popup()->isVisible();
}

void EntryPopup::offer()
{
    const QString typed = field_.text().trimmed();
    QStringList fitting;
    if (!typed.isEmpty()) {
        fitting = entries().filter(typed, Qt::CaseInsensitive);
        fitting.removeAll(typed); // taking it would change nothing
    }
    show(fitting);
}

bool EntryPopup::openOnDown()
{
    offer();
    if (!isOpen())
        show(entries());
    return isOpen();
}

// Returns whether the list is open.
bool EntryPopup::show(const QStringList& entries)
{
    if (entries.isEmpty()) {
        if (isOpen())
            completer_->popup()->hide();
        return false;
    }
    if (!completer_) {
        constexpr int kRows = 10;
        shown_ = new QStringListModel(this);
        // The field does not know its completer: it would show each entry that is passed on the way down the list, and
        // act on Enter before the entry is taken.
        completer_ = new QCompleter(shown_, this);
        completer_->setWidget(&field_);
        completer_->setMaxVisibleItems(kRows);
        completer_->popup()->setObjectName(field_.objectName() + QLatin1String("Entries"));
        completer_->popup()->setAccessibleName(tr("Earlier entries"));
        completer_->popup()->setContextMenuPolicy(Qt::CustomContextMenu);
        connect(completer_->popup(), &QWidget::customContextMenuRequested, this, &EntryPopup::showMenu);
        completer_->popup()->installEventFilter(this); // called before the completer's own filter
        connect(completer_, qOverload<const QString&>(&QCompleter::activated), this, &EntryPopup::take);
    }
    completer_->popup()->setFont(field_.font());
    shown_->setStringList(entries);
    completer_->complete();
    return isOpen();
}

bool EntryPopup::eventFilter(QObject* watched, QEvent* event)
{
    // An open list keeps the window's shortcuts from acting. The toolkit looks for the shortcut after this event, which
    // it sends to the field or to the list, depending on the system.
    if (event->type() == QEvent::ShortcutOverride && isOpen() && !isAsking_) {
        const QScopedValueRollback asking(isAsking_, true); // the question to the field comes here, too
        if (isForWindow(field_, static_cast<const QKeyEvent&>(*event)))
            completer_->popup()->hide();
    }
    if (watched == &field_) {
        if (event->type() == QEvent::FocusIn && !isOpen()) {
            areRead_ = false; // another window may have changed the history
            gotFocusByMouse_ = static_cast<const QFocusEvent&>(*event).reason() == Qt::MouseFocusReason;
        }
        if (event->type() == QEvent::MouseButtonPress)
            noteFieldPress(static_cast<const QMouseEvent&>(*event));
        if (event->type() == QEvent::MouseButtonRelease)
            openOnRelease(static_cast<const QMouseEvent&>(*event));
        if (event->type() == QEvent::KeyPress) {
            const auto& key = static_cast<const QKeyEvent&>(*event);
            if (key.key() == Qt::Key_Down && (key.modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier && !isOpen())
                return openOnDown();
        }
    } else if (event->type() == QEvent::KeyPress) {
        return handlePopupKey(static_cast<const QKeyEvent&>(*event));
    } else if (event->type() == QEvent::MouseButtonPress) {
        const QPoint at = static_cast<const QMouseEvent&>(*event).globalPosition().toPoint();
        pressClosedList_ = field_.rect().contains(field_.mapFromGlobal(at));
    }
    return false;
}

// A click that only brings the focus does not open the list, which would cover what is below the field.
void EntryPopup::noteFieldPress(const QMouseEvent& press)
{
    const bool broughtFocus = std::exchange(gotFocusByMouse_, false);
    const bool closedList = std::exchange(pressClosedList_, false);
    opensOnRelease_ =
        press.button() == Qt::LeftButton && !broughtFocus && !closedList && !isOpen() && field_.text().isEmpty();
}

// Not on the press: its release would be the list's.
void EntryPopup::openOnRelease(const QMouseEvent& release)
{
    if (std::exchange(opensOnRelease_, false) && field_.rect().contains(release.position().toPoint()))
        openOnDown();
}

// `at` is a place in the list's viewport.
void EntryPopup::showMenu(const QPoint& at)
{
    QAbstractItemView& list = *completer_->popup();
    const QModelIndex entry = list.indexAt(at);
    if (!entry.isValid())
        return;
    list.setCurrentIndex(entry);
    auto* menu = new QMenu(&list);
    menu->setObjectName(list.objectName() + QLatin1String("Menu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    connect(menu->addAction(tr("&Remove from History")), &QAction::triggered, this, &EntryPopup::removeChosen);
    menu->popup(list.viewport()->mapToGlobal(at));
}

// Returns whether the key needs no further handling.
bool EntryPopup::handlePopupKey(const QKeyEvent& key)
{
    switch (key.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (const QString entry = chosen(); !entry.isEmpty())
            take(entry);
        break;
    case Qt::Key_Escape:
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        break;
    case Qt::Key_Delete:
        if (key.modifiers() & ~Qt::KeypadModifier || chosen().isEmpty())
            return false;
        removeChosen();
        return true;
    default:
        if (!isForWindow(field_, key))
            return false;
    }
    completer_->popup()->hide();
    QKeyEvent forField(key.type(), key.key(), key.modifiers(), key.text(), key.isAutoRepeat());
    QCoreApplication::sendEvent(&field_, &forField);
    return true;
}

QString EntryPopup::chosen() const
{
    const QAbstractItemView& list = *completer_->popup();
    return list.selectionModel()->isSelected(list.currentIndex()) ? list.currentIndex().data().toString() : QString();
}

void EntryPopup::take(const QString& entry)
{
    field_.setText(entry);
}

void EntryPopup::removeChosen()
{
    QAbstractItemView& list = *completer_->popup();
    const int row = list.currentIndex().row();
    const QString entry = chosen();
    if (entry.isEmpty() || !forget_(entry))
        return;
    QStringList left = shown_->stringList();
    left.removeAt(row);
    entries_.removeAll(entry);
    if (show(left))
        list.setCurrentIndex(completer_->completionModel()->index(qMin(row, static_cast<int>(left.size()) - 1), 0));
}

} // namespace quarrynet
