#include <string>
#include <vector>

#include <QCheckBox>
#include <QClipboard>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QtTest>

#include "dialogs/Proxy.h"

using namespace Qt::Literals::StringLiterals;
using quarrynet::CDS_CIni;
using quarrynet::Proxy;

class ProxyTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void missingFileShowsEmptyDisabledFields();
    void savedSettingsAreShown();
    void switchedOffSettingsAreShownDisabled();
    void onlyTheExactWordSwitchesOn();
    void untickEmptiesTickBringsTheSavedValuesBack();
    void okWithBothFieldsWritesThemAndSetsTheSwitch();
    void okWithAMissingFieldWritesNothing_data();
    void okWithAMissingFieldWritesNothing();
    void untickedOkEmptiesTheSavedValues();
    void untouchedUntickedOkWritesTheSavedValuesBack();
    void cancelAndEscapeWriteNothing();
    void enterIsOk();
    void failedWriteClosesAndSetsTheSwitch();
    void foreignLettersAndBytesSurvive();
    void pastedLineEndIsDropped();
    void looksComposed();

private:
    void open();
    void save(const char* proxySwitch, const char* host, const char* port);
    std::string saved(const char* section);
    QCheckBox* check() { return dialog_->findChild<QCheckBox*>(u"Check1"_s); }
    QLineEdit* host() { return dialog_->findChild<QLineEdit*>(u"Text1"_s); }
    QLineEdit* port() { return dialog_->findChild<QLineEdit*>(u"Text2"_s); }
    void click(const QString& button) { QTest::mouseClick(dialog_->findChild<QPushButton*>(button), Qt::LeftButton); }

    std::unique_ptr<QTemporaryDir> folder_;
    std::string path_;
    std::unique_ptr<Proxy> dialog_;
    std::vector<std::string> switches_;
};

void ProxyTest::init()
{
    folder_ = std::make_unique<QTemporaryDir>();
    path_ = folder_->filePath(u"Quarrynet.ini"_s).toStdString();
    switches_.clear();
}

void ProxyTest::cleanup()
{
    dialog_.reset();
}

void ProxyTest::open()
{
    dialog_ = std::make_unique<Proxy>(path_, [this](const std::string& text) { switches_.push_back(text); });
    dialog_->show();
    QVERIFY(QTest::qWaitForWindowActive(dialog_.get()));
}

void ProxyTest::save(const char* proxySwitch, const char* host, const char* port)
{
    CDS_CIni store;
    store.setFileName(path_);
    QVERIFY(store.WriteValue("ProxySwitch", "Value", proxySwitch));
    QVERIFY(store.WriteValue("ProxyHost", "Value", host));
    QVERIFY(store.WriteValue("ProxyPort", "Value", port));
}

std::string ProxyTest::saved(const char* section)
{
    CDS_CIni store;
    store.setFileName(path_);
    std::string value;
    store.ReadValue(section, "Value", value);
    return value;
}

void ProxyTest::missingFileShowsEmptyDisabledFields()
{
    open();
    QCOMPARE(dialog_->objectName(), u"Proxy"_s);
    QCOMPARE(dialog_->windowTitle(), u"Quarrynet - Options"_s);
    QVERIFY(!check()->isChecked());
    QVERIFY(host()->text().isEmpty() && !host()->isEnabled());
    QVERIFY(port()->text().isEmpty() && !port()->isEnabled());
    QVERIFY(!QFile::exists(QString::fromStdString(path_)));
}

void ProxyTest::savedSettingsAreShown()
{
    save("on", "proxy.example", "8080");
    open();
    QVERIFY(check()->isChecked());
    QCOMPARE(host()->text(), u"proxy.example"_s);
    QCOMPARE(port()->text(), u"8080"_s);
    QVERIFY(host()->isEnabled() && port()->isEnabled());
    QVERIFY(switches_.empty());
}

void ProxyTest::switchedOffSettingsAreShownDisabled()
{
    save("off", "proxy.example", "8080");
    open();
    QVERIFY(!check()->isChecked());
    QCOMPARE(host()->text(), u"proxy.example"_s);
    QCOMPARE(port()->text(), u"8080"_s);
    QVERIFY(!host()->isEnabled() && !port()->isEnabled());
}

void ProxyTest::onlyTheExactWordSwitchesOn()
{
    save("On", "proxy.example", "8080");
    open();
    QVERIFY(!check()->isChecked());
}

void ProxyTest::untickEmptiesTickBringsTheSavedValuesBack()
{
    save("on", "proxy.example", "8080");
    open();
    host()->setText(u"typed over"_s);
    QTest::keyClick(check(), Qt::Key_Space);
    QVERIFY(!check()->isChecked());
    QVERIFY(host()->text().isEmpty() && !host()->isEnabled());
    QVERIFY(port()->text().isEmpty() && !port()->isEnabled());
    QTest::keyClick(check(), Qt::Key_Space);
    QCOMPARE(host()->text(), u"proxy.example"_s);
    QCOMPARE(port()->text(), u"8080"_s);
    QVERIFY(host()->isEnabled() && port()->isEnabled());
}

void ProxyTest::okWithBothFieldsWritesThemAndSetsTheSwitch()
{
    open();
    check()->click();
    QTest::keyClicks(host(), u"proxy.example"_s);
    QTest::keyClicks(port(), u"80x80"_s); // any text is allowed; its leading digits count
    click(u"Command1"_s);
    QVERIFY(!dialog_->isVisible());
    QCOMPARE(saved("ProxySwitch"), std::string("on"));
    QCOMPARE(saved("ProxyHost"), std::string("proxy.example"));
    QCOMPARE(saved("ProxyPort"), std::string("80x80"));
    QCOMPARE(switches_, std::vector<std::string>{"on"});
}

void ProxyTest::okWithAMissingFieldWritesNothing_data()
{
    QTest::addColumn<QString>("hostText");
    QTest::addColumn<QString>("portText");
    QTest::addColumn<QString>("missing");
    QTest::newRow("port") << u"other.example"_s << QString() << u"Text2"_s;
    QTest::newRow("host") << QString() << u"3128"_s << u"Text1"_s;
    QTest::newRow("both") << QString() << QString() << u"Text1"_s;
}

void ProxyTest::okWithAMissingFieldWritesNothing()
{
    QFETCH(QString, hostText);
    QFETCH(QString, portText);
    QFETCH(QString, missing);
    save("on", "proxy.example", "8080");
    open();
    host()->setText(hostText);
    port()->setText(portText);
    QString box;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QTimer::singleShot(0, dialog_.get(), [&box, &icon] {
        if (auto* shown = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            box = shown->windowTitle() + u": "_s + shown->text();
            icon = shown->icon();
            shown->button(QMessageBox::Ok)->click();
        }
    });
    click(u"Command1"_s);
    QCOMPARE(box, u"Quarrynet: All fields are mandatory"_s);
    QCOMPARE(icon, QMessageBox::Information);
    QVERIFY(dialog_->isVisible());
    QCOMPARE(dialog_->focusWidget()->objectName(), missing);
    QCOMPARE(saved("ProxyHost"), std::string("proxy.example"));
    QCOMPARE(saved("ProxyPort"), std::string("8080"));
    QVERIFY(switches_.empty());
}

void ProxyTest::untickedOkEmptiesTheSavedValues()
{
    save("on", "proxy.example", "8080");
    open();
    check()->click();
    click(u"Command1"_s);
    QVERIFY(!dialog_->isVisible());
    QCOMPARE(saved("ProxySwitch"), std::string("off"));
    QCOMPARE(saved("ProxyHost"), std::string());
    QCOMPARE(saved("ProxyPort"), std::string());
    QCOMPARE(switches_, std::vector<std::string>{"off"});
}

void ProxyTest::untouchedUntickedOkWritesTheSavedValuesBack()
{
    save("off", "proxy.example", "8080");
    open();
    click(u"Command1"_s);
    QCOMPARE(saved("ProxySwitch"), std::string("off"));
    QCOMPARE(saved("ProxyHost"), std::string("proxy.example"));
    QCOMPARE(saved("ProxyPort"), std::string("8080"));
    QCOMPARE(switches_, std::vector<std::string>{"off"});
}

void ProxyTest::cancelAndEscapeWriteNothing()
{
    save("on", "proxy.example", "8080");
    for (const bool byKey : {false, true}) {
        open();
        check()->click();
        if (byKey)
            QTest::keyClick(check(), Qt::Key_Escape);
        else
            click(u"Command2"_s);
        QVERIFY(!dialog_->isVisible());
        QCOMPARE(dialog_->result(), static_cast<int>(QDialog::Rejected));
        QCOMPARE(saved("ProxySwitch"), std::string("on"));
        QCOMPARE(saved("ProxyHost"), std::string("proxy.example"));
    }
    QVERIFY(switches_.empty());
}

void ProxyTest::enterIsOk()
{
    save("on", "proxy.example", "8080");
    open();
    host()->setText(u"other.example"_s);
    QTest::keyClick(host(), Qt::Key_Return);
    QVERIFY(!dialog_->isVisible());
    QCOMPARE(saved("ProxyHost"), std::string("other.example"));
    QCOMPARE(switches_, std::vector<std::string>{"on"});
}

void ProxyTest::failedWriteClosesAndSetsTheSwitch()
{
    path_ = folder_->filePath(u"no such folder/Quarrynet.ini"_s).toStdString();
    open();
    check()->click();
    host()->setText(u"proxy.example"_s);
    port()->setText(u"8080"_s);
    click(u"Command1"_s);
    QVERIFY(!dialog_->isVisible());
    QCOMPARE(switches_, std::vector<std::string>{"on"});
}

void ProxyTest::foreignLettersAndBytesSurvive()
{
    save("on", u"bücher.example"_s.toLocal8Bit().constData(), "1");
    open();
    QCOMPARE(host()->text(), u"bücher.example"_s);
    host()->setText(u"þorn.example"_s);
    click(u"Command1"_s);
    QCOMPARE(saved("ProxyHost"), u"þorn.example"_s.toLocal8Bit().toStdString());
}

void ProxyTest::pastedLineEndIsDropped()
{
    open();
    check()->click();
    QGuiApplication::clipboard()->setText(u"proxy.example\r\n"_s);
    host()->paste();
    port()->setText(u"8080"_s);
    click(u"Command1"_s);
    QCOMPARE(saved("ProxyHost"), std::string("proxy.example"));
    QCOMPARE(saved("ProxyPort"), std::string("8080"));
}

void ProxyTest::looksComposed()
{
    save("on", "proxy.example", "8080");
    open();
    const QWidget* frame = dialog_->findChild<QWidget*>(u"Frame1"_s);
    QVERIFY(frame);
    for (const auto& name :
         {u"Check1"_s, u"Label1"_s, u"Text1"_s, u"Label2"_s, u"Text2"_s, u"Command1"_s, u"Command2"_s}) {
        const auto* control = frame->findChild<QWidget*>(name);
        QVERIFY2(control, qPrintable(name));
        QVERIFY2(frame->rect().contains(control->geometry()), qPrintable(name));
    }
    if (qEnvironmentVariableIsSet("QUARRYNET_SCREENSHOTS"))
        dialog_->grab().save(qEnvironmentVariable("QUARRYNET_SCREENSHOTS") + u"/proxy.png"_s);
}

QTEST_MAIN(ProxyTest)
#include "proxy_test.moc"
