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

/// The proxy options. Only the settings file stores them: the constructor reads them, and OK writes them and then sets
/// the proxy switch, whose handler reads the file again.
class Proxy final : public QDialog
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Proxy)

public:
    /// Takes "on" or "off".
    using SwitchSetter = std::function<void(const std::string&)>;

    /// `settingsPath` is the path of the settings file, in the file system's encoding; it need not exist.
    /// `setProxySwitch` runs on every accepted OK, after the file was written, while the dialog is still open.
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
