#include <QTest>

#include "platform/text_border.h"

#ifdef Q_OS_WIN
#include <windows.h>
#endif

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

namespace {

bool codePageIs(unsigned number)
{
#ifdef Q_OS_WIN
    return ::GetACP() == number;
#else
    return number == 65001;
#endif
}

} // namespace

#define QUARRYNET_NEEDS_CODE_PAGE(number)                                                                              \
    do {                                                                                                               \
        if (!codePageIs(number))                                                                                       \
            QSKIP("The system's code page is not " #number);                                                           \
    } while (false)

class TextBorderTest final : public QObject
{
    Q_OBJECT

private slots:
    void validUtf8IsText()
    {
        QUARRYNET_NEEDS_CODE_PAGE(65001);
        QCOMPARE(toText("abc"), u"abc"_s);
        QCOMPARE(toText("gr\xC3\xBC\xC3\x9F"), u"grüß"_s);
        QCOMPARE(toText("\xE2\x82\xAC \xF0\x9F\x98\x80"), u"€ 😀"_s);
        QCOMPARE(toText(""), QString());
    }

    void invalidBytesAreShownAsLatin1_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("text");
        QTest::newRow("lone high byte") << QByteArray("caf\xE9!") << u"café!"_s;
        QTest::newRow("cut at the end") << QByteArray("a\xE2\x82") << QString::fromLatin1("a\xE2\x82");
        QTest::newRow("lone continuation") << QByteArray("\x80") << QString::fromLatin1("\x80");
        QTest::newRow("overlong slash") << QByteArray("\xC0\xAF") << QString::fromLatin1("\xC0\xAF");
        QTest::newRow("overlong three") << QByteArray("\xE0\x80\xAF") << QString::fromLatin1("\xE0\x80\xAF");
        QTest::newRow("surrogate") << QByteArray("\xED\xA0\x80") << QString::fromLatin1("\xED\xA0\x80");
        QTest::newRow("beyond Unicode") << QByteArray("\xF4\x90\x80\x80") << QString::fromLatin1("\xF4\x90\x80\x80");
        QTest::newRow("valid after invalid") << QByteArray("\xFF\xC3\xBC\xFE") << u"ÿüþ"_s;
    }

    void invalidBytesAreShownAsLatin1()
    {
        QUARRYNET_NEEDS_CODE_PAGE(65001);
        QFETCH(QByteArray, bytes);
        QFETCH(QString, text);
        QCOMPARE(toText(bytes.toStdString()), text);
    }

    void nulIsACharacterLikeOthers() { QCOMPARE(toText(std::string_view("a\0b", 3)), QString::fromLatin1("a\0b", 3)); }

    void everyByteIsShownByOneCharacterAtMost()
    {
        for (int value = 0; value < 256; ++value) {
            const char bytes = static_cast<char>(value);
            QCOMPARE(toText(std::string_view(&bytes, 1)).size(), 1);
        }
    }

    void lineEndsAndOtherControlsAreBlanksInALine()
    {
        QCOMPARE(toLine("a\r\nb\tc"), u"a  b c"_s);
        QCOMPARE(toLine(std::string_view("a\0b", 3)), u"a b"_s);
        QCOMPARE(toLine(QStringView(u"a\nb")), u"a b"_s);
        QCOMPARE(toLine(""), QString());
        if (!codePageIs(65001))
            return;
        QCOMPARE(toLine("a\xC2\x85"
                        "b\xE2\x80\xA8"
                        "c\xE2\x80\xA9"
                        "d\x9F"
                        "e\x7F"),
                 u"a b c d e "_s);
    }

    void everyControlIsABlankAndNothingElseIs()
    {
        for (char16_t unit = 0; unit < 0xD800; ++unit) {
            const bool control = unit < 0x20 || (unit >= 0x7F && unit < 0xA0) || unit == 0x2028 || unit == 0x2029;
            const QChar shown = toLine(QStringView(&unit, 1)).front();
            if (control != (shown == u' ' && unit != u' '))
                QFAIL(qPrintable(u"U+%1"_s.arg(unit, 4, 16)));
        }
    }

    // An address with U+202E used to look like "moc.knab//:ptth" although it led elsewhere.
    void whatTurnsTheDirectionIsAMark()
    {
        QUARRYNET_NEEDS_CODE_PAGE(65001);
        QCOMPARE(toLine("http://\xE2\x80\xAEknab"), u"http://\uFFFDknab"_s);
        for (const char16_t unit : u"\u061C\u200E\u200F\u202A\u202B\u202C\u202D\u202E\u2066\u2067\u2068\u2069") {
            if (unit != 0)
                QCOMPARE(toLine(QStringView(&unit, 1)), u"\uFFFD"_s);
        }
        QCOMPARE(toLine(QStringView(u"\u05D0\u0627\u200D")), u"\u05D0\u0627\u200D"_s); // unchanged
    }

    void aLineOfTheGreatestLengthIsWhole()
    {
        QCOMPARE(toLine(std::string(4096, 'x')), QString(4096, u'x'));
        QCOMPARE(toLine(std::string(4097, 'x')), QString(4096, u'x') + u'\u2026');
        QCOMPARE(toLine(std::string(50'000'000, 'x')), QString(4096, u'x') + u'\u2026');
        QCOMPARE(toLine(QString(50'000'000, u'x')), QString(4096, u'x') + u'\u2026');
    }

    void aLineEndsBetweenCharacters_data()
    {
        QTest::addColumn<QByteArray>("character");
        QTest::newRow("two bytes") << QByteArray("\xC3\xBC");
        QTest::newRow("three bytes") << QByteArray("\xE2\x82\xAC");
        QTest::newRow("four bytes") << QByteArray("\xF0\x9F\x98\x80");
        QTest::newRow("letter and mark") << QByteArray("e\xCC\x81");
        QTest::newRow("flag") << QByteArray("\xF0\x9F\x87\xAB\xF0\x9F\x87\xB7");
    }

    void aLineEndsBetweenCharacters()
    {
        QUARRYNET_NEEDS_CODE_PAGE(65001);
        QFETCH(QByteArray, character);
        const QString shown = QString::fromUtf8(character);
        for (int before = 4096 - 8; before <= 4096; ++before) {
            const QByteArray bytes = QByteArray(before, 'x') + character.repeated(10'000);
            const qsizetype whole = (4096 - before) / shown.size();
            QCOMPARE(toLine(bytes.toStdString()), QString(before, u'x') + shown.repeated(whole) + u'\u2026');
        }
    }

    void aPileOfMarksIsCutAndNoSurrogatePairIs()
    {
        QUARRYNET_NEEDS_CODE_PAGE(65001);
        std::string marks = "e";
        for (int i = 0; i < 10'000; ++i)
            marks += "\xCC\x81";
        QCOMPARE(toLine(marks).size(), 4097);
        std::string pairs = "e";
        for (int i = 0; i < 10'000; ++i)
            pairs += "\xF0\x9D\x85\xA5"; // a combining stem, U+1D165
        const QString line = toLine(pairs);
        QCOMPARE(line.size(), 1 + 4094 + 1);
        QVERIFY(line.chopped(1).back().isLowSurrogate());
    }

    void textGoesRoundTrip()
    {
        QUARRYNET_NEEDS_CODE_PAGE(65001);
        const QString text = u"Ünïcode €😀 and ASCII"_s;
        QCOMPARE(toText(toBytes(text)), text);
    }

    void everyByteGoesRoundTrip()
    {
        if (codePageIs(65001))
            QSKIP("In UTF-8, most bytes are no text");
        for (int value = 0; value < 256; ++value) {
            const std::string bytes(1, static_cast<char>(value));
            const QString text = toText(bytes);
            const std::string back = toBytes(text);
            QVERIFY2(back == bytes || text == QLatin1String(bytes.data(), 1), qPrintable(QString::number(value, 16)));
        }
    }

    void bytesOfCodePage1252AreText()
    {
        QUARRYNET_NEEDS_CODE_PAGE(1252);
        QCOMPARE(toText("gr\xFC\xDF \x80 \x8E\x9F"), u"grüß € ŽŸ"_s);
        QCOMPARE(toText("\x81\x8D\x8F\x90\x9D"), QString::fromLatin1("\x81\x8D\x8F\x90\x9D")); // have no letter
        QCOMPARE(toBytes(u"grüß € ŽŸ"_s), std::string("gr\xFC\xDF \x80 \x8E\x9F"));
    }

    // Similar characters used to stand in for those that the code page lacks: a wide quote became a quote.
    void whatTheCodePageLacksIsAQuestionMark()
    {
        QUARRYNET_NEEDS_CODE_PAGE(1252);
        QCOMPARE(toBytes(u"Łódź ∞ ＂＜ 日本 😀!"_s), std::string("?\xF3"
                                                                "d? ? ?? ?? ?!"));
        QCOMPARE(toBytes(QString(QChar(0xD800)) + u'x'), std::string("?x"));
    }

    // The toolkit's decoder used to show U+FFFD, because it does not report invalid bytes of a code page.
    void invalidBytesOfCodePage932AreShownAsLatin1()
    {
        QUARRYNET_NEEDS_CODE_PAGE(932);
        QCOMPARE(toText("\x93\xFA\x96\x7B \xB1"), u"日本 ｱ"_s);
        QCOMPARE(toText("a\x93"), u"a\u0093"_s);                // cut in the middle of a letter
        QCOMPARE(toText("\x93\x20z\xFF"), u"\u0093 z\u00FF"_s); // no letter, and no byte of one
        QCOMPARE(toBytes(u"日本 ｱ é"_s), std::string("\x93\xFA\x96\x7B \xB1 ?"));
    }

    void aLineEndsBetweenLettersOfTwoBytes()
    {
        QUARRYNET_NEEDS_CODE_PAGE(932);
        std::string bytes = "x";
        for (int i = 0; i < 10'000; ++i)
            bytes += "\x93\xFA";
        QCOMPARE(toLine(bytes), u'x' + QString(4095, QChar(u'日')) + u'\u2026');
    }

    void pathsKeepEveryLetter()
    {
        const QString path = u"C:/Łódź 日本 😀/grüß"_s;
        QCOMPARE(toPathText(toPathBytes(path)), path);
        QCOMPARE(toPathBytes(u"grüß"_s), std::string("gr\xC3\xBC\xC3\x9F"));
    }
};

QTEST_APPLESS_MAIN(TextBorderTest)
#include "text_border_test.moc"
