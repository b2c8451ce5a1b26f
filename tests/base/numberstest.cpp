#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <limits>
#include <string>
#include <vector>

#include "base/numbers.h"
#include "base/textfile.h"
#include "testutil.h"

namespace zelko {
namespace {

// The process runs in a comma-decimal locale, as the desktop application does once
// Qt adopts the user's settings.
class CommaDecimalLocale : public ::testing::Test {
protected:
    void SetUp() override
    {
        previous_ = std::setlocale(LC_ALL, nullptr);
        // scripts/install-deps.sh installs the locale; without it nothing here is proven.
        ASSERT_NE(std::setlocale(LC_ALL, "de_DE.UTF-8"), nullptr)
            << "locale de_DE.UTF-8 is missing: run scripts/install-deps.sh";
        ASSERT_EQ(cLibraryText(1.5), "1,5");
    }
    void TearDown() override { std::setlocale(LC_ALL, previous_.c_str()); }

    // What the C library itself makes of a number in the process locale.
    static std::string cLibraryText(double value)
    {
        char text[32];
        std::snprintf(text, sizeof text, "%.1f", value);
        return text;
    }

private:
    std::string previous_;
};

TEST_F(CommaDecimalLocale, EveryFormatOfTheLayoutsKeepsTheDecimalPoint)
{
    struct Case {
        std::string text;
        std::string_view expected;
    };
    const Case cases[] = {
        {formatText("%g|%g|%g", 0.5, 1e-5, 123456789.0), "0.5|1e-05|1.23457e+08"},
        {formatText("%.4E", 210000.0), "2.1000E+05"},
        {formatText("%30.4E", -0.035), "                   -3.5000E-02"},
        {formatText("%17.4E|%16.4E|%15.4E", 1e-300, 2.5, -1.0), "      1.0000E-300|      2.5000E+00|    -1.0000E+00"},
        {formatText("%25.4E|%24.4E|%20.4E", 0.0, 123.456, 99999.95),
         "               0.0000E+00|              1.2346E+02|          1.0000E+05"},
        {formatText("%30.7E", 3.14159265), "                 3.1415927E+00"},
        {formatText("%f|%.8f|%.6f|%.7f", 1.5, 0.1, -2.0 / 3, 1e-7), "1.500000|0.10000000|-0.666667|0.0000001"},
        {formatText("%.1f|%.0f|%10.4f", 0.05, 2.5, 3.14159), "0.1|2|    3.1416"},
        {formatText("%.10g|%*d|%.*g|%8d", 1.0 / 3, 5, 42, 3, 2.71828, 21), "0.3333333333|   42|2.72|      21"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(c.text, c.expected);

    // The writer's own path, and its long-line path past the stack buffer.
    TextWriter out;
    out.format("%17.4E\n", 0.25);
    out.format("%300.2f\n", 0.5);
    EXPECT_EQ(test::textOf(out), "       2.5000E-01\n" + std::string(296, ' ') + "0.50\n");

    // The process keeps its own locale for everything else.
    EXPECT_EQ(cLibraryText(2.5), "2,5");
}

TEST_F(CommaDecimalLocale, NumbersReadWithTheDecimalPoint)
{
    EXPECT_EQ(toDouble(u"1.5"), 1.5);
    EXPECT_EQ(toDouble("-2.25e1"), -22.5);
    EXPECT_EQ(toDouble(u"1,5"), 1.0);  // the comma ends the number, as in any file of ours
    TextReader in = test::utf16Reader(" 0.125 7.5");
    double value = 0.0;
    ASSERT_TRUE(in.scanDouble(value));
    EXPECT_EQ(value, 0.125);
    ASSERT_TRUE(in.scanDouble(value));
    EXPECT_EQ(value, 7.5);

    EXPECT_EQ(parseNumberField("0.5", value), NumberField::Finite);
    EXPECT_EQ(value, 0.5);
    EXPECT_EQ(parseNumberField("0,5", value), NumberField::NotANumber);

    // Beyond the range the C library decides: it must still see a decimal point.
    EXPECT_EQ(toDouble(u"-1.5e400"), -HUGE_VAL);
    EXPECT_EQ(toDouble(u"2.5e-400"), 0.0);
    EXPECT_EQ(parseNumberField("1.5e400", value), NumberField::NotFinite);
    EXPECT_EQ(value, HUGE_VAL);
}

TEST(LenientNumbers, TakeTheLongestNumberAtTheStart)
{
    struct Case {
        std::u16string_view text;
        std::size_t length;
        double value;
    };
    const Case cases[] = {
        {u"12.5e3xyz", 6, 12500.0},
        {u"-.5", 3, -0.5},
        {u"+7", 2, 7.0},
        {u"1.e3", 4, 1000.0},
        {u"2e+", 1, 2.0},          // an exponent without digits isn't part of the number
        {u"0x1A", 1, 0.0},         // no hexadecimal in any layout
        {u"e5", 0, 0.0},
        {u" 1", 0, 0.0},           // white space is the caller's to skip
        {u"4.9e-324", 8, 4.9e-324},  // the smallest subnormal stays
        {u"1\u00B2", 1, 1.0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(utf16ToUtf8(c.text));
        double value = -1.0;
        EXPECT_EQ(leadingDouble(c.text, value), c.length);
        EXPECT_EQ(value, c.value);
    }
    double value = 0.0;
    EXPECT_EQ(leadingDouble(u"+Infinity!", value), 9u);
    EXPECT_EQ(value, HUGE_VAL);
    EXPECT_EQ(leadingDouble(u"nan(1)", value), 3u);  // strtod would take the brackets too; the layouts never hold them
    EXPECT_TRUE(std::isnan(value));
    // Too large although the exponent is negative: the digits decide, not the exponent's sign.
    EXPECT_EQ(leadingDouble(u"1" + std::u16string(400, u'0') + u"e-10", value), 405u);
    EXPECT_EQ(value, HUGE_VAL);
    EXPECT_EQ(leadingDouble(u"-0.0001e-320", value), 12u);
    EXPECT_TRUE(value == 0.0 && std::signbit(value));
}

TEST(LenientNumbers, IntegersSaturateAndNarrowTextReadsLikeWide)
{
    int value = -1;
    EXPECT_EQ(leadingInt(u"-0012ab", value), 5u);
    EXPECT_EQ(value, -12);
    EXPECT_EQ(leadingInt(u"+", value), 0u);
    EXPECT_EQ(value, 0);
    EXPECT_EQ(leadingInt(u"2147483648", value), 10u);
    EXPECT_EQ(value, INT_MAX);
    EXPECT_EQ(leadingInt(u"-2147483648", value), 11u);
    EXPECT_EQ(value, INT_MIN);
    EXPECT_EQ(leadingInt(u"-" + std::u16string(60, u'9'), value), 61u);
    EXPECT_EQ(value, INT_MIN);
    EXPECT_EQ(toInt(std::string_view(" \t-99999999999x")), INT_MIN);
    EXPECT_EQ(toInt(std::string_view("\v+31")), 31);
    EXPECT_EQ(toDouble(std::string_view("\f2.5e-1 ")), 0.25);
    EXPECT_EQ(toDouble(std::string_view("\xC2\xB5" "5")), 0.0);  // a byte beyond ASCII is no digit
}

TEST(NumberFields, AcceptASignedDecimalNumberThatFillsTheField)
{
    const std::pair<std::string_view, double> good[] = {
        {"1", 1.0},     {"-2.5", -2.5}, {"+3e2", 300.0}, {".5", 0.5},           {"5.", 5.0},
        {"1E-3", 1e-3}, {"-0", -0.0},   {"+0.1", 0.1},   {"4.9e-324", 4.9e-324}, {"007", 7.0},
    };
    for (const auto& [text, expected] : good) {
        SCOPED_TRACE(text);
        double value = -1.0;
        EXPECT_EQ(parseNumberField(text, value), NumberField::Finite);
        EXPECT_EQ(value, expected);
        EXPECT_EQ(std::signbit(value), std::signbit(expected));
    }
    double value = 0.0;
    EXPECT_EQ(parseNumberField(u"-12.75", value), NumberField::Finite);
    EXPECT_EQ(value, -12.75);
}

TEST(NumberFields, RefuseEverythingElseAndSayWhy)
{
    for (const std::string_view text :
         {"", " 1", "1 ", "1.2x", "0x10", "+-1", "++1", "-+1", "+", "-", "1,5", "e5", ".", "1e", "\xC2\xB5"}) {
        SCOPED_TRACE(text);
        double value = 0.0;
        EXPECT_EQ(parseNumberField(text, value), NumberField::NotANumber);
    }
    for (const std::u16string_view text : {u"", u"\u00BD", u"\uFF11", u"2\u2009"}) {
        double value = 0.0;
        EXPECT_EQ(parseNumberField(text, value), NumberField::NotANumber);
    }

    // Numbers, but none a double holds: the value says so too.
    struct NotFinite {
        std::string_view text;
        double value;
    };
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const NotFinite notFinite[] = {
        {"inf", HUGE_VAL}, {"-Infinity", -HUGE_VAL}, {"nan", nan}, {"1e999", HUGE_VAL}, {"-1e999", -HUGE_VAL},
        {"1e-400", nan},  // too small to tell from zero
    };
    for (const NotFinite& c : notFinite) {
        SCOPED_TRACE(c.text);
        double value = 0.0;
        EXPECT_EQ(parseNumberField(c.text, value), NumberField::NotFinite);
        if (std::isnan(c.value))
            EXPECT_TRUE(std::isnan(value));
        else
            EXPECT_EQ(value, c.value);
    }

    EXPECT_STREQ(numberFieldProblem(NumberField::NotANumber), "not a number");
    EXPECT_STREQ(numberFieldProblem(NumberField::NotFinite), "not a finite number");
    EXPECT_STREQ(numberFieldProblem(NumberField::Finite), "");
}

TEST(AllFinite, LooksAtEveryProjectedValueOfEveryElement)
{
    struct Point {
        double x, y, weight;
    };
    const auto xy = [](const Point& p) { return std::array{p.x, p.y}; };
    const double nan = std::numeric_limits<double>::quiet_NaN();
    std::vector<Point> curve = {{0, 1, 1}, {0.1, 2, 1}, {0.2, 3, 1}};
    EXPECT_TRUE(allFinite(curve, xy));
    curve[2].weight = nan;
    EXPECT_TRUE(allFinite(curve, xy));  // a value the projection leaves out is not looked at
    EXPECT_FALSE(allFinite(curve, [](const Point& p) { return std::array{p.x, p.y, p.weight}; }));
    curve[2].weight = 1;
    curve[1].y = -HUGE_VAL;  // the second value of a middle element
    EXPECT_FALSE(allFinite(curve, xy));
    EXPECT_FALSE(allFinite(curve, &Point::y));

    EXPECT_TRUE(allFinite(std::vector<double>{}));
    EXPECT_TRUE(allFinite(std::vector<double>{1.0, -2.0, 0.0}));
    EXPECT_FALSE(allFinite(std::vector<double>{1.0, nan}));
}

}  // namespace
}  // namespace zelko
