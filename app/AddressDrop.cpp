#include "app/AddressDrop.h"

#include <utility>

#include <QApplication>
#include <QDir>
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
constexpr int kMostUrls = 16;

// No address is longer (see openableAddress), nor is the path of a file; in bytes.
constexpr qsizetype kLongestAddress = 64 * 1024;

// The data come from any program and have any size, so they are measured and cut before they are decoded.
QList<QUrl> urlsOf(const QMimeData& data)
{
    const QByteArray list = data.data(QStringLiteral("text/uri-list"));
    QList<QUrl> urls;
    for (qsizetype start = 0; start < list.size() && urls.size() < kMostUrls;) {
        const qsizetype found = list.indexOf('\n', start);
        const qsizetype end = found < 0 ? list.size() : found;
        const QByteArray line = list.mid(start, qMin(end - start, kLongestAddress + 1)).trimmed();
        if (!line.isEmpty() && line.size() <= kLongestAddress)
            urls.append(QUrl::fromEncoded(line));
        start = end + 1;
    }
    return urls;
}

// Returns the text, or an empty one if it is too long for an address.
QString textOf(const QMimeData& data)
{
    for (const QString& format : {QStringLiteral("text/plain;charset=utf-8"), QStringLiteral("text/plain")}) {
        if (data.data(format).size() > kLongestAddress)
            return {};
    }
    return data.text();
}

std::optional<std::string> firstAddress(const QMimeData& data, const QList<QUrl>& urls)
{
    for (const QUrl& url : urls) {
        if (auto address = checkableAddress(url.toEncoded().toStdString()))
            return address;
    }
    return data.hasUrls() ? std::nullopt : checkableAddress(toBytes(textOf(data).trimmed()));
}

// Returns whether the path is one of this computer. Windows would log on to the server of a share to read a file there,
// and has many spellings of a share, such as "/\host/share" and "/??/UNC/host/share": there, only paths on a drive
// count.
bool isOnThisComputer(const QString& path)
{
#ifdef Q_OS_WIN
    const QString plain = QDir::fromNativeSeparators(path);
    return plain.size() > 2 && plain[0].isLetter() && QStringView(plain).mid(1, 2) == QLatin1String(":/");
#else
    return !path.startsWith(QLatin1String("//"));
#endif
}

// Returns the path of the first link file, or an empty text.
QString firstLinkFile(const QList<QUrl>& urls)
{
    for (const QUrl& url : urls) {
        QString path = url.toLocalFile();
        if (url.host().isEmpty() && isOnThisComputer(path) && isLinkFile(toPathBytes(path)))
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
    case QEvent::DragLeave:
        offer_.reset();
        [[fallthrough]];
    default:
        return QObject::eventFilter(watched, event);
    }
    // A dialog keeps keys and clicks from the window, but the toolkit does not keep drops from it.
    if (QApplication::activeModalWidget()) {
        event->ignore();
        return true;
    }
    auto& dropped = *static_cast<QDropEvent*>(event);
    // Another program would have to send the data again each time that the mouse moves.
    if (event->type() == QEvent::DragEnter || !offer_) {
        const QList<QUrl> urls = urlsOf(*dropped.mimeData());
        offer_ = Offer{firstAddress(*dropped.mimeData(), urls), firstLinkFile(urls)};
    }
    const Offer offer = *offer_;
    if (event->type() == QEvent::Drop)
        offer_.reset();
    if (!isWanted(*watched, dropped, offer) || !choosesAction(dropped))
        return QObject::eventFilter(watched, event);
    // A drag begins over its source. If the window refused it there, the toolkit would not ask again in other places.
    dropped.setAccepted(event->type() == QEvent::DragEnter || !isOverSource(*watched, dropped));
    if (event->type() == QEvent::Drop && dropped.isAccepted())
        drop(offer);
    return true;
}

bool AddressDrop::isWanted(const QObject& place, const QDropEvent& event, const Offer& offer) const
{
    if (event.source() == &place)
        return false; // text that moves within a field
    if (!offer.linkFile.isEmpty())
        return true;
    return (&place == &window_ || &place == &addressField_) && offer.address;
}

void AddressDrop::drop(const Offer& offer)
{
    const std::optional<std::string> address = offer.address;
    const QString path = address ? QString() : offer.linkFile;
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
