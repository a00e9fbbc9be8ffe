#include <QAbstractTextDocumentLayout>
#include <QHelpEvent>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextBrowser>
#include <QToolTip>
#include <QtTest>

#include "PictureServer.h"
#include "picture_places.h"
#include "platform/HtmlView.h"
#include "platform/contrast.h"

using namespace Qt::Literals::StringLiterals;
using quarrynet::GalleryPicture;
using quarrynet::HtmlView;

// None of them is a colour of the desktop.
static const QList<Qt::GlobalColor> kColors = {Qt::red,     Qt::green,  Qt::darkMagenta, Qt::cyan,       Qt::magenta,
                                               Qt::darkRed, Qt::yellow, Qt::darkCyan,    Qt::darkYellow, Qt::darkGreen};

/// Tests the gallery's grid in the view without a browser engine.
class GalleryViewTest final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { view_.reset(); }

    void asManyColumnsAsFit_data();
    void asManyColumnsAsFit();
    void rightToLeftFillsFromTheRight();
    void arrowKeysGoFromPictureToPicture();
    void sidesSwapFromRightToLeft();
    void tabAndArrowsShareOnePlace();
    void enterOpensTheChosenPicture();
    void keysWithoutAGalleryDoNothing();
    void chosenPictureScrollsIntoView();
    void pictureThatDoesNotLoadHasAFrame();
    void tipShowsTheWholeAddress();
    void tipShowsTheNote();
    void tipIsNotReadAsHtml();
    void longCaptionIsCutUntilItsPictureIsChosen();
    void zoomKeys();
    void wheelZoomsWithControlOnly();
    void zoomHasBounds();
    void colorsFollowTheDesktop();
    void darkDrawingHasALightPlate();
    void fontFollowsTheDesktop();

private:
    void open(int count);
    void open(const std::vector<GalleryPicture>& gallery);
    QTextBrowser& plain() { return *view_->findChild<QTextBrowser*>(); }
    QImage shot() { return view_->grab().toImage(); }
    QRect place(int number) { return placeOf(shot(), kColors[number]); }
    void press(int key, Qt::KeyboardModifiers modifiers = {}) { QTest::keyClick(&plain(), Qt::Key(key), modifiers); }
    int chosen();
    void turnWheel(int by, Qt::KeyboardModifiers modifiers);
    QString tipAt(const QPoint& point);

    std::unique_ptr<PictureServer> server_;
    std::unique_ptr<HtmlView> view_;
};

void GalleryViewTest::init()
{
    server_ = std::make_unique<PictureServer>();
    view_ = std::make_unique<HtmlView>();
    view_->setEngineFolders({});
    view_->resize(576, 700);
    // The grid depends on the font's size, which differs by platform.
    QFont font = view_->font();
    font.setPointSizeF(12.0 * 72 / view_->logicalDpiY());
    view_->setFont(font);
    QCOMPARE(QFontInfo(font).pixelSize(), 12);
}

void GalleryViewTest::open(const std::vector<GalleryPicture>& gallery)
{
    view_->navigate(u"new.html"_s, gallery);
    view_->show();
    QTRY_VERIFY(view_->findChild<QTextBrowser*>());
    view_->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(view_.get()));
    plain().setFocus();
}

void GalleryViewTest::open(int count)
{
    server_->requests.clear();
    std::vector<GalleryPicture> gallery;
    for (int i = 0; i < count; ++i) {
        const QString target = u"/%1"_s.arg(i);
        server_->answerWithPicture(target.toLatin1(), kColors[i]);
        gallery.push_back({"host/" + std::to_string(i), server_->address(target).toStdString()});
    }
    open(gallery);
    QTRY_COMPARE(server_->requests.size(), count);
    QTRY_VERIFY(!place(count - 1).isEmpty() || view_->height() < 300);
}

// Returns the picture that the Enter key would open, or -1.
int GalleryViewTest::chosen()
{
    const QTextCursor cursor = plain().textCursor();
    return cursor.hasSelection() ? plain().document()->findBlock(cursor.selectionStart()).blockNumber() : -1;
}

void GalleryViewTest::asManyColumnsAsFit_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("columns");
    QTest::addColumn<int>("count"); // as many as have room in a window no higher than a screen
    QTest::newRow("narrow") << 150 << 1 << 4;
    QTest::newRow("two") << 350 << 2 << 8;
    QTest::newRow("design") << 576 << 3 << 8;
    QTest::newRow("wide") << 1200 << 7 << 8;
}

void GalleryViewTest::asManyColumnsAsFit()
{
    QFETCH(int, width);
    QFETCH(int, columns);
    QFETCH(int, count);
    view_->resize(width, view_->height());
    open(count);
    const QImage image = shot();
    for (int i = 1; i < count; ++i) {
        const QRect before = placeOf(image, kColors[i - 1]);
        const QRect here = placeOf(image, kColors[i]);
        if (i % columns == 0)
            QVERIFY2(here.top() > before.bottom(), qPrintable(QString::number(i)));
        else
            QVERIFY2(here.left() > before.right() && here.top() == before.top(), qPrintable(QString::number(i)));
    }
    QVERIFY(!plain().horizontalScrollBar()->isVisible());
}

void GalleryViewTest::rightToLeftFillsFromTheRight()
{
    view_->setLayoutDirection(Qt::RightToLeft);
    open(2);
    QVERIFY(place(1).right() < place(0).left());
}

void GalleryViewTest::arrowKeysGoFromPictureToPicture()
{
    open(8); // in three columns
    QCOMPARE(chosen(), -1);
    const std::vector<std::pair<Qt::Key, int>> steps = {
        {Qt::Key_Right, 0}, {Qt::Key_Right, 1}, {Qt::Key_Down, 4},  {Qt::Key_Left, 3}, {Qt::Key_Left, 2},
        {Qt::Key_Down, 5},  {Qt::Key_Down, 7},  {Qt::Key_Down, 7},  {Qt::Key_Up, 4},   {Qt::Key_Up, 1},
        {Qt::Key_Up, 1},    {Qt::Key_End, 7},   {Qt::Key_Right, 7}, {Qt::Key_Home, 0}, {Qt::Key_Left, 0}};
    const QColor focus = quarrynet::readableOn(view_->palette().color(QPalette::Base),
                                               view_->palette().color(QPalette::Highlight), quarrynet::kShapeContrast);
    for (const auto& [key, expected] : steps) {
        press(key);
        QCOMPARE(chosen(), expected);
        const QImage image = shot();
        for (int i = 0; i < 8; ++i)
            QCOMPARE(isFramed(image, placeOf(image, kColors[i]), focus), i == expected);
    }
}

void GalleryViewTest::sidesSwapFromRightToLeft()
{
    view_->setLayoutDirection(Qt::RightToLeft);
    open(3);
    press(Qt::Key_Left);
    press(Qt::Key_Left);
    QCOMPARE(chosen(), 1);
    press(Qt::Key_Right);
    QCOMPARE(chosen(), 0);
}

void GalleryViewTest::tabAndArrowsShareOnePlace()
{
    open(8);
    press(Qt::Key_Tab);
    press(Qt::Key_Tab);
    QCOMPARE(chosen(), 1);
    press(Qt::Key_Right);
    QCOMPARE(chosen(), 2);
    press(Qt::Key_Tab);
    QCOMPARE(chosen(), 3);
    press(Qt::Key_Tab, Qt::ShiftModifier);
    press(Qt::Key_Left);
    QCOMPARE(chosen(), 1);
}

void GalleryViewTest::enterOpensTheChosenPicture()
{
    open(4);
    std::vector<std::string> opened;
    connect(view_.get(), &HtmlView::linkActivated, this, [&opened](const std::string& a) { opened.push_back(a); });
    press(Qt::Key_Return);
    QVERIFY(opened.empty());
    press(Qt::Key_End);
    press(Qt::Key_Return);
    press(Qt::Key_Left);
    press(Qt::Key_Enter);
    QCOMPARE(opened, (std::vector<std::string>{"http://host/3", "http://host/2"}));
    QTest::mouseClick(plain().viewport(), Qt::LeftButton, {}, place(1).center());
    QCOMPARE(opened.back(), std::string("http://host/1"));
}

void GalleryViewTest::keysWithoutAGalleryDoNothing()
{
    open(std::vector<GalleryPicture>{});
    for (const Qt::Key key : {Qt::Key_Left, Qt::Key_Right, Qt::Key_Up, Qt::Key_Down, Qt::Key_Home, Qt::Key_End}) {
        press(key);
        QCOMPARE(chosen(), -1);
    }
}

void GalleryViewTest::chosenPictureScrollsIntoView()
{
    view_->resize(576, 206);
    open(10);
    QVERIFY(plain().verticalScrollBar()->isVisible());
    press(Qt::Key_End);
    QTRY_VERIFY(!place(9).isEmpty());
    QCOMPARE(place(9).size(), QSize(90, 60));
    press(Qt::Key_Home);
    QTRY_COMPARE(place(0).size(), QSize(90, 60));
    QVERIFY(place(9).isEmpty());
}

void GalleryViewTest::pictureThatDoesNotLoadHasAFrame()
{
    open({{"host/x.jpg", server_->address(u"/none"_s).toStdString()}});
    const QImage waiting = shot();
    QTRY_COMPARE(server_->requests.size(), 1);
    QTRY_VERIFY(shot() != waiting);
    const QRect frame =
        placeOf(shot(), quarrynet::readableOn(view_->palette().color(QPalette::Base),
                                              view_->palette().color(QPalette::Mid), quarrynet::kShapeContrast));
    QVERIFY2(frame.width() >= 90 && frame.height() >= 60, qPrintable(QString::number(frame.width())));
}

QString GalleryViewTest::tipAt(const QPoint& point)
{
    QToolTip::hideText();
    if (!QTest::qWaitFor([] { return !QToolTip::isVisible(); }))
        return u"the tip before"_s;
    QHelpEvent event(QEvent::ToolTip, point, plain().viewport()->mapToGlobal(point));
    QCoreApplication::sendEvent(plain().viewport(), &event);
    return QToolTip::isVisible() ? QToolTip::text() : QString();
}

void GalleryViewTest::tipShowsTheWholeAddress()
{
    server_->answerWithPicture("/a", Qt::red);
    const std::string path(300, 'x');
    open({{"host/" + path, server_->address(u"/a"_s).toStdString()}});
    QTRY_VERIFY(!place(0).isEmpty());
    QString tip = tipAt(place(0).center());
    QCOMPARE(tip.remove(QRegularExpression(u"<[^>]*>"_s)), u"http://host/"_s + QString::fromStdString(path));
    QVERIFY(tipAt({5, 600}).isEmpty());
}

void GalleryViewTest::tipShowsTheNote()
{
    server_->answerWithPicture("/a", Qt::red);
    open({{"host/a", server_->address(u"/a"_s).toStdString(), u"<640 x 480>"_s}});
    QTRY_VERIFY(!place(0).isEmpty());
    const QString tip = tipAt(place(0).center());
    QVERIFY2(tip.contains(u"http://host/a<br>&lt;640 x 480&gt;<"_s), qPrintable(tip));
}

void GalleryViewTest::tipIsNotReadAsHtml()
{
    server_->answerWithPicture("/a", Qt::red);
    open({{"host/<img src=x>&amp;<b>", server_->address(u"/a"_s).toStdString()}});
    QTRY_VERIFY(!place(0).isEmpty());
    QVERIFY(tipAt(place(0).center()).contains(u"http://host/&lt;img src=x&gt;&amp;&lt;b&gt;"_s));
}

void GalleryViewTest::longCaptionIsCutUntilItsPictureIsChosen()
{
    open({{"host/" + std::string(1000, 'x'), {}}, {"host/1", {}}});
    const auto height = [this] {
        return plain().document()->documentLayout()->blockBoundingRect(plain().document()->firstBlock()).height();
    };
    const double cut = height();
    QVERIFY2(cut < 300, qPrintable(QString::number(cut)));
    press(Qt::Key_Home);
    QVERIFY(height() > 2 * cut);
    press(Qt::Key_End);
    QCOMPARE(height(), cut);
}

void GalleryViewTest::zoomKeys()
{
    open(2);
    QAction action;
    action.setShortcuts({QKeySequence(Qt::CTRL | Qt::Key_Plus), QKeySequence(Qt::CTRL | Qt::Key_0)});
    view_->addAction(&action);
    QSignalSpy triggered(&action, &QAction::triggered);
    const int line = plain().document()->defaultFont().pointSize();
    press(Qt::Key_Plus, Qt::ControlModifier);
    QCOMPARE(view_->property("zoom").toInt(), 125);
    press(Qt::Key_Equal, Qt::ControlModifier);
    QCOMPARE(view_->property("zoom").toInt(), 150);
    QCOMPARE(place(0).size(), QSize(135, 90));
    QVERIFY(plain().document()->defaultFont().pointSize() > line);
    press(Qt::Key_0, Qt::ControlModifier);
    QCOMPARE(place(0).size(), QSize(90, 60));
    press(Qt::Key_Minus, Qt::ControlModifier);
    QCOMPARE(view_->property("zoom").toInt(), 80);
    QVERIFY(place(0).width() < 90);
    open(3); // the next gallery has the same zoom
    QVERIFY(place(2).width() < 90);
    QCOMPARE(triggered.size(), 0);
    press(Qt::Key_Plus);
    QCOMPARE(view_->property("zoom").toInt(), 80);
}

void GalleryViewTest::turnWheel(int by, Qt::KeyboardModifiers modifiers)
{
    const QPointF at = plain().viewport()->rect().center();
    QWheelEvent event(at, plain().viewport()->mapToGlobal(at), {}, {0, by}, Qt::NoButton, modifiers, Qt::NoScrollPhase,
                      false);
    QCoreApplication::sendEvent(plain().viewport(), &event);
}

void GalleryViewTest::wheelZoomsWithControlOnly()
{
    view_->resize(576, 206);
    open(10);
    turnWheel(-120, {});
    QCOMPARE(view_->zoom(), 100);
    QVERIFY(plain().verticalScrollBar()->value() > 0);
    turnWheel(120, Qt::ControlModifier);
    QCOMPARE(view_->zoom(), 125);
    for (int i = 0; i < 4; ++i) // a touchpad's small movements
        turnWheel(-30, Qt::ControlModifier);
    QCOMPARE(view_->zoom(), 100);
}

void GalleryViewTest::zoomHasBounds()
{
    open(2);
    for (int i = 0; i < 50; ++i)
        press(Qt::Key_Plus, Qt::ControlModifier);
    QCOMPARE(view_->zoom(), 300);
    for (int i = 0; i < 50; ++i)
        press(Qt::Key_Minus, Qt::ControlModifier);
    QCOMPARE(view_->zoom(), 50);
}

void GalleryViewTest::colorsFollowTheDesktop()
{
    open(1);
    QPalette dark = view_->palette();
    dark.setColor(QPalette::Base, QColor(30, 30, 30));
    dark.setColor(QPalette::Text, Qt::white);
    dark.setColor(QPalette::Link, Qt::blue); // as some dark desktops leave it
    view_->setPalette(dark);
    const QImage image = shot();
    QCOMPARE(image.pixelColor(3, image.height() - 3), QColor(30, 30, 30));
    const QColor link = quarrynet::readableOn(QColor(30, 30, 30), Qt::blue);
    QVERIFY(quarrynet::contrastRatio(link, QColor(30, 30, 30)) >= quarrynet::kTextContrast);
    QVERIFY(!placeOf(image, link).isEmpty());
    QCOMPARE(server_->requests.size(), 1); // not fetched again
}

void GalleryViewTest::darkDrawingHasALightPlate()
{
    QImage drawing(40, 40, QImage::Format_ARGB32);
    drawing.fill(Qt::transparent);
    drawing.setPixelColor(20, 20, QColor(1, 2, 3));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QVERIFY(drawing.save(&buffer, "PNG"));
    server_->answer("/a", "HTTP/1.1 200 OK\r\n\r\n" + bytes);
    QPalette dark = view_->palette();
    dark.setColor(QPalette::Base, QColor(30, 30, 30));
    dark.setColor(QPalette::Text, Qt::white);
    view_->setPalette(dark);
    open({{"host/x", server_->address(u"/a"_s).toStdString()}});
    QTRY_VERIFY(!placeOf(shot(), QColor(1, 2, 3)).isEmpty());
    const QPoint at = placeOf(shot(), QColor(1, 2, 3)).center();
    QVERIFY(quarrynet::contrastRatio(shot().pixelColor(at - QPoint(3, 3)), Qt::black) > quarrynet::kTextContrast);
}

void GalleryViewTest::fontFollowsTheDesktop()
{
    open(1);
    QFont large = view_->font();
    large.setPointSize(20);
    view_->setFont(large);
    QCOMPARE(plain().document()->defaultFont().pointSize(), 20);
}

QTEST_MAIN(GalleryViewTest)
#include "gallery_view_test.moc"
