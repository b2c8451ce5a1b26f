#pragma once
// Hot data sets for the benchmarks and the quality table: the measured Gleeble
// series of tests/data/measured (Tize Mha et al., Metals 2023, 13, 633; CC BY-SA
// 4.0), and synthetic flow curves of a steel with a peak and dynamic softening.

#include <algorithm>
#include <cmath>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "hot/hotcsv.h"
#include "base/fileio.h"

namespace zelko::bench {

inline PLASTIC_HOT measuredDataSet()
{
    std::string error;
    const auto bytes = readFileBytes(ZELKO_MEASURED_DATA "/hot-compression-medium-carbon-steel.csv", error);
    if (!bytes)
        throw std::runtime_error("measured curves: " + error);
    auto dataSet = readHotCurvesCsv(*bytes, {}, error);
    if (!dataSet)
        throw std::runtime_error("measured curves: " + error);
    dataSet->strains = defaultSampleStrains(*dataSet);
    return *dataSet;
}

// Peak stress from a sinh law (α 0.012 /MPa, n 5, Q 320 kJ/mol), the rise to the
// peak after Cingara and McQueen, softening towards 80 % of the peak, and 0.5 %
// scatter. Strains every 0.01 up to 0.8; sample strains 0.05 apart from 0.05.
inline PLASTIC_HOT syntheticDataSet(std::size_t temperatureCount, const std::vector<double>& rates,
                                    std::size_t strainCount = 15)
{
    PLASTIC_HOT dataSet;
    dataSet.strainRates = rates;
    for (std::size_t t = 0; t < temperatureCount; ++t)
        dataSet.temperatures.push_back(900.0 + 300.0 * static_cast<double>(t) / static_cast<double>(temperatureCount - 1));
    for (std::size_t k = 1; k <= strainCount; ++k)
        dataSet.strains.push_back(0.05 * static_cast<double>(k));
    std::mt19937 generator(1600);
    std::normal_distribution<double> scatter(0.0, 0.005);
    dataSet.curves.assign(temperatureCount, std::vector<HotCurve>(rates.size()));
    for (std::size_t t = 0; t < temperatureCount; ++t)
        for (std::size_t r = 0; r < rates.size(); ++r) {
            const double z = rates[r] * std::exp(320000.0 / (8.314 * (dataSet.temperatures[t] + 273.15)));
            const double peak = std::asinh(std::pow(z / std::exp(27.0), 0.2)) / 0.012;
            const double peakStrain = std::clamp(0.004 * std::pow(z, 0.1), 0.05, 0.5);
            for (int i = 0; i <= 80; ++i) {
                const double e = 0.01 * i;
                const double x = e / peakStrain;
                double stress = peak * std::pow(x * std::exp(1.0 - x), 0.4);
                if (x > 1.0)
                    stress = peak - 0.2 * peak * (1.0 - std::exp(-0.7 * std::pow(x - 1.0, 1.5)));
                dataSet.curves[t][r].push_back({0.0, e, stress * (1.0 + scatter(generator))});
            }
        }
    return dataSet;
}

}  // namespace zelko::bench
