#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>
#include <sys/stat.h>
#include <unistd.h>

#include "app/commands.h"

namespace quarrynet::services {

namespace {

void reportNoMemory()
{
    std::fputs("quarrynet-services: out of memory\n", stderr);
}

[[noreturn]] void endWithMessage()
{
    try {
        throw; // rethrows the uncaught exception
    } catch (const std::bad_alloc&) {
        reportNoMemory();
        ::_exit(1);
    } catch (...) {
        std::abort();
    }
}

/// Runs before the constants of CLI11 are initialized, which allocates memory before main() can catch exceptions.
[[gnu::constructor(101)]] void catchBeforeMain()
{
    std::set_terminate(endWithMessage);
}

int run(int argc, char** argv)
{
    const Outcome<Options> options = parseOptions(std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc));
    if (!options) {
        std::fprintf(stderr, "quarrynet-services: %s\nTry \"quarrynet-services --help\".\n",
                     options.error().message.c_str());
        return 2;
    }
    switch (options->command) {
    case Options::Command::Index:
        return runIndex(*options);
    case Options::Command::Crawl:
        return runCrawl(*options);
    case Options::Command::Serve:
        return runServe(*options);
    case Options::Command::Check:
        return runCheck(*options);
    case Options::Command::Status:
        return runStatus(*options);
    case Options::Command::Version:
        std::puts("quarrynet-services " QUARRYNET_VERSION);
        return 0;
    case Options::Command::Help:
        std::fputs(options->help.c_str(), stdout);
        return 0;
    }
    return 2;
}

} // namespace

} // namespace quarrynet::services

int main(int argc, char** argv)
{
    // The index is private to its user.
    ::umask(077);
    try {
        return quarrynet::services::run(argc, argv);
    } catch (const std::bad_alloc&) {
        quarrynet::services::reportNoMemory();
    } catch (const std::exception& fault) {
        std::fprintf(stderr, "quarrynet-services: %s\n", fault.what());
    }
    return 1;
}
