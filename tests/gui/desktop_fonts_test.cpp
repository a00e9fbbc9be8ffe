#include <algorithm>

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QHeaderView>
#include <QMenu>
#include <QMenuBar>
#include <QPaintEngine>
#include <QPainter>
#include <QStatusBar>
#include <QToolBar>

#include "dialogs/Dialog.h"
#include "dialogs/Proxy.h"
#include "dialogs/frmAbout.h"
#include "platform/ProgramStyle.h"
#include "platform/Registry.h"
#include "tab_controls.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

namespace {

// The smallest screen on the market, in device-independent pixels.
constexpr QSize kSmallScreen(1024, 600);

/// Records the texts that are painted on it.
class TextRecorder final : public QPaintDevice
{
public:
    explicit TextRecorder(QWidget& widget) : widget_(widget) { widget.render(this); }

    QString texts() const { return engine_.texts.join(u'|'); }
    QPaintEngine* paintEngine() const override { return &engine_; }

protected:
    int metric(PaintDeviceMetric metric) const override
    {
        switch (metric) {
        case PdmWidth:
            return widget_.width();
        case PdmHeight:
            return widget_.height();
        case PdmDevicePixelRatio:
            return 1;
        case PdmDevicePixelRatioScaled:
            return static_cast<int>(devicePixelRatioFScale());
        case PdmDpiX:
        case PdmPhysicalDpiX:
            return widget_.logicalDpiX();
        case PdmDpiY:
        case PdmPhysicalDpiY:
            return widget_.logicalDpiY();
        default:
            return 0;
        }
    }

private:
    class Engine final : public QPaintEngine
    {
    public:
        Engine() : QPaintEngine(AllFeatures) {}
        bool begin(QPaintDevice* /*device*/) override { return true; }
        bool end() override { return true; }
        void updateState(const QPaintEngineState& /*state*/) override {}
        void drawPixmap(const QRectF& /*to*/, const QPixmap& /*pixmap*/, const QRectF& /*from*/) override {}
        void drawTextItem(const QPointF& /*at*/, const QTextItem& item) override { texts.append(item.text()); }
        void drawPolygon(const QPointF* /*points*/, int /*count*/, PolygonDrawMode /*mode*/) override {}
        Type type() const override { return User; }

        QStringList texts;
    };

    QWidget& widget_;
    mutable Engine engine_;
};

} // namespace

/// All texts of the program are fully visible, whatever font size the desktop sets.
class DesktopFontsTest final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QApplication::setStyle(new ProgramStyle);
        font_ = QApplication::font();
    }

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
            const QString texts = TextRecorder(window.main()).texts();
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
            for (QAction* command : menu->actions())
                QVERIFY2(menu->rect().contains(menu->actionGeometry(command)), qPrintable(command->text()));
            const QString texts = TextRecorder(*menu).texts();
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
        if (buttons.size() == 2)
            QVERIFY2(buttons[1]->x() - buttons[0]->geometry().right() > 4, qPrintable(dialog.objectName()));
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
};

QTEST_MAIN(DesktopFontsTest)
#include "desktop_fonts_test.moc"
