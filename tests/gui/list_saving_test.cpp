#include <QAction>
#include <QComboBox>
#include <QFileDialog>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPushButton>
#include <QRegularExpression>

#include "DialogDriver.h"
#include "filled_lists.h"
#include "platform/local_files.h"
#include "platform/text_border.h"

#ifdef Q_OS_LINUX
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

namespace {

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return "unreadable";
    return file.readAll();
}

/// Returns the rows of comma-separated values in quotes, with cells joined by "|".
QStringList csvRows(const QByteArray& bytes)
{
    QStringList rows = QString::fromUtf8(bytes).split(u"\"\r\n\""_s);
    for (QString& row : rows) {
        row.replace(u"\",\""_s, u"|"_s);
        row.replace(u"\"\""_s, u"\x01"_s).remove(u'"').replace(u'\x01', u'"');
    }
    rows.last().remove(u"\r\n"_s);
    return rows;
}

} // namespace

/// Tests that the rows of all lists can be saved, when, under which name, and that a failure loses nothing.
class ListSavingTest final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs); }

    void init()
    {
        window_ = std::make_unique<WindowFixture>();
        window_->start();
        folder_ = std::make_unique<QTemporaryDir>();
    }
    void cleanup() { window_.reset(); }

    void theEntryStandsBeforeExitAndNeedsRows_data() { addListRows(); }
    void theEntryStandsBeforeExitAndNeedsRows()
    {
        QFETCH(int, tag);
        const QList<QAction*> entries = window_->control<QMenu>("filmnu")->actions();
        const qsizetype exit = entries.indexOf(window_->control<QAction>("exitmnu"));
        QCOMPARE(entries.indexOf(entry()), exit - 1);
        QCOMPARE(entry()->text(), u"&Save List..."_s);
        QVERIFY(!entry()->isEnabled());
        fillList(*window_, tabOf(tag));
        QVERIFY(entry()->isEnabled());
        window_->chooseTab(3);
        QVERIFY(!entry()->isEnabled()); // the gallery is no list
        window_->chooseTab(tag);
        QVERIFY(entry()->isEnabled());
    }

    void rowsAreSavedAsTheyAreShownWithTheirAddresses_data() { addListRows(); }
    void rowsAreSavedAsTheyAreShownWithTheirAddresses()
    {
        QFETCH(int, tag);
        const TabControls& tab = tabOf(tag);
        ListView* list = fillList(*window_, tab);
        const QString path = save([&] { QTest::keyClick(list, Qt::Key_S, Qt::ControlModifier); }, u"rows.csv"_s);
        QStringList rows = csvRows(contentOf(path));
        QStringList headers = rows.takeFirst().split(u'|');
        if (tag != 2) {
            QCOMPARE(headers.takeLast(), u"Address"_s);
            for (QString& row : rows) {
                QVERIFY2(row.section(u'|', -1).contains(u"://"_s), qPrintable(row));
                row = row.section(u'|', 0, -2);
            }
        }
        QCOMPARE(headers.size(), list->model()->columnCount());
        QCOMPARE(headers[0], list->model()->headerData(0, Qt::Horizontal).toString());
        QCOMPARE(rows, window_->rows(tab.list));
        QVERIFY(window_->boxes.boxes().isEmpty());
    }

    void theMenuOfTheListSavesToo()
    {
        ListView* list = fillList(*window_, tabOf(1));
        const QString path = save([&] { choose(openMenu(*list, 0), "ListSave"); }, u"rows.csv"_s);
        QCOMPARE(static_cast<std::size_t>(csvRows(contentOf(path)).size()), list->rows().size() + 1);
    }

    void hiddenRowsAreNotSaved()
    {
        ListView* list = listOf(*window_, tabOf(1));
        list->setRows({{"http://host/b", "two"}, {"http://host/a", "one"}, {"http://host/c", "other"}});
        list->sortRows(ListViewModel::Sorting{0, Qt::AscendingOrder});
        QTest::keyClick(list, Qt::Key_F, Qt::ControlModifier);
        QTest::keyClicks(list->parentWidget()->findChild<QLineEdit*>(u"FilterWords"_s), u"o e"_s);
        const QString path = save([&] { entry()->trigger(); }, u"rows.csv"_s);
        QCOMPARE(csvRows(contentOf(path)).mid(1),
                 (QStringList{u"http://host/a|one|http://host/a"_s, u"http://host/c|other|http://host/c"_s}));
    }

    void theExtensionDecidesTheFormat()
    {
        ListView* list = listOf(*window_, tabOf(1));
        list->setRows({{"http://host/?a&b", "caf\xC3\xA9 <b>\"x\"</b>"}}, u"apple"_s);
        const QString title = toText(list->rows()[0][1]);

        const QByteArray json = contentOf(save([&] { entry()->trigger(); }, u"rows.JSON"_s));
        const QJsonObject object = QJsonDocument::fromJson(json).object();
        QCOMPARE(object[u"title"].toString(), u"apple - Search The Internet"_s);
        const QJsonObject row = object[u"rows"].toArray().at(0).toObject();
        QCOMPARE(row[u"Website Address"].toString(), u"http://host/?a&b"_s);
        QCOMPARE(row[u"Short Description"].toString(), title);
        QCOMPARE(row[u"Address"].toString(), u"http://host/?a&b"_s);

        const QByteArray html = contentOf(save([&] { entry()->trigger(); }, u"rows.html"_s));
        QVERIFY(html.startsWith("<!DOCTYPE html>"));
        QVERIFY(html.contains("<a rel=\"noreferrer\" href=\"http://host/?a&amp;b\">"));
        QVERIFY(html.contains("&lt;b&gt;&quot;x&quot;&lt;/b&gt;"));

        // Only what a double click opens is a link, which the bytes decide and not the line that is shown.
        list->setRows({{"http://host/a\nb"}, {"http://host/" + std::string(65'536, 'x')}});
        const QByteArray plain = contentOf(save([&] { entry()->trigger(); }, u"plain.html"_s));
        QVERIFY(!plain.contains("<a "));
        QCOMPARE(plain.count("http://host/a b"), 2); // shown, and in the column of addresses

        // Without an extension, the format that is chosen adds its own.
        save([&] { entry()->trigger(); }, u"rows"_s);
        QVERIFY(contentOf(folder_->filePath(u"rows.csv"_s)).startsWith("\"Website Address\""));
    }

    // Only the web page escapes markup. A browser would have run that of the other formats under such a name.
    void noOtherFormatIsSavedAsAWebPage_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("saved");
        QTest::newRow("short") << u"rows.htm"_s << u"rows.htm"_s;
        QTest::newRow("upper case") << u"rows.HTM"_s << u"rows.HTM"_s;
        for (const char* extension : {"xhtml", "xht", "svg", "xml", "mht", "shtml", "hta", "txt", "htm_", "htmll"}) {
            const QString name = u"rows."_s + QLatin1String(extension);
            QTest::newRow(extension) << name << name + u".csv"_s;
        }
        QTest::newRow("two") << u"rows.csv.xhtml"_s << u"rows.csv.xhtml.csv"_s;
        QTest::newRow("only an extension") << u".xhtml"_s << u".xhtml.csv"_s;
    }
    void noOtherFormatIsSavedAsAWebPage()
    {
        QFETCH(QString, typed);
        QFETCH(QString, saved);
        ListView* list = listOf(*window_, tabOf(1));
        list->setRows({{"http://host/", "<script>alert(1)</script>"}});
        save([&] { entry()->trigger(); }, typed);
        QCOMPARE(QDir(folder_->path()).entryList(QDir::Files | QDir::Hidden), QStringList{saved});
        const QByteArray bytes = contentOf(folder_->filePath(saved));
        QCOMPARE(bytes.contains("<script>"), saved.endsWith(u".csv"_s));
        QCOMPARE(bytes.startsWith("<!DOCTYPE html>"), !saved.endsWith(u".csv"_s));
    }

    void aFileWhoseNameIsCompletedIsNotReplacedUnasked()
    {
        const QString existing = folder_->filePath(u"rows.txt.csv"_s);
        QCOMPARE(replaceFileAtomically(existing, "old"), QString());
        fillList(*window_, tabOf(1));
        QStringList names;
        const DialogDriver driver([&](QDialog& dialog) {
            auto* edit = dialog.findChild<QLineEdit*>(u"fileNameEdit"_s);
            if (names.isEmpty())
                edit->setText(folder_->filePath(u"rows.txt"_s));
            names.append(edit->text());
            QTest::keyClick(edit, Qt::Key_Return);
        });
        entry()->trigger(); // the box, when it comes, is answered with "No"
        QCOMPARE(names, (QStringList{folder_->filePath(u"rows.txt"_s), u"rows.txt.csv"_s}));
        QCOMPARE(window_->boxes.boxes().size(), 1);
        QCOMPARE(contentOf(existing), QByteArray("old"));

        names.clear();
        window_->boxes.beforeAnswer = [](QMessageBox& box) { box.button(QMessageBox::Yes)->click(); };
        entry()->trigger();
        QVERIFY(contentOf(existing).startsWith("\"Website Address\""));
        QCOMPARE(QDir(folder_->path()).entryList(QDir::Files), QStringList{u"rows.txt.csv"_s});
    }

    void theChosenFormatChangesOnlyTheExtension_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("saved");
        QTest::newRow("a name") << u"list.csv"_s << u"start/list.html"_s;
        QTest::newRow("a path") << u"/out/list.csv"_s << u"out/list.html"_s;
        QTest::newRow("a folder below") << u"below/list.csv"_s << u"start/below/list.html"_s;
        QTest::newRow("dots") << u"/out/a.b.json"_s << u"out/a.b.html"_s;
        QTest::newRow("no extension") << u"/out/list"_s << u"out/list.html"_s;
    }
    void theChosenFormatChangesOnlyTheExtension()
    {
        QFETCH(QString, typed);
        QFETCH(QString, saved);
        for (const QString& name : {u"start/below"_s, u"out"_s})
            QVERIFY(QDir().mkpath(folder_->filePath(name)));
        fillList(*window_, tabOf(1));
        for (const bool ofDesktop : {false, true}) {
            const DialogDriver driver([&](QDialog& dialog) {
                auto& files = static_cast<QFileDialog&>(dialog);
                files.setDirectory(folder_->filePath(u"start"_s));
                auto* edit = dialog.findChild<QLineEdit*>(u"fileNameEdit"_s);
                edit->setText(QDir::toNativeSeparators(typed.startsWith(u'/') ? folder_->path() + typed : typed));
                auto* formats = dialog.findChild<QComboBox*>(u"fileTypeCombo"_s);
                formats->setFocus();
                // The toolkit's dialog changes the extension itself. Those of desktops only report the choice; the
                // folder that was typed used to be dropped there.
                if (ofDesktop)
                    emit files.filterSelected(files.nameFilters().last());
                else
                    QTest::keyClick(formats, Qt::Key_End);
                QTest::keyClick(edit, Qt::Key_Return);
            });
            entry()->trigger();
            QVERIFY2(contentOf(folder_->filePath(saved)).startsWith("<!DOCTYPE html>"), ofDesktop ? "desktop" : "own");
            QVERIFY(window_->boxes.boxes().isEmpty());
            QVERIFY(QFile::remove(folder_->filePath(saved)));
        }
    }

    void aTypedFolderThatIsMissingStays()
    {
        fillList(*window_, tabOf(1));
        QString selected;
        const DialogDriver driver([&](QDialog& dialog) {
            dialog.findChild<QLineEdit*>(u"fileNameEdit"_s)->setText(folder_->filePath(u"missing/list.csv"_s));
            dialog.findChild<QComboBox*>(u"fileTypeCombo"_s)->setFocus();
            auto& files = static_cast<QFileDialog&>(dialog);
            emit files.filterSelected(files.nameFilters().last());
            selected = files.selectedFiles().value(0);
        });
        entry()->trigger();
        QCOMPARE(selected, folder_->filePath(u"missing/list.csv"_s));
    }

    void theNameIsSuggestedFromTheWordsTheTabAndTheDate_data() { addListRows(); }
    void theNameIsSuggestedFromTheWordsTheTabAndTheDate()
    {
        QFETCH(int, tag);
        const TabControls& tab = tabOf(tag);
        const char* field = fillIn(*window_, tab);
        const QString words = window_->control<QLineEdit>(field)->text();
        fillList(*window_, tab);
        window_->type(field, u"typed later"_s);
        QString name;
        const DialogDriver driver(
            [&](QDialog& dialog) { name = dialog.findChild<QLineEdit*>(u"fileNameEdit"_s)->text(); });
        entry()->trigger();
        const QString caption = window_->control<QTabBar>("TabStrip1")->tabText(tag - 1);
        const QRegularExpression expected(u"^%1 - %2 - \\d{4}-\\d\\d-\\d\\d\\.csv$"_s.arg(words, caption));
        QVERIFY2(expected.match(name).hasMatch(), qPrintable(name));
    }

    void nothingIsSavedWithoutAFile()
    {
        fillList(*window_, tabOf(1));
        const DialogDriver driver([](QDialog&) {}); // cancels
        entry()->trigger();
        QCOMPARE(driver.seen(), QStringList{u"SaveList"_s});
        QVERIFY(window_->boxes.boxes().isEmpty());
        QVERIFY(QDir(folder_->path()).isEmpty());
    }

    // A search empties the list when it begins. Stopping it must not cost the user the rows that it replaced.
    void theRowsCanStillBeSavedAfterStop_data() { addListRows(); }
    void theRowsCanStillBeSavedAfterStop()
    {
        QFETCH(int, tag);
        const TabControls& tab = tabOf(tag);
        ListView* list = fillList(*window_, tab);
        const QStringList rows = window_->rows(tab.list);
        const QByteArray before = contentOf(save([&] { entry()->trigger(); }, u"before.csv"_s));
        window_->service.stall();
        const char* field = fillIn(*window_, tab);
        QTest::keyClick(window_->control<QLineEdit>(field), Qt::Key_Return);
        QTRY_VERIFY(window_->service.openConnections() > 0);
        QTest::keyClick(list, Qt::Key_Escape);
        QCOMPARE(window_->boxes.texts(), QStringList{u"User cancel the operation"_s});
        window_->boxes.forget();
        QCOMPARE(list->model()->rowCount(), 0);

        QVERIFY(entry()->isEnabled());
        QCOMPARE(contentOf(save([&] { entry()->trigger(); }, u"after.csv"_s)), before);
        QVERIFY(before.size() > rows.size());
        if (tag == 5)
            window_->service.reset(); // Stop leaves the connection of a file search open
    }

    // A page turned and saved at once used to be saved with the rows of the page before.
    void whatIsOnTheScreenIsSaved_data() { addListRows(); }
    void whatIsOnTheScreenIsSaved()
    {
        QFETCH(int, tag);
        const TabControls& tab = tabOf(tag);
        ListView* list = fillList(*window_, tab);
        const QStringList rows = window_->rows(tab.list);
        QCOMPARE(tableRows(*list), rows);
        list->sortRows(ListViewModel::Sorting{0, Qt::DescendingOrder});
        QCOMPARE(tableRows(*list), window_->rows(tab.list));
        list->openFilter();
        auto* words = list->parentWidget()->findChild<QLineEdit*>(u"FilterWords"_s);
        words->setText(list->model()->index(0, 0).data().toString().left(5));
        QCOMPARE(tableRows(*list), window_->rows(tab.list));
        words->setText(u"in no row at all"_s);
        QCOMPARE(tableRows(*list), QStringList());
        words->clear();
        list->sortRows(std::nullopt);

        const auto begin = [&] {
            window_->service.stall();
            if (tab.slider && tag != 5 && window_->control<QSlider>(tab.slider)->isEnabled())
                QTest::keyClick(window_->control<QSlider>(tab.slider), Qt::Key_Right);
            else
                QTest::keyClick(window_->control<QLineEdit>(fillIn(*window_, tab)), Qt::Key_Return);
            QTRY_VERIFY(window_->service.openConnections() > 0);
        };
        const auto verifyNothingToSave = [&] {
            QCOMPARE(window_->rows(tab.list), QStringList());
            QCOMPARE(tableRows(*list), QStringList());
            QVERIFY(!entry()->isEnabled());
            const DialogDriver driver([](QDialog&) {});
            QTest::keyClick(list, Qt::Key_S, Qt::ControlModifier);
            emit list->saveWanted();
            QCOMPARE(driver.seen(), QStringList());
        };
        const auto verifyRowsOfBefore = [&] {
            QCOMPARE(window_->rows(tab.list), QStringList());
            QCOMPARE(tableRows(*list), rows);
            QString title;
            const DialogDriver driver([&](QDialog& dialog) { title = dialog.windowTitle(); });
            entry()->trigger();
            QCOMPARE(title, u"Save the Rows of the Previous Results"_s);
            window_->boxes.forget();
        };
        begin();
        verifyNothingToSave();
        window_->service.reset();
        QTRY_COMPARE(window_->boxes.boxes().size(), 1); // an error
        verifyRowsOfBefore();
        begin();
        verifyNothingToSave();
        QTest::keyClick(list, Qt::Key_Escape);
        QCOMPARE(window_->boxes.boxes().size(), 1);
        verifyRowsOfBefore();
        window_->service.reset();
        if (tag == 5) // Stop left its connection open
            QTRY_COMPARE(window_->boxes.boxes().size(), 1);
        window_->boxes.forget();
        QCOMPARE(tableRows(*fillList(*window_, tab)), rows);
    }

    void theNextResultReplacesTheRowsToSave()
    {
        ListView* list = listOf(*window_, tabOf(1));
        list->setRows({{"http://host/old"}});
        list->clear();
        QVERIFY(list->isSavable());
        list->clear(); // a second time, as a start and a stop do
        QVERIFY(list->isSavable());
        list->setRows({}); // a search that found nothing
        QVERIFY(!list->isSavable());
        QVERIFY(!entry()->isEnabled());
        list->setRows({{"http://host/new"}});
        list->clear();
        list->forgetRows();
        QVERIFY(!entry()->isEnabled());
    }

    void rowsOfManyBytesAreNotKeptAfterStop()
    {
        ListView* list = listOf(*window_, tabOf(1));
        constexpr std::size_t kMost = std::size_t{64} << 20;
        list->setRows({{std::string(kMost - 100, 'x')}});
        list->clear();
        QVERIFY(list->isSavable());
        list->setRows({{std::string(kMost, 'x')}});
        list->clear();
        QVERIFY(!list->isSavable());
    }

    void formulasAreSavedAsTexts()
    {
        ListView* list = listOf(*window_, tabOf(5));
        window_->chooseTab(5);
        list->setRows({{"=cmd|' /C calc'!A0", "+1", "@SUM(A1)"}, {"\t=1", "-2+3", ""}});
        const QByteArray csv = contentOf(save([&] { entry()->trigger(); }, u"rows.csv"_s));
        QCOMPARE(csv.split('\n')[1], QByteArray("\"'=cmd|' /C calc'!A0\",\"'+1\",\"'@SUM(A1)\",\"'+1\"\r"));
        QCOMPARE(csv.split('\n')[2], QByteArray("\"' =1\",\"'-2+3\",\"\",\"'-2+3\"\r"));
    }

    void controlCharactersAreSavedAsTheyAreShown()
    {
        ListView* list = listOf(*window_, tabOf(1));
        list->setRows({{std::string("a\r\nb\0c", 6), toBytes(QString(QChar(0x202E)))}});
        const QString shown = list->model()->index(0, 1).data().toString();
        const QByteArray csv = contentOf(save([&] { entry()->trigger(); }, u"rows.csv"_s));
        QCOMPARE(csvRows(csv)[1], u"a  b c|%1|a  b c"_s.arg(shown));
        QVERIFY(!QString::fromUtf8(csv).contains(QChar(0x202E)));
    }

    void anExistingFileIsReplacedAsAWhole()
    {
        const QString path = folder_->filePath(u"rows.csv"_s);
        QCOMPARE(replaceFileAtomically(path, std::string(100'000, 'x')), QString());
        fillList(*window_, tabOf(2));
        window_->boxes.beforeAnswer = [](QMessageBox& box) { box.button(QMessageBox::Yes)->click(); };
        save([&] { entry()->trigger(); }, u"rows.csv"_s);
        QVERIFY(contentOf(path).startsWith("\"Keyword\""));
        QVERIFY(!contentOf(path).contains("xxx"));
        QCOMPARE(QDir(folder_->path()).entryList(QDir::Files), QStringList{u"rows.csv"_s});
    }

    void aFailureHasAMessageAndKeepsTheRows()
    {
        ListView* list = fillList(*window_, tabOf(1));
        const DialogDriver driver([&](QDialog& dialog) {
            dialog.findChild<QLineEdit*>(u"fileNameEdit"_s)->setText(folder_->filePath(u"rows.csv"_s));
            folder_->remove();
            dialog.done(QDialog::Accepted);
        });
        entry()->trigger();
        QCOMPARE(window_->boxes.boxes().size(), 1);
        QVERIFY2(window_->boxes.texts()[0].startsWith(u"Run-time error '75':"_s),
                 qPrintable(window_->boxes.texts()[0]));
        QVERIFY(window_->boxes.texts()[0].contains(u"rows.csv"_s));
        QVERIFY(!list->rows().empty());
        QVERIFY(entry()->isEnabled());
    }

    void theDialogOpensWhereAFileWasSavedAndNotWhereItFailed()
    {
        fillList(*window_, tabOf(1));
        save([&] { entry()->trigger(); }, u"rows.csv"_s);
        QTemporaryDir other;
        {
            const DialogDriver driver([&](QDialog& dialog) {
                static_cast<QFileDialog&>(dialog).setDirectory(other.path());
                dialog.findChild<QLineEdit*>(u"fileNameEdit"_s)->setText(other.filePath(u"missing/rows.csv"_s));
                dialog.done(QDialog::Accepted);
            });
            entry()->trigger();
        }
        QCOMPARE(window_->boxes.boxes().size(), 1);
        QString shown;
        const DialogDriver driver(
            [&](QDialog& dialog) { shown = static_cast<QFileDialog&>(dialog).directory().canonicalPath(); });
        entry()->trigger();
        QCOMPARE(shown, QDir(folder_->path()).canonicalPath());
    }

    void whatIsNoFileIsNotReplaced()
    {
        const QString place = folder_->filePath(u"folder.csv"_s);
        QVERIFY(QDir().mkpath(place));
        QVERIFY(!replaceFileAtomically(place, "x").isEmpty());
        QVERIFY(QFileInfo(place).isDir());
#ifdef Q_OS_LINUX
        const QString pipe = folder_->filePath(u"pipe.csv"_s);
        QCOMPARE(::mkfifo(pipe.toLocal8Bit().constData(), 0600), 0);
        QVERIFY(!replaceFileAtomically(pipe, "x").isEmpty());
        QVERIFY(!readSmallFile(pipe, 10)); // would wait for a writer
        QVERIFY(!replaceFileAtomically(u"/dev/null"_s, "x").isEmpty());
#endif
    }

#ifdef Q_OS_LINUX
    void aSymbolicLinkStaysOne()
    {
        const QString target = folder_->filePath(u"target"_s);
        const QString link = folder_->filePath(u"link.csv"_s);
        QCOMPARE(replaceFileAtomically(target, "old"), QString());
        QVERIFY(QFile::link(target, link));
        QCOMPARE(replaceFileAtomically(link, "new"), QString());
        QVERIFY(QFileInfo(link).isSymbolicLink());
        QCOMPARE(contentOf(target), QByteArray("new"));
    }

    // As on a full disk, where only a part can be written.
    void aFileThatCannotGrowStaysAsItWas()
    {
        const QString path = folder_->filePath(u"rows.csv"_s);
        QCOMPARE(replaceFileAtomically(path, "old"), QString());
        for (const std::size_t size : {5'000U, 500'000U}) { // within the file's buffer, and beyond it
            rlimit before = {};
            ::getrlimit(RLIMIT_FSIZE, &before);
            rlimit less = before;
            less.rlim_cur = 1000;
            auto* handler = std::signal(SIGXFSZ, SIG_IGN);
            ::setrlimit(RLIMIT_FSIZE, &less);
            const QString reason = replaceFileAtomically(path, std::string(size, 'x'));
            ::setrlimit(RLIMIT_FSIZE, &before);
            std::signal(SIGXFSZ, handler);
            QVERIFY(!reason.isEmpty());
            QCOMPARE(contentOf(path), QByteArray("old"));
            QCOMPARE(QDir(folder_->path()).entryList(QDir::Files | QDir::Hidden), QStringList{u"rows.csv"_s});
        }
    }
#endif

private:
    // Returns the rows that would be saved, without their addresses, with cells joined by "|".
    static QStringList tableRows(const ListView& list)
    {
        QStringList rows;
        for (const auto& cells : list.table().rows) {
            QStringList texts;
            for (int column = 0; column < list.model()->columnCount(); ++column)
                texts.append(QString::fromStdString(cells[static_cast<std::size_t>(column)]));
            rows.append(texts.join(u'|'));
        }
        return rows;
    }

    QAction* entry()
    {
        return window_->control<QAction>("savelistmnu");
    }

    // Runs `command`, which opens the dialog, and saves to a file of this name. Returns the file's path.
    QString save(const std::function<void()>& command, const QString& name)
    {
        QString path = folder_->filePath(name);
        bool accepted = false;
        const DialogDriver driver([&](QDialog& dialog) {
            auto* edit = dialog.findChild<QLineEdit*>(u"fileNameEdit"_s);
            edit->setText(QDir::toNativeSeparators(path));
            QTest::keyClick(edit, Qt::Key_Return);
            accepted = dialog.result() == QDialog::Accepted;
        });
        command();
        if (driver.seen() != QStringList{u"SaveList"_s} || !accepted)
            qFatal("the list was not saved");
        return path;
    }

    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<WindowFixture> window_;
};

QTEST_MAIN(ListSavingTest)
#include "list_saving_test.moc"
