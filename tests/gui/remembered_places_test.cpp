#include <QAction>
#include <QFile>
#include <QHeaderView>
#include <QScreen>

#ifndef Q_OS_WIN
#include <sys/stat.h>
#endif

#include "app/RememberedPlaces.h"
#include "platform/ListView.h"
#include "tab_controls.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

namespace {

constexpr QSize kDesign(608, 434);
const QList<int> kDownloadColumns = {118, 170, 120, 72, 90};
const QList<int> kFileColumns = {170, 310, 90};

QList<int> columns(QTreeView* list)
{
    QList<int> widths;
    for (int column = 0; column < list->header()->count(); ++column)
        widths.append(list->columnWidth(column));
    return widths;
}

} // namespace

class RememberedPlacesTest final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QApplication::setCursorFlashTime(0); } // for pictures that can be compared
    void init() { window_ = std::make_unique<WindowFixture>(); }
    void cleanup() { window_.reset(); }

    void withoutAFileTheWindowIsAsDesigned()
    {
        window_->start();
        verifyDesign();
        QVERIFY(!QFile::exists(stateFile()));
    }

    void whatIsRememberedWithoutAChangeChangesNoPixel()
    {
        window_->start();
        pictures();
        window_->start(); // a process's first window may differ in what the toolkit keeps for all later ones
        const QList<QImage> before = pictures();
        window_->main().close();
        QVERIFY(QFile::exists(stateFile()));
        window_->start();
        QCOMPARE(window_->main().size(), kDesign);
        QVERIFY(pictures() == before);
        QCOMPARE(columns(list(3)), kDownloadColumns);
        QCOMPARE(columns(list(4)), kFileColumns);
    }

    // As a tour does. Its window stays where the desktop puts it, and moves nobody's.
    void aWindowThatRemembersNothingLeavesTheFileAsItIs()
    {
        writeState("[Window]\nLeft=101\nTop=57\n");
        window_->remembers = false;
        window_->start();
        QVERIFY(window_->main().geometry().topLeft() != QPoint(101, 57));
        window_->main().move(31, 33);
        window_->main().close();
        QCOMPARE(state(), QByteArray("[Window]\nLeft=101\nTop=57\n"));
    }

    void theWindowComesBackToItsPlace()
    {
        window_->start();
        window_->main().setGeometry(QRect(QPoint(101, 57), QSize(700, 500)));
        window_->main().close();
        window_->start();
        QCOMPARE(window_->main().geometry(), QRect(QPoint(101, 57), kDesign));
        verifyStartTab();
    }

    void closedInAnotherStateItComesBackToItsNormalPlace_data()
    {
        QTest::addColumn<int>("state");
        QTest::newRow("maximised") << int(Qt::WindowMaximized);
        QTest::newRow("minimised") << int(Qt::WindowMinimized);
        QTest::newRow("full screen") << int(Qt::WindowFullScreen);
        QTest::newRow("minimised while maximised") << int(Qt::WindowMaximized | Qt::WindowMinimized);
    }

    void closedInAnotherStateItComesBackToItsNormalPlace()
    {
        QFETCH(int, state);
        window_->start();
        window_->main().setGeometry(QRect(QPoint(101, 57), kDesign));
        QCoreApplication::processEvents();
        window_->main().setWindowState(Qt::WindowStates(state));
        QCoreApplication::processEvents();
        window_->main().close();
        window_->start();
        QCOMPARE(window_->main().windowState() & ~Qt::WindowActive, Qt::WindowStates());
        QCOMPARE(window_->main().geometry(), QRect(QPoint(101, 57), kDesign));
    }

    void aPlaceThatNobodySeesIsNotUsed_data()
    {
        QTest::addColumn<QByteArray>("place");
        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
        const auto at = [](int left, int top) {
            return "Left=" + QByteArray::number(left) + "\nTop=" + QByteArray::number(top) + "\n";
        };
        QTest::newRow("a screen at the right that is gone") << at(screen.right() + 100, 0);
        QTest::newRow("a screen at the left that is gone") << at(-5000, 10);
        QTest::newRow("mostly below") << at(10, screen.bottom() - 100);
        QTest::newRow("its title bar just above") << at(10, screen.top()) + "Title=20\n";
        QTest::newRow("most of its title bar above") << at(10, screen.top() + 9) + "Title=20\n";
        QTest::newRow("a usual title bar above") << at(10, screen.top());
        QTest::newRow("a title bar of any height") << at(10, 10) + "Title=1000000\n";
        QTest::newRow("a title bar below it") << at(10, screen.top() - 30) + "Title=-100\n";
        QTest::newRow("its title above") << at(10, screen.top() - 30);
        QTest::newRow("mostly at the left") << at(screen.left() - kDesign.width() / 2 - 1, 10);
        QTest::newRow("the largest number") << at(std::numeric_limits<int>::max(), 10);
        QTest::newRow("the smallest number") << at(10, std::numeric_limits<int>::min());
        QTest::newRow("beyond all numbers") << QByteArray("Left=99999999999999999999\nTop=10\n");
        QTest::newRow("no number") << QByteArray("Left=nan\nTop=10\n");
        QTest::newRow("a fraction") << QByteArray("Left=10.5\nTop=1e1\n");
        QTest::newRow("half a place") << QByteArray("Left=10\n");
        QTest::newRow("empty") << QByteArray("Left=\nTop=\n");
    }

    void aPlaceThatNobodySeesIsNotUsed()
    {
        QFETCH(QByteArray, place);
        writeState("[Window]\n" + place);
        window_->start();
        verifyDesign();
    }

    // The title bar was taken for the client area's upper edge, so a window below the screen's edge came back without.
    void theHeightOfTheTitleBarIsRemembered()
    {
        window_->start();
        window_->main().setGeometry(QRect(QPoint(101, 57), kDesign));
        const int title = window_->main().geometry().top() - window_->main().frameGeometry().top();
        window_->main().close();
        QVERIFY(state().contains("Title=" + QByteArray::number(title)));
        // A maximised window may have another frame.
        writeState("[Window]\nLeft=101\nTop=57\nTitle=17\n");
        window_->start();
        window_->main().setWindowState(Qt::WindowMaximized);
        QCoreApplication::processEvents();
        window_->main().close();
        QVERIFY(state().contains("Title=17"));
    }

    // Some desktops give windows no title bar.
    void aWindowWithoutATitleBarComesBackToTheScreensEdge()
    {
        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
        writeState("[Window]\nLeft=20\nTop=" + QByteArray::number(screen.top()) + "\nTitle=0\n");
        window_->start();
        QVERIFY(window_->main().testAttribute(Qt::WA_Moved));
        QCOMPARE(window_->main().geometry().left(), 20); // the platform may add its frame at the top
    }

    void reachNeedsHalfOfTheWindowAndItsTitle()
    {
        const QList<QRect> two = {QRect(0, 0, 800, 600), QRect(800, 100, 800, 600)};
        QVERIFY(isWithinReach(QRect(0, 0, 600, 400), 0, two));
        QVERIFY(isWithinReach(QRect(500, 150, 600, 400), 0, two)); // a part on each
        QVERIFY(isWithinReach(QRect(-299, 0, 600, 400), 0, two));
        QVERIFY(!isWithinReach(QRect(-301, 0, 600, 400), 0, two));
        QVERIFY(!isWithinReach(QRect(0, -1, 600, 400), 0, two));
        QVERIFY(!isWithinReach(QRect(0, 450, 600, 400), 0, two));
        QVERIFY(!isWithinReach(QRect(900, 50, 600, 400), 0, two)); // its title is above the second
        QVERIFY(!isWithinReach(QRect(0, 0, 600, 400), 0, {}));
        QVERIFY(isWithinReach(QRect(0, 0, 600, 400), 0, {two[0], two[0]})); // mirrored
        QVERIFY(!isWithinReach(QRect(0, 0, 600, 400), 20, two));
        QVERIFY(!isWithinReach(QRect(0, 9, 600, 400), 20, two));
        QVERIFY(isWithinReach(QRect(0, 10, 600, 400), 20, two));
        QVERIFY(isWithinReach(QRect(0, 0, 600, 400), 20, {two[0], QRect(0, -600, 800, 600)})); // on the one above
        QVERIFY(!isWithinReach(QRect(-350, 0, 600, 400), 0, {two[0], two[0]}));
    }

    void columnsComeBackAtEveryWindowSize_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::newRow("design") << kDesign;
        QTest::newRow("double") << QSize(1216, 868);
        QTest::newRow("odd") << QSize(777, 555);
    }

    void columnsComeBackAtEveryWindowSize()
    {
        QFETCH(QSize, size);
        window_->start();
        window_->main().resize(size);
        list(3)->header()->resizeSection(0, 60);
        list(4)->header()->resizeSection(1, 200);
        window_->main().resize(kDesign); // the size of the next start
        const QList<int> download = columns(list(3));
        const QList<int> file = columns(list(4));
        QVERIFY(download != kDownloadColumns && file != kFileColumns);
        window_->main().resize(size);
        const QList<int> resized = columns(list(3));
        window_->main().close();

        window_->start();
        QCOMPARE(columns(list(3)), download);
        QCOMPARE(columns(list(4)), file);
        // They keep their shares as designed columns do.
        window_->main().resize(size);
        QCOMPARE(columns(list(3)), resized);
        window_->main().resize(kDesign);
        QCOMPARE(columns(list(3)), download);
        QCOMPARE(columns(list(4)), file);
        // The other lists start with halved columns.
        for (const int number : {1, 2})
            QCOMPARE(columns(list(number)), QList<int>(2, list(number)->width() / 2 - 3));
    }

    void columnsAreRememberedOnceMore()
    {
        window_->start();
        list(3)->header()->resizeSection(0, 60);
        const QList<int> widths = columns(list(3));
        for (int times = 0; times < 3; ++times) {
            window_->main().close();
            window_->start();
            QCOMPARE(columns(list(3)), widths);
        }
    }

    // Its width was written, but not accepted at the next start, and then none of the list's columns came back.
    void aColumnWiderThanTenListsIsRememberedAsWideAsTen()
    {
        window_->start();
        auto* view = qobject_cast<ListView*>(list(3));
        view->setRows({{std::string(4000, 'w')}});
        QHeaderView* header = view->header();
        header->resizeSection(1, 60);
        const QPoint divider(header->sectionPosition(1) - 1, header->height() / 2);
        QTest::mouseDClick(header->viewport(), Qt::LeftButton, Qt::NoModifier, divider);
        QVERIFY(header->sectionSize(0) > 10 * view->width());
        QList<int> widths = columns(view);
        widths[0] = 10 * view->width();
        for (int times = 0; times < 2; ++times) {
            window_->main().close();
            window_->start();
            QCOMPARE(columns(list(3)), widths);
        }
    }

    void aColumnThatIsVeryNarrowInAWideListIsRemembered()
    {
        window_->start();
        window_->main().resize(kDesign.width() * 10, kDesign.height());
        list(4)->header()->resizeSection(0, 8);
        QVERIFY(list(4)->columnWidth(0) < list(4)->width() / 500);
        list(4)->header()->resizeSection(1, list(4)->width() / 2);
        const int half = list(4)->width() / 2;
        QCOMPARE(list(4)->columnWidth(1), half);
        window_->main().close();
        window_->start();
        QCOMPARE(list(4)->columnWidth(0), list(4)->header()->minimumSectionSize());
        QCOMPARE(list(4)->columnWidth(1), list(4)->width() / 2);
    }

    void theHalvedColumnsAreNotRemembered()
    {
        window_->start();
        const QList<int> halved = columns(list(1));
        list(1)->header()->resizeSection(0, 60);
        window_->main().close();
        window_->start();
        QCOMPARE(columns(list(1)), halved);
    }

    void columnsThatNobodyCanUseAreNotUsed_data()
    {
        QTest::addColumn<QByteArray>("shares");
        QTest::newRow("too few") << QByteArray("0.2,0.2,0.2,0.2");
        QTest::newRow("too many") << QByteArray("0.1,0.1,0.1,0.1,0.1,0.1");
        QTest::newRow("empty") << QByteArray("");
        QTest::newRow("words") << QByteArray("a,b,c,d,e");
        QTest::newRow("one word") << QByteArray("0.2,0.2,x,0.2,0.2");
        QTest::newRow("NaN") << QByteArray("0.2,nan,0.2,0.2,0.2");
        QTest::newRow("infinite") << QByteArray("0.2,inf,0.2,0.2,0.2");
        QTest::newRow("huge") << QByteArray("0.2,1e300,0.2,0.2,0.2");
        QTest::newRow("negative") << QByteArray("0.2,-0.2,0.2,0.2,0.2");
        QTest::newRow("nothing left") << QByteArray("0.2,0,0.2,0.2,0.2");
        QTest::newRow("long") << QByteArray("0.2,0.2,0.2,0.2,0.") + QByteArray(100'000, '2') + ",0.1";
    }

    void columnsThatNobodyCanUseAreNotUsed()
    {
        QFETCH(QByteArray, shares);
        writeState("[Window]\nDownloadColumns=" + shares + "\nFileColumns=" + shares + "\n");
        window_->start();
        verifyDesign();
    }

    void forgettingRestoresTheColumnsAndTheNextPlace()
    {
        window_->start();
        window_->main().move(101, 57);
        list(3)->header()->resizeSection(0, 60);
        window_->main().close();
        window_->start();
        window_->control<QAction>("forgetplacesmnu")->trigger();
        QCOMPARE(columns(list(3)), kDownloadColumns);
        QVERIFY(!QFile::exists(stateFile()));
        window_->main().close();
        QVERIFY(!QFile::exists(stateFile()));
        window_->start();
        verifyDesign();
        QVERIFY(window_->boxes.boxes().isEmpty());
    }

    // The window that was closed last decided, and one whose columns nobody had touched removed those of all others.
    void aWindowWhoseColumnsNobodyTouchedKeepsThoseOfAnotherWindow_data()
    {
        QTest::addColumn<bool>("forgets");
        QTest::newRow("as they were at its start") << false;
        QTest::newRow("forgotten") << true;
    }

    void aWindowWhoseColumnsNobodyTouchedKeepsThoseOfAnotherWindow()
    {
        QFETCH(bool, forgets);
        window_->start();
        list(3)->header()->resizeSection(0, 60);
        const QList<int> widths = columns(list(3));
        window_->main().close();
        const QByteArray others = state();
        QVERIFY(others.contains("DownloadColumns="));
        QVERIFY(QFile::remove(stateFile()));

        window_->start();
        if (forgets)
            window_->control<QAction>("forgetplacesmnu")->trigger();
        list(4)->header()->resizeSection(0, 99);
        writeState(others); // by another window
        window_->main().close();
        window_->start();
        QCOMPARE(columns(list(3)), widths);
        QCOMPARE(list(4)->columnWidth(0), 99);
    }

    void aWindowWhoseColumnsNobodyTouchedDoesNotUndoAnothersForgetting()
    {
        window_->start();
        list(3)->header()->resizeSection(0, 60);
        window_->main().close();
        window_->start();
        QVERIFY(columns(list(3)) != kDownloadColumns);
        QVERIFY(QFile::remove(stateFile())); // by another window
        window_->main().close();
        window_->start();
        QCOMPARE(columns(list(3)), kDownloadColumns);
    }

    void whatIsMovedAfterForgettingIsRemembered()
    {
        window_->start();
        window_->control<QAction>("forgetplacesmnu")->trigger();
        window_->main().setGeometry(QRect(QPoint(33, 44), kDesign));
        list(4)->header()->resizeSection(0, 99);
        window_->main().close();
        window_->start();
        QCOMPARE(window_->main().geometry().topLeft(), QPoint(33, 44));
        QCOMPARE(list(4)->columnWidth(0), 99);
    }

    void whatHasNotChangedIsNotWrittenAgain()
    {
        window_->start();
        window_->main().close();
        QFile file(stateFile());
        QVERIFY(file.open(QIODevice::Append) && file.write("; a comment that a rewrite would keep\n") > 0);
        file.close();
        QVERIFY(file.setPermissions(QFile::ReadOwner));
        const QDateTime before = QFileInfo(file).lastModified();
        window_->start();
        window_->main().close();
        QCOMPARE(QFileInfo(stateFile()).lastModified(), before);
        QVERIFY(file.setPermissions(QFile::ReadOwner | QFile::WriteOwner));
    }

    // Closing must not fail because nothing can be remembered.
    void aFileThatCannotBeUsedIsIgnored_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("folder") << u"folder"_s;
        QTest::newRow("no text") << u"zeros"_s;
#ifndef Q_OS_WIN
        QTest::newRow("pipe") << u"pipe"_s;
        QTest::newRow("huge") << u"huge"_s;
        QTest::newRow("device") << u"device"_s;
#endif
    }

    void aFileThatCannotBeUsedIsIgnored()
    {
        QFETCH(QString, kind);
        if (kind == u"folder"_s)
            QVERIFY(QDir().mkpath(stateFile()));
        if (kind == u"zeros"_s)
            writeState(QByteArray(1000, '\0'));
#ifndef Q_OS_WIN
        const QByteArray path = QFile::encodeName(stateFile());
        if (kind == u"pipe"_s)
            QCOMPARE(::mkfifo(path.constData(), 0600), 0);
        if (kind == u"device"_s)
            QVERIFY(QFile::link(u"/dev/zero"_s, stateFile()));
        if (kind == u"huge"_s) {
            writeState("[Window]\nLeft=1\n");
            QVERIFY(QFile::resize(stateFile(), qint64(1) << 40)); // takes no room
        }
#endif
        window_->start();
        verifyDesign();
        window_->main().close();
        QVERIFY(!window_->main().isVisible());
        QVERIFY(window_->boxes.boxes().isEmpty());
    }

    void theSettingsFileIsNotMadeByClosing()
    {
        window_->start();
        window_->main().close();
        QVERIFY(!QFile::exists(window_->settingsFile()));
    }

private:
    QString stateFile() const
    {
        return window_->folder() + QDir::separator() + u"Quarrynet.state"_s;
    }

    QByteArray state() const
    {
        QFile file(stateFile());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    void writeState(const QByteArray& content)
    {
        QFile file(stateFile());
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(content), content.size());
    }

    // Returns a list in front: a hidden one follows the window only when it is shown.
    QTreeView* list(int number)
    {
        window_->chooseTab(number <= 2 ? number : number + 1);
        return window_->control<QTreeView>(("ListView" + QByteArray::number(number)).constData());
    }

    QList<QImage> pictures()
    {
        QList<QImage> pictures;
        for (const TabControls& tab : kTabs) {
            window_->chooseTab(tab.tag);
            pictures.append(window_->main().grab().toImage());
        }
        window_->chooseTab(1);
        return pictures;
    }

    void verifyStartTab()
    {
        QCOMPARE(window_->control<QTabBar>("TabStrip1")->currentIndex(), 0);
    }

    // Verifies that nothing remembered has had an effect: the desktop placed the window.
    void verifyDesign()
    {
        QVERIFY(!window_->main().testAttribute(Qt::WA_Moved));
        QCOMPARE(window_->main().size(), kDesign);
        verifyStartTab();
        QCOMPARE(columns(list(3)), kDownloadColumns);
        QCOMPARE(columns(list(4)), kFileColumns);
    }

    std::unique_ptr<WindowFixture> window_;
};

QTEST_MAIN(RememberedPlacesTest)
#include "remembered_places_test.moc"
