#pragma once

#include <functional>

#include <QObject>
#include <QStringList>

class QCompleter;
class QKeyEvent;
class QLineEdit;
class QMouseEvent;
class QPoint;
class QStringListModel;

namespace quarrynet {

/// Offers earlier entries in a list below a field: those that contain the typed text while the user types, and all of
/// them when the Down key is pressed in an empty field, or when it is clicked while it has the focus.
///
/// No entry is taken unless the user chooses it. Enter without a chosen entry keeps the typed text; Enter on a chosen
/// one takes it and then has its effect in the field, once; a click takes an entry without that effect. Delete removes
/// the chosen entry from the history, as does the command that the right button or the menu key offers. Escape, Tab,
/// and the keys of the window's shortcuts close the list and then have the effect that they have without it.
class EntryPopup final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(EntryPopup)

public:
    /// `entries` returns the earlier entries, newest first; it is called at the first key after the field got the focus
    /// or after refresh(). `forget` removes one of them from the history, or returns false if that fails. The list
    /// itself is made when it is first shown.
    EntryPopup(QLineEdit& field, std::function<QStringList()> entries, std::function<bool(const QString&)> forget);
    ~EntryPopup() override;

    /// Closes the list and discards the entries, which may have changed.
    void refresh();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void offer();
    bool show(const QStringList& entries);
    bool isOpen() const;
    bool openOnDown();
    void noteFieldPress(const QMouseEvent& press);
    void openOnRelease(const QMouseEvent& release);
    void showMenu(const QPoint& at);
    bool handlePopupKey(const QKeyEvent& key);
    void take(const QString& entry);
    void removeChosen();
    QString chosen() const;
    const QStringList& entries();

    QLineEdit& field_;
    std::function<QStringList()> readEntries_;
    std::function<bool(const QString&)> forget_;
    QStringList entries_;
    bool areRead_ = false; // whether entries_ holds what readEntries_ returned
    bool isAsking_ = false;
    bool gotFocusByMouse_ = false; // by the press that follows
    bool opensOnRelease_ = false;
    bool pressClosedList_ = false; // which happens before the field gets the press
    QCompleter* completer_ = nullptr;
    QStringListModel* shown_ = nullptr;
};

} // namespace quarrynet
