#include <QAbstractEventDispatcher>
#include <QDialog>
#include <QProxyStyle>
#include <QSignalSpy>
#include <QWindow>

#include "app/BusySign.h"
#include "tab_controls.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

namespace {

/// Answers for the desktop whether things may move.
class MovingStyle final : public QProxyStyle
{
public:
    explicit MovingStyle(bool moves) : moves_(moves) {}

    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override
    {
        return hint == SH_Widget_Animate ? moves_ : QProxyStyle::styleHint(hint, option, widget, data);
    }

private:
    bool moves_;
};

} // namespace

/// Tests the sign that a search is running, and the announcement of its end.
class BusySignTest final : public QObject
{
    Q_OBJECT

private slots:
    void init() { begin(true); }
    void cleanup() { window_.reset(); }

    void thereIsNoLineBeforeTheFirstSearch() { QVERIFY(!line()); }

    void theLineIsThereWhileTheSocketIsOpen_data() { addTabRows(); }

    void theLineIsThereWhileTheSocketIsOpen()
    {
        QFETCH(int, tag);
        search(tag);
        QVERIFY(line() && line()->isVisible());
        QCOMPARE(line()->focusPolicy(), Qt::NoFocus);
        auto* strip = window_->control<QWidget>("TabStrip1");
        const QPoint below = strip->mapTo(&window_->main(), QPoint(0, strip->height()));
        QCOMPARE(line()->pos(), below);
        QCOMPARE(line()->width(), strip->width());
        window_->service.release();
        QTRY_VERIFY(!line()->isVisible());
        QCOMPARE(timers(), 0);
    }

    void theLineFollowsTheFrontTab()
    {
        search(1);
        window_->chooseTab(2);
        QVERIFY(!line()->isVisible());
        window_->chooseTab(1);
        QVERIFY(line()->isVisible());
    }

    void stopTakesTheLineAway()
    {
        search(1);
        QTest::keyClick(window_->main().windowHandle(), Qt::Key_Escape);
        QVERIFY(!line()->isVisible());
    }

    void aFailedConnectionTakesTheLineAwayBeforeItsBox()
    {
        search(1);
        bool shown = true;
        window_->boxes.beforeAnswer = [&](QMessageBox&) { shown = line()->isVisible(); };
        window_->service.reset();
        QTRY_COMPARE(window_->boxes.boxes().size(), 1);
        QVERIFY(!shown);
    }

    void theLineFollowsTheWindowsSize_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::newRow("minimum") << QSize(304, 217);
        QTest::newRow("full screen") << QSize(1920, 1040);
    }

    void theLineFollowsTheWindowsSize()
    {
        QFETCH(QSize, size);
        search(1);
        window_->main().resize(size);
        QCoreApplication::processEvents();
        auto* strip = window_->control<QWidget>("TabStrip1");
        QCOMPARE(line()->pos(), strip->mapTo(&window_->main(), QPoint(0, strip->height())));
        QCOMPARE(line()->width(), strip->width());
        // It covers no control of the frame.
        for (const auto* control : window_->control<QFrame>("STI")->findChildren<QWidget*>()) {
            const QRect place(control->mapTo(&window_->main(), QPoint()), control->size());
            QVERIFY(!control->isVisible() || !place.intersects(line()->geometry()));
        }
    }

    void clicksGoThroughTheLine()
    {
        search(1);
        const QPoint middle = line()->geometry().center();
        const QWidget* hit = window_->main().childAt(middle);
        QVERIFY(hit != line());
        QCOMPARE(hit, window_->control<QWidget>("STI"));
    }

    void theLineMovesOnlyWhereTheDesktopMovesThings_data()
    {
        QTest::addColumn<bool>("moves");
        QTest::newRow("animated") << true;
        QTest::newRow("reduced") << false;
    }

    void theLineMovesOnlyWhereTheDesktopMovesThings()
    {
        QFETCH(bool, moves);
        begin(moves);
        QCOMPARE(timers(), 0);
        search(1);
        QCOMPARE(timers(), moves ? 1 : 0);
        const QImage picture = line()->grab().toImage();
        const QColor bar = line()->palette().color(QPalette::Highlight);
        int coloured = 0;
        for (int x = 0; x < picture.width(); ++x)
            coloured += picture.pixelColor(x, 0) == bar;
        QVERIFY(moves ? coloured <= picture.width() / 4 : coloured == picture.width());
    }

    void theEndOfEverySearchIsAnnouncedOnce_data() { addTabRows(); }

    void theEndOfEverySearchIsAnnouncedOnce()
    {
        QFETCH(int, tag);
        QSignalSpy ended(window_->main().findChild<BusySign*>(), &BusySign::searchEnded);
        search(tag);
        window_->chooseTab(tag == 1 ? 2 : 1); // in the background, too
        window_->service.release();
        QTRY_COMPARE(ended.size(), 1);
        QTRY_VERIFY(!window_->control<QTimer>(tabOf(tag).timer)->isActive());
        QCoreApplication::processEvents();
        QCOMPARE(ended.size(), 1);
    }

    void aSearchThatReplacesAnotherDoesNotEndIt()
    {
        QSignalSpy ended(window_->main().findChild<BusySign*>(), &BusySign::searchEnded);
        search(1);
        window_->type("Text1", u"pear"_s);
        QTest::keyClick(window_->control<QLineEdit>("Text1"), Qt::Key_Return);
        QTRY_COMPARE(window_->service.requests().size(), 2);
        QCOMPARE(ended.size(), 0);
        QVERIFY(line()->isVisible());
        window_->service.release();
        QTRY_COMPARE(ended.size(), 1);
    }

    void attentionIsWantedOnlyInTheBackground_data()
    {
        QTest::addColumn<QString>("front");
        QTest::addColumn<int>("alerts");
        QTest::newRow("the window") << u"window"_s << 0;
        QTest::newRow("a dialog of the program") << u"dialog"_s << 0;
        QTest::newRow("another program") << u"other"_s << 1;
    }

    void attentionIsWantedOnlyInTheBackground()
    {
        QFETCH(QString, front);
        QFETCH(int, alerts);
        search(1);
        QDialog dialog(&window_->main());
        QWindow other; // is no widget of the toolkit, as those of other programs are none
        if (front == u"dialog"_s) {
            dialog.show();
            dialog.activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(&dialog));
        } else if (front == u"other"_s) {
            other.resize(100, 100);
            other.show();
            other.requestActivate();
            QVERIFY(QTest::qWaitForWindowActive(&other));
        }
        QTRY_COMPARE(!QApplication::activeWindow(), front == u"other"_s);
        QSignalSpy ended(window_->main().findChild<BusySign*>(), &BusySign::searchEnded);
        window_->service.release();
        QTRY_COMPARE(ended.size(), 1);
        QCOMPARE(window_->alerts, alerts);
    }

    // Saves pictures for inspection if QUARRYNET_SCREENSHOTS names an existing folder.
    void pictures()
    {
        const QString folder = qEnvironmentVariable("QUARRYNET_SCREENSHOTS");
        if (folder.isEmpty())
            return;
        begin(false);
        search(1);
        for (const QSize size : {QSize(608, 434), QSize(304, 217), QSize(1920, 1040)}) {
            window_->main().resize(size);
            QCoreApplication::processEvents();
            QVERIFY(window_->main().grab().save(u"%1/busy-%2.png"_s.arg(folder).arg(size.width())));
        }
    }

private:
    void begin(bool moves)
    {
        QApplication::setStyle(new MovingStyle(moves));
        window_ = std::make_unique<WindowFixture>();
        window_->start();
        window_->service.stall();
    }

    void search(int tag)
    {
        const char* field = fillIn(*window_, tabOf(tag));
        QTest::keyClick(window_->control<QLineEdit>(field), Qt::Key_Return);
        QTRY_COMPARE(window_->service.requests().size(), 1);
    }

    QWidget* line() { return window_->main().findChild<QWidget*>(u"BusyLine"_s); }

    // Counts the line's timers that run.
    int timers()
    {
        if (!line())
            return 0;
        const auto* dispatcher = QAbstractEventDispatcher::instance();
        return static_cast<int>(dispatcher->registeredTimers(line()).size());
    }

    std::unique_ptr<WindowFixture> window_;
};

QTEST_MAIN(BusySignTest)
#include "busy_sign_test.moc"
