#include <QClipboard>

#include "WindowFixture.h"
#include "clicks.h"
#include "platform/ListView.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

namespace {

// A results page in the engine's layout.
QByteArray resultsPage(int results, const QByteArray& count)
{
    QByteArray page = "<html><body>Results <b>1</b> - <b>" + QByteArray::number(results) + "</b> of about <b>" + count +
                      "</b> for you. (<b>0.25</b> seconds)";
    for (int i = 1; i <= results; ++i) {
        const QByteArray number = QByteArray::number(i);
        page += "<p><a href=http://site" + number + ".example/>Title <b>" + number + "</b></a><br>text\n";
    }
    return page + "</body></html>";
}

} // namespace

class WebSearchTest final : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        window_ = std::make_unique<WindowFixture>();
        window_->start();
    }

    void searchFillsRowsLabelsAndPaging()
    {
        window_->service.answerWith(resultsPage(30, "1,234"));
        window_->type("Text1", u"  red  apple "_s);
        QTest::keyClick(window_->control<QLineEdit>("Text1"), Qt::Key_Return);
        QVERIFY(!button()->isEnabled());
        QVERIFY(timer()->isActive());
        QTRY_VERIFY(button()->isEnabled());

        QCOMPARE(window_->service.requests(),
                 QList<QByteArray>{"GET /search?num=30&hl=en&filter=0&safe=off&q=red++apple HTTP/1.1\r\n"
                                   "HOST: 127.0.0.1\r\n"
                                   "Connection: close\r\n"
                                   "User-Agent: Mozilla/4.0 (compatible; MSIE 5.00; Windows 98)\r\n"
                                   "ACCEPT: */*\r\n\r\n"});
        QCOMPARE(rows().size(), 30);
        QCOMPARE(rows()[0], u"http://site1.example/|Title 1"_s);
        QCOMPARE(rows()[29], u"http://site30.example/|Title 30"_s);
        QCOMPARE(window_->text("Label3"), u"1,234"_s);
        QCOMPARE(window_->text("Label5"), u"0.25 Second/s"_s);
        QCOMPARE(window_->hidden("Text3"), std::string("42"));
        QVERIFY(slider()->isEnabled());
        QCOMPARE(slider()->maximum(), 10);
        QVERIFY(!timer()->isActive());
        QCOMPARE(window_->text("ConnectionPanel"), u"Closed"_s);
        QCOMPARE(window_->text("ActivityPanel"), QString());
        QCOMPARE(window_->socketState("NetSock"), 0);
        QCOMPARE(window_->control<HiddenListBox>("List1")->items().size(), std::size_t(30));
        QCOMPARE(window_->control<HiddenListBox>("List3")->items()[0], std::string("Title <b>1</b>"));
        QVERIFY(window_->boxes.boxes().isEmpty());
    }

    void panelsFollowTheExchange()
    {
        window_->service.stall();
        search();
        QTRY_COMPARE(window_->text("ActivityPanel"), u"Request Completed"_s);
        QTRY_COMPARE(window_->text("ConnectionPanel"), u"Connected"_s);
        window_->service.send("HTTP/1.1 200 OK\r\n");
        QTRY_COMPARE(window_->text("ActivityPanel"), u"Downloading Data"_s);
        window_->service.send("\r\n" + resultsPage(1, "1"));
        window_->service.finish();
        QTRY_COMPARE(window_->text("ConnectionPanel"), u"Closed"_s);
        QCOMPARE(rows().size(), 1);
    }

    void fragmentedResponseIsJoined()
    {
        const QByteArray response = "HTTP/1.1 200 OK\r\n\r\n" + resultsPage(3, "3");
        QList<QByteArray> pieces;
        for (qsizetype i = 0; i < response.size(); i += 7)
            pieces.append(response.mid(i, 7));
        window_->service.answerWithPieces(pieces);
        search();
        QTRY_COMPARE(rows().size(), 3);
    }

    void responseWithoutAHeaderEndLosesThreeBytes()
    {
        window_->service.answerWithPieces({"abc" + resultsPage(2, "2")});
        search();
        QTRY_COMPARE(rows().size(), 2);
        QVERIFY(QByteArray::fromStdString(window_->hidden("Text2")).startsWith("<html>"));
    }

    void nothingFoundIsSaid()
    {
        window_->service.answerWith("<html>nothing here</html>");
        search();
        QTRY_COMPARE(window_->boxes.texts(), QStringList{u"No site found for that keyword/s"_s});
        QCOMPARE(window_->boxes.boxes()[0].icon, QMessageBox::Information);
        QTRY_VERIFY(button()->isEnabled());
        QCOMPARE(window_->text("Label3"), u"0"_s);
        QVERIFY(!slider()->isEnabled());
    }

    void aFaultInThePageKeepsWhatWasCutAndEndsIdle()
    {
        QByteArray page = resultsPage(30, "1,234");
        page.replace("1,234", "many");
        window_->service.answerWith(page);
        search();
        QTRY_COMPARE(window_->boxes.texts(), QStringList{u"Run-time error '13':\n\nType mismatch"_s});
        QTRY_VERIFY(button()->isEnabled());
        QCOMPARE(rows().size(), 30);
        QCOMPARE(window_->text("Label3"), u"many"_s);
        QCOMPARE(window_->socketState("NetSock"), 0);
        QCOMPARE(window_->text("ConnectionPanel"), u"Closed"_s);
        QVERIFY(!timer()->isActive());
    }

    void sliderAsksForAnotherPage()
    {
        window_->service.answerWith(resultsPage(30, "1,234"));
        search();
        QTRY_VERIFY(slider()->isEnabled());
        slider()->setFocus();
        for (int page = 2; page <= 7; ++page) {
            QTest::keyClick(slider(), Qt::Key_Right);
            QVERIFY(button()->isEnabled()); // a page change leaves it
            QTRY_COMPARE(rows().size(), 30);
            QTRY_VERIFY(!timer()->isActive());
        }
        QCOMPARE(window_->service.lastRequestLine(),
                 QByteArray("GET /search?num=30&hl=en&filter=0&start=180&safe=off&q=apple HTTP/1.1"));
        QTest::keyClick(slider(), Qt::Key_Home);
        QTRY_COMPARE(window_->service.lastRequestLine(),
                     QByteArray("GET /search?num=30&hl=en&filter=0&start=0&safe=off&q=apple HTTP/1.1"));
    }

    void aNewSearchStartsFromTheFirstPageForm()
    {
        window_->service.answerWith(resultsPage(30, "1,234"));
        search();
        QTRY_VERIFY(slider()->isEnabled());
        search(u"pear"_s);
        QVERIFY(!slider()->isEnabled());
        QCOMPARE(rows().size(), 0);
        QTRY_COMPARE(window_->service.lastRequestLine(),
                     QByteArray("GET /search?num=30&hl=en&filter=0&safe=off&q=pear HTTP/1.1"));
    }

    void doubleClickOpensEverySelectedAddress_data()
    {
        QTest::addColumn<Qt::KeyboardModifiers>("keys");
        QTest::newRow("plain") << Qt::KeyboardModifiers();
        QTest::newRow("Ctrl") << Qt::KeyboardModifiers(Qt::ControlModifier);
    }

    // The double click's first press took the selection apart: a plain one opened its own row alone, one with Ctrl the
    // others.
    void doubleClickOpensEverySelectedAddress()
    {
        QFETCH(Qt::KeyboardModifiers, keys);
        window_->service.answerWith(resultsPage(5, "5"));
        search();
        QTRY_COMPARE(rows().size(), 5);
        auto* list = window_->control<ListView>("ListView1");
        const auto row = [&](int i) { return list->visualRect(list->model()->index(i, 0)).center(); };
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, row(3));
        QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::ControlModifier, row(1));
        QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::ControlModifier, row(4));
        const std::vector<std::string> selected = {"http://site2.example/", "http://site4.example/",
                                                   "http://site5.example/"};
        for (int clicks = 0; clicks < 2; ++clicks) {
            window_->shell.opened.clear();
            doubleClick(list->viewport(), row(3), keys);
            QCOMPARE(window_->shell.opened, selected);
            QCOMPARE(list->selectedRows(), (std::vector<std::size_t>{1, 3, 4}));
        }
    }

    void doubleClickOnAnotherRowOpensThatOne()
    {
        window_->service.answerWith(resultsPage(5, "5"));
        search();
        QTRY_COMPARE(rows().size(), 5);
        auto* list = window_->control<ListView>("ListView1");
        const auto row = [&](int i) { return list->visualRect(list->model()->index(i, 0)).center(); };
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, row(0));
        QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::ControlModifier, row(1));
        doubleClick(list->viewport(), row(2));
        QCOMPARE(window_->shell.opened, std::vector<std::string>{"http://site3.example/"});
        QCOMPARE(list->selectedRows(), std::vector<std::size_t>{2});
    }

    void copyKeysCopyAllSelectedRows()
    {
        window_->service.answerWith(resultsPage(3, "3"));
        search();
        QTRY_COMPARE(rows().size(), 3);
        auto* list = window_->control<ListView>("ListView1");
        list->setFocus();
        QApplication::clipboard()->setText(u"before"_s);
        QTest::keyClick(list, Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QApplication::clipboard()->text(), u"before"_s); // nothing is selected
        QTest::keyClick(list, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(list, Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QApplication::clipboard()->text(), u"http://site1.example/\tTitle 1\n"
                                                    "http://site2.example/\tTitle 2\n"
                                                    "http://site3.example/\tTitle 3"_s);
    }

    // A count with markup in it was shown as rich text, and one of megabytes was laid out whole.
    void aCountIsShownAsPlainTextAndAtMostALineOfIt()
    {
        window_->service.answerWith(resultsPage(1, "1<img src=file:///etc/hostname>" + QByteArray(8'000'000, 'x')));
        search();
        QTRY_COMPARE(window_->boxes.texts(), QStringList{u"Run-time error '13':\n\nType mismatch"_s});
        QCOMPARE(window_->control<QLabel>("Label3")->textFormat(), Qt::PlainText);
        QVERIFY(window_->text("Label3").startsWith(u"1<img src="_s));
        QVERIFY(window_->text("Label3").size() < 10'000);
    }

private:
    void search(const QString& keywords = u"apple"_s)
    {
        window_->type("Text1", keywords);
        QTest::mouseClick(button(), Qt::LeftButton);
    }

    QPushButton* button() { return window_->control<QPushButton>("Command1"); }
    QSlider* slider() { return window_->control<QSlider>("Slider1"); }
    QTimer* timer() { return window_->control<QTimer>("STITimer"); }
    QStringList rows() { return window_->rows("ListView1"); }

    std::unique_ptr<WindowFixture> window_;
};

QTEST_MAIN(WebSearchTest)
#include "web_search_test.moc"
