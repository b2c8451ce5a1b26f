#pragma once
// The one text layer through which every file of the program is written and read.
// Writers take UTF-16 text with "\n" line ends and encode it as the file kind
// demands; readers decode a whole file and offer the C runtime's line, token and
// scan reads over it, with the same limits and end-of-file rules.

#include <cstdarg>
#include <algorithm>
#include <cstddef>
#include <memory>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/largearray.h"
#include "base/numbers.h"  // toInt and toDouble, which the readers use with the text layer

#if defined(__GNUC__) || defined(__clang__)
#define ZELKO_PRINTF_FORMAT(fmtIndex, firstArg) __attribute__((format(printf, fmtIndex, firstArg)))
#else
#define ZELKO_PRINTF_FORMAT(fmtIndex, firstArg)
#endif

namespace zelko {

enum class TextEncoding {
    Utf16Le,   // "w, ccs=UNICODE": BOM FF FE, UTF-16LE, CRLF
    EightBit,  // "w": bytes, CRLF
    Utf8Bom,   // "w, ccs=UTF-8": BOM EF BB BF, CRLF
};

// How a file is opened for reading.
enum class ReadMode {
    SniffBom,  // "r, ccs=UNICODE": FF FE is UTF-16LE, EF BB BF is UTF-8, else 8-bit
    EightBit,  // "r": bytes as they are
};

class TextWriter {
public:
    explicit TextWriter(TextEncoding encoding = TextEncoding::Utf16Le);

    void put(std::u16string_view text);
    // Narrow text is taken byte for byte (the formats are ASCII).
    void put(std::string_view text);
    // printf onto narrow text, then appended; never pass user text as fmt.
    void format(const char* fmt, ...) ZELKO_PRINTF_FORMAT(2, 3);
    // Room for this many characters more (line ends counted twice), for writers
    // that know their size.
    void reserve(std::size_t more);

    // From now on the encoded bytes go on to sink in pieces of about kStreamPiece,
    // so a large file is never held whole (UTF-16LE and 8-bit files); finish()
    // sends the rest. text() and bytes() then hold only what was not sent yet.
    static constexpr std::size_t kStreamPiece = std::size_t{1} << 20;
    void streamTo(std::function<void(std::string_view)> sink);
    void finish();

    // The text written so far, "\n" line ends.
    std::u16string text() const;
    TextEncoding encoding() const { return encoding_; }
    // The file's bytes: byte-order mark, "\n" as "\r\n", encoded.
    std::string bytes() const&;
    // The same, taken out of a writer that is done.
    std::string bytes() &&;

private:
    TextEncoding encoding_;
    // UTF-16LE and 8-bit files (the material file can be hundreds of megabytes,
    // the map's data file tens) are encoded as they are written, so their text
    // is never held twice.
    std::string encoded_;
    // Where an 8-bit file got "?" for a character it has no code for, and the character.
    std::vector<std::pair<std::size_t, char16_t>> unmapped_;
    std::u16string text_;  // UTF-8 files
    std::function<void(std::string_view)> sink_;
    void sendFullPiece()
    {
        if (sink_ && encoded_.size() >= kStreamPiece)
            finish();
    }
};

// printf into a std::string (for formats that are part of a layout or a message).
std::string formatText(const char* fmt, ...) ZELKO_PRINTF_FORMAT(1, 2);
std::string formatTextV(const char* fmt, va_list args);

// Room for a file's bytes, read straight into the memory a TextReader then decodes
// them in: a large UTF-16 file (most of a material) is never copied.
class TextBuffer {
public:
    explicit TextBuffer(std::size_t bytes);
    char* data() { return reinterpret_cast<char*>(units_.get()); }
    std::size_t size() const { return bytes_; }
    // Fewer bytes than the room was made for (a file that shrank while read).
    void shrink(std::size_t bytes) { bytes_ = std::min(bytes, bytes_); }

    using Units = LargeArray<char16_t>;

private:
    friend class TextReader;
    Units units_;
    std::size_t bytes_;
};

class TextReader {
public:
    TextReader() = default;
    // Decodes the bytes of a whole file; "\r\n" reads as "\n".
    TextReader(std::string_view bytes, ReadMode mode);
    // The same, decoded where the bytes lie.
    TextReader(TextBuffer&& bytes, ReadMode mode);
    // Already decoded text (tests, in-memory conversions).
    static TextReader fromText(std::u16string text);

    // The stream's end-of-file indicator: set once a read ran into the end.
    bool atEnd() const { return eof_; }
    std::size_t remaining() const { return text_.size() - pos_; }
    std::size_t position() const { return pos_; }
    // The 1-based line of the read position, as an editor numbers it; counts from
    // the start, so it is for messages, not for loops.
    std::size_t lineNumber() const;

    // fgetws into a buffer of maxUnits + 1: at most maxUnits units, up to and
    // including "\n". False when nothing was left to read. The line is cut at an
    // embedded NUL, as a C string would be.
    bool readLine(std::u16string& line, std::size_t maxUnits = 255);
    // Reads lines until one with a token when split on space, tab and line feed.
    bool readNonBlankLine(std::u16string& line);
    // fwscanf "%255s": skips white space, reads one token of at most maxUnits.
    bool readToken(std::u16string& token, std::size_t maxUnits = 255);
    // fwscanf "%d" / "%lf": false (nothing consumed but white space) when no number
    // stands at the read position or the text has ended.
    bool scanInt(int& value);
    bool scanDouble(double& value);
    // Skips to the character after the next "\n" (or to the end).
    void skipLine();
    // How many items a count read from the file may allocate. The whole file
    // shares one allowance (a quarter of its characters, at least 4,096), so no
    // count, repeated section or grid of cells can make a reader allocate more
    // than the file's size could justify; an honest file never reaches it.
    std::size_t claim(long long count);

private:
    void skipWhiteSpace();
    // Reads one number with the leading-number parser given (leadingInt, leadingDouble).
    template <typename Number>
    bool scanNumber(Number& value, std::size_t (*leading)(std::u16string_view, Number&));
    void adopt(TextBuffer::Units units, std::size_t count);
    TextBuffer::Units units_;
    std::u16string_view text_;  // the decoded units
    std::size_t pos_ = 0;
    bool eof_ = false;
    std::size_t allowance_ = kMinimumAllowance;
    static constexpr std::size_t kMinimumAllowance = 4096;
};

// Cuts text at every character of delimiters, dropping empty pieces.
std::vector<std::u16string> split(std::u16string_view text, std::u16string_view delimiters);
std::vector<std::string> split(std::string_view text, std::string_view delimiters);
bool hasToken(std::u16string_view line);  // a token when split on space, tab and "\n"

std::u16string widen(std::string_view ascii);  // byte for byte
std::u16string utf8ToUtf16(std::string_view utf8);
std::string utf16ToUtf8(std::u16string_view utf16);

}  // namespace zelko
