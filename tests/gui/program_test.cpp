#include <QProcess>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

/// Tests the program itself, started as the user starts it.
class ProgramTest final : public QObject
{
    Q_OBJECT

private slots:
    void textsNeedNoDisplay_data()
    {
        QTest::addColumn<QString>("option");
        QTest::addColumn<QByteArray>("expected");
        QTest::newRow("help") << u"--help"_s << QByteArrayLiteral("--tour");
        QTest::newRow("short help") << u"-h"_s << QByteArrayLiteral("--tour");
        QTest::newRow("version") << u"--version"_s << QByteArrayLiteral("quarrynet " QUARRYNET_VERSION);
        QTest::newRow("short version") << u"-v"_s << QByteArrayLiteral("quarrynet " QUARRYNET_VERSION);
    }

    void textsNeedNoDisplay()
    {
        QFETCH(QString, option);
        QFETCH(QByteArray, expected);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
            environment.remove(QLatin1String(name));
        QProcess program;
        program.setProcessEnvironment(environment);
        program.start(QString::fromUtf8(QUARRYNET_PROGRAM), {option});
        QVERIFY(program.waitForFinished());
        QCOMPARE(program.exitStatus(), QProcess::NormalExit);
        QCOMPARE(program.exitCode(), 0);
        const QByteArray output = program.readAllStandardOutput();
        QVERIFY2(output.contains(expected), output);
    }
};

QTEST_GUILESS_MAIN(ProgramTest)
#include "program_test.moc"
