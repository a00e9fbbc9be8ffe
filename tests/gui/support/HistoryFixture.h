#pragma once

#include <QAbstractItemView>
#include <QAction>
#include <QFile>

#include "tab_controls.h"

namespace quarrynet {

/// A window whose history the test reads and writes, and works by keys. Base of the tests of the history.
class HistoryFixture : public QObject
{
protected:
    void makeWindow()
    {
        window_ = std::make_unique<WindowFixture>();
        window_->service.answerWith(pageOf(kTabs[0]));
    }

    /// Returns the entries of the open list, if there is one.
    static QStringList offered()
    {
        const auto* list = qobject_cast<QAbstractItemView*>(QApplication::activePopupWidget());
        QStringList entries;
        for (int row = 0; list && row < list->model()->rowCount(); ++row)
            entries.append(list->model()->index(row, 0).data().toString());
        return entries;
    }

    void startWithHistory(const QByteArray& content = {})
    {
        window_->writeSettings("[History]\nValue=on\n");
        if (!content.isEmpty()) {
            QFile file(historyFile());
            QVERIFY(file.open(QIODevice::WriteOnly));
            QCOMPARE(file.write(content), content.size());
        }
        window_->start();
    }

    QString historyFile() const { return window_->folder() + QDir::separator() + QStringLiteral("Quarrynet.history"); }

    QByteArray history() const
    {
        QFile file(historyFile());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    // Returns where the keyboard is: in the open list of entries, or in the focused control.
    QWidget* keyboard()
    {
        if (QWidget* popup = QApplication::activePopupWidget())
            return popup;
        if (!QApplication::focusWidget())
            window_->activate(); // a box has closed
        return QApplication::focusWidget();
    }

    void press(int key) { QTest::keyClick(keyboard(), static_cast<Qt::Key>(key)); }

    void pressLetters(const char* letters)
    {
        for (const char* letter = letters; *letter != '\0'; ++letter)
            QTest::keyClick(keyboard(), *letter);
    }

    QAction* menuEntry(const char* name) { return window_->control<QAction>(name); }

    void searchFor(const char* field, const char* words)
    {
        auto* edit = window_->control<QLineEdit>(field);
        edit->setFocus();
        edit->setText(QLatin1String(words));
        QTest::keyClick(edit, Qt::Key_Return);
    }

    void waitForEnd(const TabControls& tab) { QTRY_VERIFY(window_->socketState(tab.socket) == 0); }

    // Runs everything that is planned for now, such as a write.
    static void settle()
    {
        for (int i = 0; i < 3; ++i)
            QCoreApplication::processEvents();
    }

    std::unique_ptr<WindowFixture> window_;
};

} // namespace quarrynet
