#include "platform/cell_tip.h"

#include <algorithm>

#include <QFontMetrics>
#include <QScreen>
#include <QTextBoundaryFinder>
#include <QTextDocument>
#include <QTextLayout>
#include <QToolTip>
#include <QWidget>

namespace quarrynet {

namespace {

constexpr qsizetype kLongestTip = 1200; // UTF-16 units
constexpr int kCharactersOfALine = 70;
constexpr QChar kWordJoiner(0x2060); // invisible, and part of no tag or entity
constexpr QChar kEllipsis(0x2026);

QString shortened(const QString& text, qsizetype longest)
{
    if (text.size() <= longest)
        return text;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    finder.setPosition(longest);
    const qsizetype end = finder.isAtBoundary() ? longest : std::max(qsizetype{0}, finder.toPreviousBoundary());
    return text.left(end) + kEllipsis;
}

// Returns `text` so that a tool tip does not take it for HTML, which it recognises by its first tag or entity.
QString plain(QString text)
{
    if (!Qt::mightBeRichText(text))
        return text;
    text.replace(u'<', QString(u'<') + kWordJoiner);
    return text.replace(u'&', QString(u'&') + kWordJoiner);
}

QStringList wrapped(const QString& text, const QFont& font, int width)
{
    QTextLayout layout(text, font);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    QStringList lines;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        lines.append(text.mid(line.textStart(), line.textLength()));
    }
    layout.endLayout();
    return lines;
}

} // namespace

QString cellTip(const QString& text, const QWidget& owner)
{
    return cellsTip({text}, owner);
}

QString cellsTip(const QStringList& texts, const QWidget& owner)
{
    const QFont font = QToolTip::font();
    const int screen = owner.screen()->availableSize().width() / 2;
    const int width = std::min(screen, kCharactersOfALine * QFontMetrics(font).averageCharWidth());
    const qsizetype share = kLongestTip / std::max(qsizetype{1}, texts.size());
    QStringList cells;
    for (const QString& text : texts)
        cells.append(wrapped(shortened(text, share), font, width).join(u'\n'));
    return plain(cells.join(QLatin1String("\n\n")));
}

} // namespace quarrynet
