#include "hot/celltypes.h"

#include <algorithm>
#include <cmath>

#include "hot/stresstable.h"
#include "numerics/leastsquares.h"

namespace zelko {

namespace {

// The points a cell law is fitted to: the loading point at zero strain is not flow.
void curveColumns(const HotCurve& curve, double strainOffset, std::vector<double>& x, std::vector<double>& y)
{
    x.clear();
    y.clear();
    for (const HotCurvePoint& p : curve) {
        if (!(p.strain > kMinimumFitStrain))
            continue;
        x.push_back(p.strain + strainOffset);
        y.push_back(p.stress);
    }
}

double first(const std::vector<double>& list) { return list.empty() ? 0.0 : list.front(); }
double last(const std::vector<double>& list) { return list.empty() ? 0.0 : list.back(); }

}  // namespace

bool CellTableModel::fillCellCoefficients(const RunControl& control)
{
    cellNotes_.clear();
    cellCoefficients.assign(temperatures.size(), std::vector<std::vector<double>>(strainRates.size()));
    const std::size_t cells = temperatures.size() * strainRates.size();
    std::size_t done = 0;
    for (std::size_t t = 0; t < temperatures.size(); ++t)
        for (std::size_t r = 0; r < strainRates.size(); ++r) {
            if (control.stopRequested())
                return false;
            cellCoefficients[t][r] = fitCurve(curve(t, r));
            if (cellCoefficients[t][r].empty())
                cellNotes_.push_back(formatText("no fit at T = %g, strain rate = %g: %zu curve points", temperatures[t],
                                                strainRates[r], curve(t, r).size()));
            control.report(static_cast<int>(5 + 90 * ++done / cells));
        }
    return true;
}

double CellTableModel::cellStress(std::size_t t, std::size_t r, double strain) const
{
    if (t >= cellCoefficients.size() || r >= cellCoefficients[t].size() || cellCoefficients[t][r].empty())
        return 0.0;
    return lawStress(cellCoefficients[t][r], strain);
}

double CellTableModel::evaluate(double strain, double strainRate, double temperature) const
{
    return interpolateCells(*this, strainRate, temperature,
                            [&](std::size_t t, std::size_t r) { return cellStress(t, r, strain); });
}

HotFit fitCellTable(std::shared_ptr<CellTableModel> model, const RunControl& control)
{
    recordFitRanges(*model);
    control.report(5);
    if (!model->fillCellCoefficients(control))
        return cancelledFit();
    const HotStressTable table(*model);
    HotFit fit;
    HotFitResult& result = fit.result;
    const FitError error = fitErrorOf(*model, table);
    describeTable(table, error, result);
    const std::vector<std::string>& unfitted = model->unfittedCells();
    result.notes.insert(result.notes.end(), unfitted.begin(), unfitted.end());
    result.report = errorReport(error);
    const std::vector<const char*> names = model->coefficientNames();
    const std::vector<double>& temperatures = model->temperatures;
    const std::vector<double>& strainRates = model->strainRates;
    for (std::size_t t = 0; t < temperatures.size(); ++t)
        for (std::size_t r = 0; r < strainRates.size(); ++r) {
            result.report += formatText(" T = %g R = %g", temperatures[t], strainRates[r]);
            const std::vector<double>& c = model->cellCoefficients[t][r];
            if (c.empty())
                result.report += ": no fit";
            for (std::size_t i = 0; i < c.size() && i < names.size(); ++i)
                result.report += formatText(" %s = %g", names[i], c[i]);
            result.report += "\n";
        }
    const std::size_t cells = temperatures.size() * strainRates.size();
    result.fitted = cells > 0 && unfitted.size() < cells;
    if (!result.fitted)
        result.message = "no cell has a curve that the law can be fitted to";
    control.report(100);
    fit.model = std::move(model);
    return fit;
}

std::array<double, 2> CellTableModel::stressRange() const
{
    std::array<double, 2> range = {100000000.0, -1.0};
    for (std::size_t t = 0; t < temperatures.size(); ++t)
        for (std::size_t r = 0; r < strainRates.size(); ++r)
            for (const double strain : strains) {
                const double stress = cellStress(t, r, strain);
                if (!std::isfinite(stress))
                    continue;
                range[0] = std::min(range[0], stress);
                range[1] = std::max(range[1], stress);
            }
    return range;
}

void CellTableModel::writeRangeLines(TextWriter& out) const
{
    const std::array<double, 2> range = stressRange();
    out.format("%8d\n", modelNumber);
    out.format("%30.4E %17.4E %17.4E %17.4E %17.4E %17.4E\n", range[0], 3.0 * range[1], first(strainRates),
               last(strainRates), first(temperatures), last(temperatures));
    out.format("%30.4E %17.4E %17.4E %17.4E\n", 0.0001, -0.9 * referenceValue, first(temperatures), last(temperatures));
}

void CellTableModel::writeCellLines(TextWriter& out, std::size_t coefficients) const
{
    out.format("%8d %8d %8d\n", static_cast<int>(strainRates.size() * temperatures.size()),
               static_cast<int>(strainRates.size()), static_cast<int>(temperatures.size()));
    for (std::size_t t = 0; t < temperatures.size(); ++t)
        for (std::size_t r = 0; r < strainRates.size(); ++r) {
            const bool fitted = t < cellCoefficients.size() && r < cellCoefficients[t].size()
                                && cellCoefficients[t][r].size() >= coefficients;
            out.format("%30.4E %17.4E", strainRates[r], temperatures[t]);
            for (std::size_t i = 0; i < coefficients; ++i)
                out.format(" %17.4E", fitted ? cellCoefficients[t][r][i] : 0.0);
            out.put(std::string_view("\n"));
        }
}

double PLASTIC_16::lawStress(const std::vector<double>& c, double strain) const
{
    const double stress = strain > 0.0 && c.size() >= 2 ? c[0] * std::pow(strain, c[1]) : 0.0;
    return std::isfinite(stress) ? stress : 0.0;
}

std::vector<double> PLASTIC_16::fitCurve(const HotCurve& curve) const
{
    std::vector<double> x, y;
    curveColumns(curve, 0.0, x, y);
    const auto fit = fitPowerLaw(x, y);
    const double k = fit ? std::exp(fit->lnK) : 0.0;
    return fit && std::isfinite(k) ? std::vector<double>{k, fit->n} : std::vector<double>{};
}

bool PLASTIC_16::writeLibraryBlock(TextWriter& out, int /*version*/) const
{
    writeRangeLines(out);
    writeCellLines(out, 2);
    return true;
}

FourCoefficientModel::FourCoefficientModel(int id, CellLaw law, bool hasOffset, bool hasCap)
    : law_(law), hasOffset_(hasOffset), hasCap_(hasCap)
{
    modelNumber = id;
    if (hasOffset_)
        typeConstant1 = kDefaultCellStrainOffset;
}

bool FourCoefficientModel::fillCellCoefficients(const RunControl& control)
{
    if (hasCap_) {
        const double cap = strains.empty() ? 0.0 : *std::max_element(strains.begin(), strains.end());
        (hasOffset_ ? typeConstant2 : typeConstant1) = std::isfinite(cap) && cap > 0.0 ? cap : 0.0;
    }
    return CellTableModel::fillCellCoefficients(control);
}

double FourCoefficientModel::lawStress(const std::vector<double>& c, double strain) const
{
    if (c.size() < 4)
        return 0.0;
    if (strainCap() > 0.0)
        strain = std::min(strain, strainCap());
    return cellLawStress(law_, {c[0], c[1], c[2], c[3]}, strain + strainOffset());
}

std::vector<double> FourCoefficientModel::fitCurve(const HotCurve& curve) const
{
    // The cap leaves the fit alone: a capped type and its uncapped twin share their cells.
    std::vector<double> x, y;
    curveColumns(curve, strainOffset(), x, y);
    const auto c = fitCellLaw(law_, x, y);
    return c ? std::vector<double>(c->begin(), c->end()) : std::vector<double>{};
}

bool FourCoefficientModel::writeLibraryBlock(TextWriter& out, int /*version*/) const
{
    writeRangeLines(out);
    out.format("%30.4E %17.4E %17.4E %17.4E %17.4E\n", strainOffset(), strainCap(), 0.0, 0.0, 0.0);
    writeCellLines(out, 4);
    return true;
}

}  // namespace zelko
