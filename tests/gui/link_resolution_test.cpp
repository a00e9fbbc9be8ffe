#include <QDialog>
#include <QFile>

#include "WindowFixture.h"
#include "clicks.h"
#include "test_pages.h"
#include "tests/core/page_samples.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;
using namespace quarrynet::samples;

namespace {

const std::string kLink = "/redir?a=1&destUrl=http%3A%2F%2Fx%2Fy";
const QByteArray kRest = " HTTP/1.1\r\n"
                         "HOST: 127.0.0.1\r\n"
                         "Connection: close\r\n"
                         "User-Agent: Mozilla/4.0 (compatible; MSIE 5.00; Windows 98)\r\n"
                         "ACCEPT: */*\r\n\r\n";

QByteArray pageWith(const std::vector<std::string>& links)
{
    std::string page = downloadHead("3", "1 - " + std::to_string(links.size()));
    for (const std::string& link : links)
        page += downloadEntry("Program", link);
    return QByteArray::fromStdString(page);
}

QByteArray answerFor(const QByteArray& address)
{
    return "<script>var newlocation = \"" + address + "\";</script>";
}

} // namespace

/// Tests a double click on a download row: the wait box, the request, and the address that is opened.
class LinkResolutionTest final : public QObject
{
    Q_OBJECT

private slots:
    void init() { open(std::make_unique<WindowFixture>()); }

    void linkIsResolvedBehindTheWaitBoxAndOpened()
    {
        fill({kLink});
        window_->service.stall();
        click(0);
        QVERIFY(waiting());
        QCOMPARE(window_->hidden("Text14"), std::string("/%2Fx%2Fy?a=1&destUrl=http%3A%2F%2Fx%2Fy"));
        QTRY_COMPARE(window_->service.requests().size(), 2);
        QCOMPARE(window_->service.requests()[1], "GET /%2Fx%2Fy?a=1&destUrl=http%3A%2F%2Fx%2Fy" + kRest);
        QVERIFY(waiting());
        QVERIFY(!waitBox()->isModal());
        QCOMPARE(waitBox()->parentWidget(), &window_->main());
        QCOMPARE(waitBox()->windowTitle(), u"Quarrynet"_s);
        QVERIFY(window_->shell.opened.empty());

        answer(answerFor("http%3A%2F%2Fa%2Fb.zip"));
        QTRY_COMPARE(window_->shell.opened, std::vector<std::string>{"http://a/b.zi"}); // its last byte is never read
        QVERIFY(!waiting());
        QCOMPARE(window_->socketState("DownSock"), 0);
        QCOMPARE(rows().size(), 1);
        QVERIFY(window_->boxes.boxes().isEmpty());
    }

    void panelsButtonAndTimerAreLeftAlone()
    {
        fill({kLink});
        window_->service.stall();
        click(0);
        QTRY_COMPARE(window_->service.requests().size(), 2);
        QCOMPARE(window_->text("ActivityPanel"), QString());
        QCOMPARE(window_->text("ConnectionPanel"), u"Closed"_s);
        QVERIFY(window_->control<QPushButton>("Command4")->isEnabled());
        QVERIFY(!window_->control<QTimer>("SFDTimer")->isActive());
        answer("");
        QTRY_VERIFY(!waiting());
        QCOMPARE(window_->text("ActivityPanel"), QString());
    }

    void waitBoxCannotBeClosedByAPerson()
    {
        fill({kLink});
        window_->service.stall();
        click(0);
        QTRY_COMPARE(window_->service.requests().size(), 2);
        QTest::keyClick(waitBox(), Qt::Key_Escape);
        QVERIFY(waiting());
        QTest::keyClick(waitBox(), Qt::Key_Return);
        QVERIFY(waiting());
        QVERIFY(!waitBox()->close());
        QVERIFY(waiting());
        // Stop concerns searches only: the download search's socket is closed, so nothing happens.
        QTest::keyClick(window_->control<QLineEdit>("Text10"), Qt::Key_Escape);
        QVERIFY(waiting());
        QVERIFY(window_->boxes.boxes().isEmpty());
        answer(answerFor("http%3A%2F%2Fa%2Fb.zip "));
        QTRY_COMPARE(window_->shell.opened, std::vector<std::string>{"http://a/b.zip"});
        QVERIFY(!waiting());
    }

    void linkWithoutAnEscapedSlashIsTakenFromItsThirdByte()
    {
        fill({"/redir?id=7"});
        click(0);
        QTRY_COMPARE(window_->service.requests().size(), 2);
        QCOMPARE(window_->service.lastRequestLine(), QByteArray("GET /edir?id=7?id=7 HTTP/1.1"));
    }

    void proxyRequestJoinsHostAndPath()
    {
        auto window = std::make_unique<WindowFixture>();
        window->useServiceAsProxy();
        open(std::move(window));
        fill({kLink});
        window_->service.answerWith("nothing");
        click(0);
        QTRY_COMPARE(window_->service.requests().size(), 2);
        QVERIFY2(window_->service.requests()[1].startsWith(
                     "GET http://down.example/%2Fx%2Fy?a=1&destUrl=http%3A%2F%2Fx%2Fy HTTP/1.1\r\n"
                     "HOST: down.example\r\nProxy-Connection: close\r\nUser-Agent: "),
                 window_->service.requests()[1].constData());
        QTRY_COMPARE(window_->shell.opened, std::vector<std::string>{"http://down.example"});
    }

    void emptyListResolvesNothing()
    {
        QTest::mouseDClick(list()->viewport(), Qt::LeftButton, {}, QPoint(10, 10));
        QTest::keyClick(list(), Qt::Key_Return);
        QVERIFY(!waiting());
        QCOMPARE(window_->socketState("DownSock"), 0);
    }

    void noSelectedRowResolvesNothing()
    {
        fill({kLink, kLink});
        list()->clearSelection();
        QTest::keyClick(list(), Qt::Key_Return);
        QTest::mouseDClick(list()->viewport(), Qt::LeftButton, {}, list()->viewport()->rect().bottomLeft());
        QVERIFY(!waiting());
        QCOMPARE(window_->socketState("DownSock"), 0);
        QCOMPARE(window_->service.requests().size(), 1);
    }

    void ofSeveralSelectedRowsTheLastIsResolved()
    {
        fill({"/redir?n=1%2Fone", "/redir?n=2%2Ftwo", "/redir?n=3%2Fthree", "/redir?n=4%2Ffour"});
        window_->service.answerWith("nothing");
        for (const int row : {3, 0, 2}) {
            list()->selectionModel()->select(list()->model()->index(row, 0),
                                             QItemSelectionModel::Select | QItemSelectionModel::Rows);
        }
        list()->selectionModel()->select(list()->model()->index(3, 0),
                                         QItemSelectionModel::Deselect | QItemSelectionModel::Rows);
        QTest::keyClick(list(), Qt::Key_Return);
        QCOMPARE(window_->hidden("Text14"), std::string("/three?n=3%2Fthree"));
        QTRY_COMPARE(window_->shell.opened.size(), std::size_t(1));
        QCOMPARE(window_->service.lastRequestLine(), QByteArray("GET /three?n=3%2Fthree HTTP/1.1"));
        QVERIFY(!waiting());
        QCOMPARE(waitBoxes(), 1);
    }

    // The first press of the double click used to leave only its own row selected, and that row was resolved.
    void aDoubleClickOnOneOfSeveralSelectedRowsResolvesTheLast()
    {
        fill({"/redir?n=1%2Fone", "/redir?n=2%2Ftwo", "/redir?n=3%2Fthree"});
        window_->service.answerWith("nothing");
        const auto place = [this](int row) { return list()->visualRect(list()->model()->index(row, 0)).center(); };
        QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, place(0));
        QTest::mouseClick(list()->viewport(), Qt::LeftButton, Qt::ControlModifier, place(2));
        doubleClick(list()->viewport(), place(0));
        QCOMPARE(window_->hidden("Text14"), std::string("/three?n=3%2Fthree"));
        QTRY_COMPARE(window_->shell.opened.size(), std::size_t(1));
        QVERIFY(list()->selectionModel()->isRowSelected(0) && list()->selectionModel()->isRowSelected(2));
        QVERIFY(!list()->selectionModel()->isRowSelected(1));
    }

    void secondDoubleClickReplacesTheFirst()
    {
        fill({"/redir?n=1%2Fone", "/redir?n=2%2Ftwo"});
        window_->service.stall();
        click(0);
        QTRY_COMPARE(window_->service.requests().size(), 2);
        window_->service.send("HTTP/1.1 200 OK\r\n\r\n" + answerFor("http%3A%2F%2Ffirst.example "));
        click(1);
        QVERIFY(waiting());
        QCOMPARE(waitBoxes(), 1);
        QTRY_COMPARE(window_->service.requests().size(), 3);
        QCOMPARE(window_->service.lastRequestLine(), QByteArray("GET /two?n=2%2Ftwo HTTP/1.1"));
        QTRY_COMPARE(window_->service.openConnections(), 1);
        answer(answerFor("http%3A%2F%2Fsecond.example "));
        QTRY_COMPARE(window_->shell.opened, std::vector<std::string>{"http://second.example"});
        QVERIFY(!waiting());
    }

    void pageWithoutAnAddressOpensTheFrontPage_data()
    {
        QTest::addColumn<QByteArray>("page");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("no marker") << QByteArray("<html>gone</html>");
        QTest::newRow("no blanks around the equals sign") << QByteArray("newlocation=\"http%3A%2F%2Fa\";");
        QTest::newRow("capitals") << QByteArray("NewLocation = \"http%3A%2F%2Fa\";");
        QTest::newRow("NULs") << QByteArray(100'000, '\0');
    }

    void pageWithoutAnAddressOpensTheFrontPage()
    {
        QFETCH(QByteArray, page);
        fill({kLink});
        window_->service.answerWith(page);
        click(0);
        QTRY_COMPARE(window_->shell.opened, std::vector<std::string>{"http://127.0.0.1"});
        QVERIFY(!waiting());
        QVERIFY(window_->boxes.boxes().isEmpty());
    }

    void markerInTheHeaderIsNoAddress()
    {
        fill({kLink});
        window_->service.answerWith("page", "HTTP/1.1 200 OK\r\nX-Header: newlocation = \"http%3A%2F%2Fevil \";");
        click(0);
        QTRY_COMPARE(window_->shell.opened, std::vector<std::string>{"http://127.0.0.1"});
    }

    void addressesAreOpenedAsThePageHasThem_data()
    {
        QTest::addColumn<QByteArray>("written");
        QTest::addColumn<QByteArray>("opened");
        QTest::newRow("two escapes only")
            << QByteArray("ftp%3A%2F%2Fa%2Fb%20c%2fd%253A.") << QByteArray("ftp://a/b%20c%2fd%253A");
        QTest::newRow("one byte") << QByteArray("x") << QByteArray("");
        QTest::newRow("script") << QByteArray("javascript%3Aalert(1)") << QByteArray("javascript:alert(1");
        QTest::newRow("bytes beyond ASCII")
            << QByteArray("http%3A%2F%2Fa%2F\xFF\xC3\xA4 ") << QByteArray("http://a/\xFF\xC3\xA4");
    }

    void addressesAreOpenedAsThePageHasThem()
    {
        QFETCH(QByteArray, written);
        QFETCH(QByteArray, opened);
        fill({kLink});
        window_->service.answerWith(answerFor(written));
        click(0);
        QTRY_COMPARE(window_->shell.opened, std::vector<std::string>{opened.toStdString()});
    }

    void pageThatEndsBeforeTheAddressIsAFault_data()
    {
        QTest::addColumn<QByteArray>("page");
        QTest::newRow("behind the marker") << QByteArray("newlocation = ");
        QTest::newRow("behind the quote") << QByteArray("newlocation = \"");
        QTest::newRow("no semicolon") << QByteArray("newlocation = \"http%3A%2F%2Fa\"");
        QTest::newRow("empty address") << QByteArray("newlocation = \"\";");
        QTest::newRow("10 MB without an end") << "newlocation = \"" + QByteArray(10'000'000, '%');
    }

    void pageThatEndsBeforeTheAddressIsAFault()
    {
        QFETCH(QByteArray, page);
        fill({kLink});
        bool waitingBehindTheMessage = true;
        window_->boxes.beforeAnswer = [&](QMessageBox&) { waitingBehindTheMessage = waiting(); };
        window_->service.answerWith(page);
        click(0);
        QTRY_COMPARE_WITH_TIMEOUT(window_->boxes.texts(),
                                  QStringList{u"Run-time error '5':\n\nInvalid procedure call or argument"_s},
                                  kPatience);
        QVERIFY(!waitingBehindTheMessage);
        QTRY_VERIFY(!waiting());
        QVERIFY(window_->shell.opened.empty());
        QCOMPARE(window_->socketState("DownSock"), 0);
    }

    void hugeAddressIsHandedOnWhole()
    {
        fill({kLink});
        window_->service.answerWith(answerFor("http%3A" + QByteArray("%2F").repeated(3'000'000) + "x"));
        click(0);
        QTRY_COMPARE_WITH_TIMEOUT(window_->shell.opened.size(), std::size_t(1), kPatience);
        QVERIFY(window_->shell.opened[0] == "http:" + std::string(3'000'000, '/'));
        QVERIFY(!waiting());
    }

    void aResetClosesTheWaitBoxBeforeTheMessage()
    {
        fill({kLink});
        window_->service.stall();
        click(0);
        QTRY_COMPARE(window_->service.requests().size(), 2);
        bool waitingBehindTheMessage = true;
        window_->boxes.beforeAnswer = [&](QMessageBox&) { waitingBehindTheMessage = waiting(); };
        window_->service.reset();
        QTRY_COMPARE(window_->boxes.boxes().size(), 1);
        QCOMPARE(window_->boxes.boxes()[0].title, u"Error"_s);
        QCOMPARE(window_->boxes.boxes()[0].icon, QMessageBox::Warning);
        QVERIFY(window_->boxes.texts()[0].startsWith(u"Error occurred.\r\nError #: 10054\r\n"_s));
        QTRY_COMPARE(window_->socketState("DownSock"), 0);
        QVERIFY(!waitingBehindTheMessage);
        QVERIFY(!waiting());
        QVERIFY(window_->shell.opened.empty());
    }

    void linkCannotAddLinesToTheRequest()
    {
        fill({"/redir?a=1\r\nX-Evil: 1\r\n\r\n%2Fx\r\nX-Worse: 1"});
        window_->service.answerWith("nothing");
        click(0);
        QTRY_COMPARE(window_->service.requests().size(), 2);
        QVERIFY2(window_->service.requests()[1].endsWith(kRest), window_->service.requests()[1].constData());
        QCOMPARE(window_->service.requests()[1].count("\r\n"), kRest.count("\r\n"));
        QCOMPARE(window_->service.requests()[1].count('\n'), kRest.count('\n'));
    }

    void linkThatNamesItsOwnPathWordEnds()
    {
        fill({"/redir?u=%2Fredir.zip"});
        window_->service.answerWith("nothing");
        click(0);
        QTRY_COMPARE(window_->service.lastRequestLine(), QByteArray("GET /redir.zip?u=%2Fredir.zip.zip HTTP/1.1"));
    }

    void linkThatWouldGrowBeyondMemoryIsAnErrorBox()
    {
        fill({"/redir?" + repeated("redir", 100'000) + "%2F" + std::string(1'000'000, 'x'), kLink});
        click(0);
        QCOMPARE(window_->boxes.texts(), QStringList{u"Run-time error '7':\n\nOut of memory"_s});
        QVERIFY(!waiting());
        QCOMPARE(window_->socketState("DownSock"), 0);
        window_->activate();
        window_->service.answerWith(answerFor("http%3A%2F%2Fa "));
        click(1);
        QTRY_COMPARE(window_->shell.opened, std::vector<std::string>{"http://a"});
    }

    void searchEmptiesTheLinksBesideTheRows()
    {
        fill({kLink, kLink});
        window_->service.stall();
        QTest::mouseClick(window_->control<QPushButton>("Command4"), Qt::LeftButton);
        QTest::mouseDClick(list()->viewport(), Qt::LeftButton, {}, QPoint(10, 10));
        QVERIFY(!waiting());
        QVERIFY(window_->control<HiddenListBox>("List10")->items().empty());
    }

    void desktopIsHandedAllowedAddressesOnly()
    {
#if defined(Q_OS_WIN) || defined(Q_OS_MACOS)
        QSKIP("On this system the opener is not a program in PATH");
#endif
        QTemporaryDir folder;
        QFile opener(folder.filePath(u"xdg-open"_s));
        QVERIFY(opener.open(QIODevice::WriteOnly));
        opener.write("#!/bin/sh\nprintf '%s|%s\\n' \"$#\" \"$*\" >> \"${0%/*}/opened\"\n");
        opener.close();
        QVERIFY(opener.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        const QByteArray path = qgetenv("PATH");
        qputenv("PATH", QFile::encodeName(folder.path()) + ':' + path);

        DesktopShell shell({});
        Main main({{"127.0.0.1", "127.0.0.1", "127.0.0.1", "127.0.0.1", window_->service.port()},
                   shell,
                   folder.path().toStdString(),
                   {},
                   {},
                   {}});
        QVERIFY(main.load());
        main.show();
        auto* rows = main.findChild<QTreeView*>(u"ListView3"_s);
        window_->service.answerWith(pageWith({kLink}));
        main.findChild<QLineEdit*>(u"Text10"_s)->setText(u"apple"_s);
        main.findChild<QPushButton*>(u"Command4"_s)->click();
        QTRY_COMPARE(rows->model()->rowCount(), 1);
        rows->selectAll();
        for (const QByteArray& written :
             {QByteArray("javascript%3Aalert(1) "), QByteArray("file%3A%2F%2F%2Fetc%2Fpasswd "),
              QByteArray("%2Fbin%2Fsh "), QByteArray("-h "), QByteArray("\\\\host\\share "), QByteArray(" "),
              QByteArray("http%3A%2F%2Fa%2F\nb "), "http%3A%2F%2Fa%2F" + QByteArray(100'000, 'x'),
              QByteArray("http%3A%2F%2Fa%2F$(id) `id`&%22 ")}) {
            window_->service.answerWith(answerFor(written));
            const qsizetype asked = window_->service.requests().size();
            QTest::keyClick(rows, Qt::Key_Return);
            QTRY_COMPARE(window_->service.requests().size(), asked + 1);
            QTRY_COMPARE(main.findChild<QObject*>(u"DownSock"_s)->property("state").toInt(), 0);
        }
        // Only the last link may be opened, as one argument.
        const auto opened = [&] {
            QFile file(folder.filePath(u"opened"_s));
            return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        };
        QTRY_VERIFY(opened().endsWith('\n'));
        QCOMPARE(opened(), QByteArray("1|http://a/%24%28id%29%20%60id%60&%22\n"));
        qputenv("PATH", path);
        QVERIFY(window_->boxes.boxes().isEmpty());
    }

private:
    void open(std::unique_ptr<WindowFixture> window)
    {
        window_ = std::move(window);
        window_->start();
        window_->chooseTab(4);
    }

    // Runs a search that fills the list with these links.
    void fill(const std::vector<std::string>& links)
    {
        window_->service.answerWith(pageWith(links));
        window_->control<QLineEdit>("Text10")->setText(u"apple"_s);
        QTest::mouseClick(window_->control<QPushButton>("Command4"), Qt::LeftButton);
        QTRY_COMPARE(rows().size(), static_cast<qsizetype>(links.size()));
        QVERIFY(window_->control<HiddenListBox>("List10")->items() == links);
    }

    void click(int row)
    {
        const QPoint place = list()->visualRect(list()->model()->index(row, 0)).center();
        QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, place);
        QTest::mouseDClick(list()->viewport(), Qt::LeftButton, {}, place);
    }

    void answer(const QByteArray& body)
    {
        window_->service.send("HTTP/1.1 200 OK\r\n\r\n" + body);
        window_->service.finish();
    }

    QDialog* waitBox()
    {
        return window_->main().findChild<QDialog*>(u"Dialog"_s);
    }
    qsizetype waitBoxes()
    {
        return window_->main().findChildren<QDialog*>(u"Dialog"_s).size();
    }
    bool waiting()
    {
        return waitBox() && waitBox()->isVisible();
    }
    QTreeView* list()
    {
        return window_->control<QTreeView>("ListView3");
    }
    QStringList rows()
    {
        return window_->rows("ListView3");
    }

    std::unique_ptr<WindowFixture> window_;
};

QTEST_MAIN(LinkResolutionTest)
#include "link_resolution_test.moc"
