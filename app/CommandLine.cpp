#include "app/CommandLine.h"

#include <algorithm>
#include <array>

#include <QCoreApplication>
#include <QLocale>

#include "platform/text_border.h"
#include "search/SearchTab.h"

namespace quarrynet {

namespace {

constexpr int kPageCheck = 2;

// The names of the tabs in their order.
constexpr std::array<const char*, 5> kTabs = {"web", "page", "image", "download", "file"};

// Returns 1 to 5, or 0 if there is no such tab.
int tabNamed(const QString& name)
{
    for (std::size_t i = 0; i < kTabs.size(); ++i) {
        const int number = static_cast<int>(i) + 1;
        if (name == QLatin1String(kTabs[i]) || name == QString::number(number))
            return number;
    }
    return 0;
}

// Returns whether the page check takes `word` for an address without being asked to.
bool isPageAddress(const QString& word)
{
    return word.startsWith(QLatin1String("http://")) || word.startsWith(QLatin1String("https://"));
}

} // namespace

// What the command line says is in English, as that of quarrynet-services.
CommandLine::CommandLine()
    : help_(parser_.addHelpOption())
    , version_(parser_.addVersionOption())
    , tab_(QStringLiteral("tab"), QStringLiteral("Shows this tab: 1 to 5, or web, page, image, download or file."),
           QStringLiteral("tab"))
    , tour_(QStringLiteral("tour"), QStringLiteral("Takes screenshots of a tour through the tabs, then exits."),
            QStringLiteral("folder"))
    , language_(QStringLiteral("language"),
                QStringLiteral("Language of texts and manual: en or de. The default is the desktop's language."),
                QStringLiteral("code"))
{
    parser_.setApplicationDescription(QStringLiteral("Searches web pages, images, programs and files."));
    parser_.addOptions({tab_, tour_, language_});
    parser_.addPositionalArgument(
        QStringLiteral("words"),
        QStringLiteral("What to search for. With --tab page, or if the first word begins with http:// or https://, "
                       "it is the address of a page to check for the other words."),
        QStringLiteral("[words...]"));
}

QString CommandLine::parse(const QStringList& arguments)
{
    request_ = {};
    // The parser skips the first text, which is the program's name.
    if (!parser_.parse(QStringList{QCoreApplication::applicationName()} + arguments))
        return toLine(parser_.errorText());
    if (asksForHelp() || asksForAllHelp() || asksForVersion())
        return {};
    return readRequest();
}

QString CommandLine::readRequest()
{
    if (parser_.isSet(tab_)) {
        request_.tab = tabNamed(parser_.value(tab_));
        if (request_.tab == 0) {
            return QStringLiteral("There is no tab \"%1\": use 1 to 5, or web, page, image, download or file.")
                .arg(toLine(parser_.value(tab_)));
        }
    }
    if (parser_.isSet(tour_) && parser_.value(tour_).isEmpty())
        return QStringLiteral("The folder of the tour is missing.");
    QStringList words = parser_.positionalArguments();
    if (parser_.isSet(tour_) && (request_.tab != 0 || !words.isEmpty()))
        return QStringLiteral("A tour takes no tab and no words.");
    // A script whose variable is not set passes an empty argument.
    words.removeAll(QString());
    if (words.isEmpty())
        return {};
    if (request_.tab == 0)
        request_.tab = isPageAddress(words.first()) ? kPageCheck : 1;
    if (request_.tab == kPageCheck)
        request_.fields.append(words.takeFirst());
    request_.fields.append(words.join(u' '));
    for (const QString& field : std::as_const(request_.fields)) {
        if (field.size() > SearchTab::kLongestInput)
            return QStringLiteral("The text to search for is longer than %1 characters.").arg(SearchTab::kLongestInput);
    }
    return {};
}

bool CommandLine::asksForHelp() const
{
    return parser_.isSet(help_);
}

bool CommandLine::asksForAllHelp() const
{
    return parser_.isSet(QStringLiteral("help-all"));
}

bool CommandLine::asksForVersion() const
{
    return parser_.isSet(version_);
}

QStringList CommandLine::languages() const
{
    return parser_.isSet(language_) ? QStringList(parser_.value(language_)) : QLocale().uiLanguages();
}

QString CommandLine::tourFolder() const
{
    return parser_.value(tour_);
}

std::vector<qsizetype> toolkitOptions(const QStringList& arguments)
{
    // The toolkit's documentation lists them under QGuiApplication and QApplication. One or two dashes may begin them.
    static constexpr std::array kWithValue = {"display", "fontengine",      "geometry",           "icon",
                                              "name",    "platform",        "platformpluginpath", "platformtheme",
                                              "plugin",  "qwindowgeometry", "qwindowicon",        "qwindowtitle",
                                              "session", "style",           "stylesheet",         "title"};
    static constexpr std::array kAlone = {"dograb", "nograb", "qdebug", "reverse", "sync", "widgetcount"};
    static constexpr std::array kWithEqualsSign = {"qmljsdebugger=", "style=", "stylesheet="};

    std::vector<qsizetype> positions;
    for (qsizetype i = 0; i < arguments.size() && arguments[i] != QLatin1String("--"); ++i) {
        if (!arguments[i].startsWith(u'-'))
            continue;
        const QString name = arguments[i].mid(arguments[i].startsWith(QLatin1String("--")) ? 2 : 1);
        const auto isName = [&name](const char* option) { return name == QLatin1String(option); };
        const auto begins = [&name](const char* option) { return name.startsWith(QLatin1String(option)); };
        if (std::any_of(kWithValue.begin(), kWithValue.end(), isName)) {
            positions.push_back(i);
            if (i + 1 < arguments.size())
                positions.push_back(++i);
        } else if (std::any_of(kAlone.begin(), kAlone.end(), isName) ||
                   std::any_of(kWithEqualsSign.begin(), kWithEqualsSign.end(), begins)) {
            positions.push_back(i);
        }
    }
    return positions;
}

} // namespace quarrynet
