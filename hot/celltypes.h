#pragma once
// The hot types that keep coefficients per test cell: 16 (K·ε^n) and the
// four-coefficient types 161, 163 to 169 and 1600 (laws in celllaws.h).
// 162 is known but has no law here.

#include <array>
#include <string>
#include <vector>

#include "hot/celllaws.h"
#include "hot/plastic_hot.h"

namespace zelko {

class CellTableModel : public PLASTIC_HOT {
public:
    // Fits each cell's curve; a cell that can't be fitted keeps no coefficients.
    // A stop ends it before the next cell (false).
    bool fillCellCoefficients(const RunControl& control) override;
    // Interpolates the cells' laws (stresstable.h's interpolateCells).
    double evaluate(double strain, double strainRate, double temperature) const override;
    bool hasLaw() const override { return true; }

    // What the last fill could not fit, a line a cell.
    const std::vector<std::string>& unfittedCells() const { return cellNotes_; }
    // One cell's stress at a strain; 0 for a cell without coefficients.
    double cellStress(std::size_t t, std::size_t r, double strain) const;
    // The coefficients' names in the report.
    virtual std::vector<const char*> coefficientNames() const = 0;

    std::vector<std::vector<std::vector<double>>> cellCoefficients;  // [temperature][strain rate]

protected:
    virtual double lawStress(const std::vector<double>& c, double strain) const = 0;
    // The cell's coefficients, empty when the curve can't give them.
    virtual std::vector<double> fitCurve(const HotCurve& curve) const = 0;
    // The block's stress range: smallest and largest cellStress over every cell and
    // sample strain, starting from 1e8 and -1.
    std::array<double, 2> stressRange() const;
    // The block's first three lines: the id, the stress range with the first and
    // last rate and temperature, and the 0.0001 line.
    void writeRangeLines(TextWriter& out) const;
    // The cell count line, then "%30.4E %17.4E" and " %17.4E" per coefficient for
    // each cell (a cell without coefficients writes zeros).
    void writeCellLines(TextWriter& out, std::size_t coefficients) const;

    std::vector<std::string> cellNotes_;  // cells the last fill could not fit
};

// The per-cell fit, on a new model of the type that holds a copy of the data set
// (hotmodels.h's fitHotModel makes it). A stop ends it within one cell.
HotFit fitCellTable(std::shared_ptr<CellTableModel> model, const RunControl& control);

class PLASTIC_16 : public CellTableModel {
public:
    PLASTIC_16() { modelNumber = 16; }
    std::shared_ptr<Plastic> clone() const override { return cloneAs<PLASTIC_16>(); }
    bool writeLibraryBlock(TextWriter& out, int version) const override;
    std::vector<const char*> coefficientNames() const override { return {"K", "n"}; }

protected:
    double lawStress(const std::vector<double>& c, double strain) const override;
    std::vector<double> fitCurve(const HotCurve& curve) const override;
};

// The strain offset of the types with an offset constant: keeps x^C2 finite at zero strain.
inline constexpr double kDefaultCellStrainOffset = 0.01;

// The shared frame of 161, 163 to 169 and 1600: four coefficients a cell of one
// of the laws of celllaws.h. A type may have a strain offset (x = ε + offset) and
// a strain cap (beyond the largest sample strain the stress stays at its value
// there, where the curves say nothing more). These are its type constants:
// typeConstant1 is the first of them it has, typeConstant2 the second; the
// block's constants line puts the offset first and the cap second.
class FourCoefficientModel : public CellTableModel {
public:
    bool writeLibraryBlock(TextWriter& out, int version) const override;
    bool fillCellCoefficients(const RunControl& control) override;
    std::vector<const char*> coefficientNames() const override { return {"C1", "C2", "C3", "C4"}; }

    double strainOffset() const { return hasOffset_ ? typeConstant1 : 0.0; }
    double strainCap() const { return hasCap_ ? (hasOffset_ ? typeConstant2 : typeConstant1) : 0.0; }

    double typeConstant1 = 0.0;
    double typeConstant2 = 0.0;

protected:
    FourCoefficientModel(int id, CellLaw law, bool hasOffset, bool hasCap);

    double lawStress(const std::vector<double>& c, double strain) const override;
    std::vector<double> fitCurve(const HotCurve& curve) const override;

private:
    CellLaw law_;
    bool hasOffset_;
    bool hasCap_;
};

// Exists in the family; the data screen refuses to create it.
class PLASTIC_162 : public PLASTIC_HOT {
public:
    PLASTIC_162() { modelNumber = 162; }
    std::shared_ptr<Plastic> clone() const override { return cloneAs<PLASTIC_162>(); }
};

// 161, 167 (offset) and 168 (cap) share the Hensel-Spittel strain law; 163
// (offset and cap) and 165 (offset) fill the same cells, and so do 164 and 166 (cap).
class PLASTIC_161 : public FourCoefficientModel {
public:
    PLASTIC_161() : FourCoefficientModel(161, CellLaw::HenselSpittelStrain, false, false) {}
    std::shared_ptr<Plastic> clone() const override { return cloneAs<PLASTIC_161>(); }
};
class PLASTIC_163 : public FourCoefficientModel {
public:
    PLASTIC_163() : FourCoefficientModel(163, CellLaw::SwiftSoftening, true, true) {}
    std::shared_ptr<Plastic> clone() const override { return cloneAs<PLASTIC_163>(); }
};
class PLASTIC_164 : public FourCoefficientModel {
public:
    PLASTIC_164() : FourCoefficientModel(164, CellLaw::VoceLinear, false, false) {}
    std::shared_ptr<Plastic> clone() const override { return cloneAs<PLASTIC_164>(); }
};
class PLASTIC_165 : public FourCoefficientModel {
public:
    PLASTIC_165() : FourCoefficientModel(165, CellLaw::SwiftSoftening, true, false) {}
    std::shared_ptr<Plastic> clone() const override { return cloneAs<PLASTIC_165>(); }
};
class PLASTIC_166 : public FourCoefficientModel {
public:
    PLASTIC_166() : FourCoefficientModel(166, CellLaw::VoceLinear, false, true) {}
    std::shared_ptr<Plastic> clone() const override { return cloneAs<PLASTIC_166>(); }
};
class PLASTIC_167 : public FourCoefficientModel {
public:
    PLASTIC_167() : FourCoefficientModel(167, CellLaw::HenselSpittelStrain, true, false) {}
    std::shared_ptr<Plastic> clone() const override { return cloneAs<PLASTIC_167>(); }
};
class PLASTIC_168 : public FourCoefficientModel {
public:
    PLASTIC_168() : FourCoefficientModel(168, CellLaw::HenselSpittelStrain, false, true) {}
    std::shared_ptr<Plastic> clone() const override { return cloneAs<PLASTIC_168>(); }
};
class PLASTIC_169 : public FourCoefficientModel {
public:
    PLASTIC_169() : FourCoefficientModel(169, CellLaw::HockettSherby, false, false) {}
    std::shared_ptr<Plastic> clone() const override { return cloneAs<PLASTIC_169>(); }
};
class PLASTIC_1600 : public FourCoefficientModel {
public:
    PLASTIC_1600() : FourCoefficientModel(1600, CellLaw::PowerExponential, false, false) {}
    std::shared_ptr<Plastic> clone() const override { return cloneAs<PLASTIC_1600>(); }
};

}  // namespace zelko
