#include <memory>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "ground/Expected.h"
#include "ground/Outcome.h"

using namespace quarrynet;

namespace {

enum class Cause : unsigned char
{
    Absent,
    Broken,
};

} // namespace

TEST(Expected, HoldsAValue)
{
    Expected<std::string, Cause> text(std::string("word"));
    ASSERT_TRUE(text);
    EXPECT_EQ(*text, "word");
    text->push_back('s');
    const Expected<std::string, Cause> copy = text;
    EXPECT_EQ(*copy, "words");
    EXPECT_EQ(copy->size(), 5U);
}

TEST(Expected, HoldsAnError)
{
    const Expected<std::string, Cause> text(Cause::Broken);
    ASSERT_FALSE(text);
    EXPECT_EQ(text.error(), Cause::Broken);
}

TEST(Expected, EmptyValueIsAValue)
{
    const Expected<std::string, Cause> text{std::string()};
    EXPECT_TRUE(text);
    const Expected<bool, Cause> answer(false);
    ASSERT_TRUE(answer);
    EXPECT_FALSE(*answer);
}

TEST(Expected, ValueThatCannotBeCopiedIsMovedOut)
{
    Expected<std::unique_ptr<int>, Cause> number(std::make_unique<int>(7));
    const std::unique_ptr<int> taken = std::move(*number);
    EXPECT_EQ(*taken, 7);
}

TEST(Outcome, FailureKeepsItsMessage)
{
    const auto attempt = [](bool succeeds) -> Outcome<Done> {
        if (!succeeds)
            return Failure{"the folder is gone"};
        return Done{};
    };
    EXPECT_TRUE(attempt(true));
    ASSERT_FALSE(attempt(false));
    EXPECT_EQ(attempt(false).error().message, "the folder is gone");
}
