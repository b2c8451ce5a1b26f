#include "base/gridtext.h"

#include <climits>

#include "base/numbers.h"
#include "base/textfile.h"

namespace zelko {

std::u16string coerceCellText(std::u16string_view typed, const CellRules& rules)
{
    if (rules.integerOnly) {
        int value = toInt(typed);
        // -INT_MIN does not exist; the largest int is the nearest positive answer.
        if (value < 0 && !rules.negativesAllowed)
            value = value == INT_MIN ? INT_MAX : -value;
        return widen(formatText("%d", value));
    }
    if (rules.realOnly) {
        double value = toDouble(typed);
        if (value < 0 && !rules.negativesAllowed)
            value *= -1;
        return widen(formatText("%g", value));
    }
    return std::u16string(typed);
}

namespace {

bool isLineEnd(char16_t c) { return c == u'\n' || c == u'\r'; }

// Spreadsheets copy tab-separated text; CSV files from a decimal-comma locale
// use semicolons; lab instruments often write columns apart by spaces.
char16_t chooseSeparator(std::u16string_view text)
{
    bool semicolon = false;
    bool comma = false;
    for (const char16_t c : text) {
        if (c == u'\t')
            return c;
        semicolon = semicolon || c == u';';
        comma = comma || c == u',';
    }
    return semicolon ? u';' : comma ? u',' : u' ';
}

std::u16string_view trimmed(std::u16string_view field)
{
    const auto blank = [](char16_t c) { return c == u' ' || c == u'\t'; };
    while (!field.empty() && blank(field.front()))
        field.remove_prefix(1);
    while (!field.empty() && blank(field.back()))
        field.remove_suffix(1);
    return field;
}

bool isNumber(std::u16string_view field)
{
    double value = 0.0;
    return parseNumberField(field, value) != NumberField::NotANumber;
}

// "1,5" from a decimal-comma spreadsheet reads as 1.5; anything else stays as it is.
void pointForDecimalComma(std::u16string& field)
{
    const auto comma = field.find(u',');
    if (comma == std::u16string::npos || field.find_first_of(u",.", comma + 1) != std::u16string::npos
        || field.find(u'.') != std::u16string::npos)
        return;
    std::u16string pointed = field;
    pointed[comma] = u'.';
    if (isNumber(pointed))
        field = std::move(pointed);
}

bool isBlankRow(const std::vector<std::u16string>& row)
{
    for (const auto& field : row)
        if (!field.empty())
            return false;
    return true;
}

// One pass over the text, field by field.
class TableScanner {
public:
    TableScanner(std::u16string_view text, std::size_t maxColumns, std::size_t maxRows)
        : text_(text), separator_(chooseSeparator(text)), maxColumns_(maxColumns), maxRows_(maxRows)
    {
    }

    ParsedTable scan()
    {
        ParsedTable table;
        std::vector<std::u16string> row;
        while (pos_ < text_.size() && !tooMany_) {
            if (separator_ == u' ')
                skipSpaces();
            if (pos_ < text_.size() && !isLineEnd(text_[pos_]))
                addField(row);
            if (pos_ < text_.size() && text_[pos_] == separator_) {
                ++pos_;
                if (separator_ != u' ' && atRowEnd())
                    keep(row, {});  // "1;2;" has an empty third field
                continue;
            }
            if (pos_ < text_.size() && isLineEnd(text_[pos_])) {
                pos_ += text_[pos_] == u'\r' && pos_ + 1 < text_.size() && text_[pos_ + 1] == u'\n' ? 2 : 1;
                endRow(table.rows, row);
            }
        }
        if (!row.empty())
            endRow(table.rows, row);
        if (tooMany_)
            return {{}, true};
        skipHeader(table.rows);
        if (table.rows.size() > maxRows_)
            return {{}, true};
        return table;
    }

private:
    bool atRowEnd() const { return pos_ >= text_.size() || isLineEnd(text_[pos_]); }

    void skipSpaces()
    {
        while (pos_ < text_.size() && text_[pos_] == u' ')
            ++pos_;
    }

    bool endsField(char16_t c) const
    {
        return c == separator_ || isLineEnd(c);
    }

    void addField(std::vector<std::u16string>& row)
    {
        std::u16string field;
        const std::size_t start = pos_;
        while (pos_ < text_.size() && text_[pos_] == u' ')
            ++pos_;
        if (pos_ < text_.size() && text_[pos_] == u'"') {
            readQuoted(field);
            const std::size_t rest = pos_;
            while (pos_ < text_.size() && !endsField(text_[pos_]))
                ++pos_;
            field.append(trimmed(text_.substr(rest, pos_ - rest)));
        } else {
            pos_ = start;
            while (pos_ < text_.size() && !endsField(text_[pos_]))
                ++pos_;
            field = trimmed(text_.substr(start, pos_ - start));
            pointForDecimalComma(field);
        }
        keep(row, std::move(field));
    }

    void keep(std::vector<std::u16string>& row, std::u16string field)
    {
        if (row.size() < maxColumns_)
            row.push_back(std::move(field));
        else
            dropped_ = true;
    }

    // From the opening quote to its closing one; "" inside stands for one quote.
    void readQuoted(std::u16string& field)
    {
        ++pos_;
        while (pos_ < text_.size()) {
            const char16_t c = text_[pos_++];
            if (c != u'"') {
                field.push_back(c);
            } else if (pos_ < text_.size() && text_[pos_] == u'"') {
                field.push_back(u'"');
                ++pos_;
            } else {
                return;
            }
        }
    }

    // Blank rows are held back until a row with text follows, so those at the end
    // cost nothing and none of them counts against the bound.
    void endRow(TextTable& rows, std::vector<std::u16string>& row)
    {
        if (isBlankRow(row) && !dropped_) {
            ++pendingBlankRows_;
        } else {
            // one more than the bound, for a header row
            if (rows.size() + pendingBlankRows_ + 1 > maxRows_ + 1) {
                tooMany_ = true;
                return;
            }
            rows.resize(rows.size() + pendingBlankRows_);
            pendingBlankRows_ = 0;
            rows.push_back(std::move(row));
        }
        row.clear();
        dropped_ = false;
    }

    static void skipHeader(TextTable& rows)
    {
        if (rows.size() < 2)
            return;
        bool words = false;
        for (const auto& field : rows.front()) {
            if (isNumber(field))
                return;
            words = words || !field.empty();
        }
        if (!words)
            return;
        for (std::size_t r = 1; r < rows.size(); ++r)
            for (const auto& field : rows[r])
                if (isNumber(field)) {
                    rows.erase(rows.begin());
                    return;
                }
    }

    std::u16string_view text_;
    char16_t separator_;
    std::size_t maxColumns_;
    std::size_t maxRows_;
    std::size_t pos_ = 0;
    std::size_t pendingBlankRows_ = 0;
    bool dropped_ = false;  // the row had fields beyond maxColumns
    bool tooMany_ = false;
};

bool needsQuotes(std::u16string_view field)
{
    return field.find_first_of(u"\t\r\n\"") != std::u16string_view::npos
           || (!field.empty() && (field.front() == u' ' || field.back() == u' '));
}

}  // namespace

ParsedTable parseTabularText(std::u16string_view text, std::size_t maxColumns, std::size_t maxRows)
{
    return TableScanner(text, maxColumns, maxRows).scan();
}

std::u16string tabularText(const TextTable& rows)
{
    std::u16string text;
    for (const auto& row : rows) {
        for (std::size_t c = 0; c < row.size(); ++c) {
            if (c > 0)
                text.push_back(u'\t');
            if (!needsQuotes(row[c])) {
                text.append(row[c]);
                continue;
            }
            text.push_back(u'"');
            for (const char16_t ch : row[c]) {
                if (ch == u'"')
                    text.push_back(u'"');
                text.push_back(ch);
            }
            text.push_back(u'"');
        }
        text.push_back(u'\n');
    }
    return text;
}

std::u16string decodeTabularFile(std::string_view bytes)
{
    if (bytes.size() >= 2 && static_cast<unsigned char>(bytes[0]) == 0xFF
        && static_cast<unsigned char>(bytes[1]) == 0xFE) {
        std::u16string text;
        text.reserve((bytes.size() - 2) / 2);
        for (std::size_t i = 2; i + 1 < bytes.size(); i += 2)  // an odd last byte is dropped
            text.push_back(static_cast<char16_t>(static_cast<unsigned char>(bytes[i])
                                                 | (static_cast<unsigned char>(bytes[i + 1]) << 8)));
        return text;
    }
    if (bytes.size() >= 3 && bytes.substr(0, 3) == "\xEF\xBB\xBF")
        return utf8ToUtf16(bytes.substr(3));
    std::u16string text = utf8ToUtf16(bytes);
    if (utf16ToUtf8(text) == bytes)
        return text;
    return widen(bytes);
}

}  // namespace zelko
