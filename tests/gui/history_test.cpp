#include <QMenu>
#include <QScopeGuard>

#ifdef Q_OS_WIN
#include <windows.h>
#endif

#include "HistoryFixture.h"
#include "common/SearchHistory.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

namespace {

// The ends of the names of files that writers leave if they are interrupted.
#ifdef Q_OS_WIN
constexpr std::array<const char*, 2> kLeftByCrashes = {".tmp", ".tmp.aBcDeF"};
#else
constexpr std::array<const char*, 1> kLeftByCrashes = {".4711-0.tmp"};
#endif

} // namespace

class HistoryTest final : public HistoryFixture
{
    Q_OBJECT

private slots:
    void init() { makeWindow(); }
    void cleanup() { window_.reset(); }

    void isOnUntilItIsSwitchedOff()
    {
        window_->start();
        QVERIFY(!QFile::exists(historyFile()));
        searchFor("Text1", "apple");
        QTRY_COMPARE(history(), QByteArray("keywords\tapple\n"));
        QVERIFY(!QFile::exists(window_->settingsFile()));
        waitForEnd(kTabs[0]);
        window_->type("Text1", {});
        pressLetters("ap");
        QCOMPARE(offered(), QStringList(u"apple"_s));
        press(Qt::Key_Escape);

        QVERIFY(isMarkedInMenu());
        menuEntry("historymnu")->trigger();
        QVERIFY(!menuEntry("historymnu")->isChecked());
        searchFor("Text1", "pear");
        settle();
        QCOMPARE(history(), QByteArray("keywords\tapple\n"));
        window_->type("Text1", {});
        pressLetters("ap");
        press(Qt::Key_Down);
        QVERIFY(!QApplication::activePopupWidget());
    }

    // A person who has written something else than "on" wants no records, even if the word is not the program's. An
    // empty value used to mean "on".
    void anyOtherValueThanOnIsOff_data()
    {
        QTest::addColumn<QByteArray>("line");
        for (const char* line : {"Value=no", "Value=", "Value", "value=  ", "VALUE=\"\"", "Value=ON"})
            QTest::newRow(line) << QByteArray(line);
        QTest::newRow("the first of two") << QByteArray("Value=\nValue=on");
    }

    void anyOtherValueThanOnIsOff()
    {
        QFETCH(QByteArray, line);
        window_->writeSettings("[History]\n" + line + "\n");
        window_->start();
        searchFor("Text1", "apple");
        settle();
        QVERIFY(!QFile::exists(historyFile()));
        QVERIFY(!isMarkedInMenu());
        menuEntry("historymnu")->trigger();
        QVERIFY(isMarkedInMenu());
    }

    void aSectionWithoutTheValueIsOn()
    {
        window_->writeSettings("[History]\nValues=\n[Else]\nValue=\n");
        window_->start();
        QVERIFY(isMarkedInMenu());
    }

    // It may say "off". Files that are readable by their permissions used to count as on, whatever the reading gave.
    void anUnreadableSettingsFileIsOff_data()
    {
        QTest::addColumn<QString>("fault");
        for (const char* fault : {"too large", "folder", "link to nothing", "in use"})
            QTest::newRow(fault) << QString::fromLatin1(fault);
    }

    void anUnreadableSettingsFileIsOff()
    {
        QFETCH(QString, fault);
        constexpr qint64 kTooLarge = qint64{17} << 20;
        window_->writeSettings("[History]\nValue=off\n");
        window_->start();
        const QString file = window_->settingsFile();
        QVERIFY(fault == u"too large"_s ? QFile::resize(file, kTooLarge) : fault == u"in use"_s || QFile::remove(file));
        if (fault == u"folder"_s)
            QVERIFY(QDir().mkpath(file));
#ifdef Q_OS_WIN
        if (fault == u"link to nothing"_s)
            QSKIP("only administrators can make links");
        HANDLE other = fault == u"in use"_s
                           ? ::CreateFileW(QDir::toNativeSeparators(file).toStdWString().c_str(), GENERIC_READ, 0,
                                           nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)
                           : nullptr;
        QVERIFY(other != INVALID_HANDLE_VALUE);
        const auto close = qScopeGuard([other] { other&& ::CloseHandle(other); });
#else
        if (fault == u"in use"_s)
            QSKIP("here, programs cannot keep others from reading a file");
        if (fault == u"link to nothing"_s)
            QVERIFY(QFile::link(u"/no such folder/Quarrynet.ini"_s, file));
#endif
        QVERIFY(!isMarkedInMenu());
        searchFor("Text1", "apple");
        QTRY_COMPARE(window_->service.requests().size(), 1);
        settle();
        QVERIFY(!QFile::exists(historyFile()));
    }

    // Once the start waited for one more reading of the settings file.
    void theSwitchIsReadWhenTheMenuIsOpened()
    {
        window_->start();
        QVERIFY(!menuEntry("historymnu")->isChecked());
        QVERIFY(isMarkedInMenu());
        window_->writeSettings("[History]\nValue=off\n");
        QVERIFY(!isMarkedInMenu());
    }

    void theMenuHasItsEntriesBehindTheStatedOne()
    {
        window_->start();
        const QList<QAction*> entries = window_->control<QMenu>("viewmnu")->actions();
        QCOMPARE(entries[0]->objectName(), u"proxymnu"_s);
        QVERIFY(entries[1]->isSeparator());
        QCOMPARE(entries[2]->text(), u"&Keep History"_s);
        QVERIFY(entries[2]->isCheckable());
        QCOMPARE(entries[3]->text(), u"&Clear History"_s);
    }

    void everyTabKeepsWhatWasSearchedForByItsKind()
    {
        startWithHistory();
        for (const TabControls& tab : kTabs) {
            const char* field = fillIn(*window_, tab);
            QTest::keyClick(window_->control<QLineEdit>(field), Qt::Key_Return);
            waitForEnd(tab);
        }
        QTRY_COMPARE(history(), QByteArray("keywords\teditor\nkeywords\tpear\nkeywords\tgreen pear\nkeywords\tapple\n"
                                           "address\t127.0.0.1/orchard\nfile\treadme\n"));
#ifndef Q_OS_WIN
        QCOMPARE(QFile::permissions(historyFile()),
                 QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser);
#endif
        QCOMPARE(QDir(window_->folder()).entryList({u"Quarrynet.*"_s}, QDir::Files).size(), 2);
    }

    void entriesComeNewestFirstAndByWhatTheyContain()
    {
        startWithHistory("keywords\tgreen apple\nkeywords\tpear\nkeywords\tAPPLE pie\nfile\tapple.txt\n");
        window_->control<QLineEdit>("Text1")->setFocus();
        pressLetters("apple");
        QCOMPARE(offered(), QStringList({u"green apple"_s, u"APPLE pie"_s}));
        QCOMPARE(window_->control<QLineEdit>("Text1")->text(), u"apple"_s);
        pressLetters(" p");
        QCOMPARE(offered(), QStringList({u"APPLE pie"_s}));
        pressLetters("x");
        QVERIFY(!QApplication::activePopupWidget());
        press(Qt::Key_Backspace);
        QCOMPARE(offered(), QStringList({u"APPLE pie"_s}));
    }

    void aRefusedSearchIsNotKept()
    {
        startWithHistory();
        QTest::keyClick(window_->control<QLineEdit>("Text1"), Qt::Key_Return); // no keywords
        window_->chooseTab(2);
        window_->type("Text4", u"example.org"_s);
        QTest::mouseClick(window_->control<QPushButton>("Command2"), Qt::LeftButton); // no keywords
        QCOMPARE(window_->boxes.boxes().size(), 2);
        settle();
        QVERIFY(!QFile::exists(historyFile()));
    }

    // While the proxy is on, the page check opens no connection.
    void aPageCheckThatDoesNotStartIsNotKept()
    {
        window_->useServiceAsProxy();
        window_->start();
        menuEntry("historymnu")->trigger();
        QTest::keyClick(window_->control<QLineEdit>(fillIn(*window_, kTabs[1])), Qt::Key_Return);
        settle();
        QVERIFY(!QFile::exists(historyFile()));
    }

    void anAddressWithAPasswordIsNotKept()
    {
        startWithHistory();
        window_->chooseTab(2);
        window_->type("Text4", u"user:secret@127.0.0.1"_s);
        window_->type("Text5", u"apple"_s);
        QTest::keyClick(window_->control<QLineEdit>("Text5"), Qt::Key_Return);
        QTRY_COMPARE(history(), QByteArray("keywords\tapple\n"));
    }

    // As a tour does.
    void aWindowThatRemembersNothingNeitherWritesNorOffersEntries()
    {
        window_->remembers = false;
        startWithHistory("keywords\tapple\n");
        searchFor("Text1", "pear");
        waitForEnd(kTabs[0]);
        settle();
        QCOMPARE(history(), QByteArray("keywords\tapple\n"));
        window_->type("Text1", {});
        pressLetters("a");
        QVERIFY(!QApplication::activePopupWidget());
    }

    void switchedOffItWritesAndOffersNothingAndKeepsWhatItHas()
    {
        startWithHistory("keywords\tapple\n");
        menuEntry("historymnu")->trigger();
        QVERIFY(!menuEntry("historymnu")->isChecked());
        searchFor("Text1", "pear");
        waitForEnd(kTabs[0]);
        settle();
        QCOMPARE(history(), QByteArray("keywords\tapple\n"));
        window_->type("Text1", {});
        pressLetters("a");
        QVERIFY(!QApplication::activePopupWidget());
        menuEntry("historymnu")->trigger();
        pressLetters("p");
        QCOMPARE(offered(), QStringList(u"apple"_s));
    }

    void theSwitchOutlivesTheWindowAndLeavesOtherSettings()
    {
        window_->writeSettings("; mine\n[ProxyHost]\nValue=proxy.example\nOther=1\n");
        window_->start();
        menuEntry("historymnu")->trigger();
        QFile file(window_->settingsFile());
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray settings = file.readAll().replace('\r', "");
        QVERIFY(settings.startsWith("; mine\n[ProxyHost]\nValue=proxy.example\nOther=1\n"));
        QVERIFY(settings.contains("[History]\nValue=off\n"));
        file.close();
        window_->start(); // another window in the same folder
        QVERIFY(!isMarkedInMenu());
        menuEntry("historymnu")->trigger();
        window_->start();
        QVERIFY(isMarkedInMenu());
    }

    void clearDeletesTheFileAndWhatACrashHasLeft()
    {
        startWithHistory("keywords\tapple\n");
        for (const char* name : kLeftByCrashes)
            makeFile(historyFile() + QLatin1String(name));
        press(Qt::Key_Down);
        QCOMPARE(offered().size(), 1);
        menuEntry("clearhistorymnu")->trigger();
        QVERIFY(!QApplication::activePopupWidget());
        QCOMPARE(QDir(window_->folder()).entryList({u"Quarrynet.history*"_s}, QDir::Files), QStringList());
        press(Qt::Key_Down);
        QVERIFY(!QApplication::activePopupWidget());
        menuEntry("clearhistorymnu")->trigger();
        QVERIFY(window_->boxes.boxes().isEmpty());
    }

    // They were deleted because their names begin like the history's.
    void clearLeavesTheUsersOwnFiles()
    {
        startWithHistory("keywords\tapple\n");
        QStringList own;
        for (const char* name : {".bak", ".backup", ".old", ".tmp.bak", ".4711.tmp", ".txt"}) {
            own.append(u"Quarrynet.history"_s + QLatin1String(name));
            makeFile(historyFile() + QLatin1String(name));
        }
        own.sort();
        menuEntry("clearhistorymnu")->trigger();
        QCOMPARE(QDir(window_->folder()).entryList({u"Quarrynet.history*"_s}, QDir::Files, QDir::Name), own);
    }

    void aHistoryThatCannotBeClearedIsReported()
    {
        startWithHistory();
        QVERIFY(QDir().mkpath(historyFile() + u"/folder"_s));
        menuEntry("clearhistorymnu")->trigger();
        QCOMPARE(window_->boxes.boxes().size(), 1);
        QVERIFY(window_->boxes.texts().front().contains(historyFile()));
    }

    void twoWindowsLoseNothing()
    {
        startWithHistory();
        searchFor("Text1", "apple");
        waitForEnd(kTabs[0]);
        QTRY_COMPARE(history(), QByteArray("keywords\tapple\n"));
        Main second({window_->hosts, window_->shell, window_->folder().toStdString(), {}, {}, {}});
        QVERIFY(second.load());
        second.show();
        auto* field = second.findChild<QLineEdit*>(u"Text1"_s);
        field->setText(u"pear"_s);
        QTest::keyClick(field, Qt::Key_Return);
        QTRY_COMPARE(history(), QByteArray("keywords\tpear\nkeywords\tapple\n"));
        window_->activate();
        searchFor("Text1", "quince");
        QTRY_COMPARE(history(), QByteArray("keywords\tquince\nkeywords\tpear\nkeywords\tapple\n"));
        // One window switches it off, and the other obeys.
        second.findChild<QAction*>(u"historymnu"_s)->trigger();
        waitForEnd(kTabs[0]);
        searchFor("Text1", "plum");
        settle();
        QCOMPARE(history(), QByteArray("keywords\tquince\nkeywords\tpear\nkeywords\tapple\n"));
    }

private:
    static void makeFile(const QString& path)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(file.write("keywords\tapple\n") > 0);
    }

    bool isMarkedInMenu()
    {
        emit window_->control<QMenu>("viewmnu")->aboutToShow();
        return menuEntry("historymnu")->isChecked();
    }
};

QTEST_MAIN(HistoryTest)
#include "history_test.moc"
