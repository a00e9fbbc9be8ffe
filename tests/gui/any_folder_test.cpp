#include <algorithm>
#include <optional>

#include <QDir>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

#ifdef Q_OS_WIN
#include <windows.h>
#endif

#include "app/Main.h"
#include "common/CDS_CIni.h"
#include "common/local_pages.h"
#include "platform/HiddenText.h"
#include "platform/HtmlView.h"
#include "platform/ProgramFolder.h"
#include "platform/Shell.h"
#include "platform/text_border.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

namespace {

class NoShell final : public Shell
{
public:
    void open(std::string_view) override {}
};

// Returns the path of a folder on a drive by the name that the network has for it, or an empty text if there is none.
QString onNetworkShare([[maybe_unused]] const QString& folder)
{
#ifdef Q_OS_WIN
    // The system's own share of the drive; tools/windows.sh sets one up under Wine.
    const QString share = u"//localhost/%1$%2"_s.arg(folder.left(1), folder.mid(2));
    if (QDir(share).exists())
        return share;
#endif
    return {};
}

bool isWine()
{
#ifdef Q_OS_WIN
    return ::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
#else
    return false;
#endif
}

bool isWritable(const QString& folder)
{
    return chooseProgramFolder(folder, folder).writable;
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

/// The program in folders with unusual names and places.
class AnyFolderTest final : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        temporary_.emplace();
        QVERIFY(temporary_->isValid());
    }

    void cleanup() { temporary_.reset(); }

    void windowKeepsItsFilesThere_data() { addFolders(); }

    void windowKeepsItsFilesThere()
    {
        const QString folder = makeFolder();
        if (folder.isEmpty())
            QSKIP("This system has no such folder");
        keepsItsFiles(folder);
    }

#ifdef Q_OS_WIN
    void windowKeepsItsFilesInTheRootOfADrive()
    {
        const QString target = QDir::toNativeSeparators(temporary_->path());
        const auto* path = reinterpret_cast<const wchar_t*>(target.utf16());
        QVERIFY(::DefineDosDeviceW(0, L"Q:", path) != 0);
        const auto removing = qScopeGuard([path] { ::DefineDosDeviceW(DDD_REMOVE_DEFINITION, L"Q:", path); });
        if (isWritable(u"Q:/"_s)) {
            keepsItsFiles(u"Q:/"_s);
            return;
        }
        // Wine does not show such a drive to the functions for files, but lets everyone write to the root of another.
        const QString root = QDir::rootPath();
        if (!isWritable(root) || QFile::exists(root + u"Quarrynet.ini"_s))
            QSKIP("No drive has a root to write to");
        keepsItsFiles(root);
        for (const QString& name : {u"Quarrynet.ini"_s, u"blank.html"_s, u"blank.htm"_s})
            QVERIFY(QFile::remove(root + name));
    }
#endif

    void programStartsThere_data()
    {
        addFolders();
    }

    void programStartsThere()
    {
        QFETCH(bool, share);
        const QString folder = makeFolder();
        if (folder.isEmpty())
            QSKIP("This system has no such folder");
        if (share && isWine())
            QSKIP("Wine tells a program on a share a wrong path of its own");
        const QString name = QFileInfo(QString::fromUtf8(QUARRYNET_PROGRAM)).fileName();
        const QString program = QDir(folder).filePath(name);
        QVERIFY(QFile::copy(QString::fromUtf8(QUARRYNET_PROGRAM), program));
        startsAndWritesTo(folder, program, QProcessEnvironment::systemEnvironment());
        QCOMPARE(QDir(folder).entryList(QDir::Files, QDir::Name), (QStringList{u"blank.htm"_s, u"blank.html"_s, name}));
    }

    void folderThatCannotBeWrittenIsReplaced()
    {
        // Below a file, not even an administrator can write.
        QFile file(temporary_->filePath(u"file"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        const QString beside = temporary_->filePath(u"file/program"_s);
        const QString data = temporary_->filePath(u"日本 data/quarrynet"_s);
        ProgramFolder folder = chooseProgramFolder(beside, data);
        QCOMPARE(folder.path, QDir::toNativeSeparators(data));
        QVERIFY(folder.writable);
        QVERIFY(QDir(data).isEmpty());
        keepsItsFiles(data);
        folder = chooseProgramFolder(beside, temporary_->filePath(u"file/data"_s));
        QCOMPARE(folder.path, QDir::toNativeSeparators(temporary_->filePath(u"file/data"_s)));
        QVERIFY(!folder.writable);
        QVERIFY(chooseProgramFolder(data, beside).path == QDir::toNativeSeparators(data));
    }

    // Root, who may write everywhere, used to get the files of an installed program in /usr/bin.
    void installedProgramHasItsFilesInTheDataFolder()
    {
#ifdef Q_OS_WIN
        QSKIP("On Windows the manual is beside every program.");
#endif
        const QDir place(temporary_->path());
        QVERIFY(place.mkpath(u"bin"_s));
        QVERIFY(place.mkpath(u"share/quarrynet/manual"_s));
        const QString beside = place.filePath(u"bin"_s);
        const QString data = place.filePath(u"data"_s);
        QCOMPARE(chooseProgramFolder(beside, data).path, data);
        // An older copy kept its settings beside itself.
        QFile settings(place.filePath(u"bin/Quarrynet.ini"_s));
        QVERIFY(settings.open(QIODevice::WriteOnly));
        QCOMPARE(chooseProgramFolder(beside, data).path, beside);
        QVERIFY(settings.remove());
        QVERIFY(place.mkpath(u"bin/manual"_s));
        QCOMPARE(chooseProgramFolder(beside, data).path, beside);
    }

    void installedProgramStartsAndLeavesItsFolderAlone()
    {
#ifdef Q_OS_WIN
        QSKIP("On Windows the manual is beside every program.");
#endif
        const QDir place(temporary_->path());
        QVERIFY(place.mkpath(u"bin"_s));
        QVERIFY(place.mkpath(u"share/quarrynet/manual"_s));
        const QString program = place.filePath(u"bin/quarrynet"_s);
        QVERIFY(QFile::copy(QString::fromUtf8(QUARRYNET_PROGRAM), program));
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"XDG_DATA_HOME"_s, place.filePath(u"data"_s));
        startsAndWritesTo(place.filePath(u"data/quarrynet"_s), program, environment);
        QCOMPARE(QDir(place.filePath(u"bin"_s)).entryList(QDir::Files), QStringList(u"quarrynet"_s));
    }

    // An unknown folder used to be the working directory, and files went to the root of its drive.
    void unknownFolderIsNoFolder()
    {
        for (const QString& folder : {QString(), u"relative"_s, u"./relative"_s}) {
            QVERIFY(!isWritable(folder));
            QVERIFY(!QFile::exists(u"relative"_s));
        }
        const QString data = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
        QVERIFY2(QDir::isAbsolutePath(data), qPrintable(data));
    }

#ifdef Q_OS_WIN
    void lockedSettingsAreNoSettings()
    {
        keepsItsFiles(temporary_->path());
        const QString file = QDir::toNativeSeparators(temporary_->filePath(u"Quarrynet.ini"_s));
        HANDLE other = ::CreateFileW(reinterpret_cast<const wchar_t*>(file.utf16()), GENERIC_READ, 0, nullptr,
                                     OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
        QVERIFY(other != INVALID_HANDLE_VALUE);
        {
            NoShell shell;
            Main window({{"127.0.0.1", "127.0.0.1", "127.0.0.1", "127.0.0.1", 80},
                         shell,
                         toPathBytes(QDir::toNativeSeparators(temporary_->path())),
                         "",
                         "",
                         ""});
            QVERIFY(window.load());
            QVERIFY(window.isDirect());
        }
        ::CloseHandle(other);
        keepsItsFiles(temporary_->path()); // nothing was lost
    }

    void folderMarkedAsReadOnlyIsWritten()
    {
        // The mark does not forbid anything: Windows marks folders with an appearance of their own like this.
        const QString native = QDir::toNativeSeparators(temporary_->path());
        const auto* path = reinterpret_cast<const wchar_t*>(native.utf16());
        QVERIFY(::SetFileAttributesW(path, FILE_ATTRIBUTE_READONLY) != 0);
        const auto unmarking = qScopeGuard([path] { ::SetFileAttributesW(path, FILE_ATTRIBUTE_NORMAL); });
        QVERIFY(isWritable(temporary_->path()));
        keepsItsFiles(temporary_->path());
    }
#endif

private:
    static void addFolders()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("share");
        QTest::newRow("blanks") << u"a folder  with blanks"_s << false;
        QTest::newRow("letters of some code pages") << u"grüß"_s << false;
        QTest::newRow("letters of all kinds") << u"Łódź 日本 עברית 😀"_s << false;
        QTest::newRow("marks of addresses") << u"50%20#a;b&c=d@e"_s << false;
        QTest::newRow("marks of settings") << u"[A]=k 'x'"_s << false;
        QTest::newRow("long") << QString() << false;
#ifdef Q_OS_WIN
        QTest::newRow("share") << u"on a share"_s << true;
        QTest::newRow("share with letters") << u"Łódź 日本"_s << true;
#endif
    }

    // Makes the folder of the test's row. A "long" one has 240 characters, so that its files have fewer than 260.
    QString makeFolder()
    {
        QFETCH(QString, name);
        QFETCH(bool, share);
        QString folder = temporary_->path();
        if (name.isEmpty()) {
            while (folder.size() < 239)
                folder += u'/' + QString(std::min<qsizetype>(40, 239 - folder.size()), u'x');
        } else {
            folder += u'/' + name;
        }
        if (!QDir().mkpath(folder))
            return {};
        return share ? onNetworkShare(folder) : folder;
    }

    // Starts `program` and expects the local pages in `folder`.
    static void startsAndWritesTo(const QString& folder, const QString& program, const QProcessEnvironment& environment)
    {
        QProcess process;
        process.setProcessEnvironment(environment);
        process.start(QDir::toNativeSeparators(program), {u"-platform"_s, u"offscreen"_s});
        QVERIFY2(process.waitForStarted(), qPrintable(process.errorString()));
        const auto ending = qScopeGuard([&process] {
            process.kill();
            process.waitForFinished();
        });
        QTRY_COMPARE_WITH_TIMEOUT(contentOf(QDir(folder).filePath(u"blank.htm"_s)),
                                  QByteArray::fromStdString(blankPage()), 30'000);
    }

    // Runs the window in `folder` and expects its settings and pages there.
    void keepsItsFiles(const QString& folder)
    {
        const std::string path = toPathBytes(QDir::toNativeSeparators(folder));
        CDS_CIni settings;
        settings.setFileName(pathInFolder(path, "Quarrynet.ini"));
        QVERIFY2(settings.WriteValue("ProxySwitch", "Value", "on"), settings.LastErrorDescription().c_str());
        QVERIFY(settings.WriteValue("ProxyHost", "Value", "proxy.example"));
        QVERIFY(settings.WriteValue("ProxyPort", "Value", "3128"));
        NoShell shell;
        const ServiceHosts hosts = {"127.0.0.1", "127.0.0.1", "127.0.0.1", "127.0.0.1", 80};
        Main window({hosts, shell, path, "", "", ""});
        QVERIFY(window.load());
        QCOMPARE(window.proxy().host, std::string("proxy.example"));
        QCOMPARE(window.proxy().port, 3128);
        const QDir there(folder);
        QCOMPARE(contentOf(there.filePath(u"blank.htm"_s)), QByteArray::fromStdString(blankPage()));
        QCOMPARE(contentOf(there.filePath(u"blank.html"_s)), QByteArray::fromStdString(blankFramePage()));
        const QUrl shown = window.findChild<HtmlView*>(u"IMGViewer"_s)->url();
        QCOMPARE(QDir::cleanPath(shown.toLocalFile()), QDir::cleanPath(there.filePath(u"blank.html"_s)));
        QVERIFY(QFile::exists(shown.toLocalFile()));
        QVERIFY(QFile::exists(there.filePath(u"Quarrynet.ini"_s)));
    }

    std::optional<QTemporaryDir> temporary_;
};

QTEST_MAIN(AnyFolderTest)
#include "any_folder_test.moc"
