#pragma once
// A chart's curve as the screens draw it.

#include <cstddef>
#include <vector>

namespace zelko {

struct ChartPoints {
    std::vector<double> x;
    std::vector<double> y;
    std::size_t size() const { return x.size(); }
};

}  // namespace zelko
