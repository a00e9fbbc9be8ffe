#include <QAction>
#include <QCheckBox>
#include <QDir>
#include <QFile>

#ifndef Q_OS_WIN
#include <sys/stat.h>
#include <unistd.h>
#endif

#include "DialogDriver.h"
#include "common/CDS_CIni.h"
#include "tab_controls.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

namespace {

QByteArray settings(const QByteArray& proxySwitch, const QByteArray& host, const QByteArray& port)
{
    return "[ProxySwitch]\nValue=" + proxySwitch + "\n[ProxyHost]\nValue=" + host + "\n[ProxyPort]\nValue=" + port +
           "\n";
}

/// Tests the options dialog as the user operates it.
class Options
{
public:
    explicit Options(QDialog& dialog) : dialog_(dialog) {}

    QCheckBox* check() { return dialog_.findChild<QCheckBox*>(u"Check1"_s); }
    QLineEdit* host() { return dialog_.findChild<QLineEdit*>(u"Text1"_s); }
    QLineEdit* port() { return dialog_.findChild<QLineEdit*>(u"Text2"_s); }

    void toggle() { QTest::keyClick(check(), Qt::Key_Space); }

    void fill(const QString& hostText, const QString& portText)
    {
        host()->selectAll();
        QTest::keyClick(host(), Qt::Key_Delete);
        QTest::keyClicks(host(), hostText);
        port()->selectAll();
        QTest::keyClick(port(), Qt::Key_Delete);
        QTest::keyClicks(port(), portText);
    }

    void ok() { QTest::mouseClick(dialog_.findChild<QPushButton*>(u"Command1"_s), Qt::LeftButton); }
    void cancel() { QTest::mouseClick(dialog_.findChild<QPushButton*>(u"Command2"_s), Qt::LeftButton); }
    QWidget* focused() const { return dialog_.focusWidget(); }
    bool isOpen() const { return dialog_.isVisible(); }

private:
    QDialog& dialog_;
};

} // namespace

class ProxyOptionsTest final : public QObject
{
    Q_OBJECT

private slots:
    void init() { window_ = std::make_unique<WindowFixture>(); }
    void cleanup() { window_.reset(); }

    void withoutAFileTheBoxIsOffAndTheFieldsAreEmpty()
    {
        window_->start();
        inOptions([](Options& options) {
            QVERIFY(!options.check()->isChecked());
            QVERIFY(options.host()->text().isEmpty() && !options.host()->isEnabled());
            QVERIFY(options.port()->text().isEmpty() && !options.port()->isEnabled());
            options.cancel();
        });
        QVERIFY(!QFile::exists(window_->settingsFile()));
        QVERIFY(window_->main().isDirect());
    }

    void tickingLeadsToTheHost()
    {
        window_->start();
        inOptions([](Options& options) {
            options.check()->setFocus();
            options.toggle();
            QCOMPARE(options.focused(), options.host());
            options.check()->setFocus();
            options.toggle();
            QVERIFY(!options.check()->isChecked());
            QCOMPARE(options.focused(), options.check());
            options.cancel();
        });
    }

    void okSwitchesTheProxyOnForTheNextSearch()
    {
        window_->start();
        const QString port = QString::number(window_->service.port());
        inOptions([&](Options& options) {
            options.toggle();
            options.fill(u"127.0.0.1"_s, port);
            options.ok();
            QVERIFY(!options.isOpen());
        });
        QCOMPARE(saved("ProxySwitch"), std::string("on"));
        QCOMPARE(saved("ProxyHost"), std::string("127.0.0.1"));
        QCOMPARE(saved("ProxyPort"), port.toStdString());
        QCOMPARE(window_->hidden("ProxySwitch"), std::string("on"));
        QVERIFY(!window_->main().isDirect());
        QCOMPARE(window_->main().proxy().host, std::string("127.0.0.1"));
        QCOMPARE(window_->main().proxy().port, port.toInt());

        window_->service.stall();
        search();
        QTRY_COMPARE(window_->service.requests().size(), 1);
        QVERIFY(window_->service.lastRequestLine().startsWith("GET http://127.0.0.1/search?"));
    }

    void untickAndOkSwitchItOffForTheNextSearch()
    {
        window_->writeSettings(settings("on", "127.0.0.1", QByteArray::number(window_->service.port())));
        window_->start();
        inOptions([](Options& options) {
            options.toggle();
            options.ok();
        });
        QCOMPARE(saved("ProxySwitch"), std::string("off"));
        QCOMPARE(saved("ProxyHost"), std::string());
        QCOMPARE(saved("ProxyPort"), std::string());
        QVERIFY(window_->main().isDirect());
        window_->service.stall();
        search();
        QTRY_COMPARE(window_->service.requests().size(), 1);
        QVERIFY(window_->service.lastRequestLine().startsWith("GET /search?"));
    }

    void tickAfterUntickBringsTheSavedValuesBack()
    {
        window_->writeSettings(settings("on", "proxy.example", "8080"));
        window_->start();
        inOptions([](Options& options) {
            options.fill(u"typed.example"_s, u"1"_s);
            options.toggle();
            QVERIFY(options.host()->text().isEmpty() && !options.host()->isEnabled());
            QVERIFY(options.port()->text().isEmpty() && !options.port()->isEnabled());
            options.toggle();
            QCOMPARE(options.host()->text(), u"proxy.example"_s);
            QCOMPARE(options.port()->text(), u"8080"_s);
            QVERIFY(options.host()->isEnabled() && options.port()->isEnabled());
            options.cancel();
        });
        QCOMPARE(saved("ProxyHost"), std::string("proxy.example"));
    }

    void aMissingFieldKeepsTheDialogWithTheFocusThere_data()
    {
        QTest::addColumn<QString>("host");
        QTest::addColumn<QString>("port");
        QTest::addColumn<QString>("focus");
        QTest::newRow("port") << u"proxy.example"_s << QString() << u"Text2"_s;
        QTest::newRow("host") << QString() << u"8080"_s << u"Text1"_s;
        QTest::newRow("both") << QString() << QString() << u"Text1"_s;
    }

    void aMissingFieldKeepsTheDialogWithTheFocusThere()
    {
        QFETCH(QString, host);
        QFETCH(QString, port);
        QFETCH(QString, focus);
        const QByteArray before = settings("off", "saved.example", "3128");
        window_->writeSettings(before);
        window_->start();
        inOptions([&](Options& options) {
            options.toggle();
            options.fill(host, port);
            options.ok();
            QVERIFY(options.isOpen());
            QCOMPARE(options.check()->window()->focusWidget()->objectName(), focus);
            options.cancel();
        });
        QCOMPARE(window_->boxes.texts(), QStringList{u"All fields are mandatory"_s});
        QCOMPARE(window_->boxes.boxes()[0].icon, QMessageBox::Information);
        QCOMPARE(window_->boxes.boxes()[0].title, u"Quarrynet"_s);
        QCOMPARE(content(), before);
        QVERIFY(window_->main().isDirect());
    }

    void okWhileTheSwitchIsOnTakesTheNewHostAndPort()
    {
        window_->writeSettings(settings("on", "old.example", "8080"));
        window_->start();
        QCOMPARE(window_->main().proxy().port, 8080);
        inOptions([](Options& options) {
            QCOMPARE(options.host()->text(), u"old.example"_s);
            options.fill(u"new.example"_s, u"3128"_s);
            options.ok();
        });
        QCOMPARE(window_->main().proxy().host, std::string("new.example"));
        QCOMPARE(window_->main().proxy().port, 3128);
        QVERIFY(window_->boxes.boxes().isEmpty());
    }

    void whatTheFileHoldsCountsNotWhatTheBoxesShow()
    {
        window_->start();
        inOptions([](Options& options) {
            options.toggle();
            options.fill(u"  \"proxy.example\" "_s, u"8080.6 and more"_s);
            options.ok();
        });
        // The file drops outer blanks and one pair of quotes; the port is the leading number of its text, rounded.
        QCOMPARE(window_->main().proxy().host, saved("ProxyHost"));
        QCOMPARE(window_->main().proxy().port, 8081);
    }

    void aPortWithoutDigitsIsPort0AndTheSearchSaysSo()
    {
        window_->start();
        inOptions([](Options& options) {
            options.toggle();
            options.fill(u"127.0.0.1"_s, u"eighty"_s);
            options.ok();
        });
        QCOMPARE(saved("ProxyPort"), std::string("eighty"));
        QCOMPARE(window_->main().proxy().port, 0);
        search();
        QTRY_COMPARE(window_->boxes.boxes().size(), 1);
        QCOMPARE(window_->boxes.boxes()[0].title, u"Error"_s);
        QTRY_VERIFY(window_->control<QPushButton>("Command1")->isEnabled());
        QCOMPARE(window_->socketState("NetSock"), 0);
    }

    void aPortAbove32767IsSaidAndLeavesThePortInUse_data()
    {
        QTest::addColumn<bool>("onBefore");
        QTest::newRow("switched on by this") << false;
        QTest::newRow("on already") << true;
    }

    void aPortAbove32767IsSaidAndLeavesThePortInUse()
    {
        QFETCH(bool, onBefore);
        if (onBefore)
            window_->writeSettings(settings("on", "127.0.0.1", "8080"));
        window_->start();
        QString owner;
        window_->boxes.beforeAnswer = [&owner](QMessageBox& box) {
            owner = box.parentWidget() ? box.parentWidget()->objectName() : QString();
        };
        inOptions([onBefore](Options& options) {
            if (!onBefore)
                options.toggle();
            options.fill(u"127.0.0.1"_s, u"32768"_s);
            options.ok();
            QVERIFY(!options.isOpen());
        });
        QCOMPARE(window_->boxes.texts(),
                 QStringList{u"Run-time error '6':\n\nOverflow\n\n%1\nSection [ProxyPort]: the port must not be "
                             "greater than 32767."_s.arg(window_->settingsFile())});
        QCOMPARE(owner, u"Proxy"_s);
        QCOMPARE(window_->boxes.boxes()[0].icon, QMessageBox::Critical);
        QCOMPARE(window_->main().proxy().port, onBefore ? 8080 : 0);
        QCOMPARE(saved("ProxySwitch"), std::string("on"));
        QCOMPARE(saved("ProxyHost"), std::string("127.0.0.1"));
        QCOMPARE(saved("ProxyPort"), std::string("32768"));

        // The same dialog corrects it.
        window_->activate();
        const QString port = QString::number(window_->service.port());
        inOptions([&](Options& options) {
            QCOMPARE(options.port()->text(), u"32768"_s);
            options.fill(u"127.0.0.1"_s, port);
            options.ok();
        });
        QCOMPARE(window_->main().proxy().port, port.toInt());
        QCOMPARE(window_->boxes.boxes().size(), 1);
    }

    void theLargestPortIsTaken()
    {
        window_->start();
        inOptions([](Options& options) {
            options.toggle();
            options.fill(u"h"_s, u"32767"_s);
            options.ok();
        });
        QCOMPARE(window_->main().proxy().port, 32767);
        QVERIFY(window_->boxes.boxes().isEmpty());
    }

    void cancelAndEscapeChangeNothing_data()
    {
        QTest::addColumn<bool>("byKey");
        QTest::newRow("Cancel") << false;
        QTest::newRow("Escape") << true;
    }

    void cancelAndEscapeChangeNothing()
    {
        QFETCH(bool, byKey);
        const QByteArray before = settings("on", "proxy.example", "8080");
        window_->writeSettings(before);
        window_->start();
        inOptions([byKey](Options& options) {
            options.fill(u"typed.example"_s, u"1"_s);
            options.toggle();
            if (byKey)
                QTest::keyClick(options.check(), Qt::Key_Escape);
            else
                options.cancel();
            QVERIFY(!options.isOpen());
        });
        QCOMPARE(content(), before);
        QCOMPARE(window_->main().proxy().host, std::string("proxy.example"));
        QVERIFY(!window_->main().isDirect());
    }

    void escapeInTheDialogDoesNotStopASearch()
    {
        window_->start();
        window_->service.stall();
        search();
        QTRY_COMPARE(window_->service.requests().size(), 1);
        inOptions([](Options& options) { QTest::keyClick(options.check(), Qt::Key_Escape); });
        QVERIFY(window_->boxes.boxes().isEmpty());
        QCOMPARE(window_->socketState("NetSock"), 7);
    }

    void enterInAFieldIsOk()
    {
        window_->writeSettings(settings("on", "old.example", "8080"));
        window_->start();
        inOptions([](Options& options) {
            options.fill(u"new.example"_s, u"8081"_s);
            QTest::keyClick(options.port(), Qt::Key_Return);
            QVERIFY(!options.isOpen());
        });
        QCOMPARE(window_->main().proxy().host, std::string("new.example"));
    }

    void untouchedUntickedOkWritesTheSavedValuesBack()
    {
        window_->writeSettings(settings("off", "saved.example", "3128"));
        window_->start();
        inOptions([](Options& options) {
            QCOMPARE(options.host()->text(), u"saved.example"_s);
            options.ok();
        });
        QCOMPARE(saved("ProxySwitch"), std::string("off"));
        QCOMPARE(saved("ProxyHost"), std::string("saved.example"));
        QCOMPARE(saved("ProxyPort"), std::string("3128"));
        QCOMPARE(window_->main().proxy().host, std::string());
    }

    void otherLinesOfTheFileSurviveOk_data()
    {
        QTest::addColumn<QByteArray>("other");
        QTest::newRow("a comment and a section") << QByteArray("; mine\n[Other]\nKey=kept\n");
        QTest::newRow("garbage") << QByteArray("\xff\xfe[[==]]\nno section\n=\n");
#ifndef Q_OS_WIN // the system's functions end the value there
        QTest::newRow("NUL inside") << QByteArray("[Other]\nKey=a\0b\n", 16);
#endif
    }

    void otherLinesOfTheFileSurviveOk()
    {
        QFETCH(QByteArray, other);
        window_->writeSettings(other);
        window_->start();
        QVERIFY(window_->main().isDirect());
        inOptions([](Options& options) {
            QVERIFY(!options.check()->isChecked());
            options.toggle();
            options.fill(u"proxy.example"_s, u"8080"_s);
            options.ok();
        });
        QCOMPARE(window_->main().proxy().host, std::string("proxy.example"));
        QCOMPARE(window_->main().proxy().port, 8080);
        QVERIFY2(content().replace("\r\n", "\n").startsWith(other), content());
        QVERIFY(window_->boxes.boxes().isEmpty());
    }

    void aNulInAValueEndsItThere()
    {
        window_->writeSettings(settings("on", QByteArray("proxy.example\0.evil", 19), "8080"));
        window_->start();
        QCOMPARE(window_->main().proxy().host, std::string("proxy.example"));
        inOptions([](Options& options) {
            QCOMPARE(options.host()->text(), u"proxy.example"_s);
            options.cancel();
        });
    }

    // A folder at the file's path makes writing fail for every user, including root.
    void aFileThatCannotBeWrittenClosesAndSetsTheSwitchAllTheSame()
    {
        QVERIFY(QDir().mkpath(window_->settingsFile() + u"/inside"_s));
        window_->start();
        QVERIFY(window_->main().isDirect());
        inOptions([](Options& options) {
            options.toggle();
            options.fill(u"127.0.0.1"_s, u"8080"_s);
            options.ok();
            QVERIFY(!options.isOpen());
        });
        QVERIFY(window_->boxes.boxes().isEmpty());
        QCOMPARE(window_->hidden("ProxySwitch"), std::string("on"));
        QCOMPARE(window_->main().proxy().host, std::string()); // the content of the file, which is empty
        QCOMPARE(window_->main().proxy().port, 0);
        search();
        QTRY_COMPARE(window_->boxes.boxes().size(), 1);
        QTRY_VERIFY(window_->control<QPushButton>("Command1")->isEnabled());
        QVERIFY(QFileInfo(window_->settingsFile()).isDir());
    }

    void eachOpeningReadsTheFileAnew()
    {
        window_->writeSettings(settings("on", "first.example", "1"));
        window_->start();
        inOptions([](Options& options) { options.fill(u"typed"_s, u"2"_s); });
        window_->writeSettings(settings("on", "second.example", "3"));
        inOptions([](Options& options) {
            QCOMPARE(options.host()->text(), u"second.example"_s);
            QCOMPARE(options.port()->text(), u"3"_s);
        });
        QCOMPARE(window_->main().proxy().host, std::string("first.example")); // only OK applies the new one
    }

    void whatReadsEmptyIsEmpty_data()
    {
        QTest::addColumn<QByteArray>("host");
        QTest::addColumn<QByteArray>("port");
        QTest::addColumn<QString>("boxHost");
        QTest::addColumn<QString>("boxPort");
        QTest::newRow("blank host") << QByteArray("  ") << QByteArray("9090") << QString() << u"9090"_s;
        QTest::newRow("quotes around nothing") << QByteArray("\"\"") << QByteArray("9090") << QString() << u"9090"_s;
        QTest::newRow("blank port") << QByteArray("new.example") << QByteArray(" ") << u"new.example"_s << QString();
    }

    // The dialog rejects an empty field, but accepts a blank, which is no host either.
    void whatReadsEmptyIsEmpty()
    {
        QFETCH(QByteArray, host);
        QFETCH(QByteArray, port);
        QFETCH(QString, boxHost);
        QFETCH(QString, boxPort);
        window_->writeSettings(settings("on", "old.example", "8080"));
        window_->start();
        QCOMPARE(window_->main().proxy().host, std::string("old.example"));
        inOptions([&](Options& options) {
            options.host()->setText(QString::fromLatin1(host));
            options.port()->setText(QString::fromLatin1(port));
            options.ok();
        });
        QCOMPARE(window_->main().proxy().host, boxHost.toStdString());
        QCOMPARE(window_->main().proxy().port, boxPort.toInt());
        inOptions([&](Options& options) {
            QCOMPARE(options.host()->text(), boxHost);
            QCOMPARE(options.port()->text(), boxPort);
            // Ticking the box restores the saved values in the fields.
            options.toggle();
            options.toggle();
            QCOMPARE(options.host()->text(), boxHost);
            QCOMPARE(options.port()->text(), boxPort);
            options.cancel();
        });
    }

#ifndef Q_OS_WIN
    void aSettingsFileOfAnyKindEndsNothing_data()
    {
        QTest::addColumn<QString>("kind");
        for (const char* kind : {"sparse", "pipe", "device", "folder", "circle"})
            QTest::newRow(kind) << QString::fromLatin1(kind);
    }

    void aSettingsFileOfAnyKindEndsNothing()
    {
        QFETCH(QString, kind);
        const QString path = window_->settingsFile();
        const QByteArray name = QFile::encodeName(path);
        if (kind == u"sparse"_s) {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            if (!file.resize(qint64{4} << 40))
                QSKIP("The file system does not support such a file");
        } else if (kind == u"pipe"_s) {
            QCOMPARE(::mkfifo(name.constData(), 0600), 0);
        } else if (kind == u"device"_s) {
            QCOMPARE(::symlink("/dev/zero", name.constData()), 0);
        } else if (kind == u"folder"_s) {
            QVERIFY(QDir().mkpath(path));
        } else {
            QCOMPARE(::symlink("Quarrynet.ini", name.constData()), 0);
        }
        window_->start();
        QVERIFY(window_->main().isDirect());
        inOptions([](Options& options) {
            QVERIFY(!options.check()->isChecked());
            options.toggle();
            options.fill(u"proxy.example"_s, u"8080"_s);
            options.ok();
            QVERIFY(!options.isOpen());
        });
        QCOMPARE(window_->boxes.texts(), QStringList()); // a failed write is not reported
        QVERIFY(window_->main().proxy().host.empty());
    }
#endif

private:
    /// Opens the dialog as the user does, operates it, and returns when it is closed.
    void inOptions(const std::function<void(Options&)>& work)
    {
        const DialogDriver driver([&work](QDialog& dialog) {
            Options options(dialog);
            work(options);
        });
        window_->control<QAction>("proxymnu")->trigger();
        QCOMPARE(driver.seen(), QStringList{u"Proxy"_s});
    }

    void search()
    {
        window_->activate();
        window_->type("Text1", u"apple"_s);
        QTest::mouseClick(window_->control<QPushButton>("Command1"), Qt::LeftButton);
    }

    std::string saved(const char* section)
    {
        CDS_CIni store;
        store.setFileName(window_->settingsFile().toStdString());
        std::string value;
        store.ReadValue(section, "Value", value);
        return value;
    }

    QByteArray content()
    {
        QFile file(window_->settingsFile());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
    }

    std::unique_ptr<WindowFixture> window_;
};

QTEST_MAIN(ProxyOptionsTest)
#include "proxy_options_test.moc"
