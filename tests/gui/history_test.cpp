#include <QAbstractItemView>
#include <QAction>
#include <QFile>
#include <QMenu>
#include <QPainter>

#ifndef Q_OS_WIN
#include <csignal>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

#include "common/SearchHistory.h"
#include "tab_controls.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

namespace {

QStringList offered()
{
    const auto* list = qobject_cast<QAbstractItemView*>(QApplication::activePopupWidget());
    QStringList entries;
    for (int row = 0; list && row < list->model()->rowCount(); ++row)
        entries.append(list->model()->index(row, 0).data().toString());
    return entries;
}

QString numberedWord(std::size_t number)
{
    return u"word "_s + QString::number(number);
}

} // namespace

class HistoryTest final : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        window_ = std::make_unique<WindowFixture>();
        window_->service.answerWith(pageOf(kTabs[0]));
    }
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

        QVERIFY(menuEntry("historymnu")->isChecked());
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

    // A person who has written something else than "on" wants no records, even if the word is not the program's.
    void anyOtherValueThanOnIsOff()
    {
        window_->writeSettings("[History]\nValue=no\n");
        window_->start();
        searchFor("Text1", "apple");
        settle();
        QVERIFY(!QFile::exists(historyFile()));
        QVERIFY(!menuEntry("historymnu")->isChecked());
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

    void theDownKeyOffersAllInAnEmptyField()
    {
        startWithHistory("file\tb\nfile\ta\nkeywords\tapple\n");
        window_->chooseTab(5);
        press(Qt::Key_Down);
        QCOMPARE(offered(), QStringList({u"b"_s, u"a"_s}));
        QCOMPARE(window_->control<QLineEdit>("Text11")->text(), QString());
    }

    void enterWithoutAChosenEntrySearchesForWhatIsTyped()
    {
        startWithHistory("keywords\tapple\n");
        window_->control<QLineEdit>("Text1")->setFocus();
        pressLetters("ap");
        QCOMPARE(offered().size(), 1);
        press(Qt::Key_Return);
        QVERIFY(!QApplication::activePopupWidget());
        QTRY_COMPARE(window_->service.requests().size(), 1);
        QVERIFY(window_->service.lastRequestLine().contains("&q=ap "));
        waitForEnd(kTabs[0]);
        QCOMPARE(window_->service.requests().size(), 1);
    }

    void enterOnAChosenEntrySearchesForItOnce()
    {
        startWithHistory("keywords\tapple pie\nkeywords\tapple\n");
        window_->control<QLineEdit>("Text1")->setFocus();
        pressLetters("ap");
        press(Qt::Key_Down);
        press(Qt::Key_Down);
        QCOMPARE(window_->control<QLineEdit>("Text1")->text(), u"ap"_s); // passing an entry does not take it
        press(Qt::Key_Up);
        press(Qt::Key_Return);
        QVERIFY(!QApplication::activePopupWidget());
        QCOMPARE(window_->control<QLineEdit>("Text1")->text(), u"apple pie"_s);
        QTRY_COMPARE(window_->service.requests().size(), 1);
        QVERIFY(window_->service.lastRequestLine().contains("&q=apple+pie "));
        waitForEnd(kTabs[0]);
        QCOMPARE(window_->service.requests().size(), 1);
        QVERIFY(window_->boxes.boxes().isEmpty() ||
                window_->boxes.texts() == QStringList(u"No site found for that keyword/s"_s));
    }

    // Enter in the address field leads to the keywords, and does so from the list as well.
    void enterOnAChosenAddressLeadsToTheKeywords()
    {
        startWithHistory("address\texample.org\n");
        window_->chooseTab(2);
        window_->control<QLineEdit>("Text4")->setFocus();
        press(Qt::Key_Down);
        press(Qt::Key_Down);
        press(Qt::Key_Return);
        QCOMPARE(window_->control<QLineEdit>("Text4")->text(), u"example.org"_s);
        QVERIFY(window_->control<QLineEdit>("Text5")->hasFocus());
        QVERIFY(window_->service.requests().isEmpty());
    }

    void aClickTakesAnEntryWithoutSearching()
    {
        startWithHistory("keywords\tapple pie\nkeywords\tapple\n");
        press(Qt::Key_Down);
        auto* list = qobject_cast<QAbstractItemView*>(QApplication::activePopupWidget());
        QVERIFY(list);
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualRect(list->model()->index(1, 0)).center());
        QVERIFY(!QApplication::activePopupWidget());
        QCOMPARE(window_->control<QLineEdit>("Text1")->text(), u"apple"_s);
        QVERIFY(window_->control<QLineEdit>("Text1")->hasFocus());
        QVERIFY(window_->service.requests().isEmpty());
    }

    void tabGoesOnWithoutTakingTheChosenEntry()
    {
        startWithHistory("keywords\tapple\n");
        pressLetters("ap");
        press(Qt::Key_Down);
        press(Qt::Key_Tab);
        QVERIFY(!QApplication::activePopupWidget());
        QCOMPARE(window_->control<QLineEdit>("Text1")->text(), u"ap"_s);
        QVERIFY(window_->control<QPushButton>("Command1")->hasFocus());
    }

    void escapeClosesTheListAndStopsOnlyThen()
    {
        startWithHistory("keywords\tapple\n");
        window_->service.stall();
        searchFor("Text1", "pear");
        QTRY_COMPARE(window_->service.requests().size(), 1);
        window_->type("Text1", {});
        pressLetters("ap");
        QCOMPARE(offered().size(), 1);
        press(Qt::Key_Escape);
        QVERIFY(!QApplication::activePopupWidget());
        QVERIFY(window_->boxes.boxes().isEmpty());
        QCOMPARE(window_->control<QLineEdit>("Text1")->text(), u"ap"_s);
        press(Qt::Key_Escape);
        QCOMPARE(window_->boxes.texts(), QStringList(u"User cancel the operation"_s));
    }

    void escapeStopsAtOnceWhenNoListIsOpen()
    {
        startWithHistory("keywords\tapple\n");
        window_->service.stall();
        searchFor("Text1", "pear");
        QTRY_COMPARE(window_->service.requests().size(), 1);
        press(Qt::Key_Escape);
        QCOMPARE(window_->boxes.texts(), QStringList(u"User cancel the operation"_s));
    }

    void deleteRemovesTheChosenEntry()
    {
        startWithHistory("keywords\tc\nkeywords\tb\nkeywords\ta\n");
        press(Qt::Key_Down);
        press(Qt::Key_Delete); // nothing is chosen yet
        QCOMPARE(offered().size(), 3);
        press(Qt::Key_Down);
        press(Qt::Key_Down);
        press(Qt::Key_Delete);
        QCOMPARE(offered(), QStringList({u"c"_s, u"a"_s}));
        QCOMPARE(history(), QByteArray("keywords\tc\nkeywords\ta\n"));
        press(Qt::Key_Delete);
        QCOMPARE(offered(), QStringList({u"c"_s}));
        press(Qt::Key_Delete);
        QVERIFY(!QApplication::activePopupWidget());
        QCOMPARE(history(), QByteArray());
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
        QVERIFY(!menuEntry("historymnu")->isChecked());
        menuEntry("historymnu")->trigger();
        window_->start();
        QMenu* view = window_->control<QMenu>("viewmnu");
        emit view->aboutToShow();
        QVERIFY(menuEntry("historymnu")->isChecked());
    }

    void clearDeletesTheFileAndWhatACrashHasLeft()
    {
        startWithHistory("keywords\tapple\n");
        QFile left(historyFile() + u".4711-0.tmp"_s);
        QVERIFY(left.open(QIODevice::WriteOnly) && left.write("keywords\tapple\n") > 0);
        left.close();
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

    void whatIsInTheFileIsCutToWhatMayBeOffered_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("cut") << QByteArray("keywords\tapple\nkeywords\tpea");
        QTest::newRow("NUL") << QByteArray("keywords\tapple\nkeywords\tp\0ar\n", 30);
        QTest::newRow("broken UTF-8") << QByteArray("keywords\tapple\nkeywords\tp\xFF\n");
        QTest::newRow("turned") << QByteArray("keywords\tapple\nkeywords\tp\xE2\x80\xAE\n");
        QTest::newRow("no lines") << QByteArray("keywords\tapple\n" + QByteArray(1000, 'x'));
    }

    void whatIsInTheFileIsCutToWhatMayBeOffered()
    {
        QFETCH(QByteArray, content);
        startWithHistory(content);
        press(Qt::Key_Down);
        QCOMPARE(offered(), QStringList(u"apple"_s));
    }

    void aHugeFileIsLeftAlone()
    {
        startWithHistory("keywords\tapple\n" + QByteArray(static_cast<int>(SearchHistory::kMaxFileBytes), 'x'));
        verifyUnusable();
        QCOMPARE(history().size(), static_cast<qsizetype>(SearchHistory::kMaxFileBytes) + 15);
        menuEntry("clearhistorymnu")->trigger();
        QVERIFY(!QFile::exists(historyFile()));
    }

    void aFolderIsLeftAlone()
    {
        startWithHistory();
        QVERIFY(QDir().mkpath(historyFile()));
        verifyUnusable();
    }

#ifndef Q_OS_WIN
    void aPipeIsLeftAloneAndDoesNotBlock()
    {
        startWithHistory();
        QCOMPARE(::mkfifo(QFile::encodeName(historyFile()).constData(), 0600), 0);
        verifyUnusable();
    }

    void aLinkIsLeftAlone_data()
    {
        QTest::addColumn<QString>("target");
        QTest::newRow("file") << u"real"_s;
        QTest::newRow("nothing") << u"none"_s;
        QTest::newRow("device") << u"/dev/zero"_s;
        QTest::newRow("itself") << u"Quarrynet.history"_s;
    }

    void aLinkIsLeftAlone()
    {
        QFETCH(QString, target);
        startWithHistory();
        QFile real(window_->folder() + u"/real"_s);
        QVERIFY(real.open(QIODevice::WriteOnly) && real.write("keywords\tapple\n") > 0);
        real.close();
        QVERIFY(QFile::link(target, historyFile()));
        verifyUnusable();
        QVERIFY(QFileInfo(historyFile()).isSymbolicLink());
        QVERIFY(!QFile::exists(window_->folder() + u"/none"_s));
        QVERIFY(real.open(QIODevice::ReadOnly));
        QCOMPARE(real.readAll(), QByteArray("keywords\tapple\n"));
        menuEntry("clearhistorymnu")->trigger();
        QVERIFY(!QFileInfo(historyFile()).isSymbolicLink());
        QVERIFY(real.exists());
    }

    void aReadOnlyFileIsLeftAlone()
    {
        if (::geteuid() == 0)
            QSKIP("root may write every file");
        startWithHistory("keywords\tapple\n");
        QVERIFY(QFile::setPermissions(historyFile(), QFile::ReadOwner));
        searchFor("Text1", "pear");
        waitForEnd(kTabs[0]);
        settle();
        QCOMPARE(history(), QByteArray("keywords\tapple\n"));
    }

    void anotherUsersFileIsNotReadReplacedOrDeleted()
    {
        if (::geteuid() != 0)
            QSKIP("only root can give a file away");
        startWithHistory("keywords\tapple\n");
        QCOMPARE(::chown(QFile::encodeName(historyFile()).constData(), 65534, 65534), 0);
        verifyUnusable();
        menuEntry("clearhistorymnu")->trigger();
        QCOMPARE(window_->boxes.texts().last().contains(u"another user"_s), true);
        QCOMPARE(history(), QByteArray("keywords\tapple\n"));
    }

    // A full disk used to be imagined as a box at each search.
    void onAFullDiskTheHistoryStaysAsItWas()
    {
        QByteArray content;
        for (std::size_t i = 0; i < SearchHistory::kMaxEntries; ++i)
            content += "keywords\t" + numberedWord(i).toLatin1() + QByteArray(1500, 'x') + "\n";
        startWithHistory(content);
        rlimit limit = {};
        QCOMPARE(::getrlimit(RLIMIT_FSIZE, &limit), 0);
        const rlimit small = {100'000, limit.rlim_max};
        const auto before = std::signal(SIGXFSZ, SIG_IGN);
        QCOMPARE(::setrlimit(RLIMIT_FSIZE, &small), 0);
        for (const char* words : {"pear", "plum"}) {
            searchFor("Text1", words);
            waitForEnd(kTabs[0]);
            settle();
        }
        const QByteArray whileFull = history();
        const QStringList files = QDir(window_->folder()).entryList({u"Quarrynet.history*"_s}, QDir::Files);
        QCOMPARE(::setrlimit(RLIMIT_FSIZE, &limit), 0);
        std::signal(SIGXFSZ, before);
        QVERIFY(whileFull == content);
        QCOMPARE(files, QStringList(u"Quarrynet.history"_s));
        for (const QString& text : window_->boxes.texts())
            QCOMPARE(text, u"No site found for that keyword/s"_s);
        // What could not be written is written with the next search.
        searchFor("Text1", "quince");
        QTRY_VERIFY(history().startsWith("keywords\tquince\nkeywords\tplum\nkeywords\tpear\nkeywords\tword 0"));
    }

    void aLockedHistoryIsWrittenLater()
    {
        startWithHistory("keywords\tapple\n");
        const int folder = ::open(QFile::encodeName(window_->folder()).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        QVERIFY(folder >= 0);
        QCOMPARE(::flock(folder, LOCK_EX), 0);
        searchFor("Text1", "pear");
        waitForEnd(kTabs[0]);
        settle();
        QCOMPARE(history(), QByteArray("keywords\tapple\n"));
        ::close(folder);
        window_.get()->main().close();
        const QString file = historyFile();
        searchFor("Text1", "plum");
        QTRY_COMPARE(history(), QByteArray("keywords\tplum\nkeywords\tpear\nkeywords\tapple\n"));
    }
#endif

    void theListHasTheFieldsFontAtEverySize_data()
    {
        QTest::addColumn<int>("points");
        for (const int points : {7, 8, 10, 14, 20, 24})
            QTest::addRow("%d", points) << points;
    }

    void theListHasTheFieldsFontAtEverySize()
    {
        QFETCH(int, points);
        QByteArray content;
        for (std::size_t i = 0; i < 30; ++i)
            content += "keywords\t" + numberedWord(i).toLatin1() + "\n";
        startWithHistory(content);
        auto* field = window_->control<QLineEdit>("Text1");
        QFont font = field->font();
        font.setPointSize(points);
        field->setFont(font);
        press(Qt::Key_Down);
        auto* list = qobject_cast<QAbstractItemView*>(QApplication::activePopupWidget());
        QVERIFY(list);
        QCOMPARE(list->font().pointSize(), points);
        QVERIFY(list->sizeHintForRow(0) >= QFontMetrics(list->font()).height());
        QCOMPARE(list->width(), field->width());
        QVERIFY(list->viewport()->height() >= 10 * list->sizeHintForRow(0) ||
                list->height() + 100 > list->screen()->availableGeometry().height() / 2);
        savePicture(points, *list);
    }

private:
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

    QString historyFile() const
    {
        return window_->folder() + QDir::separator() + u"Quarrynet.history"_s;
    }

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

    void press(int key)
    {
        QTest::keyClick(keyboard(), static_cast<Qt::Key>(key));
    }

    void pressLetters(const char* letters)
    {
        for (const char* letter = letters; *letter != '\0'; ++letter)
            QTest::keyClick(keyboard(), *letter);
    }

    QAction* menuEntry(const char* name)
    {
        return window_->control<QAction>(name);
    }

    void searchFor(const char* field, const char* words)
    {
        auto* edit = window_->control<QLineEdit>(field);
        edit->setFocus();
        edit->setText(QLatin1String(words));
        QTest::keyClick(edit, Qt::Key_Return);
    }

    void waitForEnd(const TabControls& tab)
    {
        QTRY_VERIFY(window_->socketState(tab.socket) == 0);
    }

    // Runs everything that is planned for now, such as a write.
    static void settle()
    {
        for (int i = 0; i < 3; ++i)
            QCoreApplication::processEvents();
    }

    // Verifies that searches work without a message although the history cannot be used, and that nothing is offered.
    void verifyUnusable()
    {
        const QFileInfo before(historyFile());
        searchFor("Text1", "pear");
        QTRY_COMPARE(window_->service.requests().size(), 1);
        waitForEnd(kTabs[0]);
        settle();
        for (const QString& text : window_->boxes.texts())
            QCOMPARE(text, u"No site found for that keyword/s"_s);
        window_->activate();
        window_->type("Text1", {});
        const QFileInfo after(historyFile());
        QCOMPARE(after.lastModified(), before.lastModified());
        QCOMPARE(after.isFile(), before.isFile());
        pressLetters("ap");
        QVERIFY(!QApplication::activePopupWidget());
    }

    // With QUARRYNET_PICTURES set, saves what the test has made there, for people to look at.
    void savePicture(int points, QWidget& list)
    {
        const QString folder = qEnvironmentVariable("QUARRYNET_PICTURES");
        if (folder.isEmpty())
            return;
        QPixmap picture = window_->main().grab();
        const QPoint at = window_->main().mapFromGlobal(list.mapToGlobal(QPoint()));
        QPainter painter(&picture);
        painter.drawPixmap(at, list.grab());
        picture.save(folder + QStringLiteral("/history-%1.png").arg(points));
    }

    std::unique_ptr<WindowFixture> window_;
};

QTEST_MAIN(HistoryTest)
#include "history_test.moc"
