#include "platform/text_border.h"

#include <optional>

#include <QFile>
#include <QTextBoundaryFinder>

#ifdef Q_OS_WIN
#include "common/windows_text.h"
#endif
#include "ground/utf8.h"

namespace quarrynet {

namespace {

constexpr qsizetype kLongestLine = 4096; // UTF-16 units

// The part of a longer text that is read: enough to tell whether the longest line's last character ends there. No code
// page needs more than three bytes per unit.
constexpr qsizetype kUnitsOfALine = kLongestLine + 64;
constexpr std::size_t kBytesOfALine = 3 * kUnitsOfALine;

constexpr char16_t kEllipsis = u'\u2026';

QString decoded(std::string_view bytes)
{
#ifdef Q_OS_WIN
    // Qt's decoder replaces invalid bytes and does not report them.
    if (!codePageIsUtf8())
        return QString::fromStdWString(wideFromCodePage(bytes));
#endif
    QString text;
    std::size_t valid = 0; // bytes before this index are in `text` or in the run that ends here
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

bool endsALine(QChar character)
{
    return character.category() == QChar::Other_Control || character == QChar::LineSeparator ||
           character == QChar::ParagraphSeparator;
}

// Returns the length of the longest prefix of `text` of at most `length` units that ends at a grapheme boundary. A
// letter with very many combining marks can exceed any line, so it is cut, but never within a surrogate pair.
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

// Does the work of toLine(). `whole` is false if `text` is already shortened.
QString shownLine(QStringView text, bool whole)
{
    const qsizetype length = wholeCharacters(text, kLongestLine);
    QString line = text.left(length).toString();
    for (QChar& character : line) {
        if (endsALine(character))
            character = u' ';
        else if (turnsDirection(character.unicode()))
            character = QChar::ReplacementCharacter;
    }
    if (!whole || length < text.size())
        line += kEllipsis;
    return line;
}

} // namespace

QString toText(std::string_view bytes)
{
    return decoded(bytes);
}

QString toLine(std::string_view bytes)
{
    const bool whole = bytes.size() <= kBytesOfALine;
    return shownLine(decoded(bytes.substr(0, kBytesOfALine)), whole);
}

QString toLine(QStringView text)
{
    const bool whole = text.size() <= kUnitsOfALine;
    return shownLine(text.left(kUnitsOfALine), whole);
}

std::string toBytes(const QString& text)
{
#ifdef Q_OS_WIN
    return codePageFromWide(text.toStdWString());
#else
    return text.toUtf8().toStdString();
#endif
}

QString toPathText(std::string_view path)
{
#ifdef Q_OS_WIN
    return QString::fromUtf8(path.data(), static_cast<qsizetype>(path.size()));
#else
    return QFile::decodeName(QByteArray(path.data(), static_cast<qsizetype>(path.size())));
#endif
}

std::string toPathBytes(const QString& path)
{
#ifdef Q_OS_WIN
    return path.toUtf8().toStdString();
#else
    return QFile::encodeName(path).toStdString();
#endif
}

} // namespace quarrynet
