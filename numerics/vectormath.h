#pragma once
// e^x and ln x over whole arrays, the inner work of the Hensel-Spittel descent and
// of the processing map; built a second time for AVX2 and chosen at start-up on
// processors that have it. Results may differ in the last bit between the two.

#include <cstddef>

namespace zelko {

void expInPlace(double* values, std::size_t count);
void logInPlace(double* values, std::size_t count);

}  // namespace zelko
