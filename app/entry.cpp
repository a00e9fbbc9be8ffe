#include <algorithm>
#include <cstdio>
#include <optional>
#include <string_view>

#ifdef _WIN32
#include <windows.h>
#endif

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QLocale>

#include "app/Application.h"
#include "app/Language.h"
#include "app/Main.h"
#include "app/Tour.h"
#include "platform/ProgramFolder.h"
#include "platform/ProgramStyle.h"
#include "platform/Shell.h"
#include "platform/message_boxes.h"
#include "platform/text_border.h"

using namespace quarrynet;

namespace {

// Returns the path of the manual in `language`, or in English if it has no other: beside the program, or where an
// installation keeps shared files. Empty if neither place has it.
std::string manualPage(const QString& language)
{
    const QDir here(QCoreApplication::applicationDirPath());
    for (const char* place : {"manual/", QUARRYNET_INSTALLED_MANUAL "/"}) {
        for (const QString& folder : {language + QLatin1Char('/'), QString()}) {
            const QString page =
                QDir::cleanPath(here.filePath(QLatin1String(place) + folder + QLatin1String("index.html")));
            if (QFile::exists(page))
                return toPathBytes(page);
        }
    }
    return {};
}

// Returns whether the options only ask for a text, which needs no display.
bool asksForText(int argc, char** argv)
{
    return std::any_of(argv + 1, argv + argc, [](std::string_view argument) {
        return argument == "-h" || argument == "--help" || argument == "--help-all" || argument == "-v" ||
               argument == "--version";
    });
}

// Prints the text that the options ask for, where the caller can read it. Returns false if there is no such place.
bool printForCaller([[maybe_unused]] QCommandLineParser& options, [[maybe_unused]] const QCommandLineOption& version)
{
#ifdef _WIN32
    // Windows gives a program with windows no console, and Qt shows its texts in a box then. The caller may have a
    // console all the same, or have redirected the output.
    const bool redirected = GetFileType(GetStdHandle(STD_OUTPUT_HANDLE)) != FILE_TYPE_UNKNOWN;
    if (!redirected && (!AttachConsole(ATTACH_PARENT_PROCESS) || !std::freopen("CONOUT$", "w", stdout)))
        return false;
    if (!options.parse(QCoreApplication::arguments()) || options.isSet(QStringLiteral("help-all")))
        return false; // Qt alone has those texts
    const QString text = options.isSet(version) ? QCoreApplication::applicationName() + QLatin1Char(' ') +
                                                      QCoreApplication::applicationVersion() + QLatin1Char('\n')
                                                : options.helpText();
    std::fputs(text.toLocal8Bit().constData(), stdout);
    return true;
#else
    return false; // Qt prints it
#endif
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication::setApplicationName(QStringLiteral("quarrynet"));
    QCoreApplication::setApplicationVersion(QStringLiteral(QUARRYNET_VERSION));

    QCommandLineParser options;
    // What the command line says is in English, as that of quarrynet-services.
    options.setApplicationDescription(QStringLiteral("Searches web pages, images, programs and files."));
    options.addHelpOption();
    const QCommandLineOption versionOption = options.addVersionOption();
    const QCommandLineOption tourOption(QStringLiteral("tour"),
                                        QStringLiteral("Takes screenshots of a tour through the tabs, then exits."),
                                        QStringLiteral("folder"));
    options.addOption(tourOption);
    const QCommandLineOption languageOption(
        QStringLiteral("language"),
        QStringLiteral("Language of texts and manual: en or de. The default is the desktop's language."),
        QStringLiteral("code"));
    options.addOption(languageOption);
    if (argc > 0 && asksForText(argc, argv)) {
        const QCoreApplication withoutDisplay(argc, argv);
        if (printForCaller(options, versionOption))
            return 0;
        options.process(withoutDisplay); // exits
    }

    Application application(argc, argv);
    QApplication::setStyle(new ProgramStyle);
    options.process(application);

    const Language language(options.isSet(languageOption) ? QStringList(options.value(languageOption))
                                                          : QLocale::system().uiLanguages());

    const ProgramFolder folder = findProgramFolder();
    if (!folder.writable) {
        showFileError(nullptr, folder.path, QCoreApplication::translate("main", "The folder cannot be written."));
        return 1;
    }
    const std::string manual = manualPage(language.code());
    const std::string help = QUARRYNET_HELP_PAGE_URL;
    DesktopShell shell(manual);
    const ServiceHosts hosts = {QUARRYNET_WEB_SEARCH_HOST, QUARRYNET_IMAGE_SEARCH_HOST, QUARRYNET_DOWNLOAD_SITE_HOST,
                                QUARRYNET_FILE_SEARCH_HOST};
    Main window({hosts, shell, toPathBytes(folder.path), help.empty() ? manual : help, QUARRYNET_HOME_PAGE_URL,
                 QUARRYNET_AUTHOR_MAIL_URL});
    QObject::connect(&application, &Application::outOfMemory, &window, &Main::outOfMemory);
    QObject::connect(&window, &Main::cannotGoOn, &application, [] { QCoreApplication::exit(1); });
    if (!window.load())
        return 1;
    window.show();

    std::optional<Tour> tour;
    if (options.isSet(tourOption)) {
        tour.emplace(window, options.value(tourOption));
        QObject::connect(&*tour, &Tour::finished, &application,
                         [](bool complete) { QCoreApplication::exit(complete ? 0 : 1); });
        tour->start();
    }
    return QApplication::exec();
}
