#include "app/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <optional>
#include <string_view>

#include "ground/decimal.h"

namespace quarrynet::services {

namespace {

constexpr int kHelpColumn = 30;
constexpr const char* kFooter =
    R"(Once it listens, serve prints one line to standard output: "quarrynet-services: ready", then
NAME=ADDRESS for each service.

"quarrynet-services COMMAND --help" explains a command's options.
Exit status: 0 success, 1 failure, 2 wrong usage.)";

/// Adds an option for a decimal number. CLI11's own conversion would read "010" as 8.
template <class Number>
void addNumber(CLI::App& command, const std::string& name, Number& number, int least, int most,
               const std::string& description)
{
    const auto take = [&number, name, least, most](const std::string& text) {
        const std::optional<int> value = wholeNumber(text);
        if (!value || *value < least || *value > most)
            throw CLI::ValidationError(name, "takes a number from " + std::to_string(least) + " to " +
                                                 std::to_string(most) + ", not \"" + text + "\"");
        number = static_cast<Number>(*value);
    };
    command.add_option_function<std::string>(name, take, description + " (default " + std::to_string(number) + ")")
        ->type_name("N");
}

CLI::Option* addText(CLI::App& command, const std::string& name, std::string& text, const char* type,
                     const std::string& description)
{
    return command.add_option(name, text, description)->type_name(type);
}

void addTexts(CLI::App& command, const std::string& name, std::vector<std::string>& texts, const char* type,
              const std::string& description)
{
    command.add_option(name, texts, description)->type_name(type)->allow_extra_args(false);
}

/// A mirror's address must include its scheme, because it is the prefix of the files' addresses.
std::string checkMirror(const std::string& text)
{
    const std::size_t scheme = std::min(text.find("://"), text.size());
    const std::string_view name = std::string_view(text).substr(0, scheme);
    const bool good = text.size() > scheme + 3 && (name == "http" || name == "https" || name == "ftp");
    return good ? "" : "takes an http, https or ftp address, not \"" + text + "\"";
}

void addConfig(CLI::App& command, Options& options)
{
    addText(command, "--config", options.configFile, "FILE",
            "which sources are asked (default: quarrynet/services.toml in $XDG_CONFIG_HOME or ~/.config)");
}

void addIndex(CLI::App& app, Options& options)
{
    CLI::App* index = app.add_subcommand("index", "Make the index for the searches");
    index->add_flag("--if-needed", options.ifNeeded, "do nothing if there is a usable index");
    index->add_flag("--force", options.force,
                    "replace the index in use even if it is from a newer version or the new one has much less");
    index->add_flag("--wait", options.wait, "wait up to an hour while another process writes the index");
    addTexts(*index, "--packages", options.packageFiles, "FILE",
             "a file of package stanzas instead of the machine's package lists; may be repeated");
    addText(*index, "--mirror", options.mirror, "ADDRESS", "the address of the mirror that has these packages")
        ->check(checkMirror, "");
    addTexts(*index, "--catalog", options.catalogFiles, "FILE",
             "a software catalog of these packages instead of the machine's catalogs; may be repeated");
    addTexts(*index, "--contents", options.contentsFiles, "FILE",
             "a contents list of these packages instead of the machine's contents lists; may be repeated");
    addTexts(*index, "--folder", options.folders, "FOLDER",
             "a folder of HTML pages instead of the installed documentation; may be repeated");
    addTexts(*index, "--pictures", options.pictureFolders, "FOLDER",
             "a folder of pictures instead of icons, backgrounds and documentation; may be repeated");
    index->final_callback([&options] { options.command = Options::Command::Index; });
}

void addCrawl(CLI::App& app, Options& options)
{
    constexpr int kMost = 999'999'999;
    CLI::App* crawl = app.add_subcommand(
        "crawl", "List a server's files and add them to the index, or replace those of an earlier crawl");
    crawl->add_option("ADDRESS", options.crawlAddress, "the directory to begin with; ftp, ftps, http or https")
        ->type_name("SCHEME://HOST[:PORT][/PATH]");
    crawl->add_flag("--due", options.crawlDue, "crawl the servers in the configuration file that are due");
    addNumber(*crawl, "--depth", options.crawlDepth, 1, kMost, "maximum depth below the first directory");
    addNumber(*crawl, "--entries", options.crawlEntries, 1, kMost, "maximum number of names");
    addNumber(*crawl, "--minutes", options.crawlMinutes, 1, kMost, "maximum duration in minutes");
    addNumber(*crawl, "--rate", options.crawlRate, 1, kMost, "maximum directories per second");
    addConfig(*crawl, options);
    crawl->final_callback([&options] {
        if (options.crawlAddress.empty() != options.crawlDue)
            throw CLI::ValidationError("crawl", "takes either an ADDRESS or --due");
        options.command = Options::Command::Crawl;
    });
}

/// The options that say where the services listen. `mayPick`: port 0 stands for free ones.
void addAddresses(CLI::App& command, Options& options, bool mayPick)
{
    constexpr int kMost = 65535;
    const int least = mayPick ? 0 : 1;
    addText(command, "--web-address", options.webAddress, "ADDRESS",
            "where the web search listens (default 127.80.0.1)");
    addText(command, "--image-address", options.imageAddress, "ADDRESS",
            "where the image search listens (default 127.80.0.2)");
    addText(command, "--download-address", options.downloadAddress, "ADDRESS",
            "where the download search listens (default 127.80.0.3)");
    addText(command, "--file-address", options.fileAddress, "ADDRESS",
            "where the file search listens (default 127.80.0.4)");
    addNumber(command, "--port", options.port, least, kMost,
              mayPick ? "the port of all services; 0 picks free ones" : "the port of all services");
    addText(command, "--proxy-address", options.proxyAddress, "ADDRESS",
            "where the HTTP proxy to the services listens (default 127.0.0.1)");
    addNumber(command, "--proxy-port", options.proxyPort, least, kMost,
              mayPick ? "its port; 0 picks a free one" : "its port");
}

void addServe(CLI::App& app, Options& options)
{
    CLI::App* serve = app.add_subcommand("serve", "Answer searches until Ctrl+C or SIGTERM");
    addAddresses(*serve, options, true);
    addText(*serve, "--user", options.user, "NAME",
            "the user that root becomes once all services listen (default nobody)");
    addConfig(*serve, options);
    serve->add_flag("--log-queries", options.logQueries, "write each search to the error output");
    serve->final_callback([&options] { options.command = Options::Command::Serve; });
}

void addCheck(CLI::App& app, Options& options)
{
    CLI::App* check = app.add_subcommand("check", "Ask each configured source one search, and say what answers");
    addConfig(*check, options);
    addText(*check, "--words", options.checkWords, "WORDS", "the words to search for (default linux)");
    check->final_callback([&options] { options.command = Options::Command::Check; });
}

void addStatus(CLI::App& app, Options& options)
{
    CLI::App* status =
        app.add_subcommand("status", "Say what is indexed, since when, what answers, and what to do about the rest");
    addAddresses(*status, options, false);
    addConfig(*status, options);
    status->final_callback([&options] { options.command = Options::Command::Status; });
}

} // namespace

Outcome<Options> parseOptions(const std::vector<std::string>& arguments)
{
    if (arguments.empty())
        return Failure{"a command is required"};
    Options options;
    CLI::App app("The local search services of Quarrynet.", "quarrynet-services");
    app.get_formatter()->column_width(kHelpColumn);
    app.get_formatter()->label("REQUIRED", "");
    app.option_defaults()->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
    app.set_version_flag("--version", "");
    app.require_subcommand(0, 1);
    addIndex(app, options);
    addCrawl(app, options);
    addServe(app, options);
    addCheck(app, options);
    addStatus(app, options);
    for (CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; }))
        addText(*command, "--data", options.dataFolder, "FOLDER",
                "where the index is kept (default: quarrynet in $XDG_DATA_HOME or ~/.local/share)");
    app.footer(kFooter); // added last, or the commands would inherit it
    try {
        std::vector<std::string> reversed(arguments.rbegin(), arguments.rend()); // CLI11 expects them in reverse order
        if (arguments[0] == "help")
            reversed = {"--help"};
        app.parse(std::move(reversed));
    } catch (const CLI::CallForVersion&) {
        options.command = Options::Command::Version;
    } catch (const CLI::CallForHelp&) {
        options.command = Options::Command::Help;
    } catch (const CLI::ParseError& fault) {
        return Failure{fault.what()};
    }
    if (options.command == Options::Command::Help)
        options.help = app.help();
    return options;
}

} // namespace quarrynet::services
