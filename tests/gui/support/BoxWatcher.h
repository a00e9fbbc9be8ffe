#pragma once

#include <functional>
#include <optional>

#include <QMessageBox>
#include <QObject>

/// Answers every message box with its OK button as soon as it is shown, and keeps what it said.
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

    /// Runs before the next boxes are answered, while they are open.
    std::function<void(QMessageBox&)> beforeAnswer;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QList<Box> boxes_;
};
