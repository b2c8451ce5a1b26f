#include "hot/zenerhollomon.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "numerics/leastsquares.h"
#include "hot/stresstable.h"

namespace zelko {

namespace {

// ln sinh x without overflow; only for x above 0.
double logSinh(double x)
{
    return x > 20.0 ? x - std::log(2.0) + std::log1p(-std::exp(-2.0 * x)) : std::log(std::sinh(x));
}

// asinh(e^y) without overflow.
double asinhOfExp(double y)
{
    return y > 20.0 ? y + std::log1p(std::sqrt(1.0 + std::exp(-2.0 * y))) : std::asinh(std::exp(y));
}

struct Entry {
    double stress;
    double lnRate;
    double inverseRT;  // 1/(R·T) in mol/J
    std::size_t temperature;
};

std::vector<Entry> entriesAt(const PLASTIC_HOT& dataSet, const HotStressTable& table, std::size_t k)
{
    std::vector<Entry> entries;
    for (std::size_t t = 0; t < table.temperatureCount(); ++t) {
        const double kelvin = dataSet.temperatures[t] + kKelvinOffset;
        if (!(kelvin > 0.0))
            continue;
        for (std::size_t r = 0; r < table.rateCount(); ++r)
            if (table.usable(t, r, k))
                entries.push_back({table.at(t, r, k), std::log(dataSet.strainRates[r]), 1.0 / (kGasConstant * kelvin), t});
    }
    return entries;
}

// α from the slopes of ln ε̇ against σ (β) and against ln σ (n'), averaged over temperatures.
double startingAlpha(const std::vector<Entry>& entries, std::size_t temperatureCount)
{
    double beta = 0.0, nPrime = 0.0;
    int count = 0;
    for (std::size_t t = 0; t < temperatureCount; ++t) {
        std::vector<double> stress, lnStress, lnRate;
        for (const Entry& e : entries)
            if (e.temperature == t) {
                stress.push_back(e.stress);
                lnStress.push_back(std::log(e.stress));
                lnRate.push_back(e.lnRate);
            }
        const auto b = slopeOf(stress, lnRate);
        const auto n = slopeOf(lnStress, lnRate);
        if (b && n && *b > 0.0 && *n > 0.0) {
            beta += *b;
            nPrime += *n;
            ++count;
        }
    }
    const double alpha = count > 0 ? beta / nPrime : 0.0;
    // Steels lie near 0.01 /MPa; it serves where the slopes say nothing.
    return std::isfinite(alpha) && alpha > 0.0 ? alpha : 0.01;
}

// ln ε̇ = n·ln sinh(ασ) − Q/(R·T) + ln A by least squares: {n, Q, ln A}, or {n, ln A}
// where one temperature can't tell Q from A.
template <std::size_t P>
std::optional<std::array<double, P>> regressRates(const std::vector<Entry>& entries, double alpha)
{
    std::vector<std::array<double, P>> rows;
    std::vector<double> lnRate;
    for (const Entry& e : entries) {
        std::array<double, P> row{};
        row[0] = logSinh(alpha * e.stress);
        if constexpr (P == 3)
            row[1] = -e.inverseRT;
        row[P - 1] = 1.0;
        rows.push_back(row);
        lnRate.push_back(e.lnRate);
    }
    const auto fit = linearLeastSquares(rows, lnRate);
    return fit ? std::optional(fit->coefficients) : std::nullopt;
}

// n, Q and ln A for one α, and the squared stress error they leave.
std::optional<ZenerHollomonOrder> solveForAlpha(const std::vector<Entry>& entries, double alpha, bool withQ, double& sse)
{
    sse = HUGE_VAL;
    ZenerHollomonOrder order;
    order.alpha = alpha;
    if (withQ) {
        const auto c = regressRates<3>(entries, alpha);
        if (!c)
            return std::nullopt;
        order.n = (*c)[0], order.Q = (*c)[1], order.lnA = (*c)[2];
    } else {
        const auto c = regressRates<2>(entries, alpha);
        if (!c)
            return std::nullopt;
        order.n = (*c)[0], order.lnA = (*c)[1];
    }
    if (!(order.n > 0.0))
        return std::nullopt;
    sse = 0.0;
    for (const Entry& e : entries) {
        const double lnZOverA = e.lnRate + order.Q * e.inverseRT - order.lnA;
        const double r = asinhOfExp(lnZOverA / order.n) / alpha - e.stress;
        sse += r * r;
    }
    if (!std::isfinite(sse)) {
        sse = HUGE_VAL;
        return std::nullopt;
    }
    order.fitted = true;
    return order;
}

ZenerHollomonOrder fitOrder(const std::vector<Entry>& entries, std::size_t temperatureCount)
{
    std::vector<double> rates;
    std::vector<std::size_t> temperatures;
    for (const Entry& e : entries) {
        rates.push_back(e.lnRate);
        temperatures.push_back(e.temperature);
    }
    std::sort(rates.begin(), rates.end());
    std::sort(temperatures.begin(), temperatures.end());
    const bool twoRates = std::unique(rates.begin(), rates.end()) - rates.begin() >= 2;
    const bool withQ = std::unique(temperatures.begin(), temperatures.end()) - temperatures.begin() >= 2;
    if (!twoRates || entries.size() < (withQ ? 3u : 2u))
        return {};
    const double lnAlpha0 = std::log(startingAlpha(entries, temperatureCount));
    constexpr double kSearchDecades = 1.5;  // α within a factor of about 30 of the start
    const double span = kSearchDecades * std::log(10.0);
    const double lnAlpha = minimiseOnInterval(
        [&](double v) {
            double sse = HUGE_VAL;
            solveForAlpha(entries, std::exp(v), withQ, sse);
            return sse;
        },
        lnAlpha0 - span, lnAlpha0 + span);
    double sse = 0.0;
    return solveForAlpha(entries, std::exp(lnAlpha), withQ, sse).value_or(ZenerHollomonOrder{});
}

}  // namespace

double zenerHollomonStress(const ZenerHollomonOrder& order, double strainRate, double temperature)
{
    const double kelvin = temperature + kKelvinOffset;
    if (!order.fitted || !(strainRate > 0.0) || !(kelvin > 0.0) || !(order.alpha > 0.0) || !(order.n > 0.0))
        return 0.0;
    const double lnZOverA = std::log(strainRate) + order.Q / (kGasConstant * kelvin) - order.lnA;
    const double stress = asinhOfExp(lnZOverA / order.n) / order.alpha;
    return std::isfinite(stress) ? stress : 0.0;
}

double PLASTIC_Zener_Hollomon::evaluate(double strain, double strainRate, double temperature) const
{
    // The fitted orders around the strain (sample strains ascend); beyond them the nearest one.
    const ZenerHollomonOrder* below = nullptr;
    const ZenerHollomonOrder* above = nullptr;
    for (const ZenerHollomonOrder& o : orders) {
        if (!o.fitted)
            continue;
        if (o.strain < strain)
            below = &o;
        else if (!above)
            above = &o;
    }
    if (!below || !above)
        return below || above ? zenerHollomonStress(below ? *below : *above, strainRate, temperature) : 0.0;
    const double w = (strain - below->strain) / (above->strain - below->strain);
    ZenerHollomonOrder mixed = *below;
    mixed.alpha += w * (above->alpha - below->alpha);
    mixed.n += w * (above->n - below->n);
    mixed.Q += w * (above->Q - below->Q);
    mixed.lnA += w * (above->lnA - below->lnA);
    return zenerHollomonStress(mixed, strainRate, temperature);
}

HotFit fitZenerHollomon(const HotDataSet& dataSet, const RunControl& control)
{
    HotFit fit;
    const auto model = newHotModel<PLASTIC_Zener_Hollomon>(dataSet);
    recordFitRanges(*model);
    const HotStressTable table(dataSet);
    HotFitResult& result = fit.result;
    const std::vector<double>& strains = dataSet.strains;
    std::vector<ZenerHollomonOrder>& orders = model->orders;
    orders.assign(strains.size(), ZenerHollomonOrder{});
    for (std::size_t k = 0; k < strains.size(); ++k) {
        if (control.stopRequested())
            return cancelledFit();
        orders[k] = fitOrder(entriesAt(dataSet, table, k), dataSet.temperatures.size());
        orders[k].strain = strains[k];
        if (!orders[k].fitted)
            result.notes.push_back(formatText("no constants at strain %g: too few stresses, or fewer than two strain rates",
                                              strains[k]));
        control.report(static_cast<int>((k + 1) * 100 / strains.size()));
    }
    control.report(100);
    fit.model = model;
    result.fitted = std::any_of(orders.begin(), orders.end(), [](const ZenerHollomonOrder& o) { return o.fitted; });
    if (!result.fitted) {
        result.message = "no sample strain has stresses at two strain rates or more";
        return fit;
    }
    if (std::any_of(dataSet.temperatures.begin(), dataSet.temperatures.end(),
                    [](double t) { return !(t + kKelvinOffset > 0.0); }))
        result.notes.push_back("temperatures at or below absolute zero left out");
    const FitError error = fitErrorOf(*model, table);
    describeTable(table, error, result);
    result.report = errorReport(error);
    for (std::size_t k = 0; k < orders.size(); ++k) {
        const ZenerHollomonOrder& o = orders[k];
        if (o.fitted)
            result.report += formatText(" Order %zu: strain = %g alpha = %g n = %g Q = %g lnA = %g\n", k + 1, o.strain,
                                        o.alpha, o.n, o.Q, o.lnA);
        else
            result.report += formatText(" Order %zu: strain = %g no fit\n", k + 1, o.strain);
    }
    return fit;
}

namespace {

// The order's constant in a grid column, const or not; null for another column.
template <class Order>
auto constantOf(Order& order, int column) -> decltype(&order.alpha)
{
    switch (column) {
    case 1: return &order.alpha;
    case 2: return &order.n;
    case 3: return &order.Q;
    case 4: return &order.lnA;
    default: return nullptr;
    }
}

}  // namespace

void setOrderConstant(ZenerHollomonOrder& order, int column, double value)
{
    if (double* constant = constantOf(order, column)) {
        *constant = value;
        order.fitted = order.alpha > 0.0 && order.n > 0.0 && std::isfinite(order.Q) && std::isfinite(order.lnA);
    }
}

double orderConstant(const ZenerHollomonOrder& order, int column)
{
    const double* constant = constantOf(order, column);
    return constant ? *constant : 0.0;
}

}  // namespace zelko
