#include "platform/PlainPageView.h"

#include <algorithm>
#include <utility>

#include <QBuffer>
#include <QImageReader>
#include <QTextBlockFormat>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextImageFormat>

#include "platform/text_border.h"
#include "platform/view_keys.h"

namespace quarrynet {

namespace {

// Larger pictures are scaled down: they are thumbnails, and all of them together have to fit into memory.
constexpr int kMaxPictureSide = 512;

constexpr int kMargin = 12; // below each picture, in pixels

// Returns the name of a picture in the document. A link's address is the picture's number.
QUrl pictureName(std::size_t number)
{
    return {QStringLiteral("picture:%1").arg(number)};
}

// Returns `written` with each "&amp;" decoded to "&", as a browser does it.
std::string readAmpersands(std::string_view written)
{
    constexpr std::string_view kWritten = "&amp;";
    std::string text;
    text.reserve(written.size());
    for (std::size_t from = 0; from < written.size();) {
        const std::size_t at = std::min(written.find(kWritten, from), written.size());
        text.append(written.substr(from, at - from));
        if (at < written.size())
            text.push_back('&');
        from = at + kWritten.size();
    }
    return text;
}

QImage decoded(const Picture& picture)
{
    QByteArray bytes = picture.bytes;
    QBuffer buffer(&bytes);
    // "image/png" is the reader's "png". It must not detect the format itself, because some formats that it reads are
    // drawings that load other files.
    QImageReader reader(&buffer, picture.type.mid(picture.type.indexOf('/') + 1));
    reader.setAutoDetectImageFormat(false);
    reader.setDecideFormatFromContent(false);
    const QSize largest(kMaxPictureSide, kMaxPictureSide);
    const bool large = picture.size.width() > largest.width() || picture.size.height() > largest.height();
    if (large)
        reader.setScaledSize(picture.size.scaled(largest, Qt::KeepAspectRatio).expandedTo({1, 1}));
    QImage image = reader.read();
    if (image.width() > largest.width() || image.height() > largest.height())
        return image.scaled(largest, Qt::KeepAspectRatio);
    return image;
}

} // namespace

PlainPageView::PlainPageView(PageViewHost host, QWidget* parent) : QTextBrowser(parent), host_(std::move(host))
{
    setOpenLinks(false);
    setContextMenuPolicy(Qt::NoContextMenu);
    setAcceptDrops(false);
    setUndoRedoEnabled(false);
    connect(this, &QTextBrowser::anchorClicked, this, &PlainPageView::activate);
}

void PlainPageView::showPage(const QString& /*path*/, const std::vector<GalleryPicture>& pictures)
{
    fetches_ = std::make_unique<QObject>();
    links_.clear();
    // A new document also discards the pictures of the last gallery.
    auto* document = new QTextDocument(this);
    document->setUndoRedoEnabled(false);
    document->setDefaultFont(font());

    QTextBlockFormat paragraph;
    paragraph.setAlignment(Qt::AlignHCenter);
    paragraph.setBottomMargin(kMargin);
    QTextCursor cursor(document);
    const std::size_t shown = std::min(pictures.size(), static_cast<std::size_t>(kMaxPagePictures));
    for (std::size_t i = 0; i < shown; ++i) {
        const std::string address = "http://" + readAmpersands(pictures[i].address);
        links_.push_back(QByteArray::fromStdString(address));
        QTextCharFormat link;
        link.setAnchor(true);
        link.setAnchorHref(QString::number(i));
        link.setForeground(palette().link());
        link.setFontUnderline(true);
        QTextImageFormat image;
        image.merge(link);
        image.setName(pictureName(i).toString());
        if (i == 0)
            cursor.setBlockFormat(paragraph);
        else
            cursor.insertBlock(paragraph);
        cursor.insertImage(image);
        cursor.insertText(QChar(QChar::LineSeparator) + toLine(address), link);
    }
    setDocument(document);
    delete std::exchange(shown_, document);

    for (std::size_t i = 0; i < shown; ++i) {
        const QUrl thumbnail(toText(readAmpersands(pictures[i].thumbnail)));
        host_.pictures.fetch(thumbnail, fetches_.get(), [this, i](const Picture& picture) { showPicture(i, picture); });
    }
}

QVariant PlainPageView::loadResource(int type, const QUrl& /*name*/)
{
    if (type != QTextDocument::ImageResource)
        return {};
    // A placeholder until the picture arrives. Without it, the document would look for a file of that name.
    QPixmap none(1, 1);
    none.fill(Qt::transparent);
    return none;
}

void PlainPageView::showPicture(std::size_t number, const Picture& picture)
{
    const QImage image = picture.bytes.isEmpty() ? QImage() : decoded(picture);
    if (image.isNull())
        return;
    document()->addResource(QTextDocument::ImageResource, pictureName(number), QPixmap::fromImage(image));
    document()->markContentsDirty(0, document()->characterCount());
}

void PlainPageView::activate(const QUrl& link)
{
    bool isNumber = false;
    const std::size_t number = link.toString().toULongLong(&isNumber);
    if (isNumber && number < links_.size())
        host_.linkActivated(links_[number]);
}

bool PlainPageView::event(QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride && leadsAway(*static_cast<QKeyEvent*>(event))) {
        event->accept();
        return true;
    }
    return QTextBrowser::event(event);
}

void PlainPageView::keyPressEvent(QKeyEvent* event)
{
    if (!leadsAway(*event) && event->key() != Qt::Key_Backspace)
        QTextBrowser::keyPressEvent(event);
}

} // namespace quarrynet
