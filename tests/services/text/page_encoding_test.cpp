#include <gtest/gtest.h>

#include "text/PageEncoding.h"

using namespace quarrynet;
using namespace quarrynet::services;

TEST(PageEncoding, LabelsCompareWithoutCaseAndBlanks)
{
    for (const char* label : {"utf-8", "UTF-8", " utf8\n", "Unicode-1-1-UTF-8"})
        EXPECT_EQ(PageEncoding::named(label)->name(), "UTF-8") << label;
    EXPECT_EQ(PageEncoding::named("ISO_8859-1:1987")->name(), "CP1252");
    EXPECT_EQ(PageEncoding::named("\tshift_jis ")->name(), "CP932");
}

TEST(PageEncoding, OtherTextIsNoLabel)
{
    for (const std::string label : {"", " ", "utf", "utf-8 koi8-r", "utf-8//TRANSLIT", "-8859-1", "../utf-8", "utf-7",
                                    "x-user-defined", "koi8-r koi8_r"})
        EXPECT_FALSE(PageEncoding::named(label)) << label;
    EXPECT_FALSE(PageEncoding::named(std::string_view("utf-8\0", 6)));
    EXPECT_FALSE(PageEncoding::named(std::string(100000, 'a')));
}

TEST(PageEncoding, SystemKnowsThemAll)
{
    for (const char* label :
         {"utf-8",    "latin1",      "cp1250",      "cp1251",  "cp1253", "latin5",      "cp1255",
          "cp1256",   "cp1257",      "cp1258",      "tis-620", "latin2", "latin3",      "latin4",
          "cyrillic", "arabic",      "greek",       "hebrew",  "latin6", "iso-8859-13", "iso-8859-14",
          "l9",       "iso-8859-16", "koi8-r",      "koi8-u",  "ibm866", "macintosh",   "gbk",
          "big5",     "euc-jp",      "iso-2022-jp", "sjis",    "euc-kr"}) {
        const auto encoding = PageEncoding::named(label);
        ASSERT_TRUE(encoding) << label;
        EXPECT_EQ(encoding->toUtf8("plain"), "plain") << label;
    }
}

TEST(PageEncoding, WhatCannotBeInItBecomesTheReplacementCharacter)
{
    EXPECT_EQ(PageEncoding::named("sjis")->toUtf8("a\x81"), "a\xef\xbf\xbd");
    EXPECT_EQ(PageEncoding::named("sjis")->toUtf8("\xff\xfe"
                                                  "b"),
              "\xef\xbf\xbd\xef\xbf\xbd"
              "b");
    EXPECT_EQ(PageEncoding::named("utf-8")->toUtf8("\xed\xa0\x80"), "\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd");
    EXPECT_EQ(PageEncoding::named("utf-8")->toUtf8(""), "");
    const std::string zeros(40000, '\0');
    EXPECT_EQ(PageEncoding::named("koi8-r")->toUtf8(zeros), zeros);
}
