#pragma once

#include <QHeaderView>

namespace quarrynet {

/// The captions of a list view, with room for another line between them and the rows.
class ListHeader final : public QHeaderView
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ListHeader)

public:
    explicit ListHeader(QWidget* parent);

    /// Sets the height of that room in pixels. The list places its rows below it at its next layout.
    void setRoomBelow(int height);

    /// Returns where that room is, in the header's coordinates.
    QRect roomBelow() const;

private:
    int room_ = 0;
};

} // namespace quarrynet
