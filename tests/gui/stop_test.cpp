#include <vector>

#include <QAction>
#include <QTcpSocket>

#include "platform/PagingSlider.h"
#include "tab_controls.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

namespace {

const char* const kStopped = "User cancel the operation";

/// A listener that accepts no connections and whose queue is full: a further connection stays pending for ever.
class FullListener
{
public:
    FullListener()
    {
        server_.setListenBacklogSize(0);
        server_.listen(QHostAddress::LocalHost);
        server_.pauseAccepting();
        for (int i = 0; i < 4; ++i) {
            waiting_.push_back(std::make_unique<QTcpSocket>());
            waiting_.back()->connectToHost(server_.serverAddress(), server_.serverPort());
        }
    }

    int port() const { return server_.serverPort(); }

private:
    QTcpServer server_;
    std::vector<std::unique_ptr<QTcpSocket>> waiting_;
};

} // namespace

class StopTest final : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        window_ = std::make_unique<WindowFixture>();
        window_->start();
        window_->service.stall();
    }

    void cleanup() { window_.reset(); }

    void onAnIdleTabNothingHappens_data() { addTabRows(); }

    void onAnIdleTabNothingHappens()
    {
        QFETCH(int, tag);
        const TabControls& tab = tabOf(tag);
        fillIn(*window_, tab);
        window_->control<HiddenText>(tab.buffer)->setText("<html>what was found before</html>");
        window_->boxes.forget();
        window_->control<QLabel>("ActivityPanel")->setText(u"as it was"_s);
        window_->control<QPushButton>(tab.button)->setEnabled(false);
        window_->control<QTimer>(tab.timer)->setInterval(1'000'000); // long, so that the timer does not interfere
        window_->control<QTimer>(tab.timer)->start();
        stop();
        QVERIFY(window_->boxes.boxes().isEmpty());
        QCOMPARE(window_->hidden(tab.buffer), std::string("<html>what was found before</html>"));
        QCOMPARE(window_->text("ActivityPanel"), u"as it was"_s);
        QVERIFY(!window_->control<QPushButton>(tab.button)->isEnabled());
        QVERIFY(window_->control<QTimer>(tab.timer)->isActive());
    }

    // The stages of an exchange

    void beforeTheConnectionIsBegun_data() { addTabRows(); }

    void beforeTheConnectionIsBegun()
    {
        QFETCH(int, tag);
        const TabControls& tab = tabOf(tag);
        fillIn(*window_, tab);
        QTest::mouseClick(window_->control<QPushButton>(tab.button), Qt::LeftButton);
        QCOMPARE(window_->socketState(tab.socket), 1);
        stopAndCheck(tab);
    }

    void whileConnecting_data() { addTabRows(); }

    void whileConnecting()
    {
        QFETCH(int, tag);
        const TabControls& tab = tabOf(tag);
        const FullListener full;
        window_ = std::make_unique<WindowFixture>();
        window_->hosts = {"127.0.0.1", "127.0.0.1", "127.0.0.1", "127.0.0.1", full.port()};
        window_->start();
        fillIn(*window_, tab);
        QTest::mouseClick(window_->control<QPushButton>(tab.button), Qt::LeftButton);
        QTRY_COMPARE(window_->text("ConnectionPanel"), u"Connecting"_s);
        QCOMPARE(window_->socketState(tab.socket), 6);
        stopAndCheck(tab);
    }

    void whileTheRequestWaitsForAnAnswer_data() { addTabRows(); }

    void whileTheRequestWaitsForAnAnswer()
    {
        QFETCH(int, tag);
        start(tabOf(tag));
        QTRY_COMPARE(window_->text("ConnectionPanel"), u"Connected"_s);
        QCOMPARE(window_->text("ActivityPanel"), u"Request Completed"_s);
        stopAndCheck(tabOf(tag));
    }

    void whileReceiving_data() { addTabRows(); }

    void whileReceiving()
    {
        QFETCH(int, tag);
        start(tabOf(tag));
        window_->service.send("HTTP/1.1 200 OK\r\n\r\n" + pageOf(tabOf(tag)));
        QTRY_COMPARE(window_->text("ActivityPanel"), u"Downloading Data"_s);
        stopAndCheck(tabOf(tag));
        QVERIFY(isViewEmpty(tabOf(tag))); // nothing of the partial response was shown
    }

    void insideTheParsersChangeEvent_data() { addTabRows(); }

    void insideTheParsersChangeEvent()
    {
        QFETCH(int, tag);
        const TabControls& tab = tabOf(tag);
        auto* buffer = window_->control<HiddenText>(tab.buffer);
        int stops = 0;
        // The tab's own handler was connected first, so its rows are shown when this one runs.
        connect(buffer, &HiddenText::changed, &window_->main(), [&] {
            if (buffer->text().empty() || ++stops > 1)
                return;
            QCOMPARE(window_->socketState(tab.socket), 8);
            QVERIFY(!isViewEmpty(tab));
            stop();
            QVERIFY(isViewEmpty(tab));
        });
        start(tab);
        window_->service.send("HTTP/1.1 200 OK\r\n\r\n" + pageOf(tab));
        window_->service.finish();
        QTRY_COMPARE(stops, 1);
        QTRY_COMPARE(window_->socketState(tab.socket), 0);
        QCOMPARE(window_->boxes.texts(), QStringList{tr(kStopped)});
        QCOMPARE(window_->hidden(tab.buffer), std::string());
        QVERIFY(isViewEmpty(tab));
        QVERIFY(window_->control<QPushButton>(tab.button)->isEnabled());
        QCOMPARE(window_->text("ConnectionPanel"), u"Closed"_s);
        QCOMPARE(window_->text("ActivityPanel"), QString());
        QVERIFY(!window_->control<QTimer>(tab.timer)->isActive()); // the exchange itself has also ended
    }

    void whileTheParsersOwnBoxIsOpen_data()
    {
        QTest::addColumn<int>("tag");
        QTest::addColumn<QString>("said");
        QTest::newRow("STI") << 1 << u"No site found for that keyword/s"_s;
        QTest::newRow("IMG") << 3 << u"No Images Found"_s;
        QTest::newRow("SFS") << 5 << u"No site found"_s;
    }

    void whileTheParsersOwnBoxIsOpen()
    {
        QFETCH(int, tag);
        QFETCH(QString, said);
        const TabControls& tab = tabOf(tag);
        window_->boxes.beforeAnswer = [&](QMessageBox& box) {
            if (box.text() == said)
                stop();
        };
        start(tab);
        window_->service.answerWith("<html>your words were not found</html>");
        window_->service.release();
        QTRY_COMPARE(window_->socketState(tab.socket), 0);
        QCOMPARE(window_->boxes.texts(), QStringList({said, tr(kStopped)}));
        QVERIFY(isViewEmpty(tab));
        QVERIFY(window_->control<QPushButton>(tab.button)->isEnabled());
    }

    void whileTheErrorBoxIsOpen()
    {
        window_->boxes.beforeAnswer = [this](QMessageBox& box) {
            if (box.windowTitle() == u"Error"_s)
                stop();
        };
        start(tabOf(1));
        window_->service.reset();
        QTRY_COMPARE(window_->boxes.boxes().size(), 2);
        QCOMPARE(window_->boxes.texts()[1], tr(kStopped));
        QTRY_COMPARE(window_->socketState("NetSock"), 0);
        QVERIFY(window_->control<QPushButton>("Command1")->isEnabled());
    }

    void twiceSaysItOnce_data()
    {
        QTest::addColumn<int>("tag");
        for (const TabControls& tab : kTabs) {
            if (tab.tag != 5) // Stop does not close its connection
                QTest::newRow(tab.frame) << tab.tag;
        }
    }

    void twiceSaysItOnce()
    {
        QFETCH(int, tag);
        start(tabOf(tag));
        stop();
        stop();
        QCOMPARE(window_->boxes.texts(), QStringList{tr(kStopped)});
    }

    void againWhileItsBoxIsOpenIsSilent()
    {
        window_->boxes.beforeAnswer = [this](QMessageBox&) { stop(); };
        start(tabOf(1));
        stop();
        QCOMPARE(window_->boxes.texts(), QStringList{tr(kStopped)});
    }

    void whatTheTableDoesNotNameStays_data() { addTabRows(); }

    void whatTheTableDoesNotNameStays()
    {
        QFETCH(int, tag);
        const std::vector<std::vector<const char*>> lists = {{"List1", "List2", "List3", "List4"},
                                                             {"List5"},
                                                             {"List6", "List7", "List8", "List9"},
                                                             {"List10"},
                                                             {"List11"}};
        const std::vector<std::vector<const char*>> labels = {
            {"Label3", "Label5"}, {}, {"Label11", "Label12"}, {"Label15"}, {}};
        const std::vector<std::vector<const char*>> paging = {
            {"Text3"}, {}, {"Text8"}, {"Text13", "Text14"}, {"Text15"}};
        const auto row = static_cast<std::size_t>(tag) - 1;
        const TabControls& tab = tabOf(tag);
        start(tab);
        for (const char* list : lists[row])
            window_->control<HiddenListBox>(list)->setItems({"kept"});
        for (const char* label : labels[row])
            window_->control<QLabel>(label)->setText(u"kept"_s);
        for (const char* field : paging[row])
            window_->control<HiddenText>(field)->setText("kept");
        if (tab.slider) {
            auto* slider = window_->control<PagingSlider>(tab.slider);
            slider->setWindow({10, 19, 12});
            slider->setEnabled(true);
        }
        stop();
        QCOMPARE(window_->boxes.texts(), QStringList{tr(kStopped)});
        for (const char* list : lists[row])
            QCOMPARE(window_->control<HiddenListBox>(list)->items(), std::vector<std::string>{"kept"});
        for (const char* label : labels[row])
            QCOMPARE(window_->text(label), u"kept"_s);
        for (const char* field : paging[row])
            QCOMPARE(window_->hidden(field), std::string("kept"));
        if (tab.slider) {
            auto* slider = window_->control<PagingSlider>(tab.slider);
            QVERIFY(slider->isEnabled());
            QCOMPARE(slider->minimum(), 10);
            QCOMPARE(slider->maximum(), 19);
            QCOMPARE(slider->value(), 12);
        }
        for (const TabControls::Typed& typed : tab.typed) {
            if (typed.field)
                QCOMPARE(window_->control<QLineEdit>(typed.field)->text(), QString::fromLatin1(typed.text));
        }
    }

    void aSearchAfterAStopWorks_data() { addTabRows(); }

    void aSearchAfterAStopWorks()
    {
        QFETCH(int, tag);
        const TabControls& tab = tabOf(tag);
        start(tab);
        stop();
        window_->activate();
        window_->boxes.forget();
        window_->service.answerWith(pageOf(tab));
        QTest::mouseClick(window_->control<QPushButton>(tab.button), Qt::LeftButton);
        QTRY_VERIFY(!isViewEmpty(tab));
        QTRY_VERIFY(window_->control<QPushButton>(tab.button)->isEnabled());
        QCOMPARE(window_->socketState(tab.socket), 0);
    }

    void theLinkBeingResolvedGoesOn()
    {
        auto* link = window_->control<TcpClientSocket>("DownSock");
        start(tabOf(4));
        link->Connect("127.0.0.1", window_->service.port());
        QTRY_COMPARE(window_->socketState("DownSock"), 7);
        stop();
        QCOMPARE(window_->boxes.texts(), QStringList{tr(kStopped)});
        QCOMPARE(window_->socketState("DownSock"), 7);
    }

    void anUnknownTagStopsNothing()
    {
        start(tabOf(1));
        for (const char* tag : {"0", "6", "-1", "one", ""}) {
            window_->control<QTabBar>("TabStrip1")->setTabData(0, QLatin1String(tag));
            stop();
        }
        window_->control<QTabBar>("TabStrip1")->setTabData(0, QVariant());
        stop();
        QVERIFY(window_->boxes.boxes().isEmpty());
        QCOMPARE(window_->socketState("NetSock"), 7);
    }

    // The two rows that differ

    void onTheImageTabThePageChecksTimerStopsAndItsOwnGoesOn()
    {
        start(tabOf(2));
        start(tabOf(3));
        QVERIFY(window_->control<QTimer>("SPSTimer")->isActive());
        stop();
        QCOMPARE(window_->socketState("ImgSock"), 0);
        QVERIFY(!window_->control<QTimer>("SPSTimer")->isActive());
        QVERIFY(window_->control<QTimer>("IMGTimer")->isActive());
        QCOMPARE(window_->socketState("PageSock"), 7); // the check itself continues
        QVERIFY(!window_->control<QPushButton>("Command2")->isEnabled());
        window_->control<QLabel>("ConnectionPanel")->setText(u"written over at the next tick"_s);
        QTRY_COMPARE(window_->text("ConnectionPanel"), u"Closed"_s);
    }

    void onTheImageTabTheEmptyPageIsShown()
    {
        const TabControls& tab = tabOf(3);
        window_->service.answerWith(pageOf(tab));
        fillIn(*window_, tab);
        QTest::mouseClick(window_->control<QPushButton>(tab.button), Qt::LeftButton);
        QTRY_VERIFY(!isViewEmpty(tab));
        QTRY_VERIFY(window_->control<QPushButton>(tab.button)->isEnabled());
        window_->service.stall();
        start(tab);
        QVERIFY(!isViewEmpty(tab)); // a new search keeps the last gallery
        stop();
        QVERIFY(isViewEmpty(tab));
    }

    void onTheFileTabTheConnectionStaysAndItsReplyIsShown()
    {
        const TabControls& tab = tabOf(5);
        start(tab);
        stop();
        QCOMPARE(window_->boxes.texts(), QStringList{tr(kStopped)});
        QCOMPARE(window_->socketState("SFSSock"), 7);
        QVERIFY(window_->control<QPushButton>("Command5")->isEnabled());
        QVERIFY(!window_->control<QTimer>("SFSTimer")->isActive());
        window_->service.answerWith(pageOf(tab));
        window_->service.release();
        QTRY_VERIFY(!window_->rows("ListView4").isEmpty());
        QTRY_COMPARE(window_->socketState("SFSSock"), 0);
        QCOMPARE(window_->text("ConnectionPanel"), u"Closed"_s);
    }

    void onTheFileTabADownloadSearchIsCutOff()
    {
        start(tabOf(4));
        start(tabOf(5));
        stop();
        QCOMPARE(window_->socketState("SFDSock"), 0);
        QCOMPARE(window_->socketState("SFSSock"), 7);
        // The download tab is not notified and stays as it was during the search.
        QVERIFY(!window_->control<QPushButton>("Command4")->isEnabled());
        QVERIFY(window_->control<QTimer>("SFDTimer")->isActive());
        window_->service.answerWith(pageOf(tabOf(5)));
        window_->service.release();
        QTRY_VERIFY(!window_->rows("ListView4").isEmpty());
        QVERIFY(window_->rows("ListView3").isEmpty());
    }

    void onTheFileTabEveryStopSpeaksWhileTheConnectionIsOpen()
    {
        start(tabOf(5));
        stop();
        stop();
        QCOMPARE(window_->boxes.texts(), QStringList({tr(kStopped), tr(kStopped)}));
        QCOMPARE(window_->socketState("SFSSock"), 7);
    }

    // Several searches

    void twoSearchesAreStoppedOneByOne()
    {
        start(tabOf(1));
        start(tabOf(4));
        QCOMPARE(window_->socketState("NetSock"), 7);
        stop();
        QCOMPARE(window_->socketState("SFDSock"), 0);
        QCOMPARE(window_->socketState("NetSock"), 7);
        QVERIFY(window_->control<QTimer>("STITimer")->isActive());
        QVERIFY(!window_->control<QPushButton>("Command1")->isEnabled());
        window_->activate();
        window_->chooseTab(1);
        stop();
        QCOMPARE(window_->socketState("NetSock"), 0);
        QVERIFY(!window_->control<QTimer>("STITimer")->isActive());
        QVERIFY(window_->control<QPushButton>("Command1")->isEnabled());
        QCOMPARE(window_->boxes.texts(), QStringList({tr(kStopped), tr(kStopped)}));
        QTRY_COMPARE(window_->service.openConnections(), 0);
    }

    void stoppingOneOfTwoLeavesTheOthersResult()
    {
        start(tabOf(4));
        start(tabOf(1));
        window_->chooseTab(4);
        stop();
        QTRY_COMPARE(window_->service.openConnections(), 1);
        window_->service.answerWith(pageOf(tabOf(1)));
        window_->service.release();
        QTRY_VERIFY(!window_->rows("ListView1").isEmpty());
        QVERIFY(window_->rows("ListView3").isEmpty());
    }

    void aTabSwitchStopsNothing()
    {
        start(tabOf(1));
        for (const int tag : {2, 3, 4, 5})
            window_->chooseTab(tag);
        QCOMPARE(window_->socketState("NetSock"), 7);
        QVERIFY(window_->control<QTimer>("STITimer")->isActive());
        stop(); // the current tab is idle
        QVERIFY(window_->boxes.boxes().isEmpty());
        window_->service.answerWith(pageOf(tabOf(1)));
        window_->service.release();
        QTRY_VERIFY(!window_->rows("ListView1").isEmpty());
        QVERIFY(!window_->control<QFrame>("STI")->isVisible());
    }

private:
    /// Starts the tab's search and waits until its request has arrived and been sent.
    void start(const TabControls& tab)
    {
        const qsizetype before = window_->service.requests().size();
        fillIn(*window_, tab);
        QTest::mouseClick(window_->control<QPushButton>(tab.button), Qt::LeftButton);
        QTRY_COMPARE(window_->service.requests().size(), before + 1);
        QTRY_COMPARE(window_->text("ActivityPanel"), u"Request Completed"_s);
    }

    void stop() { window_->control<QAction>("stopmnu")->trigger(); }

    bool isViewEmpty(const TabControls& tab)
    {
        if (tab.tag == 3)
            return window_->control<QWidget>(tab.list)->property("url").toUrl().fileName() == u"blank.html"_s;
        return window_->rows(tab.list).isEmpty();
    }

    /// Stops the search of the current tab, and checks the tab's row of the table.
    void stopAndCheck(const TabControls& tab)
    {
        // Checks the panels while the box is open, because later changes could hide an error.
        QString connectionInBox;
        QString activityInBox;
        window_->boxes.beforeAnswer = [&](QMessageBox&) {
            connectionInBox = window_->text("ConnectionPanel");
            activityInBox = window_->text("ActivityPanel");
        };
        stop();
        window_->boxes.beforeAnswer = nullptr;
        QCOMPARE(window_->boxes.boxes().size(), 1);
        QCOMPARE(window_->boxes.boxes()[0].text, tr(kStopped));
        QCOMPARE(window_->boxes.boxes()[0].title, u"Quarrynet"_s);
        QCOMPARE(window_->boxes.boxes()[0].icon, QMessageBox::Critical);
        QCOMPARE(connectionInBox, u"Closed"_s);
        QCOMPARE(activityInBox, QString());
        QCOMPARE(window_->hidden(tab.buffer), std::string());
        QVERIFY(isViewEmpty(tab));
        QVERIFY(window_->control<QPushButton>(tab.button)->isEnabled());
        // Two rows differ: the image tab's timer keeps running, and the file tab's connection stays open.
        QCOMPARE(window_->control<QTimer>(tab.timer)->isActive(), tab.tag == 3);
        if (tab.tag == 5)
            QVERIFY(window_->socketState(tab.socket) != 0);
        else
            QCOMPARE(window_->socketState(tab.socket), 0);
    }

    std::unique_ptr<WindowFixture> window_;
};

QTEST_MAIN(StopTest)
#include "stop_test.moc"
