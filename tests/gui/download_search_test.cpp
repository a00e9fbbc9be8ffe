#include "WindowFixture.h"
#include "tab_controls.h"
#include "tests/core/page_samples.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;
using namespace quarrynet::samples;

namespace {

// A page with a count, a range, and entries "Program 1" and so on with links that hold their number.
QByteArray downloadPage(std::string_view count, std::string_view range, int entries)
{
    std::string page = downloadHead(count, range);
    for (int i = 1; i <= entries; ++i)
        page += downloadEntry("Program " + std::to_string(i), "/redir?id=" + std::to_string(i));
    return bytes(page);
}

} // namespace

class DownloadSearchTest final : public QObject
{
    Q_OBJECT

private slots:
    void init() { open(std::make_unique<WindowFixture>()); }

    void searchFillsRowsLinksLabelAndPaging()
    {
        window_->service.answerWith(dataFile("download_results.html"));
        window_->type("Text10", u"  fruit  sorter "_s);
        QTest::keyClick(window_->control<QLineEdit>("Text10"), Qt::Key_Return);
        QVERIFY(!button()->isEnabled());
        QVERIFY(timer()->isActive());
        QTRY_VERIFY(button()->isEnabled());

        QCOMPARE(window_->service.requests(),
                 QList<QByteArray>{"GET /3120-20-0-1-5.html?qt=fruit++sorter&ca=20 HTTP/1.1\r\n"
                                   "HOST: 127.0.0.1\r\n"
                                   "Connection: close\r\n"
                                   "User-Agent: Mozilla/4.0 (compatible; MSIE 5.00; Windows 98)\r\n"
                                   "ACCEPT: */*\r\n\r\n"});
        QCOMPARE(rows().size(), 12);
        QCOMPARE(rows()[0], u"Sour lemon 26.0|Sorts lemon by size, edition 26.|Windows 98, Linux|26.6MB|Shareware"_s);
        QCOMPARE(rows()[2], u"Fresh date 28.0|Sorts date by size, edition 28.|Windows 98, Linux|28.8MB|Demo"_s);
        QCOMPARE(links().size(), std::size_t(12));
        QCOMPARE(links()[11], std::string("/redir?pid=37&destUrl=http%3A%2F%2Ffiles37.example%2Ffig.zip"));
        QCOMPARE(window_->text("Label15"), u"63"_s);
        QCOMPARE(window_->hidden("Text13"), std::string("3"));
        QVERIFY(slider()->isEnabled());
        QCOMPARE(slider()->maximum(), 3);
        verifyIdle();
        QVERIFY(window_->boxes.boxes().isEmpty());
    }

    void pageTotalSurvivesIntoTheNextSearch()
    {
        window_->service.answerWith(downloadPage("300", "1 - 25", 25));
        search();
        QTRY_COMPARE(window_->hidden("Text13"), std::string("13"));
        QTest::keyClick(slider(), Qt::Key_Right);
        QTRY_COMPARE(window_->service.lastRequestLine(), QByteArray("GET /3120-20-0-2-5.html?qt=apple&ca=20 HTTP/1.1"));
        QTRY_VERIFY(!timer()->isActive());
        window_->service.answerWith(downloadPage("5", "1 - 5", 5));
        search(u"pear"_s);
        QVERIFY(!slider()->isEnabled());
        QTRY_COMPARE(rows().size(), 5);
        QCOMPARE(window_->service.lastRequestLine(), QByteArray("GET /3120-20-0-1-5.html?qt=pear&ca=20 HTTP/1.1"));
        QCOMPARE(window_->hidden("Text13"), std::string("13")); // few results leave it
        QVERIFY(!slider()->isEnabled());
    }

    void proxyRequestsHaveTwoSlashesFirstAndOneLater()
    {
        auto window = std::make_unique<WindowFixture>();
        window->useServiceAsProxy();
        open(std::move(window));
        const QByteArray rest = " HTTP/1.1\r\n"
                                "HOST: down.example\r\n"
                                "Proxy-Connection: close\r\n"
                                "User-Agent: Mozilla/4.0 (compatible; MSIE 5.00; Windows 98)\r\n"
                                "ACCEPT: */*\r\n\r\n";
        window_->service.answerWith(downloadPage("300", "1 - 25", 25));
        search();
        QTRY_COMPARE(rows().size(), 25);
        search();
        QTRY_COMPARE(rows().size(), 25);
        QTest::keyClick(slider(), Qt::Key_Right);
        QTRY_COMPARE(window_->service.requests(),
                     QList<QByteArray>({"GET http://down.example//3120-20-0-1-5.html?qt=apple&ca=20" + rest,
                                        "GET http://down.example/3120-20-0-1-5.html?qt=apple&ca=20" + rest,
                                        "GET http://down.example/3120-20-0-2-5.html?qt=apple&ca=20" + rest}));
    }

    void countsSetThePaging_data()
    {
        QTest::addColumn<QByteArray>("count");
        QTest::addColumn<bool>("enabled");
        QTest::addColumn<int>("maximum");
        QTest::addColumn<QByteArray>("total");
        const auto row = [](const char* count, bool enabled, int maximum, const char* total) {
            QTest::newRow(count) << QByteArray(count) << enabled << maximum << QByteArray(total);
        };
        row("0", false, 10, "");
        row("25", false, 10, "");
        row("26", true, 1, "1");
        row("37", true, 1, "1");
        row("38", true, 2, "2");
        row("63", true, 3, "3");
        row("224", true, 9, "9");
        row("225", true, 10, "13");
        row("300", true, 10, "13");
        row("2000000000", true, 10, "13");
        row(" 63 ", true, 3, "3");
        row("many", false, 10, "");
        row("", false, 10, "");
        row("-300", false, 10, "");
    }

    void countsSetThePaging()
    {
        QFETCH(QByteArray, count);
        QFETCH(bool, enabled);
        QFETCH(int, maximum);
        QFETCH(QByteArray, total);
        window_->service.answerWith(downloadPage(count.toStdString(), "1 - 2", 2));
        search();
        QTRY_COMPARE(rows().size(), 2);
        QCOMPARE(window_->text("Label15"), QString::fromLatin1(count));
        QCOMPARE(slider()->isEnabled(), enabled);
        QCOMPARE(slider()->maximum(), maximum);
        QCOMPARE(bytes(window_->hidden("Text13")), total);
        QVERIFY(window_->boxes.boxes().isEmpty());
        verifyIdle();
    }

    void pageChangeReplacesARunningSearch()
    {
        window_->service.stall();
        search();
        QTRY_COMPARE(window_->service.requests().size(), 1);
        slider()->setEnabled(true);
        QTest::keyClick(slider(), Qt::Key_Right);
        QVERIFY(!button()->isEnabled()); // of the search that was running
        QTRY_COMPARE(window_->service.requests().size(), 2);
        QTRY_COMPARE(window_->service.openConnections(), 1);
        window_->service.send("HTTP/1.1 200 OK\r\n\r\n" + downloadPage("3", "1 - 3", 3));
        window_->service.finish();
        QTRY_COMPARE(rows().size(), 3);
        QCOMPARE(links().size(), std::size_t(3));
        verifyIdle();
    }

    void nothingFoundIsSaidAndLeavesTheRest()
    {
        window_->service.answerWith(downloadPage("63", "1 - 25", 25));
        search();
        QTRY_COMPARE(rows().size(), 25);
        window_->service.answerWith("Found: <b>300</b> nothing here");
        QTest::keyClick(slider(), Qt::Key_Right);
        QTRY_COMPARE(window_->boxes.texts(), QStringList{u"No Software Found"_s});
        QCOMPARE(window_->boxes.boxes()[0].icon, QMessageBox::Information);
        QCOMPARE(window_->boxes.boxes()[0].title, u"Quarrynet"_s);
        QVERIFY(rows().isEmpty());
        QVERIFY(links().empty());
        QCOMPARE(window_->text("Label15"), u"0"_s);
        QCOMPARE(window_->hidden("Text13"), std::string("3"));
        QVERIFY(slider()->isEnabled());
        QCOMPARE(slider()->maximum(), 3);
        QTRY_VERIFY(!timer()->isActive());
        verifyIdle();
    }

    void brokenPagesGiveRowsAndAsManyLinks_data()
    {
        QTest::addColumn<QByteArray>("page");
        QTest::addColumn<int>("expected"); // rows; -1 for any number
        const auto row = [](const char* name, const QByteArray& page, int expected) {
            QTest::newRow(name) << page << expected;
        };
        const QByteArray whole = downloadPage("63", "26 - 37", 12);
        row("range in the middle", whole, 12);
        row("range with blanks", downloadPage("63", " 1 -  25 ", 25), 25);
        row("range backwards", downloadPage("63", "50 - 26", 12), 0);
        row("range of words", downloadPage("63", "first - last", 12), 0);
        row("last no number", downloadPage("63", "1 - last", 12), 0);
        row("first no number", downloadPage("63", "first - 3", 12), 3);
        row("no range", downloadPage("63", "", 12), -1);
        row("fewer entries than announced", downloadPage("63", "1 - 25", 2), 25);
        row("announces two thousand million", downloadPage("63", "1 - 2000000000", 2), -1);
        row("announces two thousand million and holds none", downloadPage("63", "1 - 2000000000", 0), -1);
        row("infinite", downloadPage("63", "1 - 1e999", 2), -1);
        for (const char* marker : {"Found:", "<b>", "</b>", " - ", "class", "OS:", " <", "/redir?", ">", "<", "\""}) {
            QByteArray page = whole;
            page.replace(marker, "~");
            row((QByteArray("without ") + marker).constData(), page, -1);
        }
        row("NULs", "main loop" + QByteArray(1000, '\0'), -1);
    }

    void brokenPagesGiveRowsAndAsManyLinks()
    {
        QFETCH(QByteArray, page);
        QFETCH(int, expected);
        window_->service.answerWith(page);
        search();
        QTRY_VERIFY_WITH_TIMEOUT(button()->isEnabled(), kPatience);
        if (expected >= 0)
            QCOMPARE(rows().size(), expected);
        QCOMPARE(links().size(), static_cast<std::size_t>(list()->model()->rowCount()));
        QVERIFY(window_->boxes.boxes().isEmpty());
        verifyIdle();
    }

    void stopEmptiesTheListAndADoubleClickFindsNothing()
    {
        window_->service.answerWith(downloadPage("300", "1 - 25", 25));
        search();
        QTRY_COMPARE(rows().size(), 25);
        window_->service.stall();
        QTest::keyClick(slider(), Qt::Key_Right);
        QTRY_COMPARE(window_->service.requests().size(), 2);
        QTest::keyClick(window_->control<QLineEdit>("Text10"), Qt::Key_Escape);
        QCOMPARE(window_->boxes.texts(), QStringList{u"User cancel the operation"_s});
        QVERIFY(rows().isEmpty());
        verifyIdle();
        QTest::mouseDClick(list()->viewport(), Qt::LeftButton, {}, QPoint(10, 10));
        QTest::keyClick(list(), Qt::Key_Return);
        QCOMPARE(window_->socketState("DownSock"), 0);
        window_->service.answerWith(downloadPage("2", "1 - 2", 2));
        search();
        QTRY_COMPARE(rows().size(), 2);
        QCOMPARE(links().size(), std::size_t(2));
    }

    void toolTipIsSetOnlyOverRows()
    {
        const QString hint = u"Double click Program Name to download the file"_s;
        QTest::mouseMove(list()->viewport(), QPoint(20, 20));
        QCOMPARE(list()->toolTip(), QString());
        window_->service.answerWith(downloadPage("2", "1 - 2", 2));
        search();
        QTRY_COMPARE(rows().size(), 2);
        QCOMPARE(list()->toolTip(), QString());
        QTest::mouseMove(list()->viewport(), QPoint(25, 25));
        QTRY_COMPARE(list()->toolTip(), hint);
        window_->service.answerWith("");
        search();
        QTRY_VERIFY(button()->isEnabled());
        QTest::mouseMove(list()->viewport(), QPoint(30, 30));
        QCOMPARE(list()->toolTip(), hint); // an empty list leaves it
    }

    void columnsAreNamed()
    {
        QStringList names;
        for (int column = 0; column < list()->model()->columnCount(); ++column)
            names.append(list()->model()->headerData(column, Qt::Horizontal).toString());
        QCOMPARE(names, QStringList({u"Program Name"_s, u"Description"_s, u"OS"_s, u"File Size"_s, u"License"_s}));
    }

private:
    void open(std::unique_ptr<WindowFixture> window)
    {
        window_ = std::move(window);
        window_->start();
        window_->chooseTab(4);
    }

    void search(const QString& keywords = u"apple"_s)
    {
        window_->control<QLineEdit>("Text10")->setText(keywords);
        QTest::mouseClick(button(), Qt::LeftButton);
    }

    void verifyIdle() { ::verifyIdle(*window_, tabOf(4)); }

    QPushButton* button() { return window_->control<QPushButton>("Command4"); }
    QSlider* slider() { return window_->control<QSlider>("Slider3"); }
    QTimer* timer() { return window_->control<QTimer>("SFDTimer"); }
    QTreeView* list() { return window_->control<QTreeView>("ListView3"); }
    QStringList rows() { return window_->rows("ListView3"); }
    const std::vector<std::string>& links() { return window_->control<HiddenListBox>("List10")->items(); }

    std::unique_ptr<WindowFixture> window_;
};

QTEST_MAIN(DownloadSearchTest)
#include "download_search_test.moc"
