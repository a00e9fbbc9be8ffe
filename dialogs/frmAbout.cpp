#include "dialogs/frmAbout.h"

#include <optional>
#include <utility>

#include <QFile>
#include <QMessageBox>

#include "dialogs/registry_value.h"
#include "icons/icons.h"
#include "platform/text_border.h"
#include "ui_frmAbout.h"

namespace quarrynet {

namespace {

constexpr const char* kInfoKey = "SOFTWARE\\Microsoft\\Shared Tools\\MSINFO";
constexpr const char* kInfoValue = "PATH";
constexpr const char* kFolderKey = "SOFTWARE\\Microsoft\\Shared Tools Location";
constexpr const char* kFolderValue = "MSINFO";
constexpr const char* kInfoFile = "\\MSINFO32.EXE";

} // namespace

frmAbout::frmAbout(const Registry& registry, ProgramStarter startProgram, QWidget* parent)
    : QDialog(parent)
    , ui_(std::make_unique<Ui::frmAbout>())
    , registry_(registry)
    , startProgram_(std::move(startProgram))
{
    ui_->setupUi(this);
    ui_->Image1->setPixmap(picture(QStringLiteral("quarrynet"), QSize(64, 64), devicePixelRatioF()));
    ui_->Image2->setPixmap(picture(QStringLiteral("terraces"), QSize(320, 96), devicePixelRatioF()));
    QFont title = ui_->lblTitle->font();
    title.setPointSizeF(title.pointSizeF() * 1.8);
    title.setBold(true);
    ui_->lblTitle->setFont(title);

    connect(ui_->cmdOK, &QPushButton::clicked, this, &frmAbout::cmdOK_Click);
    connect(ui_->cmdSysInfo, &QPushButton::clicked, this, &frmAbout::cmdSysInfo_Click);
}

frmAbout::~frmAbout() = default;

void frmAbout::cmdOK_Click()
{
    accept();
}

void frmAbout::cmdSysInfo_Click()
{
    StartSysInfo();
}

void frmAbout::StartSysInfo()
{
    std::string path;
    bool started = false;
    if (GetKeyValue(Registry::kLocalMachine, kInfoKey, kInfoValue, path)) {
        started = startProgram_(path);
    } else if (GetKeyValue(Registry::kLocalMachine, kFolderKey, kFolderValue, path)) {
        path += kInfoFile;
        started = QFile::exists(toText(path)) && startProgram_(path);
    }
    if (!started) {
        QMessageBox box(QMessageBox::NoIcon, QStringLiteral("Quarrynet"),
                        QStringLiteral("System Information Is Unavailable At This Time"), QMessageBox::Ok, this);
        box.exec();
    }
}

bool frmAbout::GetKeyValue(std::uint32_t KeyRoot, const std::string& KeyName, const std::string& SubKeyRef,
                           std::string& KeyVal) const
{
    const std::optional<RegistryValue> value = registry_.query(KeyRoot, KeyName, SubKeyRef);
    if (!value) {
        KeyVal.clear();
        return false;
    }
    const std::string_view trimmed = trimmedRegistryValue(value->bytes, value->bytes.size());
    if (std::optional<std::string> text = registryValueText(value->type, trimmed))
        KeyVal = std::move(*text);
    return true;
}

} // namespace quarrynet
