#include "platform/text_border.h"

#include <QStringDecoder>
#include <QStringEncoder>

namespace quarrynet {

namespace {

#ifndef Q_OS_WIN
// The length of the valid UTF-8 sequence (RFC 3629 section 4) that `bytes` begins with; 0 when there is none.
std::size_t sequenceLength(std::string_view bytes)
{
    const auto at = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    const unsigned char lead = at(0);
    if (lead < 0x80)
        return 1;
    std::size_t length = 0;
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        low = lead == 0xE0 ? 0xA0 : low;   // overlong
        high = lead == 0xED ? 0x9F : high; // surrogates
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        low = lead == 0xF0 ? 0x90 : low;
        high = lead == 0xF4 ? 0x8F : high;
    }
    if (length == 0 || bytes.size() < length || at(1) < low || at(1) > high)
        return 0;
    for (std::size_t i = 2; i < length; ++i) {
        if (at(i) < 0x80 || at(i) > 0xBF)
            return 0;
    }
    return length;
}
#endif

} // namespace

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
        const std::size_t length = sequenceLength(bytes.substr(valid));
        if (length > 0) {
            valid += length;
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
