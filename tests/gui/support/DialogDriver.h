#pragma once

#include <functional>

#include <QDialog>
#include <QObject>
#include <QStringList>

/// Does to the next dialogs what a person would: as soon as one is shown, `work` runs while it is open. A dialog that
/// `work` leaves open is closed behind it, so that no test waits for one. Message boxes are the BoxWatcher's.
class DialogDriver final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DialogDriver)

public:
    explicit DialogDriver(std::function<void(QDialog&)> work);

    /// Names of the dialogs that came up.
    const QStringList& seen() const { return seen_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    std::function<void(QDialog&)> work_;
    QStringList seen_;
};
