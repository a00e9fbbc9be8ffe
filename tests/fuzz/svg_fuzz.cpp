#include <QXmlStreamReader>

#include "services/thumbnail.h"
#include "tests/fuzz/fuzz_input.h"

using namespace quarrynet;
using namespace quarrynet::services;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray filtered =
        selfContainedSvg(QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)));
    QXmlStreamReader reader(filtered);
    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        fuzz::check(token != QXmlStreamReader::DTD && token != QXmlStreamReader::EntityReference, "no document type");
        if (token != QXmlStreamReader::StartElement ||
            reader.name().compare(QLatin1String("image"), Qt::CaseInsensitive) != 0)
            continue;
        for (const QXmlStreamAttribute& attribute : reader.attributes()) {
            if (attribute.name() != QLatin1String("href"))
                continue;
            const QString address = attribute.value().trimmed().toString();
            fuzz::check(address.startsWith(QLatin1String("data:")), "a picture lies in the drawing itself");
            fuzz::check(!address.contains(QLatin1String("svg"), Qt::CaseInsensitive), "and is no drawing");
        }
    }
    fuzz::check(filtered.isEmpty() || !reader.hasError(), "what is drawn is well formed");
    return 0;
}
