#include <QTest>

#include "platform/text_border.h"

using namespace quarrynet;

class TextBorderTest final : public QObject
{
    Q_OBJECT

private slots:
    void validUtf8IsText()
    {
        QCOMPARE(toText("abc"), QStringLiteral("abc"));
        QCOMPARE(toText("gr\xC3\xBC\xC3\x9F"), QStringLiteral("grüß"));
        QCOMPARE(toText("\xE2\x82\xAC \xF0\x9F\x98\x80"), QStringLiteral("€ 😀"));
        QCOMPARE(toText(""), QString());
    }

    void invalidBytesAreShownAsLatin1_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("text");
        QTest::newRow("lone high byte") << QByteArray("caf\xE9!") << QStringLiteral("café!");
        QTest::newRow("cut at the end") << QByteArray("a\xE2\x82") << QString::fromLatin1("a\xE2\x82");
        QTest::newRow("lone continuation") << QByteArray("\x80") << QString::fromLatin1("\x80");
        QTest::newRow("overlong slash") << QByteArray("\xC0\xAF") << QString::fromLatin1("\xC0\xAF");
        QTest::newRow("overlong three") << QByteArray("\xE0\x80\xAF") << QString::fromLatin1("\xE0\x80\xAF");
        QTest::newRow("surrogate") << QByteArray("\xED\xA0\x80") << QString::fromLatin1("\xED\xA0\x80");
        QTest::newRow("beyond Unicode") << QByteArray("\xF4\x90\x80\x80") << QString::fromLatin1("\xF4\x90\x80\x80");
        QTest::newRow("valid after invalid") << QByteArray("\xFF\xC3\xBC\xFE") << QStringLiteral("ÿüþ");
    }

    void invalidBytesAreShownAsLatin1()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, text);
        QCOMPARE(toText(bytes.toStdString()), text);
    }

    void nulIsACharacterLikeOthers() { QCOMPARE(toText(std::string_view("a\0b", 3)), QString::fromLatin1("a\0b", 3)); }

    void everyByteIsShownByOneCharacterAtMost()
    {
        for (int byte = 0; byte < 256; ++byte) {
            const char bytes = static_cast<char>(byte);
            QCOMPARE(toText(std::string_view(&bytes, 1)).size(), 1);
        }
    }

    void textGoesRoundTrip()
    {
        const QString text = QStringLiteral("Ünïcode €😀 and ASCII");
        QCOMPARE(toText(toBytes(text)), text);
    }
};

QTEST_APPLESS_MAIN(TextBorderTest)
#include "text_border_test.moc"
