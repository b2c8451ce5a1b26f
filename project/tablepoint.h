#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace zelko {

// One point of a property table: temperature (C) and value. A constant is a
// one-point table at temperature 0.
struct TablePoint {
    double temperature = 0.0;
    double value = 0.0;
    friend bool operator==(const TablePoint&, const TablePoint&) = default;
};

using PropertyTable = std::vector<TablePoint>;

// A count read from a file is trusted only as far as the rest of the file could
// hold it, so a damaged count cannot make us allocate for points that aren't there.
// Small counts are always honoured (the unread points are zero).
inline std::size_t boundedCount(long long count, std::size_t remainingUnits)
{
    if (count <= 0)
        return 0;
    const std::size_t limit = std::max<std::size_t>(remainingUnits, 65536);
    return static_cast<std::size_t>(std::min<unsigned long long>(static_cast<unsigned long long>(count), limit));
}

}  // namespace zelko
