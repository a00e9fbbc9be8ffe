#pragma once

#include <functional>
#include <memory>
#include <string>

#include <QDialog>

#include "common/ProxySettings.h"

class QLineEdit;

namespace Ui {
class Proxy;
}

namespace quarrynet {

/// The proxy options. They are in the settings file only: the dialog reads them when it is made, and OK writes them and
/// then says which way the switch stands, so that whoever uses them reads the file again.
class Proxy final : public QDialog
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Proxy)

public:
    /// Takes "on" or "off".
    using SwitchSetter = std::function<void(const std::string&)>;

    /// `settingsPath`: the settings file, in the file system's encoding; it need not exist. `setProxySwitch` runs on
    /// every OK that is carried out, after the file was written, while the dialog is still open.
    Proxy(const std::string& settingsPath, SwitchSetter setProxySwitch, QWidget* parent = nullptr);
    ~Proxy() override;

private:
    void Form_Load();
    void Check1_Click();
    void Command1_Click();
    void Command2_Click();

    void showHostAndPort();

    std::unique_ptr<Ui::Proxy> ui_;
    ProxySettings settings_;
    SwitchSetter setProxySwitch_;
};

} // namespace quarrynet
