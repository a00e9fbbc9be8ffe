#include <clocale>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "ground/decimal.h"

using namespace quarrynet;

namespace {

/// Returns value and length, or "none" when there is no number.
std::string read(std::string_view text)
{
    const std::optional<DecimalNumber> number = decimalNumber(text);
    return number ? std::to_string(number->value) + "/" + std::to_string(number->length) : "none";
}

} // namespace

TEST(WholeNumber, TakesDigitsOnly)
{
    EXPECT_EQ(wholeNumber("0"), 0);
    EXPECT_EQ(wholeNumber("999999999"), 999999999);
    for (const char* text : {"", "-1", "+1", " 1", "1 ", "1.0", "9999999999", "x"})
        EXPECT_EQ(wholeNumber(text), std::nullopt) << text;
}

TEST(WholeNumber, TakesAsManyDigitsAsAlwaysFit)
{
    EXPECT_EQ(wholeNumber("000000007"), 7);
    EXPECT_EQ(wholeNumber("0000000007"), std::nullopt);
    EXPECT_EQ(wholeNumberAs<std::int64_t>("999999999999999999"), 999999999999999999);
    EXPECT_EQ(wholeNumberAs<std::int64_t>("1000000000000000000"), std::nullopt);
    EXPECT_EQ(wholeNumberAs<std::int64_t>(std::string(1000000, '1')), std::nullopt);
    EXPECT_EQ(wholeNumber(std::string_view("1\0", 2)), std::nullopt);
}

TEST(DecimalNumber, TakesSignDigitsAndOnePoint)
{
    EXPECT_EQ(read("12"), "12.000000/2");
    EXPECT_EQ(read("-12x"), "-12.000000/3");
    EXPECT_EQ(read("+2.5.7"), "2.500000/4");
    EXPECT_EQ(read(".5"), "0.500000/2");
    EXPECT_EQ(read("5."), "5.000000/2");
    EXPECT_EQ(read("1e3"), "1.000000/1");
    EXPECT_EQ(read("0x10"), "0.000000/1");
    EXPECT_EQ(read(std::string_view("1\0"
                                    "2",
                                    3)),
              "1.000000/1");
}

TEST(DecimalNumber, NoneWithoutADigit)
{
    for (const char* text : {"", "+", "-", ".", "-.", "--1", "+-1", " 1", "inf", "nan", "-inf", "e3"})
        EXPECT_EQ(read(text), "none") << text;
}

// Adding up the digits once gave 0.30000000000000004.
TEST(DecimalNumber, IsTheNearestDouble)
{
    EXPECT_EQ(decimalNumber("0.3")->value, 0.3);
    EXPECT_EQ(decimalNumber("-0.7")->value, -0.7);
    EXPECT_EQ(decimalNumber("123456.789")->value, 123456.789);
    EXPECT_EQ(decimalNumber("9007199254740993")->value, 9007199254740992.0); // between two doubles, so the even one
    EXPECT_EQ(decimalNumber("0." + std::string(30, '0') + "1")->value, 1e-31);
    EXPECT_TRUE(std::signbit(decimalNumber("-0")->value));
}

TEST(DecimalNumber, BeyondTheRangeIsInfinityOrZero)
{
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(decimalNumber(std::string(400, '9'))->value, kInfinity);
    EXPECT_EQ(decimalNumber("-" + std::string(400, '9') + ".5")->value, -kInfinity);
    EXPECT_EQ(decimalNumber("0." + std::string(400, '0') + "1")->value, 0);
    EXPECT_EQ(decimalNumber(std::string(400, '0') + "7")->value, 7);
    EXPECT_EQ(decimalNumber(std::string(1000000, '9'))->length, 1000000U);
}

TEST(DecimalNumber, LocaleChangesNothing)
{
    const std::string before = std::setlocale(LC_ALL, nullptr);
    int locales = 0;
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "German_Germany.1252"}) {
        if (std::setlocale(LC_ALL, name) == nullptr)
            continue;
        ++locales;
        EXPECT_EQ(decimalNumber("0.3")->value, 0.3) << name;
        EXPECT_EQ(decimalNumber("0,3")->length, 1U) << name;
    }
    std::setlocale(LC_ALL, before.c_str());
    if (locales == 0)
        GTEST_SKIP() << "this system has no locale with a decimal comma";
}
