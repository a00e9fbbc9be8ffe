#include "dialogs/Proxy.h"

#include <utility>

#include "platform/message_boxes.h"
#include "platform/text_border.h"
#include "ui_Proxy.h"

namespace quarrynet {

namespace {

// Returns the field's text as bytes. Removes pasted line ends, which the field does not show and the settings file
// cannot store.
std::string typedText(const QLineEdit& field)
{
    QString text = field.text();
    text.removeIf([](QChar c) { return c < u' '; });
    return toBytes(text);
}

} // namespace

Proxy::Proxy(const std::string& settingsPath, SwitchSetter setProxySwitch, QWidget* parent)
    : QDialog(parent)
    , ui_(std::make_unique<Ui::Proxy>())
    , settings_(settingsPath)
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

void Proxy::showHostAndPort()
{
    ui_->Text1->setText(toText(settings_.host));
    ui_->Text2->setText(toText(settings_.port));
}

void Proxy::Form_Load()
{
    settings_.load();
    ui_->Check1->setChecked(settings_.on);
    showHostAndPort();
    ui_->Text1->setEnabled(settings_.on);
    ui_->Text2->setEnabled(settings_.on);
}

void Proxy::Check1_Click()
{
    const bool on = ui_->Check1->isChecked();
    ui_->Text1->setEnabled(on);
    ui_->Text2->setEnabled(on);
    if (on) {
        settings_.load();
        showHostAndPort(); // restores the last saved values
    } else {
        ui_->Text1->clear();
        ui_->Text2->clear();
    }
}

void Proxy::Command1_Click()
{
    settings_.on = ui_->Check1->isChecked();
    settings_.host = typedText(*ui_->Text1);
    settings_.port = typedText(*ui_->Text2);
    if (settings_.on) {
        for (QLineEdit* field : {ui_->Text1, ui_->Text2}) {
            if (typedText(*field).empty()) {
                showInformation(this, QStringLiteral("All fields are mandatory"));
                field->setFocus();
                return;
            }
        }
    }
    settings_.save(); // a failed write is ignored: the switch's handler reads the file again
    setProxySwitch_(ProxySettings::switchText(settings_.on));
    accept();
}

void Proxy::Command2_Click()
{
    reject();
}

} // namespace quarrynet
