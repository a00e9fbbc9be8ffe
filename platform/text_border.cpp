#include "platform/text_border.h"

#include <optional>

#include <QStringDecoder>
#include <QStringEncoder>

#include "common/utf8.h"

namespace quarrynet {

QString toText(std::string_view bytes)
{
#ifdef Q_OS_WIN
    QStringDecoder decoder(QStringDecoder::System, QStringDecoder::Flag::Stateless);
    const QString text = decoder(QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size())));
    return decoder.hasError() ? QString::fromLatin1(bytes.data(), static_cast<qsizetype>(bytes.size())) : text;
#else
    QString text;
    std::size_t valid = 0; // bytes before this one are in `text` or in the run that ends here
    std::size_t runStart = 0;
    const auto takeRun = [&] {
        text += QString::fromUtf8(bytes.data() + runStart, static_cast<qsizetype>(valid - runStart));
    };
    while (valid < bytes.size()) {
        if (const std::optional<Utf8Character> character = utf8Character(bytes.substr(valid))) {
            valid += character->length;
            continue;
        }
        takeRun();
        text += QLatin1Char(bytes[valid]);
        runStart = ++valid;
    }
    takeRun();
    return text;
#endif
}

QString toLine(std::string_view bytes)
{
    constexpr std::size_t kLine = 4096;
    return toText(bytes.substr(0, kLine));
}

std::string toBytes(const QString& text)
{
#ifdef Q_OS_WIN
    const QByteArray bytes = QStringEncoder(QStringEncoder::System)(text);
#else
    const QByteArray bytes = text.toUtf8();
#endif
    return bytes.toStdString();
}

} // namespace quarrynet
