#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/tabletext.h"
#include "base/textfile.h"
#include "testutil.h"

namespace zelko {
namespace {

using test::sameBytes;

// UTF-16LE bytes of ASCII text, without byte-order mark.
std::string utf16Units(std::string_view ascii)
{
    std::string bytes;
    for (char c : ascii) {
        bytes.push_back(c);
        bytes.push_back('\0');
    }
    return bytes;
}

TEST(ListExport, TwoColumnsOneRowByteForByte)
{
    // Every text, the last of a line included, is followed by ", ".
    const std::string bytes = listExportFile({u"Strain", u"Stress"}, {{u"0.1", u"250"}});
    const std::string expected =
        std::string("\xff\xfe", 2) + utf16Units("Strain, Stress, \r\n0.1, 250, \r\n");
    EXPECT_TRUE(sameBytes(bytes, expected));
}

TEST(ListExport, NonAsciiTextIsWrittenAsUtf16)
{
    // A Korean header and a Japanese cell, and a character outside the basic plane.
    const std::u16string header = u"\uC628\uB3C4";  // 온도
    const std::u16string cell = u"\u5F15\u5F35 \U0001F600";
    const std::string bytes = listExportFile({header}, {{cell}});
    const std::string expected = std::string("\xff\xfe", 2) + std::string("\x28\xc6\xc4\xb3", 4) +
                                 utf16Units(", \r\n") + std::string("\x15\x5f\x35\x5f", 4) +
                                 utf16Units(" ") + std::string("\x3d\xd8\x00\xde", 4) + utf16Units(", \r\n");
    EXPECT_TRUE(sameBytes(bytes, expected));
    // and it reads back as it was
    TextReader reader(bytes, ReadMode::SniffBom);
    std::u16string line;
    ASSERT_TRUE(reader.readLine(line));
    EXPECT_EQ(line, header + u", \n");
    ASSERT_TRUE(reader.readLine(line));
    EXPECT_EQ(line, cell + u", \n");
}

TEST(ListExport, ShapesOfLists)
{
    // A list without columns or rows still writes its header line.
    EXPECT_EQ(listExportText({}, {}), u"\n");
    EXPECT_EQ(listExportText({u"A"}, {}), u"A, \n");
    // Rows in order; empty cells keep their separators.
    EXPECT_EQ(listExportText({u"A", u"B"}, {{u"1", u""}, {u"", u"4"}}), u"A, B, \n1, , \n, 4, \n");
    // Line feeds inside a cell are written as they are and become "\r\n" in the file.
    const std::string bytes = listExportFile({u"A"}, {{u"x\ny"}});
    EXPECT_TRUE(sameBytes(bytes, std::string("\xff\xfe", 2) + utf16Units("A, \r\nx\r\ny, \r\n")));
}

TEST(ListExport, LongHeadersAreCutCellsAreNot)
{
    const std::u16string longText(300, u'h');
    const std::u16string text = listExportText({longText}, {{longText}});
    const std::u16string expected =
        std::u16string(kListHeaderUnits, u'h') + u", \n" + longText + u", \n";
    EXPECT_EQ(text, expected);
    EXPECT_EQ(kListHeaderUnits, 255u);
}

}  // namespace
}  // namespace zelko
