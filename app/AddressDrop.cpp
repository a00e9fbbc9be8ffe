#include "app/AddressDrop.h"

#include <utility>

#include <QApplication>
#include <QDropEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QUrl>

#include "common/link_file.h"
#include "platform/local_files.h"
#include "platform/message_boxes.h"
#include "platform/text_border.h"

namespace quarrynet {

namespace {

// A drop of very many files is not searched for the one that has an address.
constexpr qsizetype kMostUrls = 16;

QList<QUrl> urlsOf(const QMimeData& data)
{
    return data.urls().mid(0, kMostUrls);
}

std::optional<std::string> firstAddress(const QMimeData& data)
{
    for (const QUrl& url : urlsOf(data)) {
        if (auto address = checkableAddress(url.toEncoded().toStdString()))
            return address;
    }
    return data.hasUrls() ? std::nullopt : checkableAddress(toBytes(data.text().trimmed()));
}

// Returns the path of the first link file, or an empty text.
QString linkFile(const QMimeData& data)
{
    for (const QUrl& url : urlsOf(data)) {
        QString path = url.toLocalFile();
        // Windows would log on to the server of a share to read the file.
        if (!url.host().isEmpty() || path.startsWith(QLatin1String("//")))
            continue;
        if (isLinkFile(toPathBytes(path)))
            return path;
    }
    return {};
}

// Returns whether the pointer is still over the list that a dragged row belongs to: the user lets it go where it was.
bool isOverSource(const QObject& place, const QDropEvent& event)
{
    const auto* source = qobject_cast<const QWidget*>(event.source());
    const auto* target = qobject_cast<const QWidget*>(&place);
    return source && target && source->isVisible() &&
           source->rect().contains(source->mapFromGlobal(target->mapToGlobal(event.position().toPoint())));
}

// Sets the action that leaves the source as it is. Returns false if the source allows none.
bool choosesAction(QDropEvent& event)
{
    for (const Qt::DropAction action : {Qt::CopyAction, Qt::LinkAction}) {
        if (event.possibleActions().testFlag(action)) {
            event.setDropAction(action);
            return true;
        }
    }
    return false;
}

} // namespace

AddressDrop::AddressDrop(QWidget& window, const std::vector<QLineEdit*>& fields, const QLineEdit& addressField,
                         std::function<void(const std::string&)> take)
    : QObject(&window), window_(window), addressField_(addressField), take_(std::move(take))
{
    window.setAcceptDrops(true);
    window.installEventFilter(this);
    for (QLineEdit* field : fields)
        field->installEventFilter(this);
}

bool AddressDrop::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
        break;
    default:
        return QObject::eventFilter(watched, event);
    }
    // A dialog keeps keys and clicks from the window, but the toolkit does not keep drops from it.
    if (QApplication::activeModalWidget()) {
        event->ignore();
        return true;
    }
    auto& dropped = *static_cast<QDropEvent*>(event);
    if (!isWanted(*watched, dropped) || !choosesAction(dropped))
        return QObject::eventFilter(watched, event);
    // A drag begins over its source. If the window refused it there, the toolkit would not ask again in other places.
    dropped.setAccepted(event->type() == QEvent::DragEnter || !isOverSource(*watched, dropped));
    if (event->type() == QEvent::Drop && dropped.isAccepted())
        drop(dropped);
    return true;
}

bool AddressDrop::isWanted(const QObject& place, const QDropEvent& event) const
{
    if (event.source() == &place)
        return false; // text that moves within a field
    const QMimeData& data = *event.mimeData();
    if (!linkFile(data).isEmpty())
        return true;
    return (&place == &window_ || &place == &addressField_) && firstAddress(data);
}

void AddressDrop::drop(const QDropEvent& event)
{
    std::optional<std::string> address = firstAddress(*event.mimeData());
    const QString path = address ? QString() : linkFile(*event.mimeData());
    // The other program waits until the event is handled, and must not wait for a box or a file.
    const auto finish = [this, address, path] {
        std::optional<std::string> found = address;
        if (!found) {
            const std::optional<std::string> bytes = readSmallFile(path, kLongestLinkFile);
            const auto link = bytes ? addressInLinkFile(toPathBytes(path), *bytes) : std::nullopt;
            found = link ? checkableAddress(*link) : std::nullopt;
        }
        if (found)
            take_(*found);
        else
            showInformation(&window_, tr("There is no web address in this file:\n%1").arg(toLine(path)));
    };
    QMetaObject::invokeMethod(this, finish, Qt::QueuedConnection);
}

} // namespace quarrynet
