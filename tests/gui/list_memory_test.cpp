#include <atomic>
#include <cstdlib>
#include <limits>
#include <new>

#include <QHeaderView>

#include "DialogDriver.h"
#include "app/Application.h"
#include "filled_lists.h"
#include "platform/local_files.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

namespace {

// Larger blocks than this, in bytes, cannot be had.
std::atomic<std::size_t> largestBlock = std::numeric_limits<std::size_t>::max();

/// While the object lives, memory has no larger blocks than this.
class LargestBlock
{
public:
    explicit LargestBlock(std::size_t bytes) { largestBlock = bytes; }
    ~LargestBlock() { largestBlock = std::numeric_limits<std::size_t>::max(); }
    Q_DISABLE_COPY_MOVE(LargestBlock)
};

} // namespace

void* operator new(std::size_t count)
{
    if (count <= largestBlock) {
        if (void* block = std::malloc(count == 0 ? 1 : count))
            return block;
    }
    throw std::bad_alloc();
}

void* operator new(std::size_t count, const std::nothrow_t&) noexcept
{
    return count <= largestBlock ? std::malloc(count == 0 ? 1 : count) : nullptr;
}

void operator delete(void* block) noexcept
{
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    std::free(block);
}

/// Tests that a command of a list that runs out of memory says so, and neither loses rows nor ends searches.
class ListMemoryTest final : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
        window_ = std::make_unique<WindowFixture>();
        window_->start();
        connect(qobject_cast<Application*>(qApp), &Application::outOfMemory, &window_->main(), &Main::outOfMemory);
        folder_ = std::make_unique<QTemporaryDir>();

        // Another tab waits for its results.
        window_->service.stall();
        fillIn(*window_, tabOf(5));
        QTest::mouseClick(window_->control<QPushButton>(tabOf(5).button), Qt::LeftButton);
        QTRY_COMPARE(window_->service.requests().size(), 1);

        window_->chooseTab(1);
        list_ = listOf(*window_, tabOf(1));
        std::vector<ListViewModel::Row> rows;
        for (int i = 0; i < kRows; ++i)
            rows.push_back({"http://host.example/" + std::to_string(kRows - i), "title"});
        list_->setRows(std::move(rows), u"words"_s);
        list_->setFocus();
        QCoreApplication::processEvents();
    }
    void cleanup() { window_.reset(); }

    void savingLosesNoRows_data()
    {
        QTest::addColumn<int>("largest");
        QTest::newRow("no room for the rows") << 24 * kRows - 1;
#ifndef Q_OS_WIN // there, long texts get their memory in the runtime library, from its own operator new
        QTest::newRow("no room for the file") << 30 * kRows;
#endif
    }
    void savingLosesNoRows()
    {
        QFETCH(int, largest);
        const QString path = folder_->filePath(u"rows.csv"_s);
        QCOMPARE(replaceFileAtomically(path, "old"), QString());
        {
            const LargestBlock limit(static_cast<std::size_t>(largest));
            save(path);
        }
        verifyOneBox();
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("old"));
        file.close();
        QCOMPARE(QDir(folder_->path()).entryList(QDir::Files | QDir::Hidden), QStringList{u"rows.csv"_s});

        save(path);
        QVERIFY(QFileInfo(path).size() > 30 * kRows);
        QVERIFY(window_->boxes.boxes().isEmpty());
    }

    void savingRowsOfBeforeLosesNone()
    {
        list_->clear();
        QVERIFY(list_->hasRowsOfBefore());
        {
            const LargestBlock limit(24 * kRows - 1);
            save(folder_->filePath(u"rows.csv"_s));
        }
        verifyOneBox(0);
        QVERIFY(list_->hasRowsOfBefore());
        QCOMPARE(list_->table().rows.size(), std::size_t(kRows));
    }

    void copyingLosesNoRows()
    {
        list_->selectAll();
        {
            const LargestBlock limit(24 * kRows - 1);
            QTest::keyClick(list_, Qt::Key_C, Qt::ControlModifier);
        }
        verifyOneBox();
        QCOMPARE(list_->selectedRows().size(), std::size_t(kRows));
    }

    void copyingAddressesLosesNoRows()
    {
        list_->selectAll();
        QMenu* menu = openMenu(*list_, 0);
        {
            const LargestBlock limit(4 * kRows);
            choose(menu, "ListCopyAddress");
        }
        verifyOneBox();
        QCOMPARE(list_->selectedRows().size(), std::size_t(kRows));
    }

    void draggingLosesNoRows()
    {
        list_->selectAll();
        const QPoint row = list_->visualRect(list_->model()->index(0, 0)).center();
        QTest::mousePress(list_->viewport(), Qt::LeftButton, {}, row);
        {
            const LargestBlock limit(4 * kRows);
            for (const QPoint& to : {row + QPoint(1, 1), row + QPoint(100, 30)}) {
                QMouseEvent move(QEvent::MouseMove, to, list_->viewport()->mapToGlobal(to), Qt::NoButton,
                                 Qt::LeftButton, {});
                QApplication::sendEvent(list_->viewport(), &move);
            }
        }
        QTest::mouseRelease(list_->viewport(), Qt::LeftButton, {}, row);
        verifyOneBox();
    }

    void sortingLosesNoRows()
    {
        const QStringList before = columnOf(*list_, 0);
        {
            const LargestBlock limit(8 * kRows - 1);
            clickHeader();
        }
        verifyOneBox();
        QCOMPARE(columnOf(*list_, 0), before);
        QVERIFY(!list_->sorting() && !list_->header()->isSortIndicatorShown());
        QCOMPARE(list_->accessibleDescription(), QString());

        clickHeader();
        QVERIFY(list_->sorting() && list_->header()->isSortIndicatorShown());
        QVERIFY(columnOf(*list_, 0) != before);
        const QStringList sorted = columnOf(*list_, 0);
        const Qt::SortOrder order = list_->header()->sortIndicatorOrder();
        {
            const LargestBlock limit(8 * kRows - 1);
            clickHeader(); // in the other direction
        }
        verifyOneBox();
        QCOMPARE(columnOf(*list_, 0), sorted);
        QCOMPARE(list_->header()->sortIndicatorOrder(), order);
    }

    void filteringLosesNoRows()
    {
        QTest::keyClick(list_, Qt::Key_F, Qt::ControlModifier);
        QLineEdit* words = filterWords(*list_);
        QVERIFY(words);
        {
            const LargestBlock limit(2 * kRows);
            QTest::keyClick(words, Qt::Key_T);
        }
        verifyOneBox();
        QCOMPARE(list_->model()->rowCount(), kRows);
        window_->activate();
        words->setFocus();
        QTest::keyClick(words, Qt::Key_X); // the next key tries again
        QCOMPARE(list_->model()->rowCount(), 0);
        QVERIFY(window_->boxes.boxes().isEmpty());
    }

private:
    static constexpr int kRows = 2000;

    void save(const QString& path)
    {
        const DialogDriver driver([&](QDialog& dialog) {
            auto* edit = dialog.findChild<QLineEdit*>(u"fileNameEdit"_s);
            edit->setText(QDir::toNativeSeparators(path));
            QTest::keyClick(edit, Qt::Key_Return);
            window_->boxes.forget(); // whether the file is to be replaced
        });
        window_->boxes.beforeAnswer = [](QMessageBox& box) {
            if (QAbstractButton* yes = box.button(QMessageBox::Yes))
                yes->click();
        };
        window_->activate();
        QTest::keyClick(list_, Qt::Key_S, Qt::ControlModifier);
    }

    void clickHeader()
    {
        QHeaderView* header = list_->header();
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, QPoint(20, header->viewport()->height() / 2));
    }

    // Verifies that nothing but one box has come of it, and forgets the box.
    void verifyOneBox(std::size_t rows = kRows)
    {
        QCoreApplication::processEvents(); // what would reset the tabs
        QCoreApplication::processEvents();
        QCOMPARE(window_->boxes.texts(), QStringList{u"Run-time error '7':\n\nOut of memory"_s});
        window_->boxes.forget();
        QCOMPARE(list_->rows().size(), rows);
        QVERIFY(!window_->control<QPushButton>(tabOf(5).button)->isEnabled());
        QVERIFY(window_->control<QTimer>(tabOf(5).timer)->isActive());
        QVERIFY(window_->socketState(tabOf(5).socket) != 0);
    }

    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<WindowFixture> window_;
    ListView* list_ = nullptr;
};

int main(int argc, char** argv)
{
    Application application(argc, argv);
    ListMemoryTest test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "list_memory_test.moc"
