#include <QAccessible>
#include <QHeaderView>
#include <QLabel>
#include <QStyle>
#include <QToolButton>

#include "filled_lists.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

/// Tests the line that hides the rows without its words: what it hides, its keys and its place.
class FilterLineTest final : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        window_ = std::make_unique<WindowFixture>();
        window_->start();
    }
    void cleanup() { window_.reset(); }

    void theLineHidesRowsWithoutItsWords_data() { addListRows(); }
    void theLineHidesRowsWithoutItsWords()
    {
        QFETCH(int, tag);
        const TabControls& tab = tabOf(tag);
        ListView* list = fillList(*window_, tab);
        const QStringList all = window_->rows(tab.list);
        const QRect place = list->geometry();
        const QRect captions = list->header()->geometry();
        QTest::keyClick(window_->control<QWidget>(tab.typed[0].field), Qt::Key_F, Qt::ControlModifier);
        QLineEdit* words = filterWords(*list);
        QVERIFY(words && words->isVisible() && words->hasFocus());
        QCOMPARE(list->geometry(), place);

        // The line lies between the captions and the first row.
        const QRect line = words->parentWidget()->geometry().translated(-place.topLeft());
        QVERIFY(line.top() >= captions.bottom());
        QVERIFY(line.bottom() <= list->viewport()->geometry().top());
        QCOMPARE(list->viewport()->geometry().top() - captions.bottom() - 1, line.height());

        const QString word = all[1].section(u'|', 0, 0).toUpper().right(6);
        QTest::keyClicks(words, word);
        QStringList expected;
        for (const QString& row : all) {
            if (row.contains(word, Qt::CaseInsensitive))
                expected.append(row);
        }
        QVERIFY(!expected.isEmpty());
        QCOMPARE(window_->rows(tab.list), expected);
        const QString count = u"Rows: %1 of %2"_s.arg(expected.size()).arg(all.size());
        QCOMPARE(words->parentWidget()->findChild<QLabel*>()->text(), count);
        QCOMPARE(QAccessible::queryAccessibleInterface(words)->text(QAccessible::Description), count);
        QCOMPARE(QAccessible::queryAccessibleInterface(words)->text(QAccessible::Name),
                 u"Show only rows with these words"_s);

        QTest::keyClick(words, Qt::Key_Escape);
        QVERIFY(!words->isVisible());
        QVERIFY(list->hasFocus());
        QCOMPARE(window_->rows(tab.list), all);
        // The width may differ by a scroll bar, where the rows nearly fit without one.
        QTRY_COMPARE(list->header()->geometry().topLeft(), captions.topLeft());
        QCOMPARE(list->header()->height(), captions.height());
        QCOMPARE(list->viewport()->geometry().top(), captions.bottom() + 1);
    }

    void allWordsMustOccurInAnyColumn()
    {
        auto* list = window_->control<ListView>("ListView1");
        list->setRows({{"red", "Apple"}, {"green", "apple"}, {"APPLE", "Red"}, {"red", "pear"}, {"redapple", ""}});
        filterRows(*list, u"  apple   RED "_s);
        QCOMPARE(columnOf(*list, 0), (QStringList{u"red"_s, u"APPLE"_s, u"redapple"_s}));
        filterRows(*list, u"red app"_s);
        QCOMPARE(list->model()->rowCount(), 3);
        filterRows(*list, u"dapp"_s); // not across two cells
        QCOMPARE(columnOf(*list, 0), QStringList{u"redapple"_s});
        filterRows(*list, u"nothing"_s);
        QCOMPARE(list->model()->rowCount(), 0);
        filterRows(*list, {});
        QCOMPARE(list->model()->rowCount(), 5);
    }

    void accentedLettersMatchInEveryForm()
    {
        auto* list = window_->control<ListView>("ListView1");
        list->setRows({{"caf\xC3\xA9"}, {"CAFE\xCC\x81"}, {"cafe"}});
        filterRows(*list, u"CAF\u00c9"_s);
#ifndef Q_OS_WIN // its code page decides what the bytes mean
        QCOMPARE(list->model()->rowCount(), 2);
#endif
    }

    void escapeInTheLineDoesNotStopTheSearch()
    {
        ListView* list = fillList(*window_, tabOf(2));
        window_->service.stall();
        searchBehindThePageCheck();
        filterRows(*list, u"pear"_s);
        QTest::keyClick(filterWords(*list), Qt::Key_Escape);
        QVERIFY(window_->boxes.boxes().isEmpty());
        QVERIFY(window_->socketState("NetSock") != 0);

        window_->chooseTab(1);
        QTest::keyClick(window_->control<QLineEdit>("Text1"), Qt::Key_Escape);
        QCOMPARE(window_->boxes.texts(), QStringList{u"User cancel the operation"_s});
        QCOMPARE(window_->socketState("NetSock"), 0);
    }

    // On the button the key used to leave the line open and to stop the search.
    void escapeOnTheButtonDoesNotStopTheSearch()
    {
        window_->service.stall();
        searchBehindThePageCheck();
        window_->chooseTab(1);
        window_->activate(); // the list of earlier entries was open
        ListView* list = listOf(*window_, tabOf(1));
        list->setRows({{"http://host/"}});
        filterRows(*list, u"host"_s);
        QTest::keyClick(filterWords(*list), Qt::Key_Tab);
        auto* button = list->parentWidget()->findChild<QToolButton*>(u"FilterClose"_s);
        QVERIFY(button->hasFocus());
        QTest::keyClick(window_->main().windowHandle(), Qt::Key_Escape);
        QVERIFY(!button->isVisible());
        QVERIFY(list->hasFocus());
        QVERIFY(window_->boxes.boxes().isEmpty());
        QVERIFY(window_->socketState("NetSock") != 0);
    }

    void escapeInTheRowsClosesTheLineAndStopsTheSearch()
    {
        ListView* list = fillList(*window_, tabOf(2));
        filterRows(*list, u"pear"_s);
        list->setFocus();
        QTest::keyClick(list, Qt::Key_Escape);
        QVERIFY(!filterWords(*list)->isVisible());
        QVERIFY(list->hasFocus());
        QVERIFY(window_->boxes.boxes().isEmpty()); // no search runs

        list = fillList(*window_, tabOf(1));
        window_->service.stall();
        QTest::keyClick(window_->control<QLineEdit>("Text1"), Qt::Key_Return);
        QTRY_VERIFY(window_->service.openConnections() > 0);
        list->setRows({{"http://host/"}});
        filterRows(*list, u"host"_s);
        list->setFocus();
        QTest::keyClick(list, Qt::Key_Escape);
        QVERIFY(!filterWords(*list)->isVisible());
        QCOMPARE(window_->boxes.texts(), QStringList{u"User cancel the operation"_s});
    }

    void keysLeadFromTheLineToTheRows()
    {
        ListView* list = fillList(*window_, tabOf(1));
        for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Return, Qt::Key_Tab}) {
            list->clearSelection();
            QTest::keyClick(list, Qt::Key_F, Qt::ControlModifier);
            QVERIFY(filterWords(*list)->hasFocus());
            QTest::keyClick(filterWords(*list), key);
            if (key == Qt::Key_Tab) // the line's button is between
                QTest::keyClick(QApplication::focusWidget(), key);
            QVERIFY2(list->hasFocus(), QTest::toString(int(key)));
            QCOMPARE(list->selectedRows(), std::vector<std::size_t>{0});
        }
    }

    // Rows that go or come close the line wherever the user is by then.
    void aClosingLineLeavesTheKeyboardWhereItIs()
    {
        ListView* list = fillList(*window_, tabOf(1));
        auto* slider = window_->control<QSlider>("Slider1");
        slider->setEnabled(true);
        for (QWidget* place : {window_->control<QWidget>("Text1"), static_cast<QWidget*>(slider)}) {
            list->setRows({{"http://host/"}});
            filterRows(*list, u"host"_s);
            place->setFocus();
            list->setRows({{"http://host/"}});
            QVERIFY(!filterWords(*list)->isVisible());
            QVERIFY(place->hasFocus());
        }
        filterRows(*list, u"host"_s);
        window_->chooseTab(3);
        auto* other = window_->control<QLineEdit>("Text7");
        other->setFocus();
        list->setRows({{"http://host/"}}); // in a hidden tab
        QVERIFY(other->hasFocus());
    }

    void theLineClosesByItsButton()
    {
        ListView* list = fillList(*window_, tabOf(1));
        filterRows(*list, u"nothing at all"_s);
        QCOMPARE(list->model()->rowCount(), 0);
        auto* button = list->parentWidget()->findChild<QToolButton*>(u"FilterClose"_s);
        QTest::mouseClick(button, Qt::LeftButton);
        QVERIFY(!button->isVisible());
        QCOMPARE(static_cast<std::size_t>(list->model()->rowCount()), list->rows().size());
    }

    void anEmptyListHasNoLine_data()
    {
        addListRows();
    }
    void anEmptyListHasNoLine()
    {
        QFETCH(int, tag);
        window_->chooseTab(tag);
        QTest::keyClick(&window_->main(), Qt::Key_F, Qt::ControlModifier);
        QVERIFY(!filterWords(*listOf(*window_, tabOf(tag))));
    }

    void theGalleryHasNoLine()
    {
        window_->chooseTab(3);
        QTest::keyClick(&window_->main(), Qt::Key_F, Qt::ControlModifier);
        QVERIFY(!window_->main().findChild<QWidget*>(u"FilterLine"_s));
    }

    void theLineFollowsTheWindowsSize()
    {
        ListView* list = fillList(*window_, tabOf(1));
        filterRows(*list, u"e"_s);
        for (const QSize size : {QSize(1216, 868), QSize(304, 217), QSize(608, 434)}) {
            window_->main().resize(size);
            QCoreApplication::processEvents();
            const QWidget* line = filterWords(*list)->parentWidget();
            const QRect captions(list->header()->mapTo(list->parentWidget(), QPoint()), list->header()->size());
            QVERIFY(captions.contains(line->geometry()));
            QCOMPARE(line->geometry().bottom(), captions.bottom());
            QCOMPARE(line->width(), captions.width());
            QVERIFY(list->header()->viewport()->height() <= captions.height() - line->height());
            QCOMPARE(line->font().pointSize(), list->font().pointSize());
        }
    }

    // The line used to be as high as three rows in a small window.
    void theLineIsAsHighAsItsText_data()
    {
        QTest::addColumn<QString>("style");
        QTest::addColumn<QSize>("size");
        for (const QString& style : {u"Fusion"_s, u"Windows"_s}) {
            for (const QSize size : {QSize(304, 217), QSize(608, 434), QSize(1216, 868)})
                QTest::addRow("%s, %d", qPrintable(style), size.width()) << style << size;
        }
    }
    void theLineIsAsHighAsItsText()
    {
        QFETCH(QString, style);
        QFETCH(QSize, size);
        window_.reset();
        const QString usual = QApplication::style()->name();
        QApplication::setStyle(style);
        const auto restore = qScopeGuard([&] { QApplication::setStyle(usual); });
        window_ = std::make_unique<WindowFixture>();
        window_->start();
        ListView* list = fillList(*window_, tabOf(1));
        filterRows(*list, u"e"_s);
        window_->main().resize(size);
        QCoreApplication::processEvents();
        const QLineEdit* words = filterWords(*list);
        const QWidget* line = words->parentWidget();
        const QFontMetrics text(list->font());
        QVERIFY2(line->height() <= text.lineSpacing() + 8,
                 qPrintable(u"%1 for %2"_s.arg(line->height()).arg(text.lineSpacing())));
        QVERIFY(words->contentsRect().height() >= text.height());
        for (const auto* part : line->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
            QVERIFY2(line->rect().contains(part->geometry()), qPrintable(part->objectName()));
        if (qEnvironmentVariableIsSet("QUARRYNET_SCREENSHOTS"))
            window_->main().grab().save(u"%1/filter-%2-%3.png"_s.arg(qEnvironmentVariable("QUARRYNET_SCREENSHOTS"),
                                                                     style, QString::number(size.width())));
        window_.reset();
    }

private:
    // Starts a web search that waits, and comes back to the page check.
    void searchBehindThePageCheck()
    {
        window_->chooseTab(1);
        window_->type("Text1", u"apple"_s);
        QTest::keyClick(window_->control<QLineEdit>("Text1"), Qt::Key_Return);
        QTRY_VERIFY(window_->service.openConnections() > 0);
        window_->chooseTab(2);
    }

    std::unique_ptr<WindowFixture> window_;
};

QTEST_MAIN(FilterLineTest)
#include "filter_line_test.moc"
