#include "EngineFixture.h"

#include <chrono>

#include <QTextBrowser>

#include "ordinary_user.h"

using namespace Qt::Literals::StringLiterals;
using quarrynet::HtmlView;

QString EngineFixture::unableToRun(char** argv)
{
    return ordinary_user::become(argv);
}

void EngineFixture::initTestCase()
{
    if (!unable_.isEmpty())
        QSKIP(qPrintable(unable_));
    if (!ordinary_user::mayMakeNamespaces())
        QSKIP("This system does not let this user create the namespaces that the engine's sandbox needs");
    QStandardPaths::setTestModeEnabled(true);
    for (const auto& [name, value] : kHostileEnvironment)
        qputenv(name, value);
}

void EngineFixture::init()
{
    folder_ = std::make_unique<QTemporaryDir>();
    server_ = std::make_unique<PictureServer>();
    window_ = std::make_unique<QMainWindow>();
    view_ = new HtmlView(window_.get());
    window_->setCentralWidget(view_);
    window_->resize(576, 320);
    links_.clear();
    connect(view_, &HtmlView::linkActivated, this, [this](const std::string& link) { links_.push_back(link); });
}

void EngineFixture::cleanup()
{
    window_.reset();
}

void EngineFixture::write(const QString& name, const QByteArray& content)
{
    QFile file(path(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
}

void EngineFixture::open(const QByteArray& page, const QString& name,
                         const std::vector<quarrynet::GalleryPicture>& gallery)
{
    write(name, page);
    view_->navigate(path(name), gallery);
    window_->show();
    QTRY_VERIFY_WITH_TIMEOUT(view_->hasBrowser(), 30000);
}

QWidget* EngineFixture::engine() const
{
    for (QWidget* child : view_->findChildren<QWidget*>()) {
        if (child->inherits("QWebEngineView"))
            return child;
    }
    return nullptr;
}

qint64 EngineFixture::drawingProcess() const
{
    for (const QObject* child : engine()->findChildren<QObject*>()) {
        if (child->inherits("QWebEnginePage"))
            return child->property("renderProcessPid").toLongLong();
    }
    return 0;
}

bool EngineFixture::titleBecomes(const QString& expected)
{
    // Runs an event loop, because the engine works in this thread, and polling would let it do so only occasionally.
    QEventLoop loop;
    QTimer look;
    connect(&look, &QTimer::timeout, &loop, [&] {
        if (title() == expected)
            loop.quit();
    });
    look.start(std::chrono::milliseconds(10));
    QTimer::singleShot(std::chrono::seconds(30), &loop, &QEventLoop::quit);
    if (title() != expected)
        loop.exec();
    const bool met = title() == expected;
    if (!met)
        qWarning() << "The title is" << title() << "and not" << expected;
    return met;
}

bool EngineFixture::showsColor(Qt::GlobalColor color)
{
    const QImage image = window_->grab().toImage();
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y) == QColor(color))
                return true;
        }
    }
    return false;
}

// Waits until the link of kPageWithALink is drawn and reacts.
void EngineFixture::chooseTheLink()
{
    QTRY_VERIFY_WITH_TIMEOUT((click({100, 50}), !links_.empty()), 30000);
    QCOMPARE(links_[0], std::string("http://host/"));
}

void EngineFixture::click(const QPoint& at, Qt::MouseButton button)
{
    QTest::mouseClick(engine()->focusProxy(), button, {}, at);
}

// Expects that the plain view replaces the engine and shows the gallery and the reason.
void EngineFixture::expectReplacement(const QString& reason)
{
    QTRY_VERIFY_WITH_TIMEOUT(view_->findChild<QTextBrowser*>(), 60000);
    QVERIFY(!engine());
    QVERIFY(!view_->hasBrowser());
    QCOMPARE(view_->message().section(u'\n', 0, 0), reason);
    QVERIFY(view_->findChild<QWidget*>(u"EngineMessage"_s)->isVisible());
    QVERIFY(view_->findChild<QTextBrowser*>()->toPlainText().contains(u"http://host/x.jpg"_s));
}
