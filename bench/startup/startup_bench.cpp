#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <vector>

#include <QCoreApplication>
#include <QDir>
#include <QProcess>

/// Measures the time from the start of a program until its window shows, and its peak memory until then. The program
/// and a bare window with a tab bar run in turn, so that other load on the machine affects both. The program should
/// take at most 1.5 times as long. bench/windows.sh runs this under Wine.
///
///     startup_bench [RUNS]

namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;

struct Start
{
    double milliseconds;
    double megabytes;
};

std::optional<Start> startOnce(const QString& program)
{
    const auto begin = std::chrono::steady_clock::now();
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(program, {});
    if (!process.waitForFinished(30'000) || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return std::nullopt;
    const double time = Milliseconds(std::chrono::steady_clock::now() - begin).count();
    bool isNumber = false;
    const double memory = process.readAllStandardOutput().trimmed().toDouble(&isNumber);
    if (!isNumber)
        return std::nullopt;
    return Start{time, memory / (1024 * 1024)};
}

double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// The measurements of one quantity.
class Figures
{
public:
    void add(double bare, double program)
    {
        bare_.push_back(bare);
        program_.push_back(program);
        ratios_.push_back(program / bare);
    }

    void print(const char* what, const char* unit) const
    {
        std::printf("%s: bare window %.1f %s, quarrynet %.1f %s, ratio %.2f (medians of %zu runs)\n", what,
                    median(bare_), unit, median(program_), unit, median(ratios_), ratios_.size());
    }

private:
    std::vector<double> bare_;
    std::vector<double> program_;
    std::vector<double> ratios_;
};

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QDir here(QCoreApplication::applicationDirPath());
    qputenv("QT_PLUGIN_PATH", here.filePath(QStringLiteral("startup_plugins")).toLocal8Bit());
    qputenv("QT_QPA_GENERIC_PLUGINS", "shown_probe");
#ifndef Q_OS_WIN // where Qt's own choice is the only one that a program is packed with
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
#endif

    const int runs = argc > 1 ? std::atoi(argv[1]) : 41;
    Figures time;
    Figures memory;
    for (int i = 0; i <= runs; ++i) {
        const std::optional<Start> bare = startOnce(here.filePath(QStringLiteral("bare_window")));
        const std::optional<Start> program = startOnce(here.filePath(QStringLiteral("quarrynet")));
        if (!bare || !program) {
            std::fputs("a program showed no window, or did not end after showing it\n", stderr);
            return EXIT_FAILURE;
        }
        if (i == 0)
            continue; // the first run fills the system's caches
        time.add(bare->milliseconds, program->milliseconds);
        memory.add(bare->megabytes, program->megabytes);
    }
    if (runs < 1)
        return EXIT_FAILURE;
    time.print("start", "ms");
    memory.print("memory", "MB");
    return EXIT_SUCCESS;
}
