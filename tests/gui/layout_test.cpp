#include <cmath>

#include <QComboBox>
#include <QFontMetrics>
#include <QHeaderView>
#include <QMenuBar>
#include <QScrollBar>
#include <QStyleFactory>
#include <QStyleOptionButton>
#include <QStyleOptionComboBox>
#include <QStyleOptionFrame>
#include <QToolBar>

#include "platform/PagingSlider.h"
#include "platform/ProgramStyle.h"
#include "tab_controls.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

namespace {

constexpr QSize kDesign(608, 434);
constexpr QSize kMinimum(304, 217);
constexpr QSize kDouble(1216, 868);
constexpr int kCaptionAllowance = 400; // twips
constexpr int kTwips = 15;             // per pixel

/// Returns a length of the design, in pixels, at a ratio of recorded to present size. Rounds twips and pixels down.
int scaled(int pixels, double ratio)
{
    return static_cast<int>(std::floor(std::floor(pixels * kTwips / ratio) / kTwips));
}

double heightRatio(QSize size)
{
    return double(kDesign.height() * kTwips - kCaptionAllowance) / (size.height() * kTwips - kCaptionAllowance);
}

double widthRatio(QSize size)
{
    return double(kDesign.width()) / size.width();
}

int scaledFont(double points, QSize size)
{
    const int whole = static_cast<int>(std::floor(std::nearbyint(points) / widthRatio(size)));
    return whole + whole % 2;
}

} // namespace

class LayoutTest final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QApplication::setStyle(new ProgramStyle);
        window_ = std::make_unique<WindowFixture>();
        window_->start();
        points_ = QFontInfo(window_->main().font()).pointSizeF();
        for (QWidget* control : placed())
            design_.append(control->geometry());
        // Fills all lists; the page check comes last, because the image search empties its list.
        for (const int tag : {1, 3, 4, 5, 2}) {
            const TabControls& tab = tabOf(tag);
            window_->service.answerWith(pageOf(tab));
            fillIn(*window_, tab);
            QTest::mouseClick(window_->control<QPushButton>(tab.button), Qt::LeftButton);
            QTRY_VERIFY(window_->control<QPushButton>(tab.button)->isEnabled());
        }
        QVERIFY(window_->boxes.boxes().isEmpty());
    }

    void init()
    {
        window_->main().showNormal();
        window_->main().resize(kDesign);
    }

    void cleanupTestCase() { window_.reset(); }

    void theStartIsTheDesign()
    {
        WindowFixture fresh;
        fresh.start();
        QCOMPARE(fresh.main().size(), kDesign);
        QCOMPARE(fresh.control<QWidget>("STI")->geometry(), QRect(4, 66, 600, 318));
        QCOMPARE(fresh.control<QWidget>("Text1")->geometry(), QRect(104, 9, 376, 28));
        QCOMPARE(fresh.control<QWidget>("Command1")->geometry(), QRect(490, 9, 98, 28));
        QCOMPARE(fresh.control<QWidget>("ListView1")->geometry(), QRect(12, 70, 576, 206));
        QCOMPARE(fresh.control<QWidget>("StatusBar1")->geometry(), QRect(0, 386, 608, 22));
    }

    void everyControlFollowsTheWindow_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::newRow("design") << kDesign;
        QTest::newRow("a pixel more") << QSize(609, 435);
        QTest::newRow("wider only") << QSize(1000, 434);
        QTest::newRow("higher only") << QSize(608, 700);
        QTest::newRow("smaller") << QSize(431, 305);
        QTest::newRow("minimum") << kMinimum;
        QTest::newRow("double") << kDouble;
        QTest::newRow("full screen") << QSize(1920, 1040);
        QTest::newRow("large screen") << QSize(3840, 2160);
    }

    void everyControlFollowsTheWindow()
    {
        QFETCH(QSize, size);
        window_->main().resize(size);
        QCOMPARE(window_->main().size(), size);
        checkLayout(size);
    }

    void belowTheMinimumItIsTheMinimum()
    {
        window_->main().resize(kMinimum);
        const QRect list = window_->control<QWidget>("ListView1")->geometry();
        window_->main().resize(kDouble);
        window_->main().resize(100, 50);
        QCOMPARE(window_->main().size(), kMinimum);
        QCOMPARE(window_->control<QWidget>("ListView1")->geometry(), list);
    }

    void upDownAndBackIsWhereItWas()
    {
        for (const QSize size : {kDouble, kMinimum, QSize(1920, 1040), kDesign})
            window_->main().resize(size);
        checkLayout(kDesign);
    }

    void fullScreenAndMaximisedAndBackIsWhereItWas()
    {
        const QSize before = window_->main().size();
        for (const bool maximised : {false, true}) {
            if (maximised)
                window_->main().showMaximized();
            else
                window_->main().showFullScreen();
            QTRY_VERIFY(window_->main().size() != before);
            checkLayout(window_->main().size());
            window_->main().showNormal();
            QTRY_COMPARE(window_->main().size(), before);
            checkLayout(before);
        }
    }

    void minimisedAndBackIsWhereItWas()
    {
        window_->main().showMinimized();
        window_->main().showNormal();
        QTRY_COMPARE(window_->main().size(), kDesign);
        checkLayout(kDesign);
    }

    void nothingOverlapsOrLeavesItsFrame_data() { addSizes(); }

    void nothingOverlapsOrLeavesItsFrame()
    {
        QFETCH(QSize, size);
        window_->main().resize(size);
        QWidget* centre = window_->main().centralWidget();
        checkApart(*centre, {window_->control<QWidget>("Toolbar1"), window_->control<QWidget>("TabStrip1"),
                             window_->control<QWidget>("STI"), window_->control<QWidget>("StatusBar1")});
        for (const TabControls& tab : kTabs) {
            auto* frame = window_->control<QFrame>(tab.frame);
            QCOMPARE(frame->geometry(), window_->control<QFrame>("STI")->geometry());
            checkApart(*frame, frame->findChildren<QWidget*>(Qt::FindDirectChildrenOnly));
        }
        auto* bar = window_->control<QWidget>("StatusBar1");
        checkApart(*bar, {window_->control<QLabel>("ConnectionPanel"), window_->control<QLabel>("ActivityPanel")});
    }

    void textsFitTheirControls_data() { addSizes(); }

    void textsFitTheirControls()
    {
        QFETCH(QSize, size);
        window_->main().resize(size);
        window_->control<QLabel>("ConnectionPanel")->setText(u"Connection pending"_s);
        window_->control<QLabel>("ActivityPanel")->setText(u"Request Completed"_s);
        for (auto* label : window_->main().findChildren<QLabel*>()) {
            const bool wraps = label->objectName() == u"EngineMessage"_s;
            if (!wraps && label->isVisibleTo(label->parentWidget()))
                checkFits(*label, label->text(), label->contentsRect().size());
        }
        for (auto* button : window_->main().centralWidget()->findChildren<QPushButton*>()) {
            QStyleOptionButton option;
            option.initFrom(button);
            checkFits(*button, QString(button->text()).remove(u'&'),
                      button->style()->subElementRect(QStyle::SE_PushButtonContents, &option, button).size());
        }
        for (auto* field : window_->main().centralWidget()->findChildren<QLineEdit*>()) {
            QStyleOptionFrame option;
            option.initFrom(field);
            option.lineWidth = field->style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &option, field);
            checkFits(*field, u"typed text"_s,
                      field->style()->subElementRect(QStyle::SE_LineEditContents, &option, field).size());
        }
        auto* modes = window_->control<QComboBox>("Combo1");
        QStyleOptionComboBox option;
        option.initFrom(modes);
        const QRect text =
            modes->style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, modes);
        for (int i = 0; i < modes->count(); ++i)
            checkFits(*modes, modes->itemText(i), text.size());
        auto* strip = window_->control<QTabBar>("TabStrip1");
        for (int i = 0; i < strip->count(); ++i) {
            QVERIFY(strip->rect().contains(strip->tabRect(i)));
            checkFits(*strip, strip->tabText(i), strip->tabRect(i).size());
        }
    }

    void headersAndShortCellsAreReadInFull_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::newRow("design") << kDesign;
        QTest::newRow("double") << kDouble;
    }

    void headersAndShortCellsAreReadInFull()
    {
        QFETCH(QSize, size);
        window_->main().resize(size);
        for (const int tag : {1, 2, 5, 4}) {
            window_->chooseTab(tag); // a hidden control learns its new size only when it is shown
            auto* list = window_->control<QTreeView>(tabOf(tag).list);
            for (int column = 0; column < list->model()->columnCount(); ++column) {
                const QString header = list->model()->headerData(column, Qt::Horizontal).toString();
                const int margins = 2 * list->style()->pixelMetric(QStyle::PM_HeaderMargin, nullptr, list->header());
                const int needed = list->header()->fontMetrics().horizontalAdvance(header) + margins;
                QVERIFY2(needed <= list->columnWidth(column), qPrintable(header));
            }
        }
        auto* programs = window_->control<QTreeView>("ListView3");
        for (const int column : {3, 4}) { // size and license
            for (int row = 0; row < programs->model()->rowCount(); ++row) {
                const QModelIndex cell = programs->model()->index(row, column);
                QVERIFY2(programs->sizeHintForIndex(cell).width() <= programs->columnWidth(column),
                         qPrintable(cell.data().toString()));
            }
        }
    }

    void noListScrollsSideways_data() { addSizes(); }

    void noListScrollsSideways()
    {
        QFETCH(QSize, size);
        window_->main().resize(size);
        for (const TabControls& tab : kTabs) {
            if (tab.tag == 3)
                continue;
            window_->chooseTab(tab.tag);
            auto* list = window_->control<QTreeView>(tab.list);
            QVERIFY(list->model()->rowCount() > 0);
            QVERIFY2(!list->horizontalScrollBar()->isVisible(), tab.list);
        }
    }

    void columnsKeepTheirShares()
    {
        window_->chooseTab(5);
        auto* list = window_->control<QTreeView>("ListView4");
        QList<int> before;
        for (int column = 0; column < 3; ++column)
            before.append(list->columnWidth(column));
        window_->main().resize(kDouble);
        for (int column = 0; column < 2; ++column)
            QVERIFY(std::abs(list->columnWidth(column) - 2 * before[column]) <= 2);
        window_->main().resize(kDesign);
        for (int column = 0; column < 3; ++column)
            QCOMPARE(list->columnWidth(column), before[column]);
    }

    void aColumnThatAPersonWidenedKeepsItsShare()
    {
        window_->chooseTab(5);
        auto* list = window_->control<QTreeView>("ListView4");
        const int before = list->columnWidth(0);
        list->header()->resizeSection(0, before + 60);
        window_->main().resize(kDouble);
        QVERIFY(std::abs(list->columnWidth(0) - 2 * (before + 60)) <= 2);
        list->header()->resizeSection(0, 2 * before);
    }

    void theToolbarsPicturesGrowWithIt()
    {
        auto* toolbar = window_->control<QToolBar>("Toolbar1");
        const int side = toolbar->iconSize().width();
        window_->main().resize(kDouble);
        QVERIFY(toolbar->iconSize().width() > 3 * side / 2);
        for (QAction* action : toolbar->actions())
            QVERIFY(toolbar->widgetForAction(action)->isVisible());
        window_->main().resize(kMinimum);
        QVERIFY(toolbar->iconSize().width() < side);
        for (QAction* action : toolbar->actions())
            QVERIFY(toolbar->rect().contains(toolbar->widgetForAction(action)->geometry()));
    }

    void theMenusEntriesStandInTheMiddleOfTheirBar_data()
    {
        QTest::addColumn<QString>("style");
        for (const char* style : {"Fusion", "Windows"})
            QTest::newRow(style) << QString::fromLatin1(style);
    }

    void theMenusEntriesStandInTheMiddleOfTheirBar()
    {
        QFETCH(QString, style);
        auto* own = new ProgramStyle;
        own->setBaseStyle(QStyleFactory::create(style));
        QApplication::setStyle(own);
        const auto restore = qScopeGuard([] { QApplication::setStyle(new ProgramStyle); });
        QMenuBar* bar = window_->main().menuBar();
        for (QAction* action : bar->actions()) {
            const QRect entry = bar->actionGeometry(action);
            QVERIFY(std::abs(entry.center().y() - bar->rect().center().y()) <= 1);
        }
    }

    void theSliderWorksAtEverySize_data() { addSizes(); }

    // The slider is drawn as a band in the middle of the control; a click on the band must work.
    void theSliderWorksAtEverySize()
    {
        QFETCH(QSize, size);
        window_->main().resize(size);
        window_->chooseTab(1);
        auto* slider = window_->control<PagingSlider>("Slider1");
        window_->service.stall();
        slider->setWindow({1, 10, 1});
        slider->setEnabled(true);
        QTest::mouseClick(slider, Qt::LeftButton, {}, {slider->width() - 4, slider->height() / 2 - 2});
        QVERIFY(slider->value() > 1);
    }

    // Saves screenshots for inspection if QUARRYNET_SCREENSHOTS names an existing folder.
    void pictures()
    {
        const QString folder = qEnvironmentVariable("QUARRYNET_SCREENSHOTS");
        if (folder.isEmpty())
            return;
        for (const QSize size : {kDesign, kMinimum, kDouble, QSize(1920, 1040)}) {
            window_->main().resize(size);
            for (const TabControls& tab : kTabs) {
                window_->chooseTab(tab.tag);
                const QString name = u"%1/%2-%3.png"_s.arg(folder).arg(size.width()).arg(tab.tag);
                QVERIFY(window_->main().grab().save(name));
            }
        }
    }

private:
    static void addSizes()
    {
        QTest::addColumn<QSize>("size");
        QTest::newRow("design") << kDesign;
        QTest::newRow("minimum") << kMinimum;
        QTest::newRow("double") << kDouble;
        QTest::newRow("full screen") << QSize(1920, 1040);
    }

    /// Returns the controls that the layout places, in a fixed order.
    QList<QWidget*> placed()
    {
        QList<QWidget*> controls;
        for (auto* top : window_->main().centralWidget()->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
            controls.append(top);
            if (qobject_cast<QFrame*>(top))
                controls.append(top->findChildren<QWidget*>(Qt::FindDirectChildrenOnly));
        }
        return controls;
    }

    void checkLayout(QSize size)
    {
        const double ratioH = heightRatio(size);
        const double ratioW = widthRatio(size);
        const QList<QWidget*> controls = placed();
        QCOMPARE(controls.size(), design_.size());
        for (qsizetype i = 0; i < controls.size(); ++i) {
            const QRect& from = design_[i];
            const QRect expected(scaled(from.x(), ratioW), scaled(from.y(), ratioH), scaled(from.width(), ratioW),
                                 scaled(from.height(), ratioH));
            QVERIFY2(controls[i]->geometry() == expected, qPrintable(controls[i]->objectName()));
            if (controls[i]->objectName() != u"TabStrip1"_s) // its labels have to fit
                QCOMPARE(controls[i]->font().pointSize(), scaledFont(points_, size));
        }
    }

    static void checkApart(const QWidget& frame, const QList<QWidget*>& controls)
    {
        for (const QWidget* control : controls) {
            if (!control->isVisibleTo(&frame) && control->parentWidget() == &frame)
                continue; // it is never visible
            QVERIFY2(frame.rect().contains(control->geometry()), qPrintable(control->objectName()));
            for (const QWidget* other : controls) {
                QVERIFY2(other == control || !other->geometry().intersects(control->geometry()),
                         qPrintable(control->objectName() + u'/' + other->objectName()));
            }
        }
    }

    static void checkFits(const QWidget& control, const QString& text, QSize room)
    {
        const QFontMetrics metrics(control.font());
        const QRect ink = metrics.tightBoundingRect(text);
        const QString what = u"%1 \"%2\": %3 x %4 in %5 x %6"_s.arg(control.objectName(), text)
                                 .arg(metrics.horizontalAdvance(text))
                                 .arg(ink.height())
                                 .arg(room.width())
                                 .arg(room.height());
        QVERIFY2(metrics.horizontalAdvance(text) <= room.width() && ink.height() <= room.height(), qPrintable(what));
    }

    std::unique_ptr<WindowFixture> window_;
    QList<QRect> design_;
    double points_ = 0;
};

QTEST_MAIN(LayoutTest)
#include "layout_test.moc"
