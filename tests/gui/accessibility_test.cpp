#include <QAccessible>
#include <QAction>
#include <QComboBox>

#include "DialogDriver.h"
#include "WindowFixture.h"
#include "app/SearchReports.h"
#include "tab_controls.h"
#include "tests/core/page_samples.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;
using namespace quarrynet::samples;

namespace {

QAccessibleInterface* interfaceOf(QWidget* control)
{
    return QAccessible::queryAccessibleInterface(control);
}

// Returns the names of the visible objects that an assistive tool finds when it walks down from `from`.
QStringList presentBelow(QAccessibleInterface* from)
{
    QStringList names;
    for (int i = 0; i < from->childCount(); ++i) {
        QAccessibleInterface* child = from->child(i);
        if (!child || child->state().invisible)
            continue;
        if (child->object())
            names.append(child->object()->objectName());
        names += presentBelow(child);
    }
    return names;
}

// Returns the text that is read as the caption of a control: the names of its labels.
QString captionOf(QAccessibleInterface* control)
{
    QStringList captions;
    for (const auto& [label, relation] : control->relations(QAccessible::Label)) {
        if (relation == QAccessible::Label)
            captions.append(label->text(QAccessible::Name));
    }
    return captions.join(u'|');
}

} // namespace

class AccessibilityTest final : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        window_ = std::make_unique<WindowFixture>();
        window_->start();
    }

    // Screen readers used to read their names, such as "State of the connection", instead of their texts.
    void theStatusPanelsAreReadWithTheirTexts()
    {
        window_->main().showConnection("Connecting");
        window_->main().showActivity("Requesting Data");
        QAccessibleInterface* connection = interfaceOf(window_->control<QLabel>("ConnectionPanel"));
        QCOMPARE(connection->text(QAccessible::Name), u"Connecting"_s);
        QCOMPARE(connection->text(QAccessible::Description), u"State of the connection"_s);
        QAccessibleInterface* activity = interfaceOf(window_->control<QLabel>("ActivityPanel"));
        QCOMPARE(activity->text(QAccessible::Name), u"Requesting Data"_s);
        QCOMPARE(activity->text(QAccessible::Description), u"Step of the search"_s);
    }

    void figuresAndFieldsBelongToTheirCaptions_data()
    {
        QTest::addColumn<QString>("caption");
        QTest::newRow("Text1") << u"Keyword/s:"_s;
        QTest::newRow("Label3") << u"Pages Found:"_s;
        QTest::newRow("Label5") << u"Search Speed:"_s;
        QTest::newRow("Text4") << u"URL:"_s;
        QTest::newRow("Text5") << u"Keyword/s:"_s;
        QTest::newRow("Combo1") << u"Match mode"_s;
        QTest::newRow("Text7") << u"Keyword/s:"_s;
        QTest::newRow("Label11") << u"Images Found:"_s;
        QTest::newRow("Label12") << u"Search Speed:"_s;
        QTest::newRow("Text10") << u"Keyword/s:"_s;
        QTest::newRow("Label15") << u"Files Found:"_s;
        QTest::newRow("Text11") << u"Filename:"_s;
    }

    void figuresAndFieldsBelongToTheirCaptions()
    {
        QFETCH(QString, caption);
        QCOMPARE(captionOf(interfaceOf(window_->control<QWidget>(QTest::currentDataTag()))), caption);
    }

    void figuresAreReadWithTheirTexts()
    {
        QCOMPARE(interfaceOf(window_->control<QLabel>("Label3"))->text(QAccessible::Name), u"0"_s);
        QCOMPARE(interfaceOf(window_->control<QLabel>("Label5"))->text(QAccessible::Name), u"0.0 Second/s"_s);
    }

    void theModeListIsReadWithTheModeThatIsChosen()
    {
        window_->chooseTab(2);
        auto* modes = window_->control<QComboBox>("Combo1");
        modes->setCurrentIndex(2);
        QCOMPARE(interfaceOf(modes)->text(QAccessible::Value), u"Exact Search"_s);
        QVERIFY(!window_->control<QLabel>("Combo1Caption")->isVisible());
    }

    // From the start, the page check's frame is visible beneath the first one.
    void theCoveredFrameIsNotPresent()
    {
        auto* covered = window_->control<QFrame>("SPS");
        QVERIFY(covered->isVisible());
        QVERIFY(interfaceOf(covered)->state().invisible);
        QVERIFY(interfaceOf(covered)->rect().isEmpty());
        verifyOnlyFrontTabIsPresent(1);
    }

    void everySwitchShowsTheFrontTabOnly_data()
    {
        QTest::addColumn<int>("tag");
        for (const TabControls& tab : kTabs)
            QTest::newRow(tab.frame) << tab.tag;
    }

    void everySwitchShowsTheFrontTabOnly()
    {
        QFETCH(int, tag);
        if (tag == 1)
            window_->chooseTab(2);
        window_->chooseTab(tag);
        verifyOnlyFrontTabIsPresent(tag);
        window_->chooseTab(tag == 1 ? 2 : 1);
        verifyOnlyFrontTabIsPresent(tag == 1 ? 2 : 1);
    }

    // Screen readers used to be silent when a search ended.
    void theEndOfASearchIsAnnounced_data()
    {
        QTest::addColumn<int>("tag");
        QTest::addColumn<QString>("announcement");
        QTest::newRow("STI") << 1 << u"30 of 1,234 results"_s;
        QTest::newRow("SPS") << 2 << u"green: Found, pear: Found"_s;
        QTest::newRow("IMG") << 3 << u"10 of 1,235 results"_s;
        QTest::newRow("SFD") << 4 << u"12 of 63 results"_s;
        QTest::newRow("SFS") << 5 << u"15 results"_s;
    }

    void theEndOfASearchIsAnnounced()
    {
        QFETCH(int, tag);
        QFETCH(QString, announcement);
        window_->service.answerWith(pageOf(tabOf(tag)));
        QTest::keyClick(window_->control<QLineEdit>(fillIn(*window_, tabOf(tag))), Qt::Key_Return);
        QTRY_COMPARE(announced(), announcement);
    }

    // Once a list of one row was announced as "1 results".
    void aSingleResultIsAnnouncedAsOne()
    {
        window_->service.answerWith(bytes(filePage(1)));
        QTest::keyClick(window_->control<QLineEdit>(fillIn(*window_, tabOf(5))), Qt::Key_Return);
        QTRY_COMPARE(announced(), u"1 result"_s);
    }

    // The summary used to end in a dangling colon.
    void aSummaryOfAPageCheckIsAnnouncedAsASentence()
    {
        window_->service.answerWith(pageOf(tabOf(2)));
        const char* field = fillIn(*window_, tabOf(2));
        window_->control<QComboBox>("Combo1")->setCurrentIndex(1);
        window_->type(field, u"green zebra"_s);
        QTest::keyClick(window_->control<QLineEdit>(field), Qt::Key_Return);
        QTRY_COMPARE(announced(), u"Not all keywords are found in this page"_s);
    }

    void theEndInTheBackgroundIsAnnouncedWithItsTab()
    {
        window_->service.stall();
        QTest::keyClick(window_->control<QLineEdit>(fillIn(*window_, kTabs[0])), Qt::Key_Return);
        QTRY_COMPARE(window_->service.requests().size(), 1);
        window_->chooseTab(4);
        window_->service.answerWith(pageOf(kTabs[0]));
        window_->service.release();
        QTRY_COMPARE(announced(), u"Search The Internet: 30 of 1,234 results"_s);
    }

    // A box says why, so there is nothing to announce.
    void aStoppedSearchHasItsBoxOnly()
    {
        window_->service.stall();
        QTest::keyClick(window_->control<QLineEdit>(fillIn(*window_, kTabs[0])), Qt::Key_Return);
        QTRY_COMPARE(window_->service.requests().size(), 1);
        QTest::keyClick(&window_->main(), Qt::Key_Escape);
        QCOMPARE(window_->boxes.texts(), QStringList(u"User cancel the operation"_s));
        QCoreApplication::processEvents();
        QCOMPARE(announced(), QString());
    }

    // Any open dialog used to swallow the announcement.
    void endsBehindADialogAreAnnouncedWhenItCloses()
    {
        fillIn(*window_, kTabs[0]);
        startStalled(tabOf(5));
        window_->chooseTab(1);
        QString during = u"no dialog"_s;
        const DialogDriver driver([&](QDialog&) {
            letEnd(tabOf(5));
            window_->service.answerWith(pageOf(kTabs[0]));
            window_->control<QPushButton>("Command1")->click();
            waitForEnd(kTabs[0]);
            during = announced();
        });
        window_->control<QAction>("proxymnu")->trigger();
        QCOMPARE(driver.seen().size(), 1);
        QCOMPARE(during, QString());
        QTRY_COMPARE(announced(), u"Specific File Search: 15 results. 30 of 1,234 results"_s);
    }

    void theEndBehindAnotherTabsBoxIsAnnouncedWhenItCloses()
    {
        startStalled(tabOf(5));
        startStalled(kTabs[0]);
        QString during = u"no box"_s;
        window_->boxes.beforeAnswer = [&](QMessageBox&) {
            letEnd(tabOf(5));
            during = announced();
        };
        QTest::keyClick(&window_->main(), Qt::Key_Escape);
        QCOMPARE(window_->boxes.texts(), QStringList(u"User cancel the operation"_s));
        QCOMPARE(during, QString());
        QTRY_COMPARE(announced(), u"Specific File Search: 15 results"_s);
    }

    // An error's box opens over the dialog and says why, so there is nothing to announce.
    void anErrorBehindADialogHasItsBoxOnly()
    {
        startStalled(kTabs[0]);
        const DialogDriver driver([&](QDialog&) {
            window_->service.reset();
            waitForEnd(kTabs[0]);
        });
        window_->control<QAction>("proxymnu")->trigger();
        QCOMPARE(window_->boxes.boxes().size(), 1);
        QCoreApplication::processEvents();
        QCOMPARE(announced(), QString());
    }

    // A tool may query the object under the pointer.
    void aPointInTheFrontFrameIsInNoOther_data() { everySwitchShowsTheFrontTabOnly_data(); }

    void aPointInTheFrontFrameIsInNoOther()
    {
        QFETCH(int, tag);
        if (tag != 1)
            window_->chooseTab(tag);
        auto* field = window_->control<QLineEdit>(tabOf(tag).typed[0].field);
        const QPoint at = field->mapToGlobal(field->rect().center());
        QAccessibleInterface* found = interfaceOf(&window_->main());
        while (QAccessibleInterface* child = found->childAt(at.x(), at.y()))
            found = child;
        QCOMPARE(found->object(), field);
    }

private:
    QString announced() { return window_->main().findChild<SearchReports*>()->last(); }

    void startStalled(const TabControls& tab)
    {
        window_->service.stall();
        const qsizetype before = window_->service.requests().size();
        QTest::keyClick(window_->control<QLineEdit>(fillIn(*window_, tab)), Qt::Key_Return);
        QTRY_COMPARE(window_->service.requests().size(), before + 1);
    }

    void letEnd(const TabControls& tab)
    {
        window_->service.answerWith(pageOf(tab));
        window_->service.release();
        waitForEnd(tab);
    }

    // Waits until the search has ended and what follows it has been done.
    void waitForEnd(const TabControls& tab)
    {
        QTRY_COMPARE(window_->socketState(tab.socket), 0);
        for (int i = 0; i < 3; ++i)
            QCoreApplication::processEvents();
    }

    void verifyOnlyFrontTabIsPresent(int tag)
    {
        const QStringList present = presentBelow(interfaceOf(&window_->main()));
        for (const TabControls& tab : kTabs) {
            for (const char* name : {tab.frame, tab.typed[0].field, tab.button, tab.list})
                QVERIFY2(present.contains(QLatin1String(name)) == (tab.tag == tag), name);
        }
    }

    std::unique_ptr<WindowFixture> window_;
};

QTEST_MAIN(AccessibilityTest)
#include "accessibility_test.moc"
