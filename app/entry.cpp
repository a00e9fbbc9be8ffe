#include <cstdio>
#include <optional>
#include <vector>

#ifdef _WIN32
#include <windows.h>
// Must come after windows.h.
#include <shellapi.h>
#endif

#include <QApplication>
#include <QDir>

#include "app/Application.h"
#include "app/CommandLine.h"
#include "app/Language.h"
#include "app/Main.h"
#include "app/Tour.h"
#include "app/manual_page.h"
#include "platform/ProgramFolder.h"
#include "platform/ProgramStyle.h"
#include "platform/Shell.h"
#include "platform/message_boxes.h"
#include "platform/text_border.h"

using namespace quarrynet;

namespace {

// Returns the arguments behind the program's name. No application exists yet that could list them.
QStringList decoded(int argc, [[maybe_unused]] char** argv)
{
    QStringList arguments;
#ifdef _WIN32
    // argv lacks the characters that are not in the code page.
    int count = 0;
    if (wchar_t** texts = CommandLineToArgvW(GetCommandLineW(), &count)) {
        for (int i = 1; i < count; ++i)
            arguments.append(QString::fromWCharArray(texts[i]));
        LocalFree(texts);
        return arguments;
    }
#endif
    for (int i = 1; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    return arguments;
}

// Returns `arguments` without the toolkit's options.
QStringList withoutToolkitOptions(QStringList arguments)
{
    const std::vector<qsizetype> positions = toolkitOptions(arguments);
    for (auto position = positions.rbegin(); position != positions.rend(); ++position)
        arguments.removeAt(*position);
    return arguments;
}

// Returns argv with the program's name and the toolkit's options only. The toolkit would find its options among the
// words to search for, too.
std::vector<char*> withToolkitOptionsOnly(int argc, char** argv)
{
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    std::vector<char*> kept;
    if (argc > 0)
        kept.push_back(argv[0]);
    for (const qsizetype position : toolkitOptions(arguments))
        kept.push_back(argv[position + 1]);
    kept.push_back(nullptr);
    return kept;
}

// Prints `text` where the caller can read it.
void print(const QString& text, [[maybe_unused]] FILE* stream)
{
#ifdef _WIN32
    // Windows gives a program with windows no console. The caller may have one all the same, or have redirected the
    // output; otherwise a box shows the text.
    const HANDLE handle = GetStdHandle(stream == stdout ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
    const bool redirected = GetFileType(handle) != FILE_TYPE_UNKNOWN;
    if (!redirected && (!AttachConsole(ATTACH_PARENT_PROCESS) || !std::freopen("CONOUT$", "w", stream))) {
        MessageBoxW(nullptr, reinterpret_cast<const wchar_t*>(text.utf16()), L"Quarrynet",
                    stream == stdout ? MB_ICONINFORMATION : MB_ICONERROR);
        return;
    }
#endif
    std::fputs(text.toLocal8Bit().constData(), stream);
    std::fflush(stream);
}

// Answers options that only ask for a text, and faulty ones; neither needs a display. Returns the exit status, or
// nothing if the window is asked for.
std::optional<int> answerWithText(CommandLine& line, const QString& fault, int argc, char** argv)
{
    if (!fault.isEmpty()) {
        print(QCoreApplication::applicationName() + QStringLiteral(": ") + fault +
                  QStringLiteral("\nTry \"quarrynet --help\".\n"),
              stderr);
        return 2;
    }
    if (!line.asksForVersion() && !line.asksForHelp() && !line.asksForAllHelp())
        return std::nullopt;
    const QCoreApplication withoutDisplay(argc, argv);
    if (line.asksForVersion()) {
        print(QCoreApplication::applicationName() + u' ' + QCoreApplication::applicationVersion() + u'\n', stdout);
        return 0;
    }
    if (line.asksForAllHelp())
        line.parser().process(withoutDisplay); // exits; Qt alone has this text
    print(line.parser().helpText(), stdout);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication::setApplicationName(QStringLiteral("quarrynet"));
    QCoreApplication::setApplicationVersion(QStringLiteral(QUARRYNET_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("org.quarrynet.Quarrynet")); // finds icon and name on Wayland

    CommandLine line;
    const QString fault = line.parse(withoutToolkitOptions(decoded(argc, argv)));
    if (const std::optional<int> status = answerWithText(line, fault, argc, argv))
        return *status;

    std::vector<char*> toolkitArguments = withToolkitOptionsOnly(argc, argv);
    int toolkitCount = static_cast<int>(toolkitArguments.size()) - 1;
    Application application(toolkitCount, toolkitArguments.data());
    QApplication::setStyle(new ProgramStyle);
    const Language language(line.languages());

    const ProgramFolder folder = findProgramFolder();
    if (!folder.writable) {
        showFileError(nullptr, folder.path, QCoreApplication::translate("main", "The folder cannot be written."));
        return 1;
    }
    const QDir here(QCoreApplication::applicationDirPath());
    const std::string manual = manualPage(
        // beside the program, or where an installation keeps shared files
        {here.filePath(QStringLiteral("manual")), here.filePath(QStringLiteral(QUARRYNET_INSTALLED_MANUAL))},
        language.code());
    const std::string help = QUARRYNET_HELP_PAGE_URL;
    DesktopShell shell(manual);
    const ServiceHosts hosts = {QUARRYNET_WEB_SEARCH_HOST, QUARRYNET_IMAGE_SEARCH_HOST, QUARRYNET_DOWNLOAD_SITE_HOST,
                                QUARRYNET_FILE_SEARCH_HOST};
    Surroundings surroundings{hosts,
                              shell,
                              toPathBytes(folder.path),
                              help.empty() ? manual : help,
                              QUARRYNET_HOME_PAGE_URL,
                              QUARRYNET_AUTHOR_MAIL_URL};
    surroundings.remembers = line.tourFolder().isEmpty();
    Main window(surroundings);
    QObject::connect(&application, &Application::outOfMemory, &window, &Main::outOfMemory);
    QObject::connect(&window, &Main::cannotGoOn, &application, [] { QCoreApplication::exit(1); });
    if (!window.load())
        return 1;
    window.show();

    std::optional<Tour> tour;
    if (line.tourFolder().isEmpty()) {
        // Queued, so that the search starts in a window that can be seen.
        QMetaObject::invokeMethod(
            &window, [&] { window.begin(line.request()); }, Qt::QueuedConnection);
    } else {
        tour.emplace(window, line.tourFolder());
        QObject::connect(&*tour, &Tour::finished, &application,
                         [](bool complete) { QCoreApplication::exit(complete ? 0 : 1); });
        tour->start();
    }
    return QApplication::exec();
}
