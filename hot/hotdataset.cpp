#include "hot/hotdataset.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <unordered_map>
#include <unordered_set>

#include "base/exchangefolder.h"
#include "base/messages.h"
#include "base/fileio.h"
#include "base/textfile.h"

namespace zelko {

namespace {

std::string gText(double value) { return formatText("%g", value); }

// Where each "%g" text first stands in values: the grid is rebuilt by looking
// every listed text up once.
std::unordered_map<std::string, std::size_t> textIndex(const std::vector<double>& values)
{
    std::unordered_map<std::string, std::size_t> index;
    index.reserve(values.size());
    for (std::size_t i = 0; i < values.size(); ++i)
        index.try_emplace(gText(values[i]), i);
    return index;
}

std::optional<std::size_t> findText(const std::unordered_map<std::string, std::size_t>& index, const std::string& text)
{
    const auto found = index.find(text);
    return found == index.end() ? std::nullopt : std::optional<std::size_t>(found->second);
}

// The readers' line count: reads of at most 128 units, each counted unless it
// ran into the end of the file.
std::size_t countRecords(std::string_view fileBytes)
{
    TextReader in(fileBytes, ReadMode::SniffBom);
    std::size_t count = 0;
    std::u16string line;
    while (in.readLine(line, 128))
        if (!in.atEnd())
            ++count;
    return count;
}

// Reads count records of width values each (after the skipped line number);
// stops where the tokens run out. Values are taken leniently (text that is not
// a number reads as 0).
template <class Record>
void readRecords(std::string_view fileBytes, const RawCurveLayout& layout, std::size_t width, Record&& record)
{
    const std::size_t count = countRecords(fileBytes);
    TextReader in(fileBytes, ReadMode::SniffBom);
    std::u16string token;
    std::vector<double> values(width);
    for (std::size_t n = 0; n < count; ++n) {
        if (layout.numberedLines && !in.readToken(token))
            return;
        for (double& v : values) {
            if (!in.readToken(token))
                return;
            v = toDouble(token);
        }
        record(values);
    }
}

}  // namespace

std::string_view addGroupValue(GroupItems& items, HotGroup group, double value)
{
    switch (group) {
    case HotGroup::StrainRate:
        if (!(value > 0.0))
            return messageText(MessageCode::RateNotPositive);
        break;
    case HotGroup::Temperature:
        if (items.size() >= kMaxTemperatures)
            return messageText(MessageCode::TooManyTemperatures);
        break;
    case HotGroup::Strain:
        if (items.size() >= kMaxStrains)
            return messageText(MessageCode::TooManyStrains);
        break;
    }
    const std::string text = gText(value);
    if (std::find(items.begin(), items.end(), text) != items.end())
        return {};
    const auto position = std::count_if(items.begin(), items.end(), [&](const std::string& item) {
        return toDouble(std::string_view(item)) <= value;
    });
    items.insert(items.begin() + position, text);
    return {};
}

GroupItems strainRateItems(std::span<const double> rates)
{
    // Each text once, where it was first seen; addGroupValue keeps the list
    // ascending by the value each text reads back as.
    std::unordered_set<std::string> seen;
    std::vector<std::pair<double, std::string>> listed;
    for (const double rate : rates) {
        if (!(rate > 0.0))
            continue;
        std::string text = gText(rate);
        if (seen.insert(text).second)
            listed.emplace_back(toDouble(std::string_view(text)), std::move(text));
    }
    std::stable_sort(listed.begin(), listed.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    GroupItems items;
    items.reserve(listed.size());
    for (auto& [value, text] : listed)
        items.push_back(std::move(text));
    return items;
}

std::vector<double> groupValues(const GroupItems& items)
{
    std::vector<double> values;
    values.reserve(items.size());
    for (const std::string& item : items)
        values.push_back(toDouble(std::string_view(item)));
    return values;
}

std::string_view applyGroups(HotDataSet& dataSet, const GroupItems& strainRates, const GroupItems& temperatures,
                             const GroupItems& strains)
{
    if (strainRates.size() < 2)
        return messageText(MessageCode::TooFewStrainRates);
    if (temperatures.empty())
        return messageText(MessageCode::NoTemperature);
    std::vector<std::vector<HotCurve>> curves(temperatures.size(), std::vector<HotCurve>(strainRates.size()));
    const auto oldTemperatures = textIndex(dataSet.temperatures);
    const auto oldRates = textIndex(dataSet.strainRates);
    for (std::size_t t = 0; t < temperatures.size(); ++t) {
        const auto oldT = findText(oldTemperatures, temperatures[t]);
        if (!oldT)
            continue;
        for (std::size_t r = 0; r < strainRates.size(); ++r)
            if (const auto oldR = findText(oldRates, strainRates[r]);
                oldR && *oldT < dataSet.curves.size() && *oldR < dataSet.curves[*oldT].size())
                curves[t][r] = std::move(dataSet.curves[*oldT][*oldR]);
    }
    dataSet.curves = std::move(curves);
    dataSet.strainRates = groupValues(strainRates);
    dataSet.temperatures = groupValues(temperatures);
    dataSet.strains = groupValues(strains);
    return {};
}

std::u16string curveText(const HotCurve& curve, bool numberedLines, int columnMode)
{
    std::string text;
    int number = 1;
    for (const HotCurvePoint& p : curve) {
        if (numberedLines && columnMode == 1)
            text += formatText("  %d    %.6f    %.6f    %.6f \r\n", number, p.c0, p.strain, p.stress);
        else if (numberedLines)
            text += formatText("  %d    %.6f    %.6f \r\n", number, p.strain, p.stress);
        else if (columnMode == 1)
            text += formatText("    %.6f    %.6f    %.6f \r\n", p.c0, p.strain, p.stress);
        else
            text += formatText("    %.6f    %.6f \r\n", p.strain, p.stress);
        ++number;
    }
    return widen(text);
}

bool acceptRawPoint(HotCurvePoint& point, const RawCurveLayout& layout, double strainOffset, double& maxStress)
{
    if (!std::isfinite(point.c0) || !std::isfinite(point.strain) || !std::isfinite(point.stress))
        return false;
    if (!(std::fabs(point.strain) >= strainOffset))
        return false;
    point.strain -= strainOffset;
    if (layout.negateStrain)
        point.strain = -point.strain;
    if (layout.negateStress)
        point.stress = -point.stress;
    maxStress = std::max(maxStress, point.stress);
    if (layout.measure == StrainMeasure::Engineering) {
        // ln(1 - e) has no value from e = 1 on.
        if (!(point.strain < 1.0))
            return false;
        const double trueStrain = std::fabs(std::log(1.0 - point.strain));
        point.stress *= 1.0 - trueStrain;
        point.strain = trueStrain;
        return std::isfinite(point.strain) && std::isfinite(point.stress);
    }
    return true;
}

std::string rawCurveFileBytes(std::u16string_view editText)
{
    // The edit's "\r\n" is the file's line end; the writer adds the "\r" back.
    std::u16string text;
    text.reserve(editText.size());
    for (std::size_t i = 0; i < editText.size(); ++i)
        if (!(editText[i] == u'\r' && i + 1 < editText.size() && editText[i + 1] == u'\n'))
            text.push_back(editText[i]);
    TextWriter out(TextEncoding::Utf16Le);
    out.put(text);
    return out.bytes();
}

HotCurve readSingleCurve(std::string_view fileBytes, const RawCurveLayout& layout, double strainOffset,
                         double& maxStress)
{
    HotCurve curve;
    const bool withC0 = layout.columnMode == 1;
    readRecords(fileBytes, layout, withC0 ? 3 : 2, [&](const std::vector<double>& v) {
        HotCurvePoint p = withC0 ? HotCurvePoint{v[0], v[1], v[2]} : HotCurvePoint{0.0, v[0], v[1]};
        if (acceptRawPoint(p, layout, strainOffset, maxStress))
            curve.push_back(p);
    });
    return curve;
}

std::vector<HotCurve> readMultiCurve(std::string_view fileBytes, const RawCurveLayout& layout, std::size_t columns,
                                     double strainOffset, double& maxStress)
{
    std::vector<HotCurve> curves(columns);
    if (columns == 0)
        return curves;
    readRecords(fileBytes, layout, columns + 1, [&](const std::vector<double>& v) {
        for (std::size_t c = 0; c < columns; ++c) {
            HotCurvePoint p{0.0, v[0], v[c + 1]};
            if (acceptRawPoint(p, layout, strainOffset, maxStress))
                curves[c].push_back(p);
        }
    });
    return curves;
}

bool importRawCurves(HotDataSet& dataSet, std::string_view fileBytes, const CurveSelection& selection,
                     const RawCurveLayout& layout, double strainOffset)
{
    const std::size_t rates = selection.strainRates.size();
    const std::size_t temperatures = selection.temperatures.size();
    if (rates == 0 || temperatures == 0 || (rates != 1 && temperatures != 1))
        return false;
    for (const std::size_t t : selection.temperatures)
        for (const std::size_t r : selection.strainRates)
            if (t >= dataSet.curves.size() || r >= dataSet.curves[t].size())
                return false;
    dataSet.strainOffset = strainOffset;
    if (rates == 1 && temperatures == 1) {
        dataSet.curves[selection.temperatures[0]][selection.strainRates[0]]
            = readSingleCurve(fileBytes, layout, strainOffset, dataSet.maxStress);
        return true;
    }
    std::vector<HotCurve> curves
        = readMultiCurve(fileBytes, layout, std::max(rates, temperatures), strainOffset, dataSet.maxStress);
    for (std::size_t c = 0; c < curves.size(); ++c) {
        const std::size_t t = temperatures == 1 ? selection.temperatures[0] : selection.temperatures[c];
        const std::size_t r = rates == 1 ? selection.strainRates[0] : selection.strainRates[c];
        dataSet.curves[t][r] = std::move(curves[c]);
    }
    return true;
}

std::string_view writeRawCurveFile(std::u16string_view editText, const std::filesystem::path& folder)
{
    std::string error;
    if (!ensureFolder(folder, error))
        return messageText(MessageCode::NoExchangeFolder);
    if (!saveFileAtomically(folder / kRawCurveFileName, rawCurveFileBytes(editText), error))
        return messageText(MessageCode::RawFileNotSaved);
    return {};
}

std::size_t nonNumericTokens(std::u16string_view text)
{
    const auto blank = [](char16_t c) { return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n'; };
    std::size_t count = 0;
    for (std::size_t at = 0; at < text.size();) {
        if (blank(text[at])) {
            ++at;
            continue;
        }
        std::size_t end = at;
        while (end < text.size() && !blank(text[end]))
            ++end;
        double value = 0.0;
        if (leadingDouble(text.substr(at, end - at), value) != end - at)
            ++count;
        at = end;
    }
    return count;
}

bool importRawText(HotDataSet& dataSet, std::u16string_view editText, const CurveSelection& selection,
                   const RawCurveLayout& layout, double strainOffset)
{
    return importRawCurves(dataSet, rawCurveFileBytes(editText), selection, layout, strainOffset);
}

}  // namespace zelko
