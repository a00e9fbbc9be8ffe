// Measures the time from the click on Search until the last of ten thumbnails is drawn, in the real window with its
// browser engine. gallery.sh runs it and passes the proxy port of running local services, the keywords, the number of
// searches, and the folder for the window's files. The gallery stays in that folder for the browser to compare with.
#include <algorithm>
#include <cstdio>
#include <vector>

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QTabBar>
#include <QTimer>
#include <QWebEngineView>

#include "app/Main.h"
#include "platform/HtmlView.h"
#include "platform/Shell.h"

using namespace quarrynet;

namespace {

class NoShell final : public Shell
{
public:
    void open(std::string_view) override {}
};

// Evaluates to the number of pictures in the gallery, or 0 until all of them are loaded.
const QString kDrawn =
    QStringLiteral("(() => { const page = frames.length ? frames[0].document : null;"
                   "if (!page || !page.URL.endsWith('images.html')) return 0;"
                   "const pictures = [...page.images];"
                   "return pictures.every(p => p.complete && p.naturalWidth > 0) ? pictures.length : 0; })()");

int drawn(QWebEngineView& view)
{
    int pictures = 0;
    QEventLoop loop;
    view.page()->runJavaScript(kDrawn, [&](const QVariant& result) {
        pictures = result.toInt();
        loop.quit();
    });
    loop.exec();
    return pictures;
}

void waitUntil(const std::function<bool()>& reached)
{
    QElapsedTimer since;
    since.start();
    while (!reached()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
        if (since.elapsed() > 30'000) {
            std::fputs("gallery_window: timed out after 30 seconds\n", stderr);
            std::exit(1);
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 5) {
        std::fputs("usage: gallery_window PROXY-PORT KEYWORDS SEARCHES FOLDER\n", stderr);
        return 2;
    }
    const QString folder = arguments[4];
    QFile settings(folder + QStringLiteral("/Quarrynet.ini"));
    if (!settings.open(QIODevice::WriteOnly))
        return 1;
    settings.write(
        "[ProxySwitch]\nValue=on\n[ProxyHost]\nValue=127.0.0.1\n[ProxyPort]\nValue=" + arguments[1].toLatin1() + '\n');
    settings.close();

    NoShell shell;
    Main window({{"127.80.0.1", "127.80.0.2", "127.80.0.3", "127.80.0.4"}, shell, folder.toStdString(), {}, {}, {}});
    if (!window.load())
        return 1;
    window.show();
    window.findChild<QTabBar*>(QStringLiteral("TabStrip1"))->setCurrentIndex(2);
    auto* viewer = window.findChild<HtmlView*>(QStringLiteral("IMGViewer"));
    waitUntil([&] { return viewer->hasBrowser(); });
    auto* engine = viewer->findChild<QWebEngineView*>();
    window.findChild<QLineEdit*>(QStringLiteral("Text7"))->setText(arguments[2]);

    std::vector<double> times;
    for (int i = 0; i < arguments[3].toInt(); ++i) {
        QFile::remove(folder + QStringLiteral("/images.html"));
        viewer->navigate(folder + QStringLiteral("/blank.html")); // so that the previous gallery is not counted
        waitUntil([&] { return drawn(*engine) == 0; });
        QElapsedTimer since;
        since.start();
        window.findChild<QPushButton*>(QStringLiteral("Command3"))->click();
        waitUntil([&] { return drawn(*engine) > 0; });
        times.push_back(static_cast<double>(since.nsecsElapsed()) / 1e6);
        std::fprintf(stderr, "search %d: %d pictures in %.1f ms\n", i + 1, drawn(*engine), times.back());
    }
    std::sort(times.begin(), times.end());
    std::printf("%.1f\n", times[times.size() / 2]);
    return 0;
}
