#include <algorithm>

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QHeaderView>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QStatusBar>
#include <QToolBar>

#include "PaintedText.h"
#include "dialogs/Dialog.h"
#include "dialogs/Proxy.h"
#include "dialogs/frmAbout.h"
#include "platform/ProgramStyle.h"
#include "platform/Registry.h"
#include "tab_controls.h"
#include "test_language.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

namespace {

// The smallest screen on the market, in device-independent pixels.
constexpr QSize kSmallScreen(1024, 600);

} // namespace

/// All texts of the program are fully visible, whatever font size the desktop sets.
class DesktopFontsTest final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QApplication::setStyle(new ProgramStyle);
        language_ = languageOfEnvironment();
        font_ = QApplication::font();
    }

    void cleanupTestCase() { language_.reset(); }

    void cleanup() { QApplication::setFont(font_); }

    void everyTabIsWhole_data() { addFonts(); }

    void everyTabIsWhole()
    {
        setDesktopFont();
        WindowFixture window;
        window.start();
        // The font is no smaller than necessary: the layout uses even sizes, and the design has room for twelve points,
        // or for ten where widths are rounded up to whole pixels.
#ifdef Q_OS_WIN
        constexpr int kRoom = 10;
#else
        constexpr int kRoom = 12;
#endif
        const int whole = qRound(QFontInfo(QApplication::font()).pointSizeF());
        QCOMPARE(window.control<QLabel>("Label1")->font().pointSize(), std::min(whole + whole % 2, kRoom));
        for (const QSize size : {QSize(608, 434), QSize(1216, 868)}) {
            window.main().resize(size);
            window.control<QLabel>("ConnectionPanel")->setText(u"Connection pending"_s);
            window.control<QLabel>("ActivityPanel")->setText(u"Request Completed"_s);
            for (const TabControls& tab : kTabs) {
                window.chooseTab(tab.tag);
                checkWhole(*window.control<QWidget>(tab.frame));
                keepPicture(window.main(), u"%1-tab%2"_s.arg(size.width()).arg(tab.tag));
            }
            checkWhole(*window.control<QStatusBar>("StatusBar1"));
            const QString texts = PaintedText(window.main()).texts();
            QVERIFY2(!texts.contains(u'\u2026'), qPrintable(texts));
            auto* strip = window.control<QTabBar>("TabStrip1");
            for (int i = 0; i < strip->count(); ++i) {
                QVERIFY(strip->rect().contains(strip->tabRect(i)));
                QVERIFY(strip->fontMetrics().horizontalAdvance(strip->tabText(i)) <= strip->tabRect(i).width());
                QVERIFY(strip->fontMetrics().height() <= strip->tabRect(i).height());
            }
        }
    }

    void everyMenuIsWhole_data()
    {
        addFonts();
    }

    void everyMenuIsWhole()
    {
        setDesktopFont();
        WindowFixture window;
        window.start();
        QMenuBar* bar = window.main().menuBar();
        QVERIFY(!bar->isNativeMenuBar());
        QVERIFY(bar->isVisible());
        for (QAction* action : bar->actions()) {
            const QRect entry = bar->actionGeometry(action);
            QVERIFY2(bar->rect().contains(entry), qPrintable(action->text()));
            QVERIFY(bar->fontMetrics().height() <= entry.height());
            QMenu* menu = action->menu();
            if (!menu)
                continue;
            menu->popup(bar->mapToGlobal(entry.bottomLeft()));
            QVERIFY(menu->isVisible());
            if (menu->width() >= menu->screen()->availableGeometry().width())
                continue; // wider than the small screen of the tests
            for (QAction* command : menu->actions())
                QVERIFY2(menu->rect().contains(menu->actionGeometry(command)), qPrintable(command->text()));
            const QString texts = PaintedText(*menu).texts();
            QVERIFY2(!texts.isEmpty() && !texts.contains(u'\u2026'), qPrintable(texts));
            keepPicture(*menu, menu->objectName());
            menu->close();
        }
    }

    void everyDialogIsWhole_data()
    {
        addFonts();
    }

    void everyDialogIsWhole()
    {
        setDesktopFont();
        WindowFixture window;
        window.start();
        Proxy options(
            window.settingsFile().toStdString(), [](const std::string&) {}, &window.main());
        options.findChild<QCheckBox*>(u"Check1"_s)->setChecked(true);
        checkDialog(options);
        const std::unique_ptr<Registry> registry = systemRegistry();
        frmAbout about(
            *registry, [](const std::string&) { return true; }, &window.main());
        checkDialog(about);
        Dialog wait(&window.main());
        wait.load();
        checkDialog(wait);
        wait.unload();
    }

private:
    static void addFonts()
    {
        QTest::addColumn<int>("points");
        for (int points = 7; points <= 24; ++points)
            QTest::addRow("%d points", points) << points;
    }

    void setDesktopFont()
    {
        QFETCH(int, points);
        QFont font = font_;
        font.setPointSize(points);
        QApplication::setFont(font);
    }

    static void checkDialog(QDialog& dialog)
    {
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        QVERIFY2(dialog.width() <= kSmallScreen.width() && dialog.height() <= kSmallScreen.height(),
                 qPrintable(dialog.objectName()));
        checkWhole(dialog);
        QList<QPushButton*> buttons = dialog.findChildren<QPushButton*>();
        if (buttons.size() == 2) {
            const QRect around = buttons[0]->geometry().adjusted(-4, -4, 4, 4);
            QVERIFY2(!around.intersects(buttons[1]->geometry()), qPrintable(dialog.objectName()));
        }
        keepPicture(dialog, dialog.objectName());
        dialog.hide();
    }

    /// Verifies that every visible control with a text below `place` has at least the size of its size hint.
    static void checkWhole(QWidget& place)
    {
        for (QWidget* control : place.findChildren<QWidget*>()) {
            if (!control->isVisibleTo(&place))
                continue;
            const QString name = place.objectName() + u'/' + control->objectName();
            if (auto* label = qobject_cast<QLabel*>(control); label && label->wordWrap()) {
                QVERIFY2(label->heightForWidth(label->width()) <= label->height(), qPrintable(name));
            } else if (label || qobject_cast<QAbstractButton*>(control) || qobject_cast<QComboBox*>(control)) {
                const QSize needed = control->sizeHint();
                const QString what = u"%1 needs %2 x %3 and has %4 x %5"_s.arg(name)
                                         .arg(needed.width())
                                         .arg(needed.height())
                                         .arg(control->width())
                                         .arg(control->height());
                QVERIFY2(needed.width() <= control->width() && needed.height() <= control->height(), qPrintable(what));
            } else if (qobject_cast<QLineEdit*>(control)) {
                QVERIFY2(control->sizeHint().height() <= control->height(), qPrintable(name));
            } else if (auto* header = qobject_cast<QHeaderView*>(control)) {
                for (int column = 0; column < header->count(); ++column) {
                    const QString caption = header->model()->headerData(column, Qt::Horizontal).toString();
                    QVERIFY2(header->fontMetrics().horizontalAdvance(caption) < header->sectionSize(column),
                             qPrintable(name + u'/' + caption));
                }
            }
            if (!qobject_cast<QAbstractScrollArea*>(control->parentWidget()))
                QVERIFY2(control->parentWidget()->rect().contains(control->geometry()), qPrintable(name));
        }
    }

    // Saves a screenshot for inspection if QUARRYNET_SCREENSHOTS names an existing folder.
    static void keepPicture(QWidget& widget, const QString& name)
    {
        const QString folder = qEnvironmentVariable("QUARRYNET_SCREENSHOTS");
        if (!folder.isEmpty())
            widget.grab().save(u"%1/%2x-%3-%4.png"_s.arg(folder)
                                   .arg(widget.devicePixelRatioF())
                                   .arg(QApplication::font().pointSize(), 2, 10, QLatin1Char('0'))
                                   .arg(name));
    }

    QFont font_;
    std::unique_ptr<Language> language_;
};

QTEST_MAIN(DesktopFontsTest)
#include "desktop_fonts_test.moc"
