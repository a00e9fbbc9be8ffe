#include <array>
#include <filesystem>
#include <optional>

#include <gtest/gtest.h>

#include "FaultyProgram.h"
#include "ground/decimal.h"
#include "http/message.h"
#include "tests/services/support/service_support.h"

/// Each call that serving makes fails once, in the real program. The affected client gets a whole response or the end
/// of its connection, the next client gets its response, and the program ends on SIGTERM.

using namespace quarrynet;
using namespace quarrynet::services;

namespace {

struct Question
{
    const char* service;
    const char* address;
    const char* target;
    const char* answer; ///< a text that the response contains
};

constexpr std::array<Question, 5> kQuestions{
    {{"web", "127.80.0.1", "/search?q=apple", "http://apple.example/"},
     {"web", "127.80.0.1", "/doc/1/manual.html", "How to grow apples"},
     {"download", "127.80.0.3", "/3120-20-0-1-5.html?qt=apple&ca=20", "a fruit"},
     {"file", "127.80.0.4", "/cgi-bin/s?t=f&d=&l=en&m=20&q=apple", "http://mirror.example/apple.deb"},
     {"proxy", "127.0.0.1", "http://127.80.0.1/search?q=apple", "http://apple.example/"}}};

/// Returns the port after "name=http://address:" in the ready line, or 0 if it is missing.
std::uint16_t portOf(const std::string& ready, const std::string& name)
{
    const std::size_t at = ready.find(" " + name + "=http://");
    if (at == std::string::npos)
        return 0;
    const std::size_t colon = ready.find(':', ready.find("//", at));
    return static_cast<std::uint16_t>(
        wholeNumber(ready.substr(colon + 1, ready.find('/', colon) - colon - 1)).value_or(0));
}

/// Returns the response, or nothing if the server neither answers nor ends the connection.
std::optional<std::string> ask(const Question& question, const std::string& ready)
{
    const std::uint16_t port = portOf(ready, question.service);
    if (port == 0)
        return std::string(); // the service said that it cannot listen
    const RawClient client(question.address, port);
    client.send("GET " + std::string(question.target) + " HTTP/1.1\r\nHost: 127.80.0.1\r\n\r\n");
    return client.receiveAllWithin(20);
}

/// Returns whether a response has status 200 and is complete.
bool isWhole(const std::string& answer)
{
    const std::string length = "Content-Length: ";
    const std::size_t at = answer.find(length);
    const std::size_t body = answer.find("\r\n\r\n");
    if (answer.rfind("HTTP/1.1 200", 0) != 0 || at == std::string::npos || body == std::string::npos)
        return false;
    const std::size_t value = at + length.size();
    return wholeNumber(answer.substr(value, answer.find('\r', value) - value)) ==
           static_cast<std::int64_t>(answer.size() - body - 4);
}

class ServeFaults : public testing::Test
{
protected:
    void SetUp() override
    {
        namespace fs = std::filesystem;
        // The services give up root, and their new user must be able to reach the folder and to create the mark.
        fs::permissions(folder_.path(), fs::perms::others_exec, fs::perm_options::add);
        folder_.write("run/errors", "");
        fs::permissions(folder_.path() + "/run", fs::perms::all);
        folder_.write("docs/manual.html", "<title>Manual</title>How to grow apples");
        fs::permissions(folder_.path() + "/docs", fs::perms::others_exec | fs::perms::others_read,
                        fs::perm_options::add);
        const std::string list = folder_.write(
            "list", "Package: apple\nDescription: a fruit\nHomepage: http://apple.example/\nFilename: apple.deb\n");
        FaultyProgram index({QUARRYNET_SERVICES, "index", "--data", folder_.path() + "/data", "--packages", list,
                             "--mirror", "http://mirror.example", "--folder", folder_.path() + "/docs", "--pictures",
                             folder_.path() + "/none"},
                            folder_.path() + "/run", 0, 0);
        ASSERT_EQ(index.wait(), 0) << index.errors();
    }

    /// Serves while the `number`-th call of these kinds fails. Returns whether a call failed.
    bool judge(long number, int kinds)
    {
        FaultyProgram server(
            {QUARRYNET_SERVICES, "serve", "--data", folder_.path() + "/data", "--port", "0", "--proxy-port", "0"},
            folder_.path() + "/run", number, kinds);
        std::string ready = server.readLine();
        // The threads start last, after the ready line; without them there is no server either.
        if (!ready.empty() && !ask(kQuestions.front(), ready).value_or("").starts_with("HTTP/1.1 200") &&
            server.errors().find("refuses the threads") != std::string::npos)
            ready.clear();
        SCOPED_TRACE("call " + std::to_string(number) + "\n" + ready + "\n" + server.errors());
        if (ready.empty()) {
            const int status = server.wait();
            // The C library crashes when memory runs out while it looks up the user that root becomes.
            const std::string errors = server.errors();
            if (::geteuid() == 0 && kinds == QuarrynetMemoryFaults &&
                ((status == -SIGSEGV && errors.empty()) ||
                 (status == -SIGABRT && errors.find("nss_") != std::string::npos)))
                return true;
            EXPECT_EQ(status, 1);
            EXPECT_TRUE(server.failed());
            EXPECT_NE(server.errors().find("quarrynet-services: "), std::string::npos);
            return true;
        }
        for (const Question& question : kQuestions)
            judge(question, ready, server);
        judge(kQuestions.front(), ready, server);
        server.signal(SIGTERM);
        EXPECT_EQ(server.wait(), 0) << server.errors();
        return server.failed();
    }

    void judge(const Question& question, const std::string& ready, const FaultyProgram& server)
    {
        const bool failedBefore = server.failed();
        const std::optional<std::string> answer = ask(question, ready);
        ASSERT_TRUE(answer) << question.service << " " << question.target;
        const bool silent = portOf(ready, question.service) == 0;
        // What the fault hid from the start stays hidden until the next one.
        const bool hasNoConfiguration =
            server.errors().find("does not answer until this is corrected") != std::string::npos;
        if (hasNoConfiguration && answer->starts_with("HTTP/1.1 503"))
            EXPECT_NE(answer->find("configuration"), std::string::npos) << *answer;
        else if (isWhole(*answer) || (failedBefore && !silent))
            EXPECT_NE(answer->find(question.answer), std::string::npos) << question.target << "\n" << *answer;
        else
            EXPECT_TRUE(server.failed()) << *answer;
    }

    /// Makes each of the first `eachUpTo` calls fail, then calls at growing distances, until none fails any more.
    /// Returns the last number.
    long judgeAll(int kinds, long eachUpTo)
    {
        const long number =
            failCallsUntil(eachUpTo, 40, [&](long call) { return judge(call, kinds) && !HasFailure(); });
        return number;
    }

    TemporaryFolder folder_;
};

} // namespace

TEST_F(ServeFaults, Network)
{
    EXPECT_GT(judgeAll(QuarrynetNetworkFaults, 1000), 20);
}

TEST_F(ServeFaults, Files)
{
    EXPECT_GT(judgeAll(QuarrynetFileFaults, 1000), 40);
}

TEST_F(ServeFaults, Memory)
{
    EXPECT_GT(judgeAll(QuarrynetMemoryFaults, 600), 1000);
}
