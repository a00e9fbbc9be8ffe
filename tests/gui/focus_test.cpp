#include <QComboBox>

#include "WindowFixture.h"
#include "platform/ListView.h"
#include "tab_controls.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

namespace {

// Returns the controls of a tab in the order of the Tab key.
QStringList controlsOf(int tag)
{
    switch (tag) {
    case 1:
        return {u"Text1"_s, u"Command1"_s, u"ListView1"_s, u"Slider1"_s};
    case 2:
        return {u"Text4"_s, u"Text5"_s, u"Combo1"_s, u"Command2"_s, u"ListView2"_s};
    case 3:
        return {u"Text7"_s, u"Command3"_s, u"IMGViewer"_s, u"Slider2"_s};
    case 4:
        return {u"Text10"_s, u"Command4"_s, u"ListView3"_s, u"Slider3"_s};
    default:
        return {u"Text11"_s, u"Command5"_s, u"ListView4"_s, u"Slider4"_s};
    }
}

} // namespace

class FocusTest final : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        window_ = std::make_unique<WindowFixture>();
        window_->start();
        for (const TabControls& tab : kTabs) {
            if (tab.slider)
                window_->control<QSlider>(tab.slider)->setEnabled(true);
            if (auto* list = window_->main().findChild<ListView*>(QLatin1String(tab.list)))
                list->setRows({{"first"}, {"second"}, {"third"}});
        }
    }

    void theWindowStartsOnItsFirstTab() { verifyFrontTab(1); }

    void everySwitchLeavesTheFrontTabToTheKeys_data()
    {
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("to");
        for (const TabControls& from : kTabs) {
            for (const TabControls& to : kTabs) {
                if (from.tag != to.tag)
                    QTest::addRow("%s to %s", from.frame, to.frame) << from.tag << to.tag;
            }
        }
    }

    // The page check's list used to lose its focus policy to its viewport when the first frame stopped covering it.
    void everySwitchLeavesTheFrontTabToTheKeys()
    {
        QFETCH(int, from);
        QFETCH(int, to);
        window_->chooseTab(from);
        window_->chooseTab(to);
        verifyFrontTab(to);
        window_->chooseTab(from);
        verifyFrontTab(from);
    }

    void aListThatIsTabbedIntoHasItsFirstRowSelected_data() { addLists(); }

    void aListThatIsTabbedIntoHasItsFirstRowSelected()
    {
        ListView* list = listInFront();
        QVERIFY(list->selectedRows().empty());
        tabTo(*list);
        QCOMPARE(list->selectedRows(), std::vector<std::size_t>{0});
        QTest::keyClick(list, Qt::Key_Down);
        QCOMPARE(list->selectedRows(), std::vector<std::size_t>{1});
        // The selection is kept until the next visit.
        QTest::keyClick(list, Qt::Key_Backtab);
        QVERIFY(!list->hasFocus());
        tabTo(*list);
        QCOMPARE(list->selectedRows(), std::vector<std::size_t>{1});
    }

    void anEmptyListIsTabbedIntoAllTheSame_data() { addLists(); }

    void anEmptyListIsTabbedIntoAllTheSame()
    {
        ListView* list = listInFront();
        list->clear();
        tabTo(*list);
        QVERIFY(list->selectedRows().empty());
        QVERIFY(!list->currentIndex().isValid());
    }

    void aClickSelectsItsOwnRowOnly_data() { addLists(); }

    void aClickSelectsItsOwnRowOnly()
    {
        ListView* list = listInFront();
        const QPoint third = list->visualRect(list->model()->index(2, 0)).center();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, third);
        QVERIFY(list->hasFocus());
        QCOMPARE(list->selectedRows(), std::vector<std::size_t>{2});
        list->clearSelection();
        list->setCurrentIndex({});
        list->clearFocus();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, QPoint(5, list->viewport()->height() - 5));
        QVERIFY(list->hasFocus());
        QVERIFY(list->selectedRows().empty());
    }

private:
    static void addLists()
    {
        QTest::addColumn<int>("tag");
        for (const TabControls& tab : kTabs) {
            if (tab.tag != 3)
                QTest::newRow(tab.list) << tab.tag;
        }
    }

    ListView* listInFront()
    {
        const int tag = *static_cast<int*>(QTest::qData("tag", QMetaType::Int));
        window_->chooseTab(tag);
        return window_->control<ListView>(tabOf(tag).list);
    }

    // Returns whether the control, or a part of it, has the focus.
    static bool hasKeys(const QWidget& control)
    {
        const QWidget* focus = QApplication::focusWidget();
        return focus && (focus == &control || control.isAncestorOf(focus));
    }

    void tabTo(QWidget& control)
    {
        for (int i = 0; i < 40 && !hasKeys(control); ++i)
            QTest::keyClick(QApplication::focusWidget() ? QApplication::focusWidget() : &window_->main(), Qt::Key_Tab);
        QVERIFY2(hasKeys(control), qPrintable(control.objectName()));
    }

    // Verifies that the Tab key goes through the frame's controls in order, forwards and backwards, and to no other
    // frame's, and that the controls receive clicks and their keys.
    void verifyFrontTab(int tag)
    {
        QCoreApplication::processEvents(); // shows the viewer
        const QStringList controls = controlsOf(tag);
        auto* first = window_->control<QWidget>(qPrintable(controls.front()));
        tabTo(*first);
        for (const QString& name : controls) {
            QVERIFY2(hasKeys(*window_->control<QWidget>(qPrintable(name))), qPrintable(name));
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        }
        for (int i = 0; i < 40 && !hasKeys(*first); ++i) {
            for (const TabControls& tab : kTabs)
                QVERIFY2(!window_->control<QWidget>(tab.frame)->isAncestorOf(QApplication::focusWidget()),
                         qPrintable(QApplication::focusWidget()->objectName()));
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        }
        QVERIFY(hasKeys(*first));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
        QVERIFY(hasKeys(*first));

        for (const QString& name : controls)
            verifyClick(*window_->control<QWidget>(qPrintable(name)), *first);
        const TabControls& row = tabOf(tag);
        if (auto* list = window_->main().findChild<ListView*>(QLatin1String(row.list)))
            verifyArrows(*list);
        if (row.slider)
            verifyKeys(*window_->control<QSlider>(row.slider));
    }

    void verifyClick(QWidget& control, QWidget& elsewhere)
    {
        const bool clickWouldStart = qobject_cast<QPushButton*>(&control) || qobject_cast<QComboBox*>(&control);
        if (clickWouldStart) {
            QVERIFY2(control.focusPolicy() & Qt::ClickFocus, qPrintable(control.objectName()));
            return;
        }
        elsewhere.setFocus();
        const bool moves = qobject_cast<QSlider*>(&control); // clicks its handle, which requests no page
        const QPoint at = moves ? QPoint(6, control.height() / 2) : control.rect().center();
        QWidget* hit = control.childAt(at) ? control.childAt(at) : &control;
        QTest::mouseClick(hit, Qt::LeftButton, {}, hit->mapFrom(&control, at));
        QVERIFY2(hasKeys(control), qPrintable(control.objectName()));
    }

    void verifyArrows(ListView& list)
    {
        list.setCurrentIndex(list.model()->index(0, 0));
        tabTo(list);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
        QCOMPARE(list.selectedRows(), std::vector<std::size_t>{1});
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Up);
        QCOMPARE(list.selectedRows(), std::vector<std::size_t>{0});
        list.clearSelection();
        list.setCurrentIndex({});
    }

    void verifyKeys(QSlider& slider)
    {
        const QSignalBlocker quiet(slider); // so that no page is requested
        slider.setValue(1);
        tabTo(slider);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
        QCOMPARE(slider.value(), 2);
        slider.setValue(1);
    }

    std::unique_ptr<WindowFixture> window_;
};

QTEST_MAIN(FocusTest)
#include "focus_test.moc"
