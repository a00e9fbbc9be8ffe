#include "WindowFixture.h"
#include "platform/PagingSlider.h"
#include "tab_controls.h"
#include "tests/core/page_samples.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;
using namespace quarrynet::samples;

/// What the four tabs with a slider have in common. What only one of them does is tested in the file of that tab.
namespace {

struct PagedTab
{
    int tag;
    const char* total; // the hidden field with the page total; null where the service announces none
    const char* count; // the label with the number of results; null where there is none
    // The first request's target: before and behind the query, and what precedes it on the way through a proxy.
    QByteArray beforeQuery;
    QByteArray afterQuery;
    QByteArray proxied;
    QByteArray host;
    std::string many;               // a page that announces as many pages as the tab can go to
    std::string six;                // one that announces six pages
    PagingWindow behindSix;         // of the slider once six pages are announced, at page 11
    QByteArray targetOfThePageLeft; // a piece of the request for the page before
    QByteArray targetOfPageTwo;
};

const std::vector<PagedTab>& pagedTabs()
{
    static const std::vector<PagedTab> kAll = {
        {1,
         "Text3",
         "Label3",
         "/search?num=30&hl=en&filter=0&safe=off&q=",
         "",
         "http://web.example",
         "web.example",
         webPage("1,234"),
         webPage("185"),
         {1, 6, 6},
         "&start=120&",
         "&start=30&"},
        {3,
         "Text8",
         "Label11",
         "/images?num=10&hl=en&filter=0&safe=off&q=",
         "",
         "http://img.example",
         "img.example",
         imagePage("1,234"),
         imagePage("56"),
         {1, 6, 6},
         "&start=40&",
         "&start=10&"},
        {4,
         "Text13",
         "Label15",
         "/3120-20-0-1-5.html?qt=",
         "&ca=20",
         "http://down.example/",
         "down.example",
         downloadHead("300", "1 - 1") + downloadEntry("a"),
         downloadHead("150", "1 - 1") + downloadEntry("a"),
         {1, 6, 6},
         "/3120-20-0-5-5.html",
         "/3120-20-0-2-5.html"},
        {5,
         nullptr,
         nullptr,
         "/cgi-bin/s?t=f&d=&l=en&m=20&q=",
         "",
         "http://file.example",
         "file.example",
         filePage(20),
         filePage(20),
         {10, 19, 11},
         "&f=181",
         "&f=21"},
    };
    return kAll;
}

// What the slider shows after each press of End, and a piece of the request that follows.
struct Widening
{
    const char* name;
    int tag;
    std::string page;
    const char* total; // written over what the page announced; null to leave it
    std::vector<std::pair<PagingWindow, QByteArray>> presses;
};

const std::vector<Widening>& widenings()
{
    static const std::vector<Widening> kAll = {
        // 741 / 30 = 24.7, remainder 21
        {"web, 25 pages", 1, webPage("741"), nullptr, {{{10, 19, 10}, "start=270&"}, {{10, 25, 19}, "start=540&"}}},
        {"images, 50 pages", 3, imagePage("1,234"), "50", {{{10, 19, 10}, "start=90&"}}},
        {"images, 12 pages", 3, imagePage("1,234"), "12", {{{1, 12, 10}, "start=90&"}}},
        {"downloads, 13 pages",
         4,
         downloadHead("300", "1 - 1") + downloadEntry("a"),
         nullptr,
         {{{1, 13, 10}, "/3120-20-0-10-5.html?qt=apple&ca=20 "},
          {{1, 13, 13}, "/3120-20-0-13-5.html?qt=apple&ca=20 "}}},
        {"downloads, 40 pages",
         4,
         downloadHead("300", "1 - 1") + downloadEntry("a"),
         "40",
         {{{10, 19, 10}, "-10-5.html"}}},
        {"files",
         5,
         filePage(20),
         nullptr,
         {{{10, 19, 10}, "&f=181 "}, {{19, 28, 19}, "&f=361 "}, {{28, 37, 28}, "&f=541 "}, {{37, 46, 37}, "&f=721 "}}},
    };
    return kAll;
}

} // namespace

class PagedSearchTest final : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        window_ = std::make_unique<WindowFixture>();
        const int* tag = static_cast<int*>(QTest::qData("tag", QMetaType::Int));
        tab_ = &tabOf(*tag);
        paged_ = &*std::find_if(pagedTabs().begin(), pagedTabs().end(),
                                [tag](const PagedTab& row) { return row.tag == *tag; });
    }

    void emptyKeywordsAreRefused_data() { addRows(); }

    void emptyKeywordsAreRefused()
    {
        start();
        QTest::mouseClick(button(), Qt::LeftButton);
        QTest::keyClick(field(), Qt::Key_Return);
        const QString text = u"Please enter keyword/s to search!!!"_s;
        QCOMPARE(window_->boxes.texts(), QStringList({text, text}));
        for (const auto& box : window_->boxes.boxes()) {
            QCOMPARE(box.icon, QMessageBox::Information);
            QCOMPARE(box.title, u"Quarrynet"_s);
        }
        QVERIFY(button()->isEnabled());
        QVERIFY(!timer()->isActive());
        QCOMPARE(window_->socketState(tab_->socket), 0);
        QVERIFY(window_->service.requests().isEmpty());
    }

    void keywordsAreTrimmedAndOtherwisePassAsTyped_data()
    {
        QTest::addColumn<int>("tag");
        QTest::addColumn<QString>("keywords");
        QTest::addColumn<QByteArray>("query");
        for (const PagedTab& tab : pagedTabs()) {
            const auto row = [&tab](const char* name, const QString& keywords, const QByteArray& query) {
                QTest::addRow("%s, %s", tabOf(tab.tag).frame, name) << tab.tag << keywords << query;
            };
            row("blanks alone", u"   "_s, "");
            row("blanks around and between", u"  a  b "_s, "a++b");
            row("signs", u"a&b#c%d\""_s, "a&b#c%d\"");
            row("an assignment", u"a&f=9%"_s, "a&f=9%");
            row("letters beyond ASCII", u"käse é"_s, u"käse+é"_s.toLocal8Bit());
            row("100 KB", QString(100'000, u'k'), QByteArray(100'000, 'k'));
        }
    }

    void keywordsAreTrimmedAndOtherwisePassAsTyped()
    {
        QFETCH(QString, keywords);
        QFETCH(QByteArray, query);
        start();
        window_->service.answerWith(bytes(paged_->many));
        search(keywords);
        waitForTheEnd();
        QVERIFY(!showsNothing());
        QCOMPARE(window_->service.lastRequestLine(),
                 "GET " + paged_->beforeQuery + query + paged_->afterQuery + " HTTP/1.1");
    }

    void theSettingsFileNamesTheService_data() { addRows(); }

    void theSettingsFileNamesTheService()
    {
        window_->hosts = {"web.invalid", "img.invalid", "down.invalid", "file.invalid", window_->service.port()};
        window_->writeSettings("[Services]\nWebSearchHost=127.0.0.1\nImageSearchHost=127.0.0.1\n"
                               "DownloadSiteHost=127.0.0.1\nFileSearchHost=127.0.0.1\n");
        start();
        window_->service.answerWith(bytes(paged_->many));
        search(QStringLiteral("apple"));
        waitForTheEnd();
        QVERIFY(!showsNothing());
        QVERIFY(window_->service.requests().constFirst().contains("HOST: 127.0.0.1\r\n"));
    }

    void aProxyIsAskedInTheAbsoluteForm_data() { addRows(); }

    void aProxyIsAskedInTheAbsoluteForm()
    {
        window_->useServiceAsProxy();
        start();
        window_->service.answerWith(bytes(paged_->many));
        search();
        QTRY_VERIFY(!window_->service.requests().isEmpty());
        QCOMPARE(window_->service.requests()[0], "GET " + paged_->proxied + paged_->beforeQuery + "apple" +
                                                     paged_->afterQuery +
                                                     " HTTP/1.1\r\n"
                                                     "HOST: " +
                                                     paged_->host +
                                                     "\r\n"
                                                     "Proxy-Connection: close\r\n"
                                                     "User-Agent: Mozilla/4.0 (compatible; MSIE 5.00; Windows 98)\r\n"
                                                     "ACCEPT: */*\r\n\r\n");
        waitForTheEnd();
    }

    void aResetShowsTheErrorBoxAndRunsNoParser_data() { addRows(); }

    void aResetShowsTheErrorBoxAndRunsNoParser()
    {
        start();
        window_->service.stall();
        search();
        QTRY_COMPARE(window_->service.requests().size(), 1);
        window_->service.send("HTTP/1.1 200 OK\r\n\r\n" + bytes(paged_->many));
        QTRY_COMPARE(window_->text("ActivityPanel"), u"Downloading Data"_s);
        window_->service.reset();
        QTRY_COMPARE(window_->boxes.boxes().size(), 1);
        QCOMPARE(window_->boxes.boxes()[0].title, u"Error"_s);
        QCOMPARE(window_->boxes.boxes()[0].icon, QMessageBox::Warning);
        QVERIFY(window_->boxes.texts()[0].startsWith(u"Error occurred.\r\nError #: 10054\r\n"_s));
        QTRY_VERIFY(button()->isEnabled());
        QVERIFY(showsNothing());
        QVERIFY(!timer()->isActive());
        QCOMPARE(window_->text("ConnectionPanel"), u"Closed"_s);
        QCOMPARE(window_->text("ActivityPanel"), u"Downloading Data"_s);
    }

    void anEmptyPageSaysNothing_data() { addRows(); }

    void anEmptyPageSaysNothing()
    {
        start();
        window_->service.answerWith("");
        search();
        QTRY_COMPARE(window_->service.requests().size(), 1);
        waitForTheEnd();
        QVERIFY(window_->boxes.boxes().isEmpty());
        QVERIFY(showsNothing());
        if (paged_->count)
            QCOMPARE(window_->text(paged_->count), u"0"_s);
        QVERIFY(!slider()->isEnabled());
        verifyIdle(*window_, *tab_);
    }

    void aPageChangeEmptiesTheResultsAndLeavesTheButton_data() { addRows(); }

    void aPageChangeEmptiesTheResultsAndLeavesTheButton()
    {
        start();
        window_->service.answerWith(bytes(paged_->many));
        search();
        waitForTheEnd();
        verifyIdle(*window_, *tab_);
        QVERIFY(!showsNothing());
        window_->service.stall();
        QTest::keyClick(slider(), Qt::Key_Right);
        QVERIFY(button()->isEnabled());
        QVERIFY(timer()->isActive());
        QVERIFY(showsNothing());
        if (tab_->tag != 5) // the file search's scratch list is never cleared
            QCOMPARE(hiddenItems(), 0U);
        QCOMPARE(window_->hidden(tab_->buffer), std::string());
        if (paged_->count)
            QCOMPARE(window_->text(paged_->count), u"0"_s);
        QVERIFY(slider()->isEnabled());
        QTRY_COMPARE(window_->service.requests().size(), 2);
        QVERIFY2(window_->service.lastRequestLine().contains(paged_->targetOfPageTwo),
                 window_->service.lastRequestLine().constData());
    }

    void theSliderWidensAtItsEnd_data()
    {
        QTest::addColumn<int>("tag");
        QTest::addColumn<int>("index");
        for (std::size_t i = 0; i < widenings().size(); ++i)
            QTest::newRow(widenings()[i].name) << widenings()[i].tag << static_cast<int>(i);
    }

    void theSliderWidensAtItsEnd()
    {
        QFETCH(int, index);
        const Widening& widening = widenings()[static_cast<std::size_t>(index)];
        start();
        window_->service.answerWith(bytes(widening.page));
        search();
        waitForTheEnd();
        QVERIFY(slider()->isEnabled());
        if (widening.total)
            window_->control<HiddenText>(paged_->total)->setText(widening.total);
        for (const auto& [shown, target] : widening.presses) {
            QTest::keyClick(slider(), Qt::Key_End);
            QCOMPARE(slider()->window(), shown);
            waitForTheEnd();
            QVERIFY2(window_->service.lastRequestLine().contains(target),
                     window_->service.lastRequestLine().constData());
        }
        QCOMPARE(window_->service.requests().size(), static_cast<qsizetype>(1 + widening.presses.size()));
        QVERIFY(!showsNothing());
        QVERIFY(window_->boxes.boxes().isEmpty());
    }

    void aTotalThatIsNoNumberAbandonsTheChange_data() { addRowsWithATotal(); }

    void aTotalThatIsNoNumberAbandonsTheChange()
    {
        start();
        window_->service.answerWith(bytes(paged_->many));
        search();
        waitForTheEnd();
        const QStringList rows = tab_->tag == 3 ? QStringList() : window_->rows(tab_->list);
        const std::size_t items = hiddenItems();
        QVERIFY(items > 0);
        window_->control<HiddenText>(paged_->total)->setText("soon");
        QTest::keyClick(slider(), Qt::Key_End);
        QCOMPARE(window_->boxes.texts(), QStringList{u"Run-time error '13':\n\nType mismatch"_s});
        QCOMPARE(window_->service.requests().size(), 1);
        QVERIFY(!showsNothing());
        if (tab_->tag != 3)
            QCOMPARE(window_->rows(tab_->list), rows);
        QCOMPARE(hiddenItems(), items);
    }

    // The slider kept 10 as its minimum, lost the total, and could not be moved until a new search.
    void aTotalBelowTheWindowBringsTheFirstPagesBack_data() { addRows(); }

    void aTotalBelowTheWindowBringsTheFirstPagesBack()
    {
        reachTheSecondWindow();
        window_->service.answerWith(bytes(paged_->six));
        QTest::keyClick(slider(), Qt::Key_Right);
        QCOMPARE(slider()->value(), 11);
        waitForTheEnd();
        QCOMPARE(slider()->window(), paged_->behindSix);
        QVERIFY(slider()->isEnabled());

        // The next request is that of a person's key; the program's own change of the slider raised none.
        QTest::keyClick(slider(), Qt::Key_Left);
        QCOMPARE(slider()->value(), paged_->behindSix.value - 1);
        waitForTheEnd();
        QCOMPARE(window_->service.requests().size(), 4);
        QVERIFY2(window_->service.lastRequestLine().contains(paged_->targetOfThePageLeft),
                 window_->service.lastRequestLine().constData());
        QTest::keyClick(slider(), Qt::Key_Home);
        QCOMPARE(slider()->value(), paged_->behindSix.minimum);
        waitForTheEnd();
        QVERIFY(window_->boxes.boxes().isEmpty());
    }

    // The same where the total is read when a person reaches the window's end.
    void aTotalBelowTheWindowIsReadAtItsEnd_data() { addRowsWithATotal(); }

    void aTotalBelowTheWindowIsReadAtItsEnd()
    {
        reachTheSecondWindow();
        window_->control<HiddenText>(paged_->total)->setText("6");
        window_->service.stall();
        QTest::keyClick(slider(), Qt::Key_End);
        QCOMPARE(slider()->window(), (PagingWindow{1, 6, 6}));
        QTRY_COMPARE(window_->service.requests().size(), 3);
        QTest::keyClick(slider(), Qt::Key_Left);
        QTRY_COMPARE(window_->service.requests().size(), 4);
        QVERIFY(window_->service.lastRequestLine().contains(paged_->targetOfThePageLeft));
    }

    void hostilePagesEndIdle_data()
    {
        QTest::addColumn<int>("tag");
        QTest::addColumn<QByteArray>("page");
        const auto row = [](int tag, const char* name, const QByteArray& page) {
            QTest::addRow("%s, %s", tabOf(tag).frame, name) << tag << page;
        };
        row(1, "entries cut short", QByteArray("<p><a href=http").repeated(300'000));

        row(3, "no colon, no blank", "src=/images?q=tbn");
        row(3, "one colon", "src=/images?q=tbn:a b");
        row(3, "no blank", "src=/images?q=tbn:a:b");
        row(3, "ten thousand", QByteArray("src=/images?q=tbn:a:b ").repeated(10'000));
        row(3, "one of a megabyte", "src=/images?q=tbn:a:" + QByteArray(1'000'000, 'x') + " <b>1</b>");
        row(3, "1,000 nested tables",
            bytes(heading("1")) + "<img src=/images?q=tbn:id:hostA/a.jpg\">" +
                QByteArray("<table><tr><td>").repeated(1000) + " width=90>");
        row(3, "NULs", QByteArray("src=/images?q=tbn\0:\0:\0 \0", 24));

        const std::string head = downloadHead("63", "1 - 2000000000");
        const auto download = [&](const char* name, std::string_view piece) {
            row(4, name, bytes(head + repeated(piece, kHuge / piece.size())));
        };
        download("entries", downloadEntry("x"));
        download("bold only", "<b>");
        download("bold ends only", "</b>");
        download("links only", "/redir?");
        download("classes only", "class");
        download("picks only", "class=pick ");
        download("openings only", "<");
        download("everything but the end", "<b>x</b><i class=d>y</i><b>OS:</b>z <b>");
        row(4, "one name of the whole page", bytes(head + "<b>" + std::string(kHuge, 'x') + "</b>"));
        row(4, "entries behind a gap", bytes(head + std::string(kHuge, ' ') + downloadEntry("x")));
        row(4, "main loop over and over", bytes(repeated("main loop", kHuge / 9)));
        row(4, "NULs", bytes(head + std::string(kHuge, '\0')));

        const auto file = [&](const char* name, std::string_view piece) {
            row(5, name, bytes("<form></form>" + repeated(piece, kHuge / piece.size())));
        };
        file("files", fileEntry("a"));
        file("directories", directoryEntry("a"));
        file("sizes only", "<b> 1 </b>");
        file("directory markers only", "&lt;dir&gt; ");
        file("directory markers and links", "&lt;dir&gt; <a <a <a ");
        row(5, "one directory with all links",
            bytes("&lt;dir&gt; " + repeated("<a ", kHuge / 3) + "q=x class<b>n</b>"));
        file("many links before each name", "&lt;dir&gt; <a <a <a q= class<b>n</b>");
        row(5, "one name of the whole page",
            bytes("/form<b> 1 <a href=ftp://h class=f>" + std::string(kHuge, 'x') + "<"));
        file("equals signs only", "=");
        row(5, "NULs", bytes(std::string(kHuge, '\0')));
    }

    void hostilePagesEndIdle()
    {
        QFETCH(QByteArray, page);
        start();
        window_->service.answerWith(page);
        search();
        QTRY_VERIFY_WITH_TIMEOUT(button()->isEnabled(), kPatience);
        verifyIdle(*window_, *tab_);
        const auto items = [this](const char* list) { return window_->control<HiddenListBox>(list)->items().size(); };
        const auto rows = [this] {
            return static_cast<std::size_t>(window_->control<QTreeView>(tab_->list)->model()->rowCount());
        };
        switch (tab_->tag) {
        case 3:
            QVERIFY(items("List7") <= 10);
            break;
        case 4:
            QCOMPARE(items("List10"), rows());
            QVERIFY(window_->boxes.boxes().isEmpty());
            break;
        case 5:
            QVERIFY(rows() <= 20);
            QVERIFY(window_->boxes.boxes().size() <= 1);
            break;
        default:
            break;
        }
    }

private:
    static void addRows()
    {
        QTest::addColumn<int>("tag");
        for (const PagedTab& tab : pagedTabs())
            QTest::newRow(tabOf(tab.tag).frame) << tab.tag;
    }

    static void addRowsWithATotal()
    {
        QTest::addColumn<int>("tag");
        for (const PagedTab& tab : pagedTabs()) {
            if (tab.total)
                QTest::newRow(tabOf(tab.tag).frame) << tab.tag;
        }
    }

    void start()
    {
        window_->start();
        window_->chooseTab(tab_->tag);
    }

    void search(const QString& keywords = u"apple"_s)
    {
        field()->setText(keywords);
        QTest::mouseClick(button(), Qt::LeftButton);
    }

    // Searches and goes to page 10, where pages 10 to 19 come on offer.
    void reachTheSecondWindow()
    {
        start();
        window_->service.answerWith(bytes(paged_->many));
        QTest::keyClick(window_->control<QLineEdit>(fillIn(*window_, *tab_)), Qt::Key_Return);
        waitForTheEnd();
        if (tab_->tag == 4)
            window_->control<HiddenText>("Text13")->setText("40"); // its pages never announce so many
        slider()->setFocus();
        QTest::keyClick(slider(), Qt::Key_End);
        waitForTheEnd();
        QCOMPARE(slider()->window(), (PagingWindow{10, 19, 10}));
    }

    void waitForTheEnd() { QTRY_VERIFY(!timer()->isActive()); }

    // Whether the tab shows no result: an empty list, or the viewer's empty page.
    bool showsNothing()
    {
        if (tab_->tag == 3)
            return window_->control<HtmlView>(tab_->list)->url().fileName() == u"blank.html"_s;
        return window_->rows(tab_->list).isEmpty();
    }

    // How many items the tab's hidden lists hold together.
    std::size_t hiddenItems()
    {
        std::size_t items = 0;
        for (const auto* list : window_->control<QWidget>(tab_->frame)->findChildren<HiddenListBox*>())
            items += list->items().size();
        return items;
    }

    QLineEdit* field() { return window_->control<QLineEdit>(tab_->typed[0].field); }
    QPushButton* button() { return window_->control<QPushButton>(tab_->button); }
    QTimer* timer() { return window_->control<QTimer>(tab_->timer); }
    PagingSlider* slider() { return window_->control<PagingSlider>(tab_->slider); }

    const TabControls* tab_ = nullptr;
    const PagedTab* paged_ = nullptr;
    std::unique_ptr<WindowFixture> window_;
};

QTEST_MAIN(PagedSearchTest)
#include "paged_search_test.moc"
