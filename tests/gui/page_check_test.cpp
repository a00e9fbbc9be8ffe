#include <QComboBox>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>

#include "WindowFixture.h"
#include "tab_controls.h"

using namespace quarrynet;

namespace {

const QString kFault = QStringLiteral("Error occurred.\r\nError #: ");

enum Mode
{
    Any,
    All,
    Exact
};

QByteArray repeated(const QByteArray& text, qsizetype bytes)
{
    return text.repeated(bytes / text.size());
}

QByteArray tagsThatDifferByOneLetter()
{
    const QByteArray attribute(60, 'x');
    QByteArray page;
    for (int i = 0; page.size() < kHuge; ++i)
        page += '<' + attribute + QByteArray::number(i, 36) + "> ";
    return page;
}

} // namespace

class PageCheckTest final : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        window_ = std::make_unique<WindowFixture>();
        window_->start();
        window_->chooseTab(2);
    }

    void checkAsksForThePageAndEndsIdle()
    {
        window_->service.answerWith("<html><h1>Green <b>apple</b></h1></html>");
        QString atConnect = QStringLiteral("never connected");
        connect(window_->control<TcpClientSocket>("PageSock"), &TcpClientSocket::connected, this,
                [&] { atConnect = window_->text("ActivityPanel"); });
        window_->type("Text4", tr("http://127.0.0.1/a/b.html"));
        window_->type("Text5", tr("Apple pear"));
        QTest::keyClick(window_->control<QLineEdit>("Text5"), Qt::Key_Return);
        QVERIFY(!button()->isEnabled());
        QVERIFY(timer()->isActive());
        QTRY_VERIFY(button()->isEnabled());

        QCOMPARE(window_->service.requests(), QList<QByteArray>{"GET /a/b.html HTTP/1.1\r\n"
                                                                "Host: 127.0.0.1\r\n"
                                                                "Connection: close\r\n"
                                                                "Accept: */*\r\n\r\n"});
        QCOMPARE(atConnect, QString()); // this socket never says "Connected"
        QCOMPARE(rows(), QStringList({tr("apple|Found"), tr("pear|Not Found")}));
        QCOMPARE(entries(), std::vector<std::string>({"Apple ", "pear "}));
        QCOMPARE(window_->hidden("Text6"), std::string("Green apple"));
        verifyIdle();
        QVERIFY(window_->boxes.boxes().isEmpty());
    }

    void panelsFollowTheExchange()
    {
        window_->service.stall();
        check(tr("apple"));
        QTRY_COMPARE(window_->text("ActivityPanel"), QStringLiteral("Request Completed"));
        QTRY_COMPARE(window_->text("ConnectionPanel"), QStringLiteral("Connected"));
        window_->service.send("HTTP/1.1 200 OK\r\n\r\nred ap");
        QTRY_COMPARE(window_->text("ActivityPanel"), QStringLiteral("Downloading Data"));
        QVERIFY(rows().isEmpty());
        window_->service.send("ple");
        window_->service.finish();
        QTRY_COMPARE(rows(), QStringList{tr("apple|Found")});
        verifyIdle();
    }

    void bothFieldsAreMandatory_data()
    {
        QTest::addColumn<QString>("address");
        QTest::addColumn<QString>("keywords");
        QTest::newRow("neither") << ""
                                 << "";
        QTest::newRow("no address") << ""
                                    << "apple";
        QTest::newRow("no keywords") << "127.0.0.1"
                                     << "";
    }

    void bothFieldsAreMandatory()
    {
        QFETCH(QString, address);
        QFETCH(QString, keywords);
        check(keywords, Any, address);
        QCOMPARE(window_->boxes.texts(), QStringList{tr("Both Fields Are Mandatory!!!")});
        QCOMPARE(window_->boxes.boxes()[0].icon, QMessageBox::Information);
        QCOMPARE(window_->boxes.boxes()[0].title, QStringLiteral("Quarrynet"));
        QVERIFY(button()->isEnabled());
        QVERIFY(!timer()->isActive());
        QCOMPARE(window_->socketState("PageSock"), 0);
    }

    void addressesAreSplitAtTheFirstSlash_data()
    {
        QTest::addColumn<QString>("address");
        QTest::addColumn<QByteArray>("line");
        QTest::newRow("host alone") << "127.0.0.1" << QByteArray("GET / HTTP/1.1");
        QTest::newRow("scheme and host") << "http://127.0.0.1" << QByteArray("GET / HTTP/1.1");
        QTest::newRow("path of a slash") << "127.0.0.1/" << QByteArray("GET / HTTP/1.1");
        QTest::newRow("two slashes") << "127.0.0.1//a" << QByteArray("GET //a HTTP/1.1");
        QTest::newRow("query") << "http://127.0.0.1/a?b=/c#d" << QByteArray("GET /a?b=/c#d HTTP/1.1");
        QTest::newRow("blanks in the path") << "127.0.0.1/a  b " << QByteArray("GET /a  b  HTTP/1.1");
        QTest::newRow("letters beyond ASCII") << QString::fromUtf8("127.0.0.1/Füße")
                                              << QByteArray("GET /F\xC3\xBC\xC3\x9F"
                                                            "e HTTP/1.1");
        QTest::newRow("line end behind, as copied") << "http://127.0.0.1/a.html\r\n"
                                                    << QByteArray("GET /a.html HTTP/1.1");
        QTest::newRow("line ends inside") << "127.0.0.1/a\r\nX-Other:\n\n1" << QByteArray("GET /a X-Other: 1 HTTP/1.1");
        QTest::newRow("100 KB of path") << QStringLiteral("127.0.0.1/") + QString(100'000, u'p')
                                        << "GET /" + QByteArray(100'000, 'p') + " HTTP/1.1";
    }

    void addressesAreSplitAtTheFirstSlash()
    {
        QFETCH(QString, address);
        QFETCH(QByteArray, line);
        window_->service.answerWith("apple");
        check(tr("apple"), Any, address);
        QTRY_COMPARE(rows(), QStringList{tr("apple|Found")});
        QCOMPARE(window_->service.lastRequestLine(), line);
        QVERIFY(window_->service.requests()[0].contains("\r\nHost: 127.0.0.1\r\n"));
        verifyIdle();
    }

    void addressesWithoutAHostThatExistsEndInTheErrorBox_data()
    {
        QTest::addColumn<QString>("address");
        QTest::newRow("no host") << "/a.html";
        QTest::newRow("scheme alone") << "http://";
        QTest::newRow("scheme in capitals") << "HTTP://127.0.0.1/";
        QTest::newRow("port") << "127.0.0.1:80/a.html";
        QTest::newRow("blank inside") << "127.0. 0.1/a.html";
        QTest::newRow("blanks alone") << "   ";
        QTest::newRow("blank in front") << " 127.0.0.1/a.html";
        QTest::newRow("letters beyond ASCII") << QString::fromUtf8("ü").repeated(64) + tr(".example/a.html");
        QTest::newRow("NUL") << QStringLiteral("127.0.0.1") + QChar(0) + QStringLiteral("/a.html");
        QTest::newRow("100 KB of host") << QString(100'000, u'h') + QStringLiteral("/a.html");
        QTest::newRow("100 KB of labels") << QStringLiteral("a.").repeated(50'000) + QStringLiteral("invalid/");
    }

    void addressesWithoutAHostThatExistsEndInTheErrorBox()
    {
        QFETCH(QString, address);
        check(tr("apple"), Any, address);
        QTRY_COMPARE(window_->boxes.boxes().size(), 1);
        QCOMPARE(window_->boxes.boxes()[0].title, QStringLiteral("Error"));
        QCOMPARE(window_->boxes.boxes()[0].icon, QMessageBox::Warning);
        QVERIFY2(window_->boxes.texts()[0].startsWith(kFault + tr("11001\r\n")), qPrintable(window_->boxes.texts()[0]));
        QTRY_VERIFY(button()->isEnabled());
        QVERIFY(!timer()->isActive());
        QCOMPARE(window_->socketState("PageSock"), 0);
        QCOMPARE(window_->text("ConnectionPanel"), QStringLiteral("Closed"));
        QVERIFY(rows().isEmpty());
        QVERIFY(window_->service.requests().isEmpty());
    }

    void refusedConnectionEndsInTheErrorBox()
    {
        QTcpServer gone;
        QVERIFY(gone.listen(QHostAddress::LocalHost));
        WindowFixture window;
        window.hosts = {"127.0.0.1", "127.0.0.1", "127.0.0.1", "127.0.0.1", gone.serverPort()};
        gone.close();
        window.start();
        window.chooseTab(2);
        window.type("Text4", tr("127.0.0.1"));
        window.type("Text5", tr("apple"));
        QTest::mouseClick(window.control<QPushButton>("Command2"), Qt::LeftButton);
        QTRY_COMPARE(window.boxes.boxes().size(), 1);
        QVERIFY(window.boxes.texts()[0].startsWith(kFault + tr("10061\r\n")));
        QTRY_VERIFY(window.control<QPushButton>("Command2")->isEnabled());
        QVERIFY(!window.control<QTimer>("SPSTimer")->isActive());
    }

    void keywordsAreSplitAtEveryBlank()
    {
        window_->service.answerWith("apple pie");
        check(tr("apple  pie"));
        QTRY_COMPARE(rows(), QStringList({tr("apple|Found"), tr("|Found"), tr("pie|Found")}));
        QCOMPARE(entries(), std::vector<std::string>({"apple ", " ", "pie "}));
    }

    void matchModes_data()
    {
        QTest::addColumn<QByteArray>("page");
        QTest::addColumn<QString>("keywords");
        QTest::addColumn<int>("mode");
        QTest::addColumn<QStringList>("expected");
        const auto row = [](const char* name, const QByteArray& page, const QString& keywords, Mode mode,
                            const QStringList& expected) {
            QTest::newRow(name) << page << keywords << static_cast<int>(mode) << expected;
        };
        const QString notAll = tr("Not all keywords are found in this page|");
        const QString notFound = tr("Keyword/s not found in this page|");

        row("any: in a longer word", "A pineapple", tr("Apple"), Any, {tr("apple|Found")});
        row("any: across tags", "gr<b>een</b><br>apple", tr("green greenapple"), Any,
            {tr("green|Found"), tr("greenapple|Found")});
        row("any: not in a tag", "<a title=\"secret\">plain</a>", tr("secret"), Any, {tr("secret|Not Found")});
        row("any: quotes are no text", "a\"b", tr("ab a\"b"), Any, {tr("ab|Found"), tr("a\"b|Not Found")});
        row("any: doubled", "apple", tr("apple Apple pie pie"), Any,
            {tr("apple|Found"), tr("apple|Found"), tr("pie|Not Found"), tr("pie|Not Found")});
        row("any: blanks alone", "x", tr("  "), Any, {tr("|Found"), tr("|Found"), tr("|Found")});
        row("any: blanks around", "apple", tr(" apple "), Any, {tr("|Found"), tr("apple|Found"), tr("|Found")});
        row("any: letters beyond ASCII", QByteArray("\xC3\x84RGER \xCE\xA9MEGA \xD0\x96UK"),
            QString::fromUtf8("ärger ωmega жuk ö"), Any,
            {QString::fromUtf8("ärger|Found"), QString::fromUtf8("ωmega|Found"), QString::fromUtf8("жuk|Found"),
             QString::fromUtf8("ö|Not Found")});
        row("any: page in Latin-1", QByteArray("\xC4RGER"), QString::fromUtf8("ärger"), Any,
            {QString::fromUtf8("ärger|Found")});
        row("any: keyword in capitals is listed in small letters", "apple", QString::fromUtf8("APPLE ÄPFEL"), Any,
            {tr("apple|Found"), QString::fromUtf8("äpfel|Not Found")});
        row("any: unclosed tag is text", "<b>x</b> y < secret", tr("secret <"), Any,
            {tr("secret|Found"), tr("<|Found")});
        row("any: page of tags alone is checked whole", "<apple><pie>", tr("apple><pie"), Any,
            {tr("apple><pie|Found")});
        row("any: tags that form others", "<b<i>>apple</b<i>>", tr(">apple> <"), Any,
            {tr(">apple>|Found"), tr("<|Not Found")});
        row("any: NULs", QByteArray(100'000, '\0'), tr("apple"), Any, {tr("apple|Not Found")});
        row("any: NUL in the word", QByteArray("ap\0ple", 6), tr("ap apple"), Any,
            {tr("ap|Found"), tr("apple|Not Found")});
        row("all: one missing", "only red here", tr("red blue"), All, {notAll});
        row("all: first missing", "only blue here", tr("red blue"), All, {notAll});
        row("all: every one there", "blue and RED", tr("Red Blue"), All, {tr("red|Found"), tr("blue|Found")});
        row("all: doubled", "red", tr("red red"), All, {tr("red|Found"), tr("red|Found")});
        row("all: in a longer word, across tags", "<i>hund</i>red", tr("red dre"), All,
            {tr("red|Found"), tr("dre|Found")});
        row("all: blanks alone", "x", tr(" "), All, {tr("|Found"), tr("|Found")});
        row("all: two blanks", "red blue", tr("red  blue"), All, {tr("red|Found"), tr("|Found"), tr("blue|Found")});
        row("all: NULs", QByteArray(1000, '\0'), tr("apple"), All, {notAll});
        row("exact: phrase", "a green APPLE pie", tr("Green Apple"), Exact, {tr("Green Apple|Found")});
        row("exact: listed as typed", "green apple", tr("  Green Apple "), Exact, {tr("  Green Apple |Found")});
        row("exact: inner blanks count", "green apple", tr("green  apple"), Exact, {notFound});
        row("exact: words apart", "green and apple", tr("green apple"), Exact, {notFound});
        row("exact: in a longer word", "pineapples", tr("apple"), Exact, {tr("apple|Found")});
        row("exact: across tags", "green <b>ap</b>ple", tr("green apple"), Exact, {tr("green apple|Found")});
        row("exact: doubled", "apple apple", tr("apple apple"), Exact, {tr("apple apple|Found")});
        row("exact: blanks alone", "x", tr("  "), Exact, {tr("  |Found")});
        row("exact: letters beyond ASCII", QByteArray("\xC3\x84RGER NR. 1"), QString::fromUtf8("Ärger nr."), Exact,
            {QString::fromUtf8("Ärger nr.|Found")});
    }

    void matchModes()
    {
        QFETCH(QByteArray, page);
        QFETCH(QString, keywords);
        QFETCH(int, mode);
        QFETCH(QStringList, expected);
        window_->service.answerWith(page);
        check(keywords, mode);
        QTRY_COMPARE(rows(), expected);
        verifyIdle();
        QVERIFY(window_->boxes.boxes().isEmpty());
    }

    void noModeChosenGivesNoRows()
    {
        window_->service.answerWith("apple");
        check(tr("apple"), -1);
        QTRY_COMPARE(window_->hidden("Text6"), std::string("apple"));
        QVERIFY(rows().isEmpty());
        QTRY_VERIFY(button()->isEnabled());
    }

    void samePageTwiceGivesItsRowsAgain()
    {
        window_->service.answerWith("apple");
        check(tr("apple"));
        QTRY_COMPARE(rows(), QStringList{tr("apple|Found")});
        check(tr("apple"));
        QVERIFY(rows().isEmpty());
        QTRY_COMPARE(rows(), QStringList{tr("apple|Found")});
        check(tr("pear"));
        QTRY_COMPARE(rows(), QStringList{tr("pear|Not Found")});
        QCOMPARE(window_->service.requests().size(), 3);
    }

    void keywordsAndModeAreThoseOfTheStartAndTheEnd()
    {
        window_->service.stall();
        check(tr("red blue"), All);
        QTRY_COMPARE(window_->service.requests().size(), 1);
        // The keywords are split when the check starts; mode and phrase are read when the page has arrived.
        window_->control<QLineEdit>("Text5")->setText(tr("pear"));
        window_->control<QComboBox>("Combo1")->setCurrentIndex(Any);
        window_->service.send("HTTP/1.1 200 OK\r\n\r\nred");
        window_->service.finish();
        QTRY_COMPARE(rows(), QStringList({tr("red|Found"), tr("blue|Not Found")}));
    }

    void emptyPageLeavesNoRows()
    {
        window_->service.answerWith("");
        check(tr("apple"));
        QTRY_COMPARE(window_->service.requests().size(), 1);
        QTRY_VERIFY(button()->isEnabled());
        QVERIFY(rows().isEmpty());
        verifyIdle();
    }

    void responseWithoutAHeaderEndLosesThreeBytes()
    {
        window_->service.answerWithPieces({"abcdef"});
        check(tr("def abc"));
        QTRY_COMPARE(rows(), QStringList({tr("def|Found"), tr("abc|Not Found")}));
    }

    void serverThatClosesAtOnceLeavesTheTabIdle()
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        int connections = 0;
        connect(&server, &QTcpServer::newConnection, this, [&] {
            ++connections;
            QTcpSocket* connection = server.nextPendingConnection();
            connection->disconnectFromHost();
        });
        WindowFixture window;
        window.hosts = {"127.0.0.1", "127.0.0.1", "127.0.0.1", "127.0.0.1", server.serverPort()};
        window.start();
        window.chooseTab(2);
        window.type("Text4", tr("127.0.0.1"));
        window.type("Text5", tr("apple"));
        QTest::mouseClick(window.control<QPushButton>("Command2"), Qt::LeftButton);
        QTRY_COMPARE(connections, 1);
        QTRY_VERIFY(window.control<QPushButton>("Command2")->isEnabled());
        QVERIFY(!window.control<QTimer>("SPSTimer")->isActive());
        QTRY_COMPARE(window.socketState("PageSock"), 0);
        QVERIFY(window.rows("ListView2").isEmpty());
    }

    void aResetShowsTheErrorBoxAndChecksNothing()
    {
        window_->service.stall();
        check(tr("apple"));
        QTRY_COMPARE(window_->service.requests().size(), 1);
        window_->service.send("HTTP/1.1 200 OK\r\n\r\napple");
        QTRY_COMPARE(window_->text("ActivityPanel"), QStringLiteral("Downloading Data"));
        window_->service.reset();
        QTRY_COMPARE(window_->boxes.boxes().size(), 1);
        QVERIFY(window_->boxes.texts()[0].startsWith(kFault + tr("10054\r\n")));
        QTRY_VERIFY(button()->isEnabled());
        QVERIFY(rows().isEmpty());
    }

    void secondCheckReplacesTheFirst()
    {
        window_->service.stall();
        check(tr("apple"));
        QTRY_COMPARE(window_->service.requests().size(), 1);
        window_->service.send("HTTP/1.1 200 OK\r\n\r\npear ");
        QTRY_COMPARE(window_->text("ActivityPanel"), QStringLiteral("Downloading Data"));
        window_->service.answerWith("apple");
        check(tr("apple pear")); // the typing enables the button again
        QTRY_COMPARE(rows(), QStringList({tr("apple|Found"), tr("pear|Not Found")}));
        QCOMPARE(window_->service.requests().size(), 2);
        QVERIFY(window_->boxes.boxes().isEmpty());
    }

    void stopGivesTheRunningCheckUp()
    {
        window_->service.answerWith("apple");
        check(tr("apple"));
        QTRY_COMPARE(rows().size(), 1);
        window_->service.stall();
        check(tr("apple"));
        QTRY_COMPARE(window_->service.requests().size(), 2);
        QTest::keyClick(window_->control<QLineEdit>("Text5"), Qt::Key_Escape);
        QCOMPARE(window_->boxes.texts(), QStringList{tr("User cancel the operation")});
        verifyIdle();
        QVERIFY(rows().isEmpty());
        QTRY_COMPARE(window_->service.openConnections(), 0);
    }

    void proxyModeConnectsToNothing()
    {
        useProxy();
        check(tr("apple  pie"));
        QVERIFY(!button()->isEnabled());
        QVERIFY(timer()->isActive());
        QCOMPARE(entries(), std::vector<std::string>({"apple ", " ", "pie "}));
        QCOMPARE(window_->socketState("PageSock"), 0);
        QSignalSpy ticks(timer(), &QTimer::timeout);
        QTRY_VERIFY(ticks.size() >= 2);
        QCOMPARE(window_->text("ConnectionPanel"), QStringLiteral("Closed"));
        QVERIFY(timer()->isActive());
        QVERIFY(!button()->isEnabled());
        QVERIFY(window_->service.requests().isEmpty());

        // Stop does nothing on a tab whose socket is closed, and shows no message; typing enables the button again.
        QTest::keyClick(window_->control<QLineEdit>("Text5"), Qt::Key_Escape);
        QVERIFY(window_->boxes.boxes().isEmpty());
        QVERIFY(timer()->isActive());
        window_->type("Text5", tr("apple"));
        QVERIFY(button()->isEnabled());
        QVERIFY(timer()->isActive());
    }

    void stopEndsTheWaitOfProxyModeBesideAnOlderCheck()
    {
        window_->service.stall();
        check(tr("apple"));
        QTRY_COMPARE(window_->service.requests().size(), 1);
        window_->control<HiddenText>("ProxySwitch")->setText("on");
        check(tr("pear"));
        QVERIFY(timer()->isActive());
        QVERIFY(!button()->isEnabled());
        QCOMPARE(window_->service.requests().size(), 1);
        QTest::keyClick(window_->control<QLineEdit>("Text5"), Qt::Key_Escape);
        QCOMPARE(window_->boxes.texts(), QStringList{tr("User cancel the operation")});
        verifyIdle();
    }

    void manyKeywordsHaveARowEach()
    {
        QString keywords;
        QByteArray page;
        QStringList expected;
        for (int i = 0; keywords.size() < 100'000; ++i) {
            const QString word = QStringLiteral("w%1").arg(i, 5, 36, QLatin1Char('0'));
            keywords += word + u' ';
            if (i % 2 == 0)
                page += word.toLatin1().toUpper() + ", ";
            expected.append(word + (i % 2 == 0 ? tr("|Found") : tr("|Not Found")));
        }
        keywords.chop(1);
        window_->service.answerWith(page);
        check(keywords);
        QTRY_COMPARE_WITH_TIMEOUT(rows().size(), expected.size(), kPatience);
        QCOMPARE(rows(), expected);
        verifyIdle();
    }

    void oneHugeKeyword_data()
    {
        QTest::addColumn<int>("mode");
        QTest::newRow("any") << static_cast<int>(Any);
        QTest::newRow("all") << static_cast<int>(All);
        QTest::newRow("exact") << static_cast<int>(Exact);
    }

    void oneHugeKeyword()
    {
        QFETCH(int, mode);
        window_->service.answerWith(QByteArray(1'000'000, 'a'));
        check(QString(100'000, u'a'), mode);
        QCOMPARE(window_->control<QLineEdit>("Text5")->text().size(), 100'000);
        QTRY_COMPARE_WITH_TIMEOUT(rows().size(), 1, kPatience);
        QVERIFY(rows()[0].endsWith(tr("|Found")));
        verifyIdle();
    }

    void hostilePagesEndInARow_data()
    {
        QTest::addColumn<QByteArray>("page");
        QTest::newRow("only openings") << QByteArray(kHuge, '<');
        QTest::newRow("only ends") << QByteArray(kHuge, '>');
        QTest::newRow("only empty tags") << repeated("<>", kHuge);
        QTest::newRow("nests") << repeated("<", kHuge / 2) + repeated(">", kHuge / 2);
        QTest::newRow("many nests") << repeated("<<<<<<<<>>>>>>>>", kHuge);
        QTest::newRow("unclosed tag") << "<a " + QByteArray(kHuge, 'x');
        QTest::newRow("tags that differ by a letter") << tagsThatDifferByOneLetter();
        QTest::newRow("each removal joins a new tag") << repeated("<b", kHuge / 2) + "<b>" + repeated(">", kHuge / 2);
        QTest::newRow("only quotes") << QByteArray(kHuge, '"');
        QTest::newRow("NULs") << QByteArray(kHuge, '\0');
        QTest::newRow("bytes that are no text") << repeated("\xFF\xC3", kHuge);
    }

    void hostilePagesEndInARow()
    {
        QFETCH(QByteArray, page);
        window_->service.answerWith(page);
        check(tr("apple"));
        QTRY_COMPARE_WITH_TIMEOUT(rows(), QStringList{tr("apple|Not Found")}, kPatience);
        verifyIdle();
        QVERIFY(window_->boxes.boxes().isEmpty());
    }

private:
    void check(const QString& keywords, int mode = Any, const QString& address = QStringLiteral("127.0.0.1/page.html"))
    {
        window_->control<QLineEdit>("Text4")->setText(address);
        window_->control<QLineEdit>("Text5")->setText(keywords);
        window_->control<QComboBox>("Combo1")->setCurrentIndex(mode);
        QTest::mouseClick(button(), Qt::LeftButton);
    }

    // Starts the window with the proxy on and the service as the proxy.
    void useProxy()
    {
        window_ = std::make_unique<WindowFixture>();
        window_->useServiceAsProxy();
        window_->start();
        window_->chooseTab(2);
    }

    void verifyIdle() { ::verifyIdle(*window_, tabOf(2)); }

    QPushButton* button() { return window_->control<QPushButton>("Command2"); }
    QTimer* timer() { return window_->control<QTimer>("SPSTimer"); }
    QStringList rows() { return window_->rows("ListView2"); }
    const std::vector<std::string>& entries() { return window_->control<HiddenListBox>("List5")->items(); }

    std::unique_ptr<WindowFixture> window_;
};

QTEST_MAIN(PageCheckTest)
#include "page_check_test.moc"
