#include <algorithm>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <sys/stat.h>
#include <thread>

#include <gtest/gtest.h>

#include "ground/ChildProcess.h"
#include "http/HttpServer.h"
#include "index/IndexWriter.h"
#include "index/sqlite.h"
#include "tests/services/support/service_support.h"
#include "thumbnails/Thumbnailer.h"

/// Checks that programs started by the services inherit none of the services' descriptors.

using namespace quarrynet;
using namespace quarrynet::services;
namespace fs = std::filesystem;

namespace {

/// Returns the targets of the descriptors in a listing by "ls -l" of a process's descriptor folder.
std::set<std::string> targets(const std::string& listing)
{
    std::set<std::string> found;
    std::istringstream lines(listing);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t arrow = line.find(" -> ");
        if (arrow != std::string::npos)
            found.insert(line.substr(arrow + 4));
    }
    return found;
}

std::string nameOf(int descriptor)
{
    std::error_code ignored;
    return fs::read_symlink("/proc/self/fd/" + std::to_string(descriptor), ignored).string();
}

std::set<int> openDescriptors()
{
    std::set<int> open;
    for (int number = 0; number < 1024; ++number) {
        if (::fcntl(number, F_GETFD) >= 0)
            open.insert(number);
    }
    return open;
}

/// Returns the descriptors, except those in `before`, that a child process would inherit.
std::string inheritable(const std::set<int>& before)
{
    std::string found;
    for (const int number : openDescriptors()) {
        if (before.count(number) == 0 && (::fcntl(number, F_GETFD) & FD_CLOEXEC) == 0)
            found += nameOf(number) + " ";
    }
    return found;
}

/// Makes a program in `folder` that lists its descriptors into a file there and ends.
std::string listingProgram(const TemporaryFolder& folder)
{
    const std::string program = folder.write("lister", "#!/bin/sh\n"
                                                       "cd \"${0%/*}\"\n"
                                                       "(ls -l /proc/$$/fd > list.part)\n"
                                                       "mv list.part list\n");
    ::chmod(program.c_str(), 0755);
    return program;
}

/// Returns the descriptors of the listing program except its script, the null device and this process's error output.
std::string foreign(const TemporaryFolder& folder)
{
    std::ostringstream text;
    text << std::ifstream(folder.path() + "/list").rdbuf();
    std::set<std::string> open = targets(text.str());
    if (open.empty())
        return "nothing was listed";
    open.erase(folder.path() + "/lister");
    open.erase("/dev/null");
    open.erase(nameOf(STDERR_FILENO));
    std::string found;
    for (const std::string& target : open)
        found += target + " ";
    return found;
}

/// Returns whether it is the only descriptor that the thumbnail program should have: its socket to the services.
bool isOneSocket(const std::string& found)
{
    return found.starts_with("socket:") && std::count(found.begin(), found.end(), ' ') == 1;
}

} // namespace

TEST(Descriptors, ProgramsOfARunningServiceHaveNone)
{
    const std::set<int> before = openDescriptors();
    const TemporaryFolder folder;
    Outcome<Database> index = Database::open(folder.path() + "/index", Database::Access::Create);
    ASSERT_TRUE(index);
    ASSERT_TRUE(index->execute("CREATE TABLE t (x); BEGIN; INSERT INTO t VALUES (1)"));
    const Outcome<IndexLock> lock = IndexLock::take(folder.path());
    ASSERT_TRUE(lock);

    std::string ofThumbnails;
    std::string ofOutput;
    std::string kept;
    HttpServer server;
    const auto port = std::get<std::uint16_t>(server.listen("127.0.0.1", 0, [&](const HttpRequest&) {
        Thumbnailer thumbnailer(listingProgram(folder), {std::chrono::seconds(60), 1});
        (void)thumbnailer.make(PictureFormat::Png, "x"); // returns when the program ends
        ofThumbnails = foreign(folder);
        (void)readProgramOutput({"ls", "-l", "/proc/self/fd"}, [&](std::string_view piece) { ofOutput.append(piece); });
        kept = inheritable(before);
        return HttpResponse();
    }));
    std::thread serving([&] { server.run(); });
    const RawClient idle("127.0.0.1", port);
    const RawClient asking("127.0.0.1", port);
    asking.send("GET / HTTP/1.1\r\nHost: x\r\n\r\n");
    asking.receiveAll();
    server.stop();
    serving.join();

    EXPECT_TRUE(isOneSocket(ofThumbnails)) << ofThumbnails;
    std::size_t sockets = 0;
    const std::set<std::string> open = targets(ofOutput);
    for (const std::string& target : open)
        sockets += target.starts_with("socket:") && target != nameOf(STDERR_FILENO) ? 1 : 0;
    EXPECT_EQ(sockets, 0U) << ofOutput;
    EXPECT_LE(open.size(), 4U) << ofOutput; // the three standard ones and the folder being listed
    EXPECT_EQ(kept, "");
}

#if defined(__GLIBC__) && __GLIBC_PREREQ(2, 34)

TEST(Descriptors, WhatWasForgottenIsClosedToo)
{
    const TemporaryFolder folder;
    const std::string content = folder.write("content", "x");
    const std::ifstream stream(content); // libstdc++ opens it without O_CLOEXEC
    const int forgotten = ::open(content.c_str(), O_RDONLY);
    ASSERT_GT(forgotten, STDERR_FILENO);
    Thumbnailer thumbnailer(listingProgram(folder), {std::chrono::seconds(60), 1});
    (void)thumbnailer.make(PictureFormat::Png, "x");
    std::string output;
    (void)readProgramOutput({"ls", "-l", "/proc/self/fd"}, [&](std::string_view piece) { output.append(piece); });
    ::close(forgotten);
    EXPECT_TRUE(isOneSocket(foreign(folder))) << foreign(folder);
    EXPECT_EQ(targets(output).count(content), 0U);
}

#endif
