#include <QComboBox>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>

#include "WindowFixture.h"
#include "tab_controls.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

namespace {

const QString kFault = u"Error occurred.\r\nError #: "_s;

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
        QString atConnect = u"never connected"_s;
        connect(window_->control<TcpClientSocket>("PageSock"), &TcpClientSocket::connected, this,
                [&] { atConnect = window_->text("ActivityPanel"); });
        window_->type("Text4", u"http://127.0.0.1/a/b.html"_s);
        window_->type("Text5", u"Apple pear"_s);
        QTest::keyClick(window_->control<QLineEdit>("Text5"), Qt::Key_Return);
        QVERIFY(!button()->isEnabled());
        QVERIFY(timer()->isActive());
        QTRY_VERIFY(button()->isEnabled());

        QCOMPARE(window_->service.requests(), QList<QByteArray>{"GET /a/b.html HTTP/1.1\r\n"
                                                                "Host: 127.0.0.1\r\n"
                                                                "Connection: close\r\n"
                                                                "Accept: */*\r\n\r\n"});
        QCOMPARE(atConnect, QString()); // this socket never says "Connected"
        QCOMPARE(rows(), QStringList({u"apple|Found"_s, u"pear|Not Found"_s}));
        QCOMPARE(entries(), std::vector<std::string>({"Apple ", "pear "}));
        QCOMPARE(window_->hidden("Text6"), std::string("Green apple"));
        verifyIdle();
        QVERIFY(window_->boxes.boxes().isEmpty());
    }

    void panelsFollowTheExchange()
    {
        window_->service.stall();
        check(u"apple"_s);
        QTRY_COMPARE(window_->text("ActivityPanel"), u"Request Completed"_s);
        QTRY_COMPARE(window_->text("ConnectionPanel"), u"Connected"_s);
        window_->service.send("HTTP/1.1 200 OK\r\n\r\nred ap");
        QTRY_COMPARE(window_->text("ActivityPanel"), u"Downloading Data"_s);
        QVERIFY(rows().isEmpty());
        window_->service.send("ple");
        window_->service.finish();
        QTRY_COMPARE(rows(), QStringList{u"apple|Found"_s});
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
        QCOMPARE(window_->boxes.texts(), QStringList{u"Both Fields Are Mandatory!!!"_s});
        QCOMPARE(window_->boxes.boxes()[0].icon, QMessageBox::Information);
        QCOMPARE(window_->boxes.boxes()[0].title, u"Quarrynet"_s);
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
        QTest::newRow("letters beyond ASCII") << u"127.0.0.1/Füße"_s << "GET /" + u"Füße"_s.toLocal8Bit() + " HTTP/1.1";
        QTest::newRow("line end behind, as copied") << "http://127.0.0.1/a.html\r\n"
                                                    << QByteArray("GET /a.html HTTP/1.1");
        QTest::newRow("line ends inside") << "127.0.0.1/a\r\nX-Other:\n\n1" << QByteArray("GET /a X-Other: 1 HTTP/1.1");
        QTest::newRow("100 KB of path") << u"127.0.0.1/"_s + QString(100'000, u'p')
                                        << "GET /" + QByteArray(100'000, 'p') + " HTTP/1.1";
    }

    void addressesAreSplitAtTheFirstSlash()
    {
        QFETCH(QString, address);
        QFETCH(QByteArray, line);
        window_->service.answerWith("apple");
        check(u"apple"_s, Any, address);
        QTRY_COMPARE(rows(), QStringList{u"apple|Found"_s});
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
        QTest::newRow("letters beyond ASCII") << QString::fromUtf8("ü").repeated(64) + u".example/a.html"_s;
        QTest::newRow("NUL") << u"127.0.0.1"_s + QChar(0) + u"/a.html"_s;
        QTest::newRow("100 KB of host") << QString(100'000, u'h') + u"/a.html"_s;
        QTest::newRow("100 KB of labels") << u"a."_s.repeated(50'000) + u"invalid/"_s;
    }

    void addressesWithoutAHostThatExistsEndInTheErrorBox()
    {
        QFETCH(QString, address);
        check(u"apple"_s, Any, address);
        QTRY_COMPARE(window_->boxes.boxes().size(), 1);
        QCOMPARE(window_->boxes.boxes()[0].title, u"Error"_s);
        QCOMPARE(window_->boxes.boxes()[0].icon, QMessageBox::Warning);
        QVERIFY2(window_->boxes.texts()[0].startsWith(kFault + u"11001\r\n"_s), qPrintable(window_->boxes.texts()[0]));
        QTRY_VERIFY(button()->isEnabled());
        QVERIFY(!timer()->isActive());
        QCOMPARE(window_->socketState("PageSock"), 0);
        QCOMPARE(window_->text("ConnectionPanel"), u"Closed"_s);
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
        window.type("Text4", u"127.0.0.1"_s);
        window.type("Text5", u"apple"_s);
        QTest::mouseClick(window.control<QPushButton>("Command2"), Qt::LeftButton);
        QTRY_COMPARE(window.boxes.boxes().size(), 1);
        QVERIFY(window.boxes.texts()[0].startsWith(kFault + u"10061\r\n"_s));
        QTRY_VERIFY(window.control<QPushButton>("Command2")->isEnabled());
        QVERIFY(!window.control<QTimer>("SPSTimer")->isActive());
    }

    void keywordsAreSplitAtEveryBlank()
    {
        window_->service.answerWith("apple pie");
        check(u"apple  pie"_s);
        QTRY_COMPARE(rows(), QStringList({u"apple|Found"_s, u"|Found"_s, u"pie|Found"_s}));
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
        const QString notAll = u"Not all keywords are found in this page|"_s;
        const QString notFound = u"Keyword/s not found in this page|"_s;

        row("any: in a longer word", "A pineapple", u"Apple"_s, Any, {u"apple|Found"_s});
        row("any: across tags", "gr<b>een</b><br>apple", u"green greenapple"_s, Any,
            {u"green|Found"_s, u"greenapple|Found"_s});
        row("any: not in a tag", "<a title=\"secret\">plain</a>", u"secret"_s, Any, {u"secret|Not Found"_s});
        row("any: quotes are no text", "a\"b", u"ab a\"b"_s, Any, {u"ab|Found"_s, u"a\"b|Not Found"_s});
        row("any: doubled", "apple", u"apple Apple pie pie"_s, Any,
            {u"apple|Found"_s, u"apple|Found"_s, u"pie|Not Found"_s, u"pie|Not Found"_s});
        row("any: blanks alone", "x", u"  "_s, Any, {u"|Found"_s, u"|Found"_s, u"|Found"_s});
        row("any: blanks around", "apple", u" apple "_s, Any, {u"|Found"_s, u"apple|Found"_s, u"|Found"_s});
        row("any: letters beyond ASCII", u"ÄRGER"_s.toLocal8Bit(), u"ärger ö"_s, Any,
            {u"ärger|Found"_s, u"ö|Not Found"_s});
        if (u"Ж"_s.toLocal8Bit() != "?") { // not in every code page of Windows
            row("any: Greek and Cyrillic letters", u"ΩMEGA ЖUK"_s.toLocal8Bit(), u"ωmega жuk"_s, Any,
                {u"ωmega|Found"_s, u"жuk|Found"_s});
        }
        row("any: page in Latin-1", QByteArray("\xC4RGER"), QString::fromUtf8("ärger"), Any,
            {QString::fromUtf8("ärger|Found")});
        row("any: keyword in capitals is listed in small letters", "apple", QString::fromUtf8("APPLE ÄPFEL"), Any,
            {u"apple|Found"_s, QString::fromUtf8("äpfel|Not Found")});
        row("any: unclosed tag is text", "<b>x</b> y < secret", u"secret <"_s, Any, {u"secret|Found"_s, u"<|Found"_s});
        row("any: page of tags alone is checked whole", "<apple><pie>", u"apple><pie"_s, Any, {u"apple><pie|Found"_s});
        row("any: tags that form others", "<b<i>>apple</b<i>>", u">apple> <"_s, Any,
            {u">apple>|Found"_s, u"<|Not Found"_s});
        row("any: NULs", QByteArray(100'000, '\0'), u"apple"_s, Any, {u"apple|Not Found"_s});
        row("any: NUL in the word", QByteArray("ap\0ple", 6), u"ap apple"_s, Any,
            {u"ap|Found"_s, u"apple|Not Found"_s});
        row("all: one missing", "only red here", u"red blue"_s, All, {notAll});
        row("all: first missing", "only blue here", u"red blue"_s, All, {notAll});
        row("all: every one there", "blue and RED", u"Red Blue"_s, All, {u"red|Found"_s, u"blue|Found"_s});
        row("all: doubled", "red", u"red red"_s, All, {u"red|Found"_s, u"red|Found"_s});
        row("all: in a longer word, across tags", "<i>hund</i>red", u"red dre"_s, All,
            {u"red|Found"_s, u"dre|Found"_s});
        row("all: blanks alone", "x", u" "_s, All, {u"|Found"_s, u"|Found"_s});
        row("all: two blanks", "red blue", u"red  blue"_s, All, {u"red|Found"_s, u"|Found"_s, u"blue|Found"_s});
        row("all: NULs", QByteArray(1000, '\0'), u"apple"_s, All, {notAll});
        row("exact: phrase", "a green APPLE pie", u"Green Apple"_s, Exact, {u"Green Apple|Found"_s});
        row("exact: listed as typed", "green apple", u"  Green Apple "_s, Exact, {u"  Green Apple |Found"_s});
        row("exact: inner blanks count", "green apple", u"green  apple"_s, Exact, {notFound});
        row("exact: words apart", "green and apple", u"green apple"_s, Exact, {notFound});
        row("exact: in a longer word", "pineapples", u"apple"_s, Exact, {u"apple|Found"_s});
        row("exact: across tags", "green <b>ap</b>ple", u"green apple"_s, Exact, {u"green apple|Found"_s});
        row("exact: doubled", "apple apple", u"apple apple"_s, Exact, {u"apple apple|Found"_s});
        row("exact: blanks alone", "x", u"  "_s, Exact, {u"  |Found"_s});
        row("exact: letters beyond ASCII", u"ÄRGER NR. 1"_s.toLocal8Bit(), u"Ärger nr."_s, Exact,
            {u"Ärger nr.|Found"_s});
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
        check(u"apple"_s, -1);
        QTRY_COMPARE(window_->hidden("Text6"), std::string("apple"));
        QVERIFY(rows().isEmpty());
        QTRY_VERIFY(button()->isEnabled());
    }

    void samePageTwiceGivesItsRowsAgain()
    {
        window_->service.answerWith("apple");
        check(u"apple"_s);
        QTRY_COMPARE(rows(), QStringList{u"apple|Found"_s});
        check(u"apple"_s);
        QVERIFY(rows().isEmpty());
        QTRY_COMPARE(rows(), QStringList{u"apple|Found"_s});
        check(u"pear"_s);
        QTRY_COMPARE(rows(), QStringList{u"pear|Not Found"_s});
        QCOMPARE(window_->service.requests().size(), 3);
    }

    void keywordsAndModeAreThoseOfTheStartAndTheEnd()
    {
        window_->service.stall();
        check(u"red blue"_s, All);
        QTRY_COMPARE(window_->service.requests().size(), 1);
        // The keywords are split when the check starts; mode and phrase are read when the page has arrived.
        window_->control<QLineEdit>("Text5")->setText(u"pear"_s);
        window_->control<QComboBox>("Combo1")->setCurrentIndex(Any);
        window_->service.send("HTTP/1.1 200 OK\r\n\r\nred");
        window_->service.finish();
        QTRY_COMPARE(rows(), QStringList({u"red|Found"_s, u"blue|Not Found"_s}));
    }

    void emptyPageLeavesNoRows()
    {
        window_->service.answerWith("");
        check(u"apple"_s);
        QTRY_COMPARE(window_->service.requests().size(), 1);
        QTRY_VERIFY(button()->isEnabled());
        QVERIFY(rows().isEmpty());
        verifyIdle();
    }

    void responseWithoutAHeaderEndLosesThreeBytes()
    {
        window_->service.answerWithPieces({"abcdef"});
        check(u"def abc"_s);
        QTRY_COMPARE(rows(), QStringList({u"def|Found"_s, u"abc|Not Found"_s}));
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
        window.type("Text4", u"127.0.0.1"_s);
        window.type("Text5", u"apple"_s);
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
        check(u"apple"_s);
        QTRY_COMPARE(window_->service.requests().size(), 1);
        window_->service.send("HTTP/1.1 200 OK\r\n\r\napple");
        QTRY_COMPARE(window_->text("ActivityPanel"), u"Downloading Data"_s);
        window_->service.reset();
        QTRY_COMPARE(window_->boxes.boxes().size(), 1);
        QVERIFY(window_->boxes.texts()[0].startsWith(kFault + u"10054\r\n"_s));
        QTRY_VERIFY(button()->isEnabled());
        QVERIFY(rows().isEmpty());
    }

    void secondCheckReplacesTheFirst()
    {
        window_->service.stall();
        check(u"apple"_s);
        QTRY_COMPARE(window_->service.requests().size(), 1);
        window_->service.send("HTTP/1.1 200 OK\r\n\r\npear ");
        QTRY_COMPARE(window_->text("ActivityPanel"), u"Downloading Data"_s);
        window_->service.answerWith("apple");
        check(u"apple pear"_s); // the typing enables the button again
        QTRY_COMPARE(rows(), QStringList({u"apple|Found"_s, u"pear|Not Found"_s}));
        QCOMPARE(window_->service.requests().size(), 2);
        QVERIFY(window_->boxes.boxes().isEmpty());
    }

    void stopGivesTheRunningCheckUp()
    {
        window_->service.answerWith("apple");
        check(u"apple"_s);
        QTRY_COMPARE(rows().size(), 1);
        window_->service.stall();
        check(u"apple"_s);
        QTRY_COMPARE(window_->service.requests().size(), 2);
        QTest::keyClick(window_->control<QLineEdit>("Text5"), Qt::Key_Escape);
        QCOMPARE(window_->boxes.texts(), QStringList{u"User cancel the operation"_s});
        verifyIdle();
        QVERIFY(rows().isEmpty());
        QTRY_COMPARE(window_->service.openConnections(), 0);
    }

    void proxyModeConnectsToNothing()
    {
        useProxy();
        check(u"apple  pie"_s);
        QVERIFY(!button()->isEnabled());
        QVERIFY(timer()->isActive());
        QCOMPARE(entries(), std::vector<std::string>({"apple ", " ", "pie "}));
        QCOMPARE(window_->socketState("PageSock"), 0);
        QSignalSpy ticks(timer(), &QTimer::timeout);
        QTRY_VERIFY(ticks.size() >= 2);
        QCOMPARE(window_->text("ConnectionPanel"), u"Closed"_s);
        QVERIFY(timer()->isActive());
        QVERIFY(!button()->isEnabled());
        QVERIFY(window_->service.requests().isEmpty());

        // Stop does nothing on a tab whose socket is closed, and shows no message; typing enables the button again.
        QTest::keyClick(window_->control<QLineEdit>("Text5"), Qt::Key_Escape);
        QVERIFY(window_->boxes.boxes().isEmpty());
        QVERIFY(timer()->isActive());
        window_->type("Text5", u"apple"_s);
        QVERIFY(button()->isEnabled());
        QVERIFY(timer()->isActive());
    }

    void stopEndsTheWaitOfProxyModeBesideAnOlderCheck()
    {
        window_->service.stall();
        check(u"apple"_s);
        QTRY_COMPARE(window_->service.requests().size(), 1);
        window_->control<HiddenText>("ProxySwitch")->setText("on");
        check(u"pear"_s);
        QVERIFY(timer()->isActive());
        QVERIFY(!button()->isEnabled());
        QCOMPARE(window_->service.requests().size(), 1);
        QTest::keyClick(window_->control<QLineEdit>("Text5"), Qt::Key_Escape);
        QCOMPARE(window_->boxes.texts(), QStringList{u"User cancel the operation"_s});
        verifyIdle();
    }

    void manyKeywordsHaveARowEach()
    {
        QString keywords;
        QByteArray page;
        QStringList expected;
        for (int i = 0; keywords.size() < 100'000; ++i) {
            const QString word = u"w%1"_s.arg(i, 5, 36, QLatin1Char('0'));
            keywords += word + u' ';
            if (i % 2 == 0)
                page += word.toLatin1().toUpper() + ", ";
            expected.append(word + (i % 2 == 0 ? u"|Found"_s : u"|Not Found"_s));
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
        QVERIFY(rows()[0].endsWith(u"|Found"_s));
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
        check(u"apple"_s);
        QTRY_COMPARE_WITH_TIMEOUT(rows(), QStringList{u"apple|Not Found"_s}, kPatience);
        verifyIdle();
        QVERIFY(window_->boxes.boxes().isEmpty());
    }

private:
    void check(const QString& keywords, int mode = Any, const QString& address = u"127.0.0.1/page.html"_s)
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
