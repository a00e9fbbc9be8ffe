#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "dialogs/registry_value.h"
#include "tests/support/test_data.h"

namespace quarrynet {
namespace {

using namespace std::string_literals;
using testing::Eq;
using testing::Optional;

std::string trimmed(const std::string& bytes, std::size_t size)
{
    return std::string(trimmedRegistryValue(samples::ExactBytes(bytes), size));
}

TEST(TrimmedRegistryValue, TextLosesTheZeroThatEndsIt)
{
    EXPECT_EQ(trimmed("C:\\x.exe\0\0\0\0"s, 9), "C:\\x.exe");
}

TEST(TrimmedRegistryValue, TextWithoutZeroAtItsEndIsKept)
{
    EXPECT_EQ(trimmed("abcdef"s, 3), "abc");
}

TEST(TrimmedRegistryValue, OnlyOneZeroIsTakenOff)
{
    EXPECT_EQ(trimmed("ab\0\0"s, 4), "ab\0"s);
}

TEST(TrimmedRegistryValue, ZeroInsideIsKept)
{
    EXPECT_EQ(trimmed("a\0b\0"s, 4), "a\0b"s);
}

TEST(TrimmedRegistryValue, NothingWrittenIsEmpty)
{
    EXPECT_EQ(trimmed("\0\0\0"s, 0), "");
    EXPECT_EQ(trimmed("", 0), "");
}

TEST(TrimmedRegistryValue, SizeBeyondTheBufferTakesAllOfIt)
{
    EXPECT_EQ(trimmed("abc", 1024), "abc");
}

TEST(RegistryValueText, TextStandsAsItIs)
{
    EXPECT_THAT(registryValueText(kRegistryText, "C:\\Tools\\caf\xe9"), Optional("C:\\Tools\\caf\xe9"s));
    EXPECT_THAT(registryValueText(kRegistryText, ""), Optional(""s));
}

TEST(RegistryValueText, NumberWithBytesAboveFifteenIsItsValue)
{
    EXPECT_THAT(registryValueText(kRegistryNumber, "\x78\x56\x34\x12"), Optional("305419896"s));
    EXPECT_THAT(registryValueText(kRegistryNumber, "\xff\xff\xff\xff"), Optional("4294967295"s));
}

TEST(RegistryValueText, BytesBelowSixteenTakeOneDigit)
{
    EXPECT_THAT(registryValueText(kRegistryNumber, "\x05\x01"), Optional("21"s));               // 0x15
    EXPECT_THAT(registryValueText(kRegistryNumber, "\x01\x02\x03\x04"), Optional("17185"s));    // 0x4321
    EXPECT_THAT(registryValueText(kRegistryNumber, "\x10\x00\x00\x20"s), Optional("2097168"s)); // 0x200010
    EXPECT_THAT(registryValueText(kRegistryNumber, "\x01\x00\x00"s), Optional("1"s));           // 0x001
}

TEST(RegistryValueText, ZeroAndNothingAreZero)
{
    EXPECT_THAT(registryValueText(kRegistryNumber, "\0\0\0"s), Optional("0"s));
    EXPECT_THAT(registryValueText(kRegistryNumber, ""), Optional("0"s));
}

TEST(RegistryValueText, NumberLongerThanFourBytesIsReadWhole)
{
    EXPECT_THAT(registryValueText(kRegistryNumber, std::string(9, '\xff')), Optional("4722366482869645213695"s));
    EXPECT_EQ(registryValueText(kRegistryNumber, std::string(1024, '\xff'))->size(), 2467U); // 256 to the power of 1024
}

TEST(RegistryValueText, OtherTypesHaveNone)
{
    for (const std::uint32_t type : {0U, 2U, 3U, 5U, 7U, 11U, 0xffffffffU})
        EXPECT_THAT(registryValueText(type, "abc"), Eq(std::nullopt));
}

} // namespace
} // namespace quarrynet
