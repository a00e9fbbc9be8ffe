#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include "LoopbackService.h"

using namespace Qt::Literals::StringLiterals;

/// Tests the program itself, started as the user starts it.
class ProgramTest final : public QObject
{
    Q_OBJECT

private slots:
    void textsNeedNoDisplay_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QByteArray>("expected");
        QTest::newRow("help") << QStringList{u"--help"_s} << QByteArrayLiteral("--tour");
        QTest::newRow("short help") << QStringList{u"-h"_s} << QByteArrayLiteral("--tour");
        QTest::newRow("help names the tabs") << QStringList{u"--help"_s} << QByteArrayLiteral("web, page, image,");
        QTest::newRow("help of everything") << QStringList{u"--help-all"_s} << QByteArrayLiteral("--tour");
        QTest::newRow("version") << QStringList{u"--version"_s} << QByteArrayLiteral("quarrynet " QUARRYNET_VERSION);
        QTest::newRow("short version") << QStringList{u"-v"_s} << QByteArrayLiteral("quarrynet " QUARRYNET_VERSION);
        QTest::newRow("version among others")
            << QStringList{u"--tab"_s, u"7"_s, u"--version"_s} << QByteArrayLiteral("quarrynet " QUARRYNET_VERSION);
    }

    void textsNeedNoDisplay()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, expected);
        QProcess program;
        run(program, arguments);
        QCOMPARE(program.exitCode(), 0);
        const QByteArray output = program.readAllStandardOutput();
        QVERIFY2(output.contains(expected), output);
        QCOMPARE(program.readAllStandardError(), QByteArray());
    }

    void faultsNeedNoDisplay_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QByteArray>("expected");
        QTest::newRow("tab") << QStringList{u"--tab"_s, u"six"_s}
                             << QByteArrayLiteral("quarrynet: There is no tab \"six\"");
        QTest::newRow("no tab") << QStringList{u"--tab"_s}
                                << QByteArrayLiteral("quarrynet: Missing value after '--tab'.");
        QTest::newRow("option") << QStringList{u"--bogus"_s} << QByteArrayLiteral("quarrynet: Unknown option 'bogus'.");
        QTest::newRow("option of the toolkit, too")
            << QStringList{u"-platform"_s, u"nowhere"_s, u"--bogus"_s} << QByteArrayLiteral("Unknown option 'bogus'.");
    }

    void faultsNeedNoDisplay()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, expected);
        QProcess program;
        run(program, arguments);
        QCOMPARE(program.exitCode(), 2);
        QCOMPARE(program.readAllStandardOutput(), QByteArray());
        const QByteArray output = program.readAllStandardError();
        QVERIFY2(output.contains(expected), output);
        QVERIFY2(output.contains("Try \"quarrynet --help\"."), output);
    }

    void wordsAreSearchedFor_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QByteArray>("requestLine");
        QTest::newRow("web") << QStringList{u"--tab"_s, u"web"_s, u"text"_s, u"editor"_s}
                             << QByteArrayLiteral("q=text+editor HTTP/1.1");
        QTest::newRow("without a tab") << QStringList{u"pear"_s} << QByteArrayLiteral("q=pear HTTP/1.1");
        QTest::newRow("options as words") << QStringList{u"--tab"_s, u"5"_s, u"--"_s, u"-platform"_s, u"nowhere"_s}
                                          << QByteArrayLiteral("q=-platform+nowhere HTTP/1.1");
#ifndef Q_OS_WIN // whose code page decides about the bytes
        QTest::newRow("not ASCII") << QStringList{u"grüße"_s}
                                   << QByteArray("q=gr\xC3\xBC\xC3\x9F"
                                                 "e HTTP/1.1");
#endif
    }

    void wordsAreSearchedFor()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, requestLine);
        const QTemporaryDir folder;
        QVERIFY(firstRequest(folder, arguments, requestLine));
        // It is written before the request goes out.
        QVERIFY(QFile::exists(folder.filePath(u"Quarrynet.history"_s)));
    }

    // Once the searches of run.sh's pictures were offered as the person's own.
    void theSearchesOfATourAreNotRemembered()
    {
        const QTemporaryDir folder;
        const QTemporaryDir pictures;
        QVERIFY(firstRequest(folder, {u"--tour"_s, pictures.path()}, "q=text+editor HTTP/1.1"));
        QVERIFY(!QFile::exists(folder.filePath(u"Quarrynet.history"_s)));
        QVERIFY(!QFile::exists(folder.filePath(u"Quarrynet.state"_s)));
    }

private:
    // Runs a copy of the program in `folder` until its first request, and returns whether that contains `requestLine`.
    // The settings lead every search to the test's service, as a proxy.
    static bool firstRequest(const QTemporaryDir& folder, const QStringList& arguments, const QByteArray& requestLine)
    {
        LoopbackService service;
        service.stall();
        const QString program = folder.filePath(QFileInfo(QString::fromUtf8(QUARRYNET_PROGRAM)).fileName());
        QFile settings(folder.filePath(u"Quarrynet.ini"_s));
        if (!QFile::copy(QString::fromUtf8(QUARRYNET_PROGRAM), program) || !settings.open(QIODevice::WriteOnly))
            return false;
        settings.write("[ProxySwitch]\nValue=on\n[ProxyHost]\nValue=127.0.0.1\n[ProxyPort]\nValue=" +
                       QByteArray::number(service.port()) + "\n");
        settings.close();
        QProcess process;
        process.start(program, QStringList{u"-platform"_s, u"offscreen"_s} + arguments);
        if (!process.waitForStarted())
            return false;
        const auto ending = qScopeGuard([&process] {
            process.kill();
            process.waitForFinished();
        });
        if (!QTest::qWaitFor([&service] { return service.requests().size() == 1; }, 30'000))
            return false;
        if (!service.lastRequestLine().contains(requestLine))
            qWarning("%s", service.lastRequestLine().constData());
        return service.lastRequestLine().contains(requestLine);
    }

    // Runs the program to its end without a display.
    static void run(QProcess& program, const QStringList& arguments)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
            environment.remove(QLatin1String(name));
        program.setProcessEnvironment(environment);
        program.start(QString::fromUtf8(QUARRYNET_PROGRAM), arguments);
        QVERIFY(program.waitForFinished());
        QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    }
};

QTEST_GUILESS_MAIN(ProgramTest)
#include "program_test.moc"
