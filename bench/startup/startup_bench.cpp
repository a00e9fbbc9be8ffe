#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <vector>

#include <QCoreApplication>
#include <QDir>
#include <QProcess>

/// Measures the time from the start of a program until its window shows. The program and a bare window with a tab bar
/// run in turn, so that other load on the machine affects both. The program should take at most 1.5 times as long.
///
///     startup_bench [RUNS]

namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;

std::optional<double> startOnce(const QString& program)
{
    const auto begin = std::chrono::steady_clock::now();
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(program, {});
    if (!process.waitForFinished(30'000) || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return std::nullopt;
    return Milliseconds(std::chrono::steady_clock::now() - begin).count();
}

double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QDir here(QCoreApplication::applicationDirPath());
    qputenv("QT_PLUGIN_PATH", here.filePath(QStringLiteral("startup_plugins")).toLocal8Bit());
    qputenv("QT_QPA_GENERIC_PLUGINS", "shown_probe");
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");

    const int runs = argc > 1 ? std::atoi(argv[1]) : 41;
    std::vector<double> bare;
    std::vector<double> program;
    std::vector<double> ratios;
    for (int i = 0; i <= runs; ++i) {
        const std::optional<double> first = startOnce(here.filePath(QStringLiteral("bare_window")));
        const std::optional<double> second = startOnce(here.filePath(QStringLiteral("quarrynet")));
        if (!first || !second) {
            std::fputs("a program showed no window, or did not end after showing it\n", stderr);
            return EXIT_FAILURE;
        }
        if (i == 0)
            continue; // the first run fills the system's caches
        bare.push_back(*first);
        program.push_back(*second);
        ratios.push_back(*second / *first);
    }
    if (ratios.empty())
        return EXIT_FAILURE;
    std::printf("bare window %.1f ms, quarrynet %.1f ms, ratio %.2f (medians of %zu runs)\n", median(bare),
                median(program), median(ratios), ratios.size());
    return EXIT_SUCCESS;
}
