#pragma once
// A measured curve as text: numbers separated by blanks, tabs, commas or
// semicolons, two columns (x, y) or three (x, y, weight). Lines beginning with
// "#" and lines of words before the first numbers (a header) are skipped.

#include <optional>
#include <string>
#include <string_view>

#include "models/roomori.h"

namespace zelko {

// The curve, or nothing with the reason ("line 7: ...") in error.
std::optional<Curve> readCurveText(std::string_view bytes, std::string& error);

}  // namespace zelko
