#include "hot/peaksteady.h"

#include <algorithm>
#include <cmath>

#include "base/numbers.h"
#include "base/tabletext.h"
#include "base/textfile.h"

namespace zelko {

namespace {

// The median absolute deviation of normal scatter, over the deviation's own
// standard deviation (sqrt(3/2) sigma: a point against the mean of two others).
constexpr double kChordMadPerSigma = 0.6745 * 1.224744871391589;

std::size_t halfWindow(std::size_t points)
{
    return std::clamp<std::size_t>(static_cast<std::size_t>(kMicrosWindowFraction * static_cast<double>(points)), 1,
                                   kMicrosMaxHalfWindow);
}

// Where the smoothed stress first comes down to level after start, interpolated
// between its points; npos when it never does.
constexpr std::size_t kNever = static_cast<std::size_t>(-1);
std::size_t firstAtOrBelow(const std::vector<double>& stress, std::size_t start, double level)
{
    for (std::size_t i = start; i < stress.size(); ++i)
        if (stress[i] <= level)
            return i;
    return kNever;
}

double crossingStrain(const HotCurve& curve, const std::vector<double>& stress, std::size_t i, double level)
{
    if (i == 0 || stress[i - 1] <= stress[i])
        return curve[i].strain;
    const double f = (stress[i - 1] - level) / (stress[i - 1] - stress[i]);
    return curve[i - 1].strain + f * (curve[i].strain - curve[i - 1].strain);
}

// The vertex of the parabola through the smoothed peak and its neighbours, when
// it is a maximum between them; the peak point itself otherwise.
void refinePeak(const HotCurve& curve, const std::vector<double>& stress, std::size_t p, MicrosCell& cell)
{
    cell.peakStrain = curve[p].strain;
    cell.peakStress = stress[p];
    if (p == 0 || p + 1 >= curve.size())
        return;
    const double x0 = curve[p - 1].strain, x1 = curve[p].strain, x2 = curve[p + 1].strain;
    const double y0 = stress[p - 1], y1 = stress[p], y2 = stress[p + 1];
    if (!(x0 < x1 && x1 < x2))
        return;
    // Divided differences: y = y1 + b (x - x1) + a (x - x1)^2 near the peak.
    const double d01 = (y1 - y0) / (x1 - x0), d12 = (y2 - y1) / (x2 - x1);
    const double a = (d12 - d01) / (x2 - x0);
    if (!(a < 0.0))
        return;
    const double b = d01 + a * (x1 - x0);
    const double dx = -b / (2.0 * a);
    if (x1 + dx < x0 || x1 + dx > x2)
        return;
    cell.peakStrain = x1 + dx;
    cell.peakStress = y1 + b * dx + a * dx * dx;
}

MicrosCell withStatus(MicrosStatus status)
{
    MicrosCell cell;
    cell.status = status;
    return cell;
}

// printf's "%.<precision><conversion>"; empty for a value the curve could not give.
std::u16string numberCell(double value, char conversion, int precision)
{
    char text[64];
    const char* end = std::isfinite(value) ? formatDouble(text, text + sizeof text, value, conversion, precision) : nullptr;
    return end ? widen(std::string_view(text, static_cast<std::size_t>(end - text))) : std::u16string();
}

}  // namespace

std::vector<double> smoothedStresses(const HotCurve& curve)
{
    const std::size_t n = curve.size();
    const std::size_t k = halfWindow(n);
    std::vector<double> median(n);
    std::vector<double> window;
    for (std::size_t i = 0; i < n; ++i) {
        const std::size_t first = i > k ? i - k : 0, last = std::min(n, i + k + 1);
        window.clear();
        for (std::size_t j = first; j < last; ++j)
            window.push_back(curve[j].stress);
        const auto middle = window.begin() + static_cast<std::ptrdiff_t>(window.size() / 2);
        std::nth_element(window.begin(), middle, window.end());
        double value = *middle;
        if (window.size() % 2 == 0)
            value = (value + *std::max_element(window.begin(), middle)) / 2.0;
        median[i] = value;
    }
    std::vector<double> sums(n + 1, 0.0);
    for (std::size_t i = 0; i < n; ++i)
        sums[i + 1] = sums[i] + median[i];
    std::vector<double> mean(n);
    for (std::size_t i = 0; i < n; ++i) {
        const std::size_t first = i > k ? i - k : 0, last = std::min(n, i + k + 1);
        mean[i] = (sums[last] - sums[first]) / static_cast<double>(last - first);
    }
    return mean;
}

double curveScatter(const HotCurve& curve)
{
    std::vector<double> deviations;
    for (std::size_t i = 1; i + 1 < curve.size(); ++i) {
        const HotCurvePoint &a = curve[i - 1], &b = curve[i], &c = curve[i + 1];
        const double span = c.strain - a.strain;
        const double f = span > 0.0 ? (b.strain - a.strain) / span : 0.5;
        deviations.push_back(std::abs(b.stress - (a.stress + f * (c.stress - a.stress))));
    }
    if (deviations.empty())
        return 0.0;
    const auto middle = deviations.begin() + static_cast<std::ptrdiff_t>(deviations.size() / 2);
    std::nth_element(deviations.begin(), middle, deviations.end());
    return *middle / kChordMadPerSigma;
}

MicrosCell peakSteadyCell(const HotCurve& curve)
{
    if (curve.empty())
        return withStatus(MicrosStatus::NoCurve);
    if (!allFinite(curve, [](const HotCurvePoint& p) { return std::array{p.strain, p.stress}; }))
        return withStatus(MicrosStatus::NotFinite);
    if (curve.size() < kMicrosMinPoints)
        return withStatus(MicrosStatus::TooFewPoints);
    for (std::size_t i = 1; i < curve.size(); ++i)
        if (curve[i].strain < curve[i - 1].strain)
            return withStatus(MicrosStatus::StrainNotIncreasing);
    const double first = curve.front().strain, last = curve.back().strain;
    if (!(last > first))
        return withStatus(MicrosStatus::StrainNotIncreasing);

    const std::vector<double> stress = smoothedStresses(curve);
    const double scatter = curveScatter(curve);
    const std::size_t p = static_cast<std::size_t>(std::max_element(stress.begin(), stress.end()) - stress.begin());
    const double lowest = *std::min_element(stress.begin() + static_cast<std::ptrdiff_t>(p), stress.end());
    const double drop = stress[p] - lowest;
    if (drop < std::max(kMicrosMinDrop * stress[p], kMicrosDropScatters * scatter)
        || last - curve[p].strain < kMicrosMinFallRange * (last - first))
        return withStatus(MicrosStatus::HardeningOnly);

    MicrosCell cell = withStatus(MicrosStatus::StillSoftening);
    refinePeak(curve, stress, p, cell);

    const double band = lowest + std::max(kMicrosSteadyBand * drop, kMicrosSteadyScatters * scatter);
    const std::size_t t = firstAtOrBelow(stress, p + 1, band);
    if (t == kNever || curve.size() - t < 3 || last - curve[t].strain < kMicrosMinTail * (last - curve[p].strain))
        return cell;
    double sum = 0.0;
    for (std::size_t i = t; i < curve.size(); ++i)
        sum += curve[i].stress;
    const double steady = sum / static_cast<double>(curve.size() - t);
    const double half = cell.peakStress - (cell.peakStress - steady) / 2.0;
    const std::size_t h = steady < cell.peakStress ? firstAtOrBelow(stress, p + 1, half) : kNever;
    if (h == kNever)
        return cell;
    cell.steadyStress = steady;
    cell.steadyStrain = crossingStrain(curve, stress, t, band);
    cell.halfStrain = crossingStrain(curve, stress, h, half);
    cell.status = MicrosStatus::Found;
    return cell;
}

std::vector<std::vector<MicrosCell>> peakSteadyCells(const HotDataSet& dataSet)
{
    std::vector<std::vector<MicrosCell>> cells(dataSet.temperatures.size(),
                                               std::vector<MicrosCell>(dataSet.strainRates.size()));
    for (std::size_t t = 0; t < cells.size(); ++t)
        for (std::size_t r = 0; r < cells[t].size(); ++r)
            cells[t][r] = peakSteadyCell(dataSet.curve(t, r));
    return cells;
}

std::shared_ptr<PLASTIC_MICROS> peakSteadyModel(const HotDataSet& dataSet)
{
    auto model = newHotModel<PLASTIC_MICROS>(dataSet);
    model->cells = peakSteadyCells(dataSet);
    return model;
}

std::string_view microsStatusText(MicrosStatus status)
{
    switch (status) {
    case MicrosStatus::Found: return "ok";
    case MicrosStatus::StillSoftening: return "still softening";
    case MicrosStatus::HardeningOnly: return "hardening only";
    case MicrosStatus::NoCurve: return "no curve";
    case MicrosStatus::TooFewPoints: return "too few points";
    case MicrosStatus::StrainNotIncreasing: return "strain not increasing";
    case MicrosStatus::NotFinite: return "not a number";
    }
    return "";
}

std::vector<std::u16string> peakSteadyHeaders()
{
    std::vector<std::u16string> headers;
    for (const std::string_view column : kPeakSteadyColumns)
        headers.push_back(widen(column));
    return headers;
}

TextTable peakSteadyRows(const PLASTIC_MICROS& model)
{
    TextTable rows;
    for (std::size_t t = 0; t < model.cells.size() && t < model.temperatures.size(); ++t)
        for (std::size_t r = 0; r < model.cells[t].size() && r < model.strainRates.size(); ++r) {
            const MicrosCell& cell = model.cells[t][r];
            rows.push_back({numberCell(model.temperatures[t], 'g', -1), numberCell(model.strainRates[r], 'g', -1),
                            numberCell(cell.peakStrain, 'f', 3), numberCell(cell.peakStress, 'f', 2),
                            numberCell(cell.steadyStress, 'f', 2), numberCell(cell.halfStrain, 'f', 3),
                            numberCell(cell.steadyStrain, 'f', 3), widen(microsStatusText(cell.status))});
        }
    return rows;
}

std::string peakSteadyCsv(const PLASTIC_MICROS& model) { return listExportFile(peakSteadyHeaders(), peakSteadyRows(model)); }

}  // namespace zelko
