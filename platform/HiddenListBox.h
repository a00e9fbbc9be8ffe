#pragma once

#include <string>
#include <utility>
#include <vector>

#include <QObject>
#include <QStringList>

#include "common/cutting.h"

namespace quarrynet {

/// A list box that is never shown: a parser's working array with one field of each result, in page order.
class HiddenListBox final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(HiddenListBox)
    Q_PROPERTY(QStringList items READ itemsProperty WRITE setItemsProperty)

public:
    HiddenListBox(const QString& name, QObject* parent);

    /// Returns the entries, as bytes.
    const std::vector<std::string>& items() const { return items_; }
    void setItems(std::vector<std::string> items) { items_ = std::move(items); }
    /// Stores positions as decimal entries, and reads them back. An entry that is not a number reads as 0.
    void setPositions(const std::vector<Position>& positions);
    std::vector<Position> positions() const;
    void clear() { items_.clear(); }

private:
    QStringList itemsProperty() const;
    void setItemsProperty(const QStringList& items);

    std::vector<std::string> items_;
};

} // namespace quarrynet
