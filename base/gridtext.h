#pragma once
// The text side of the data grids: what a typed cell becomes, and tables of text
// as spreadsheets copy them (tab, semicolon, comma or space separated) read and
// written, so the screens only move strings in and out of their cells.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zelko {

// How a grid converts what is typed into its cells.
struct CellRules {
    bool integerOnly = false;
    bool realOnly = false;  // used when integerOnly is false
    bool negativesAllowed = true;
};

// The text the cell stores for typed: an integer written "%d" (text that is not a
// number gives 0), a real written "%g", or the text as typed; a negative number
// turns positive when negatives are not allowed.
std::u16string coerceCellText(std::u16string_view typed, const CellRules& rules);

using TextTable = std::vector<std::vector<std::u16string>>;

// More rows than any test curve has; a paste or file beyond it is refused whole
// rather than growing a grid without bound.
inline constexpr std::size_t kMaxTableRows = 100000;

struct ParsedTable {
    TextTable rows;
    bool tooManyRows = false;  // rows is then empty
};

// Reads a table: rows end at "\n", "\r\n" or "\r"; fields are split on tabs if the
// text has any, else on semicolons, else on commas, else on runs of spaces.
// Double-quoted fields may hold separators, line ends and "" for a quote. Fields
// are trimmed; "1,5" becomes "1.5" where commas do not separate. A first row of
// words over rows holding numbers is a header and is skipped, as are blank rows
// at the end. Fields beyond maxColumns in a row are dropped unread.
ParsedTable parseTabularText(std::u16string_view text, std::size_t maxColumns,
                             std::size_t maxRows = kMaxTableRows);

// Tab-separated rows, each ending in "\n"; a field with a tab, a line end or a
// quote is quoted, so parseTabularText reads the same table back.
std::u16string tabularText(const TextTable& rows);

// The text of a dropped .csv or .txt file: UTF-16LE or UTF-8 after their byte-order
// marks, UTF-8 when the bytes are valid UTF-8, else one character per byte
// (Windows spreadsheets write Latin-1).
std::u16string decodeTabularFile(std::string_view bytes);

}  // namespace zelko
