#include <gtest/gtest.h>

#include "ground/child_process.h"
#include "tests/services/support/service_support.h"

using namespace quarrynet;
using namespace quarrynet::services;

namespace {

/// Returns the output of a program, with "!" appended when it fails.
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
