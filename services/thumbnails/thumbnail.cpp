#include "thumbnails/thumbnail.h"

#include <algorithm>
#include <optional>

#include <QBuffer>
#include <QFont>
#include <QFontDatabase>
#include <QImage>
#include <QImageReader>
#include <QRawFont>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace quarrynet::services {

namespace {

constexpr int kSide = 120;
constexpr qint64 kMaxPixels = 100'000'000;
constexpr int kMaxElements = 200'000;
constexpr int kMaxDepth = 200; // rendering recurses as deep as the elements are nested
constexpr int kJpegQuality = 85;
constexpr int kMaxFontFamilies = 32;

const char* readerName(PictureFormat format)
{
    switch (format) {
    case PictureFormat::Png:
        return "png";
    case PictureFormat::Jpeg:
        return "jpeg";
    case PictureFormat::Gif:
        return "gif";
    case PictureFormat::WebP:
        return "webp";
    case PictureFormat::Svg:
        return "svg";
    }
    return "";
}

QSize fitted(QSize size)
{
    return size.scaled(kSide, kSide, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
}

/// Returns whether the SVG reader will read `address` as an embedded raster picture. It takes the bytes after the last
/// "base64," and detects their format itself.
bool isOwnRasterPicture(QStringView address)
{
    constexpr QLatin1String kCode("base64,");
    const qsizetype code = address.indexOf(kCode);
    if (!address.startsWith(QLatin1String("data:")) || code < 0 || address.lastIndexOf(kCode) != code)
        return false;
    const QByteArray content = QByteArray::fromBase64(address.mid(code + kCode.size()).toLatin1());
    const std::optional<PictureFormat> format =
        pictureFormat({content.constData(), static_cast<std::size_t>(content.size())});
    return format && *format != PictureFormat::Svg;
}

/// Returns whether the element shows an external picture, or another drawing.
bool leadsOutside(const QXmlStreamReader& reader)
{
    if (reader.name().compare(QLatin1String("image"), Qt::CaseInsensitive) != 0)
        return false;
    const QXmlStreamAttributes attributes = reader.attributes();
    return std::any_of(attributes.begin(), attributes.end(), [](const QXmlStreamAttribute& attribute) {
        return attribute.name().compare(QLatin1String("href"), Qt::CaseInsensitive) == 0 &&
               !isOwnRasterPicture(attribute.value());
    });
}

QImage readPicture(PictureFormat format, const QByteArray& content)
{
    const QByteArray bytes = format == PictureFormat::Svg ? selfContainedSvg(content) : content;
    if (bytes.isEmpty())
        return {};
    QBuffer buffer;
    buffer.setData(bytes);
    QImageReader reader(&buffer, readerName(format));
    reader.setAutoDetectImageFormat(false);
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (!size.isEmpty()) {
        if (qint64{size.width()} * size.height() > kMaxPixels && format != PictureFormat::Svg)
            return {};
        if (format == PictureFormat::Svg || size.width() > kSide || size.height() > kSide)
            reader.setScaledSize(fitted(size));
    }
    QImage image = reader.read();
    // The size of some pictures is known only after reading them.
    if (image.width() > kSide || image.height() > kSide)
        image = image.scaled(fitted(image.size()), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    return image;
}

} // namespace

void loadPictureReaders()
{
    (void)QImageReader::supportedImageFormats(); // loads all of them
    // A font file stays open as long as the font is in use.
    static QList<QRawFont> fonts;
    QStringList families = QFontDatabase::families().mid(0, kMaxFontFamilies);
    families += {QStringLiteral("Sans Serif"), QStringLiteral("Serif"), QStringLiteral("Monospace")};
    for (const QString& family : families) {
        for (const QFont::Weight weight : {QFont::Normal, QFont::Bold}) {
            for (const bool italic : {false, true})
                fonts += QRawFont::fromFont(QFont(family, -1, weight, italic));
        }
    }
    constexpr const char* kAll =
        "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'><text y='9'>A</text></svg>";
    (void)makeThumbnail(PictureFormat::Svg, kAll);
}

QByteArray selfContainedSvg(const QByteArray& content)
{
    QXmlStreamReader reader(content);
    QByteArray out;
    QXmlStreamWriter writer(&out);
    int elements = 0;
    int depth = 0;
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement:
            if (++elements > kMaxElements || ++depth > kMaxDepth)
                return {};
            if (leadsOutside(reader)) {
                reader.skipCurrentElement();
                --depth;
                continue;
            }
            break;
        case QXmlStreamReader::EndElement:
            --depth;
            break;
        case QXmlStreamReader::DTD:
        case QXmlStreamReader::ProcessingInstruction:
        case QXmlStreamReader::EntityReference:
        case QXmlStreamReader::Comment:
        case QXmlStreamReader::Invalid:
            continue;
        default:
            break;
        }
        writer.writeCurrentToken(reader);
    }
    return reader.hasError() ? QByteArray() : out;
}

QByteArray makeThumbnail(PictureFormat format, const QByteArray& content)
{
    const QImage image = readPicture(format, content);
    if (image.isNull())
        return {};
    QByteArray bytes;
    QBuffer out(&bytes);
    out.open(QIODevice::WriteOnly);
    if (image.hasAlphaChannel() ? !image.save(&out, "PNG") : !image.save(&out, "JPEG", kJpegQuality))
        return {};
    return bytes;
}

} // namespace quarrynet::services
