#pragma once
// A hot data set from a long CSV: one line a point, "temperature,strain_rate,
// strain,stress" (blanks, tabs or semicolons also separate), an optional header
// line of words, "#" lines skipped. The command-line tool's input.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "hot/hotdataset.h"

namespace zelko {

// Far beyond any laboratory series (the thinned Gleeble set is 60 kB).
inline constexpr std::uintmax_t kMaxHotCsvBytes = 64u * 1024u * 1024u;
inline constexpr std::size_t kMaxHotCsvLineUnits = 4096;

struct HotCsvOptions {
    double strainOffset = 0.0;
    StrainMeasure measure = StrainMeasure::True;
};

// The data set (lists and curves, no sample strains), or nothing with the reason,
// which names the line at fault ("line 12: ...").
std::optional<PLASTIC_HOT> readHotCurvesCsv(std::string_view bytes, const HotCsvOptions& options, std::string& error);

// Up to 15 evenly spaced sample strains, a round step apart (1, 2 or 5 times a
// power of ten), up to the largest strain that every curve reaches.
std::vector<double> defaultSampleStrains(const PLASTIC_HOT& dataSet);

}  // namespace zelko
