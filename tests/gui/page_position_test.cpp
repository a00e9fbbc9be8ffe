#include <QAccessible>
#include <QPainter>
#include <QStyleFactory>
#include <QStyleOptionSlider>

#include "TextPlaces.h"
#include "platform/PagingSlider.h"
#include "tab_controls.h"
#include "tests/core/page_samples.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;
using namespace quarrynet::samples;

/// Tests what a slider says about the page that it shows.
class PagePositionTest final : public QObject
{
    Q_OBJECT

private slots:
    void anIdleSliderSaysNothing()
    {
        PagingSlider slider;
        QCOMPARE(slider.accessibleDescription(), QString());
        slider.setTotal(130);
        slider.reset();
        slider.setEnabled(true);
        QCOMPARE(slider.accessibleDescription(), u"page 1"_s);
        slider.setEnabled(false);
        QCOMPARE(slider.accessibleDescription(), QString());
    }

    void thePositionFollowsEveryChange()
    {
        PagingSlider slider;
        slider.setEnabled(true);
        slider.setWindow({10, 19, 12});
        QCOMPARE(slider.accessibleDescription(), u"page 12"_s);
        slider.setTotal(130);
        QCOMPARE(slider.accessibleDescription(), u"page 12 of 130"_s);
        slider.setValue(13);
        QCOMPARE(slider.accessibleDescription(), u"page 13 of 130"_s);
        QCOMPARE(slider.toolTip(), u"13"_s);
        slider.setTotal(9); // a window of ten pages may go beyond its total
        QCOMPARE(slider.accessibleDescription(), u"page 13 of 13"_s);
        slider.setTotal(std::nullopt);
        QCOMPARE(slider.accessibleDescription(), u"page 13"_s);
    }

    void largestNumbersAreDrawnInTime_data()
    {
        QTest::addColumn<int>("minimum");
        QTest::addColumn<int>("maximum");
        constexpr int kLargest = std::numeric_limits<int>::max();
        QTest::newRow("from one") << 1 << kLargest;
        QTest::newRow("the last ten") << kLargest - 9 << kLargest;
        QTest::newRow("one page") << 1 << 1;
    }

    void largestNumbersAreDrawnInTime()
    {
        QFETCH(int, minimum);
        QFETCH(int, maximum);
        PagingSlider slider;
        slider.setTickInterval(std::max(1, (maximum - minimum) / 10)); // the toolkit draws every tick mark
        slider.resize(576, 30);
        slider.setEnabled(true);
        slider.setWindow({minimum, maximum, maximum});
        slider.setTotal(maximum);
        QVERIFY(!slider.grab().isNull());
        QCOMPARE(slider.accessibleDescription(), u"page %1 of %1"_s.arg(maximum));
    }

    void aDragShowsThePageUnderTheThumb()
    {
        PagingSlider slider;
        slider.resize(576, 30);
        slider.setEnabled(true);
        slider.setTotal(130);
        slider.show();
        QTest::mousePress(&slider, Qt::LeftButton, {}, thumb(slider).center());
        QTest::mouseMove(&slider, {300, 15});
        const int page = slider.sliderPosition();
        QVERIFY(page > 1);
        QCOMPARE(slider.value(), 1);
        QCOMPARE(slider.accessibleDescription(), u"page %1 of 130"_s.arg(page));
        QCOMPARE(slider.toolTip(), QString::number(page));
        const int place = thumb(slider).center().x();
        QVERIFY2(std::abs(place - 300) < 60, qPrintable(QString::number(place)));
        QTest::mouseRelease(&slider, Qt::LeftButton, {}, {300, 15});
        QCOMPARE(slider.value(), page);
    }

    // A press on a text acts as one beside the thumb did before there were texts.
    void aPressOnATextTurnsThePage_data()
    {
        QTest::addColumn<QPoint>("place");
        QTest::newRow("the position") << QPoint(560, 8);
        QTest::newRow("right bottom corner") << QPoint(575, 29);
        QTest::newRow("a number") << QPoint(200, 28);
    }

    void aPressOnATextTurnsThePage()
    {
        QFETCH(QPoint, place);
        PagingSlider slider;
        slider.resize(576, 30);
        slider.setEnabled(true);
        slider.setTotal(130);
        slider.show();
        QTest::mouseClick(&slider, Qt::LeftButton, {}, place);
        QCOMPARE(slider.value(), 2);
        slider.setValue(10);
        QTest::mouseClick(&slider, Qt::LeftButton, {}, {0, 29});
        QCOMPARE(slider.value(), 9);
    }

    void theThumbTakesAPressInTheMiddleOfTheControl_data()
    {
        QTest::addColumn<QString>("style");
        QTest::addColumn<int>("height");
        QTest::addColumn<int>("points");
        for (const QString& style : {u"Fusion"_s, u"Windows"_s}) {
            for (const int height : {15, 22, 30, 40, 60, 73}) {
                for (const int points : {4, 7, 10, 24})
                    QTest::addRow("%s, %d, %d", qPrintable(style), height, points) << style << height << points;
            }
        }
    }

    void theThumbTakesAPressInTheMiddleOfTheControl()
    {
        QFETCH(QString, style);
        QFETCH(int, height);
        QFETCH(int, points);
        const std::unique_ptr<QStyle> drawn(QStyleFactory::create(style));
        PagingSlider slider;
        slider.setStyle(drawn.get());
        QFont font = slider.font();
        font.setPointSize(points);
        slider.setFont(font);
        slider.resize(576, height);
        slider.setEnabled(true);
        slider.setTotal(130);
        slider.show();
        QTest::mousePress(&slider, Qt::LeftButton, {}, {thumb(slider).center().x(), height / 2});
        QVERIFY(slider.isSliderDown());
        QTest::mouseRelease(&slider, Qt::LeftButton, {}, {thumb(slider).center().x(), height / 2});
        QCOMPARE(slider.value(), 1);
    }

    // Styles drew the tick marks of a slider that does not begin at the left below its caption.
    void fromRightToLeftTheTickMarksStayAtTheSlider_data()
    {
        QTest::addColumn<QString>("style");
        QTest::newRow("Fusion") << u"Fusion"_s;
        QTest::newRow("Windows") << u"Windows"_s;
    }

    void fromRightToLeftTheTickMarksStayAtTheSlider()
    {
        QFETCH(QString, style);
        const std::unique_ptr<QStyle> drawn(QStyleFactory::create(style));
        PagingSlider slider;
        slider.setStyle(drawn.get());
        slider.setLayoutDirection(Qt::RightToLeft);
        slider.resize(576, 30);
        slider.setEnabled(true);
        slider.setTotal(130);
        const QRect band = optionOf(slider).rect;
        QVERIFY(band.left() > 0);
        const QImage picture = slider.grab().toImage();
        const auto isEmpty = [&](int from, int to, int y) {
            for (int x = from; x < to; ++x) {
                if (picture.pixel(x, y) != picture.pixel(0, 0))
                    return false;
            }
            return true;
        };
        QVERIFY(isEmpty(0, band.left() - 1, band.bottom() - 1));
        QVERIFY(!isEmpty(band.left(), band.right(), band.bottom() - 1));
    }

    // At the window's minimum size there were no numbers at all, and long ones ran into each other.
    void asManyNumbersAsFitAreShown_data()
    {
        QTest::addColumn<QString>("style");
        QTest::addColumn<QSize>("size"); // at the window's minimum size, at its design and on a whole screen
        QTest::addColumn<int>("points");
        QTest::addColumn<int>("total");
        QTest::addColumn<Qt::LayoutDirection>("direction");
        using Place = std::pair<QSize, int>;
        for (const QString& style : {u"Fusion"_s, u"Windows"_s}) {
            for (const auto& [size, points] :
                 {Place(QSize(288, 14), 4), Place(QSize(576, 30), 10), Place(QSize(1818, 74), 28)}) {
                for (const int total : {1, 2, 12, 130, 99999, std::numeric_limits<int>::max()}) {
                    for (const Qt::LayoutDirection direction : {Qt::LeftToRight, Qt::RightToLeft}) {
                        QTest::addRow("%s, %d, %d, %d", qPrintable(style), size.width(), total, int(direction))
                            << style << size << points << total << direction;
                    }
                }
            }
        }
    }

    void asManyNumbersAsFitAreShown()
    {
        QFETCH(QString, style);
        QFETCH(QSize, size);
        QFETCH(int, points);
        QFETCH(int, total);
        QFETCH(Qt::LayoutDirection, direction);
        const std::unique_ptr<QStyle> drawn(QStyleFactory::create(style));
        PagingSlider slider;
        slider.setStyle(drawn.get());
        slider.setLayoutDirection(direction);
        QFont font = slider.font();
        font.setPointSize(points);
        slider.setFont(font);
        slider.resize(size);
        slider.setEnabled(true);
        slider.setWindow({std::max(1, total - 9), std::max(total, 10), total});
        slider.setTotal(total);
        QList<TextPlaces::Text> texts = TextPlaces(slider).texts();
        const auto isShown = [&](const QString& text) {
            return std::any_of(texts.begin(), texts.end(), [&](const auto& shown) { return shown.text == text; });
        };
        QVERIFY(isShown(QString::number(slider.minimum())));
        QVERIFY(isShown(QString::number(slider.maximum())));
        QVERIFY(isShown(slider.position()));
        if (size.height() > 14 && total <= 130)
            QCOMPARE(texts.size(), 11); // all numbers, and the position
        std::sort(texts.begin(), texts.end(), [](const auto& a, const auto& b) { return a.start.x() < b.start.x(); });
        for (qsizetype i = 0; i < texts.size(); ++i) {
            QVERIFY2(texts[i].place.left() >= 0 && texts[i].place.right() <= size.width(), qPrintable(texts[i].text));
            QVERIFY2(texts[i].start.y() <= size.height(), qPrintable(texts[i].text));
            if (i > 0)
                QVERIFY2(texts[i - 1].place.right() < texts[i].place.left(), qPrintable(texts[i].text));
        }
        QVERIFY(thumb(slider).right() < size.width() && thumb(slider).left() >= 0);
    }

    void everyPageUpdatesThePosition_data()
    {
        QTest::addColumn<int>("tag");
        QTest::addColumn<std::string>("page");
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("second");
        QTest::newRow("web") << 1 << webPage("1,234") << u"page 1 of 42"_s << u"page 2 of 42"_s;
        QTest::newRow("images") << 3 << imagePage("1,234") << u"page 1 of 124"_s << u"page 2 of 124"_s;
        QTest::newRow("downloads") << 4 << downloadHead("300", "1 - 1") + downloadEntry("a") << u"page 1 of 13"_s
                                   << u"page 2 of 13"_s;
        QTest::newRow("files, which have no total") << 5 << filePage(20) << u"page 1"_s << u"page 2"_s;
    }

    void everyPageUpdatesThePosition()
    {
        QFETCH(int, tag);
        QFETCH(std::string, page);
        QFETCH(QString, first);
        QFETCH(QString, second);
        WindowFixture window;
        window.start();
        window.service.answerWith(QByteArray::fromStdString(page));
        const TabControls& tab = tabOf(tag);
        auto* slider = window.control<PagingSlider>(tab.slider);
        auto* field = window.control<QLineEdit>(fillIn(window, tab));
        QCOMPARE(slider->accessibleDescription(), QString());
        QTest::keyClick(field, Qt::Key_Return);
        QTRY_COMPARE(slider->accessibleDescription(), first);
        QTest::keyClick(slider, Qt::Key_Right);
        QCOMPARE(slider->accessibleDescription(), second);
        QCOMPARE(slider->toolTip(), u"2"_s);
        const QAccessibleInterface* read = QAccessible::queryAccessibleInterface(slider);
        QCOMPARE(read->text(QAccessible::Description), second);
        QTRY_VERIFY(!window.control<QTimer>(tab.timer)->isActive());
        QCOMPARE(slider->accessibleDescription(), second);
        // Until a new search has its own pages, nothing is said about those of the last one.
        window.service.stall();
        QTest::keyClick(field, Qt::Key_Return);
        QCOMPARE(slider->accessibleDescription(), QString());
    }

    // Saves pictures of the slider for inspection if QUARRYNET_SCREENSHOTS names an existing folder.
    void pictures()
    {
        const QString folder = qEnvironmentVariable("QUARRYNET_SCREENSHOTS");
        if (folder.isEmpty())
            return;
        WindowFixture window;
        window.start();
        window.chooseTab(1);
        auto* slider = window.control<PagingSlider>("Slider1");
        for (const QSize size : {window.main().minimumSize(), QSize(608, 434), QSize(1920, 1040)}) {
            window.main().resize(size);
            QCoreApplication::processEvents();
            QPixmap shots(QSize(slider->width(), 5 * (slider->height() + 4)) * slider->devicePixelRatio());
            shots.setDevicePixelRatio(slider->devicePixelRatio());
            shots.fill(Qt::red);
            QPainter painter(&shots);
            int top = 0;
            for (const int total : {1, 2, 12, 130, 99999}) {
                slider->setEnabled(true);
                slider->setWindow({std::max(1, total - 9), std::max(total, 10), total});
                slider->setTotal(total);
                painter.drawPixmap(0, top, slider->grab());
                top += slider->height() + 4;
            }
            QVERIFY(shots.save(u"%1/positions-%2.png"_s.arg(folder).arg(size.width())));
        }
    }

private:
    static QStyleOptionSlider optionOf(const PagingSlider& slider)
    {
        class Opened final : public QSlider
        {
        public:
            using QSlider::initStyleOption;
        };
        QStyleOptionSlider option;
        (slider.*(&Opened::initStyleOption))(&option);
        return option;
    }

    static QRect thumb(const PagingSlider& slider)
    {
        const QStyleOptionSlider option = optionOf(slider);
        return slider.style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, &slider);
    }
};

QTEST_MAIN(PagePositionTest)
#include "page_position_test.moc"
