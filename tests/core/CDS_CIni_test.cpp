#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ini_fixture.h"

using namespace quarrynet;
using testing::ElementsAre;
using testing::HasSubstr;
namespace fs = std::filesystem;

TEST(IniWithoutFile, EveryOperationSaysSo)
{
    CDS_CIni store;
    std::string value = "kept";
    std::vector<std::string> keys;
    std::vector<std::string> values;
    EXPECT_EQ(store.FileName(), "");
    EXPECT_EQ(store.LastErrorDescription(), "");
    EXPECT_FALSE(store.ReadValue("A", "k", value));
    EXPECT_EQ(store.LastErrorDescription(), "No filename specified");
    EXPECT_EQ(value, "kept");
    EXPECT_FALSE(store.WriteValue("A", "k", "v"));
    EXPECT_FALSE(store.ReadSection("A", keys, values));
    EXPECT_FALSE(store.WriteSection("A", keys, {"1"}));
    EXPECT_FALSE(store.Enum_SectionNames(keys));
    EXPECT_EQ(store.LastErrorDescription(), "No filename specified");
}

TEST_F(Ini, SettingsAreReadBackByAnotherObject)
{
    ASSERT_TRUE(store_.WriteValue("ProxySwitch", "Value", "on"));
    ASSERT_TRUE(store_.WriteValue("ProxyHost", "Value", "proxy.example"));
    ASSERT_TRUE(store_.WriteValue("ProxyPort", "Value", "8080"));
    ASSERT_TRUE(store_.WriteValue("ProxySwitch", "Value", "off"));
    CDS_CIni other;
    other.setFileName(bytesOf(path_));
    std::string value;
    EXPECT_TRUE(other.ReadValue("ProxySwitch", "Value", value));
    EXPECT_EQ(value, "off");
    EXPECT_TRUE(other.ReadValue("proxyhost", "VALUE", value));
    EXPECT_EQ(value, "proxy.example");
    std::vector<std::string> names;
    EXPECT_TRUE(other.Enum_SectionNames(names));
    EXPECT_THAT(names, ElementsAre("ProxySwitch", "ProxyHost", "ProxyPort"));
    EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(Ini, EmptyValueReadsAsMissing)
{
    ASSERT_TRUE(store_.WriteValue("A", "k", ""));
    std::string value = "kept";
    EXPECT_FALSE(store_.ReadValue("A", "k", value));
    EXPECT_EQ(value, "kept");
    EXPECT_NE(store_.LastErrorDescription(), "");
}

TEST_F(Ini, MissingFileSectionOrKeyIsAFailureWithADescription)
{
    std::string value = "kept";
    EXPECT_FALSE(store_.ReadValue("A", "k", value));
    EXPECT_NE(store_.LastErrorDescription(), "");
    EXPECT_NE(store_.LastErrorDescription(), "An unknown error has occured");
    EXPECT_FALSE(fs::exists(path_)) << "reading must not create a file";
    put("[A]\nk=1\n");
    EXPECT_FALSE(store_.ReadValue("A", "x", value));
    EXPECT_FALSE(store_.ReadValue("B", "k", value));
    EXPECT_NE(store_.LastErrorDescription(), "");
    std::vector<std::string> keys;
    std::vector<std::string> values;
    EXPECT_FALSE(store_.ReadSection("B", keys, values));
    EXPECT_EQ(value, "kept");
}

TEST_F(Ini, LongValueIsCutTo254Characters)
{
    const std::string longValue = std::string(253, 'x') + "yz" + std::string(45, 'w');
    ASSERT_TRUE(store_.WriteValue("A", "k", longValue));
    std::string value;
    ASSERT_TRUE(store_.ReadValue("A", "k", value));
    EXPECT_EQ(value, longValue.substr(0, 254));
    EXPECT_THAT(content(), HasSubstr(longValue));
}

TEST_F(Ini, SectionIsSplitAtTheFirstEqualsSign)
{
    put("[A]\na=1\nb=x=y\n");
    std::vector<std::string> keys{"old", "old", "old"};
    std::vector<std::string> values;
    ASSERT_TRUE(store_.ReadSection("A", keys, values));
    EXPECT_THAT(keys, ElementsAre("a", "b"));
    EXPECT_THAT(values, ElementsAre("1", "x=y"));
}

TEST_F(Ini, LongSectionIsCutBehindTheLastWholeEntry)
{
    std::string text = "[A]\n";
    for (int i = 1000; i < 9000; ++i)
        text.append("key")
            .append(std::to_string(i))
            .append("=")
            .append(std::to_string(i))
            .append("\n"); // 13 characters each in the buffer
    put(text);
    std::vector<std::string> keys;
    std::vector<std::string> values;
    ASSERT_TRUE(store_.ReadSection("A", keys, values));
    EXPECT_EQ(keys.size(), 32765U / 13U);
    EXPECT_EQ(keys.back(), std::string("key").append(std::to_string(999 + keys.size())));
    EXPECT_EQ(values.back(), std::to_string(999 + keys.size()));
}

TEST_F(Ini, OneEntryTooLongForTheBufferLeavesOneEmptySlot)
{
    put(std::string("[A]\nk=").append(40000, 'x').append("\n"));
    std::vector<std::string> keys;
    std::vector<std::string> values;
    ASSERT_TRUE(store_.ReadSection("A", keys, values));
    EXPECT_THAT(keys, ElementsAre(""));
    EXPECT_THAT(values, ElementsAre(""));
}

TEST_F(Ini, WriteSectionReplacesTheEntries)
{
    put("[A]\nold=1\n[B]\nk=2\n");
    ASSERT_TRUE(store_.WriteSection("A", {"x", "y"}, {"1", "a=b"}));
    std::vector<std::string> keys;
    std::vector<std::string> values;
    ASSERT_TRUE(store_.ReadSection("A", keys, values));
    EXPECT_THAT(keys, ElementsAre("x", "y"));
    EXPECT_THAT(values, ElementsAre("1", "a=b"));
    std::string value;
    EXPECT_TRUE(store_.ReadValue("B", "k", value));
    EXPECT_EQ(value, "2");
}

TEST_F(Ini, ArraysOfDifferentSizeWriteNothing)
{
    put("[A]\nold=1\n");
    EXPECT_FALSE(store_.WriteSection("A", {"x", "y"}, {"1"}));
    EXPECT_EQ(store_.LastErrorDescription(), "Key array and Value array must be of the same size");
    EXPECT_EQ(content(), "[A]\nold=1\n");
}

TEST_F(Ini, TextsThatWouldInjectLinesAreRefused)
{
    put("[ProxySwitch]\nValue=off\n");
    EXPECT_FALSE(store_.WriteValue("ProxyHost", "Value", "h\n[ProxySwitch]\nValue=on"));
    EXPECT_FALSE(store_.WriteValue("ProxyHost", "Value", "h\r[ProxySwitch]"));
    EXPECT_FALSE(store_.WriteValue("A]\n[B", "Value", "h"));
    EXPECT_FALSE(store_.WriteValue("A", "k=1\nj", "h"));
    EXPECT_FALSE(store_.WriteValue("A", "", "h"));
    EXPECT_FALSE(store_.WriteValue("", "k", "h"));
    EXPECT_FALSE(store_.WriteSection("A", {"k", "j"}, {"1", "2\n3"}));
    EXPECT_NE(store_.LastErrorDescription(), "");
    EXPECT_EQ(content(), "[ProxySwitch]\nValue=off\n");
}

TEST_F(Ini, NulInAValueEndsIt)
{
    put(std::string("[A]\nk=ab\0cd\nj=2\n", 17));
    std::string value;
    ASSERT_TRUE(store_.ReadValue("A", "k", value));
    EXPECT_EQ(value, "ab");
    ASSERT_TRUE(store_.ReadValue("A", "j", value));
    EXPECT_EQ(value, "2");
}

TEST_F(Ini, FileWithoutFinalLineEndIsReadAndContinued)
{
    put("[A]\nk=1");
    std::string value;
    ASSERT_TRUE(store_.ReadValue("A", "k", value));
    EXPECT_EQ(value, "1");
    ASSERT_TRUE(store_.WriteValue("B", "k", "2"));
    ASSERT_TRUE(store_.ReadValue("A", "k", value));
    EXPECT_EQ(value, "1");
    ASSERT_TRUE(store_.ReadValue("B", "k", value));
    EXPECT_EQ(value, "2");
}

TEST_F(Ini, MillionLinesAreReadAndKept)
{
    std::string text;
    for (int i = 0; i < 1000000; ++i)
        text.append(i % 1000 == 0 ? "[s]\n" : "k=v\n");
    put(text + "[last]\nk=1\n");
    ASSERT_TRUE(store_.WriteValue("last", "k", "2"));
    std::string value;
    ASSERT_TRUE(store_.ReadValue("last", "k", value));
    EXPECT_EQ(value, "2");
    ASSERT_TRUE(store_.ReadValue("s", "k", value));
    EXPECT_EQ(value, "v");
#ifndef _WIN32
    EXPECT_TRUE(content() == text + "[last]\nk=2\n");
#endif
}

TEST_F(Ini, DirectoryInItsPlaceIsAFailureWithADescription)
{
    fs::create_directory(path_);
    std::string value = "kept";
    std::vector<std::string> names;
    EXPECT_FALSE(store_.ReadValue("A", "k", value));
    EXPECT_FALSE(store_.Enum_SectionNames(names));
    EXPECT_FALSE(store_.WriteValue("A", "k", "v"));
    EXPECT_NE(store_.LastErrorDescription(), "");
    EXPECT_TRUE(fs::is_directory(path_));
    EXPECT_EQ(filesInFolder(), 1U);
}

TEST_F(Ini, MissingFolderIsAFailureWithADescription)
{
    store_.setFileName(bytesOf(folder_ / "none" / "Quarrynet.ini"));
    EXPECT_FALSE(store_.WriteValue("A", "k", "v"));
    EXPECT_NE(store_.LastErrorDescription(), "");
}
