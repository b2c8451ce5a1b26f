#pragma once

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

}  // namespace zelko
