#pragma once
// A thermal property table against temperature: conductivity or volumetric heat capacity.

#include "base/library.h"
#include "base/tablepoint.h"

namespace zelko {

class HEAT : public Library {
public:
    // Material file: " %5d\n" count, " %.7f %.7f\n" per point.
    void writeMaterialBlock(TextWriter& out) const;
    // Library file: "      %d\n" count, "      %.4E  %.4E\n" per point.
    bool writeLibraryBlock(TextWriter& out, int version) const override;
    // Token reader; reads both the material and the library layout.
    bool readLibraryBlock(TextReader& in) override;

    PropertyTable points;
};

}  // namespace zelko
