#include <string>

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QTabBar>
#include <QTemporaryDir>

#include "app/Main.h"
#include "platform/HiddenListBox.h"
#include "platform/HiddenText.h"
#include "platform/Shell.h"
#include "tests/core/page_samples.h"

/// Measures one step of a resize, as when a user drags the window's corner: new size, layout, painting. Each tab is
/// measured with an empty list, with one page of results, and with a thousand times as many rows. Each step should take
/// less than 16 ms; the number of rows should make no difference.

using namespace quarrynet;
using namespace quarrynet::samples;

namespace {

class SilentShell final : public Shell
{
public:
    void open(std::string_view) override {}
};

std::string downloadPage(std::size_t rows)
{
    return downloadHead("10,000", "1 - " + std::to_string(rows)) + repeated(downloadEntry("Apple sorter 2.0"), rows);
}

void fill(Main& window, std::size_t pages)
{
    const auto hand = [&window](const char* buffer, const std::string& page) {
        window.findChild<HiddenText*>(QLatin1String(buffer))->setText(page);
    };
    hand("Text2", webPage("1,234", 30 * pages));
    hand("Text9", imagePage("1,234", 10));
    hand("Text12", downloadPage(25 * pages));
    hand("Text16", repeated(fileEntry("apple.zip"), 20 * pages));
    window.findChild<HiddenListBox*>(QStringLiteral("List5"))->setItems(std::vector<std::string>(20 * pages, "apple"));
    hand("Text6", "an apple a day");
}

void resizeStep(benchmark::State& state)
{
    const QTemporaryDir folder;
    SilentShell shell;
    const Surroundings surroundings = {ServiceHosts(), shell, folder.path().toStdString(), "", "", ""};
    Main window(surroundings);
    window.load();
    window.show();
    if (state.range(1) > 0)
        fill(window, static_cast<std::size_t>(state.range(1)));
    window.findChild<QTabBar*>(QStringLiteral("TabStrip1"))->setCurrentIndex(static_cast<int>(state.range(0)) - 1);
    QApplication::processEvents();

    QSize size(608, 434);
    int step = 8;
    for (auto _ : state) {
        if (size.width() > 1216 || size.width() < 312)
            step = -step;
        size += QSize(step, step * 434 / 608);
        window.resize(size);
        QApplication::processEvents();
    }
}

BENCHMARK(resizeStep)
    ->ArgNames({"tab", "pages"})
    ->ArgsProduct({{1, 2, 3, 4, 5}, {0, 1, 1000}})
    ->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
