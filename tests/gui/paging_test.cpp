#include "WindowFixture.h"
#include "platform/PagingSlider.h"
#include "tab_controls.h"
#include "tests/core/page_samples.h"

using namespace quarrynet;
using namespace quarrynet::samples;

namespace {

// What a tab with a slider is told: many pages, then six. The file search's service announces no total.
struct Announced
{
    int tag;
    std::string many;
    std::string six;
    PagingWindow behindIt;          // of the slider once six pages are announced, at page 11
    QByteArray targetOfThePageLeft; // a piece of the request for the page before
};

const std::vector<Announced>& announcements()
{
    static const std::vector<Announced> kAll = {
        {1, webPage("1,234"), webPage("185"), {1, 6, 6}, "&start=120&"},
        {3, imagePage("1,234"), imagePage("56"), {1, 6, 6}, "&start=40&"},
        {4,
         downloadHead("300", "1 - 1") + downloadEntry("a"),
         downloadHead("150", "1 - 1") + downloadEntry("a"),
         {1, 6, 6},
         "/3120-20-0-5-5.html"},
        {5, filePage(20), filePage(20), {10, 19, 11}, "&f=181"},
    };
    return kAll;
}

} // namespace

class PagingTest final : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        window_ = std::make_unique<WindowFixture>();
        window_->start();
    }

    // The slider kept 10 as its minimum, lost the total, and could not be moved until a new search.
    void aTotalBelowTheWindowBringsTheFirstPagesBack_data() { addRows(); }

    void aTotalBelowTheWindowBringsTheFirstPagesBack()
    {
        const Announced& announced = reachTheSecondWindow();
        window_->service.answerWith(QByteArray::fromStdString(announced.six));
        QTest::keyClick(slider(), Qt::Key_Right);
        QCOMPARE(slider()->value(), 11);
        waitForTheEnd();
        QCOMPARE(slider()->window(), announced.behindIt);
        QVERIFY(slider()->isEnabled());

        // The next request is that of a person's key; the program's own change of the slider raised none.
        QTest::keyClick(slider(), Qt::Key_Left);
        QCOMPARE(slider()->value(), announced.behindIt.value - 1);
        waitForTheEnd();
        QCOMPARE(window_->service.requests().size(), 4);
        QVERIFY2(window_->service.lastRequestLine().contains(announced.targetOfThePageLeft),
                 window_->service.lastRequestLine().constData());
        QTest::keyClick(slider(), Qt::Key_Home);
        QCOMPARE(slider()->value(), announced.behindIt.minimum);
        waitForTheEnd();
        QVERIFY(window_->boxes.boxes().isEmpty());
    }

    // The same where the total is read when a person reaches the window's end.
    void aTotalBelowTheWindowIsReadAtItsEnd_data()
    {
        QTest::addColumn<int>("tag");
        QTest::addColumn<QByteArray>("total");
        QTest::newRow("web") << 1 << QByteArray("Text3");
        QTest::newRow("images") << 3 << QByteArray("Text8");
        QTest::newRow("downloads") << 4 << QByteArray("Text13");
    }

    void aTotalBelowTheWindowIsReadAtItsEnd()
    {
        QFETCH(QByteArray, total);
        const Announced& announced = reachTheSecondWindow();
        window_->control<HiddenText>(total.constData())->setText("6");
        window_->service.stall();
        QTest::keyClick(slider(), Qt::Key_End);
        QCOMPARE(slider()->window(), (PagingWindow{1, 6, 6}));
        QTRY_COMPARE(window_->service.requests().size(), 3);
        QTest::keyClick(slider(), Qt::Key_Left);
        QTRY_COMPARE(window_->service.requests().size(), 4);
        QVERIFY(window_->service.lastRequestLine().contains(announced.targetOfThePageLeft));
    }

private:
    static void addRows()
    {
        QTest::addColumn<int>("tag");
        for (const Announced& announced : announcements())
            QTest::newRow(tabOf(announced.tag).slider) << announced.tag;
    }

    // Searches on the row's tab and goes to page 10, where pages 10 to 19 come on offer.
    const Announced& reachTheSecondWindow()
    {
        const int tag = *static_cast<int*>(QTest::qData("tag", QMetaType::Int));
        tab_ = &tabOf(tag);
        const Announced& announced = *std::find_if(announcements().begin(), announcements().end(),
                                                   [tag](const Announced& row) { return row.tag == tag; });
        window_->service.answerWith(QByteArray::fromStdString(announced.many));
        QTest::keyClick(window_->control<QLineEdit>(fillIn(*window_, *tab_)), Qt::Key_Return);
        waitForTheEnd();
        if (tag == 4)
            window_->control<HiddenText>("Text13")->setText("40"); // its pages never announce so many
        slider()->setFocus();
        QTest::keyClick(slider(), Qt::Key_End);
        waitForTheEnd();
        if (slider()->window() != PagingWindow{10, 19, 10})
            QTest::qFail("pages 10 to 19 are not on offer", __FILE__, __LINE__);
        return announced;
    }

    void waitForTheEnd() { QTRY_VERIFY(!window_->control<QTimer>(tab_->timer)->isActive()); }

    PagingSlider* slider() { return window_->control<PagingSlider>(tab_->slider); }

    const TabControls* tab_ = nullptr;
    std::unique_ptr<WindowFixture> window_;
};

QTEST_MAIN(PagingTest)
#include "paging_test.moc"
