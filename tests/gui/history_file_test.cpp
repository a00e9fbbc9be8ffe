#ifndef Q_OS_WIN
#include <csignal>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

#include "HistoryFixture.h"
#include "common/SearchHistory.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

/// A history of any content, kind and owner ends nothing and is not replaced by what is not the program's.
class HistoryFileTest final : public HistoryFixture
{
    Q_OBJECT

private slots:
    void init() { makeWindow(); }
    void cleanup() { window_.reset(); }

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
            content += "keywords\tword " + QByteArray::number(static_cast<int>(i)) + QByteArray(1500, 'x') + "\n";
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

    // Another window that held the lock for longer used to bring the entries back without a word.
    void clearTellsWhenAnotherWindowMayBringEntriesBack()
    {
        startWithHistory("keywords\tapple\n");
        QFile fresh(historyFile() + u".4711-0.tmp"_s); // of the writer
        QVERIFY(fresh.open(QIODevice::WriteOnly) && fresh.write("keywords\tapple\n") > 0);
        fresh.close();
        const int folder = ::open(QFile::encodeName(window_->folder()).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        QVERIFY(folder >= 0);
        QCOMPARE(::flock(folder, LOCK_EX), 0);
        menuEntry("clearhistorymnu")->trigger();
        ::close(folder);
        QCOMPARE(QDir(window_->folder()).entryList({u"Quarrynet.history*"_s}, QDir::Files), QStringList());
        QCOMPARE(window_->boxes.boxes().size(), 1);
        QVERIFY(window_->boxes.texts()[0].contains(historyFile()));
        QVERIFY(window_->boxes.texts()[0].contains(u"Another program is using the file."_s));
        menuEntry("clearhistorymnu")->trigger();
        QCOMPARE(window_->boxes.boxes().size(), 1);
    }

    // The entry used to stay in the list without a word.
    void aRemovalThatFailsIsReported_data()
    {
        QTest::addColumn<QString>("fault");
        QTest::addColumn<QString>("reason");
        QTest::newRow("in use") << u"in use"_s << u"Another program is using the file."_s;
        QTest::newRow("read-only") << u"read-only"_s << u"Permission denied"_s;
        QTest::newRow("another user's") << u"another user's"_s << u"The file belongs to another user."_s;
        QTest::newRow("a pipe") << u"a pipe"_s << u"The file cannot be read."_s;
    }

    void aRemovalThatFailsIsReported()
    {
        QFETCH(QString, fault);
        QFETCH(QString, reason);
        const bool isRoot = ::geteuid() == 0;
        if (fault == u"read-only"_s && isRoot)
            QSKIP("root may write every file");
        if (fault == u"another user's"_s && !isRoot)
            QSKIP("only root can give a file away");
        startWithHistory("keywords\tapple\nkeywords\tpear\n");
        press(Qt::Key_Down);
        press(Qt::Key_Down);
        QCOMPARE(offered().size(), 2);

        const QByteArray path = QFile::encodeName(historyFile());
        int folder = -1;
        if (fault == u"in use"_s) {
            folder = ::open(QFile::encodeName(window_->folder()).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
            QCOMPARE(::flock(folder, LOCK_EX), 0);
        } else if (fault == u"read-only"_s) {
            QCOMPARE(::chmod(path.constData(), 0400), 0);
        } else if (fault == u"another user's"_s) {
            QCOMPARE(::chown(path.constData(), 65534, 65534), 0);
        } else {
            QCOMPARE(::unlink(path.constData()), 0);
            QCOMPARE(::mkfifo(path.constData(), 0600), 0);
        }
        bool listIsOpen = true;
        window_->boxes.beforeAnswer = [&](QMessageBox&) { listIsOpen = QApplication::activePopupWidget() != nullptr; };
        press(Qt::Key_Delete);
        if (folder >= 0)
            ::close(folder);
        QCOMPARE(window_->boxes.boxes().size(), 1);
        QVERIFY(window_->boxes.texts()[0].contains(historyFile()));
        QVERIFY2(window_->boxes.texts()[0].contains(reason), qPrintable(window_->boxes.texts()[0]));
        QVERIFY(!listIsOpen);
        if (fault != u"a pipe"_s)
            QCOMPARE(history(), QByteArray("keywords\tapple\nkeywords\tpear\n"));
    }
#endif

private:
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
};

QTEST_MAIN(HistoryFileTest)
#include "history_file_test.moc"
