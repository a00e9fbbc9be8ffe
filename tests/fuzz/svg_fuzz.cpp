#include <QXmlStreamReader>

#include "tests/fuzz/fuzz_input.h"
#include "thumbnails/thumbnail.h"

using namespace quarrynet;
using namespace quarrynet::services;

namespace {

/// Returns whether the data in `address` is a raster picture. SVG readers decode what follows the last "base64," and
/// ignore the media type that the address declares.
bool isRasterContent(const QString& address)
{
    const QByteArray text = address.toLatin1();
    const QByteArray content = QByteArray::fromBase64(text.mid(text.lastIndexOf("base64,") + 7));
    const auto format = pictureFormat({content.constData(), static_cast<std::size_t>(content.size())});
    return format && *format != PictureFormat::Svg;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray filtered =
        selfContainedSvg(QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)));
    QXmlStreamReader reader(filtered);
    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        fuzz::check(token != QXmlStreamReader::DTD && token != QXmlStreamReader::EntityReference,
                    "there is no document type");
        if (token != QXmlStreamReader::StartElement ||
            reader.name().compare(QLatin1String("image"), Qt::CaseInsensitive) != 0)
            continue;
        for (const QXmlStreamAttribute& attribute : reader.attributes()) {
            if (attribute.name() != QLatin1String("href"))
                continue;
            const QString address = attribute.value().toString();
            fuzz::check(address.startsWith(QLatin1String("data:")), "a picture is embedded in the drawing");
            fuzz::check(isRasterContent(address), "an embedded picture is a raster picture");
        }
    }
    fuzz::check(filtered.isEmpty() || !reader.hasError(), "the output is well-formed");
    return 0;
}
