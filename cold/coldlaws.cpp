#include "cold/coldlaws.h"

#include <algorithm>
#include <cmath>

#include "base/textfile.h"
#include "numerics/leastsquares.h"

namespace zelko {

namespace {

constexpr double kWide = 1e6;  // MPa: no real stress parameter comes near it

// ln K and n of stress - offset = K eps^n over the fitted points.
std::optional<PowerLawFit> powerLawOf(const FitPoints& points, double offset)
{
    return fitPowerLaw(points.strain, points.stress, offset);
}

double lastStrain(const FitPoints& points)
{
    const double e = points.strain.back();
    return e > 0.0 && std::isfinite(e) ? e : 1.0;
}

// Rates of a saturating rise, from a tenth of the strain range to far beyond it.
SearchAxis rateAxis(std::size_t parameter, const FitPoints& points)
{
    return {parameter, 0.1 / lastStrain(points), 3000.0 / lastStrain(points), true};
}

// A saturating rise that is 95 % complete at the last strain.
double saturationRate(const FitPoints& points) { return 3.0 / lastStrain(points); }

double rise(const FitPoints& points) { return points.stress.back() - points.stress.front(); }

// V0 + V1 (1 - exp(-V2 eps)) with no linear term: Voce General's and El-Magd's start.
void saturatingStart(const FitPoints& points, double* q)
{
    q[0] = points.stress.front();
    q[2] = saturationRate(points);
    q[3] = 0.0;
    q[1] = rise(points) / (1.0 - std::exp(-3.0));
}

bool writeThreeLineBlock(const ColdLaw& law, TextWriter& out, double a, double b, double c)
{
    out.format("%8d\n", law.modelNumber);
    out.format("%30.4E %17.4E %17.4E %17.4E %17.4E %17.4E\n", law.blockLeadValue, 100000.0, 0.0001, 0.0, 0.0, 0.0);
    out.format("%30.4E %17.4E %17.4E\n", a, b, c);
    return true;
}

// Parameter i as the texts print it: 0 when the law has no such parameter.
double shown(const ColdLaw& law, std::size_t i)
{
    return i < law.parameters.size() ? printable(law.parameters[i]) : 0.0;
}

}  // namespace

// ---- Swift ----

PLASTIC_1::PLASTIC_1(const RoomOri& record) : FormulaLaw(record) { modelNumber = 1; }

std::vector<ParameterBound> PLASTIC_1::defaultBounds() const
{
    return {{0.0, -kWide, kWide}, {0.01, 0.0, 100.0}, {0.2, -10.0, 1.0}};
}

void PLASTIC_1::estimateStart(const FitPoints& points, double* q) const
{
    q[0] = points.stress.front();
    q[1] = 0.01;
    q[2] = 0.2;
}

void PLASTIC_1::maskGradient(double* g) const
{
    if (isFixed(0))
        g[0] = 0.0;
    if (isFixed(1))
        g[1] = 0.0;
    // A fixed exponent holds s0 still too: only Y0 moves.
    if (isFixed(2)) {
        g[1] = 0.0;
        g[2] = 0.0;
    }
}

std::vector<SearchAxis> PLASTIC_1::searchAxes(const FitPoints&) const { return {{1, 1e-6, 1.0, true}, {2, 0.005, 0.95, false}}; }

bool PLASTIC_1::logLogStart(const FitPoints& points, double* q) const
{
    // Far beyond s0 the law is Y0 s0^-n eps^n; s0 then puts the curve through its first stress.
    const std::optional<PowerLawFit> fit = powerLawOf(points, 0.0);
    if (!fit || !(fit->n > 0.0 && fit->n < 1.0) || !(points.stress.front() > 0.0))
        return false;
    q[0] = points.stress.front();
    q[1] = std::exp((std::log(q[0]) - fit->lnK) / fit->n);
    q[2] = fit->n;
    return std::isfinite(q[1]) && q[1] > 0.0;
}

std::string PLASTIC_1::resultText() const
{
    return formatText("Y0 = %16.4E \ns0 = %16.4E \nn = %16.4E\nError = %16.4E MPa\nSlope at necking point = %16.4E",
                      shown(*this, 0), shown(*this, 1), shown(*this, 2), printable(fitError), printable(neckingSlope()));
}

// The exponent comes before s0 in the library.
bool PLASTIC_1::writeLibraryBlock(TextWriter& out, int) const
{
    return writeThreeLineBlock(*this, out, shown(*this, 0), shown(*this, 2), shown(*this, 1));
}

// ---- Hollomon ----

PLASTIC_3::PLASTIC_3(const RoomOri& record) : FormulaLaw(record) { modelNumber = 3; }

std::vector<ParameterBound> PLASTIC_3::defaultBounds() const { return {{500.0, 0.0, kWide}, {0.2, 0.0, 1.0}}; }

void PLASTIC_3::estimateStart(const FitPoints& points, double* q) const
{
    const std::optional<PowerLawFit> fit = powerLawOf(points, 0.0);
    if (fit && fit->n > 0.0 && fit->n < 1.0) {
        q[0] = std::exp(fit->lnK);
        q[1] = fit->n;
    } else {
        q[0] = std::max(1.0, *std::max_element(points.stress.begin(), points.stress.end()));
        q[1] = 0.2;
    }
}

bool PLASTIC_3::hasNeckingReading() const
{
    const Curve& curve = curves[TrueCurve];
    if (neckingIndex < 0 || static_cast<std::size_t>(neckingIndex) >= curve.size())
        return false;
    const CurvePoint& neck = curve[static_cast<std::size_t>(neckingIndex)];
    return neck.x > 0.0 && std::isfinite(neck.x) && std::isfinite(neck.y);
}

bool PLASTIC_3::fitNeckingConstrained(const RunControl&)
{
    // Considere for K eps^n: n equals the necking strain. The point is the true
    // curve's at the necking index itself, not counted from the start index.
    parameters.resize(parameterCount());
    if (hasNeckingReading()) {
        const CurvePoint& neck = curves[TrueCurve][static_cast<std::size_t>(neckingIndex)];
        parameters[1] = neck.x;
        parameters[0] = neck.y / std::pow(neck.x, neck.x);
    }
    fitError = objective(parameters, fittedPoints().size());
    fitEnd = {FitStop::Converged, boundsReached(parameters), 0};
    return true;
}

std::vector<SearchAxis> PLASTIC_3::searchAxes(const FitPoints&) const { return {{1, 0.005, 0.95, false}}; }

bool PLASTIC_3::logLogStart(const FitPoints& points, double* q) const
{
    const std::optional<PowerLawFit> fit = powerLawOf(points, 0.0);
    if (!fit || !(fit->n > 0.0 && fit->n < 1.0))
        return false;
    q[0] = std::exp(fit->lnK);
    q[1] = fit->n;
    return true;
}

std::string PLASTIC_3::resultText() const
{
    return formatText("K = %16.4E \nn = %16.4E\nError = %16.4E MPa", shown(*this, 0), shown(*this, 1), printable(fitError));
}

bool PLASTIC_3::writeLibraryBlock(TextWriter& out, int) const
{
    return writeThreeLineBlock(*this, out, shown(*this, 0), shown(*this, 1), blockLeadValue);
}

// ---- Ludwik ----

PLASTIC_4::PLASTIC_4(const RoomOri& record) : FormulaLaw(record) { modelNumber = 4; }

std::vector<ParameterBound> PLASTIC_4::defaultBounds() const
{
    return {{200.0, -kWide, kWide}, {500.0, -kWide, kWide}, {0.5, 0.0, 10.0}};
}

void PLASTIC_4::estimateStart(const FitPoints& points, double* q) const
{
    q[0] = points.stress.front();
    const std::optional<PowerLawFit> fit = powerLawOf(points, q[0]);
    if (fit && fit->n > 0.0) {
        q[1] = std::exp(fit->lnK);
        q[2] = fit->n;
    } else {
        q[1] = rise(points);
        q[2] = 0.5;
    }
}

std::vector<SearchAxis> PLASTIC_4::searchAxes(const FitPoints&) const { return {{2, 0.01, 5.0, true}}; }

bool PLASTIC_4::logLogStart(const FitPoints& points, double* q) const
{
    // The yield stress a little below the first point, so that every point has a hardening term.
    q[0] = points.stress.front() - 0.01 * std::fabs(points.stress.front());
    const std::optional<PowerLawFit> fit = powerLawOf(points, q[0]);
    if (!fit || !(fit->n > 0.0))
        return false;
    q[1] = std::exp(fit->lnK);
    q[2] = fit->n;
    return std::isfinite(q[1]);
}

std::string PLASTIC_4::resultText() const
{
    // The screen has always shown 0 for the Ludwik slope.
    return formatText("Y = %16.4E \nK = %16.4E \nn = %16.4E\nError = %16.4E MPa\nSlope at necking point = %16.4E",
                      shown(*this, 0), shown(*this, 1), shown(*this, 2), printable(fitError), 0.0);
}

bool PLASTIC_4::writeLibraryBlock(TextWriter& out, int) const
{
    return writeThreeLineBlock(*this, out, shown(*this, 0), shown(*this, 1), shown(*this, 2));
}

// ---- Kim Tuan ----

PLASTIC_Kim_Tuan::PLASTIC_Kim_Tuan(const RoomOri& record) : FormulaLaw(record) { modelNumber = 35; }

std::vector<ParameterBound> PLASTIC_Kim_Tuan::defaultBounds() const
{
    return {{200.0, -kWide, kWide}, {0.001, 0.0, 100.0}, {500.0, -kWide, kWide}, {0.3, -10.0, 10.0},
            {20.0, 0.0, 1e5}};
}

void PLASTIC_Kim_Tuan::estimateStart(const FitPoints& points, double* q) const
{
    q[0] = points.stress.front();
    q[1] = 0.001;
    q[3] = 0.3;
    q[4] = saturationRate(points);
    const double e = lastStrain(points);
    const double shape = std::pow(q[1] + e, q[3]) * (1.0 - std::exp(-q[4] * e));
    q[2] = shape > 0.0 ? rise(points) / shape : rise(points);
}

std::vector<SearchAxis> PLASTIC_Kim_Tuan::searchAxes(const FitPoints& points) const
{
    // m falls below 0 and C towards 0 where the saturation turns into a straight rise.
    const double last = lastStrain(points);
    return {{1, 1e-6, 1.0, true}, {3, -1.5, 1.5, false}, {4, 1e-3 / last, 3000.0 / last, true}};
}

std::string PLASTIC_Kim_Tuan::resultText() const
{
    return formatText(
        "YS = %16.4E \ns0 = %16.4E \nT = %16.4E \nm = %16.4E \nC = %16.4E\nError = %16.4E MPa\n"
        "Slope at necking point = %16.4E",
        shown(*this, 0), shown(*this, 1), shown(*this, 2), shown(*this, 3), shown(*this, 4), printable(fitError),
        printable(neckingSlope()));
}

// ---- Hockett-Sherby ----

PLASTIC_Hockett_Sherby::PLASTIC_Hockett_Sherby(const RoomOri& record) : FormulaLaw(record) { modelNumber = 32; }

std::vector<ParameterBound> PLASTIC_Hockett_Sherby::defaultBounds() const
{
    return {{200.0, -kWide, kWide}, {300.0, -kWide, kWide}, {5.0, 0.0, 1e5}, {0.5, 0.0, 10.0}};
}

void PLASTIC_Hockett_Sherby::estimateStart(const FitPoints& points, double* q) const
{
    // Half of the saturation reached at the last strain.
    q[0] = points.stress.front();
    q[1] = 2.0 * rise(points);
    q[3] = 0.5;
    q[2] = std::log(2.0) / std::pow(lastStrain(points), q[3]);
}

std::vector<SearchAxis> PLASTIC_Hockett_Sherby::searchAxes(const FitPoints&) const
{
    return {{2, 0.01, 1e4, true}, {3, 0.1, 3.0, true}};
}

std::string PLASTIC_Hockett_Sherby::resultText() const
{
    return formatText(
        "YS = %16.4E \nV1 = %16.4E \nV2 = %16.4E \n H1 = %16.4E\nError = %16.4E MPa\nSlope at necking point = %16.4E",
        shown(*this, 0), shown(*this, 1), shown(*this, 2), shown(*this, 3), printable(fitError), printable(neckingSlope()));
}

// ---- Voce General ----

PLASTIC_Voce_General::PLASTIC_Voce_General(const RoomOri& record) : FormulaLaw(record) { modelNumber = 31; }

std::vector<ParameterBound> PLASTIC_Voce_General::defaultBounds() const
{
    return {{200.0, -kWide, kWide}, {300.0, -kWide, kWide}, {20.0, 0.0, 1e5}, {0.0, -1e4, 1e4}};
}

void PLASTIC_Voce_General::estimateStart(const FitPoints& points, double* q) const { saturatingStart(points, q); }

std::vector<SearchAxis> PLASTIC_Voce_General::searchAxes(const FitPoints& points) const
{
    // (1 + V3 eps) from a slight fall to a thirtyfold rise over the curve.
    return {rateAxis(2, points), {3, -0.9 / lastStrain(points), 30.0 / lastStrain(points), false}};
}

std::string PLASTIC_Voce_General::resultText() const
{
    return formatText(
        "V0 = %16.4E \nV1 = %16.4E \nV2 = %16.4E \nV3 = %16.4E\nError = %16.4E MPa\nSlope at necking point = %16.4E",
        shown(*this, 0), shown(*this, 1), shown(*this, 2), shown(*this, 3), printable(fitError), printable(neckingSlope()));
}

// ---- El-Magd ----

PLASTIC_ElMagd::PLASTIC_ElMagd(const RoomOri& record) : FormulaLaw(record) { modelNumber = 33; }

std::vector<ParameterBound> PLASTIC_ElMagd::defaultBounds() const
{
    return {{200.0, -kWide, kWide}, {300.0, -kWide, kWide}, {20.0, 0.0, 1e5}, {0.0, -kWide, kWide}};
}

void PLASTIC_ElMagd::estimateStart(const FitPoints& points, double* q) const { saturatingStart(points, q); }

std::vector<SearchAxis> PLASTIC_ElMagd::searchAxes(const FitPoints& points) const { return {rateAxis(2, points)}; }

std::string PLASTIC_ElMagd::resultText() const
{
    return formatText(
        "C0 = %16.4E \nC1 = %16.4E \nC2 = %16.4E \nC3 = %16.4E\nError = %16.4E MPa\nSlope at necking point = %16.4E",
        shown(*this, 0), shown(*this, 1), shown(*this, 2), shown(*this, 3), printable(fitError), printable(neckingSlope()));
}

// ---- Voyiadjis-Abed ----

PLASTIC_Voyiadjis_Abed::PLASTIC_Voyiadjis_Abed(const RoomOri& record) : FormulaLaw(record) { modelNumber = 34; }

std::vector<ParameterBound> PLASTIC_Voyiadjis_Abed::defaultBounds() const
{
    return {{200.0, -kWide, kWide}, {300.0, -kWide, kWide}, {20.0, 0.0, 1e5}};
}

void PLASTIC_Voyiadjis_Abed::estimateStart(const FitPoints& points, double* q) const
{
    q[0] = points.stress.front();
    q[2] = saturationRate(points);
    q[1] = rise(points) / std::sqrt(1.0 - std::exp(-3.0));
}

std::vector<SearchAxis> PLASTIC_Voyiadjis_Abed::searchAxes(const FitPoints& points) const
{
    return {rateAxis(2, points)};
}

std::string PLASTIC_Voyiadjis_Abed::resultText() const
{
    return formatText("V0 = %16.4E \nV1 = %16.4E \nV2 = %16.4E \nError = %16.4E MPa\nSlope at necking point = %16.4E",
                      shown(*this, 0), shown(*this, 1), shown(*this, 2), printable(fitError), printable(neckingSlope()));
}

// ---- the list ----

ColdLawListEntry coldLawListEntry(int position)
{
    static constexpr ColdLawListEntry kEntries[kColdLawListSize] = {
        {"Simulation (8)", std::nullopt},
        {"Swift model (1)", ColdLawId::Swift},
        {"Hollomon model (3)", ColdLawId::Hollomon},
        {"Ludwik model (4)", ColdLawId::Ludwik},
        {"Kim Tuan model (35)", ColdLawId::KimTuan},
        {"Hockett Sherby model (32)", ColdLawId::HockettSherby},
        {"Voce General model (31)", ColdLawId::VoceGeneral},
        {"El-Magd model (33)", ColdLawId::ElMagd},
        {"Voyiadjis-Abed model (34)", ColdLawId::VoyiadjisAbed},
    };
    return position >= 0 && position < kColdLawListSize ? kEntries[position] : ColdLawListEntry{"", std::nullopt};
}

const char* coldLawTitle(ColdLawId law)
{
    for (int position = 0; position < kColdLawListSize; ++position) {
        const ColdLawListEntry entry = coldLawListEntry(position);
        if (entry.law == law)
            return entry.text;
    }
    return "";
}

std::shared_ptr<ColdLaw> makeColdLaw(ColdLawId law, const RoomOri& record)
{
    switch (law) {
    case ColdLawId::Swift: return std::make_shared<PLASTIC_1>(record);
    case ColdLawId::Hollomon: return std::make_shared<PLASTIC_3>(record);
    case ColdLawId::Ludwik: return std::make_shared<PLASTIC_4>(record);
    case ColdLawId::KimTuan: return std::make_shared<PLASTIC_Kim_Tuan>(record);
    case ColdLawId::HockettSherby: return std::make_shared<PLASTIC_Hockett_Sherby>(record);
    case ColdLawId::VoceGeneral: return std::make_shared<PLASTIC_Voce_General>(record);
    case ColdLawId::ElMagd: return std::make_shared<PLASTIC_ElMagd>(record);
    case ColdLawId::VoyiadjisAbed: return std::make_shared<PLASTIC_Voyiadjis_Abed>(record);
    }
    return nullptr;
}

}  // namespace zelko
