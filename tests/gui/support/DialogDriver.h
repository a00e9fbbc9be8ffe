#pragma once

#include <functional>

#include <QDialog>
#include <QObject>
#include <QStringList>

/// Operates the next dialogs as the user would: runs `work` while a dialog is open, and then closes it if `work` left
/// it open, so that no test waits for it. BoxWatcher handles message boxes.
class DialogDriver final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DialogDriver)

public:
    explicit DialogDriver(std::function<void(QDialog&)> work);

    /// Names of the dialogs that were shown.
    const QStringList& seen() const { return seen_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    std::function<void(QDialog&)> work_;
    QStringList seen_;
};
