#include "platform/PlainPageView.h"

#include <algorithm>
#include <utility>

#include <QBuffer>
#include <QHelpEvent>
#include <QImageReader>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextImageFormat>
#include <QToolTip>

#include "platform/GalleryLayout.h"
#include "platform/text_border.h"

namespace quarrynet {

namespace {

// Larger pictures are scaled down: they are thumbnails, and all of them together have to fit into memory.
constexpr int kMaxPictureSide = 512;

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

// Returns a tool tip that shows `address` and `note` and nothing else: without its tags, an address could be read as
// HTML.
QString tipOf(const QString& address, const QString& note)
{
    QStringList lines;
    const QString shown = address.left(PageLook::kTipLength);
    for (qsizetype from = 0; from < shown.size(); from += PageLook::kTipLine)
        lines.append(shown.mid(from, PageLook::kTipLine).toHtmlEscaped());
    if (!note.isEmpty())
        lines.append(note.toHtmlEscaped());
    return QStringLiteral("<p style='white-space:pre'>") + lines.join(QStringLiteral("<br>")) + QStringLiteral("</p>");
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
    connect(this, &QTextBrowser::selectionChanged, this, &PlainPageView::follow);
}

void PlainPageView::showPage(const QString& /*path*/, const std::vector<GalleryPicture>& pictures)
{
    fetches_ = std::make_unique<QObject>();
    links_.clear();
    // A new document also discards the pictures of the last gallery.
    auto* document = new QTextDocument(this);
    document->setUndoRedoEnabled(false);
    document->setDefaultFont(zoomedFont());
    QTextCursor cursor(document);
    const std::size_t shown = std::min(pictures.size(), static_cast<std::size_t>(kMaxPagePictures));
    for (std::size_t i = 0; i < shown; ++i) {
        const std::string address = "http://" + readAmpersands(pictures[i].address);
        links_.push_back(QByteArray::fromStdString(address));
        QTextCharFormat link;
        link.setAnchor(true);
        link.setAnchorHref(QString::number(i));
        link.setToolTip(tipOf(toLine(address), pictures[i].note));
        QTextImageFormat image;
        image.merge(link);
        image.setName(pictureName(i).toString());
        if (i > 0)
            cursor.insertBlock();
        cursor.insertImage(image);
        cursor.insertText(QChar(QChar::LineSeparator) + toLine(address), link);
    }
    layout_ = new GalleryLayout(document, look_);
    document->setDocumentLayout(layout_);
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
    if (image.isNull()) {
        layout_->setMissing(static_cast<int>(number));
        return;
    }
    document()->addResource(QTextDocument::ImageResource, pictureName(number), QPixmap::fromImage(image));
    document()->markContentsDirty(0, document()->characterCount());
}

QFont PlainPageView::zoomedFont() const
{
    QFont zoomed = look_.font;
    zoomed.setPointSizeF(QFontInfo(look_.font).pointSizeF() * look_.zoom);
    return zoomed;
}

void PlainPageView::setLook(const PageLook& look)
{
    if (look == look_)
        return;
    look_ = look;
    viewport()->update();
    if (!layout_)
        return;
    document()->setDefaultFont(zoomedFont());
    layout_->setLook(look_);
}

// Makes the picture current that Tab or an arrow key selected as a whole.
void PlainPageView::follow()
{
    if (!layout_)
        return;
    const QTextCursor cursor = textCursor();
    const QTextBlock block = document()->findBlock(cursor.selectionStart());
    const bool whole = cursor.hasSelection() && cursor.selectionStart() == block.position() &&
                       cursor.selectionEnd() == block.position() + block.length() - 1;
    layout_->setCurrent(whole ? block.blockNumber() : -1);
}

void PlainPageView::moveTo(int number)
{
    const QTextBlock block = document()->findBlockByNumber(number);
    QTextCursor cursor(block);
    cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
    setTextCursor(cursor);
    const QRectF place = layout_->blockBoundingRect(block);
    QScrollBar* bar = verticalScrollBar();
    const int top = static_cast<int>(place.top()) - PageLook::kGap;
    const int bottom = static_cast<int>(place.bottom()) + PageLook::kGap;
    bar->setValue(std::min(std::max(bar->value(), bottom - viewport()->height()), top));
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
    if (event->type() == QEvent::ShortcutOverride) {
        const auto& key = *static_cast<QKeyEvent*>(event);
        if (leadsAway(key) || zoomOf(key)) {
            event->accept();
            return true;
        }
    }
    return QTextBrowser::event(event);
}

bool PlainPageView::viewportEvent(QEvent* event)
{
    // The toolkit would show the tip of the nearest link.
    if (event->type() == QEvent::ToolTip && anchorAt(static_cast<QHelpEvent*>(event)->pos()).isEmpty()) {
        QToolTip::hideText();
        return true;
    }
    return QTextBrowser::viewportEvent(event);
}

void PlainPageView::keyPressEvent(QKeyEvent* event)
{
    if (leadsAway(*event) || event->key() == Qt::Key_Backspace)
        return;
    if (const std::optional<Zoom> zoom = zoomOf(*event)) {
        host_.zoomed(*zoom);
        return;
    }
    const bool plain = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    const int next = plain && layout_ ? layout_->neighbor(event->key()) : -1;
    if (next >= 0)
        moveTo(next);
    else
        QTextBrowser::keyPressEvent(event);
}

void PlainPageView::wheelEvent(QWheelEvent* event)
{
    if (!wheel_.take(*event, [this](Zoom zoom) { host_.zoomed(zoom); }))
        QTextBrowser::wheelEvent(event);
}

bool PlainPageView::focusNextPrevChild(bool next)
{
    const bool stays = QTextBrowser::focusNextPrevChild(next);
    follow(); // Tab selects a link without a signal
    return stays;
}

} // namespace quarrynet
