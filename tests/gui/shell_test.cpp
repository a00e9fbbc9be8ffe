#include <map>
#include <optional>
#include <string>

#include <QtTest>

#ifdef Q_OS_WIN
#include <windows.h>
#endif

#include "platform/Shell.h"
#include "platform/text_border.h"
#include "start_record.h"

using namespace Qt::Literals::StringLiterals;
using quarrynet::DesktopShell;
using quarrynet::toBytes;
using quarrynet::toPathBytes;

namespace {

#ifdef Q_OS_WIN

bool isWine()
{
    return ::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

/// Makes this program the one that opens addresses and pages. Restores the registry in the end.
class Associations
{
public:
    Associations()
    {
        const QString program = QDir::toNativeSeparators(QCoreApplication::applicationFilePath());
        for (const char* scheme : {"http", "https", "ftp", "mailto"}) {
            set(QLatin1String(scheme) + u"/URL Protocol"_s, QString());
            set(QLatin1String(scheme) + u"/shell/open/command/."_s, u"\"%1\" \"%2\""_s.arg(program, u"%1"_s));
        }
        set(u".html/."_s, u"QuarrynetTest.page"_s);
        set(u"QuarrynetTest.page/shell/open/command/."_s, u"\"%1\" \"%2\""_s.arg(program, u"%1"_s));
    }

    ~Associations()
    {
        for (const auto& [key, value] : before_) {
            if (value.isValid())
                classes_.setValue(key, value);
            else
                classes_.remove(key);
        }
        classes_.remove(u"QuarrynetTest.page"_s);
    }

    void set(const QString& key, const QString& value)
    {
        before_.emplace(key, classes_.value(key)); // keeps the first one
        classes_.setValue(key, value);
        classes_.sync();
    }

private:
    QSettings classes_{u"HKEY_LOCAL_MACHINE\\Software\\Classes"_s, QSettings::NativeFormat};
    std::map<QString, QVariant> before_;
};

#endif

} // namespace

/// Opens addresses with the test's own opener, which records its arguments: a script that is first in PATH, or on
/// Windows this program.
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
    void manualPageIsOpened_data();
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
#ifdef Q_OS_WIN
    std::optional<Associations> associations_;
#endif
};

void ShellTest::initTestCase()
{
    QVERIFY(folder_.isValid());
#if defined(Q_OS_MACOS)
    QSKIP("On this system the opener is not a program in PATH");
#elif defined(Q_OS_WIN)
    // Elsewhere the person's own choice of a browser, which no program may change, comes before the registry's.
    if (!isWine())
        QSKIP("This system would open a real browser");
    start_record::recordNextStarts(folder_.filePath(u"arguments"_s));
    associations_.emplace();
#else
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
#endif
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
#ifdef Q_OS_WIN
    constexpr qsizetype kLong = 800; // Wine ends the program at about 1,000 characters, Windows takes 2,083
#else
    constexpr qsizetype kLong = 60000;
#endif
    QTest::newRow("long") << "http://host/" + QByteArray(kLong, 'x') << "http://host/" + QByteArray(kLong, 'x');
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
    QTest::newRow("share by slashes") << QByteArray("//host/share/x.exe");
    QTest::newRow("program") << QByteArray("notepad.exe");
    QTest::newRow("program on a drive") << QByteArray("C:\\Windows\\System32\\notepad.exe");
    QTest::newRow("folder of the shell") << QByteArray("shell:startup");
    QTest::newRow("settings") << QByteArray("ms-settings:");
    QTest::newRow("file") << QByteArray("file:///etc/passwd");
    QTest::newRow("script") << QByteArray("javascript:alert(1)");
    QTest::newRow("NUL") << QByteArray("http://host/\0x", 14);
    QTest::newRow("line end") << QByteArray("http://host/\nx");
    QTest::newRow("too long") << "http://host/" + QByteArray(100 * 1024, 'x');
#ifdef Q_OS_WIN
    QTest::newRow("too long for the system") << "http://host/" + QByteArray(2084 - 12, 'x');
#endif
}

void ShellTest::refusedAddressStartsNothing()
{
    QFETCH(QByteArray, address);
    DesktopShell shell(toPathBytes(folder_.filePath(u"manual.html"_s)));
    shell.open({address.constData(), static_cast<std::size_t>(address.size())});
    // An opener started for the rejected address would have written its line before this one.
    shell.open("http://host/next");
    expectArguments("1|http://host/next");
}

void ShellTest::manualPageIsOpened_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("marks") << u"the manual's $page.html"_s;
    QTest::newRow("letters outside the code page") << u"Łódź 日本.html"_s;
}

void ShellTest::manualPageIsOpened()
{
    QFETCH(QString, name);
    QFile page(folder_.filePath(name));
    QVERIFY(page.open(QIODevice::WriteOnly));
    const std::string manual = toPathBytes(page.fileName());
    DesktopShell shell(manual);
    shell.open(manual);
    expectArguments("1|" + QDir::toNativeSeparators(page.fileName()).toUtf8());
}

void ShellTest::relativeManualPageIsNot()
{
    for (const char* page : {"-manual.html", "manual.html", "C:manual.html"}) {
        DesktopShell relative(page);
        relative.open(page);
    }
    DesktopShell shell{std::string()};
    shell.open("http://host/next");
    expectArguments("1|http://host/next");
}

void ShellTest::missingOpenerIsSilent()
{
#ifdef Q_OS_WIN
    associations_->set(u"http/shell/open/command/."_s, folder_.filePath(u"nowhere.exe"_s));
#endif
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(folder_.filePath(u"nowhere"_s)));
    DesktopShell shell{std::string()};
    shell.open("http://host/");
    qputenv("PATH", path);
#ifdef Q_OS_WIN
    associations_.reset(); // restores the registry
    associations_.emplace();
#endif
    shell.open("http://host/next");
    expectArguments("1|http://host/next");
}

void ShellTest::programIsStartedWithoutArguments()
{
#ifdef Q_OS_WIN
    QVERIFY(QDir(folder_.path()).mkpath(u"with blanks"_s));
    const QString program = folder_.filePath(u"with blanks/program.exe"_s);
    QVERIFY(QFile::copy(QCoreApplication::applicationFilePath(), program));
#else
    const QString program = folder_.filePath(u"xdg-open"_s);
#endif
    QVERIFY(quarrynet::startProgram(toBytes(QDir::toNativeSeparators(program))));
    expectArguments("0");
}

void ShellTest::missingProgramIsReported()
{
    QVERIFY(!quarrynet::startProgram(std::string()));
    QVERIFY(!quarrynet::startProgram(toBytes(folder_.filePath(u"nowhere"_s))));
    QVERIFY(!quarrynet::startProgram(toBytes(folder_.filePath(u"xdg-open"_s)) + std::string("\0x", 2)));
}

int main(int argc, char** argv)
{
    if (start_record::recordStart(argc, argv))
        return 0;
    const QCoreApplication application(argc, argv);
    ShellTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "shell_test.moc"
