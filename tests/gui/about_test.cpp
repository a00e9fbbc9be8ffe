#include <map>
#include <string>
#include <utility>
#include <vector>

#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QtTest>

#include "dialogs/frmAbout.h"
#include "platform/Shell.h"
#include "platform/text_border.h"
#include "start_record.h"

#ifdef Q_OS_WIN
#include <windows.h>
#endif

using namespace Qt::Literals::StringLiterals;
using quarrynet::frmAbout;
using quarrynet::Registry;
using quarrynet::RegistryValue;

namespace {

constexpr const char* kInfoKey = "SOFTWARE\\Microsoft\\Shared Tools\\MSINFO";
constexpr const char* kFolderKey = "SOFTWARE\\Microsoft\\Shared Tools Location";

class MadeUpRegistry : public Registry
{
public:
    std::optional<RegistryValue> query(std::uint32_t root, const std::string& key,
                                       const std::string& name) const override
    {
        const auto found = values.find({key, name});
        if (root != kLocalMachine || found == values.end())
            return std::nullopt;
        return found->second;
    }

    void setText(const char* key, const char* name, const std::string& text)
    {
        values[{key, name}] = RegistryValue{1, text + '\0'};
    }

    std::map<std::pair<std::string, std::string>, RegistryValue> values;
};

} // namespace

class AboutTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void saysWhatTheProgramIs();
    void okCloses();
    void escapeCloses();
    void firstKeyIsStartedAsItStands();
    void secondKeyIsStartedWhenItsFileExists();
    void secondKeyWithoutFileIsUnavailable();
    void emptyRegistryIsUnavailable();
    void systemsOwnRegistryGivesAnAnswer();
#ifdef Q_OS_WIN
    void systemsOwnValuesAreReadAsWritten_data();
    void systemsOwnValuesAreReadAsWritten();
    void programOfTheSystemsRegistryIsStarted_data();
    void programOfTheSystemsRegistryIsStarted();
#endif
    void programThatDoesNotStartIsUnavailable();
    void otherTypeStartsNothingFromTheFirstKey();
    void valueThatCannotBeReadEmptiesTheText();
    void valueOfOtherTypeLeavesTheText();
    void numberIsReadByteByByte();

private:
    // Clicks the button and closes the box that may appear. Returns the box's text, or a null text if there was no box.
    QString clickSysInfo();

    MadeUpRegistry registry_;
    std::vector<std::string> started_;
    bool starts_ = true;
    QMessageBox::Icon icon_ = QMessageBox::Critical;
};

void AboutTest::init()
{
    registry_.values.clear();
    started_.clear();
    starts_ = true;
}

QString AboutTest::clickSysInfo()
{
    frmAbout about(registry_, [this](const std::string& path) {
        started_.push_back(path);
        return starts_;
    });
    about.show();
    QString text;
    QTimer::singleShot(0, &about, [this, &text] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            text = box->windowTitle() + u": "_s + box->text();
            icon_ = box->icon();
            box->button(QMessageBox::Ok)->click();
        }
    });
    QTest::mouseClick(about.findChild<QPushButton*>(u"cmdSysInfo"_s), Qt::LeftButton);
    return text;
}

static const QString& unavailable()
{
    static const QString text = u"Quarrynet: System Information Is Unavailable At This Time"_s;
    return text;
}

void AboutTest::saysWhatTheProgramIs()
{
    frmAbout about(registry_, [](const std::string&) { return true; });
    QCOMPARE(about.objectName(), u"frmAbout"_s);
    QCOMPARE(about.windowTitle(), u"About Quarrynet"_s);
    QCOMPARE(about.findChild<QLabel*>(u"lblTitle"_s)->text(), u"Quarrynet"_s);
    QCOMPARE(about.findChild<QLabel*>(u"lblVersion"_s)->text(), u"Version 1.0.0"_s);
    QCOMPARE(about.findChild<QLabel*>(u"lblDescription"_s)->text(),
             u"This program is for searching information, images and files on the internet."_s);
    QCOMPARE(about.findChild<QPushButton*>(u"cmdSysInfo"_s)->text(), u"&System Info..."_s);
    QVERIFY(about.findChild<QPushButton*>(u"cmdOK"_s)->isDefault());
    QVERIFY(!about.findChild<QLabel*>(u"Image1"_s)->pixmap().isNull());
    QVERIFY(!about.findChild<QLabel*>(u"Image2"_s)->pixmap().isNull());
    QVERIFY(about.findChild<QFrame*>(u"Line1"_s));
    about.show();
    if (qEnvironmentVariableIsSet("QUARRYNET_SCREENSHOTS"))
        about.grab().save(qEnvironmentVariable("QUARRYNET_SCREENSHOTS") + u"/about.png"_s);
}

void AboutTest::okCloses()
{
    frmAbout about(registry_, [](const std::string&) { return true; });
    about.show();
    QTest::mouseClick(about.findChild<QPushButton*>(u"cmdOK"_s), Qt::LeftButton);
    QVERIFY(!about.isVisible());
}

void AboutTest::escapeCloses()
{
    frmAbout about(registry_, [](const std::string&) { return true; });
    about.show();
    QTest::keyClick(&about, Qt::Key_Escape);
    QVERIFY(!about.isVisible());
}

void AboutTest::firstKeyIsStartedAsItStands()
{
    registry_.setText(kInfoKey, "PATH", "Z:\\there is no such file.exe");
    registry_.setText(kFolderKey, "MSINFO", "Z:\\not looked at");
    QVERIFY(clickSysInfo().isNull());
    QCOMPARE(started_, std::vector<std::string>{"Z:\\there is no such file.exe"});
}

void AboutTest::secondKeyIsStartedWhenItsFileExists()
{
    const QTemporaryDir folder;
#ifdef Q_OS_WIN
    QVERIFY(QDir(folder.path()).mkdir(u"tools"_s)); // elsewhere "\\" is a letter
#endif
    QFile program(folder.filePath(u"tools\\MSINFO32.EXE"_s));
    QVERIFY(program.open(QIODevice::WriteOnly));
    registry_.setText(kFolderKey, "MSINFO", folder.filePath(u"tools"_s).toStdString());
    QVERIFY(clickSysInfo().isNull());
    QCOMPARE(started_, std::vector<std::string>{folder.filePath(u"tools"_s).toStdString() + "\\MSINFO32.EXE"});
}

void AboutTest::secondKeyWithoutFileIsUnavailable()
{
    const QTemporaryDir folder;
    registry_.setText(kFolderKey, "MSINFO", folder.path().toStdString());
    QCOMPARE(clickSysInfo(), unavailable());
    QVERIFY(started_.empty());
}

void AboutTest::emptyRegistryIsUnavailable()
{
    QCOMPARE(clickSysInfo(), unavailable());
    QCOMPARE(icon_, QMessageBox::NoIcon);
}

void AboutTest::systemsOwnRegistryGivesAnAnswer()
{
    const std::unique_ptr<Registry> registry = quarrynet::systemRegistry();
    const auto missing = registry->query(Registry::kLocalMachine, "SOFTWARE\\Quarrynet has no such key", "x");
    QVERIFY(!missing.has_value());
}

#ifdef Q_OS_WIN

void AboutTest::systemsOwnValuesAreReadAsWritten_data()
{
    QTest::addColumn<uint>("type");
    QTest::addColumn<QByteArray>("bytes"); // in UTF-16 for texts
    QTest::addColumn<bool>("read");
    QTest::addColumn<QByteArray>("text"); // "before" stands for what the text was
    const auto utf16 = [](const QString& text) {
        return QByteArray(reinterpret_cast<const char*>(text.utf16()), 2 * text.size());
    };
    const QString nul(1, QChar(0));
    QTest::newRow("text") << uint(REG_SZ) << utf16(u"C:\\Tools\\x.exe"_s + nul) << true
                          << QByteArray("C:\\Tools\\x.exe");
    QTest::newRow("text without final zero") << uint(REG_SZ) << utf16(u"C:\\x"_s) << true << QByteArray("C:\\x");
    QTest::newRow("empty text") << uint(REG_SZ) << utf16(nul) << true << QByteArray("");
    QTest::newRow("letters of the code page")
        << uint(REG_SZ) << utf16(u"grüß"_s + nul) << true << QByteArray::fromStdString(quarrynet::toBytes(u"grüß"_s));
    QTest::newRow("longest text") << uint(REG_SZ) << utf16(QString(1023, u'x') + nul) << true << QByteArray(1023, 'x');
    QTest::newRow("too long") << uint(REG_SZ) << utf16(QString(1024, u'x') + nul) << false << QByteArray("");
    QTest::newRow("number") << uint(REG_DWORD) << QByteArray("\x78\x56\x34\x12") << true << QByteArray("305419896");
    QTest::newRow("number with low bytes")
        << uint(REG_DWORD) << QByteArray("\x05\x01\0\0", 4) << true << QByteArray("21");
    QTest::newRow("zero") << uint(REG_DWORD) << QByteArray(4, '\0') << true << QByteArray("0");
    QTest::newRow("bytes") << uint(REG_BINARY) << QByteArray("abc") << true << QByteArray("before");
    QTest::newRow("text with variables") << uint(REG_EXPAND_SZ) << utf16(u"%TEMP%"_s + nul) << true
                                         << QByteArray("before");
}

void AboutTest::systemsOwnValuesAreReadAsWritten()
{
    QFETCH(uint, type);
    QFETCH(QByteArray, bytes);
    QFETCH(bool, read);
    QFETCH(QByteArray, text);
    constexpr std::uint32_t kCurrentUser = 0x80000001U; // its keys can be written without an administrator's rights
    const QString key = u"Software\\Quarrynet test %1"_s.arg(QCoreApplication::applicationPid());
    const auto* name = reinterpret_cast<const wchar_t*>(key.utf16());
    QCOMPARE(
        ::RegSetKeyValueW(HKEY_CURRENT_USER, name, L"Value", type, bytes.constData(), static_cast<DWORD>(bytes.size())),
        LONG(ERROR_SUCCESS));
    const auto removing = qScopeGuard([name] { ::RegDeleteTreeW(HKEY_CURRENT_USER, name); });

    const std::unique_ptr<Registry> registry = quarrynet::systemRegistry();
    const frmAbout about(*registry, [](const std::string&) { return true; });
    std::string value = "before";
    QCOMPARE(about.GetKeyValue(kCurrentUser, key.toStdString(), "Value", value), read);
    QCOMPARE(QByteArray::fromStdString(value), text);
    QVERIFY(!about.GetKeyValue(kCurrentUser, key.toStdString(), "Other", value));
    QVERIFY(value.empty());
}

void AboutTest::programOfTheSystemsRegistryIsStarted_data()
{
    QTest::addColumn<bool>("firstKey");
    QTest::newRow("first key") << true;
    QTest::newRow("second key") << false;
}

void AboutTest::programOfTheSystemsRegistryIsStarted()
{
    QFETCH(bool, firstKey);
    const QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkdir(u"with blanks"_s));
    const QString tools = QDir::toNativeSeparators(folder.filePath(u"with blanks"_s));
    const QString program = tools + u"\\MSINFO32.EXE"_s;
    QVERIFY(QFile::copy(QCoreApplication::applicationFilePath(), program));

    const std::string key = firstKey ? kInfoKey : kFolderKey;
    const std::string name = firstKey ? "PATH" : "MSINFO";
    const std::unique_ptr<Registry> registry = quarrynet::systemRegistry();
    if (registry->query(Registry::kLocalMachine, kInfoKey, "PATH") ||
        registry->query(Registry::kLocalMachine, kFolderKey, "MSINFO"))
        QSKIP("This system has a program of its own");
    const std::string value = quarrynet::toBytes(firstKey ? program : tools);
    if (::RegSetKeyValueA(HKEY_LOCAL_MACHINE, key.c_str(), name.c_str(), REG_SZ, value.c_str(),
                          static_cast<DWORD>(value.size() + 1)) != ERROR_SUCCESS)
        QSKIP("Only an administrator can write this key");
    const auto removing = qScopeGuard([&] { ::RegDeleteKeyValueA(HKEY_LOCAL_MACHINE, key.c_str(), name.c_str()); });

    start_record::recordNextStarts(folder.filePath(u"record"_s));
    const auto noMore = qScopeGuard([] { qunsetenv(start_record::kVariable); });
    frmAbout about(*registry, quarrynet::startProgram);
    about.show();
    QTest::mouseClick(about.findChild<QPushButton*>(u"cmdSysInfo"_s), Qt::LeftButton);
    const auto record = [&folder] {
        QFile file(folder.filePath(u"record"_s));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    QTRY_COMPARE(record(), QByteArray("0\n"));
}

#endif

void AboutTest::programThatDoesNotStartIsUnavailable()
{
    registry_.setText(kInfoKey, "PATH", "Z:\\broken.exe");
    starts_ = false;
    QCOMPARE(clickSysInfo(), unavailable());
    QCOMPARE(started_.size(), 1U);
}

void AboutTest::otherTypeStartsNothingFromTheFirstKey()
{
    // Reading succeeds, but gives no text to start.
    registry_.values[{kInfoKey, "PATH"}] = RegistryValue{3, "Z:\\x.exe"};
    starts_ = false;
    QCOMPARE(clickSysInfo(), unavailable());
    QCOMPARE(started_, std::vector<std::string>{std::string()});
}

void AboutTest::valueThatCannotBeReadEmptiesTheText()
{
    const frmAbout about(registry_, [](const std::string&) { return true; });
    std::string text = "before";
    QVERIFY(!about.GetKeyValue(Registry::kLocalMachine, kInfoKey, "PATH", text));
    QVERIFY(text.empty());
}

void AboutTest::valueOfOtherTypeLeavesTheText()
{
    registry_.values[{kInfoKey, "PATH"}] = RegistryValue{7, "a"};
    const frmAbout about(registry_, [](const std::string&) { return true; });
    std::string text = "before";
    QVERIFY(about.GetKeyValue(Registry::kLocalMachine, kInfoKey, "PATH", text));
    QCOMPARE(text, std::string("before"));
}

void AboutTest::numberIsReadByteByByte()
{
    registry_.values[{kInfoKey, "PATH"}] = RegistryValue{4, std::string("\x05\x01\x00\x00", 4)};
    const frmAbout about(registry_, [](const std::string&) { return true; });
    std::string text;
    QVERIFY(about.GetKeyValue(Registry::kLocalMachine, kInfoKey, "PATH", text));
    QCOMPARE(text, std::string("21")); // 0x015: one zero byte is cut off and the other gives one digit
}

int main(int argc, char** argv)
{
    if (start_record::recordStart(argc, argv))
        return 0;
    QApplication application(argc, argv);
    AboutTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "about_test.moc"
