#pragma once
// A measured curve as text: numbers separated by blanks, tabs, commas or
// semicolons, two columns (x, y) or three (x, y, weight). Lines beginning with
// "#" and lines of words before the first numbers (a header) are skipped. A
// header that names the columns (displacement, force, strain, stress, weight,
// each optionally with a unit: "force_kN", "strain_pct", "stress(MPa)") puts
// them in that order whatever order the file has them in.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "models/roomori.h"

namespace zelko {

// What a header line told about the columns.
struct CurveHeader {
    bool loadDisplacement = false;           // displacement and force; else strain and stress
    std::optional<std::int32_t> lengthUnit;  // the tensile screen's list position (percent strain is 1)
    std::optional<std::int32_t> forceUnit;
    std::string text;  // the header line as written, for messages
};

struct CurveText {
    Curve curve;
    std::optional<CurveHeader> header;  // none when no header named the columns
};

// The curve with its header, or nothing with the reason ("line 7: ...") in error.
std::optional<CurveText> readCurveFile(std::string_view bytes, std::string& error);
// The curve alone.
std::optional<Curve> readCurveText(std::string_view bytes, std::string& error);

}  // namespace zelko
