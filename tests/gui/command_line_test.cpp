#include "app/CommandLine.h"
#include "search/SearchTab.h"
#include "tab_controls.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

/// Tests what the program's arguments mean, and what the window makes of them.
class CommandLineTest final : public QObject
{
    Q_OBJECT

private slots:
    void requests_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("tab");
        QTest::addColumn<QStringList>("fields");
        const auto row = [](const char* name, const QStringList& arguments, int tab, const QStringList& fields = {}) {
            QTest::newRow(name) << arguments << tab << fields;
        };
        row("nothing", {}, 0);
        const QStringList names = {u"web"_s, u"page"_s, u"image"_s, u"download"_s, u"file"_s};
        for (int i = 0; i < 5; ++i) {
            row(qPrintable(names[i]), {u"--tab"_s, names[i]}, i + 1);
            row(qPrintable(QString::number(i + 1)), {u"--tab=%1"_s.arg(i + 1)}, i + 1);
        }
        row("the last tab counts", {u"--tab"_s, u"web"_s, u"--tab"_s, u"file"_s}, 5);
        row("keywords", {u"text"_s, u"editor"_s}, 1, {u"text editor"_s});
        row("keywords of a tab", {u"--tab"_s, u"web"_s, u"text"_s, u"editor"_s}, 1, {u"text editor"_s});
        row("a tab behind its keywords", {u"red"_s, u"pear"_s, u"--tab"_s, u"3"_s}, 3, {u"red pear"_s});
        row("an address", {u"http://host/page"_s}, 2, {u"http://host/page"_s, QString()});
        row("an address of TLS", {u"https://host"_s}, 2, {u"https://host"_s, QString()});
        row("an address and keywords", {u"https://host"_s, u"green"_s, u"pear"_s}, 2,
            {u"https://host"_s, u"green pear"_s});
        row("an address of the page tab", {u"--tab"_s, u"page"_s, u"host/page"_s, u"pear"_s}, 2,
            {u"host/page"_s, u"pear"_s});
        row("an address for another tab", {u"--tab"_s, u"web"_s, u"http://host"_s}, 1, {u"http://host"_s});
        row("FTP, which is no page", {u"ftp://host/file"_s}, 1, {u"ftp://host/file"_s});
        row("an address behind a word", {u"see"_s, u"http://host"_s}, 1, {u"see http://host"_s});
        row("not ASCII", {u"--tab"_s, u"5"_s, u"grüße"_s, u"日本 😀"_s}, 5, {u"grüße 日本 😀"_s});
        row("dashes", {u"--tab"_s, u"4"_s, u"--"_s, u"--tab"_s, u"-rf"_s}, 4, {u"--tab -rf"_s});
        row("a dash alone", {u"-"_s}, 1, {u"-"_s});
        row("empty words", {QString(), u"pear"_s, QString()}, 1, {u"pear"_s});
        row("only empty words", {QString()}, 0);
        row("the longest text", {QString(SearchTab::kLongestInput, u'x')}, 1,
            {QString(SearchTab::kLongestInput, u'x')});
    }

    void requests()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, tab);
        QFETCH(QStringList, fields);
        CommandLine line;
        QCOMPARE(line.parse(arguments), QString());
        if (fields.isEmpty() && !arguments.isEmpty() && tab == 0)
            QCOMPARE(line.request(), StartRequest());
        QCOMPARE(line.request().tab, tab);
        QCOMPARE(line.request().fields, fields);
        QVERIFY(!line.asksForHelp() && !line.asksForVersion() && line.tourFolder().isEmpty());
    }

    void faults_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("fault");
        const QString noTab = u"There is no tab \"%1\": use 1 to 5, or web, page, image, download or file."_s;
        for (const QString& tab : {u"0"_s, u"6"_s, u"-1"_s, u"03"_s, u"Web"_s, u"webs"_s, QString(), u" 1"_s, u"３"_s})
            QTest::addRow("tab %s", qPrintable(tab)) << QStringList{u"--tab="_s + tab} << noTab.arg(tab);
        QTest::newRow("marks of a terminal") << QStringList{u"--tab"_s, u"\x1b[31m\n"_s} << noTab.arg(u" [31m "_s);
        QTest::newRow("no value") << QStringList{u"--tab"_s} << u"Missing value after '--tab'."_s;
        QTest::newRow("unknown option") << QStringList{u"--taab"_s, u"1"_s} << u"Unknown option 'taab'."_s;
        QTest::newRow("a text that is too long")
            << QStringList{QString(SearchTab::kLongestInput, u'x'), u"y"_s}
            << u"The text to search for is longer than %1 characters."_s.arg(SearchTab::kLongestInput);
        QTest::newRow("a tour without a folder")
            << QStringList{u"--tour="_s} << u"The folder of the tour is missing."_s;
        QTest::newRow("a tour with words")
            << QStringList{u"--tour"_s, u"/tmp"_s, u"pear"_s} << u"A tour takes no tab and no words."_s;
    }

    void faults()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, fault);
        CommandLine line;
        QCOMPARE(line.parse(arguments), fault);
    }

    void aLongFaultIsCut()
    {
        CommandLine line;
        QVERIFY(line.parse({u"--tab"_s, QString(1'000'000, u'x')}).size() < 10'000);
        QVERIFY(line.parse({u"--"_s + QString(1'000'000, u'x')}).size() < 10'000);
    }

    void optionsOfTheToolkitAreNotOurs_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QStringList>("left");
        QTest::newRow("none") << QStringList{u"--tab"_s, u"3"_s} << QStringList{u"--tab"_s, u"3"_s};
        QTest::newRow("with a value") << QStringList{u"-platform"_s, u"offscreen"_s, u"pear"_s}
                                      << QStringList{u"pear"_s};
        QTest::newRow("two dashes") << QStringList{u"pear"_s, u"--style"_s, u"fusion"_s} << QStringList{u"pear"_s};
        QTest::newRow("in one") << QStringList{u"-style=windows"_s, u"-reverse"_s} << QStringList{};
        QTest::newRow("value missing") << QStringList{u"-platform"_s} << QStringList{};
        QTest::newRow("behind --") << QStringList{u"--"_s, u"-platform"_s, u"x"_s}
                                   << QStringList{u"--"_s, u"-platform"_s, u"x"_s};
        QTest::newRow("similar") << QStringList{u"-platforms"_s, u"platform"_s}
                                 << QStringList{u"-platforms"_s, u"platform"_s};
    }

    void optionsOfTheToolkitAreNotOurs()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QStringList, left);
        const std::vector<qsizetype> positions = toolkitOptions(arguments);
        for (auto position = positions.rbegin(); position != positions.rend(); ++position)
            arguments.removeAt(*position);
        QCOMPARE(arguments, left);
    }

    // The window

    void aRequestSearches_data() { addTabRows(); }

    void aRequestSearches()
    {
        QFETCH(int, tag);
        const TabControls& tab = tabOf(tag);
        WindowFixture window;
        window.start();
        window.service.answerWith(pageOf(tab));
        StartRequest request{tag, {}};
        for (const TabControls::Typed& typed : tab.typed) {
            if (typed.text)
                request.fields.append(QString::fromLatin1(typed.text));
        }
        window.main().begin(request);
        QCOMPARE(window.control<QTabBar>("TabStrip1")->currentIndex(), tag - 1);
        QVERIFY(!window.control<QPushButton>(tab.button)->isEnabled());
        QTRY_COMPARE(window.service.requests().size(), 1);
        QVERIFY2(window.service.lastRequestLine().startsWith(tab.requestLine), window.service.lastRequestLine());
        QTRY_VERIFY(window.control<QPushButton>(tab.button)->isEnabled());
    }

    void aTabAloneIsOnlyShown()
    {
        WindowFixture window;
        window.start();
        window.main().begin({3, {}});
        QCOMPARE(window.control<QTabBar>("TabStrip1")->currentIndex(), 2);
        QVERIFY(window.control<QLineEdit>("Text7")->hasFocus());
        window.main().begin({});
        QCOMPARE(window.control<QTabBar>("TabStrip1")->currentIndex(), 2);
        QVERIFY(window.boxes.boxes().isEmpty());
    }

    void anAddressAloneWaitsForItsKeywords()
    {
        WindowFixture window;
        window.start();
        window.main().begin({2, {u"http://host/page"_s, QString()}});
        QCOMPARE(window.control<QLineEdit>("Text4")->text(), u"http://host/page"_s);
        QVERIFY(window.control<QLineEdit>("Text5")->hasFocus());
        QVERIFY(window.boxes.boxes().isEmpty());
        QCOMPARE(window.socketState("PageSock"), 0);
    }

    // A line end would begin another line of the request.
    void aTextOfSeveralLinesBecomesOne()
    {
        WindowFixture window;
        window.start();
        window.service.stall();
        window.main().begin({1, {u"text\r\neditor\n"_s}});
        QCOMPARE(window.control<QLineEdit>("Text1")->text(), u"text editor"_s);
        QTRY_COMPARE(window.service.requests().size(), 1);
    }
};

QTEST_MAIN(CommandLineTest)
#include "command_line_test.moc"
