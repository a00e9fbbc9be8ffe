#include "platform/HiddenText.h"

#include <utility>

namespace quarrynet {

HiddenText::HiddenText(const QString& name, QObject* parent) : QObject(parent)
{
    setObjectName(name);
}

void HiddenText::setText(std::string_view text)
{
    if (text != text_)
        takeText(std::string(text)); // not assign(): that would keep the memory of the largest page ever held
}

void HiddenText::takeText(std::string text)
{
    if (text == text_)
        return;
    text_ = std::move(text);
    emit changed();
}

void HiddenText::setTextProperty(const QByteArray& text)
{
    setText(std::string_view(text.constData(), static_cast<std::size_t>(text.size())));
}

} // namespace quarrynet
