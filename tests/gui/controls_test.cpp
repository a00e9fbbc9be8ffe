#include <QClipboard>
#include <QSignalSpy>
#include <QTest>
#include <QWidget>

#include "clicks.h"
#include "platform/FigureLabel.h"
#include "platform/HiddenListBox.h"
#include "platform/HiddenText.h"
#include "platform/ListView.h"
#include "platform/PagingSlider.h"
#include "platform/scaling_bars.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

class ControlsTest final : public QObject
{
    Q_OBJECT

private slots:
    void hiddenTextRaisesItsChangeAtOnceAndOnlyForAChange()
    {
        HiddenText text(u"Text2"_s, this);
        QStringList seen;
        connect(&text, &HiddenText::changed, this, [&] { seen.append(QString::fromStdString(text.text())); });
        text.setText("a");
        QCOMPARE(seen, QStringList{u"a"_s});
        text.setText("a");
        text.setText({});
        text.setText({});
        QCOMPARE(seen.size(), 2);
    }

    void hiddenTextKeepsEveryByte()
    {
        HiddenText text(u"Text2"_s, this);
        const std::string bytes("a\r\n\0\xff\n", 6);
        text.setText(bytes);
        QCOMPARE(text.text(), bytes);
        QCOMPARE(text.property("text").toByteArray(), QByteArray::fromStdString(bytes));
        text.setProperty("text", QByteArray("new"));
        QCOMPARE(text.text(), std::string("new"));
    }

    void hiddenTextCanBeGivenAPartOfItself()
    {
        HiddenText text(u"Text2"_s, this);
        text.setText("0123456789");
        text.setText(std::string_view(text.text()).substr(5));
        QCOMPARE(text.text(), std::string("56789"));
    }

    void hiddenListBoxHoldsPositionsAsDecimals()
    {
        HiddenListBox list(u"List1"_s, this);
        list.setPositions({12, 0, 4000000000});
        QCOMPARE(list.property("items").toStringList(), u"12 0 4000000000"_s.split(u' '));
        list.setItems({"7", "x", ""});
        QCOMPARE(list.positions(), std::vector<Position>({7, 0, 0}));
    }

    void sliderRaisesNothingForTheProgramsOwnChanges()
    {
        PagingSlider slider;
        QSignalSpy paged(&slider, &PagingSlider::paged);
        slider.setWindow({10, 19, 10});
        slider.reset();
        QCOMPARE(paged.count(), 0);
        QCOMPARE(slider.window(), (PagingWindow{1, 10, 1}));
        QVERIFY(!slider.isEnabled());
    }

    void sliderRaisesOneChangeForEveryKey()
    {
        PagingSlider slider;
        slider.setEnabled(true);
        slider.show();
        QSignalSpy paged(&slider, &PagingSlider::paged);
        QTest::keyClick(&slider, Qt::Key_Right);
        QCOMPARE(slider.value(), 2);
        QTest::keyClick(&slider, Qt::Key_PageUp);
        QCOMPARE(slider.value(), 3);
        QTest::keyClick(&slider, Qt::Key_End);
        QCOMPARE(slider.value(), 10);
        QCOMPARE(paged.count(), 3);
        QTest::keyClick(&slider, Qt::Key_End); // the value is already the maximum
        QCOMPARE(paged.count(), 3);
        QCOMPARE(slider.toolTip(), u"10"_s);
    }

    void sliderRaisesOneChangeForADragOnRelease()
    {
        PagingSlider slider;
        slider.resize(300, 40);
        slider.setEnabled(true);
        slider.show();
        QSignalSpy paged(&slider, &PagingSlider::paged);
        QSignalSpy moved(&slider, &QSlider::sliderMoved);
        QTest::mousePress(&slider, Qt::LeftButton, {}, QPoint(6, 15));
        for (int x = 10; x <= 150; x += 10)
            QTest::mouseMove(&slider, QPoint(x, 15));
        QVERIFY(moved.count() > 1);
        QCOMPARE(paged.count(), 0);
        QCOMPARE(slider.toolTip(), QString::number(slider.sliderPosition())); // the drag tip follows the thumb
        QTest::mouseRelease(&slider, Qt::LeftButton, {}, QPoint(150, 15));
        QCOMPARE(paged.count(), 1);
        QVERIFY(slider.value() > 1);
    }

    void sliderClampsAValueAboveANewMaximum()
    {
        PagingSlider slider;
        slider.setWindow({1, 10, 10});
        slider.setWindow({1, 8, 10});
        QCOMPARE(slider.value(), 8);
    }

    void sliderCanBeMovedWhereTheTotalShrankBelowItsWindow()
    {
        PagingSlider slider;
        slider.setEnabled(true);
        slider.show();
        slider.setWindow({10, 19, 12});
        QSignalSpy paged(&slider, &PagingSlider::paged);
        slider.setWindow({10, 6, 12});
        QCOMPARE(slider.window(), (PagingWindow{1, 6, 6}));
        QCOMPARE(slider.toolTip(), u"6"_s);
        QCOMPARE(paged.count(), 0);
        QTest::keyClick(&slider, Qt::Key_Left);
        QCOMPARE(slider.value(), 5);
        QTest::keyClick(&slider, Qt::Key_Home);
        QCOMPARE(slider.value(), 1);
        QCOMPARE(paged.count(), 2);
    }

    void listShowsRowsAndEmptyCells()
    {
        ListView list;
        list.setColumns({u"A"_s, u"B"_s});
        list.setRows({{"1", "caf\xE9"}, {"only"}, {}});
        QCOMPARE(list.model()->rowCount(), 3);
        QCOMPARE(list.model()->index(0, 1).data().toString(), u"café"_s);
        QCOMPARE(list.model()->index(1, 1).data().toString(), QString());
        QCOMPARE(list.model()->index(2, 0).data().toString(), QString());
        QCOMPARE(list.model()->headerData(1, Qt::Horizontal).toString(), u"B"_s);
    }

    void listShowsTheBeginningOfAHugeCell()
    {
        ListView list;
        list.setColumns({u"A"_s});
        list.setRows({{std::string(50'000'000, 'x')}});
        list.show();
        QVERIFY(list.model()->index(0, 0).data().toString().size() < 10'000);
        QCOMPARE(list.rows().front().front().size(), std::size_t(50'000'000));
    }

    // All rows have the height of the first one; a title with many line ends used to make the list unusable.
    void listShowsOneLineACell()
    {
        ListView list;
        list.setColumns({u"A"_s});
        list.setRows({{"plain"}});
        const int height = list.sizeHintForRow(0);
        std::string wrapped;
        for (int i = 0; i < 4000; ++i)
            wrapped += "word\r\n";
        const QString override(QChar(0x202E));
        const bool known = override.toLocal8Bit() != "?"; // no code page of Windows but UTF-8 has such characters
        list.setRows({{wrapped + "\x7F"}, {override.toLocal8Bit().toStdString()}});
        QCOMPARE(list.sizeHintForRow(0), height);
        QVERIFY(list.model()->index(0, 0).data().toString().startsWith(u"word  word  word"_s));
        QCOMPARE(list.model()->index(1, 0).data().toString(), known ? u"\uFFFD"_s : u"?"_s);
        QCOMPARE(list.rows()[1].front(), override.toLocal8Bit().toStdString());
    }

    void listColumnsKeepTheirShare()
    {
        ListView list;
        list.setColumns({u"A"_s, u"B"_s});
        list.resize(400, 100);
        list.show();
        list.halveColumns();
        QCOMPARE(list.columnWidth(0), 197);
        QCOMPARE(list.columnWidth(1), 197);
        list.resize(800, 100);
        QVERIFY(qAbs(list.columnWidth(0) - 394) <= 1);
        list.setColumnWidth(0, 100); // the user drags the border
        list.resize(400, 100);
        QVERIFY(qAbs(list.columnWidth(0) - 50) <= 1);
    }

    void listTellsSelectedRowsInOrder()
    {
        ListView list;
        list.setColumns({u"A"_s});
        list.setRows({{"0"}, {"1"}, {"2"}});
        const auto select = [&](int row) {
            list.selectionModel()->select(list.model()->index(row, 0),
                                          QItemSelectionModel::Select | QItemSelectionModel::Rows);
        };
        select(2);
        select(0);
        QCOMPARE(list.selectedRows(), (std::vector<std::size_t>{0, 2}));
        list.clear();
        QVERIFY(list.selectedRows().empty());
    }

    void listCopiesRowsAsTheyAreShown()
    {
        ListView list;
        list.setColumns({u"A"_s, u"B"_s});
        list.setRows({{"a\tb", "c\r\nd"}, {"skipped"}, {"", "e"}, {}});
        list.show();
        for (const int row : {3, 0, 2})
            list.selectionModel()->select(list.model()->index(row, 0),
                                          QItemSelectionModel::Select | QItemSelectionModel::Rows);
        QTest::keyClick(&list, Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->text(), u"a b\tc  d\n\te\n\t"_s);
    }

    // With Ctrl, the first press used to deselect the only row of a single-selection list, as the file list is.
    void aSingleSelectionKeepsItsRowThroughADoubleClick()
    {
        ListView list;
        list.setColumns({u"A"_s});
        list.setSelectionMode(QAbstractItemView::SingleSelection);
        list.setRows({{"0"}, {"1"}});
        list.resize(200, 100);
        list.show();
        const QPoint row = list.visualRect(list.model()->index(1, 0)).center();
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, row);
        std::vector<std::size_t> opened;
        connect(&list, &ListView::doubleClicked, this, [&] { opened = list.selectedRows(); });
        doubleClick(list.viewport(), row, Qt::ControlModifier);
        QCOMPARE(opened, std::vector<std::size_t>{1});
        QCOMPARE(list.selectedRows(), std::vector<std::size_t>{1});
    }

    void rowsThatCameBetweenTheClicksAreNotTakenForTheOldOnes()
    {
        ListView list;
        list.setColumns({u"A"_s});
        list.setRows({{"0"}, {"1"}});
        list.resize(200, 100);
        list.show();
        list.selectAll();
        const QPoint row = list.visualRect(list.model()->index(0, 0)).center();
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, row);
        list.setRows({{"new"}, {"new"}});
        QMouseEvent second(QEvent::MouseButtonDblClick, row, list.viewport()->mapToGlobal(row), Qt::LeftButton,
                           Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(list.viewport(), &second);
        QCOMPARE(list.selectedRows(), std::vector<std::size_t>{0});
    }

    void listTakesADoubleClickAndEnterAlike()
    {
        ListView list;
        list.setColumns({u"A"_s});
        list.setRows({{"0"}});
        list.resize(200, 100);
        list.show();
        QSignalSpy opened(&list, &ListView::doubleClicked);
        const QPoint row = list.visualRect(list.model()->index(0, 0)).center();
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, row);
        QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, row);
        QCOMPARE(opened.count(), 1);
        QTest::keyClick(&list, Qt::Key_Return);
        QCOMPARE(opened.count(), 2);
        QTest::mouseDClick(list.viewport(), Qt::RightButton, {}, row);
        QCOMPARE(opened.count(), 2);
    }

    void aFigureGivesWayBeforeItsUnit()
    {
        constexpr const char* kUnit = " Second/s";
        FigureLabel label;
        label.setTextFormat(Qt::PlainText);
        label.resize(180, 20);
        label.setCaption("0.25 Second/s", kUnit);
        QCOMPARE(label.text(), u"0.25 Second/s"_s);
        QLabel plain(label.text());
        plain.resize(label.size());
        QCOMPARE(label.grab().toImage(), plain.grab().toImage());

        label.setCaption(std::string(100'000, '7') + kUnit, kUnit);
        QCOMPARE(label.text(), QString(4096, u'7') + u"\u2026 Second/s"_s);
        QImage shown = label.grab().toImage();
        bool unit = false; // whether the label shows the unit after some number of sevens
        for (int sevens = 0; sevens < 60 && !unit; ++sevens) {
            plain.setText(QString(sevens, u'7') + u"\u2026 Second/s"_s);
            unit = plain.grab().toImage() == shown;
        }
        QVERIFY(unit);

        label.setCaption("one\r\nline", kUnit);
        QCOMPARE(label.text(), u"one  line"_s);
        label.setCaption({}, kUnit);
        QCOMPARE(label.text(), QString());
    }

    void tabLabelsGiveWayUntilTheyFit()
    {
        TabStrip strip;
        for (const char* label : {"Search The Internet", "Specific Page Search", "Image Search"})
            strip.addTab(QLatin1String(label));
        strip.resize(1200, 40);
        strip.show();
        strip.setWantedFontSize(12);
        QCOMPARE(strip.font().pointSize(), 12);
        strip.resize(200, 40);
        QVERIFY(strip.font().pointSizeF() < 12);
        int width = 0;
        for (int i = 0; i < strip.count(); ++i)
            width += strip.tabRect(i).width();
        QVERIFY(width <= 200);
        strip.resize(1200, 40);
        QCOMPARE(strip.font().pointSize(), 12);
    }
};

QTEST_MAIN(ControlsTest)
#include "controls_test.moc"
