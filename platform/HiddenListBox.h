#pragma once

#include <string>
#include <utility>
#include <vector>

#include <QObject>
#include <QStringList>

#include "common/cutting.h"

namespace quarrynet {

/// A list box that nobody sees: a parser's working array, one field of every result in page order.
class HiddenListBox final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(HiddenListBox)
    Q_PROPERTY(QStringList items READ itemsProperty WRITE setItemsProperty)

public:
    HiddenListBox(const QString& name, QObject* parent);

    /// The entries, as bytes.
    const std::vector<std::string>& items() const { return items_; }
    void setItems(std::vector<std::string> items) { items_ = std::move(items); }
    /// Positions as entries, in decimal. An entry that is no number reads as 0.
    void setPositions(const std::vector<Position>& positions);
    std::vector<Position> positions() const;
    void clear() { items_.clear(); }

private:
    QStringList itemsProperty() const;
    void setItemsProperty(const QStringList& items);

    std::vector<std::string> items_;
};

} // namespace quarrynet
