#pragma once

#include <functional>
#include <optional>

#include <QMessageBox>
#include <QObject>

/// Closes every message box with its OK button as soon as it is shown, and records its contents.
class BoxWatcher final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(BoxWatcher)

public:
    struct Box
    {
        QString title;
        QString text;
        QMessageBox::Icon icon;
    };

    BoxWatcher();

    const QList<Box>& boxes() const { return boxes_; }
    QStringList texts() const;
    void forget() { boxes_.clear(); }

    /// Runs while the next boxes are open, before they are closed.
    std::function<void(QMessageBox&)> beforeAnswer;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QList<Box> boxes_;
};
