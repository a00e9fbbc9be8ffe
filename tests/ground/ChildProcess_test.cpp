#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <optional>
#include <string>
#include <unistd.h>
#include <vector>

#include <gtest/gtest.h>

#include "ground/ChildProcess.h"
#include "ground/Descriptor.h"
#include "tests/services/support/service_support.h"

using namespace quarrynet;
using namespace quarrynet::services;

namespace {

/// What a program prints, with "!" behind it when it fails.
std::string outputOf(const std::vector<std::string>& arguments)
{
    std::string output;
    const Outcome<Done> result =
        readProgramOutput(arguments, [&output](std::string_view piece) { output.append(piece); });
    return result ? output : output + "!";
}

} // namespace

TEST(ReadProgramOutput, HandsTheOutputOn)
{
    EXPECT_EQ(outputOf({"printf", "%s", "a b"}), "a b");
    EXPECT_EQ(outputOf({"true"}), "");
}

TEST(ReadProgramOutput, FailureKeepsWhatWasPrinted)
{
    EXPECT_EQ(outputOf({"false"}), "!");
    EXPECT_EQ(outputOf({"sh", "-c", "printf partly; exit 3"}), "partly!");
    EXPECT_EQ(outputOf({"sh", "-c", "kill -9 $$"}), "!");
}

TEST(ReadProgramOutput, EndlessOutputEndsTheProgram)
{
    std::size_t taken = 0;
    const auto count = [&taken](std::string_view piece) { taken += piece.size(); };
    EXPECT_FALSE(readProgramOutput({"yes"}, count, 1'000'000));
    EXPECT_LE(taken, 1'000'000U);
    EXPECT_TRUE(readProgramOutput({"printf", "%s", "abc"}, count, 3));
    EXPECT_FALSE(readProgramOutput({"printf", "%s", "abcd"}, count, 3));
}

TEST(ReadProgramOutput, MissingProgramIsNamed)
{
    const Outcome<Done> result = readProgramOutput({"/none/such-program"}, [](std::string_view) {});
    ASSERT_FALSE(result);
    EXPECT_NE(result.error().message.find("such-program"), std::string::npos);
}

TEST(ReadProgramOutput, ArgumentsMeetNoShell)
{
    EXPECT_EQ(outputOf({"printf", "%s", "$(echo x); `echo y` > z & \"*\""}), "$(echo x); `echo y` > z & \"*\"");
}

TEST(ReadProgramOutput, ProgramHasNoInput)
{
    EXPECT_EQ(outputOf({"cat"}), "");
}

TEST(ReadProgramOutput, LargeOutputArrivesWhole)
{
    const TemporaryFolder folder;
    const std::string content(5000000, 'x');
    EXPECT_TRUE(outputOf({"cat", folder.write("large", content)}) == content);
}

TEST(ReadProgramOutput, ProgramEndsWhenItsReaderThrows)
{
    EXPECT_THROW((void)readProgramOutput({"yes"}, [](std::string_view) { throw std::bad_alloc(); }), std::bad_alloc);
}

TEST(ChildProcess, StatusIsTheExitStatusOrTheSignal)
{
    EXPECT_EQ(ChildProcess::start({"sh", "-c", "exit 3"})->wait(), 3);
    Outcome<ChildProcess> waiting = ChildProcess::start({"sleep", "1000"});
    ASSERT_TRUE(waiting);
    EXPECT_GT(waiting->id(), 0);
    waiting->signal(SIGTERM);
    EXPECT_EQ(waiting->wait(), -SIGTERM);
    EXPECT_EQ(waiting->wait(), -SIGTERM);
    EXPECT_EQ(waiting->id(), 0);
}

TEST(ChildProcess, DoesNotOutliveItsObject)
{
    pid_t id = 0;
    {
        Outcome<ChildProcess> waiting = ChildProcess::start({"sleep", "1000"});
        ASSERT_TRUE(waiting);
        const ChildProcess moved = std::move(*waiting);
        id = moved.id();
        EXPECT_EQ(waiting->id(), 0);
        EXPECT_EQ(::kill(id, 0), 0);
    }
    EXPECT_EQ(::kill(id, 0), -1);
}

TEST(ChildProcess, VariablesAreAddedOrReplaced)
{
    ::setenv("QUARRYNET_TEST_KEPT", "kept", 1);
    ::setenv("QUARRYNET_TEST_SET", "old", 1);
    std::optional<Pipe> pipe = makePipe();
    ASSERT_TRUE(pipe);
    Outcome<ChildProcess> program = ChildProcess::start(
        {"sh", "-c", "printf \"$QUARRYNET_TEST_KEPT $QUARRYNET_TEST_SET\"; env | grep -c ^QUARRYNET_TEST_SET="},
        {.output = pipe->writeEnd.number()}, {"QUARRYNET_TEST_SET=new"});
    ASSERT_TRUE(program);
    EXPECT_EQ(program->wait(), 0);
    char text[64] = {};
    EXPECT_EQ(::read(pipe->readEnd.number(), text, sizeof text - 1), 10);
    EXPECT_STREQ(text, "kept new1\n");
}

// Put in place one by one, the second stream would get what the first was just given.
TEST(ChildProcess, StreamsCanChangePlaces)
{
    const TemporaryFolder folder;
    const auto open = [&folder](const char* name) {
        return Descriptor(::open((folder.path() + name).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    };
    const Descriptor a = open("/a");
    const Descriptor b = open("/b");
    const Descriptor output(::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3));
    const Descriptor errors(::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3));
    ::dup2(a.number(), STDOUT_FILENO);
    ::dup2(b.number(), STDERR_FILENO);
    Outcome<ChildProcess> program =
        ChildProcess::start({"sh", "-c", "echo out; echo err >&2"}, {.output = STDERR_FILENO, .errors = STDOUT_FILENO});
    const int status = program ? program->wait() : -1;
    ::dup2(output.number(), STDOUT_FILENO);
    ::dup2(errors.number(), STDERR_FILENO);
    EXPECT_EQ(status, 0);
    char text[8] = {};
    EXPECT_EQ(::pread(a.number(), text, sizeof text, 0), 4);
    EXPECT_STREQ(text, "err\n");
    EXPECT_EQ(::pread(b.number(), text, sizeof text, 0), 4);
    EXPECT_STREQ(text, "out\n");
}

TEST(ChildProcess, StreamThatIsNotOpenIsAFailure)
{
    EXPECT_FALSE(ChildProcess::start({"true"}, {.output = -1}));
}
