#include "platform/HiddenListBox.h"

#include <charconv>

#include "platform/text_border.h"

namespace quarrynet {

HiddenListBox::HiddenListBox(const QString& name, QObject* parent) : QObject(parent)
{
    setObjectName(name);
}

void HiddenListBox::setPositions(const std::vector<Position>& positions)
{
    items_.clear();
    items_.reserve(positions.size());
    for (const Position position : positions)
        items_.push_back(std::to_string(position));
}

std::vector<Position> HiddenListBox::positions() const
{
    std::vector<Position> positions(items_.size());
    for (std::size_t i = 0; i < items_.size(); ++i)
        std::from_chars(items_[i].data(), items_[i].data() + items_[i].size(), positions[i]);
    return positions;
}

QStringList HiddenListBox::itemsProperty() const
{
    QStringList items;
    items.reserve(static_cast<qsizetype>(items_.size()));
    for (const std::string& item : items_)
        items.append(toText(item));
    return items;
}

void HiddenListBox::setItemsProperty(const QStringList& items)
{
    items_.clear();
    for (const QString& item : items)
        items_.push_back(toBytes(item));
}

} // namespace quarrynet
