#include "dialogs/Proxy.h"

#include <utility>

#include "platform/message_boxes.h"
#include "platform/text_border.h"
#include "ui_Proxy.h"

namespace quarrynet {

namespace {

constexpr const char* kSwitchSection = "ProxySwitch";
constexpr const char* kHostSection = "ProxyHost";
constexpr const char* kPortSection = "ProxyPort";
constexpr const char* kKey = "Value";

// A line end that was pasted along with a name is not seen in the field, and the settings file could not hold it.
std::string typedText(const QLineEdit& field)
{
    QString text = field.text();
    text.removeIf([](QChar c) { return c < u' '; });
    return toBytes(text);
}

} // namespace

Proxy::Proxy(std::string settingsPath, SwitchSetter setProxySwitch, QWidget* parent)
    : QDialog(parent)
    , ui_(std::make_unique<Ui::Proxy>())
    , settingsPath_(std::move(settingsPath))
    , setProxySwitch_(std::move(setProxySwitch))
{
    ui_->setupUi(this);
    connect(ui_->Check1, &QCheckBox::toggled, this, &Proxy::Check1_Click);
    connect(ui_->Check1, &QCheckBox::clicked, this, [this](bool on) {
        if (on)
            ui_->Text1->setFocus();
    });
    connect(ui_->Command1, &QPushButton::clicked, this, &Proxy::Command1_Click);
    connect(ui_->Command2, &QPushButton::clicked, this, &Proxy::Command2_Click);
    Form_Load();
}

Proxy::~Proxy() = default;

std::string Proxy::readSetting(const std::string& section)
{
    std::string value;
    store_.ReadValue(section, kKey, value); // what is missing reads as empty
    return value;
}

void Proxy::showHostAndPort()
{
    ui_->Text1->setText(toText(readSetting(kHostSection)));
    ui_->Text2->setText(toText(readSetting(kPortSection)));
}

void Proxy::Form_Load()
{
    store_.setFileName(settingsPath_);
    ui_->Check1->setChecked(readSetting(kSwitchSection) == "on");
    showHostAndPort();
    ui_->Text1->setEnabled(ui_->Check1->isChecked());
    ui_->Text2->setEnabled(ui_->Check1->isChecked());
}

void Proxy::Check1_Click()
{
    const bool on = ui_->Check1->isChecked();
    ui_->Text1->setEnabled(on);
    ui_->Text2->setEnabled(on);
    if (on) {
        store_.setFileName(settingsPath_);
        showHostAndPort(); // what was saved last comes back
    } else {
        ui_->Text1->clear();
        ui_->Text2->clear();
    }
}

void Proxy::writeSettings(const std::string& proxySwitch)
{
    // A write that fails is passed over: whoever handles the switch reads back what the file holds.
    store_.WriteValue(kSwitchSection, kKey, proxySwitch);
    store_.WriteValue(kHostSection, kKey, typedText(*ui_->Text1));
    store_.WriteValue(kPortSection, kKey, typedText(*ui_->Text2));
}

void Proxy::Command1_Click()
{
    store_.setFileName(settingsPath_);
    const bool on = ui_->Check1->isChecked();
    if (on) {
        for (QLineEdit* field : {ui_->Text1, ui_->Text2}) {
            if (typedText(*field).empty()) {
                showInformation(this, tr("All fields are mandatory"));
                field->setFocus();
                return;
            }
        }
    }
    const std::string proxySwitch = on ? "on" : "off";
    writeSettings(proxySwitch);
    setProxySwitch_(proxySwitch);
    accept();
}

void Proxy::Command2_Click()
{
    reject();
}

} // namespace quarrynet
