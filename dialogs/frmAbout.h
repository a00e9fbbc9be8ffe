#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include <QDialog>

#include "platform/Registry.h"

namespace Ui {
class frmAbout;
}

namespace quarrynet {

/// The About box, with a button that starts the system's own information program.
class frmAbout final : public QDialog
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(frmAbout)

public:
    /// Starts the program at a path, in the file system's encoding. Returns false on failure.
    using ProgramStarter = std::function<bool(const std::string&)>;

    /// `registry` must outlive the dialog. `parent` is the window that the dialog belongs to, or null.
    frmAbout(const Registry& registry, ProgramStarter startProgram, QWidget* parent = nullptr);
    ~frmAbout() override;

    /// Starts the program that the registry names for system information, or reports that none could be started.
    void StartSysInfo();

    /// Reads a registry value into `KeyVal`, as registryValueText converts it, and returns true. If the value cannot be
    /// read, empties `KeyVal` and returns false. A value whose type has no text leaves `KeyVal` unchanged.
    bool GetKeyValue(std::uint32_t KeyRoot, const std::string& KeyName, const std::string& SubKeyRef,
                     std::string& KeyVal) const;

private:
    void cmdOK_Click();
    void cmdSysInfo_Click();

    std::unique_ptr<Ui::frmAbout> ui_;
    const Registry& registry_;
    ProgramStarter startProgram_;
};

} // namespace quarrynet
