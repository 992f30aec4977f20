#include "script/numbers.h"

#include <gtest/gtest.h>

#include <array>
#include <charconv>
#include <climits>
#include <clocale>
#include <cmath>
#include <cstring>
#include <limits>
#include <locale>
#include <random>
#include <sstream>
#include <string>

namespace lumo::script {
namespace {

TEST(ParseInteger, TakesDigitsUpToTheFirstOtherCharacter) {
    EXPECT_EQ(ParseInteger("128"), 128);
    EXPECT_EQ(ParseInteger("-24"), -24);
    EXPECT_EQ(ParseInteger("+7"), 7);
    EXPECT_EQ(ParseInteger(" \t\r\n\v\f 12"), 12);
    EXPECT_EQ(ParseInteger("007"), 7);
    EXPECT_EQ(ParseInteger("12.9"), 12);
    EXPECT_EQ(ParseInteger("1e3"), 1);
    EXPECT_EQ(ParseInteger("0x10"), 0);
    EXPECT_EQ(ParseInteger("5%"), 5);
}

TEST(ParseInteger, IsZeroWithoutANumber) {
    for (const char* text : {"", " ", "-", "+", "--5", "+-5", "- 5", "abc", ".5", "\"5\""})
        EXPECT_EQ(ParseInteger(text), 0) << text;
    EXPECT_EQ(ParseInteger(std::string_view("\0001", 2)), 0);
}

TEST(ParseInteger, StopsAtTheEndsOfInt) {
    EXPECT_EQ(ParseInteger("2147483647"), INT_MAX);
    EXPECT_EQ(ParseInteger("2147483646"), INT_MAX - 1);
    EXPECT_EQ(ParseInteger("2147483648"), INT_MAX);
    EXPECT_EQ(ParseInteger("-2147483647"), INT_MIN + 1);
    EXPECT_EQ(ParseInteger("-2147483648"), INT_MIN);
    EXPECT_EQ(ParseInteger("-2147483649"), INT_MIN);
    EXPECT_EQ(ParseInteger(std::string(1000, '9')), INT_MAX);
    EXPECT_EQ(ParseInteger("-" + std::string(1000, '9')), INT_MIN);
}

TEST(ParseInteger, LooksAtNothingBehindItsText) {
    EXPECT_EQ(ParseInteger(std::string_view("12345").substr(0, 2)), 12);
}

TEST(ConvertStringToDouble, ReadsDecimalNumbers) {
    EXPECT_EQ(ConvertStringToDouble("1.0"), 1.0);
    EXPECT_EQ(ConvertStringToDouble("-2.5"), -2.5);
    EXPECT_EQ(ConvertStringToDouble("+2.5"), 2.5);
    EXPECT_EQ(ConvertStringToDouble(".5"), 0.5);
    EXPECT_EQ(ConvertStringToDouble("-.5"), -0.5);
    EXPECT_EQ(ConvertStringToDouble("5."), 5.0);
    EXPECT_EQ(ConvertStringToDouble(" 3.25 px"), 3.25);
    EXPECT_EQ(ConvertStringToDouble("1e3"), 1000.0);
    EXPECT_EQ(ConvertStringToDouble("1.5E-2x"), 0.015);
    EXPECT_EQ(ConvertStringToDouble("2e"), 2.0);
    EXPECT_EQ(ConvertStringToDouble("0.1"), 0.1);
    EXPECT_EQ(ConvertStringToDouble("1,5"), 1.0);
    EXPECT_EQ(ConvertStringToDouble("1.2.3"), 1.2);
}

TEST(ConvertStringToDouble, IsZeroWithoutAFiniteNumber) {
    for (const char* text : {"", " ", "-", "+", ".", "-.", "--1", "+-1", "-+1", "- 1", "e5", "abc",
                             "inf", "-inf", "Infinity", "nan", "NAN(1)", "1e400", "-1e400"})
        EXPECT_EQ(ConvertStringToDouble(text), 0.0) << text;
    EXPECT_EQ(ConvertStringToDouble(std::string(400, '9')), 0.0);  // beyond the largest double
}

TEST(ConvertStringToDouble, KnowsNoHexadecimalAndNoNegativeZero) {
    EXPECT_EQ(ConvertStringToDouble("0x10"), 0.0);
    EXPECT_FALSE(std::signbit(ConvertStringToDouble("-0")));
    EXPECT_FALSE(std::signbit(ConvertStringToDouble("-1e-999")));
}

TEST(GetFloatValue, KeepsAtLeastOneDigitBehindThePoint) {
    EXPECT_EQ(GetFloatValue("1"), "1.0");
    EXPECT_EQ(GetFloatValue("1.0"), "1.0");
    EXPECT_EQ(GetFloatValue(".5"), "0.5");
    EXPECT_EQ(GetFloatValue("-.5"), "-0.5");
    EXPECT_EQ(GetFloatValue("1.50"), "1.5");
    EXPECT_EQ(GetFloatValue("007.25"), "7.25");
    EXPECT_EQ(GetFloatValue("0.1"), "0.1");
    EXPECT_EQ(GetFloatValue("3.14159265358979"), "3.14159265358979");
    EXPECT_EQ(GetFloatValue("1e3"), "1000.0");
    EXPECT_EQ(GetFloatValue("1e-7"), "0.0000001");
    EXPECT_EQ(GetFloatValue("1e22"), "10000000000000000000000.0");
}

TEST(GetFloatValue, IsZeroWithoutANumber) {
    for (const char* text : {"", "abc", "-", "-0", "inf", "nan"})
        EXPECT_EQ(GetFloatValue(text), "0.0") << text;
}

TEST(GetFloatValue, HasRoomForTheLongestNumbers) {
    for (const double value :
         {std::numeric_limits<double>::max(), std::numeric_limits<double>::lowest(),
          std::numeric_limits<double>::denorm_min(), -std::numeric_limits<double>::denorm_min(),
          -std::numeric_limits<double>::min()}) {
        std::array<char, 64> typed{};
        std::to_chars(typed.data(), typed.data() + typed.size(), value);
        EXPECT_EQ(ConvertStringToDouble(GetFloatValue(typed.data())), value) << typed.data();
    }
}

TEST(GetFloatValue, ReadsBackTheSameForAnyNumber) {
    std::mt19937_64 random(1);
    for (int i = 0; i < 20000; ++i) {
        const std::uint64_t bits = random();
        double value = 0;
        std::memcpy(&value, &bits, sizeof value);
        if (!std::isfinite(value)) continue;
        std::array<char, 64> typed{};
        std::to_chars(typed.data(), typed.data() + typed.size(), value);
        const std::string text = GetFloatValue(typed.data());
        ASSERT_EQ(ConvertStringToDouble(text), value) << typed.data();
        ASSERT_EQ(GetFloatValue(text), text);
        ASSERT_NE(text.find('.'), std::string::npos);
        ASSERT_EQ(text.find_first_not_of("-.0123456789"), std::string::npos);
    }
}

TEST(IntegerToString, IsDecimal) {
    EXPECT_EQ(IntegerToString(0), "0");
    EXPECT_EQ(IntegerToString(-24), "-24");
    EXPECT_EQ(IntegerToString(LLONG_MIN), "-9223372036854775808");
    EXPECT_EQ(IntegerToString(LLONG_MAX), "9223372036854775807");
}

/// A locale with a decimal comma and grouped digits, for streams on any machine and for the C
/// library where the machine has one.
class CommaLocale {
  public:
    CommaLocale() : streams_(std::locale::global(std::locale(std::locale(), new Comma))) {
        for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "pl_PL.UTF-8", "de_DE"})
            if (std::setlocale(LC_ALL, name)) break;
    }
    ~CommaLocale() {
        std::locale::global(streams_);
        std::setlocale(LC_ALL, c_.c_str());
    }

  private:
    struct Comma : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    std::string c_ = std::setlocale(LC_ALL, nullptr);
    std::locale streams_;
};

TEST(Numbers, AreTheSameInALocaleWithADecimalComma) {
    const CommaLocale locale;
    std::ostringstream stream;
    stream << 1.5;
    ASSERT_EQ(stream.str(), "1,5");
    EXPECT_EQ(ConvertStringToDouble("1.5"), 1.5);
    EXPECT_EQ(GetFloatValue("1.5"), "1.5");
    EXPECT_EQ(GetFloatValue("1234567"), "1234567.0");
    EXPECT_EQ(IntegerToString(1234567), "1234567");
}

}  // namespace
}  // namespace lumo::script
