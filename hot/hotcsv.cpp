#include "hot/hotcsv.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <unordered_map>

#include "base/numbers.h"
#include "base/textfile.h"

namespace zelko {

namespace {

struct Row {
    std::size_t line;
    std::array<double, 4> values;  // temperature, strain rate, strain, stress
};

}  // namespace

std::optional<PLASTIC_HOT> readHotCurvesCsv(std::string_view bytes, const HotCsvOptions& options, std::string& error)
{
    static constexpr const char* kColumns[] = {"temperature", "strain rate", "strain", "stress"};
    TextReader in(bytes, ReadMode::SniffBom);
    std::u16string line;
    std::vector<Row> rows;
    GroupItems temperatures;
    bool headerAllowed = true;
    for (std::size_t number = 1; in.readLine(line, kMaxHotCsvLineUnits); ++number) {
        if (!line.empty() && line.back() != u'\n' && !in.atEnd()) {
            error = formatText("line %zu: longer than %zu characters", number, kMaxHotCsvLineUnits);
            return std::nullopt;
        }
        const auto tokens = split(line, u" \t,;\r\n");
        if (tokens.empty() || tokens[0][0] == u'#')
            continue;
        Row row{number, {}};
        double first = 0.0;
        if (headerAllowed && parseNumberField(tokens[0], first) == NumberField::NotANumber) {
            headerAllowed = false;
            continue;
        }
        headerAllowed = false;
        if (tokens.size() != 4) {
            error = formatText("line %zu: expected 4 numbers (temperature, strain rate, strain, stress), found %zu fields",
                               number, tokens.size());
            return std::nullopt;
        }
        for (std::size_t c = 0; c < 4; ++c) {
            const NumberField parsed = parseNumberField(tokens[c], row.values[c]);
            if (parsed != NumberField::Finite) {
                error = formatText("line %zu: the %s '%s' is %s", number, kColumns[c],
                                   utf16ToUtf8(tokens[c].substr(0, 40)).c_str(),
                                   numberFieldProblem(parsed));
                return std::nullopt;
            }
        }
        if (!(row.values[1] > 0.0)) {
            error = formatText("line %zu: the strain rate must be greater than 0", number);
            return std::nullopt;
        }
        // A temperature already listed is not added again (a full list would refuse it).
        const bool known = std::find(temperatures.begin(), temperatures.end(), formatText("%g", row.values[0]))
                           != temperatures.end();
        if (const std::string_view refused
            = known ? std::string_view() : addGroupValue(temperatures, HotGroup::Temperature, row.values[0]);
            !refused.empty()) {
            error = formatText("line %zu: ", number) + std::string(refused);
            return std::nullopt;
        }
        rows.push_back(row);
    }
    if (rows.empty()) {
        error = "no data lines";
        return std::nullopt;
    }
    std::vector<double> rateValues(rows.size());
    std::transform(rows.begin(), rows.end(), rateValues.begin(), [](const Row& row) { return row.values[1]; });
    const GroupItems rates = strainRateItems(rateValues);
    std::unordered_map<std::string, std::size_t> rateIndex;
    rateIndex.reserve(rates.size());
    for (std::size_t r = 0; r < rates.size(); ++r)
        rateIndex.emplace(rates[r], r);
    PLASTIC_HOT dataSet;
    if (const std::string_view refused = applyGroups(dataSet, rates, temperatures, {}); !refused.empty()) {
        error = std::string(refused);
        return std::nullopt;
    }
    const RawCurveLayout layout{false, 0, false, false, options.measure};
    dataSet.strainOffset = options.strainOffset;
    for (const Row& row : rows) {
        const auto t = std::find(temperatures.begin(), temperatures.end(), formatText("%g", row.values[0]));
        const std::size_t r = rateIndex.at(formatText("%g", row.values[1]));
        HotCurvePoint point{0.0, row.values[2], row.values[3]};
        if (acceptRawPoint(point, layout, options.strainOffset, dataSet.maxStress))
            dataSet.curves[static_cast<std::size_t>(t - temperatures.begin())][r].push_back(point);
    }
    return dataSet;
}

std::vector<double> defaultSampleStrains(const PLASTIC_HOT& dataSet)
{
    double reach = HUGE_VAL;
    bool anyCurve = false;
    for (const auto& row : dataSet.curves)
        for (const HotCurve& curve : row) {
            double largest = -HUGE_VAL;
            for (const HotCurvePoint& p : curve)
                if (std::isfinite(p.strain))
                    largest = std::max(largest, p.strain);
            if (largest > -HUGE_VAL) {
                reach = std::min(reach, largest);
                anyCurve = true;
            }
        }
    if (!anyCurve || !(reach > 0.0) || !std::isfinite(reach))
        return {};
    double step = std::pow(10.0, std::floor(std::log10(reach / kMaxStrains)));
    for (const double factor : {1.0, 2.0, 5.0, 10.0})
        if (std::floor(reach / (step * factor) + 1e-9) <= static_cast<double>(kMaxStrains)) {
            step *= factor;
            break;
        }
    std::vector<double> strains;
    for (std::size_t i = 1; i <= kMaxStrains && static_cast<double>(i) * step <= reach * (1 + 1e-12); ++i)
        strains.push_back(toDouble(formatText("%g", static_cast<double>(i) * step)));  // as the list holds it
    return strains;
}

}  // namespace zelko
