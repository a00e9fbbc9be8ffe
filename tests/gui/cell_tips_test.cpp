#include <QHelpEvent>
#include <QTextDocument>
#include <QToolTip>

#include "filled_lists.h"
#include "platform/cell_tip.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

/// Tests that a cell that is cut off has its whole text as tip, where no other tip belongs to the list.
class CellTipsTest final : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        window_ = std::make_unique<WindowFixture>();
        window_->start();
    }
    void cleanup()
    {
        QToolTip::hideText();
        window_.reset();
    }

    void aCutCellHasItsTextAsTip()
    {
        for (const int tag : {1, 2}) {
            window_->chooseTab(tag);
            ListView* list = listOf(*window_, tabOf(tag));
            const QString text = u"word "_s.repeated(30).trimmed();
            list->setRows({{text.toStdString(), "short"}});
            QCOMPARE(tipOf(*list, 0, 0).simplified(), text);
            QVERIFY(tipOf(*list, 0, 0).contains(u'\n'));
            QCOMPARE(tipOf(*list, 0, 1), QString());
        }
    }

    void aCellThatFitsHasNone()
    {
        ListView* list = listOf(*window_, tabOf(1));
        list->setRows({{"short", ""}});
        QCOMPARE(tipOf(*list, 0, 0), QString());
        list->setColumnWidth(0, 12);
        QCOMPARE(tipOf(*list, 0, 0), u"short"_s);
        list->setColumnWidth(0, 200);
        QCOMPARE(tipOf(*list, 0, 0), QString());
    }

    void aListWithATipOfItsOwnKeepsIt()
    {
        ListView* list = fillList(*window_, tabOf(4));
        list->setColumnWidth(1, 12);
        QTest::mouseMove(list->viewport(), QPoint(130, 5));
        QTRY_COMPARE(list->toolTip(), u"Double click Program Name to download the file"_s);
        QCOMPARE(tipOf(*list, 0, 1), u"Double click Program Name to download the file"_s);
    }

    // Only a resting mouse showed the whole text of a cell.
    void aKeyShowsTheCutCellsOfTheCurrentRow_data() { addListRows(); }
    void aKeyShowsTheCutCellsOfTheCurrentRow()
    {
        QFETCH(int, tag);
        window_->chooseTab(tag);
        ListView* list = listOf(*window_, tabOf(tag));
        const QString one = u"one "_s.repeated(60).trimmed();
        const QString two = u"two "_s.repeated(60).trimmed();
        list->setRows({{"short", "too"}, {one.toStdString(), two.toStdString()}});
        list->setFocus();
        list->setCurrentIndex(list->model()->index(1, 0));
        press(*list, Qt::Key_F1, Qt::ShiftModifier);
        QVERIFY(QToolTip::isVisible());
        QCOMPARE(QToolTip::text().section(u"\n\n"_s, 0, 0).simplified(), one);
        QCOMPARE(QToolTip::text().section(u"\n\n"_s, 1).simplified(), two);

        press(*list, Qt::Key_Up);
        QTRY_VERIFY(!QToolTip::isVisible());
        press(*list, Qt::Key_F1, Qt::ShiftModifier);
        QVERIFY(!QToolTip::isVisible());        // nothing is cut off in this row
        QVERIFY(window_->shell.opened.empty()); // F1 alone opens the manual
    }

    void theKeyShowsNothingInAnEmptyList()
    {
        ListView* list = listOf(*window_, tabOf(1));
        list->setFocus();
        press(*list, Qt::Key_F1, Qt::ShiftModifier);
        QVERIFY(!QToolTip::isVisible());
    }

    void severalTextsShareTheLimitAndMakeNoHtmlTogether()
    {
        const QString tip = cellsTip(QStringList(4, QString(10'000, u'x')), window_->main());
        QVERIFY(tip.size() < 1400);
        QCOMPARE(tip.count(QChar(0x2026)), 4);
        const QStringList halves = {u"x <b"_s, u">"_s};
        for (const QString& half : halves)
            QVERIFY(!Qt::mightBeRichText(half));
        QVERIFY(!Qt::mightBeRichText(cellsTip(halves, window_->main())));
        QCOMPARE(cellsTip({}, window_->main()), QString());
    }

    void htmlIsShownAsItIsWritten_data()
    {
        QTest::addColumn<QString>("text");
        for (const char* text :
             {"<b>bold</b>", "<img src=http://host/x.png>", "&lt;script&gt;", "a <table> b", "<?xml version=\"1.0\"?>",
              "  <p>x", "<qt>", "a & b < c", "<!--x-->", "<!DOCTYPE html>"})
            QTest::newRow(text) << QString::fromLatin1(text);
    }
    void htmlIsShownAsItIsWritten()
    {
        QFETCH(QString, text);
        const QString tip = cellTip(text, window_->main());
        QVERIFY(!Qt::mightBeRichText(tip));
        QCOMPARE(QString(tip).remove(QChar(0x2060)), text); // an invisible character
    }

    void aLongTextIsShortenedAndWrapped()
    {
        const QString tip = cellTip(QString(1'000'000, u'x'), window_->main());
        QVERIFY(tip.size() < 1400);
        QVERIFY(tip.endsWith(QChar(0x2026)));
        const QFontMetrics metrics(QToolTip::font());
        for (const QString& line : tip.split(u'\n'))
            QVERIFY(metrics.horizontalAdvance(line) <= window_->main().screen()->availableSize().width() / 2);
    }

    void theWholeTextIsThereWithoutALineEndInAWord()
    {
        const QString text = u"the quick brown fox jumps over the lazy dog "_s.repeated(5).trimmed();
        const QString tip = cellTip(text, window_->main());
        QCOMPARE(tip.simplified(), text);
        const QString joined = QString(tip).remove(u'\n');
        QCOMPARE(joined, text);
    }

    void lettersOfSeveralUnitsAreNotCut()
    {
        const QString face = QString::fromUtf8("\xF0\x9F\x98\x80");
        for (const int shift : {0, 1}) {
            const QString tip = cellTip(QString(shift, u'x') + face.repeated(1000), window_->main());
            QVERIFY(tip.isValidUtf16());
        }
    }

private:
    static void press(ListView& list, Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(&list, key, modifiers);
    }

    // Returns the tip that the list shows over a cell; empty if there is none.
    static QString tipOf(ListView& list, int row, int column)
    {
        QToolTip::hideText();
        if (!QTest::qWaitFor([] { return !QToolTip::isVisible(); }))
            qFatal("a tip does not disappear");
        const QPoint at = list.visualRect(list.model()->index(row, column)).center();
        QHelpEvent help(QEvent::ToolTip, at, list.viewport()->mapToGlobal(at));
        QApplication::sendEvent(list.viewport(), &help);
        return QToolTip::isVisible() ? QToolTip::text() : QString();
    }

    std::unique_ptr<WindowFixture> window_;
};

QTEST_MAIN(CellTipsTest)
#include "cell_tips_test.moc"
