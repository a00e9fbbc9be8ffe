#include <algorithm>

#include <QTest>

#include "platform/text_folding.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

namespace {

QString textOf(char32_t character)
{
    return QString::fromUcs4(&character, 1);
}

// Returns whether the canonical form of a character has combining marks.
bool hasMarks(char32_t character)
{
    const QList<uint> parts = textOf(character).normalized(QString::NormalizationForm_D).toUcs4();
    return std::any_of(parts.begin(), parts.end(), [](uint part) { return QChar::combiningClass(part) != 0; });
}

// Returns the length of the longest run of combining marks, whose order the toolkit takes quadratic time to change.
int longestRun(const QString& text)
{
    int longest = 0;
    int run = 0;
    for (const uint character : text.normalized(QString::NormalizationForm_D).toUcs4()) {
        run = QChar::combiningClass(character) != 0 ? run + 1 : 0;
        longest = std::max(longest, run);
    }
    return longest;
}

} // namespace

class TextFoldingTest final : public QObject
{
    Q_OBJECT

private slots:
    void letterCaseAndTheFormOfAccentsDoNotMatter()
    {
        QCOMPARE(folded(u"Gr\u00DCN"_s), folded(u"gru\u0308n"_s));
        QCOMPARE(folded(u"A\u0301\u0323"_s), folded(u"\u1EA1\u0301"_s));
        QVERIFY(folded(u"a\u0301"_s) != folded(u"a"_s));
        QCOMPARE(folded({}), QString());
        QCOMPARE(folded(QString(1, QChar())), QString(1, QChar()));
    }

    void thirtyMarksStayAsTheyAre()
    {
        const QString thirty = u'a' + QString(30, u'\u0302');
        const QString before = u"\u00E2"_s + QString(29, u'\u0302');
        QCOMPARE(folded(thirty), before);
        QCOMPARE(folded(thirty + thirty), before + before);
    }

    void moreMarksAreBrokenAfterEveryThirty()
    {
        const QString thirty(30, u'\u0323');
        QCOMPARE(folded(u'q' + thirty + u'\u0323'), u'q' + thirty + u"\u034F\u0323"_s);
        QCOMPARE(folded(u'q' + thirty + thirty + u'x'), u'q' + thirty + u'\u034F' + thirty + u'x');
        QCOMPARE(folded(thirty + thirty + u'\u0323'), thirty + u'\u034F' + thirty + u"\u034F\u0323"_s);
        const QString pairs = u"\U0001D165"_s.repeated(31); // a mark of two units
        QCOMPARE(folded(pairs), u"\U0001D165"_s.repeated(30) + u"\u034F\U0001D165"_s);
    }

    void halvesOfPairsAreKept()
    {
        const QString halves = QString(1, QChar(0xD834)) + QString(31, u'\u0323') + QChar(0xDD65) + QChar(0xD834);
        const QString folding = folded(halves);
        QCOMPARE(folding.size(), halves.size() + 1);
        QCOMPARE(folding.back(), QChar(0xD834));
    }

    // Long texts are normalised in pieces, and no piece may end within a letter.
    void eachLetterOfALongTextIsComposed()
    {
        int letters = 0;
        for (char32_t character = 1; character <= QChar::LastValidCodePoint; ++character) {
            if (QChar::isSurrogate(character) || QChar::decompositionTag(character) != QChar::Canonical)
                continue;
            ++letters;
            const QString parts = textOf(character).normalized(QString::NormalizationForm_D);
            if (QChar::isMark(parts.toUcs4()[0]))
                continue; // a run of nothing but marks
            for (int before = 0; before < 4; ++before) {
                const QString text = QString(before, u'x') + parts.repeated(200);
                if (folded(text) != text.normalized(QString::NormalizationForm_C).toCaseFolded())
                    QFAIL(qPrintable(u"U+"_s + QString::number(uint(character), 16)));
            }
        }
        QVERIFY(letters > 12'000);
    }

    // A page could freeze the window at each key of a filter: runs of marks were sorted as long as they came.
    void noCharacterMakesLongRuns()
    {
        constexpr int kMost = 64; // two for each of thirty, and some of the letter before
        int characters = 0;
        for (char32_t character = 1; character <= QChar::LastValidCodePoint; ++character) {
            if (QChar::isSurrogate(character) || !hasMarks(character))
                continue;
            ++characters;
            for (const QString& other : {QString(), u"\u0323"_s, u"\u0301"_s}) {
                const QString text = (textOf(character) + other).repeated(200);
                if (longestRun(folded(text)) > kMost)
                    QFAIL(qPrintable(u"U+"_s + QString::number(uint(character), 16)));
            }
        }
        QVERIFY(characters > 500);
    }
};

QTEST_GUILESS_MAIN(TextFoldingTest)
#include "text_folding_test.moc"
