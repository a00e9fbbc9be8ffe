#pragma once

#include <memory>

#include <QDialog>

namespace Ui {
class Dialog;
}

namespace quarrynet {

/// The box that is shown while a download's address is being found out. Only code closes it, by unload(): a person who
/// closed it would wait for nothing, or think that the search was over.
class Dialog final : public QDialog
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Dialog)

public:
    explicit Dialog(QWidget* parent = nullptr);
    ~Dialog() override;

    /// Shows the box, or brings it to the front when it is shown already, without waiting for it.
    void load();

    /// Hides the box; nothing when it is hidden already.
    void unload();

    /// What Escape runs. Does nothing.
    void reject() override;

protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    std::unique_ptr<Ui::Dialog> ui_;
};

} // namespace quarrynet
