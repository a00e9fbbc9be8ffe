#pragma once

#include <memory>

#include <QDialog>

namespace Ui {
class Dialog;
}

namespace quarrynet {

/// The wait box that is shown while a download's address is resolved. Only code closes it, with unload(): a user who
/// could close it might think that the search had ended.
class Dialog final : public QDialog
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Dialog)

public:
    explicit Dialog(QWidget* parent = nullptr);
    ~Dialog() override;

    /// Shows the box, or brings it to the front if it is already shown. Does not wait for it to close.
    void load();

    /// Hides the box. Does nothing if it is already hidden.
    void unload();

    /// Does nothing, so that Escape does not close the box.
    void reject() override;

protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    std::unique_ptr<Ui::Dialog> ui_;
};

} // namespace quarrynet
