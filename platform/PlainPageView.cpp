#include "platform/PlainPageView.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <utility>

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

#include "common/local_pages.h"
#include "platform/text_border.h"
#include "platform/view_keys.h"

namespace quarrynet {

namespace {

// Larger pictures are made smaller: the page is a gallery of thumbnails, and a hostile one could fill the memory.
constexpr int kMaxPictureSide = 1024;

std::optional<QByteArray> contentOf(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return file.readAll();
}

// The program's own page that the first frame of a frame page shows.
std::optional<std::string_view> framedPage(const QByteArray& page)
{
    const qsizetype frame = page.indexOf("<frame ");
    if (frame < 0)
        return std::nullopt;
    constexpr std::array<std::string_view, 2> kPages = {kBlankPageName, kGalleryPageName};
    const auto found = std::find_if(kPages.begin(), kPages.end(), [&page, frame](std::string_view name) {
        return page.indexOf(QByteArray("src=").append(name.data(), static_cast<qsizetype>(name.size())) + '>', frame) >=
               0;
    });
    return found == kPages.end() ? std::nullopt : std::optional(*found);
}

// The time to lay a paragraph out grows with the square of its longest word: a caption of a megabyte would stop the
// window.
constexpr int kMaxParagraph = 4000;

void shortenParagraphs(QTextDocument& document)
{
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        if (block.length() <= kMaxParagraph)
            continue;
        QTextCursor cursor(block);
        cursor.setPosition(block.position() + kMaxParagraph);
        cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
        cursor.removeSelectedText();
    }
}

} // namespace

PlainPageView::PlainPageView(PageViewHost host, QWidget* parent) : QTextBrowser(parent), host_(std::move(host))
{
    setOpenLinks(false);
    setContextMenuPolicy(Qt::NoContextMenu);
    setAcceptDrops(false);
    setUndoRedoEnabled(false);
    connect(this, &QTextBrowser::anchorClicked, this,
            [this](const QUrl& address) { host_.linkActivated(address.toEncoded()); });
}

void PlainPageView::showPage(const QString& path)
{
    QByteArray page = contentOf(path).value_or(QByteArray());
    if (const std::optional<std::string_view> name = framedPage(page)) {
        const QString framed = QFileInfo(path).absolutePath() + QLatin1Char('/') +
                               QString::fromLatin1(name->data(), static_cast<qsizetype>(name->size()));
        page = contentOf(framed).value_or(QByteArray());
    }
    fetches_ = std::make_unique<QObject>();
    // A document of its own, which also drops the pictures of the page before; shortened before anything lays it out.
    auto* document = new QTextDocument(this);
    document->setUndoRedoEnabled(false);
    document->setDefaultFont(font());
    document->setHtml(toText({page.constData(), static_cast<std::size_t>(page.size())}));
    shortenParagraphs(*document);
    setDocument(document);
    delete std::exchange(shown_, document);
}

QVariant PlainPageView::loadResource(int type, const QUrl& name)
{
    if (type != QTextDocument::ImageResource)
        return {};
    // A picture until its own is there, and for what the net has none of: without any, the document would look for a
    // file of that name. It is kept in the document, so that it is asked for once.
    QPixmap none(1, 1);
    none.fill(Qt::transparent);
    document()->addResource(QTextDocument::ImageResource, name, none);
    if (fetches_)
        host_.pictures.fetch(name, fetches_.get(),
                             [this, name](const Picture& picture) { showPicture(name, picture); });
    return none;
}

void PlainPageView::showPicture(const QUrl& name, const Picture& picture)
{
    QByteArray bytes = picture.bytes;
    QBuffer buffer(&bytes);
    QImageReader reader(&buffer);
    const QSize size = reader.size();
    if (size.width() > kMaxPictureSide || size.height() > kMaxPictureSide)
        reader.setScaledSize(size.scaled(kMaxPictureSide, kMaxPictureSide, Qt::KeepAspectRatio));
    const QImage image = reader.read();
    if (image.isNull())
        return;
    document()->addResource(QTextDocument::ImageResource, name, QPixmap::fromImage(image));
    document()->markContentsDirty(0, document()->characterCount());
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
