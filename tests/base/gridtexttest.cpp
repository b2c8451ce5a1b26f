#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/gridtext.h"
#include "base/textfile.h"

namespace zelko {
namespace {

using Rows = std::vector<std::vector<std::string>>;

std::string coerced(std::string_view typed, CellRules rules)
{
    return utf16ToUtf8(coerceCellText(utf8ToUtf16(typed), rules));
}

// The table in UTF-8, so a failure prints readable text.
Rows parsed(std::string_view text, std::size_t maxColumns = 16, std::size_t maxRows = kMaxTableRows)
{
    const ParsedTable table = parseTabularText(utf8ToUtf16(text), maxColumns, maxRows);
    EXPECT_FALSE(table.tooManyRows) << text;
    Rows rows;
    for (const auto& row : table.rows) {
        rows.emplace_back();
        for (const auto& field : row)
            rows.back().push_back(utf16ToUtf8(field));
    }
    return rows;
}

TEST(CoerceCellText, IntegerColumn)
{
    const CellRules positive{.integerOnly = true, .negativesAllowed = false};
    const CellRules signedInts{.integerOnly = true, .negativesAllowed = true};
    EXPECT_EQ(coerced("-12", positive), "12");
    EXPECT_EQ(coerced("-12", signedInts), "-12");
    EXPECT_EQ(coerced("abc", positive), "0");
    EXPECT_EQ(coerced("", positive), "0");
    // atoi's reading: blanks first, then the leading digits only
    EXPECT_EQ(coerced("  42abc", positive), "42");
    EXPECT_EQ(coerced("3.9", positive), "3");
    EXPECT_EQ(coerced("+7", positive), "7");
    // a typed value beyond int saturates, and its absolute value stays an int
    EXPECT_EQ(coerced("-99999999999", positive), "2147483647");
    EXPECT_EQ(coerced("-99999999999", signedInts), "-2147483648");
    // integer only wins over real only
    EXPECT_EQ(coerced("2.5", {.integerOnly = true, .realOnly = true}), "2");
}

TEST(CoerceCellText, RealColumn)
{
    const CellRules positive{.realOnly = true, .negativesAllowed = false};
    const CellRules signedReals{.realOnly = true, .negativesAllowed = true};
    EXPECT_EQ(coerced("-0.5", positive), "0.5");
    EXPECT_EQ(coerced("-0.5", signedReals), "-0.5");
    EXPECT_EQ(coerced("1e3", positive), "1000");
    EXPECT_EQ(coerced("abc", positive), "0");
    EXPECT_EQ(coerced("0.1234567", positive), "0.123457");  // "%g" keeps six digits
    EXPECT_EQ(coerced("1e-5", positive), "1e-05");
    EXPECT_EQ(coerced("2,5", positive), "2");  // atof stops at a comma whatever the locale
}

TEST(CoerceCellText, TextColumnKeepsWhatWasTyped)
{
    EXPECT_EQ(coerced("-12 abc", {}), "-12 abc");
    EXPECT_EQ(coerced("", {.negativesAllowed = false}), "");
}

TEST(ParseTabularText, SeparatorsFromTheText)
{
    // a spreadsheet's copy: tabs, a line end after the last row
    EXPECT_EQ(parsed("1\t2\n3\t4\n"), (Rows{{"1", "2"}, {"3", "4"}}));
    // a CSV file saved in a decimal-comma locale
    EXPECT_EQ(parsed("1,5;2\r\n3;4,25\r\n"), (Rows{{"1.5", "2"}, {"3", "4.25"}}));
    EXPECT_EQ(parsed("1.5,2\n3,4"), (Rows{{"1.5", "2"}, {"3", "4"}}));
    // an instrument's columns apart by runs of spaces, line ends from an old Mac
    EXPECT_EQ(parsed("  20   0.1  150\r25 0.2 160  \r"), (Rows{{"20", "0.1", "150"}, {"25", "0.2", "160"}}));
    EXPECT_EQ(parsed("7"), (Rows{{"7"}}));
    EXPECT_EQ(parsed(""), Rows{});
}

TEST(ParseTabularText, EmptyFieldsAndBlankRows)
{
    EXPECT_EQ(parsed("1;;3;\n"), (Rows{{"1", "", "3", ""}}));
    EXPECT_EQ(parsed("\t2\n"), (Rows{{"", "2"}}));
    // a blank row inside the table stays; those at the end go
    EXPECT_EQ(parsed("1\t2\n\n3\t4\n\n\n"), (Rows{{"1", "2"}, {}, {"3", "4"}}));
    EXPECT_EQ(parsed(" a \t b\n"), (Rows{{"a", "b"}}));
}

TEST(ParseTabularText, QuotedFields)
{
    // what a spreadsheet copies for a cell holding a line end and a quote
    EXPECT_EQ(parsed("\"two\nlines\"\t\"say \"\"hi\"\"\"\nfive\tsix\n"),
              (Rows{{"two\nlines", "say \"hi\""}, {"five", "six"}}));
    EXPECT_EQ(parsed("\"1;2\";3\n"), (Rows{{"1;2", "3"}}));
    // an unclosed quote takes the rest of the text
    EXPECT_EQ(parsed("\"open\t1\n"), (Rows{{"open\t1\n"}}));
    // quoted text is not trimmed
    EXPECT_EQ(parsed("\" x \"\n"), (Rows{{" x "}}));
}

TEST(ParseTabularText, HeaderRowOfWordsIsSkipped)
{
    EXPECT_EQ(parsed("Strain\tStress [MPa]\n0.1\t150\n"), (Rows{{"0.1", "150"}}));
    EXPECT_EQ(parsed("T;;phi\n20;1;0,5\n"), (Rows{{"20", "1", "0.5"}}));
    // a first row holding a number is data
    EXPECT_EQ(parsed("Strain\t1\n0.1\t150\n"), (Rows{{"Strain", "1"}, {"0.1", "150"}}));
    // words over words, or words alone, are not a header
    EXPECT_EQ(parsed("a\tb\nc\td\n"), (Rows{{"a", "b"}, {"c", "d"}}));
    EXPECT_EQ(parsed("a\tb\n"), (Rows{{"a", "b"}}));
}

TEST(ParseTabularText, DecimalCommaOnlyWhereItIsANumber)
{
    EXPECT_EQ(parsed("-1,5e3;a,b;1,2,3;1.000,5\n"), (Rows{{"-1.5e3", "a,b", "1,2,3", "1.000,5"}}));
}

TEST(ParseTabularText, BoundsOnColumnsAndRows)
{
    EXPECT_EQ(parsed("1\t2\t3\t4\n5\t6\n", 2), (Rows{{"1", "2"}, {"5", "6"}}));
    EXPECT_EQ(parsed("1;2;\n", 2), (Rows{{"1", "2"}}));  // the empty last field is one too many
    EXPECT_EQ(parsed("1\n2\n3\n", 16, 3), (Rows{{"1"}, {"2"}, {"3"}}));
    EXPECT_EQ(parsed("x\n1\n2\n3\n", 16, 3), (Rows{{"1"}, {"2"}, {"3"}}));
    // blank rows at the end do not count
    EXPECT_EQ(parsed("1\n2\n3\n\n\n\n\n\n", 16, 3), (Rows{{"1"}, {"2"}, {"3"}}));

    const ParsedTable tooMany = parseTabularText(u"1\n2\n3\n4\n", 16, 3);
    EXPECT_TRUE(tooMany.tooManyRows);
    EXPECT_TRUE(tooMany.rows.empty());
    // a header row allows one row more, but only a header
    EXPECT_TRUE(parseTabularText(u"0\n1\n2\n3\n", 16, 3).tooManyRows);
    EXPECT_TRUE(parseTabularText(u"1\n\n\n3\n", 16, 3).tooManyRows);
}

TEST(ParseTabularText, SurvivesAnyText)
{
    // every code unit, quotes and separators among them, in a few orders
    std::u16string text;
    for (char32_t c = 0; c < 0x10000; c += 7)
        text.push_back(static_cast<char16_t>(c));
    for (const auto& sample : {text, std::u16string(text.rbegin(), text.rend()), std::u16string(5000, u'"'),
                               std::u16string(5000, u'\t'), std::u16string(5000, u'\n')}) {
        const ParsedTable table = parseTabularText(sample, 8, 100);
        for (const auto& row : table.rows)
            EXPECT_LE(row.size(), 8u);
        EXPECT_LE(table.rows.size(), 100u);
    }
}

TEST(TabularText, WritesTabsAndReadsBack)
{
    const TextTable rows{{u"1", u"2.5"}, {u"", u"x"}};
    EXPECT_EQ(utf16ToUtf8(tabularText(rows)), "1\t2.5\n\tx\n");

    const TextTable awkward{{u"a\tb", u"say \"hi\"", u" padded "}, {u"two\r\nlines", u"", u"1"}};
    EXPECT_EQ(utf16ToUtf8(tabularText(awkward)),
              "\"a\tb\"\t\"say \"\"hi\"\"\"\t\" padded \"\n\"two\r\nlines\"\t\t1\n");
    // (a first row of words over numbers would read back as a header)
    const TextTable words{{u"a\tb", u"say \"hi\"", u" padded "}, {u"two\r\nlines", u"", u"x"}};
    EXPECT_EQ(parseTabularText(tabularText(words), 16).rows, words);
}

TEST(DecodeTabularFile, EncodingsSpreadsheetsWrite)
{
    EXPECT_EQ(decodeTabularFile(std::string_view("\xFF\xFE" "1\0\t\0" "2\0", 8)), u"1\t2");
    EXPECT_EQ(decodeTabularFile(std::string_view("\xFF\xFE" "A\0B", 5)), u"A");  // an odd last byte is dropped
    EXPECT_EQ(decodeTabularFile("\xEF\xBB\xBF" "\xC2\xB0" "C"), u"\u00B0C");
    EXPECT_EQ(decodeTabularFile("T \xC2\xB0" "C"), u"T \u00B0C");
    // not UTF-8: Latin-1, one character per byte
    EXPECT_EQ(decodeTabularFile("T \xB0" "C"), u"T \u00B0C");
    EXPECT_EQ(decodeTabularFile(std::string_view("a\0b", 3)), std::u16string(u"a\0b", 3));
    EXPECT_EQ(decodeTabularFile(""), u"");
}

}  // namespace
}  // namespace zelko
