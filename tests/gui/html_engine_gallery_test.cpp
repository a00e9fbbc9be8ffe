#include <string>
#include <vector>

#include <QtTest>

#include "EngineFixture.h"
#include "common/local_pages.h"
#include "picture_places.h"
#include "platform/contrast.h"
#include "search/image/gallery.h"

using namespace Qt::Literals::StringLiterals;

// None of them is a colour of the desktop.
static const QList<Qt::GlobalColor> kColors = {Qt::red,     Qt::green,   Qt::darkMagenta, Qt::cyan,
                                               Qt::magenta, Qt::darkRed, Qt::yellow,      Qt::darkCyan};

/// Tests the gallery's grid in the browser view. The page is the one that the image search writes; its scripts do not
/// run.
class HtmlEngineGalleryTest final : public EngineFixture
{
    Q_OBJECT

private slots:
    void asManyColumnsAsFit_data();
    void asManyColumnsAsFit();
    void pageKeepsItsBytes();
    void arrowKeysGoFromPictureToPicture();
    void chosenPictureIsInViewWithItsFrame();
    void tallCellShowsItsTop();
    void arrowKeysBelongToAField();
    void enterOpensTheChosenPicture();
    void pictureThatDoesNotLoadHasAFrame();
    void hostileCaptionsStayInTheirCells();
    void tipsDoNotChangeTheDirection();
    void tipsShowTheNotes();
    void zoomKeysAndWheel();
    void colorsFollowTheDesktop();
    void otherPagesKeepTheirColors();

private:
    void openGallery(int count) { openGalleryUntil(count, count - 1); }
    void openGalleryPartly(int count) { openGalleryUntil(count, 0); } // in a view that does not show all
    void openGalleryUntil(int count, int shown);
    void openGallery(const std::vector<std::string>& addresses, const std::vector<std::string>& thumbnails);
    QImage shot() { return window_->grab().toImage(); }
    QRect place(int number) { return placeOf(shot(), kColors[number]); }
    QColor focusColor() const;
    bool showsTip(int number, const QString& tip, QPoint offset = {});
    int framed();
    bool isFrameLine(const QImage& image, int y) const;
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) { QTest::keyClick(keys(), key, modifiers); }
    QWidget* keys() const { return engine()->focusProxy(); }
    void useDarkColors();
};

void HtmlEngineGalleryTest::openGallery(const std::vector<std::string>& addresses,
                                        const std::vector<std::string>& thumbnails)
{
    write(u"images.html"_s, QByteArray::fromStdString(quarrynet::galleryPage(addresses, thumbnails)));
    open(QByteArray::fromStdString(quarrynet::galleryFramePage()), u"new.html"_s);
}

// Opens a gallery and waits until the picture `shown` is drawn.
void HtmlEngineGalleryTest::openGalleryUntil(int count, int shown)
{
    std::vector<std::string> addresses;
    std::vector<std::string> thumbnails;
    for (int i = 0; i < count; ++i) {
        const QByteArray target = "/" + QByteArray::number(i);
        server_->answerWithPicture(target, kColors[i]);
        addresses.push_back("host/" + std::to_string(i));
        thumbnails.push_back(address(target.constData()).toStdString());
    }
    openGallery(addresses, thumbnails);
    QTRY_VERIFY_WITH_TIMEOUT(!place(shown).isEmpty(), 30000);
    keys()->setFocus();
}

QColor HtmlEngineGalleryTest::focusColor() const
{
    return quarrynet::readableOn(view_->palette().color(QPalette::Base), view_->palette().color(QPalette::Highlight),
                                 quarrynet::kShapeContrast);
}

// Waits until the engine shows this tip at a picture, or at this offset from it. The engine looks for a tip after the
// mouse has moved, and has none before it has found one. While a page loads, it may need another move.
bool HtmlEngineGalleryTest::showsTip(int number, const QString& tip, QPoint offset)
{
    for (int i = 0; i < 30; ++i) {
        const QPoint at = place(number).center() + offset;
        QTest::mouseMove(keys(), at - QPoint(1 + i % 2, 1));
        QTest::mouseMove(keys(), at);
        if (QTest::qWaitFor([&] { return engine()->toolTip() == tip; }, 1000))
            return true;
    }
    return false;
}

// Returns the picture with the focus frame, or -1.
int HtmlEngineGalleryTest::framed()
{
    const QImage image = shot();
    for (int i = 0; i < kColors.size(); ++i) {
        if (const QRect inner = placeOf(image, kColors[i]); !inner.isEmpty() && isFramed(image, inner, focusColor()))
            return i;
    }
    return -1;
}

// Returns whether the upper or the lower side of the focus frame is at `y`. Text of a link may have its colour, but no
// such line.
bool HtmlEngineGalleryTest::isFrameLine(const QImage& image, int y) const
{
    const QRect frame = placeOf(image, focusColor());
    int length = 0;
    for (int x = frame.left(); x <= frame.right(); ++x)
        length += image.pixelColor(x, y) == focusColor();
    return length >= frame.width() - 8;
}

void HtmlEngineGalleryTest::useDarkColors()
{
    QPalette dark = view_->palette();
    dark.setColor(QPalette::Base, QColor(30, 30, 30));
    dark.setColor(QPalette::Text, Qt::white);
    dark.setColor(QPalette::Link, Qt::blue); // as some dark desktops leave it
    view_->setPalette(dark);
}

void HtmlEngineGalleryTest::asManyColumnsAsFit_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("columns");
    QTest::newRow("narrow") << 160 << 1;
    QTest::newRow("two") << 350 << 2;
    QTest::newRow("design") << 576 << 3;
    QTest::newRow("wide") << 1200 << 7;
}

void HtmlEngineGalleryTest::asManyColumnsAsFit()
{
    QFETCH(int, width);
    QFETCH(int, columns);
    window_->resize(width, 1800);
    openGallery(8);
    // The page is drawn while its pictures arrive.
    const auto isGrid = [&] {
        const QImage image = shot();
        for (int i = 1; i < 8; ++i) {
            const QRect before = placeOf(image, kColors[i - 1]);
            const QRect here = placeOf(image, kColors[i]);
            const bool beside = here.left() > before.right() && here.top() == before.top();
            if (i % columns == 0 ? here.top() <= before.bottom() : !beside)
                return false;
        }
        return true;
    };
    QTRY_VERIFY_WITH_TIMEOUT(isGrid(), 30000);
}

void HtmlEngineGalleryTest::pageKeepsItsBytes()
{
    openGallery(2);
    QFile page(path(u"images.html"_s));
    QVERIFY(page.open(QIODevice::ReadOnly));
    QCOMPARE(page.readAll(), QByteArray::fromStdString(quarrynet::galleryPage(
                                 {"host/0", "host/1"}, {address("/0").toStdString(), address("/1").toStdString()})));
}

void HtmlEngineGalleryTest::arrowKeysGoFromPictureToPicture()
{
    window_->resize(576, 700);
    openGallery(8); // in three columns
    QCOMPARE(framed(), -1);
    const std::vector<std::pair<Qt::Key, int>> steps = {
        {Qt::Key_Right, 0}, {Qt::Key_Right, 1}, {Qt::Key_Down, 4}, {Qt::Key_Left, 3},  {Qt::Key_Left, 2},
        {Qt::Key_Down, 5},  {Qt::Key_Down, 7},  {Qt::Key_Up, 4},   {Qt::Key_Home, 0},  {Qt::Key_End, 7},
        {Qt::Key_Left, 6},  {Qt::Key_Up, 3},    {Qt::Key_Tab, 4},  {Qt::Key_Right, 5}, {Qt::Key_Up, 2}};
    for (const auto& [key, expected] : steps) {
        press(key);
        QTRY_COMPARE_WITH_TIMEOUT(framed(), expected, 30000);
    }
}

void HtmlEngineGalleryTest::chosenPictureIsInViewWithItsFrame()
{
    window_->resize(576, 260); // for fewer rows than there are
    openGalleryPartly(8);
    // Whether all four sides of the frame are in the view.
    const auto isWhole = [this](int number) {
        const QImage image = shot();
        const QRect inner = placeOf(image, kColors[number]);
        const QRect frame = placeOf(image, focusColor());
        return !inner.isEmpty() && frame.contains(inner.adjusted(-1, -1, 1, 1)) && isFrameLine(image, frame.top()) &&
               isFrameLine(image, frame.top() + 1) && isFrameLine(image, frame.bottom()) &&
               isFrameLine(image, frame.bottom() - 1);
    };
    press(Qt::Key_Home);
    QTRY_VERIFY_WITH_TIMEOUT(isWhole(0), 30000);
    press(Qt::Key_End);
    QTRY_VERIFY_WITH_TIMEOUT(isWhole(7), 30000);
    press(Qt::Key_Up);
    QTRY_VERIFY_WITH_TIMEOUT(isWhole(4), 30000);
    press(Qt::Key_Up);
    QTRY_VERIFY_WITH_TIMEOUT(isWhole(1), 30000);
    press(Qt::Key_End);
    QTRY_VERIFY_WITH_TIMEOUT(isWhole(7), 30000);
    press(Qt::Key_Plus, Qt::ControlModifier);
    QTRY_VERIFY_WITH_TIMEOUT(isWhole(7), 30000);
    press(Qt::Key_Plus, Qt::ControlModifier);
    QTRY_VERIFY_WITH_TIMEOUT(isWhole(7), 30000);
}

// A cell that is taller than the view shows its top.
void HtmlEngineGalleryTest::tallCellShowsItsTop()
{
    window_->resize(576, 150);
    openGalleryPartly(8);
    press(Qt::Key_Plus, Qt::ControlModifier);
    press(Qt::Key_Plus, Qt::ControlModifier);
    press(Qt::Key_End);
    // The frame's sides are in the view wherever the cell is; its upper line is only if the top is.
    const auto showsTop = [this](int number) {
        const QImage image = shot();
        const QRect frame = placeOf(image, focusColor());
        const QRect inner = placeOf(image, kColors[number]);
        return !inner.isEmpty() && frame.top() <= 3 && isFrameLine(image, frame.top()) &&
               inner.top() > frame.top() + 1 && !isFrameLine(image, frame.bottom());
    };
    QTRY_VERIFY_WITH_TIMEOUT(showsTop(7), 30000);
    press(Qt::Key_Home); // from below, where the nearest edge of the cell is its lower one
    QTRY_VERIFY_WITH_TIMEOUT(showsTop(0), 30000);
}

void HtmlEngineGalleryTest::arrowKeysBelongToAField()
{
    // A hostile address adds a field.
    open(QByteArray::fromStdString(
        quarrynet::galleryPage({"host/\"><input autofocus value=x><a href=\"", "host/1"}, {"", ""})));
    QTRY_VERIFY_WITH_TIMEOUT(keys(), 30000);
    keys()->setFocus();
    QTRY_VERIFY_WITH_TIMEOUT(keys()->inputMethodQuery(Qt::ImEnabled).toBool(), 30000);
    const auto text = [this] { return keys()->inputMethodQuery(Qt::ImSurroundingText).toString(); };
    press(Qt::Key_End);
    press(Qt::Key_Y);
    QTRY_COMPARE_WITH_TIMEOUT(text(), u"xy"_s, 30000);
    press(Qt::Key_Home);
    press(Qt::Key_Right);
    press(Qt::Key_Z);
    QTRY_COMPARE_WITH_TIMEOUT(text(), u"xzy"_s, 30000);
}

void HtmlEngineGalleryTest::enterOpensTheChosenPicture()
{
    window_->resize(576, 500);
    openGallery(4);
    press(Qt::Key_End);
    QTRY_COMPARE_WITH_TIMEOUT(framed(), 3, 30000);
    press(Qt::Key_Return);
    QTRY_COMPARE_WITH_TIMEOUT(links_, std::vector<std::string>{"http://host/3"}, 30000);
    press(Qt::Key_Left);
    press(Qt::Key_Left);
    QTRY_COMPARE_WITH_TIMEOUT(framed(), 1, 30000);
    press(Qt::Key_Enter);
    QTRY_COMPARE_WITH_TIMEOUT(links_.size(), std::size_t(2), 30000);
    QCOMPARE(links_.back(), std::string("http://host/1"));
}

void HtmlEngineGalleryTest::pictureThatDoesNotLoadHasAFrame()
{
    openGallery({"host/x.jpg"}, {address("/none").toStdString()});
    const QColor line = quarrynet::readableOn(view_->palette().color(QPalette::Base),
                                              view_->palette().color(QPalette::Mid), quarrynet::kShapeContrast);
    // Solid until the server has answered, then dashed.
    const auto hasFrame = [&](bool dashed) {
        const QImage image = shot();
        const QRect frame = placeOf(image, line);
        const bool whole = countOf(image, line) >= 2 * (frame.width() + frame.height()) - 4;
        return frame.width() >= 90 && frame.height() >= 60 && whole != dashed;
    };
    QTRY_COMPARE_WITH_TIMEOUT(server_->requests.size(), 1, 30000);
    QTRY_VERIFY_WITH_TIMEOUT(hasFrame(true), 30000);
    if (qEnvironmentVariableIsSet("QUARRYNET_SCREENSHOTS"))
        window_->grab().save(qEnvironmentVariable("QUARRYNET_SCREENSHOTS") + u"/engine_missing.png"_s);
}

void HtmlEngineGalleryTest::hostileCaptionsStayInTheirCells()
{
    window_->resize(576, 400);
    server_->answerWithPicture("/0", Qt::red);
    server_->answerWithPicture("/1", Qt::green);
    openGallery({"host/" + std::string(4000, 'x'), "host/<table border=9><tr><td><h1>x<p>y"},
                {address("/0").toStdString(), address("/1").toStdString()});
    QTRY_VERIFY_WITH_TIMEOUT(!place(0).isEmpty() && !place(1).isEmpty(), 30000);
    QTRY_COMPARE_WITH_TIMEOUT(place(1).top(), place(0).top(), 30000);
    QTRY_COMPARE_WITH_TIMEOUT(place(0).size(), QSize(90, 60), 30000);
}

// The marks used to be replaced in the texts of a page but not in its attributes, of which one is the tool tip.
void HtmlEngineGalleryTest::tipsDoNotChangeTheDirection()
{
    server_->answerWithPicture("/0", Qt::red);
    openGallery({"host/a&#8238;gpj.exe"}, {address("/0").toStdString()});
    QTRY_VERIFY_WITH_TIMEOUT(!place(0).isEmpty(), 30000);
    QVERIFY(showsTip(0, u"http://host/a\ufffdgpj.exe"_s));

    openGallery({"host/<img src=x title='b&#x2067;gpj.exe' style='width:100px;height:100px'>"},
                {address("/0").toStdString()});
    QVERIFY(showsTip(0, u"b\ufffdgpj.exe"_s, {0, 120}));
}

void HtmlEngineGalleryTest::tipsShowTheNotes()
{
    server_->answerWithPicture("/0", kColors[0]);
    server_->answerWithPicture("/1", kColors[1]);
    const std::vector<std::string> thumbnails = {address("/0").toStdString(), address("/1").toStdString()};
    write(u"images.html"_s, QByteArray::fromStdString(quarrynet::galleryPage({"host/0", "host/1"}, thumbnails)));
    open(QByteArray::fromStdString(quarrynet::galleryFramePage()), u"new.html"_s,
         {{"host/0", thumbnails[0], {}}, {"host/1", thumbnails[1], u"640 x 480 \"</script>"_s}});
    QTRY_VERIFY_WITH_TIMEOUT(!place(0).isEmpty() && !place(1).isEmpty(), 30000);
    QVERIFY(showsTip(1, u"http://host/1\n640 x 480 \"</script>"_s));
    QVERIFY(showsTip(0, u"http://host/0"_s));
    openGallery(2); // without notes
    QVERIFY(showsTip(1, u"http://host/1"_s));
}

void HtmlEngineGalleryTest::zoomKeysAndWheel()
{
    window_->resize(576, 500);
    openGallery(2);
    press(Qt::Key_Plus, Qt::ControlModifier);
    QCOMPARE(view_->zoom(), 125);
    press(Qt::Key_Plus, Qt::ControlModifier);
    QTRY_COMPARE_WITH_TIMEOUT(place(0).size(), QSize(135, 90), 30000);
    openGallery(3); // the next page has the same zoom
    QTRY_COMPARE_WITH_TIMEOUT(place(0).size(), QSize(135, 90), 30000);
    press(Qt::Key_0, Qt::ControlModifier);
    QTRY_COMPARE_WITH_TIMEOUT(place(0).size(), QSize(90, 60), 30000);
    const QPointF at = keys()->rect().center();
    QWheelEvent turn(at, keys()->mapToGlobal(at), {}, {0, -120}, Qt::NoButton, Qt::ControlModifier, Qt::NoScrollPhase,
                     false);
    QCoreApplication::sendEvent(keys(), &turn);
    QCOMPARE(view_->zoom(), 80);
    QTRY_COMPARE_WITH_TIMEOUT(place(0).width(), 72, 30000);
}

void HtmlEngineGalleryTest::colorsFollowTheDesktop()
{
    window_->resize(576, 400);
    openGallery(2);
    QVERIFY(!placeOf(shot(), Qt::white).isEmpty());
    useDarkColors();
    const QColor link = quarrynet::readableOn(QColor(30, 30, 30), Qt::blue);
    const auto isDark = [&] {
        const QImage image = shot();
        return image.pixelColor(2, 390) == QColor(30, 30, 30) && placeOf(image, Qt::white).isEmpty() &&
               !placeOf(image, link).isEmpty();
    };
    QTRY_VERIFY_WITH_TIMEOUT(isDark(), 30000);
    QCOMPARE(server_->requests.size(), 2); // the page was not loaded again
    openGallery(3);                        // the next page begins in these colours
    QTRY_VERIFY_WITH_TIMEOUT(isDark(), 30000);
    if (qEnvironmentVariableIsSet("QUARRYNET_SCREENSHOTS"))
        window_->grab().save(qEnvironmentVariable("QUARRYNET_SCREENSHOTS") + u"/engine_dark.png"_s);
}

void HtmlEngineGalleryTest::otherPagesKeepTheirColors()
{
    useDarkColors();
    open("<title>shown</title><body bgcolor=#00ffff>text");
    QVERIFY(titleBecomes(u"shown"_s));
    QTRY_VERIFY_WITH_TIMEOUT(showsColor(Qt::cyan), 30000);
}

int main(int argc, char** argv)
{
    return EngineFixture::run<HtmlEngineGalleryTest>(argc, argv);
}

#include "html_engine_gallery_test.moc"
