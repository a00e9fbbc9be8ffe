#include <QComboBox>
#include <QEventLoop>
#include <QFile>
#include <QProcess>
#include <QTabBar>
#include <QTimer>

#include "tab_controls.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

namespace {

constexpr int kBetweenLooks = 50;    // into the log, in milliseconds
constexpr int kLongestWait = 60'000; // milliseconds
constexpr int kMostAttempts = 4;

/// What Orca has spoken, from its log.
class Speech
{
public:
    explicit Speech(const QString& path) : file_(path) {}

    bool isOpen() { return file_.open(QIODevice::ReadOnly); }

    /// Returns whether all of `texts` have been spoken since the last call that returned true.
    bool has(const QStringList& texts)
    {
        unread_ += file_.readAll();
        QString spoken;
        for (const QByteArray& line : unread_.split('\n')) {
            if (line.contains("SPEECH OUTPUT:"))
                spoken += QString::fromUtf8(line.mid(line.indexOf('\'') + 1)) + u'\n';
        }
        heard_ = spoken;
        for (const QString& text : texts) {
            if (!spoken.contains(text))
                return false;
        }
        unread_.clear();
        return true;
    }

    const QString& heard() const { return heard_; }

private:
    QFile file_;
    QByteArray unread_;
    QString heard_;
};

} // namespace

/// Works the window with real keys while Orca runs, and reads in Orca's log what a person would hear. Run by
/// tests/orca.sh, which starts a display, a bus and Orca.
class OrcaTest final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        const QString log = qEnvironmentVariable("QUARRYNET_ORCA_LOG");
        if (log.isEmpty())
            QSKIP("run by tests/orca.sh");
        speech_ = std::make_unique<Speech>(log);
        QVERIFY(speech_->isOpen());
        hear({u"Screen reader on."_s});
        window_ = std::make_unique<WindowFixture>();
        window_->start();
        hear({u"Quarrynet frame."_s});
    }

    void cleanupTestCase() { window_.reset(); }

    void everyStopIsNamedAndEveryEndIsAnnounced_data()
    {
        QTest::addColumn<int>("tag");
        QTest::addColumn<QString>("frame");
        QTest::addColumn<QStringList>("fields");
        QTest::addColumn<QString>("end");
        QTest::addColumn<QStringList>("stops");
        const QString button = u"Start the search push button."_s;
        const QString slider = u"Result page slider 1."_s;
        QTest::newRow("web") << 1 << u"Search The Internet"_s << QStringList{u"Keyword/s: text."_s}
                             << u"notification 30 of 1,234 results."_s
                             << QStringList{button, u"Web pages found"_s, slider};
        QTest::newRow("page") << 2 << u"Specific Page Search"_s << QStringList{u"URL: text."_s, u"Keyword/s: text."_s}
                              << u"notification green: Found, pear: Found."_s
                              << QStringList{u"Match mode combo box."_s, button, u"Keywords found or not found"_s};
        QTest::newRow("image") << 3 << u"Image Search"_s << QStringList{u"Keyword/s: text."_s}
                               << u"notification 10 of 1,235 results."_s << QStringList{button, u"Images found"_s};
        QTest::newRow("download") << 4 << u"Search For Downloads"_s << QStringList{u"Keyword/s: text."_s}
                                  << u"notification 12 of 63 results."_s
                                  << QStringList{button, u"Programs found"_s, slider};
        QTest::newRow("file") << 5 << u"Specific File Search"_s << QStringList{u"Filename: text."_s}
                              << u"notification 15 results."_s
                              << QStringList{button, u"Files found"_s}; // one page only
    }

    void everyStopIsNamedAndEveryEndIsAnnounced()
    {
        QFETCH(int, tag);
        QFETCH(QString, frame);
        QFETCH(QStringList, fields);
        QFETCH(QString, end);
        QFETCH(QStringList, stops);
        const TabControls& tab = tabOf(tag);
        window_->service.answerWith(pageOf(tab));
        // Each key makes Orca silent, and a slow one may still be busy with what came before. A person would press
        // again.
        bool heard = false;
        for (int attempt = 0; attempt < kMostAttempts && !heard; ++attempt) {
            if (window_->control<QTabBar>("TabStrip1")->currentIndex() == tag - 1) {
                press(u"ctrl+"_s + QString::number(tag % 5 + 1)); // away, to hear the arrival
                isHeard({u"text."_s}, kLongestWait / kMostAttempts);
            }
            press(u"ctrl+"_s + QString::number(tag));
            heard = isHeard({frame, fields.first()}, kLongestWait / kMostAttempts);
        }
        QVERIFY2(heard, qPrintable(frame + u" is not in:\n"_s + speech_->heard()));
        for (qsizetype i = 0; i < fields.size(); ++i) {
            window_->control<QLineEdit>(tab.typed[static_cast<std::size_t>(i)].field)
                ->setText(QLatin1String(tab.typed[static_cast<std::size_t>(i)].text));
            press(u"Return"_s); // leads from the address to the keywords, and starts the search there
            if (i + 1 < fields.size())
                hear({fields[i + 1]});
        }
        hear({end});
        for (const QString& stop : stops) {
            press(u"Tab"_s);
            hear({stop});
        }
    }

    void valuesAreSpoken()
    {
        window_->chooseTab(2);
        window_->control<QComboBox>("Combo1")->setFocus();
        hear({u"Match mode combo box."_s});
        press(u"Down"_s);
        hear({u"All Keyword/s"_s});
        search(kTabs[3]);
        hear({u"notification 12 of 63 results."_s});
        window_->control<QSlider>("Slider3")->setFocus();
        hear({u"Result page slider 1."_s, u"page 1 of 3."_s});
    }

    void errorsAreSpoken()
    {
        window_->boxes.forget();
        window_->boxes.beforeAnswer = [this](QMessageBox& box) {
            hear({box.text().section(u'\n', 0, 0).section(u' ', 0, 0)});
        };
        const QMetaObject::Connection cut = connect(&window_->service, &LoopbackService::requested, &window_->service,
                                                    &LoopbackService::reset, Qt::QueuedConnection);
        window_->chooseTab(1);
        window_->activate();
        window_->service.stall();
        auto* field = window_->control<QLineEdit>("Text1");
        field->setFocus();
        field->setText(u"apple"_s);
        QTest::keyClick(field, Qt::Key_Return);
        QTRY_COMPARE_WITH_TIMEOUT(window_->boxes.boxes().size(), 1, kLongestWait);
        QCOMPARE(window_->boxes.boxes().front().title, u"Error"_s);
        disconnect(cut);
        window_->boxes.beforeAnswer = nullptr;
    }

private:
    void search(const TabControls& tab)
    {
        window_->activate();
        window_->service.answerWith(pageOf(tab));
        window_->chooseTab(tab.tag);
        auto* field = window_->control<QLineEdit>(tab.typed[0].field);
        field->setText(QLatin1String(tab.typed[0].text));
        QTest::keyClick(field, Qt::Key_Return);
    }

    // Waits in a real event loop. QTest's waiting functions handle a question of Orca's only every ten milliseconds,
    // and Orca has hundreds.
    bool isHeard(const QStringList& texts, int wait)
    {
        QEventLoop loop;
        QTimer look;
        connect(&look, &QTimer::timeout, &loop, [&] {
            if (speech_->has(texts))
                loop.exit(0);
        });
        look.start(kBetweenLooks);
        QTimer::singleShot(wait, &loop, [&] { loop.exit(1); });
        return loop.exec() == 0;
    }

    void hear(const QStringList& texts)
    {
        if (!isHeard(texts, kLongestWait))
            QFAIL(qPrintable(texts.join(u" | "_s) + u" is not in:\n"_s + speech_->heard()));
    }

    static void press(const QString& key)
    {
        QProcess xdotool;
        QEventLoop loop;
        connect(&xdotool, &QProcess::finished, &loop, [&](int code) { loop.exit(code); });
        xdotool.start(u"xdotool"_s, {u"key"_s, key});
        QCOMPARE(loop.exec(), 0);
    }

    std::unique_ptr<Speech> speech_;
    std::unique_ptr<WindowFixture> window_;
};

QTEST_MAIN(OrcaTest)
#include "orca_test.moc"
