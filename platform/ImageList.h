#pragma once

#include <QIcon>
#include <QList>
#include <QObject>

namespace quarrynet {

/// The pictures of a window's buttons, numbered from 1.
class ImageList final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ImageList)
    Q_PROPERTY(int count READ count)

public:
    using QObject::QObject;

    void add(const QIcon& image) { images_.append(image); }
    int count() const { return static_cast<int>(images_.size()); }

    /// Returns image `number`, 1 to count(), or a null icon for any other number.
    QIcon image(int number) const { return images_.value(number - 1); }

private:
    QList<QIcon> images_;
};

} // namespace quarrynet
