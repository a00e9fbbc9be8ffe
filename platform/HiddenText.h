#pragma once

#include <string>
#include <string_view>

#include <QByteArray>
#include <QObject>

namespace quarrynet {

/// A text field that nobody sees: raw bytes, no copy made to show them, no line ends rewritten.
///
/// The change signal runs its receivers at once, inside setText, and only when the text really changes.
class HiddenText final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(HiddenText)
    Q_PROPERTY(QByteArray text READ textProperty WRITE setTextProperty NOTIFY changed)

public:
    HiddenText(const QString& name, QObject* parent);

    const std::string& text() const { return text_; }
    void setText(std::string_view text);
    /// The same without a copy, for megabytes that nobody else needs.
    void takeText(std::string text);

signals:
    void changed();

private:
    QByteArray textProperty() const { return QByteArray::fromStdString(text_); }
    void setTextProperty(const QByteArray& text);

    std::string text_;
};

} // namespace quarrynet
