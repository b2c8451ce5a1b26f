#include "material/hotview.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "base/numbers.h"
#include "base/textfile.h"
#include "hot/stresstable.h"

namespace zelko {

namespace {

HotChartSeries modelSeries(const HotChartSeries& measured, const PLASTIC_HOT& model, double temperature,
                           double fixed, HotChartAxis axis)
{
    HotChartSeries series{measured.name, {}, true};
    for (const double x : measured.points.x) {
        const double stress = axis == HotChartAxis::Strain ? model.evaluate(x, fixed, temperature)
                                                           : model.evaluate(fixed, x, temperature);
        if (!(stress >= 0.0))
            continue;
        series.points.x.push_back(x);
        series.points.y.push_back(stress);
    }
    return series;
}

HotChartSeries measuredAgainstStrain(const HotCurve& curve, std::string name)
{
    HotChartSeries series{std::move(name), {}, false};
    series.points.x.reserve(curve.size());
    series.points.y.reserve(curve.size());
    for (const HotCurvePoint& point : curve) {
        series.points.x.push_back(point.strain);
        series.points.y.push_back(point.stress);
    }
    return series;
}

HotChartSeries measuredAgainstRate(const PLASTIC_HOT& model, std::size_t t, double strain, std::string name)
{
    HotChartSeries series{std::move(name), {}, false};
    for (std::size_t r = 0; r < model.strainRates.size(); ++r) {
        const std::optional<double> stress = curveStressAt(model.curve(t, r), strain);
        if (!stress)
            continue;
        series.points.x.push_back(model.strainRates[r]);
        series.points.y.push_back(*stress);
    }
    return series;
}

}  // namespace

std::vector<HotChartSeries> hotChartSeries(const PLASTIC_HOT& model, const HotChartChoice& choice)
{
    std::vector<HotChartSeries> all;
    const bool strainAxis = choice.axis == HotChartAxis::Strain;
    const std::vector<double>& others = strainAxis ? model.strainRates : model.strains;
    for (const std::size_t t : choice.temperatures) {
        if (t >= model.temperatures.size())
            continue;
        const double temperature = model.temperatures[t];
        for (const std::size_t o : choice.others) {
            if (o >= others.size())
                continue;
            const double fixed = others[o];
            std::string name = formatText(strainAxis ? "T:%g, R:%g" : "T:%g, E:%g", temperature, fixed);
            HotChartSeries measured = strainAxis ? measuredAgainstStrain(model.curve(t, o), std::move(name))
                                                 : measuredAgainstRate(model, t, fixed, std::move(name));
            std::optional<HotChartSeries> law;
            if (choice.model && model.hasLaw())
                law = modelSeries(measured, model, temperature, fixed, choice.axis);
            if (choice.measured)
                all.push_back(std::move(measured));
            if (law)
                all.push_back(std::move(*law));
        }
    }
    return all;
}

void summariseFitErrors(FitErrorTable& table)
{
    const std::size_t first = FitErrorTable::kFirstNumericColumn;
    const std::size_t width = table.headers.size();
    const std::size_t rows = table.rows.size();
    table.dataRows = rows;
    // The summary agrees with what the cells show, not with the unrounded errors.
    const auto number = [&](std::size_t r, std::size_t c) {
        return c < table.rows[r].size() ? toDouble(std::string_view(table.rows[r][c])) : 0.0;
    };
    std::vector<std::string> meanRow(width), deviationRow(width);
    meanRow[0] = "Mean";
    deviationRow[0] = "Standard deviation";
    std::vector<double> values(rows);
    for (std::size_t c = first; c < width; ++c) {
        for (std::size_t r = 0; r < rows; ++r)
            values[r] = number(r, c);
        double sum = 0.0;
        for (const double value : values)
            sum += value;
        const double mean = rows ? sum / static_cast<double>(rows) : 0.0;
        double squares = 0.0;
        for (const double value : values)
            squares += (value - mean) * (value - mean);
        const double deviation = rows ? std::sqrt(squares / static_cast<double>(rows)) : 0.0;
        meanRow[c] = formatText("%g", mean);
        deviationRow[c] = formatText("%g", deviation);
        for (std::size_t r = 0; r < rows; ++r) {
            if (std::fabs(values[r] - mean) > 3.0 * deviation)
                table.marks.push_back({kOutlierMark.red, kOutlierMark.green, kOutlierMark.blue, r, c});
            if (c == table.checkColumn && values[r] < FitErrorTable::kCheckLimit)
                table.marks.push_back({kCheckMark.red, kCheckMark.green, kCheckMark.blue, r, c});
        }
    }
    table.rows.push_back(std::move(meanRow));
    table.rows.push_back(std::move(deviationRow));
}

FitErrorTable fitErrorTable(const PLASTIC_HOT& model)
{
    FitErrorTable table;
    table.headers = {"No.", "Strain", "Temperature", "AARE (%)", "RMSE (MPa)", "Max. error (%)",
                     "Model / measured (%)"};
    table.checkColumn = table.headers.size() - 1;
    const HotStressTable measured(model);
    for (std::size_t k = 0; k < measured.strainCount(); ++k) {
        for (std::size_t t = 0; t < measured.temperatureCount(); ++t) {
            double relative = 0.0, squares = 0.0, largest = 0.0, ratio = 0.0;
            std::size_t count = 0;
            for (std::size_t r = 0; r < measured.rateCount(); ++r) {
                if (!measured.usable(t, r, k))
                    continue;
                const double stress = measured.at(t, r, k);
                const double law = model.evaluate(model.strains[k], model.strainRates[r], model.temperatures[t]);
                const double error = law - stress;
                relative += std::fabs(error) / stress;
                squares += error * error;
                largest = std::max(largest, std::fabs(error) / stress);
                ratio += law / stress;
                ++count;
            }
            if (count == 0)
                continue;
            const double n = static_cast<double>(count);
            table.rows.push_back({formatText("%zu", table.rows.size() + 1), formatText("%g", model.strains[k]),
                                  formatText("%g", model.temperatures[t]), formatText("%g", 100.0 * relative / n),
                                  formatText("%g", std::sqrt(squares / n)), formatText("%g", 100.0 * largest),
                                  formatText("%g", 100.0 * ratio / n)});
        }
    }
    summariseFitErrors(table);
    return table;
}

}  // namespace zelko
