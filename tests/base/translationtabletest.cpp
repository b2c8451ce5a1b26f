#include <gtest/gtest.h>

#include <string>

#include "base/textfile.h"
#include "base/translationtable.h"

namespace zelko {
namespace {

TranslationTable loaded(std::string_view fileBytes)
{
    TranslationTable table;
    table.load(fileBytes);
    return table;
}

// The table as UTF-8 "key=>value|" pairs, for comparisons that show every entry.
std::string dump(const TranslationTable& table)
{
    std::string text;
    for (const auto& [key, value] : table.entries())
        text += utf16ToUtf8(key) + "=>" + utf16ToUtf8(value) + "|";
    return text;
}

TEST(TranslationTableLoad, SplitsAtTheFirstBackslashAndCutsAtTheLineEnd)
{
    EXPECT_EQ(dump(loaded("Ok\\OK\\x\n")), "Ok=>OK\\x|");
    EXPECT_EQ(dump(loaded("Cancel\\취소\nOK\\확인")), "Cancel=>취소|OK=>확인|");
    // An entry with nothing after the backslash translates to an empty text.
    EXPECT_EQ(dump(loaded("Gone\\\n")), "Gone=>|");
    EXPECT_EQ(dump(loaded("\\orphan\n")), "=>orphan|");
}

TEST(TranslationTableLoad, LineWithoutBackslashKeepsItsLineEndInTheKey)
{
    EXPECT_EQ(dump(loaded("Comment line\n")), "Comment line\n=>Comment line|");
    // The last line of a file without a final line end has none to keep.
    EXPECT_EQ(dump(loaded("A\\B\nlast")), "A=>B|last=>last|");
    EXPECT_EQ(dump(loaded("\n")), "\n=>|");
}

TEST(TranslationTableLoad, ReadsFilesAsTheirEditorsSaveThem)
{
    // Saved by Notepad: byte-order mark and CRLF.
    EXPECT_EQ(dump(loaded("\xEF\xBB\xBF" "Export\\내보내기\r\nPlastic\\소성\r\n")), "Export=>내보내기|Plastic=>소성|");
    // Saved as "Unicode": a UTF-16 byte-order mark decides over UTF-8.
    const std::string utf16 = std::string("\xFF\xFE", 2) + std::string("A\0\\\0B\0\r\0\n\0", 10);
    EXPECT_EQ(dump(loaded(utf16)), "A=>B|");
    // A lone carriage return is text, not a line end.
    EXPECT_EQ(dump(loaded("A\\B\r")), "A=>B\r|");
    EXPECT_TRUE(loaded("").empty());
    EXPECT_TRUE(loaded("\xEF\xBB\xBF").empty());
}

TEST(TranslationTableLoad, LaterLinesReplaceAndLoadsAccumulate)
{
    TranslationTable table = loaded("Plastic\\소성\nThermal\\열\nPlastic\\소성 물성\n");
    EXPECT_EQ(dump(table), "Plastic=>소성 물성|Thermal=>열|");
    // A second file (another language) adds to the same table and wins on equal keys.
    table.load("Plastic\\塑性\nElastic\\弾性\n");
    EXPECT_EQ(dump(table), "Elastic=>弾性|Plastic=>塑性|Thermal=>열|");
}

TEST(TranslationTableLoad, LongLinesReadAsSeveralLines)
{
    // A line of 500 + 1 + 20 + 1 units reads as 511 units, then the remaining 11.
    const std::string line = std::string(500, 'k') + "\\" + std::string(20, 'v') + "\n";
    const TranslationTable table = loaded(line);
    ASSERT_EQ(table.entries().size(), 2u);
    EXPECT_EQ(table.translate(std::u16string(500, u'k')), std::u16string(10, u'v'));
    EXPECT_EQ(table.translate(std::u16string(10, u'v') + u"\n"), std::u16string(10, u'v'));

    // The limit counts UTF-16 units: 255 characters of 2 units plus "x" fill the first read.
    std::string wide;
    for (int i = 0; i < 255; ++i)
        wide += "\xF0\x9F\x98\x80";  // U+1F600, a surrogate pair
    const TranslationTable pairs = loaded(wide + "x\\y\n");
    ASSERT_EQ(pairs.entries().size(), 2u);
    EXPECT_EQ(pairs.translate(u""), u"y");  // the rest: an empty key
}

TEST(TranslationTableLoad, SurvivesHostileBytes)
{
    // Invalid UTF-8 decodes to replacement characters; a file cut inside a character too.
    const TranslationTable invalid = loaded("\xC3\\\xFF\xFE\xFD\n\x80\x80\\ok\n\xF0\x9F\x98");
    EXPECT_EQ(invalid.translate(u"\uFFFD"), u"\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(invalid.translate(u"\uFFFD\uFFFD"), u"ok");
    EXPECT_EQ(invalid.entries().size(), 3u);
    // A NUL ends the line's text as in a C string.
    EXPECT_EQ(dump(loaded(std::string("A\\B\0C\nD\\E\n", 10))), "A=>B|D=>E|");

    // A 100,000-character line of one backslash-less text reads in pieces of 511.
    const TranslationTable huge = loaded(std::string(100000, 'a') + "\n");
    EXPECT_EQ(huge.entries().size(), 2u);  // equal 511-unit pieces share one key
    const TranslationTable hugeValue = loaded("k\\" + std::string(100000, 'b'));
    EXPECT_EQ(hugeValue.translate(u"k"), std::u16string(509, u'b'));
}

TEST(TranslationTableTranslate, ForwardLooksTheTextUp)
{
    const TranslationTable table = loaded("Elastic\\탄성\nThermal\\열\n");
    EXPECT_EQ(table.translate(u"Elastic"), u"탄성");
    EXPECT_EQ(table.translate(u"Unknown"), u"Unknown");
    EXPECT_EQ(table.translate(u"Elastic "), u"Elastic ");  // exact keys only
    EXPECT_EQ(table.translate(u"탄성"), u"탄성");
}

TEST(TranslationTableTranslate, ReverseFindsTheFirstKeyInKeyOrder)
{
    TranslationTable table = loaded("Thermal\\열\nHeat\\열\nElastic\\탄성\n");
    table.setReverse(true);
    // "Heat" sorts before "Thermal", so both Korean texts map back to it.
    EXPECT_EQ(table.translate(u"열"), u"Heat");
    EXPECT_EQ(table.translate(u"탄성"), u"Elastic");
    EXPECT_EQ(table.translate(u"탄성 "), u"탄성 ");
    EXPECT_EQ(table.translate(u"Elastic"), u"Elastic");
    table.setReverse(false);
    EXPECT_EQ(table.translate(u"Thermal"), u"열");
}

TEST(TranslationFilePath, JoinsFolderLanguageAndSection)
{
#ifdef _WIN32
    EXPECT_EQ(translationFilePath(u"C:\\Z", "Korean", u"Main"), u"C:\\Z\\language\\ZELKO_MAT\\Korean\\Main.txt");
    EXPECT_EQ(translationFilePath(u"C:\\Z\\", "Korean", u"Main"), u"C:\\Z\\language\\ZELKO_MAT\\Korean\\Main.txt");
    EXPECT_EQ(translationFilePath(u"", "English", u"Heat"), u"\\language\\ZELKO_MAT\\English\\Heat.txt");
#else
    EXPECT_EQ(translationFilePath(u"/opt/zelko", "Japanese", u"Option"),
              u"/opt/zelko/language/ZELKO_MAT/Japanese/Option.txt");
    EXPECT_EQ(translationFilePath(u"/opt/zelko/", "Korean", u"PlasticHotAdv"),
              u"/opt/zelko/language/ZELKO_MAT/Korean/PlasticHotAdv.txt");
    // An empty installation variable gives a path from the root.
    EXPECT_EQ(translationFilePath(u"", "Korean", u"Main"), u"/language/ZELKO_MAT/Korean/Main.txt");
    EXPECT_EQ(translationFilePath(u"/", "Korean", u"Main"), u"/language/ZELKO_MAT/Korean/Main.txt");
#endif
}

}  // namespace
}  // namespace zelko
