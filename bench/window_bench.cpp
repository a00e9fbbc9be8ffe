// Measures the real window on loopback, from click to result, and compares it with other programs that fetch the same
// page from the same server. The page check of a 6 MB page with 180,000 different tags should be 3 times as fast as
// curl, w3m and grep; a web search, up to its filled rows, should take at most 3 times as long as curl. It also
// compares the hand-over of a 50 MB body with one copy of it, and reports the peak memory of a process whose window
// receives 100 MB, which should be at most 2.5 times that.
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <netinet/in.h>
#include <signal.h>
#include <string>
#include <string_view>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTreeView>

#include "app/Main.h"
#include "bench/pipeline.h"
#include "platform/HiddenText.h"
#include "platform/Shell.h"
#include "tests/core/page_samples.h"

using namespace quarrynet;

namespace {

constexpr std::size_t kMegabyte = 1'000'000;
constexpr std::size_t kReceived = 100 * kMegabyte;

int port = 0;

// 30,000 different tags per megabyte.
std::string checkedPage(std::size_t megabytes)
{
    std::string text = "<html><body>";
    for (std::size_t i = 0; i < megabytes * 30000; ++i) {
        const std::string number = std::to_string(i);
        text.append("<a id=\"").append(number).append("\">word ").append(number).append(" of text\n");
    }
    return text + "quince</body></html>";
}

[[noreturn]] void serve(int listener, const std::string& page)
{
    const std::string results = samples::webPage("1,234", 30);
    const std::string huge = results + std::string(kReceived - results.size(), ' ');
    while (true) {
        const int connection = ::accept(listener, nullptr, nullptr);
        std::string request;
        char piece[4096];
        while (request.find("\r\n\r\n") == std::string::npos) {
            const ssize_t got = ::read(connection, piece, sizeof piece);
            if (got <= 0)
                break;
            request.append(piece, static_cast<std::size_t>(got));
        }
        const bool wantsHuge = request.find("huge") != std::string::npos;
        const std::string& body = wantsHuge ? huge : request.starts_with("GET /search") ? results : page;
        const std::string header = "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\nConnection: close\r\n\r\n";
        for (const std::string* part : {&header, &body}) {
            for (std::size_t sent = 0; sent < part->size();) {
                const ssize_t done = ::send(connection, part->data() + sent, part->size() - sent, MSG_NOSIGNAL);
                if (done <= 0)
                    break;
                sent += static_cast<std::size_t>(done);
            }
        }
        ::close(connection);
    }
}

/// Starts the server in a child process, sets `port`, and returns the child's process id.
pid_t startServer()
{
    const int listener = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (::bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 || ::listen(listener, 16) != 0 ||
        ::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
        std::perror("server");
        std::exit(1);
    }
    port = ntohs(address.sin_port);
    const std::string page = checkedPage(6);
    const pid_t child = ::fork();
    if (child == 0)
        serve(listener, page);
    ::close(listener);
    return child;
}

class NoShell final : public Shell
{
public:
    void open(std::string_view) override {}
};

class Window
{
public:
    Window()
        : main_({{"127.0.0.1", "127.0.0.1", "127.0.0.1", "127.0.0.1", port},
                 shell_,
                 folder_.path().toStdString(),
                 {},
                 {},
                 {}})
    {
        main_.load();
        main_.show();
        QApplication::processEvents();
    }

    void type(const char* field, const QString& text) { control<QLineEdit>(field)->setText(text); }

    /// Clicks a start button, waits until the search is over, and returns the number of rows.
    int click(const char* button, const char* list)
    {
        auto* start = control<QPushButton>(button);
        start->click();
        while (!start->isEnabled())
            QApplication::processEvents(QEventLoop::WaitForMoreEvents);
        return control<QTreeView>(list)->model()->rowCount();
    }

private:
    template <class Control>
    Control* control(const char* name)
    {
        return main_.findChild<Control*>(QLatin1String(name));
    }

    QTemporaryDir folder_;
    NoShell shell_;
    Main main_;
};

void run(benchmark::State& state, std::initializer_list<bench::Command> commands)
{
    for (auto _ : state) {
        if (!bench::runPipeline(commands))
            state.SkipWithError("the command failed");
    }
}

bench::Command curl(std::string_view target)
{
    return {"curl", "-s", "http://127.0.0.1:" + std::to_string(port) + std::string(target)};
}

void checkInWindow(benchmark::State& state)
{
    Window window;
    window.type("Text4", QStringLiteral("127.0.0.1/page.html"));
    window.type("Text5", QStringLiteral("quince"));
    for (auto _ : state) {
        if (window.click("Command2", "ListView2") != 1)
            state.SkipWithError("no row");
    }
}

void checkByCommands(benchmark::State& state)
{
    run(state, {curl("/page.html"), {"w3m", "-dump", "-T", "text/html"}, {"grep", "-c", "quince"}});
}

void searchInWindow(benchmark::State& state)
{
    Window window;
    window.type("Text1", QStringLiteral("apple"));
    for (auto _ : state) {
        if (window.click("Command1", "ListView1") != 30)
            state.SkipWithError("not thirty rows");
    }
}

void searchByCurl(benchmark::State& state)
{
    run(state, {curl("/search?q=apple")});
}

const std::string& response()
{
    static const std::string text = "HTTP/1.1 200 OK\r\n\r\n" + std::string(50 * kMegabyte, 'x');
    return text;
}

void handOver(benchmark::State& state)
{
    HiddenText field(QStringLiteral("Text2"), nullptr);
    for (auto _ : state) {
        state.PauseTiming();
        field.setText({});
        std::string buffer = response();
        state.ResumeTiming();
        stripHeader(buffer);
        field.setText(buffer);
        benchmark::DoNotOptimize(field.text().data());
        state.PauseTiming();
        std::string().swap(buffer);
        state.ResumeTiming();
    }
}

void copyOnce(benchmark::State& state)
{
    for (auto _ : state) {
        std::string copy = response();
        benchmark::DoNotOptimize(copy.data());
    }
}

std::size_t peakBytes()
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmHWM:"))
            return 1024 * std::strtoull(line.c_str() + std::strlen("VmHWM:"), nullptr, 10);
    }
    return 0;
}

/// The child's part of receive(): runs one search, then prints the peak memory before and after it.
int receiveHere(const char* tab)
{
    Window window;
    const std::size_t before = peakBytes();
    int rows = 0;
    if (std::string_view(tab) == "web") {
        window.type("Text1", QStringLiteral("huge"));
        rows = window.click("Command1", "ListView1");
    } else {
        window.type("Text4", QStringLiteral("127.0.0.1/huge"));
        window.type("Text5", QStringLiteral("title"));
        rows = window.click("Command2", "ListView2");
    }
    std::printf("%zu %zu\n", before, peakBytes());
    return rows > 0 ? 0 : 1;
}

void receive(benchmark::State& state, const char* tab)
{
    for (auto _ : state) {
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(),
                    {QStringLiteral("--receive"), QLatin1String(tab), QString::number(port)});
        if (!child.waitForFinished(-1) || child.exitCode() != 0)
            state.SkipWithError("nothing was received");
        const QList<QByteArray> peaks = child.readAllStandardOutput().split(' ');
        state.counters["window_MB"] = peaks.value(0).toDouble() / kMegabyte;
        state.counters["peak_MB"] = peaks.value(1).trimmed().toDouble() / kMegabyte;
        state.counters["of_body"] = peaks.value(1).trimmed().toDouble() / kReceived;
    }
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (argc == 4 && std::strcmp(argv[1], "--receive") == 0) {
        const QApplication application(argc, argv);
        port = std::atoi(argv[3]);
        return receiveHere(argv[2]);
    }
    const pid_t server = startServer();
    const QApplication application(argc, argv);
    if (!bench::runPipeline({curl("/search")})) // once it has answered, the server is ready
        return 1;
    const auto add = [](const char* name, auto function) {
        return benchmark::RegisterBenchmark(name, function)->Unit(benchmark::kMillisecond)->UseRealTime();
    };
    add("page check/window", checkInWindow);
    add("page check/curl, w3m and grep", checkByCommands);
    add("web search/window", searchInWindow);
    add("web search/curl", searchByCurl);
    add("50 MB/cut and hand-over", handOver);
    add("50 MB/one copy", copyOnce);
    add("100 MB/web search", [](benchmark::State& state) { receive(state, "web"); })->Iterations(1);
    add("100 MB/page check", [](benchmark::State& state) { receive(state, "page"); })->Iterations(1);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    ::kill(server, SIGTERM);
    ::waitpid(server, nullptr, 0);
    return 0;
}
