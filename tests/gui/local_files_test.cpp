#include <array>
#include <thread>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include "platform/local_files.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

class LocalFilesTest final : public QObject
{
    Q_OBJECT

private slots:
    // Of two windows that started at the same moment, one used to end: the other had just deleted or created the page.
    void twoWritersOfOnePageDoNotFail()
    {
        constexpr int kRounds = 500;
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"blank.html"_s);
        const std::array<std::string, 2> pages = {std::string(5000, 'a'), std::string(3000, 'b')};
        std::array<QStringList, 2> reasons;
        const auto write = [&](std::size_t writer) {
            for (int round = 0; round < kRounds; ++round) {
                if (const QString reason = rewriteFile(path.toStdString(), pages[writer]); !reason.isEmpty())
                    reasons[writer].append(reason);
            }
        };
        std::thread other([&] { write(1); });
        write(0);
        other.join();
        QCOMPARE(reasons[0], QStringList());
        QCOMPARE(reasons[1], QStringList());
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const std::string content = file.readAll().toStdString();
        QVERIFY(content == pages[0] || content == pages[1]);
        QCOMPARE(QDir(folder.path()).entryList(QDir::Files), QStringList(u"blank.html"_s));
    }

    void aFolderInItsPlaceIsAReason()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"blank.html"_s);
        QVERIFY(QDir().mkpath(path));
        QVERIFY(!rewriteFile(path.toStdString(), "page").isEmpty());
        QVERIFY(QDir(path).exists());
    }
};

QTEST_GUILESS_MAIN(LocalFilesTest)
#include "local_files_test.moc"
