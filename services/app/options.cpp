#include "app/options.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string_view>
#include <variant>

#include "http/message.h"

namespace quarrynet::services {

namespace {

using Target = std::variant<std::string*, std::vector<std::string>*, std::uint16_t*, std::uint32_t*>;

std::optional<Options::Command> commandNamed(const std::string& name)
{
    if (name == "serve")
        return Options::Command::Serve;
    if (name == "index")
        return Options::Command::Index;
    if (name == "crawl")
        return Options::Command::Crawl;
    if (name == "help" || name == "--help" || name == "-h")
        return Options::Command::Help;
    if (name == "--version")
        return Options::Command::Version;
    return std::nullopt;
}

std::map<std::string, Target> targetsOf(Options& options)
{
    if (options.command == Options::Command::Index)
        return {{"--data", &options.dataFolder},
                {"--packages", &options.packageFiles},
                {"--mirror", &options.mirror},
                {"--folder", &options.folders},
                {"--pictures", &options.pictureFolders}};
    if (options.command == Options::Command::Crawl)
        return {{"--data", &options.dataFolder},
                {"--depth", &options.crawlDepth},
                {"--entries", &options.crawlEntries},
                {"--minutes", &options.crawlMinutes},
                {"--rate", &options.crawlRate}};
    return {{"--data", &options.dataFolder},
            {"--web-address", &options.webAddress},
            {"--image-address", &options.imageAddress},
            {"--download-address", &options.downloadAddress},
            {"--file-address", &options.fileAddress},
            {"--port", &options.port},
            {"--proxy-address", &options.proxyAddress},
            {"--proxy-port", &options.proxyPort},
            {"--user", &options.user}};
}

/// The addresses of its files begin with a mirror's, so it has to say how it is spoken to.
bool isMirrorAddress(std::string_view text)
{
    const std::size_t scheme = std::min(text.find("://"), text.size());
    const std::string_view name = text.substr(0, scheme);
    return text.size() > scheme + 3 && (name == "http" || name == "https" || name == "ftp");
}

std::optional<Failure> store(const Target& target, const std::string& name, const std::string& value)
{
    if (auto* const* text = std::get_if<std::string*>(&target)) {
        **text = value;
    } else if (auto* const* texts = std::get_if<std::vector<std::string>*>(&target)) {
        (*texts)->push_back(value);
    } else if (auto* const* count = std::get_if<std::uint32_t*>(&target)) {
        const std::optional<int> number = wholeNumber(value);
        if (!number || *number < 1)
            return Failure{name + " takes a number from 1 on, not \"" + value + "\""};
        **count = static_cast<std::uint32_t>(*number);
    } else {
        const std::optional<int> number = wholeNumber(value);
        if (!number || *number > 65535)
            return Failure{name + " takes a port from 0 to 65535, not \"" + value + "\""};
        **std::get_if<std::uint16_t*>(&target) = static_cast<std::uint16_t>(*number);
    }
    return std::nullopt;
}

} // namespace

Outcome<Options> parseOptions(const std::vector<std::string>& arguments)
{
    Options options;
    if (arguments.empty())
        return Failure{"a command is missing"};
    const std::optional<Options::Command> command = commandNamed(arguments[0]);
    if (!command)
        return Failure{"there is no command \"" + arguments[0] + "\""};
    options.command = *command;
    const std::map<std::string, Target> targets = targetsOf(options);
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        if (arguments[i] == "--help" || arguments[i] == "-h") {
            options.command = Options::Command::Help;
            return options;
        }
        if (arguments[i] == "--if-needed" && options.command == Options::Command::Index) {
            options.ifNeeded = true;
            continue;
        }
        if (arguments[i] == "--force" && options.command == Options::Command::Index) {
            options.force = true;
            continue;
        }
        if (options.command == Options::Command::Crawl && arguments[i].substr(0, 1) != "-") {
            if (!options.crawlAddress.empty())
                return Failure{"crawl takes one address"};
            options.crawlAddress = arguments[i];
            continue;
        }
        const std::size_t equals = arguments[i].find('=');
        const std::string name = arguments[i].substr(0, equals);
        const auto target = targets.find(name);
        if (target == targets.end())
            return Failure{"\"" + arguments[0] + "\" has no option \"" + name + "\""};
        if (equals == std::string::npos && i + 1 == arguments.size())
            return Failure{name + " needs a value"};
        const std::string value = equals == std::string::npos ? arguments[++i] : arguments[i].substr(equals + 1);
        if (const std::optional<Failure> fault = store(target->second, name, value))
            return *fault;
    }
    if (!options.mirror.empty() && !isMirrorAddress(options.mirror))
        return Failure{"--mirror takes an http, https or ftp address, not \"" + options.mirror + "\""};
    if (options.command == Options::Command::Crawl && options.crawlAddress.empty())
        return Failure{"crawl needs an address, such as ftp://host/path"};
    return options;
}

const char* helpText()
{
    return R"(The local search services of Quarrynet.

Usage: quarrynet-services COMMAND [OPTION]...

Commands:
  index   make the index that the searches answer from
  crawl ftp://HOST[:PORT][/PATH]
          list an FTP server and add its files to the index; again, to replace what was listed before
  serve   answer searches until the program is ended (Ctrl+C, SIGTERM)

Options of all:
  --data FOLDER              where the index is kept (default: quarrynet in $XDG_DATA_HOME or ~/.local/share)

Options of index:
  --if-needed                do nothing when there is an index that can be used
  --force                    replace the index in use even by one that has much less
  --packages FILE            a file of package stanzas instead of the machine's package lists; may be repeated
  --mirror ADDRESS           the address that the packages of these files are found under
  --folder FOLDER            a folder of HTML pages instead of the installed documentation; may be repeated
  --pictures FOLDER          a folder of pictures instead of the machine's icons, backgrounds and documentation; may be
                             repeated

Options of crawl:
  --depth N                  directories below the first one (default 32)
  --entries N                names to take (default 1000000)
  --minutes N                time to take (default 60)
  --rate N                   directories a second at most (default 10)

Options of serve:
  --web-address ADDRESS      where the web search listens (default 127.80.0.1)
  --image-address ADDRESS    where the image search listens (default 127.80.0.2)
  --download-address ADDRESS where the download search listens (default 127.80.0.3)
  --file-address ADDRESS     where the file search listens (default 127.80.0.4)
  --port PORT                the port of all services (default 80; 0 picks free ones)
  --proxy-address ADDRESS    where the HTTP proxy to the services listens (default 127.0.0.1)
  --proxy-port PORT          its port (default 8780; 0 picks a free one)
  --user NAME                whom root becomes when all are listening (default nobody)

When it listens, serve prints one line to the standard output: "quarrynet-services: ready", then for each service its
name, "=" and its address.

Exit status: 0 done, 1 failed, 2 wrong usage.
)";
}

} // namespace quarrynet::services
