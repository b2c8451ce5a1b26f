// A dropped .csv/.txt file, or pasted text, on any bytes: a table within its
// bounds, every field coercible, and the table written out reads back as wide.

#include <cstddef>
#include <cstdint>

#include "base/gridtext.h"
#include "fuzz/fuzzcheck.h"

using namespace zelko;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    constexpr std::size_t kColumns = 6;
    constexpr std::size_t kRows = 50;
    const std::u16string text = decodeTabularFile(fuzzBytes(data, size));
    const ParsedTable table = parseTabularText(text, kColumns, kRows);
    FUZZ_CHECK(table.rows.size() <= kRows);
    FUZZ_CHECK(!table.tooManyRows || table.rows.empty());
    for (const auto& row : table.rows) {
        FUZZ_CHECK(row.size() <= kColumns);
        for (const auto& field : row) {
            FUZZ_CHECK(!coerceCellText(field, {.integerOnly = true, .negativesAllowed = false}).empty());
            const std::u16string real = coerceCellText(field, {.realOnly = true, .negativesAllowed = false});
            FUZZ_CHECK(real.empty() || real[0] != u'-' || real == u"-0" || real == u"-nan");
        }
    }
    // Written as tab-separated text, no row grows and none splits.
    if (!table.rows.empty()) {
        const ParsedTable again = parseTabularText(tabularText(table.rows), kColumns, kRows);
        FUZZ_CHECK(!again.tooManyRows);
        FUZZ_CHECK(again.rows.size() <= table.rows.size());
    }
    return 0;
}
