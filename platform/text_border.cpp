#include "platform/text_border.h"

#include <optional>

#include <QStringDecoder>
#include <QStringEncoder>
#include <QTextBoundaryFinder>

#include "ground/utf8.h"

namespace quarrynet {

namespace {

constexpr qsizetype kLongestLine = 4096; // UTF-16 units

// What is looked at of a longer text: enough to see behind the longest line whether its last character ends there. No
// code page takes more than three bytes a unit.
constexpr qsizetype kUnitsOfALine = kLongestLine + 64;
constexpr std::size_t kBytesOfALine = 3 * kUnitsOfALine;

constexpr char16_t kEllipsis = u'\u2026';

#ifdef Q_OS_WIN

QString decoded(std::string_view bytes, bool whole)
{
    // A decoder with a state takes a character that is cut off at the end for one that is still to come.
    QStringDecoder decoder(QStringDecoder::System,
                           whole ? QStringDecoder::Flag::Stateless : QStringDecoder::Flag::Default);
    const QString text = decoder(QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size())));
    return decoder.hasError() ? QString::fromLatin1(bytes.data(), static_cast<qsizetype>(bytes.size())) : text;
}

#else

QString decoded(std::string_view bytes, bool)
{
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
}

#endif

// The explicit formatting characters of the Unicode Bidirectional Algorithm, section 2.
bool turnsDirection(QChar character)
{
    const char16_t number = character.unicode();
    return number == 0x061C || number == 0x200E || number == 0x200F || (number >= 0x202A && number <= 0x202E) ||
           (number >= 0x2066 && number <= 0x2069);
}

bool endsALine(QChar character)
{
    return character.category() == QChar::Other_Control || character == QChar::LineSeparator ||
           character == QChar::ParagraphSeparator;
}

// The length of the longest beginning of `text` that is no longer than `length` and ends between two characters as
// people see them. A pile of marks on one letter can be longer than any line; it is cut, but never a surrogate pair.
qsizetype wholeCharacters(QStringView text, qsizetype length)
{
    constexpr qsizetype kLongestPile = 64;
    if (text.size() <= length)
        return text.size();
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    finder.setPosition(length);
    const qsizetype end = finder.isAtBoundary() ? length : finder.toPreviousBoundary();
    if (end > length - kLongestPile)
        return end;
    return text[length].isLowSurrogate() && text[length - 1].isHighSurrogate() ? length - 1 : length;
}

// As toLine(); `whole` is false where text was left out already.
QString shownLine(QStringView text, bool whole)
{
    const qsizetype length = wholeCharacters(text, kLongestLine);
    QString line = text.left(length).toString();
    for (QChar& character : line) {
        if (endsALine(character))
            character = u' ';
        else if (turnsDirection(character))
            character = QChar::ReplacementCharacter;
    }
    if (!whole || length < text.size())
        line += kEllipsis;
    return line;
}

} // namespace

QString toText(std::string_view bytes)
{
    return decoded(bytes, true);
}

QString toLine(std::string_view bytes)
{
    const bool whole = bytes.size() <= kBytesOfALine;
    return shownLine(decoded(bytes.substr(0, kBytesOfALine), whole), whole);
}

QString toLine(QStringView text)
{
    const bool whole = text.size() <= kUnitsOfALine;
    return shownLine(text.left(kUnitsOfALine), whole);
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
