#pragma once
// The raw-data export of a chart screen's list: its column headers, then its
// rows, every text followed by ", " and every line ended by "\n", in a UTF-16
// file as the text layer writes one.

#include <cstddef>
#include <string>
#include <vector>

#include "base/gridtext.h"

namespace zelko {

// A header is read into a buffer of 256 units, so longer ones are cut to this.
inline constexpr std::size_t kListHeaderUnits = 255;

// The text of the export, "\n" line ends. Cells are written whole; a row shorter
// than the header has fewer cells and a longer one keeps them all.
std::u16string listExportText(const std::vector<std::u16string>& headers, const TextTable& rows);

// The file's bytes: byte-order mark, UTF-16LE, "\r\n" line ends.
std::string listExportFile(const std::vector<std::u16string>& headers, const TextTable& rows);

}  // namespace zelko
