#pragma once

#include <string>
#include <string_view>

#include <QByteArray>
#include <QObject>

namespace quarrynet {

/// A text field that is never shown. It keeps raw bytes and does not change line ends.
///
/// setText emits the change signal before it returns, and only if the text really changes.
class HiddenText final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(HiddenText)
    Q_PROPERTY(QByteArray text READ textProperty WRITE setTextProperty NOTIFY changed)

public:
    HiddenText(const QString& name, QObject* parent);

    const std::string& text() const { return text_; }
    void setText(std::string_view text);
    /// Does the same without a copy, for large texts that the caller no longer needs.
    void takeText(std::string text);

signals:
    void changed();

private:
    QByteArray textProperty() const { return QByteArray::fromStdString(text_); }
    void setTextProperty(const QByteArray& text);

    std::string text_;
};

} // namespace quarrynet
