#include <algorithm>
#include <map>

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QHeaderView>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPainter>
#include <QProxyStyle>
#include <QRegularExpression>
#include <QStatusBar>
#include <QStyleFactory>
#include <QStyleOptionSlider>
#include <QToolBar>
#include <QToolTip>

#include "PictureServer.h"
#include "TextPlaces.h"
#include "dialogs/Dialog.h"
#include "dialogs/Proxy.h"
#include "dialogs/frmAbout.h"
#include "picture_places.h"
#include "platform/PagingSlider.h"
#include "platform/ProgramStyle.h"
#include "platform/Registry.h"
#include "platform/contrast.h"
#include "tab_controls.h"

using namespace Qt::Literals::StringLiterals;
using namespace quarrynet;

namespace {

constexpr int kScale = 3; // at this scale the strokes of letters have pixels in their full colour

/// The minimum, design and full sizes of the window.
constexpr std::array kSizes = {QSize(304, 217), QSize(608, 434), QSize(1216, 868)};

/// A dark desktop's palette, with the toolkit's own colours where such desktops leave them.
QPalette darkPalette()
{
    QPalette dark(QColor(49, 54, 59), QColor(42, 46, 50));
    dark.setColor(QPalette::Base, QColor(35, 38, 41));
    dark.setColor(QPalette::AlternateBase, QColor(49, 54, 59));
    dark.setColor(QPalette::Highlight, QColor(30, 92, 134));
    dark.setColor(QPalette::HighlightedText, QColor(252, 252, 252));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
        dark.setColor(role, QColor(252, 252, 252));
    dark.setColor(QPalette::ToolTipBase, QColor(49, 54, 59));
    dark.setColor(QPalette::PlaceholderText, QColor(161, 169, 177));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        dark.setColor(QPalette::Disabled, role, QColor(110, 113, 117));
    return dark;
}

/// A slider that tells where its thumb is.
class Slider final : public QSlider
{
public:
    explicit Slider(QWidget* parent) : QSlider(Qt::Horizontal, parent) { setValue(50); }

    QRect thumb() const
    {
        QStyleOptionSlider option;
        initStyleOption(&option);
        return style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this);
    }
};

/// Fills menu bars with a colour that no desktop has.
class MarkedStyle final : public QProxyStyle
{
public:
    static constexpr QColor kMark{1, 200, 3};

    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override
    {
        if (element == CE_MenuBarItem || element == CE_MenuBarEmptyArea)
            painter->fillRect(option->rect, kMark);
        else
            QProxyStyle::drawControl(element, option, painter, widget);
    }
};

QImage drawn(QWidget& widget)
{
    QImage image(widget.size() * kScale, QImage::Format_RGB32);
    image.setDevicePixelRatio(kScale);
    image.fill(widget.palette().color(QPalette::Window));
    widget.render(&image);
    image.setDevicePixelRatio(1);
    return image;
}

/// What was measured at the place of a text: the most frequent colour is the background, and the letters have the
/// strongest contrast against it.
struct Measured
{
    QColor background;
    QColor letters;
    double ratio = 1;
};

Measured measured(const QImage& image, const QRectF& place)
{
    const QRect pixels = QRectF(place.topLeft() * kScale, place.size() * kScale).toRect() & image.rect();
    std::map<QRgb, int> counts;
    for (int y = pixels.top(); y <= pixels.bottom(); ++y) {
        for (int x = pixels.left(); x <= pixels.right(); ++x)
            ++counts[image.pixel(x, y)];
    }
    Measured result;
    if (counts.empty())
        return result;
    const auto most = std::max_element(counts.begin(), counts.end(),
                                       [](const auto& a, const auto& b) { return a.second < b.second; });
    result.background = QColor(most->first);
    for (const auto& [color, count] : counts) {
        // A letter has more than two pixels of its colour.
        const double ratio = contrastRatio(result.background, QColor(color));
        if (count > 2 && ratio > result.ratio) {
            result.ratio = ratio;
            result.letters = QColor(color);
        }
    }
    return result;
}

} // namespace

/// Every text has a contrast of at least 4.5 to 1, in light and dark desktops and in both of the toolkit's own styles,
/// as measured in what is drawn. The palette changes while the window is open. Texts of disabled controls are exempt,
/// as in the guidelines; no field has a placeholder text.
class ContrastTest final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void everyTabIsReadable_data() { addLooks(); }
    void everyTabIsReadable();
    void menusAreReadable_data() { addLooks(); }
    void menusAreReadable();
    void menuBarFollowsTheStyle();
    void historyIsReadable_data() { addLooks(); }
    void historyIsReadable();
    void dialogsAreReadable_data() { addLooks(); }
    void dialogsAreReadable();
    void boxesAreReadable_data() { addLooks(); }
    void boxesAreReadable();
    void toolbarPicturesStandOut_data() { addLooks(); }
    void toolbarPicturesStandOut();
    void disabledSliderDiffers_data() { addLooks(); }
    void disabledSliderDiffers();
    void sliderMarksStandOut_data() { addLooks(); }
    void sliderMarksStandOut();
    void manualIsReadable();

private:
    static void addLooks();
    void applyLook();
    void search(const TabControls& tab);
    void showGallery();
    void check(QWidget& part);
    void keepPictures(const QString& name);
    void keepPicture(QWidget& widget, const QString& name);

    std::unique_ptr<WindowFixture> window_;
    PictureServer pictures_;
};

void ContrastTest::addLooks()
{
    QTest::addColumn<QString>("style");
    QTest::addColumn<bool>("dark");
    for (const char* style : {"Fusion", "Windows"}) {
        QTest::addRow("%s, light", style) << QString::fromLatin1(style) << false;
        QTest::addRow("%s, dark", style) << QString::fromLatin1(style) << true;
    }
}

void ContrastTest::init()
{
    window_ = std::make_unique<WindowFixture>();
    window_->start();
}

void ContrastTest::cleanup()
{
    window_.reset();
}

// Changes style and palette below the open window.
void ContrastTest::applyLook()
{
    QFETCH(QString, style);
    QFETCH(bool, dark);
    auto* own = new ProgramStyle;
    own->setBaseStyle(QStyleFactory::create(style));
    QApplication::setStyle(own);
    // What the toolkit does with a desktop's palette.
    QPalette palette = dark ? darkPalette() : QApplication::style()->standardPalette();
    QApplication::style()->polish(palette);
    QApplication::setPalette(palette);
    QCoreApplication::processEvents();
}

void ContrastTest::search(const TabControls& tab)
{
    window_->service.answerByTarget([&tab](const QByteArray& /*target*/) { return pageOf(tab); });
    const char* field = fillIn(*window_, tab);
    QTest::keyClick(window_->control<QLineEdit>(field), Qt::Key_Return);
    QTRY_VERIFY(window_->service.lastRequestLine().contains(tab.requestLine));
    QTRY_VERIFY(window_->control<QPushButton>(tab.button)->isEnabled());
}

// Shows pictures, one of which does not load.
void ContrastTest::showGallery()
{
    std::vector<GalleryPicture> gallery;
    for (const char* name : {"green_pear", "yellow_plum", "black_cherry", "wild_berry", "sweet_melon", "red_apple"}) {
        const QString target = u"/pics/%1.jpg"_s.arg(QLatin1String(name));
        if (gallery.size() != 1)
            pictures_.answerWithPicture(target.toLatin1(), gallery.size() % 2 ? Qt::darkCyan : Qt::gray);
        gallery.push_back({"host.example" + target.toStdString(), pictures_.address(target).toStdString()});
    }
    pictures_.requests.clear();
    window_->control<HtmlView>("IMGViewer")->navigate(u"new.html"_s, gallery);
    QTRY_COMPARE(pictures_.requests.size(), static_cast<qsizetype>(gallery.size()));
    QTRY_VERIFY(!placeOf(window_->main().grab().toImage(), Qt::gray).isEmpty());
}

void ContrastTest::check(QWidget& part)
{
    const QImage image = drawn(part);
    const TextPlaces places(part);
    for (const TextPlaces::Text& text : places.texts()) {
        if (text.text.trimmed().isEmpty())
            continue;
        const QRectF place = text.place & QRectF(part.rect());
        const QPoint center = place.center().toPoint();
        const QWidget* control = part.childAt(center);
        const auto* menu = qobject_cast<QMenu*>(&part);
        const QAction* entry = menu ? menu->actionAt(center) : nullptr;
        const bool isDisabled = (control && !control->isEnabled()) || (entry && !entry->isEnabled());
        if (place.width() < 2 || place.height() < 2 || isDisabled)
            continue;
        const Measured found = measured(image, place);
        const QString what = u"%1 in %2: %3 on %4 is %5"_s
                                 .arg(text.text, control ? control->objectName() : part.objectName(),
                                      found.letters.name(), found.background.name())
                                 .arg(found.ratio);
        QVERIFY2(found.ratio >= kTextContrast, qPrintable(what));
    }
}

void ContrastTest::keepPicture(QWidget& widget, const QString& name)
{
    const QString folder = qEnvironmentVariable("QUARRYNET_SCREENSHOTS");
    if (folder.isEmpty())
        return;
    const QString look = QLatin1String(QTest::currentDataTag()).toString().remove(u',').replace(u' ', u'-');
    QVERIFY(widget.grab().save(u"%1/%2-%3-%4x.png"_s.arg(folder, name, look).arg(widget.devicePixelRatioF())));
}

void ContrastTest::keepPictures(const QString& name)
{
    if (!qEnvironmentVariableIsSet("QUARRYNET_SCREENSHOTS"))
        return;
    for (const QSize size : kSizes) {
        window_->main().resize(size);
        QCoreApplication::processEvents();
        keepPicture(window_->main(), u"%1-%2"_s.arg(name).arg(size.width()));
    }
    window_->main().resize(kSizes[1]);
}

void ContrastTest::everyTabIsReadable()
{
    // The image search empties the page check's list.
    for (const int tag : {3, 2, 1, 4, 5})
        search(tabOf(tag));
    applyLook();
    for (const TabControls& tab : kTabs) {
        window_->chooseTab(tab.tag);
        if (tab.tag == 3)
            showGallery();
        keepPictures(u"tab%1"_s.arg(tab.tag));
        if (auto* list = window_->main().findChild<QTreeView*>(QLatin1String(tab.list))) {
            QVERIFY(list->model()->rowCount() > 1);
            list->setCurrentIndex(list->model()->index(1, 0));
            list->setFocus();
        }
        for (const char* part : {tab.frame, "TabStrip1", "Toolbar1", "StatusBar1"}) {
            if (auto* widget = window_->main().findChild<QWidget*>(QLatin1String(part)))
                check(*widget);
            else
                qWarning() << "no" << part;
        }
        check(*window_->main().menuBar());
    }
}

void ContrastTest::menusAreReadable()
{
    applyLook();
    for (QAction* action : window_->main().menuBar()->actions()) {
        QMenu* menu = action->menu();
        if (!menu)
            continue;
        menu->popup({0, 0});
        menu->setActiveAction(menu->actions().first());
        keepPicture(*menu, menu->objectName());
        check(*menu);
        menu->close();
    }
    auto* combo = window_->control<QComboBox>("Combo1");
    window_->chooseTab(2);
    combo->showPopup();
    check(*combo->view());
    keepPicture(*combo->view()->window(), u"combo"_s);
    combo->hidePopup();
}

// The bar kept the style with which the program had started: light on Windows, below the light text of a dark palette.
void ContrastTest::menuBarFollowsTheStyle()
{
    QMenuBar* bar = window_->main().menuBar();
    QVERIFY(placeOf(bar->grab().toImage(), MarkedStyle::kMark).isEmpty());
    auto* own = new ProgramStyle;
    own->setBaseStyle(new MarkedStyle);
    QApplication::setStyle(own);
    QCOMPARE(placeOf(bar->grab().toImage(), MarkedStyle::kMark), bar->rect());
}

// The earlier entries of a field, one of them chosen.
void ContrastTest::historyIsReadable()
{
    search(tabOf(1));
    applyLook();
    window_->type("Text1", {});
    auto* field = window_->control<QLineEdit>("Text1");
    QTest::keyClick(field, Qt::Key_Down);
    auto* popup = qobject_cast<QAbstractItemView*>(QApplication::activePopupWidget());
    QVERIFY(popup);
    QCOMPARE(popup->model()->rowCount(), 1);
    popup->setCurrentIndex(popup->model()->index(0, 0));
    keepPicture(*popup, u"history"_s);
    check(*popup);
    popup->close();
}

void ContrastTest::dialogsAreReadable()
{
    Proxy options(
        window_->settingsFile().toStdString(), [](const std::string&) {}, &window_->main());
    options.findChild<QCheckBox*>(u"Check1"_s)->setChecked(true);
    const std::unique_ptr<Registry> registry = systemRegistry();
    frmAbout about(
        *registry, [](const std::string&) { return true; }, &window_->main());
    Dialog wait(&window_->main());
    for (QDialog* dialog : std::initializer_list<QDialog*>{&options, &about}) {
        dialog->show();
        applyLook();
        keepPicture(*dialog, dialog->objectName());
        check(*dialog);
        dialog->hide();
    }
    wait.load();
    applyLook();
    keepPicture(wait, wait.objectName());
    check(wait);
    wait.unload();
}

void ContrastTest::boxesAreReadable()
{
    QMessageBox box(QMessageBox::Information, u"Quarrynet"_s, u"Please enter keyword/s to search!!!"_s, QMessageBox::Ok,
                    &window_->main());
    box.show();
    applyLook();
    keepPicture(box, u"box"_s);
    check(box);
    QToolTip::showText({10, 10}, u"a tool tip"_s, &window_->main());
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->isVisible() && widget->inherits("QTipLabel"))
            check(*widget);
    }
    QToolTip::hideText();
}

// A picture's strongest parts against the bar.
void ContrastTest::toolbarPicturesStandOut()
{
    applyLook();
    auto* bar = window_->main().findChild<QToolBar*>();
    QVERIFY(bar);
    int pictures = 0;
    for (QAction* action : bar->actions()) {
        QWidget* button = bar->widgetForAction(action);
        if (action->icon().isNull() || !button)
            continue;
        ++pictures;
        const QImage image = drawn(*button);
        const QColor background = image.pixelColor(2 * kScale, 2 * kScale);
        int strong = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                strong += contrastRatio(background, image.pixelColor(x, y)) >= kShapeContrast;
        }
        const int share = strong * 100 / (image.width() * image.height());
        QVERIFY2(share >= 3, qPrintable(action->text() + u' ' + QString::number(share)));
    }
    QVERIFY(pictures >= 5);
}

void ContrastTest::disabledSliderDiffers()
{
    applyLook();
    const QColor around = QApplication::palette().color(QPalette::Window);
    const auto shareOfThumb = [&](bool enabled) {
        Slider slider(&window_->main());
        slider.resize(200, 30);
        slider.setEnabled(enabled);
        const QRect thumb = slider.thumb();
        const QImage image = drawn(slider);
        int strong = 0;
        for (int y = thumb.top() * kScale; y < (thumb.bottom() + 1) * kScale; ++y) {
            for (int x = thumb.left() * kScale; x < (thumb.right() + 1) * kScale; ++x)
                strong += contrastRatio(around, image.pixelColor(x, y)) >= kShapeContrast;
        }
        return strong * 100 / (thumb.width() * thumb.height() * kScale * kScale);
    };
    // The thumb of a slider that can be moved is a shape that stands out, the other one is not.
    QVERIFY2(shareOfThumb(true) >= 35, qPrintable(QString::number(shareOfThumb(true))));
    QVERIFY2(shareOfThumb(false) <= 20, qPrintable(QString::number(shareOfThumb(false))));

    auto* pages = window_->control<PagingSlider>("Slider1");
    QVERIFY(!pages->isEnabled());
    keepPicture(*pages, u"slider-off"_s);
    pages->setEnabled(true);
    keepPicture(*pages, u"slider-on"_s);
}

void ContrastTest::sliderMarksStandOut()
{
    applyLook();
    const QColor around = QApplication::palette().color(QPalette::Window);
    Slider slider(&window_->main());
    slider.setRange(1, 10);
    slider.setValue(5);
    slider.setTickInterval(1);
    slider.setTickPosition(QSlider::TicksBelow);
    slider.resize(200, slider.sizeHint().height());
    const QImage image = drawn(slider);
    const auto isStrong = [&](int x, int y) { return contrastRatio(around, image.pixelColor(x, y)) >= kShapeContrast; };
    // The row with the most separate strong shapes is one of tick marks.
    int marks = 0;
    for (int y = (slider.thumb().bottom() + 1) * kScale; y < image.height(); ++y) {
        int here = 0;
        for (int x = 1; x < image.width(); ++x)
            here += isStrong(x, y) && !isStrong(x - 1, y);
        marks = std::max(marks, here);
    }
    QCOMPARE(marks, 10);
    // Both edges of the groove, beside the thumb.
    int edges = 0;
    const int beside = (slider.thumb().right() + 8) * kScale;
    for (int y = 1; y < (slider.thumb().bottom() - 1) * kScale; ++y)
        edges += isStrong(beside, y) && !isStrong(beside, y - 1);
    QVERIFY2(edges >= 1, qPrintable(QString::number(edges)));
    keepPicture(slider, u"slider-marks"_s);
}

// The manual's text has the browser's own colours; its links have one colour for light and one for dark desktops.
void ContrastTest::manualIsReadable()
{
    QFile file(QStringLiteral(QUARRYNET_TEST_DATA "/../../docs/manual/manual.css"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QString sheet = QString::fromUtf8(file.readAll());
    const auto accent = [](const QString& rules) {
        return QColor(QRegularExpression(u"--accent: (#[0-9a-f]{6});"_s).match(rules).captured(1));
    };
    const qsizetype dark = sheet.indexOf(u"prefers-color-scheme: dark"_s);
    QVERIFY(dark > 0);
    QVERIFY(contrastRatio(accent(sheet.left(dark)), Qt::white) >= kTextContrast);
    QVERIFY(contrastRatio(accent(sheet.mid(dark)), QColor(0x30, 0x30, 0x30)) >= kTextContrast);
}

QTEST_MAIN(ContrastTest)
#include "contrast_test.moc"
