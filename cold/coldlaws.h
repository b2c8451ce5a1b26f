#pragma once
// The eight cold hardening laws.

#include <array>
#include <memory>
#include <optional>

#include "cold/coldlaw.h"
#include "cold/formulas.h"

namespace zelko {

// Swift: sigma = Y0 (1 + eps/s0)^n.
class PLASTIC_1 : public FormulaLaw<SwiftFormula> {
public:
    explicit PLASTIC_1(const RoomOri& record);
    std::shared_ptr<Plastic> clone() const override { return cloneAs<PLASTIC_1>(); }
    std::vector<const char*> variableNames() const override { return {"Y0", "s0", "n"}; }
    std::vector<ParameterBound> defaultBounds() const override;
    std::string resultText() const override;
    std::vector<SearchAxis> searchAxes(const FitPoints& points) const override;
    bool logLogStart(const FitPoints& points, double* p) const override;
    bool writeLibraryBlock(TextWriter& out, int version) const override;

protected:
    void estimateStart(const FitPoints& points, double* p) const override;
    void maskGradient(double* g) const override;
    int neckingGridParameter() const override { return 1; }
};

// Hollomon: sigma = K eps^n.
class PLASTIC_3 : public FormulaLaw<HollomonFormula> {
public:
    explicit PLASTIC_3(const RoomOri& record);
    std::shared_ptr<Plastic> clone() const override { return cloneAs<PLASTIC_3>(); }
    std::vector<const char*> variableNames() const override { return {"K", "n"}; }
    std::vector<ParameterBound> defaultBounds() const override;
    std::string resultText() const override;
    std::vector<SearchAxis> searchAxes(const FitPoints& points) const override;
    bool logLogStart(const FitPoints& points, double* p) const override;
    bool writeLibraryBlock(TextWriter& out, int version) const override;
    // Closed form from the necking condition at the record's necking index.
    bool fitNeckingConstrained(const RunControl& control = {}) override;
    // Whether the true curve has a usable point at the necking index for that
    // closed form; a curve rebuilt from a later start row is too short for it.
    bool hasNeckingReading() const;

protected:
    void estimateStart(const FitPoints& points, double* p) const override;
};

// Ludwik: sigma = Y + K eps^n.
class PLASTIC_4 : public FormulaLaw<LudwikFormula> {
public:
    explicit PLASTIC_4(const RoomOri& record);
    std::shared_ptr<Plastic> clone() const override { return cloneAs<PLASTIC_4>(); }
    std::vector<const char*> variableNames() const override { return {"Y0", "K", "n"}; }
    std::vector<ParameterBound> defaultBounds() const override;
    std::string resultText() const override;
    std::vector<SearchAxis> searchAxes(const FitPoints& points) const override;
    bool logLogStart(const FitPoints& points, double* p) const override;
    bool writeLibraryBlock(TextWriter& out, int version) const override;

protected:
    ErrorRule errorRule() const override { return ErrorRule::PerPoint; }
    void estimateStart(const FitPoints& points, double* p) const override;
};

// Kim Tuan: sigma = YS + T (s0 + eps)^m (1 - exp(-C eps)).
class PLASTIC_Kim_Tuan : public FormulaLaw<KimTuanFormula> {
public:
    explicit PLASTIC_Kim_Tuan(const RoomOri& record);
    std::shared_ptr<Plastic> clone() const override { return cloneAs<PLASTIC_Kim_Tuan>(); }
    std::vector<const char*> variableNames() const override { return {"Y0", "s0", "T", "m", "C"}; }
    std::vector<ParameterBound> defaultBounds() const override;
    std::string resultText() const override;
    std::vector<SearchAxis> searchAxes(const FitPoints& points) const override;

protected:
    void estimateStart(const FitPoints& points, double* p) const override;
    int neckingGridParameter() const override { return 1; }
};

// Hockett-Sherby: sigma = YS + V1 (1 - exp(-V2 eps^H1)).
class PLASTIC_Hockett_Sherby : public FormulaLaw<HockettSherbyFormula> {
public:
    explicit PLASTIC_Hockett_Sherby(const RoomOri& record);
    std::shared_ptr<Plastic> clone() const override { return cloneAs<PLASTIC_Hockett_Sherby>(); }
    std::vector<const char*> variableNames() const override { return {"Y0", "V1", "V2", "h1"}; }
    std::vector<ParameterBound> defaultBounds() const override;
    std::string resultText() const override;
    std::vector<SearchAxis> searchAxes(const FitPoints& points) const override;

protected:
    ErrorRule errorRule() const override { return ErrorRule::PerPoint; }
    void estimateStart(const FitPoints& points, double* p) const override;
};

// Voce General: sigma = V0 + V1 (1 + V3 eps)(1 - exp(-V2 eps)).
class PLASTIC_Voce_General : public FormulaLaw<VoceGeneralFormula> {
public:
    explicit PLASTIC_Voce_General(const RoomOri& record);
    std::shared_ptr<Plastic> clone() const override { return cloneAs<PLASTIC_Voce_General>(); }
    std::vector<const char*> variableNames() const override { return {"V0", "V1", "V2", "V3"}; }
    std::vector<ParameterBound> defaultBounds() const override;
    std::string resultText() const override;
    std::vector<SearchAxis> searchAxes(const FitPoints& points) const override;

protected:
    void estimateStart(const FitPoints& points, double* p) const override;
};

// El-Magd: sigma = C0 + C1 (1 - exp(-C2 eps)) + C3 eps.
class PLASTIC_ElMagd : public FormulaLaw<ElMagdFormula> {
public:
    explicit PLASTIC_ElMagd(const RoomOri& record);
    std::shared_ptr<Plastic> clone() const override { return cloneAs<PLASTIC_ElMagd>(); }
    std::vector<const char*> variableNames() const override { return {"V0", "V1", "V2", "V3"}; }
    std::vector<ParameterBound> defaultBounds() const override;
    std::string resultText() const override;
    std::vector<SearchAxis> searchAxes(const FitPoints& points) const override;

protected:
    ErrorRule errorRule() const override { return ErrorRule::PerPoint; }
    void estimateStart(const FitPoints& points, double* p) const override;
};

// Voyiadjis-Abed: sigma = V0 + V1 sqrt(1 - exp(-V2 eps)), the hardening of a
// dislocation density that saturates with strain.
class PLASTIC_Voyiadjis_Abed : public FormulaLaw<VoyiadjisAbedFormula> {
public:
    explicit PLASTIC_Voyiadjis_Abed(const RoomOri& record);
    std::shared_ptr<Plastic> clone() const override { return cloneAs<PLASTIC_Voyiadjis_Abed>(); }
    std::vector<const char*> variableNames() const override { return {"V0", "V1", "V2"}; }
    std::vector<ParameterBound> defaultBounds() const override;
    std::string resultText() const override;
    std::vector<SearchAxis> searchAxes(const FitPoints& points) const override;

protected:
    void estimateStart(const FitPoints& points, double* p) const override;
};

// The laws by their model numbers.
enum class ColdLawId {
    Swift = 1,
    Hollomon = 3,
    Ludwik = 4,
    VoceGeneral = 31,
    HockettSherby = 32,
    ElMagd = 33,
    VoyiadjisAbed = 34,
    KimTuan = 35,
};

// The laws in the order the tensile screen lists them.
inline constexpr std::array<ColdLawId, 8> kColdLaws = {
    ColdLawId::Swift,         ColdLawId::Hollomon,    ColdLawId::Ludwik, ColdLawId::KimTuan,
    ColdLawId::HockettSherby, ColdLawId::VoceGeneral, ColdLawId::ElMagd, ColdLawId::VoyiadjisAbed,
};

// The tensile screen's selection list: the simulation first, then the laws.
struct ColdLawListEntry {
    const char* text;
    std::optional<ColdLawId> law;  // none for the simulation
};
inline constexpr int kColdLawListSize = 9;
// The entry at a list position; an empty one outside the list.
ColdLawListEntry coldLawListEntry(int position);
// The list's text of a law ("Swift model (1)"); empty for a number that is no law.
const char* coldLawTitle(ColdLawId law);

// A law of that number as a copy of the record; nothing for a number that is no law.
std::shared_ptr<ColdLaw> makeColdLaw(ColdLawId law, const RoomOri& record);

}  // namespace zelko
