#include <random>
#include <string>

#include <gtest/gtest.h>

#include "common/profile_encoding.h"

using namespace quarrynet;
using namespace std::string_literals;

TEST(ProfileEncoding, TextWithoutMarkStays)
{
    for (const std::string& bytes : {""s, "[A]\nk=\xE9\0"s, "\xEF\xBB"s, "\xFF"s, "\xFE"s}) {
        const ProfileText profile = decodeProfile(bytes);
        EXPECT_EQ(profile.encoding, ProfileEncoding::CodePage);
        EXPECT_EQ(profile.text, bytes);
        EXPECT_EQ(encodeProfile(profile), bytes);
    }
}

TEST(ProfileEncoding, MarkOfUtf8IsTakenOffAndPutBack)
{
    const std::string bytes = "\xEF\xBB\xBF[A]\r\nk=\xC3\xA4\xFF\0"s;
    const ProfileText profile = decodeProfile(bytes);
    EXPECT_EQ(profile.encoding, ProfileEncoding::Utf8);
    EXPECT_EQ(profile.text, bytes.substr(3));
    EXPECT_EQ(encodeProfile(profile), bytes);
    EXPECT_EQ(encodeProfile(decodeProfile("\xEF\xBB\xBF")), "\xEF\xBB\xBF");
}

TEST(ProfileEncoding, Utf16OfBothOrdersIsUtf8Inside)
{
    const std::string little = "\xFF\xFEk\0=\0\x42\x01\x3D\xD8\0\xDE\n\0"s;
    const std::string big = "\xFE\xFF\0k\0=\x01\x42\xD8\x3D\xDE\0\0\n"s;
    EXPECT_EQ(decodeProfile(little).encoding, ProfileEncoding::Utf16LittleEndian);
    EXPECT_EQ(decodeProfile(big).encoding, ProfileEncoding::Utf16BigEndian);
    for (const std::string& bytes : {little, big}) {
        const ProfileText profile = decodeProfile(bytes);
        EXPECT_EQ(profile.text, "k=\xC5\x82\xF0\x9F\x98\x80\n");
        EXPECT_EQ(encodeProfile(profile), bytes);
    }
}

TEST(ProfileEncoding, BrokenUtf16IsReadWithMarks)
{
    EXPECT_EQ(decodeProfile("\xFF\xFE").text, "");
    EXPECT_EQ(decodeProfile("\xFF\xFEk\0="s).text, "k");                                  // half a unit
    EXPECT_EQ(decodeProfile("\xFF\xFE\x3D\xD8k\0"s).text, "\xEF\xBF\xBDk");               // half a pair
    EXPECT_EQ(decodeProfile("\xFF\xFEk\0\x3D\xD8"s).text, "k\xEF\xBF\xBD");               // at the end
    EXPECT_EQ(decodeProfile("\xFF\xFE\0\xDE\x3D\xD8"s).text, "\xEF\xBF\xBD\xEF\xBF\xBD"); // the wrong way round
}

TEST(ProfileEncoding, WhatWasDecodedDecodesTheSameAgain)
{
    std::mt19937 random(3);
    for (int round = 0; round < 5000; ++round) {
        std::string bytes = round % 2 == 0 ? "\xFF\xFE" : "\xFE\xFF";
        for (std::size_t i = random() % 12; i > 0; --i)
            bytes.push_back(static_cast<char>(random() % 4 == 0 ? 0xD8 + random() % 8 : random() % 256));
        const ProfileText profile = decodeProfile(bytes);
        EXPECT_EQ(decodeProfile(encodeProfile(profile)).text, profile.text);
    }
}
