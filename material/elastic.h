#pragma once
// Young's modulus, Poisson's ratio, density and thermal expansion, each a constant
// (form 1) or a table against temperature (form 2).

#include <array>
#include <cstdint>

#include "base/library.h"
#include "base/tablepoint.h"

namespace zelko {

enum ElasticProperty : int { YoungsModulus = 0, PoissonsRatio = 1, Density = 2, ThermalExpansion = 3 };
inline constexpr int kElasticPropertyCount = 4;

class ELASTIC : public Library {
public:
    ELASTIC() { propertyType.fill(1); }

    // The property's value: the first point's, or 0 for an empty table.
    double value(int index) const;
    void setTable(int index, const PropertyTable& points);

    void writeMaterialBlock(TextWriter& out, int index) const;
    // The elastic section of the material file, read just after "** ELASTIC".
    void readMaterialBlock(TextReader& in, int minor);
    bool writeLibraryBlock(TextWriter& out, int version) const override;
    bool readLibraryBlock(TextReader& in) override;

    std::array<std::int32_t, kElasticPropertyCount> propertyType{};
    std::array<PropertyTable, kElasticPropertyCount> tables;

private:
    void readCurrentLayout(TextReader& in);
    void readOldLayout(TextReader& in);
};

// The padded keyword line of a property in the library file.
const char* elasticLibraryKeyword(int index);

}  // namespace zelko
