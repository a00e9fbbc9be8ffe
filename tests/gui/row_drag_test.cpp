#include <QDrag>
#include <QWindow>

#include "filled_lists.h"
#include "platform/text_border.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

/// Tests where rows can be dragged to with the mouse. The test drives a real drag, which knows the list that it began
/// in. Only this platform of the toolkit runs one without a display.
class RowDragTest final : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        window_ = std::make_unique<WindowFixture>();
        window_->start();
    }
    void cleanup() { window_.reset(); }

    // A row that moved a little used to fill the page check and bring it to the front.
    void aRowLetGoOverItsListStays_data() { addAddressRows(); }
    void aRowLetGoOverItsListStays()
    {
        QFETCH(int, tag);
        ListView* list = fillList(*window_, tabOf(tag));
        for (const int row : {0, 1, 2}) {
            const QPoint to = list->visualRect(list->model()->index(row, 0)).center();
            drag(*list, 0, inWindow(*list->viewport(), to));
            QCOMPARE(address(), QString());
            QCOMPARE(window_->control<QTabBar>("TabStrip1")->currentIndex(), tag - 1);
        }
        drag(*list, 0, inWindow(*list, {2, 2})); // its captions
        QCOMPARE(address(), QString());
    }

    void aRowLetGoOutsideItsListIsChecked_data() { addAddressRows(); }
    void aRowLetGoOutsideItsListIsChecked()
    {
        QFETCH(int, tag);
        ListView* list = fillList(*window_, tabOf(tag));
        clickRow(*list, 0);
        const std::unique_ptr<QMimeData> data(list->model()->mimeData({list->model()->index(0, 0)}));
        drag(*list, 0, inWindow(*window_->control<QWidget>("Toolbar1"), {300, 5}));
        QCOMPARE(address(), data->text());
        QCOMPARE(window_->control<QTabBar>("TabStrip1")->currentIndex(), 1);
    }

    // The lists of the tabs have the same place, and only the one in front counts.
    void aRowGoesOverToAnotherTab_data()
    {
        QTest::addColumn<int>("tag");
        QTest::addColumn<QByteArray>("place");
        QTest::newRow("another list") << 4 << QByteArray("ListView3");
        QTest::newRow("the list of the page check") << 2 << QByteArray("ListView2");
        QTest::newRow("the address field") << 2 << QByteArray("Text4");
        QTest::newRow("the gallery") << 3 << QByteArray("IMGViewer");
    }
    void aRowGoesOverToAnotherTab()
    {
        QFETCH(int, tag);
        QFETCH(QByteArray, place);
        ListView* list = fillList(*window_, tabOf(1));
        const QString dragged = toLine(list->rows()[0][0]);
        drag(*list, 0, [&] {
            window_->control<QTabBar>("TabStrip1")->setCurrentIndex(tag - 1);
            auto* target = window_->control<QWidget>(place.constData());
            return inWindow(*target, target->rect().center());
        });
        QCOMPARE(address(), dragged);
        QCOMPARE(window_->control<QTabBar>("TabStrip1")->currentIndex(), 1);
    }

    void aRowBecomesTextInAFieldForWords()
    {
        ListView* list = fillList(*window_, tabOf(1));
        const QString dragged = toLine(list->rows()[0][0]);
        auto* field = window_->control<QLineEdit>("Text1");
        field->clear();
        drag(*list, 0, inWindow(*field, field->rect().center()));
        QCOMPARE(field->text(), dragged);
        QCOMPARE(address(), QString());
    }

    // The drag lasts as long as the user holds the button; results arrive meanwhile.
    void rowsReplacedDuringADragAreNotDropped()
    {
        ListView* list = fillList(*window_, tabOf(1));
        const QString dragged = toLine(list->rows()[0][0]);
        drag(*list, 0, [&] {
            list->setRows({{"http://new.example/", ""}});
            return inWindow(*window_->control<QWidget>("Toolbar1"), {300, 5});
        });
        QCOMPARE(address(), dragged);
        QCOMPARE(list->rows().size(), std::size_t(1));
    }

private:
    static void addAddressRows()
    {
        QTest::addColumn<int>("tag");
        for (const int tag : {1, 4}) // the addresses of files are no web addresses
            QTest::newRow(tabOf(tag).frame) << tag;
    }

    QString address() { return window_->control<QLineEdit>("Text4")->text(); }

    QPoint inWindow(const QWidget& place, QPoint at) { return place.mapTo(&window_->main(), at); }

    void drag(ListView& list, int row, QPoint to)
    {
        drag(list, row, [to] { return to; });
    }

    // Drags a row as a user does, to a place of the window that is known when the drag has begun.
    void drag(ListView& list, int row, const std::function<QPoint()>& place)
    {
        clickRow(list, row);
        QWindow* window = window_->main().windowHandle();
        const QPoint from = inWindow(*list.viewport(), list.visualRect(list.model()->index(row, 0)).center());
        bool began = false;
        QTimer during; // fires in the drag's own event loop
        connect(&during, &QTimer::timeout, this, [&] {
            if (!list.findChild<QDrag*>())
                return;
            during.stop();
            began = true;
            const QPoint to = place();
            QTest::mouseMove(window, to);
            QTest::mouseRelease(window, Qt::LeftButton, {}, to);
        });
        during.start(0);
        QTest::mousePress(window, Qt::LeftButton, {}, from);
        for (int step = 1; step <= 3 && !began; ++step)
            QTest::mouseMove(window, from + QPoint(step * QApplication::startDragDistance(), 0));
        if (!began)
            qFatal("no drag has begun");
        QCoreApplication::processEvents(); // the window takes an address after the drop
    }

    std::unique_ptr<WindowFixture> window_;
};

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "minimal");
    QApplication application(argc, argv);
    RowDragTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "row_drag_test.moc"
