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
    /// Starts the program at a path, in the file system's encoding; false when that fails.
    using ProgramStarter = std::function<bool(const std::string&)>;

    /// `registry` has to outlive the dialog. `parent` is the window that the dialog belongs to, or none.
    frmAbout(const Registry& registry, ProgramStarter startProgram, QWidget* parent = nullptr);
    ~frmAbout() override;

    /// Starts the program that the registry names for system information, or says that there is none.
    void StartSysInfo();

    /// Reads one value of the registry as text, as registryValueText has it, into `KeyVal`, and gives true. A value
    /// that cannot be read empties `KeyVal` and gives false; one of a type without a text leaves `KeyVal` as it was.
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
