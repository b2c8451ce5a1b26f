#pragma once
// Data sets for the hot tests: curves drawn from a known law, and the measured
// Gleeble series (tests/data/measured, Tize Mha et al., Metals 2023, CC BY-SA 4.0).

#include <functional>
#include <string>
#include <vector>

#include "hot/hotcsv.h"
#include "base/fileio.h"

namespace zelko::test {

// One curve a cell, with a point at every sample strain and halfway between.
inline PLASTIC_HOT lawDataSet(const std::function<double(double strain, double rate, double temperature)>& law,
                              std::vector<double> temperatures, std::vector<double> rates, std::vector<double> strains)
{
    PLASTIC_HOT dataSet;
    dataSet.temperatures = std::move(temperatures);
    dataSet.strainRates = std::move(rates);
    dataSet.strains = std::move(strains);
    dataSet.curves.assign(dataSet.temperatures.size(), std::vector<HotCurve>(dataSet.strainRates.size()));
    for (std::size_t t = 0; t < dataSet.temperatures.size(); ++t)
        for (std::size_t r = 0; r < dataSet.strainRates.size(); ++r)
            for (std::size_t k = 0; k < dataSet.strains.size(); ++k) {
                const double e = dataSet.strains[k];
                const double next = k + 1 < dataSet.strains.size() ? dataSet.strains[k + 1] : e + 0.1;
                for (const double strain : {e, (e + next) / 2})
                    dataSet.curves[t][r].push_back(
                        {0.0, strain, law(strain, dataSet.strainRates[r], dataSet.temperatures[t])});
            }
    return dataSet;
}

inline PLASTIC_HOT measuredDataSet()
{
    std::string error;
    const auto bytes = readFileBytes(ZELKO_TEST_DATA "/measured/hot-compression-medium-carbon-steel.csv", error);
    auto dataSet = readHotCurvesCsv(bytes.value_or(std::string()), {}, error);
    if (!dataSet)
        return {};
    dataSet->strains = defaultSampleStrains(*dataSet);
    return *dataSet;
}

}  // namespace zelko::test
