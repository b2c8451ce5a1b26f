#pragma once
// Choosing a hardening law for a tensile record: the fit the screen and the
// command-line tool both run.

#include <memory>
#include <string>

#include "cold/coldlaw.h"

namespace zelko {

struct ColdFitResult {
    std::shared_ptr<ColdLaw> law;  // the fitted law; empty when nothing ran
    std::string text;              // the result text, as the screen shows it
    std::string message;           // why nothing ran
};

// Fits the law of the selection list's index (1 to 8) to the record: rebuilds the
// true curve from the engineering one unless the curve was entered as true,
// fits, and makes a copy of the fitted law the record's held model. For the Swift
// law the comparison table is written into the exchange folder (when it can be).
ColdFitResult fitColdLaw(RoomOri& record, int listIndex);

// The Swift comparison table: strain, measured and predicted stress, error in %.
std::string swiftComparisonTable(const ColdLaw& swift);

}  // namespace zelko
