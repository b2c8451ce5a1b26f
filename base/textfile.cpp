#include "base/textfile.h"

#include <algorithm>
#include <bit>
#include <cstdarg>
#include <cstring>
#include <type_traits>
#include <utility>

namespace zelko {

std::string formatTextV(const char* fmt, va_list args)
{
    std::string out;
    appendFormattedV(out, fmt, args);
    return out;
}

namespace {

bool isSpace(char16_t c)
{
    return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r' || c == u'\v' || c == u'\f';
}

void appendUtf8(std::string& out, char32_t c)
{
    if (c < 0x80) {
        out.push_back(static_cast<char>(c));
    } else if (c < 0x800) {
        out.push_back(static_cast<char>(0xC0 | (c >> 6)));
        out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    } else if (c < 0x10000) {
        out.push_back(static_cast<char>(0xE0 | (c >> 12)));
        out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    } else {
        out.push_back(static_cast<char>(0xF0 | (c >> 18)));
        out.push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    }
}

}  // namespace

namespace {

// Units as UTF-16LE with "\n" as "\r\n", appended to out. Encoded a block at a
// time on the stack and appended whole: no zero-filled room, no growth per unit.
template <class Unit>
void appendUtf16Le(std::string& out, std::basic_string_view<Unit> text)
{
    constexpr std::size_t kBlock = 512;
    char block[4 * kBlock];  // every unit a line end at the most
    for (std::size_t from = 0; from < text.size(); from += kBlock) {
        const std::size_t to = std::min(text.size(), from + kBlock);
        char* o = block;
        for (std::size_t i = from; i < to; ++i) {
            const auto c = static_cast<char16_t>(static_cast<std::make_unsigned_t<Unit>>(text[i]));
            if (c == u'\n') {
                o[0] = '\r';
                o[1] = '\0';
                o += 2;
            }
            o[0] = static_cast<char>(c & 0xFF);
            o[1] = static_cast<char>(c >> 8);
            o += 2;
        }
        out.append(block, static_cast<std::size_t>(o - block));
    }
}

// Bytes with "\n" as "\r\n", appended to out.
void appendEightBit(std::string& out, std::string_view text)
{
    std::size_t from = 0;
    while (from < text.size()) {
        const std::size_t lineEnd = std::min(text.find('\n', from), text.size());
        out.append(text.data() + from, lineEnd - from);
        if (lineEnd < text.size())
            out.append("\r\n", 2);
        from = lineEnd + 1;
    }
}

}  // namespace

TextWriter::TextWriter(TextEncoding encoding) : encoding_(encoding)
{
    if (encoding_ == TextEncoding::Utf16Le)
        encoded_ = "\xFF\xFE";
}

void TextWriter::put(std::u16string_view text)
{
    switch (encoding_) {
    case TextEncoding::Utf16Le:
        appendUtf16Le(encoded_, text);
        break;
    case TextEncoding::EightBit:
        encoded_.reserve(encoded_.size() + text.size());
        for (const char16_t c : text) {
            if (c == u'\n') {
                encoded_.append("\r\n", 2);
            } else if (c <= 0xFF) {
                encoded_.push_back(static_cast<char>(c));
            } else {
                // No code in the file; text() still gives the character back.
                unmapped_.emplace_back(encoded_.size(), c);
                encoded_.push_back('?');
            }
        }
        break;
    case TextEncoding::Utf8Bom:
        text_.append(text);
        break;
    }
    sendFullPiece();
}

void TextWriter::put(std::string_view text)
{
    switch (encoding_) {
    case TextEncoding::Utf16Le:
        appendUtf16Le(encoded_, text);
        break;
    case TextEncoding::EightBit:
        appendEightBit(encoded_, text);
        break;
    case TextEncoding::Utf8Bom: {
        const std::size_t at = text_.size();
        text_.resize(at + text.size());
        std::transform(text.begin(), text.end(), text_.begin() + static_cast<std::ptrdiff_t>(at),
                       [](char c) { return static_cast<char16_t>(static_cast<unsigned char>(c)); });
        break;
    }
    }
    sendFullPiece();
}

void TextWriter::streamTo(std::function<void(std::string_view)> sink)
{
    if (encoding_ != TextEncoding::Utf8Bom)
        sink_ = std::move(sink);
}

void TextWriter::finish()
{
    if (!sink_ || encoded_.empty())
        return;
    sink_(encoded_);
    encoded_.clear();
    unmapped_.clear();
}

void TextWriter::reserve(std::size_t more)
{
    if (sink_)
        more = std::min(more, kStreamPiece);  // a piece is sent on as soon as it is full
    switch (encoding_) {
    case TextEncoding::Utf16Le: encoded_.reserve(encoded_.size() + 2 * more); break;
    case TextEncoding::EightBit: encoded_.reserve(encoded_.size() + more); break;
    case TextEncoding::Utf8Bom: text_.reserve(text_.size() + more); break;
    }
}

std::u16string TextWriter::text() const
{
    std::u16string text;
    switch (encoding_) {
    case TextEncoding::Utf16Le:
        // Every "\n" was written after a "\r" of its own: that one is dropped.
        text.reserve((encoded_.size() - 2) / 2);
        for (std::size_t i = 2; i + 1 < encoded_.size(); i += 2) {
            const auto c = static_cast<char16_t>(static_cast<unsigned char>(encoded_[i])
                                                 | (static_cast<unsigned char>(encoded_[i + 1]) << 8));
            if (c == u'\n')
                text.pop_back();
            text.push_back(c);
        }
        break;
    case TextEncoding::EightBit: {
        text.reserve(encoded_.size());
        auto unmapped = unmapped_.begin();
        for (std::size_t i = 0; i < encoded_.size(); ++i) {
            auto c = static_cast<char16_t>(static_cast<unsigned char>(encoded_[i]));
            if (unmapped != unmapped_.end() && unmapped->first == i)
                c = (unmapped++)->second;
            else if (c == u'\n')
                text.pop_back();
            text.push_back(c);
        }
        break;
    }
    case TextEncoding::Utf8Bom:
        text = text_;
        break;
    }
    return text;
}

std::string TextWriter::bytes() &&
{
    if (encoding_ != TextEncoding::Utf8Bom)
        return std::move(encoded_);
    return std::as_const(*this).bytes();
}

void TextWriter::format(const char* fmt, ...)
{
    // One buffer a thread: the material file formats hundreds of thousands of lines.
    thread_local std::string line;
    line.clear();
    va_list args;
    va_start(args, fmt);
    appendFormattedV(line, fmt, args);
    va_end(args);
    put(std::string_view(line));
}

std::string TextWriter::bytes() const&
{
    if (encoding_ != TextEncoding::Utf8Bom)
        return encoded_;
    std::u16string crlf;
    crlf.reserve(text_.size() + text_.size() / 8);
    for (const char16_t c : text_) {
        if (c == u'\n')
            crlf.push_back(u'\r');
        crlf.push_back(c);
    }
    return "\xEF\xBB\xBF" + utf16ToUtf8(crlf);
}

std::string formatText(const char* fmt, ...)
{
    va_list args;
    va_start(args, fmt);
    std::string out = formatTextV(fmt, args);
    va_end(args);
    return out;
}

namespace {

// UTF-16LE bytes as count units from out, which may be where the bytes lie (at or
// before them); "\r\n" becomes "\n", a lone "\r" stays. Returns the units written.
// Lines are found with memchr and moved whole.
std::size_t decodeUtf16Le(const char* bytes, std::size_t count, char16_t* out)
{
    const auto unitAt = [bytes](std::size_t k) {
        return static_cast<char16_t>(static_cast<unsigned char>(bytes[2 * k])
                                     | (static_cast<unsigned char>(bytes[2 * k + 1]) << 8));
    };
    std::size_t written = 0;
    const auto copy = [&](std::size_t from, std::size_t n) {
        if constexpr (std::endian::native == std::endian::little) {
            std::memmove(out + written, bytes + 2 * from, 2 * n);
        } else {
            for (std::size_t i = 0; i < n; ++i)
                out[written + i] = unitAt(from + i);
        }
        written += n;
    };
    const std::size_t size = 2 * count;
    std::size_t from = 0;  // the next unit to keep
    std::size_t look = 0;  // where the next "\r" is looked for
    for (;;) {
        std::size_t cr = count;
        for (std::size_t at = 2 * look; at < size;) {
            const void* hit = std::memchr(bytes + at, '\r', size - at);
            if (!hit)
                break;
            const auto offset = static_cast<std::size_t>(static_cast<const char*>(hit) - bytes);
            if (offset % 2 == 0 && offset + 1 < size && bytes[offset + 1] == '\0') {
                cr = offset / 2;
                break;
            }
            at = offset + 1;
        }
        if (cr == count) {
            copy(from, count - from);
            return written;
        }
        if (cr + 1 < count && unitAt(cr + 1) == u'\n') {
            copy(from, cr - from);
            from = cr + 1;
        }
        look = cr + 1;
    }
}

// Units as they are with "\r\n" as "\n", in place; returns how many are left.
std::size_t joinCrLf(char16_t* units, std::size_t count)
{
    std::size_t out = 0;
    for (std::size_t i = 0; i < count; ++i) {
        if (units[i] == u'\r' && i + 1 < count && units[i + 1] == u'\n')
            continue;
        units[out++] = units[i];
    }
    return out;
}

bool hasUtf16Mark(std::string_view bytes)
{
    return bytes.size() >= 2 && static_cast<unsigned char>(bytes[0]) == 0xFF
           && static_cast<unsigned char>(bytes[1]) == 0xFE;
}

}  // namespace

TextBuffer::TextBuffer(std::size_t bytes) : units_(makeLargeArray<char16_t>((bytes + 1) / 2)), bytes_(bytes) {}

void TextReader::adopt(TextBuffer::Units units, std::size_t count)
{
    units_ = std::move(units);
    text_ = std::u16string_view(units_.get(), count);
    allowance_ = std::max(kMinimumAllowance, count / 4);
}

TextReader::TextReader(std::string_view bytes, ReadMode mode)
{
    if (mode == ReadMode::SniffBom && hasUtf16Mark(bytes)) {
        const std::size_t count = (bytes.size() - 2) / 2;  // an odd last byte is dropped
        TextBuffer::Units units = makeLargeArray<char16_t>(count);
        const std::size_t decoded = decodeUtf16Le(bytes.data() + 2, count, units.get());
        adopt(std::move(units), decoded);
        return;
    }
    if (mode == ReadMode::SniffBom && bytes.size() >= 3 && bytes.substr(0, 3) == "\xEF\xBB\xBF") {
        const std::u16string decoded = utf8ToUtf16(bytes.substr(3));
        TextBuffer::Units units = makeLargeArray<char16_t>(decoded.size());
        std::copy(decoded.begin(), decoded.end(), units.get());
        const std::size_t count = joinCrLf(units.get(), decoded.size());
        adopt(std::move(units), count);
        return;
    }
    TextBuffer::Units units = makeLargeArray<char16_t>(bytes.size());
    std::transform(bytes.begin(), bytes.end(), units.get(),
                   [](char c) { return static_cast<char16_t>(static_cast<unsigned char>(c)); });
    const std::size_t count = joinCrLf(units.get(), bytes.size());
    adopt(std::move(units), count);
}

TextReader::TextReader(TextBuffer&& bytes, ReadMode mode)
{
    const std::string_view raw(bytes.data(), bytes.size());
    if (mode == ReadMode::SniffBom && hasUtf16Mark(raw)) {
        const std::size_t decoded = decodeUtf16Le(raw.data() + 2, (raw.size() - 2) / 2, bytes.units_.get());
        adopt(std::move(bytes.units_), decoded);
        return;
    }
    *this = TextReader(raw, mode);
}

TextReader TextReader::fromText(std::u16string text)
{
    TextReader reader;
    TextBuffer::Units units = makeLargeArray<char16_t>(text.size());
    std::copy(text.begin(), text.end(), units.get());
    reader.adopt(std::move(units), text.size());
    return reader;
}

bool TextReader::readLine(std::u16string& line, std::size_t maxUnits)
{
    line.clear();
    if (pos_ >= text_.size()) {
        eof_ = true;
        return false;
    }
    const std::size_t start = pos_;
    bool stopped = false;  // by a line end or a full buffer, not by the end of the text
    while (!stopped) {
        if (pos_ - start == maxUnits) {
            stopped = true;
        } else if (pos_ == text_.size()) {
            eof_ = true;
            break;
        } else if (text_[pos_++] == u'\n') {
            stopped = true;
        }
    }
    std::u16string_view read(text_.data() + start, pos_ - start);
    line.assign(read.substr(0, read.find(u'\0')));
    return true;
}

bool TextReader::readNonBlankLine(std::u16string& line)
{
    while (readLine(line)) {
        if (hasToken(line))
            return true;
    }
    return false;
}

void TextReader::skipWhiteSpace()
{
    while (pos_ < text_.size() && isSpace(text_[pos_]))
        ++pos_;
    if (pos_ >= text_.size())
        eof_ = true;
}

bool TextReader::readToken(std::u16string& token, std::size_t maxUnits)
{
    token.clear();
    skipWhiteSpace();
    if (pos_ >= text_.size())
        return false;
    while (pos_ < text_.size() && !isSpace(text_[pos_]) && token.size() < maxUnits)
        token.push_back(text_[pos_++]);
    if (pos_ >= text_.size())
        eof_ = true;
    return true;
}

template <typename Number>
bool TextReader::scanNumber(Number& value, std::size_t (*leading)(std::u16string_view, Number&))
{
    skipWhiteSpace();
    const std::u16string_view rest(text_.data() + pos_, text_.size() - pos_);
    Number read{};
    const std::size_t length = leading(rest, read);
    if (length == 0)
        return false;
    value = read;
    pos_ += length;
    if (pos_ >= text_.size())
        eof_ = true;
    return true;
}

bool TextReader::scanInt(int& value)
{
    return scanNumber(value, leadingInt);
}

bool TextReader::scanDouble(double& value)
{
    return scanNumber(value, leadingDouble);
}

std::size_t TextReader::lineNumber() const
{
    return 1 + static_cast<std::size_t>(std::count(text_.begin(), text_.begin() + static_cast<std::ptrdiff_t>(pos_), u'\n'));
}

std::size_t TextReader::claim(long long count)
{
    if (count <= 0)
        return 0;
    const std::size_t granted = std::min<unsigned long long>(static_cast<unsigned long long>(count), allowance_);
    allowance_ -= granted;
    return granted;
}

void TextReader::skipLine()
{
    while (pos_ < text_.size() && text_[pos_++] != u'\n') {
    }
    if (pos_ >= text_.size())
        eof_ = true;
}

std::vector<std::u16string> split(std::u16string_view text, std::u16string_view delimiters)
{
    std::vector<std::u16string> pieces;
    std::size_t start = 0;
    for (std::size_t i = 0; i <= text.size(); ++i) {
        if (i == text.size() || delimiters.find(text[i]) != std::u16string_view::npos) {
            if (i > start)
                pieces.emplace_back(text.substr(start, i - start));
            start = i + 1;
        }
    }
    return pieces;
}

std::vector<std::string> split(std::string_view text, std::string_view delimiters)
{
    std::vector<std::string> pieces;
    std::size_t start = 0;
    for (std::size_t i = 0; i <= text.size(); ++i) {
        if (i == text.size() || delimiters.find(text[i]) != std::string_view::npos) {
            if (i > start)
                pieces.emplace_back(text.substr(start, i - start));
            start = i + 1;
        }
    }
    return pieces;
}

bool hasToken(std::u16string_view line)
{
    for (const char16_t c : line)
        if (c != u' ' && c != u'\t' && c != u'\n')
            return true;
    return false;
}

std::u16string widen(std::string_view ascii)
{
    std::u16string out;
    out.reserve(ascii.size());
    for (const char c : ascii)
        out.push_back(static_cast<char16_t>(static_cast<unsigned char>(c)));
    return out;
}

std::u16string utf8ToUtf16(std::string_view utf8)
{
    std::u16string out;
    out.reserve(utf8.size());
    std::size_t i = 0;
    const auto byte = [&](std::size_t k) { return static_cast<unsigned char>(utf8[k]); };
    while (i < utf8.size()) {
        const unsigned char lead = byte(i);
        char32_t c = 0xFFFD;
        std::size_t length = 1;
        std::size_t need = 0;
        char32_t minimum = 0;
        if (lead < 0x80) {
            c = lead;
        } else if ((lead & 0xE0) == 0xC0) {
            c = lead & 0x1F, need = 1, minimum = 0x80;
        } else if ((lead & 0xF0) == 0xE0) {
            c = lead & 0x0F, need = 2, minimum = 0x800;
        } else if ((lead & 0xF8) == 0xF0) {
            c = lead & 0x07, need = 3, minimum = 0x10000;
        }
        if (need > 0) {
            bool valid = i + need < utf8.size();
            for (std::size_t k = 1; valid && k <= need; ++k) {
                if ((byte(i + k) & 0xC0) != 0x80)
                    valid = false;
                else
                    c = (c << 6) | (byte(i + k) & 0x3F);
            }
            if (valid && c >= minimum && c <= 0x10FFFF && !(c >= 0xD800 && c <= 0xDFFF))
                length = need + 1;
            else
                c = 0xFFFD;
        } else if (lead >= 0x80) {
            c = 0xFFFD;
        }
        if (c >= 0x10000) {
            c -= 0x10000;
            out.push_back(static_cast<char16_t>(0xD800 + (c >> 10)));
            out.push_back(static_cast<char16_t>(0xDC00 + (c & 0x3FF)));
        } else {
            out.push_back(static_cast<char16_t>(c));
        }
        i += length;
    }
    return out;
}

std::string utf16ToUtf8(std::u16string_view utf16)
{
    std::string out;
    out.reserve(utf16.size());
    for (std::size_t i = 0; i < utf16.size(); ++i) {
        char32_t c = utf16[i];
        if (c >= 0xD800 && c <= 0xDBFF && i + 1 < utf16.size() && utf16[i + 1] >= 0xDC00 && utf16[i + 1] <= 0xDFFF) {
            c = 0x10000 + ((c - 0xD800) << 10) + (utf16[i + 1] - 0xDC00);
            ++i;
        } else if (c >= 0xD800 && c <= 0xDFFF) {
            c = 0xFFFD;  // an unpaired surrogate has no UTF-8 form
        }
        appendUtf8(out, c);
    }
    return out;
}

}  // namespace zelko
