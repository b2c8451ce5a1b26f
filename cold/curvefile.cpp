#include "cold/curvefile.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>

#include "base/messages.h"
#include "base/numbers.h"
#include "base/textfile.h"
#include "cold/tensilereduction.h"

namespace zelko {

namespace {

bool parseNumber(std::string_view token, double& value)
{
    return parseNumberField(token, value) != NumberField::NotANumber;  // inf and nan are refused by name below
}

enum class Quantity { Displacement, Force, Strain, Stress, Weight, None };

// "force_kN", "Force(kN)", "force[kN]": the name and the unit, in lower case.
struct HeaderName {
    Quantity quantity = Quantity::None;
    std::string unit;
};

std::string lowerCase(std::string_view text)
{
    std::string out(text);
    for (char& c : out)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return out;
}

HeaderName headerName(std::string_view token)
{
    std::string name = lowerCase(token);
    std::string unit;
    if (const auto open = name.find_first_of("(["); open != std::string::npos) {
        const auto close = name.find_first_of(")]", open);
        unit = name.substr(open + 1, close == std::string::npos ? std::string::npos : close - open - 1);
        name.erase(open);
    } else if (const auto underscore = name.rfind('_'); underscore != std::string::npos) {
        unit = name.substr(underscore + 1);
        name.erase(underscore);
    }
    // Longer words first: "true_strain" and "eng_stress" hold the quantity's name.
    static constexpr std::array<std::pair<std::string_view, Quantity>, 8> kWords = {{
        {"displacement", Quantity::Displacement}, {"elongation", Quantity::Displacement},
        {"extension", Quantity::Displacement},    {"force", Quantity::Force},
        {"load", Quantity::Force},                {"strain", Quantity::Strain},
        {"stress", Quantity::Stress},             {"weight", Quantity::Weight},
    }};
    const auto quantityIn = [](const std::string& text) {
        for (const auto& [word, quantity] : kWords)
            if (text.find(word) != std::string::npos)
                return quantity;
        return Quantity::None;
    };
    // "true_strain": what followed the underscore was the name, not a unit.
    if (quantityIn(name) == Quantity::None)
        return {quantityIn(lowerCase(token)), ""};
    return {quantityIn(name), unit};
}

// The unit's position in the screen's list, nothing when the text is no unit of
// that quantity; an empty unit names none.
bool unitChoice(Quantity quantity, const std::string& unit, std::optional<std::int32_t>& choice)
{
    if (unit.empty())
        return true;
    static constexpr std::array<std::pair<std::string_view, std::int32_t>, 2> kLength = {{{"mm", Millimetre}, {"in", Inch}}};
    static constexpr std::array<std::pair<std::string_view, std::int32_t>, 6> kForce = {
        {{"n", Newton}, {"kn", Kilonewton}, {"kgf", KilogramForce}, {"ton", MetricTon}, {"t", MetricTon}, {"lbf", PoundForce}}};
    const auto look = [&](const auto& table) {
        for (const auto& [name, position] : table)
            if (unit == name) {
                choice = position;
                return true;
            }
        return false;
    };
    switch (quantity) {
    case Quantity::Displacement: return look(kLength) || (unit == "inch" && (choice = Inch, true));
    case Quantity::Force: return look(kForce);
    case Quantity::Strain:
        if (unit == "pct" || unit == "percent" || unit == "%")
            choice = Inch;  // the second length unit means percent strain
        else if (unit == "-" || unit == "mm/mm" || unit == "true" || unit == "eng")
            choice = Millimetre;
        else
            return false;
        return true;
    case Quantity::Stress: return unit == "mpa" || unit == "n/mm2" || unit == "n/mm^2";
    case Quantity::Weight: return unit == "-";
    case Quantity::None: return false;
    }
    return false;
}

// Where each of x, y and the weight stand in a line, from a header that names them.
struct ColumnMap {
    std::array<int, 3> position = {0, 1, 2};
    std::size_t columns = 0;
    bool weighted = false;
};

// nothing when the line names no column we know (a header of other words);
// false with error when it names them but not as a curve can be read.
bool readHeader(const std::vector<std::string>& words, std::string_view line, std::optional<CurveHeader>& header,
                ColumnMap& map, std::string& error)
{
    // "Force [kN]": a unit set apart by a blank belongs to the name before it.
    std::vector<std::string> tokens;
    for (const std::string& word : words) {
        if (!tokens.empty() && (word.starts_with('(') || word.starts_with('[')))
            tokens.back() += word;
        else
            tokens.push_back(word);
    }
    std::vector<HeaderName> names;
    bool any = false;
    for (const std::string& token : tokens) {
        names.push_back(headerName(token));
        any = any || names.back().quantity != Quantity::None;
    }
    if (!any)
        return true;
    CurveHeader read;
    read.text = std::string(line.substr(0, line.find_last_not_of("\r") + 1));
    std::array<int, 3> position = {-1, -1, -1};
    bool load = false, stressStrain = false;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const HeaderName& name = names[i];
        const int column = name.quantity == Quantity::Displacement || name.quantity == Quantity::Strain ? 0
                           : name.quantity == Quantity::Force || name.quantity == Quantity::Stress ? 1
                           : name.quantity == Quantity::Weight                                     ? 2
                                                                                                   : -1;
        if (column < 0) {
            error = "header column '" + tokens[i] + "' is none of displacement, force, strain, stress, weight";
            return false;
        }
        if (position[static_cast<std::size_t>(column)] >= 0) {
            error = "header names column '" + tokens[i] + "' twice";
            return false;
        }
        position[static_cast<std::size_t>(column)] = static_cast<int>(i);
        load = load || name.quantity == Quantity::Displacement || name.quantity == Quantity::Force;
        stressStrain = stressStrain || name.quantity == Quantity::Strain || name.quantity == Quantity::Stress;
        std::optional<std::int32_t>& choice = name.quantity == Quantity::Force ? read.forceUnit : read.lengthUnit;
        if (!unitChoice(name.quantity, name.unit, choice)) {
            error = "header column '" + tokens[i] + "': unit '" + name.unit + "' is not one the curve can take";
            return false;
        }
    }
    if (load && stressStrain) {
        error = "header '" + read.text + "' mixes displacement or force with strain or stress";
        return false;
    }
    if (position[0] < 0 || position[1] < 0) {
        error = "header '" + read.text + "' names no " + (load ? "displacement and force" : "strain and stress")
                + " columns";
        return false;
    }
    read.loadDisplacement = load;
    map.position = {position[0], position[1], position[2]};
    map.columns = names.size();
    map.weighted = position[2] >= 0;
    header = std::move(read);
    return true;
}

}  // namespace

std::optional<CurveText> readCurveFile(std::string_view bytes, std::string& error)
{
    if (bytes.starts_with("\xEF\xBB\xBF"))
        bytes.remove_prefix(3);
    // A point takes at least four bytes ("1 2\n"): room for every line up to that,
    // so a long curve is not copied again and again as it grows.
    CurveText read;
    Curve& curve = read.curve;
    curve.reserve(std::min<std::size_t>(static_cast<std::size_t>(std::count(bytes.begin(), bytes.end(), '\n')) + 1,
                                        bytes.size() / 4 + 1));
    ColumnMap map;
    bool inData = false;
    std::size_t lineNumber = 0;
    while (!bytes.empty()) {
        const std::size_t end = bytes.find('\n');
        std::string_view line = bytes.substr(0, end);
        bytes = end == std::string_view::npos ? std::string_view() : bytes.substr(end + 1);
        ++lineNumber;
        const std::vector<std::string> tokens = split(line, " \t,;\r");
        if (tokens.empty() || tokens[0].starts_with('#'))
            continue;
        double raw[3] = {0, 0, 1};
        const std::size_t columns = tokens.size();
        bool numbers = columns <= 3;
        for (std::size_t i = 0; numbers && i < columns; ++i)
            numbers = parseNumber(tokens[i], raw[i]);
        if (!numbers && !inData) {
            double ignored = 0;
            if (!parseNumber(tokens[0], ignored)) {
                // A header of words; the first that names the columns says where they stand.
                if (!read.header && !readHeader(tokens, line, read.header, map, error)) {
                    error = formatText("line %zu: ", lineNumber) + error;
                    return std::nullopt;
                }
                continue;
            }
        }
        if (!numbers || columns < 2) {
            error = formatMessage(MessageCode::CurveLineNotTwoOrThreeNumbers, lineNumber);
            return std::nullopt;
        }
        if (read.header && columns != map.columns) {
            error = formatText("line %zu: %zu numbers under a header of %zu columns", lineNumber, columns, map.columns);
            return std::nullopt;
        }
        double values[3] = {raw[0], raw[1], raw[2]};
        bool weighted = columns == 3;
        if (read.header) {
            for (std::size_t k = 0; k < 3; ++k)
                values[k] = map.position[k] >= 0 ? raw[map.position[k]] : 1.0;
            weighted = map.weighted;
        }
        if (!std::isfinite(values[0]) || !std::isfinite(values[1]) || !std::isfinite(values[2])) {
            error = formatMessage(MessageCode::CurveLineNotFinite, lineNumber);
            return std::nullopt;
        }
        inData = true;
        curve.push_back({values[0], values[1], values[2], weighted});
    }
    if (curve.size() < 2) {
        error = messageText(MessageCode::CurveTooShort);
        return std::nullopt;
    }
    return read;
}

std::optional<Curve> readCurveText(std::string_view bytes, std::string& error)
{
    std::optional<CurveText> read = readCurveFile(bytes, error);
    if (!read)
        return std::nullopt;
    return std::move(read->curve);
}

}  // namespace zelko
