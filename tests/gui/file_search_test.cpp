#include "WindowFixture.h"
#include "tab_controls.h"
#include "tests/core/page_samples.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;
using namespace quarrynet::samples;

namespace {

QByteArray page(std::size_t files, std::size_t directories = 0)
{
    return bytes(filePage(files, directories));
}

const QByteArray kFirstPage = "GET /cgi-bin/s?t=f&d=&l=en&m=20&q=";

} // namespace

class FileSearchTest final : public QObject
{
    Q_OBJECT

private slots:
    void init() { open(std::make_unique<WindowFixture>()); }

    void searchFillsFilesAndDirectories()
    {
        window_->service.answerWith(dataFile("file_results.html"));
        window_->type("Text11", u" setup exe "_s);
        QTest::keyClick(window_->control<QLineEdit>("Text11"), Qt::Key_Return);
        QVERIFY(!button()->isEnabled());
        QVERIFY(timer()->isActive());
        QTRY_VERIFY(button()->isEnabled());

        QCOMPARE(window_->service.requests(),
                 QList<QByteArray>{kFirstPage + "setup+exe HTTP/1.1\r\n"
                                                "HOST: 127.0.0.1\r\n"
                                                "Connection: close\r\n"
                                                "User-Agent: Mozilla/4.0 (compatible; MSIE 5.00; Windows 98)\r\n"
                                                "ACCEPT: */*\r\n\r\n"});
        QCOMPARE(rows().size(), 15);
        QCOMPARE(rows()[0], u"pear.zip|ftp://mirror1.example/pub/green/pear.zip|104,729"_s);
        QCOMPARE(rows()[11], u"plum.zip|ftp://mirror12.example/pub/yellow/plum.zip|1,256,748"_s);
        QCOMPARE(rows()[12], u"green|ftp://mirror1.example/pub/green|<Dir>"_s);
        QCOMPARE(rows()[14], u"black|ftp://mirror3.example/pub/black|<Dir>"_s);
        QVERIFY(!slider()->isEnabled());
        QCOMPARE(window_->hidden("Text15"), std::string());
        QCOMPARE(scratch().size(), std::size_t(3));
        verifyIdle();
        QVERIFY(window_->boxes.boxes().isEmpty());
    }

    void twentyFiveFilesFillTwentyRowsAndOfferPages()
    {
        window_->service.answerWith(page(25, 3));
        search();
        QTRY_COMPARE(rows().size(), 20);
        QVERIFY(!rows()[19].endsWith(u"<Dir>"_s));
        QVERIFY(slider()->isEnabled());
        QCOMPARE(window_->hidden("Text15"), std::string("enabled"));
        QCOMPARE(slider()->maximum(), 10);
        verifyIdle();
    }

    void directoriesFillUpToTwentyRows()
    {
        window_->service.answerWith(page(18, 5));
        search();
        QTRY_COMPARE(rows().size(), 20);
        QCOMPARE(rows()[17], u"a.zip|ftp://h.example/a.zip|1,234"_s);
        QCOMPARE(rows()[18], u"dir|ftp://h.example/dir|<Dir>"_s);
        QVERIFY(slider()->isEnabled());
    }

    void secondPageAsksFromTheTwentyFirstResult()
    {
        window_->service.answerWith(page(20));
        search();
        QTRY_VERIFY(slider()->isEnabled());
        window_->service.stall();
        QTest::keyClick(slider(), Qt::Key_Right);
        QVERIFY(button()->isEnabled()); // a page change leaves it
        QVERIFY(timer()->isActive());
        QVERIFY(rows().isEmpty());
        QCOMPARE(window_->hidden("Text16"), std::string());
        QCOMPARE(window_->hidden("Text15"), std::string("enabled"));
        QTRY_COMPARE(window_->service.lastRequestLine(), kFirstPage + "apple&f=21 HTTP/1.1");
        window_->service.answerWith(page(20));
        QTest::keyClick(slider(), Qt::Key_Home);
        QTRY_COMPARE(window_->service.lastRequestLine(), kFirstPage + "apple&f=1 HTTP/1.1");
        QTRY_COMPARE(rows().size(), 20);
    }

    void newSearchStartsFromTheFirstPageForm()
    {
        window_->service.answerWith(page(20));
        search();
        QTRY_VERIFY(slider()->isEnabled());
        QTest::keyClick(slider(), Qt::Key_End);
        QTRY_COMPARE(window_->service.requests().size(), 2);
        QTRY_VERIFY(!timer()->isActive());
        window_->service.stall();
        search(u"pear"_s);
        QVERIFY(!slider()->isEnabled());
        QCOMPARE(slider()->minimum(), 1);
        QCOMPARE(slider()->maximum(), 10);
        QCOMPARE(slider()->value(), 1);
        QCOMPARE(window_->hidden("Text15"), std::string());
        QVERIFY(rows().isEmpty());
        QTRY_COMPARE(window_->service.lastRequestLine(), kFirstPage + "pear HTTP/1.1");
    }

    void proxyRequestsFollowTheSliderToo()
    {
        auto window = std::make_unique<WindowFixture>();
        window->useServiceAsProxy();
        open(std::move(window));
        const QByteArray first = "GET http://file.example/cgi-bin/s?t=f&d=&l=en&m=20&q=apple";
        const QByteArray rest = " HTTP/1.1\r\n"
                                "HOST: file.example\r\n"
                                "Proxy-Connection: close\r\n"
                                "User-Agent: Mozilla/4.0 (compatible; MSIE 5.00; Windows 98)\r\n"
                                "ACCEPT: */*\r\n\r\n";
        window_->service.answerWith(page(20));
        search();
        QTRY_VERIFY(slider()->isEnabled());
        QTest::keyClick(slider(), Qt::Key_Right);
        QTRY_COMPARE(window_->service.requests(), QList<QByteArray>({first + rest, first + "&f=21" + rest}));
    }

    void nothingFoundIsSaid()
    {
        window_->service.answerWith("<form></form>" + bytes(fileEntry("a")) + " not found");
        search();
        QTRY_COMPARE(window_->boxes.texts(), QStringList{u"No site found"_s});
        QCOMPARE(window_->boxes.boxes()[0].icon, QMessageBox::Information);
        QTRY_VERIFY(button()->isEnabled());
        QVERIFY(rows().isEmpty());
        QVERIFY(!slider()->isEnabled());
        verifyIdle();
    }

    void nothingMoreFoundIsSaidOnALaterPage()
    {
        window_->service.answerWith(page(20));
        search();
        QTRY_VERIFY(slider()->isEnabled());
        window_->service.answerWith("File not found");
        QTest::keyClick(slider(), Qt::Key_Right);
        QTRY_COMPARE(window_->boxes.texts(), QStringList{u"No more site found"_s});
        QTRY_VERIFY(!timer()->isActive());
        QVERIFY(!slider()->isEnabled());
        QCOMPARE(window_->hidden("Text15"), std::string("enabled"));
        QVERIFY(rows().isEmpty());
        verifyIdle();
    }

    void shortLaterPageEndsThePaging()
    {
        window_->service.answerWith(page(20));
        search();
        QTRY_VERIFY(slider()->isEnabled());
        window_->service.answerWith(page(7));
        QTest::keyClick(slider(), Qt::Key_Right);
        QTRY_COMPARE(rows().size(), 7);
        QVERIFY(!slider()->isEnabled());
        QCOMPARE(window_->hidden("Text15"), std::string("enabled")); // left as it is
    }

    void scratchListGrowsFromSearchToSearch()
    {
        window_->service.answerWith(page(1, 2));
        search();
        QTRY_COMPARE(rows().size(), 3);
        QCOMPARE(scratch().size(), std::size_t(2));
        const std::string position = scratch()[0];
        search();
        QTRY_COMPARE(rows().size(), 3);
        QCOMPARE(scratch(), std::vector<std::string>(4, position));
        search(u"pear"_s);
        QVERIFY(rows().isEmpty());
        QCOMPARE(scratch().size(), std::size_t(4)); // never cleared
        QTRY_COMPARE(scratch().size(), std::size_t(6));
    }

    void directoryWithOneLinkAndNothingInTheScratchListHasNoAddress()
    {
        window_->service.answerWith("&lt;dir&gt; <a href=/s?q=ftp://h.example/dir class=d><b>dir</b></a>");
        search();
        QTRY_COMPARE(rows(), QStringList{u"dir||<Dir>"_s});
        QVERIFY(scratch().empty());
        click(0);
        QCOMPARE(window_->shell.opened, std::vector<std::string>{""}); // which opens nothing
    }

    void samePageTwiceGivesItsRowsAgain()
    {
        window_->service.answerWith(page(2));
        search();
        QTRY_COMPARE(rows().size(), 2);
        search();
        QVERIFY(rows().isEmpty());
        QTRY_COMPARE(rows().size(), 2);
    }

    void aFaultInThePageKeepsWhatWasCutAndEndsIdle()
    {
        window_->service.answerWith(page(3) + "<b> 9 ");
        search();
        QTRY_COMPARE(window_->boxes.texts(),
                     QStringList{u"Run-time error '5':\n\nInvalid procedure call or argument"_s});
        QTRY_VERIFY(button()->isEnabled());
        QCOMPARE(rows().size(), 3);
        verifyIdle();
    }

    void aFaultOnALaterPageLeavesThePaging()
    {
        window_->service.answerWith(page(20));
        search();
        QTRY_VERIFY(slider()->isEnabled());
        window_->service.answerWith(page(3) + "<b> 9 ");
        QTest::keyClick(slider(), Qt::Key_Right);
        QTRY_COMPARE(window_->boxes.boxes().size(), 1);
        QTRY_VERIFY(!timer()->isActive());
        QVERIFY(slider()->isEnabled());
        QCOMPARE(rows().size(), 3);
    }

    void pagesCutAnywhereEndIdle()
    {
        const QByteArray whole = page(2, 2);
        for (qsizetype length = 1; length < whole.size(); length += 7) {
            window_->service.answerWith(whole.left(length));
            search();
            QTRY_VERIFY(button()->isEnabled());
            QTRY_COMPARE(window_->socketState("SFSSock"), 0);
            QVERIFY(!timer()->isActive());
            QVERIFY(list()->model()->rowCount() <= 20);
        }
    }

    void doubleClickOpensTheRowsAddress()
    {
        window_->service.answerWith("<form></form>" + bytes(fileEntry("a.zip") + fileEntry("b.zip")));
        search();
        QTRY_COMPARE(rows().size(), 2);
        click(1);
        QCOMPARE(window_->shell.opened, std::vector<std::string>{"ftp://h.example/b.zip"});
        click(0);
        QCOMPARE(window_->shell.opened.size(), std::size_t(2));
        QCOMPARE(window_->shell.opened[1], std::string("ftp://h.example/a.zip"));
    }

    void onlyOneRowIsSelected()
    {
        window_->service.answerWith(page(3));
        search();
        QTRY_COMPARE(rows().size(), 3);
        const auto centre = [this](int row) { return list()->visualRect(list()->model()->index(row, 0)).center(); };
        QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, centre(0));
        QTest::mouseClick(list()->viewport(), Qt::LeftButton, Qt::ControlModifier, centre(2));
        QCOMPARE(list()->selectionModel()->selectedRows().size(), 1);
    }

    void doubleClickWithoutASelectionOpensNothing()
    {
        QTest::mouseDClick(list()->viewport(), Qt::LeftButton, {}, QPoint(10, 10));
        window_->service.answerWith(page(1));
        search();
        QTRY_COMPARE(rows().size(), 1);
        QTest::mouseDClick(list()->viewport(), Qt::LeftButton, {}, list()->viewport()->rect().bottomLeft());
        QVERIFY(window_->shell.opened.empty());
    }

    void toolTipIsSetOnlyOverRows()
    {
        QTest::mouseMove(list()->viewport(), QPoint(20, 20));
        QCOMPARE(list()->toolTip(), QString());
        window_->service.answerWith(page(1));
        search();
        QTRY_COMPARE(rows().size(), 1);
        QTest::mouseMove(list()->viewport(), QPoint(25, 25));
        QTRY_COMPARE(list()->toolTip(), u"Double Click FileName to download"_s);
    }

    void columnsAreNamed()
    {
        QStringList names;
        for (int column = 0; column < list()->model()->columnCount(); ++column)
            names.append(list()->model()->headerData(column, Qt::Horizontal).toString());
        QCOMPARE(names, QStringList({u"FileName"_s, u"FilePath"_s, u"FileSize"_s}));
    }

private:
    void open(std::unique_ptr<WindowFixture> window)
    {
        window_ = std::move(window);
        window_->start();
        window_->chooseTab(5);
    }

    void search(const QString& name = u"apple"_s)
    {
        window_->control<QLineEdit>("Text11")->setText(name);
        QTest::mouseClick(button(), Qt::LeftButton);
    }

    void click(int row)
    {
        const QPoint place = list()->visualRect(list()->model()->index(row, 0)).center();
        QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, place);
        QTest::mouseDClick(list()->viewport(), Qt::LeftButton, {}, place);
    }

    void verifyIdle() { ::verifyIdle(*window_, tabOf(5)); }

    QPushButton* button() { return window_->control<QPushButton>("Command5"); }
    QSlider* slider() { return window_->control<QSlider>("Slider4"); }
    QTimer* timer() { return window_->control<QTimer>("SFSTimer"); }
    QTreeView* list() { return window_->control<QTreeView>("ListView4"); }
    QStringList rows() { return window_->rows("ListView4"); }
    const std::vector<std::string>& scratch() { return window_->control<HiddenListBox>("List11")->items(); }

    std::unique_ptr<WindowFixture> window_;
};

QTEST_MAIN(FileSearchTest)
#include "file_search_test.moc"
