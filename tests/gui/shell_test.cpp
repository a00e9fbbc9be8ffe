#include <string>

#include <QtTest>

#include "platform/Shell.h"

using namespace Qt::Literals::StringLiterals;
using quarrynet::DesktopShell;

/// Opens addresses with the test's own opener, which is first in PATH and records its arguments.
class ShellTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanupTestCase();

    void addressIsTheOneArgument_data();
    void addressIsTheOneArgument();
    void refusedAddressStartsNothing_data();
    void refusedAddressStartsNothing();
    void manualPageIsOpened();
    void relativeManualPageIsNot();
    void missingOpenerIsSilent();
    void programIsStartedWithoutArguments();
    void missingProgramIsReported();

private:
    QByteArray arguments() const;
    void expectArguments(const QByteArray& expected);

    QTemporaryDir folder_;
    QByteArray path_;
};

void ShellTest::initTestCase()
{
#if defined(Q_OS_WIN) || defined(Q_OS_MACOS)
    QSKIP("On this system the opener is not a program in PATH");
#endif
    QVERIFY(folder_.isValid());
    QFile opener(folder_.filePath(u"xdg-open"_s));
    QVERIFY(opener.open(QIODevice::WriteOnly));
    opener.write("#!/bin/sh\n"
                 "cd \"${0%/*}\"\n"
                 "line=$#\n"
                 "for argument in \"$@\"; do line=\"$line|$argument\"; done\n"
                 "printf '%s\\n' \"$line\" >> arguments\n");
    opener.close();
    QVERIFY(opener.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    path_ = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(folder_.path()) + ':' + path_);
}

void ShellTest::init()
{
    QFile::remove(folder_.filePath(u"arguments"_s));
}

void ShellTest::cleanupTestCase()
{
    if (!path_.isEmpty())
        qputenv("PATH", path_);
}

QByteArray ShellTest::arguments() const
{
    QFile file(folder_.filePath(u"arguments"_s));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void ShellTest::expectArguments(const QByteArray& expected)
{
    QTRY_COMPARE(arguments(), expected + '\n');
}

void ShellTest::addressIsTheOneArgument_data()
{
    QTest::addColumn<QByteArray>("address");
    QTest::addColumn<QByteArray>("argument");
    QTest::newRow("plain") << QByteArray("http://host/page?a=1&b=2") << QByteArray("http://host/page?a=1&b=2");
    QTest::newRow("mail") << QByteArray("mailto:authors@quarrynet.example")
                          << QByteArray("mailto:authors@quarrynet.example");
    QTest::newRow("blanks") << QByteArray("ftp://host/a b/c d") << QByteArray("ftp://host/a%20b/c%20d");
    QTest::newRow("command") << QByteArray("http://host/$(touch pwned);`touch pwned`")
                             << QByteArray("http://host/%24%28touch%20pwned%29;%60touch%20pwned%60");
    QTest::newRow("quotes") << QByteArray("http://host/\"; touch pwned; \"'x'")
                            << QByteArray("http://host/%22;%20touch%20pwned;%20%22%27x%27");
    QTest::newRow("format") << QByteArray("http://host/%s%n") << QByteArray("http://host/%25s%25n");
    QTest::newRow("bytes") << QByteArray("http://host/\xe9\xff") << QByteArray("http://host/%E9%FF");
    QTest::newRow("long") << "http://host/" + QByteArray(60000, 'x') << "http://host/" + QByteArray(60000, 'x');
}

void ShellTest::addressIsTheOneArgument()
{
    QFETCH(QByteArray, address);
    QFETCH(QByteArray, argument);
    DesktopShell shell{std::string()};
    shell.open({address.constData(), static_cast<std::size_t>(address.size())});
    expectArguments("1|" + argument);
    QVERIFY(!QFile::exists(folder_.filePath(u"pwned"_s)));
}

void ShellTest::refusedAddressStartsNothing_data()
{
    QTest::addColumn<QByteArray>("address");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("option") << QByteArray("--help");
    QTest::newRow("path") << QByteArray("/etc/passwd");
    QTest::newRow("share") << QByteArray("\\\\host\\share");
    QTest::newRow("file") << QByteArray("file:///etc/passwd");
    QTest::newRow("script") << QByteArray("javascript:alert(1)");
    QTest::newRow("NUL") << QByteArray("http://host/\0x", 14);
    QTest::newRow("line end") << QByteArray("http://host/\nx");
    QTest::newRow("too long") << "http://host/" + QByteArray(100 * 1024, 'x');
}

void ShellTest::refusedAddressStartsNothing()
{
    QFETCH(QByteArray, address);
    DesktopShell shell(folder_.filePath(u"manual.html"_s).toStdString());
    shell.open({address.constData(), static_cast<std::size_t>(address.size())});
    // An opener started for the rejected address would have written its line before this one.
    shell.open("http://host/next");
    expectArguments("1|http://host/next");
}

void ShellTest::manualPageIsOpened()
{
    const std::string manual = folder_.filePath(u"the manual's $page.html"_s).toStdString();
    DesktopShell shell(manual);
    shell.open(manual);
    expectArguments("1|" + QByteArray::fromStdString(manual));
}

void ShellTest::relativeManualPageIsNot()
{
    DesktopShell shell("-manual.html");
    shell.open("-manual.html");
    shell.open("http://host/next");
    expectArguments("1|http://host/next");
}

void ShellTest::missingOpenerIsSilent()
{
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(folder_.filePath(u"nowhere"_s)));
    DesktopShell shell{std::string()};
    shell.open("http://host/");
    qputenv("PATH", path);
    QVERIFY(arguments().isEmpty());
}

void ShellTest::programIsStartedWithoutArguments()
{
    QVERIFY(quarrynet::startProgram(folder_.filePath(u"xdg-open"_s).toStdString()));
    expectArguments("0");
}

void ShellTest::missingProgramIsReported()
{
    QVERIFY(!quarrynet::startProgram(std::string()));
    QVERIFY(!quarrynet::startProgram(folder_.filePath(u"nowhere"_s).toStdString()));
    QVERIFY(!quarrynet::startProgram(folder_.filePath(u"xdg-open"_s).toStdString() + std::string("\0x", 2)));
}

QTEST_GUILESS_MAIN(ShellTest)
#include "shell_test.moc"
