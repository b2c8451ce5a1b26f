#include <gtest/gtest.h>

#include <bit>
#include <climits>
#include <cmath>
#include <cstdarg>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "base/numbers.h"
#include "base/textfile.h"

namespace zelko {
namespace {

// What the C library writes, and what the writer's own conversions write.
std::string libraryText(const char* fmt, ...) ZELKO_PRINTF_FORMAT(1, 2);
std::string libraryText(const char* fmt, ...)
{
    char text[1024];
    va_list args;
    va_start(args, fmt);
    const int needed = formatInCLocale(text, sizeof text, fmt, args);
    va_end(args);
    EXPECT_GE(needed, 0);
    EXPECT_LT(needed, static_cast<int>(sizeof text));
    return std::string(text, static_cast<std::size_t>(std::max(needed, 0)));
}

std::string ownText(const char* fmt, ...) ZELKO_PRINTF_FORMAT(1, 2);
std::string ownText(const char* fmt, ...)
{
    std::string out = "kept|";  // appended to, never replaced
    va_list args;
    va_start(args, fmt);
    appendFormattedV(out, fmt, args);
    va_end(args);
    EXPECT_EQ(out.substr(0, 5), "kept|");
    return out.substr(5);
}

// Doubles of every kind: random bit patterns (subnormals, huge values, inf and
// nan among them), decimal-looking values over many magnitudes, negatives, and
// values that lie exactly halfway between two results (dyadic fractions).
std::vector<double> manyDoubles()
{
    std::vector<double> values = {0.0,
                                  -0.0,
                                  1.0,
                                  -1.0,
                                  0.5,
                                  2.5,
                                  0.125,
                                  0.375,
                                  -0.625,
                                  1.0625,
                                  99999.95,
                                  9.9999995,
                                  0.05,
                                  1e-7,
                                  123456789.0,
                                  1e15,
                                  1e16,
                                  1e22,
                                  1e23,
                                  9007199254740993.0,
                                  std::numeric_limits<double>::max(),
                                  std::numeric_limits<double>::min(),
                                  std::numeric_limits<double>::denorm_min(),
                                  -std::numeric_limits<double>::denorm_min(),
                                  2.2250738585072009e-308,  // the largest subnormal
                                  HUGE_VAL,
                                  -HUGE_VAL,
                                  std::numeric_limits<double>::quiet_NaN(),
                                  -std::numeric_limits<double>::quiet_NaN()};
    std::mt19937_64 random(20240611);
    for (int i = 0; i < 3000; ++i)
        values.push_back(std::bit_cast<double>(random()));
    std::uniform_real_distribution<double> mantissa(-10.0, 10.0);
    std::uniform_int_distribution<int> exponent(-40, 40);
    for (int i = 0; i < 3000; ++i)
        values.push_back(mantissa(random) * std::pow(10.0, exponent(random)));
    // Ties for every precision up to 8 decimals and for the significant digits of %e / %g.
    std::uniform_int_distribution<long long> whole(0, 1'000'000'000);
    for (int i = 0; i < 2000; ++i) {
        const double tie = (static_cast<double>(whole(random)) + 0.5) / static_cast<double>(1 << (i % 12));
        values.push_back(i % 2 ? tie : -tie);
    }
    for (int i = 0; i < 500; ++i)  // the values of a curve file: i steps of 0.001, 100 + i steps of 0.05
        values.insert(values.end(), {i * 0.001, 100 + i * 0.05, 900.0 + 10 * i, 0.001 * (i + 1)});
    return values;
}

TEST(OwnConversions, WriteWhatPrintfWritesForEveryDoubleFormatOfTheLayouts)
{
    const char* const formats[] = {
        "%e",     "%E",     "%.0e",   "%.1E",    "%.4E",     "%17.4E",  "%30.7E",  "%.13e", "%.14e",
        "%.15e",  "%.16e",  "%.17e",  "%.20e",   "%f",       "%F",      "%.0f",    "%.1f",  "%.4f",
        "%10.4f", "%.6f",   "%.8f",   "%.15f",   "%.30f",    "%g",      "%G",      "%.0g",  "%.1g",
        "%.3g",   "%.10g",  "%.15g",  "%.17g",   "%-12.3g|", "%lf",     "%25.4E",  "%-30.7E|",
    };
    const std::vector<double> values = manyDoubles();
    for (const char* format : formats) {
        int differences = 0;
        for (const double value : values) {
            // The formats are runtime strings here on purpose: every one is checked against the library.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
            const std::string expected = libraryText(format, value);
            const std::string actual = ownText(format, value);
#pragma GCC diagnostic pop
            if (actual != expected && ++differences <= 3)
                ADD_FAILURE() << format << " of " << libraryText("%.17g", value) << ": \"" << actual
                              << "\", printf writes \"" << expected << "\"";
        }
        EXPECT_EQ(differences, 0) << format;
    }
}

TEST(OwnConversions, WriteIntegersStringsAndTextAsPrintfDoes)
{
    const auto same = [](const std::string& actual, const std::string& expected) { EXPECT_EQ(actual, expected); };
    for (const int v : {0, 1, -1, 42, -42, 12345678, -123456789, INT_MAX, INT_MIN}) {
        same(ownText("%d|%8d|%-8d|%i|%1d", v, v, v, v, v), libraryText("%d|%8d|%-8d|%i|%1d", v, v, v, v, v));
        same(ownText("%u|%hd|%hhd|%hu", static_cast<unsigned>(v), static_cast<short>(v), static_cast<signed char>(v),
                     static_cast<unsigned short>(v)),
             libraryText("%u|%hd|%hhd|%hu", static_cast<unsigned>(v), static_cast<short>(v),
                         static_cast<signed char>(v), static_cast<unsigned short>(v)));
    }
    for (const long long v : {0LL, -1LL, LLONG_MAX, LLONG_MIN, 4294967296LL}) {
        const auto size = static_cast<std::size_t>(v);
        const auto difference = static_cast<std::ptrdiff_t>(v);
        same(ownText("%lld|%ld|%8zd|%zu|%td|%jd|%llu", v, static_cast<long>(v), difference, size, difference,
                     static_cast<std::intmax_t>(v), static_cast<unsigned long long>(v)),
             libraryText("%lld|%ld|%8zd|%zu|%td|%jd|%llu", v, static_cast<long>(v), difference, size, difference,
                         static_cast<std::intmax_t>(v), static_cast<unsigned long long>(v)));
    }
    same(ownText("[%s|%10s|%-10s|%.3s|%.0s|%5.2s]", "abc", "abc", "abc", "abcdef", "abc", "xyz"),
         "[abc|       abc|abc       |abc||   xy]");
    same(ownText("%c%3c%-3c|%%|100%%", 'a', 'b', 'c'), "a  bc  |%|100%");
    same(ownText("no conversion at all"), "no conversion at all");
    same(ownText("%s", ""), "");
    // A precision longer than the string reads no further than its end.
    const char shortText[] = {'h', 'i', '\0', 'X'};
    same(ownText("%.10s", shortText), "hi");
}

TEST(OwnConversions, LeaveEverythingElseToPrintf)
{
    // Flags, "*", other conversions and long precisions: the library's answer, whole.
    EXPECT_EQ(ownText("%+d|%05.1f|% d", 7, 2.25, 3), "+7|002.2| 3");
    EXPECT_EQ(ownText("a %x b %o c %X", 255u, 8u, 171u), "a ff b 10 c AB");
    EXPECT_EQ(ownText("%*d|%.*f|%-*s|", 5, 42, 2, 0.125, 4, "z"), "   42|0.12|z   |");
    EXPECT_EQ(ownText("%#g|%#.0e|%a", 1.0, 2.0, 1.0), "1.00000|2.e+00|0x1p+0");
    EXPECT_EQ(ownText("%.150f", 0.1), libraryText("%.150f", 0.1));
    EXPECT_EQ(ownText("%Lg", 1.5L), "1.5");
    // Text before a conversion left to the library is not written twice.
    EXPECT_EQ(ownText("%d then %+d", 1, 2), "1 then +2");
    // Longer than any stack buffer.
    const std::string wide = ownText("%700.3f|%-600d|", 1.5, 9);
    EXPECT_EQ(wide, std::string(695, ' ') + "1.500|9" + std::string(599, ' ') + "|");
}

TEST(OwnConversions, FormatDoubleSaysWhenTheTextDoesNotFit)
{
    char text[16];
    char* end = formatDouble(text, text + sizeof text, -1.5, 'E', 2);
    ASSERT_NE(end, nullptr);
    EXPECT_EQ(std::string(text, end), "-1.50E+00");
    EXPECT_EQ(formatDouble(text, text + 4, -1.5, 'E', 2), nullptr);     // the short path
    EXPECT_EQ(formatDouble(text, text + 4, 0.1, 'e', 14), nullptr);    // the exact path
    EXPECT_EQ(formatDouble(text, text + 8, 1e300, 'f', 0), nullptr);
    EXPECT_EQ(formatDouble(text, text + sizeof text, 1.0, 'x', 2), nullptr);
    end = formatDouble(text, text + sizeof text, 0.25, 'g', -1);  // printf's default precision
    EXPECT_EQ(std::string(text, end), "0.25");
}

TEST(NumberReading, TakesEveryPrintedNumberAsStrtodDoes)
{
    // The printed forms of the layouts and of people's files, read back from both
    // kinds of text: the same double to the bit, and the same length taken.
    const char* const formats[] = {"%.7E", "%.4E", "%.17g", "%.15g", "%g", "%f", "%.10f", "%.0f", "%.3e", "%.25e"};
    int differences = 0;
    for (const double value : manyDoubles()) {
        for (const char* format : formats) {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
            const std::string text = libraryText(format, value) + "x";
#pragma GCC diagnostic pop
            const double expected = std::strtod(text.c_str(), nullptr);
            double wide = -1.0;
            EXPECT_EQ(leadingDouble(widen(text), wide), text.size() - 1) << text;
            const double narrow = toDouble(std::string_view(text));
            const auto same = [expected](double read) {
                return std::bit_cast<std::uint64_t>(read) == std::bit_cast<std::uint64_t>(expected)
                       || (std::isnan(read) && std::isnan(expected));
            };
            if ((!same(wide) || !same(narrow)) && ++differences <= 5)
                ADD_FAILURE() << text << " reads as " << libraryText("%.17g", wide) << " / "
                              << libraryText("%.17g", narrow) << ", strtod makes " << libraryText("%.17g", expected);
        }
    }
    EXPECT_EQ(differences, 0);
    // Spellings no printf makes: many leading zeros, digits beyond any double, long exponents.
    for (const std::string text :
         {"000000000000000000000000.5", "-0.000000000000000000000000001", "123456789012345678901234567890",
          "9007199254740993", "9007199254740992.0", "1.7976931348623157e308", "4.9406564584124654e-324",
          "1e-00000000000022", "0.1e23", "18446744073709551617", "0.18446744073709551621e5", "100000000000000000000000e-1", ".000e+5", "-0"}) {
        double wide = -1.0;
        EXPECT_EQ(leadingDouble(widen(text), wide), text.size()) << text;
        const double expected = std::strtod(text.c_str(), nullptr);
        EXPECT_EQ(std::bit_cast<std::uint64_t>(wide), std::bit_cast<std::uint64_t>(expected)) << text;
    }
}

TEST(OwnConversions, TheWriterAndMessagesUseThem)
{
    TextWriter out(TextEncoding::EightBit);
    out.format("%30.7E %17.4E %17.4E\n", 0.0, 0.699, 134.95);
    out.format("%8zd|%s|%+d\n", std::size_t{700}, "x", 5);
    EXPECT_EQ(out.bytes(), "                 0.0000000E+00        6.9900E-01        1.3495E+02\r\n"
                           "     700|x|+5\r\n");
    EXPECT_EQ(formatText("%g:%g", 1e-5, 0.1 + 0.2), "1e-05:0.3");
}

}  // namespace
}  // namespace zelko
