#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <climits>

#include "base/textfile.h"
#include "testutil.h"

namespace zelko {
namespace {

using test::sameBytes;

TEST(TextWriter, EncodesEachFileKindWithItsMarkAndCrLf)
{
    TextWriter wide(TextEncoding::Utf16Le);
    wide.put(u"A\u2103\n");
    EXPECT_TRUE(sameBytes(wide.bytes(), std::string("\xFF\xFE" "A\0\x03\x21\r\0\n\0", 10)));

    TextWriter narrow(TextEncoding::EightBit);
    narrow.put(u"a\xE9\u2103\n");  // a character beyond 8 bits has no code
    EXPECT_TRUE(sameBytes(narrow.bytes(), "a\xE9?\r\n"));

    TextWriter utf8(TextEncoding::Utf8Bom);
    utf8.put(u"\u2103\n");
    EXPECT_TRUE(sameBytes(utf8.bytes(), "\xEF\xBB\xBF\xE2\x84\x83\r\n"));
}

TEST(TextWriter, GivesBackTheTextItEncodedAsWritten)
{
    // A title typed with its own "\r\n" and a lone "\r" keeps them; only the
    // written line end grows a "\r" in the file.
    const std::u16string typed = u"a\r\nb\rc\n\u00e9\U0001F600\n\n";
    for (const TextEncoding encoding : {TextEncoding::Utf16Le, TextEncoding::EightBit, TextEncoding::Utf8Bom}) {
        TextWriter out(encoding);
        out.put(std::u16string_view(typed));
        out.put(std::string_view("x\n"));
        EXPECT_EQ(out.text(), typed + u"x\n");
        const std::string bytes = out.bytes();
        EXPECT_EQ(std::move(out).bytes(), bytes);
    }
    TextWriter out(TextEncoding::Utf16Le);
    out.reserve(1000);
    out.put(std::string_view("\n"));
    EXPECT_EQ(out.bytes(), std::string("\xFF\xFE\r\0\n\0", 6));
    EXPECT_EQ(TextWriter().text(), u"");
}

TEST(TextWriter, EncodesLongTextAcrossItsBlocksAndPieces)
{
    // A text longer than the encoder's block, with line ends at its edges, put in
    // pieces of both kinds: the file is the text encoded at once.
    std::u16string text;
    for (int i = 0; i < 3000; ++i)
        text += (i % 511 == 0 || i % 512 == 0) ? u'\n' : static_cast<char16_t>(u'a' + i % 26);
    text += u"\u00e9\u2103\n\u0100";
    TextWriter whole(TextEncoding::EightBit);
    whole.put(std::u16string_view(text));
    for (const TextEncoding encoding : {TextEncoding::Utf16Le, TextEncoding::EightBit}) {
        TextWriter pieces(encoding);
        for (std::size_t at = 0; at < text.size(); at += 700) {
            const std::u16string_view piece = std::u16string_view(text).substr(at, 700);
            if (at % 1400 == 0 && piece.find_first_of(u"\u00e9\u2103\u0100") == std::u16string_view::npos)
                pieces.put(utf16ToUtf8(piece));  // ASCII pieces as narrow text
            else
                pieces.put(piece);
        }
        EXPECT_EQ(pieces.text(), text);
        if (encoding == TextEncoding::EightBit) {
            EXPECT_TRUE(sameBytes(pieces.bytes(), whole.bytes()));
        }
        const std::string bytes = pieces.bytes();
        const std::size_t unit = encoding == TextEncoding::Utf16Le ? 2 : 1;
        const std::size_t mark = encoding == TextEncoding::Utf16Le ? 2 : 0;
        const auto lineEnds = static_cast<std::size_t>(std::count(text.begin(), text.end(), u'\n'));
        EXPECT_EQ(bytes.size(), mark + unit * (text.size() + lineEnds));
    }
    // Characters without an 8-bit code are "?" in the file only.
    const std::string narrow = whole.bytes();
    EXPECT_EQ(narrow.substr(narrow.size() - 5), "\xE9?\r\n?");
}

TEST(TextWriter, StreamedFileIsTheFileWrittenWholeInBoundedPieces)
{
    for (const TextEncoding encoding : {TextEncoding::Utf16Le, TextEncoding::EightBit}) {
        TextWriter whole(encoding);
        TextWriter streamed(encoding);
        std::string sent;
        std::size_t largest = 0;
        int pieces = 0;
        streamed.streamTo([&](std::string_view piece) {
            sent.append(piece);
            largest = std::max(largest, piece.size());
            ++pieces;
        });
        for (TextWriter* out : {&whole, &streamed}) {
            out->reserve(3'000'000);
            for (int i = 0; i < 100'000; ++i)
                out->format("    %.4E    %.4E\n", i * 0.001, 200.0 + i);
            out->put(u"\u00e9nd\n");
        }
        streamed.finish();
        EXPECT_GE(pieces, 3);
        EXPECT_LT(largest, TextWriter::kStreamPiece + 100);
        EXPECT_TRUE(streamed.bytes().empty());
        EXPECT_TRUE(sameBytes(sent, whole.bytes()));
    }
}

TEST(TextWriter, FormatsWithPrintfWidths)
{
    TextWriter out;
    out.format("%8d|%25.4E|%8zd\n", 21, 210000.0, std::size_t{3});
    EXPECT_EQ(test::textOf(out), "      21|               2.1000E+05|       3\n");
}

TEST(TextReader, SniffsTheByteOrderMark)
{
    std::u16string line;
    TextReader utf16(std::string("\xFF\xFE" "x\0\r\0\n\0", 8), ReadMode::SniffBom);
    ASSERT_TRUE(utf16.readLine(line));
    EXPECT_EQ(line, u"x\n");

    TextReader utf8("\xEF\xBB\xBF\xE2\x84\x83\r\n", ReadMode::SniffBom);
    ASSERT_TRUE(utf8.readLine(line));
    EXPECT_EQ(line, u"\u2103\n");

    // No mark: 8-bit text, each byte one character.
    TextReader plain("\xE9\r\n", ReadMode::SniffBom);
    ASSERT_TRUE(plain.readLine(line));
    EXPECT_EQ(line, u"\xE9\n");

    // Opened with "r", a UTF-16 mark is just two bytes of text.
    TextReader bytes("\xFF\xFEz", ReadMode::EightBit);
    ASSERT_TRUE(bytes.readLine(line));
    EXPECT_EQ(line, u"\xFF\xFEz");
}

TEST(TextReader, DamagedEncodingsStillRead)
{
    std::u16string line;
    // A UTF-16 file cut in the middle of a character loses that half character.
    TextReader odd(std::string("\xFF\xFE" "a\0b", 5), ReadMode::SniffBom);
    ASSERT_TRUE(odd.readLine(line));
    EXPECT_EQ(line, u"a");
    // Broken UTF-8 becomes replacement characters, never a crash.
    TextReader utf8("\xEF\xBB\xBF\xC3\xE2\x84", ReadMode::SniffBom);
    ASSERT_TRUE(utf8.readLine(line));
    EXPECT_EQ(line, u"\uFFFD\uFFFD\uFFFD");
}

TEST(TextReader, LineReadsKeepTheLineEndAndStopAt255Units)
{
    const std::string longLine(300, 'x');
    TextReader in = test::utf16Reader(longLine + "\nlast");
    std::u16string line;
    ASSERT_TRUE(in.readLine(line));
    EXPECT_EQ(line.size(), 255u);  // a long line splits where the buffer fills
    ASSERT_TRUE(in.readLine(line));
    EXPECT_EQ(line, std::u16string(45, u'x') + u"\n");
    EXPECT_FALSE(in.atEnd());
    ASSERT_TRUE(in.readLine(line));
    EXPECT_EQ(line, u"last");
    EXPECT_TRUE(in.atEnd());  // a last line without line end meets the end
    EXPECT_FALSE(in.readLine(line));
}

TEST(TextReader, EndIsSetOnlyByAReadPastTheLastLineEnd)
{
    TextReader in = test::utf16Reader("one\n");
    std::u16string line;
    ASSERT_TRUE(in.readLine(line));
    EXPECT_FALSE(in.atEnd());
    EXPECT_FALSE(in.readLine(line));
    EXPECT_TRUE(in.atEnd());
}

TEST(TextReader, CrLfReadsAsLfButALoneCrStays)
{
    TextReader in("a\r\nb\rc\n", ReadMode::EightBit);
    std::u16string line;
    in.readLine(line);
    EXPECT_EQ(line, u"a\n");
    in.readLine(line);
    EXPECT_EQ(line, u"b\rc\n");
}

TEST(TextReader, LineNumbersCountLineEndsBeforeTheReadPosition)
{
    // A Windows export: CRLF counts once, a lone CR is no line end.
    TextReader in("a\r\nb\rc\n\n 7 x", ReadMode::EightBit);
    EXPECT_EQ(in.lineNumber(), 1u);
    std::u16string line;
    in.readLine(line);
    EXPECT_EQ(in.lineNumber(), 2u);
    int value = 0;
    // The scan skips the blank line, so the number's line is where it stopped.
    EXPECT_FALSE(in.scanInt(value));
    EXPECT_EQ(in.lineNumber(), 2u);
    in.skipLine();
    EXPECT_TRUE(in.scanInt(value));
    EXPECT_EQ(in.lineNumber(), 4u);
    EXPECT_FALSE(in.scanInt(value));
    EXPECT_EQ(in.lineNumber(), 4u);
}

TEST(TextReader, NonBlankLineSkipsLinesOfSpacesAndTabs)
{
    TextReader in = test::utf16Reader("\n  \t \n\n 7\n");
    std::u16string line;
    ASSERT_TRUE(in.readNonBlankLine(line));
    EXPECT_EQ(line, u" 7\n");
    EXPECT_FALSE(in.readNonBlankLine(line));
}

TEST(TextReader, ScansStopAtTextThatIsNoNumber)
{
    TextReader in = test::utf16Reader(" 12 -3.5e2 abc 4");
    int i = 0;
    double d = 0;
    EXPECT_TRUE(in.scanInt(i));
    EXPECT_EQ(i, 12);
    EXPECT_TRUE(in.scanDouble(d));
    EXPECT_DOUBLE_EQ(d, -350.0);
    EXPECT_FALSE(in.scanInt(i));  // and nothing is consumed: the next scan fails the same way
    EXPECT_FALSE(in.scanDouble(d));
    std::u16string token;
    EXPECT_TRUE(in.readToken(token));
    EXPECT_EQ(token, u"abc");
    EXPECT_TRUE(in.scanInt(i));
    EXPECT_EQ(i, 4);
    EXPECT_TRUE(in.atEnd());
    EXPECT_FALSE(in.scanInt(i));
}

TEST(TextConversions, AreLenientLikeTheCLibrary)
{
    EXPECT_EQ(toInt(u"  42abc"), 42);
    EXPECT_EQ(toInt(u"abc"), 0);
    EXPECT_EQ(toInt(u"-17\n"), -17);
    EXPECT_EQ(toInt(u"99999999999"), INT_MAX);  // saturates instead of wrapping
    EXPECT_EQ(toInt(u"-99999999999"), INT_MIN);
    EXPECT_DOUBLE_EQ(toDouble(u"\t-3.5e-2x"), -0.035);
    EXPECT_DOUBLE_EQ(toDouble(u"1.e3"), 1000.0);
    EXPECT_DOUBLE_EQ(toDouble(u"2e"), 2.0);  // an exponent without digits isn't part of the number
    EXPECT_DOUBLE_EQ(toDouble(u".5"), 0.5);
    EXPECT_EQ(toDouble(u"."), 0.0);
    EXPECT_EQ(toDouble(u"1e400"), HUGE_VAL);
    EXPECT_EQ(toDouble(u"1e-400"), 0.0);
    EXPECT_TRUE(std::isnan(toDouble(u"nan")));
}

TEST(TextSplit, DropsEmptyPieces)
{
    EXPECT_EQ(split(u"  a,,b \n", u", \n"), (std::vector<std::u16string>{u"a", u"b"}));
    EXPECT_TRUE(split(u"", u" ").empty());
    EXPECT_EQ(split(std::string_view("x\ty"), "\t"), (std::vector<std::string>{"x", "y"}));
}

TEST(TextUtf, RoundTripsCharactersBeyondTheBasicPlane)
{
    const std::string text = "\xF0\x9F\x94\xA5 \xED\x95\xAD";  // an emoji and a Hangul syllable
    EXPECT_EQ(utf16ToUtf8(utf8ToUtf16(text)), text);
    EXPECT_EQ(utf8ToUtf16(text).size(), 4u);
}

}  // namespace
}  // namespace zelko
