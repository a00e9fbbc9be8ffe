#include <gtest/gtest.h>

#include "common/numbers.h"

using namespace quarrynet;

TEST(LeadingNumber, ReadsAsFarAsItMakesSense)
{
    EXPECT_EQ(leadingNumber("8080"), 8080);
    EXPECT_EQ(leadingNumber("  8080 or so"), 8080);
    EXPECT_EQ(leadingNumber("-12x"), -12);
    EXPECT_DOUBLE_EQ(leadingNumber("2.5.7"), 2.5);
}

TEST(LeadingNumber, NoDigitsGiveZero)
{
    EXPECT_EQ(leadingNumber(""), 0);
    EXPECT_EQ(leadingNumber("abc"), 0);
    EXPECT_EQ(leadingNumber("-"), 0);
    EXPECT_EQ(leadingNumber("."), 0);
    EXPECT_EQ(leadingNumber("inf"), 0);
    EXPECT_EQ(leadingNumber(std::string_view("\0"
                                             "5",
                                             2)),
              0);
}

TEST(StrictNumber, WholeTextOrTypeMismatch)
{
    EXPECT_EQ(*strictNumber("1234"), 1234);
    EXPECT_EQ(*strictNumber("  1234  "), 1234);
    EXPECT_DOUBLE_EQ(*strictNumber("0.25"), 0.25);
    for (const char* text : {"", " ", "1,234", "12a", "a12", "1 2", "0x10", "nan", "1e3", "+", ".", "--1"})
        EXPECT_EQ(strictNumber(text).error(), RuntimeError::TypeMismatch) << text;
}

TEST(StrictNumber, NulInTheMiddleIsNoNumber)
{
    EXPECT_FALSE(strictNumber(std::string_view("1\0"
                                               "2",
                                               3)));
}

TEST(Round, HalvesGoToEven)
{
    EXPECT_EQ(*roundToInt16(8.5), 8);
    EXPECT_EQ(*roundToInt16(9.5), 10);
    EXPECT_EQ(*roundToInt16(-0.5), 0);
    EXPECT_EQ(*roundToInt32(41.13), 41);
}

TEST(Round, WhatDoesNotFitOverflows)
{
    EXPECT_EQ(*roundToInt16(32767), 32767);
    EXPECT_EQ(*roundToInt16(32767.4), 32767);
    EXPECT_EQ(roundToInt16(32767.5).error(), RuntimeError::Overflow);
    EXPECT_EQ(*roundToInt16(-32768), -32768);
    EXPECT_EQ(roundToInt16(-32769).error(), RuntimeError::Overflow);
    EXPECT_EQ(roundToInt32(2147483648.0).error(), RuntimeError::Overflow);
    EXPECT_EQ(roundToInt32(leadingNumber(std::string(400, '9'))).error(), RuntimeError::Overflow);
}

// Summing up the values of the digits gave 0.30000000000000004.
TEST(LeadingNumber, IsTheNearestDouble)
{
    EXPECT_EQ(leadingNumber("0.3"), 0.3);
    EXPECT_EQ(leadingNumber(" -0.7x"), -0.7);
    EXPECT_EQ(*strictNumber("0.3"), 0.3);
    EXPECT_EQ(*strictNumber(" 1234567.891 "), 1234567.891);
}
