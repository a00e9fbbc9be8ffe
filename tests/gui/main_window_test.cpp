#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QHeaderView>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QStatusBar>
#include <QToolBar>
#include <QToolButton>

#include "WindowFixture.h"
#include "common/local_pages.h"
#include "platform/ImageList.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

namespace {

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

} // namespace

class MainWindowTest final : public QObject
{
    Q_OBJECT

private slots:
    void everyControlIsThereByItsName_data()
    {
        QTest::addColumn<QString>("name");
        const QStringList names =
            u"STI Label1 Text1 Command1 Label2 Label3 Label4 Label5 ListView1 Slider1 Text3 List1 List2 List3 List4 "
            "Text2 "
            "NetSock STITimer ProxySwitch SPS Label6 Text4 Label7 Text5 Combo1 Command2 ListView2 List5 Text6 "
            "PageSock "
            "SPSTimer IMG Label8 Text7 Command3 Label9 Label11 Label10 Label12 Slider2 IMGViewer List6 List7 List8 "
            "List9 "
            "Text8 Text9 ImgSock IMGTimer SFD Label13 Text10 Command4 Label14 Label15 ListView3 Slider3 List10 "
            "Text13 "
            "Text12 SFDSock SFDTimer DownSock Text14 SFS Label16 Text11 Command5 ListView4 Slider4 List11 Text15 "
            "Text16 "
            "SFSSock SFSTimer TabStrip1 Toolbar1 StatusBar1 ConnectionPanel ActivityPanel filmnu exitmnu viewmnu "
            "proxymnu helpmnu contentmnu emailauth webpage aboutmnu stopmnu"_s.split(u' ');
        for (const QString& name : names)
            QTest::newRow(qPrintable(name)) << name;
    }

    void everyControlIsThereByItsName()
    {
        QFETCH(QString, name);
        static WindowFixture window;
        static const bool loaded = window.load();
        QVERIFY(loaded);
        QVERIFY(window.main().findChild<QObject*>(name));
    }

    void startsIdleWithTheFirstTabInFront()
    {
        WindowFixture window;
        window.start();
        QCOMPARE(window.main().windowTitle(), u"Quarrynet"_s);
        QCOMPARE(window.main().size(), QSize(608, 434));
        QCOMPARE(window.control<QTabBar>("TabStrip1")->currentIndex(), 0);
        QVERIFY(window.control<QFrame>("STI")->isVisible());
        QVERIFY(window.control<QFrame>("SPS")->isVisible()); // beneath the first
        for (const char* hidden : {"IMG", "SFD", "SFS"})
            QVERIFY(!window.control<QFrame>(hidden)->isVisible());
        auto* front = window.control<QFrame>("STI");
        QCOMPARE(front->parentWidget()->childAt(front->geometry().topLeft() + QPoint(2, 2)), front);
        for (const char* timer : {"STITimer", "SPSTimer", "IMGTimer", "SFDTimer", "SFSTimer"})
            QVERIFY(!window.control<QTimer>(timer)->isActive());
        for (const char* socket : {"NetSock", "PageSock", "ImgSock", "SFDSock", "SFSSock", "DownSock"})
            QCOMPARE(window.socketState(socket), 0);
        QCOMPARE(window.text("Label5"), u"0.0 Second/s"_s);
        QCOMPARE(window.text("Label12"), u"0.0 Second/s"_s);
        QCOMPARE(window.text("ConnectionPanel"), QString());
        QCOMPARE(window.text("ActivityPanel"), QString());
        QCOMPARE(window.hidden("ProxySwitch"), std::string("off"));
        for (const char* slider : {"Slider1", "Slider2", "Slider3", "Slider4"})
            QVERIFY(!window.control<QSlider>(slider)->isEnabled());
        QVERIFY(window.boxes.boxes().isEmpty());
    }

    void timersTickAtTheirIntervals()
    {
        WindowFixture window;
        QVERIFY(window.load());
        QCOMPARE(window.control<QTimer>("STITimer")->interval(), 10);
        for (const char* timer : {"SPSTimer", "IMGTimer", "SFDTimer", "SFSTimer"})
            QCOMPARE(window.control<QTimer>(timer)->interval(), 100);
    }

    void tabsCarryTheirTagsAndFitTheirLabels()
    {
        WindowFixture window;
        window.start();
        auto* strip = window.control<QTabBar>("TabStrip1");
        const QStringList labels = {u"Search The Internet"_s, u"Specific Page Search"_s, u"Image Search"_s,
                                    u"Search For Downloads"_s, u"Specific File Search"_s};
        QCOMPARE(strip->count(), 5);
        for (int i = 0; i < 5; ++i) {
            QCOMPARE(strip->tabText(i), labels[i]);
            QCOMPARE(strip->tabData(i).toString(), QString::number(i + 1));
        }
        QVERIFY(strip->tabRect(4).right() <= strip->width());
    }

    void listsHaveTheirColumns()
    {
        WindowFixture window;
        QVERIFY(window.load());
        const std::pair<const char*, QString> columns[] = {
            {"ListView1", u"Website Address|Short Description"_s},
            {"ListView2", u"Keyword|Found/Not Found"_s},
            {"ListView3", u"Program Name|Description|OS|File Size|License"_s},
            {"ListView4", u"FileName|FilePath|FileSize"_s},
        };
        for (const auto& [name, expected] : columns) {
            auto* list = window.control<QTreeView>(name);
            QStringList headers;
            for (int i = 0; i < list->model()->columnCount(); ++i)
                headers.append(list->model()->headerData(i, Qt::Horizontal).toString());
            QCOMPARE(headers.join(u'|'), expected);
            QCOMPARE(list->font().family(), u"Arial"_s);
        }
        for (const char* name : {"ListView1", "ListView2"}) {
            auto* list = window.control<QTreeView>(name);
            QCOMPARE(list->columnWidth(0), list->width() / 2 - 3);
            QCOMPARE(list->columnWidth(1), list->width() / 2 - 3);
        }
    }

    void matchModesAreFilledInOrder()
    {
        WindowFixture window;
        QVERIFY(window.load());
        auto* modes = window.control<QComboBox>("Combo1");
        QCOMPARE(modes->count(), 3);
        QCOMPARE(modes->itemText(0), u"Any Keyword"_s);
        QCOMPARE(modes->itemText(1), u"All Keyword/s"_s);
        QCOMPARE(modes->itemText(2), u"Exact Search"_s);
        QCOMPARE(modes->currentIndex(), 0);
    }

    void toolbarHasNineButtons()
    {
        WindowFixture window;
        window.start();
        const QList<QAction*> buttons = window.control<QToolBar>("Toolbar1")->actions();
        const QStringList tips = {QString(), u"Configure Proxy"_s, QString(),    u"Stop Current Search"_s, QString(),
                                  u"Help"_s, u"E-mail Author"_s,   u"Webpage"_s, u"About Quarrynet"_s};
        QCOMPARE(buttons.size(), 9);
        for (int i = 0; i < 9; ++i) {
            QCOMPARE(buttons[i]->isSeparator(), tips[i].isEmpty());
            if (tips[i].isEmpty())
                continue;
            QCOMPARE(buttons[i]->toolTip(), tips[i]);
            QVERIFY(!buttons[i]->icon().isNull());
            QVERIFY(window.control<QToolBar>("Toolbar1")->widgetForAction(buttons[i])->isVisible());
        }
    }

    void theImageListHoldsThePicturesOfTheButtons()
    {
        WindowFixture window;
        window.start();
        auto* images = window.control<ImageList>("ImageList1");
        QCOMPARE(images->count(), 6);
        const QList<QAction*> buttons = window.control<QToolBar>("Toolbar1")->actions();
        int number = 0;
        for (const int button : {2, 4, 6, 7, 8, 9}) {
            const QIcon shown = buttons[button - 1]->icon();
            QVERIFY(!shown.isNull());
            QCOMPARE(images->image(++number).pixmap(24, 24).toImage(), shown.pixmap(24, 24).toImage());
        }
        QVERIFY(images->image(0).isNull());
        QVERIFY(images->image(7).isNull());
    }

    // When only the window had the icon, boxes and dialogs without an owner did not get it.
    void everyWindowHasTheProgramsIcon()
    {
        WindowFixture window;
        window.start();
        const QImage emblem = window.main().windowIcon().pixmap(32, 32).toImage();
        QVERIFY(!emblem.isNull());
        const QMessageBox box;
        const QDialog dialog;
        QCOMPARE(box.windowIcon().pixmap(32, 32).toImage(), emblem);
        QCOMPARE(dialog.windowIcon().pixmap(32, 32).toImage(), emblem);
    }

    void menusHaveTheirEntriesInOrder()
    {
        WindowFixture window;
        QVERIFY(window.load());
        const auto entries = [](const QList<QAction*>& actions) {
            QStringList texts;
            for (const QAction* action : actions)
                texts.append(action->isSeparator() ? u"-"_s : action->text());
            return texts.join(u'|');
        };
        QCOMPARE(entries(window.main().menuBar()->actions()), u"&File|&View|&Help|Stop"_s);
        QCOMPARE(entries(window.control<QMenu>("filmnu")->actions()), u"&Save List...|E&xit"_s);
        QCOMPARE(entries(window.control<QMenu>("viewmnu")->actions()),
                 u"&Proxy|-|&Keep History|&Clear History|&Forget Place and Columns"_s);
        QCOMPARE(entries(window.control<QMenu>("helpmnu")->actions()), u"&Contents|&Email Author|&Webpage|-|&About"_s);
    }

    void everyControlThatAPersonUsesHasAnAccessibleName()
    {
        WindowFixture window;
        QVERIFY(window.load());
        for (auto* control : window.main().findChildren<QWidget*>()) {
            const bool used = qobject_cast<QLineEdit*>(control) || qobject_cast<QTreeView*>(control) ||
                              qobject_cast<QSlider*>(control) || qobject_cast<QComboBox*>(control) ||
                              qobject_cast<QPushButton*>(control) || qobject_cast<QTabBar*>(control);
            if (used)
                QVERIFY2(!control->accessibleName().isEmpty(), qPrintable(control->objectName()));
        }
    }

    void tabKeyVisitsTheFrontTabOnly()
    {
        WindowFixture window;
        window.start();
        QStringList visited;
        for (int i = 0; i < 8; ++i) {
            visited.append(QApplication::focusWidget()->objectName());
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        }
        for (const char* covered : {"Text4", "Text5", "Combo1", "Command2", "ListView2"})
            QVERIFY2(!visited.contains(QLatin1String(covered)), qPrintable(visited.join(u' ')));
        QCOMPARE(visited.mid(0, 3), QStringList({u"Text1"_s, u"Command1"_s, u"ListView1"_s}));
    }

    void mnemonicReachesTheFrontTabsButton()
    {
        WindowFixture window;
        window.start();
        QTest::keyClick(window.control<QLineEdit>("Text1"), Qt::Key_S, Qt::AltModifier);
        QTRY_COMPARE(window.boxes.texts(), QStringList{u"Please enter keyword/s to search!!!"_s});
        window.boxes.forget();
        window.activate();
        window.chooseTab(2);
        QTest::keyClick(window.control<QLineEdit>("Text4"), Qt::Key_S, Qt::AltModifier);
        QTRY_COMPARE(window.boxes.texts(), QStringList{u"Both Fields Are Mandatory!!!"_s});
    }

    void localPagesAreWrittenAnewAndShown()
    {
        WindowFixture window;
        QFile old(QDir(window.folder()).filePath(u"blank.htm"_s));
        QVERIFY(old.open(QIODevice::WriteOnly));
        old.write(QByteArray(100'000, 'x')); // longer than the page
        old.close();
        QVERIFY(window.load());
        QCOMPARE(contentOf(window.folder() + u"/blank.html"_s),
                 QByteArray("<HTML><frameset rows=100% border=0><frame noresize scrolling=auto name=blank "
                            "src=blank.htm></frame></frameset></HTML>"));
        const QByteArray page = contentOf(old.fileName());
        QCOMPARE(page, QByteArray::fromStdString(blankPage()));
        QCOMPARE(page.count("\r\n"), 52);
        QVERIFY(page.contains("// Block backspace onKeyDown************ & vbcrlf    // ****"));
        QVERIFY(page.endsWith("</html>\r\n"));
        QVERIFY(window.control<QWidget>("IMGViewer")->property("url").toString().endsWith(u"blank.html"_s));
    }

    void settingsSwitchTheProxyOn()
    {
        WindowFixture window;
        window.writeSettings("[ProxySwitch]\nValue=on\n[ProxyHost]\nValue=proxy.example\n[ProxyPort]\nValue=8080x\n");
        QVERIFY(window.load());
        QCOMPARE(window.hidden("ProxySwitch"), std::string("on"));
        QCOMPARE(window.main().proxy().host, std::string("proxy.example"));
        QCOMPARE(window.main().proxy().port, 8080);
        QVERIFY(!window.main().isDirect());
    }

    void settingsThatDoNotSwitchTheProxyOn_data()
    {
        QTest::addColumn<QByteArray>("settings");
        QTest::newRow("capital") << QByteArray("[ProxySwitch]\nValue=On\n[ProxyHost]\nValue=h\n[ProxyPort]\nValue=1\n");
        QTest::newRow("off") << QByteArray(
            "[ProxySwitch]\nValue=off\n[ProxyHost]\nValue=h\n[ProxyPort]\nValue=99999\n");
        QTest::newRow("empty file") << QByteArray("");
        QTest::newRow("garbage") << QByteArray("\0\xff[[[==\n]Proxy\r\r=\n[ProxySwitch", 31);
        QTest::newRow("two megabytes of one byte") << QByteArray(2'000'000, '[');
    }

    void settingsThatDoNotSwitchTheProxyOn()
    {
        QFETCH(QByteArray, settings);
        WindowFixture window;
        window.writeSettings(settings);
        QVERIFY(window.load());
        QCOMPARE(window.hidden("ProxySwitch"), std::string("off"));
        QCOMPARE(window.main().proxy().host, std::string());
        QCOMPARE(window.main().proxy().port, 0);
        QCOMPARE(contentOf(window.settingsFile()), settings);
        QVERIFY(window.boxes.boxes().isEmpty());
    }

    void switchedOnWithoutAPortIsPort0()
    {
        WindowFixture window;
        window.writeSettings("[ProxySwitch]\nValue=on\n");
        QVERIFY(window.load());
        QCOMPARE(window.main().proxy().port, 0);
        QVERIFY(!window.main().isDirect());
    }

    void aPortAbove32767EndsTheStartWithOneBox()
    {
        WindowFixture window;
        const QByteArray settings = "[ProxySwitch]\nValue=on\n[ProxyHost]\nValue=h\n[ProxyPort]\nValue=32768\n";
        window.writeSettings(settings);
        QVERIFY(!window.load());
        QCOMPARE(window.boxes.texts(),
                 QStringList{u"Run-time error '6':\n\nOverflow\n\n%1\nSection [ProxyPort]: the port must not be "
                             "greater than 32767."_s.arg(window.settingsFile())});
        QCOMPARE(window.boxes.boxes()[0].title, u"Quarrynet"_s);
        QCOMPARE(window.boxes.boxes()[0].icon, QMessageBox::Critical);
        QCOMPARE(contentOf(window.settingsFile()), settings);
    }

    void aPageThatCannotBeWrittenEndsTheStart()
    {
        WindowFixture window;
        // A folder at the page's path makes writing fail for every user, including root.
        QVERIFY(QDir(window.folder()).mkpath(u"blank.htm/inside"_s));
        QVERIFY(!window.load());
        QCOMPARE(window.boxes.boxes().size(), 1);
        QVERIFY(window.boxes.texts()[0].startsWith(u"Run-time error '75':\n\nPath/File access error"_s));
        QVERIFY(window.boxes.texts()[0].contains(window.folder() + QDir::separator() + u"blank.htm"_s));
    }

    void aFolderPathThatEndsInASeparatorGetsNoSecond()
    {
        QTemporaryDir folder;
        RecordingShell shell;
        Main main({{}, shell, (folder.path() + QDir::separator()).toStdString(), {}, {}, {}});
        QVERIFY(main.load());
        QVERIFY(QFile::exists(folder.filePath(u"blank.html"_s)));
        const QString url = main.findChild<QWidget*>(u"IMGViewer"_s)->property("url").toString();
        QVERIFY2(url.endsWith(u"/blank.html"_s) && !url.endsWith(u"//blank.html"_s), qPrintable(url));
    }
};

QTEST_MAIN(MainWindowTest)
#include "main_window_test.moc"
