#include "material/physprops.h"

#include "base/messages.h"

#include <array>
#include <cmath>
#include <vector>

#include "base/textfile.h"

namespace zelko {

namespace {

constexpr std::size_t kNumbersPerRow = 12;
using Row = std::array<double, kNumbersPerRow>;

constexpr std::array<std::u16string_view, 4> kTitles = {u"T (C)", u"Thermal conductivity-TOTAL", u"Density-TOTAL",
                                                       u"Specific heat (J/(g K))"};

// A row is taken when its first number, cut toward zero, is a multiple of 100.
bool isHundredRow(double temperature)
{
    if (!std::isfinite(temperature) || std::fabs(temperature) >= 2147483648.0)
        return false;
    return static_cast<long long>(temperature) % 100 == 0;
}

// What stands where a number belongs, cut to a length a message can show.
std::string offendingText(TextReader& in)
{
    constexpr std::size_t kShown = 20;
    std::u16string token;
    in.readToken(token, kShown);
    return utf16ToUtf8(token);
}

// Why text where a number belongs can't be read, naming its line. The scan has
// stopped at the text, so the reader stands on its line.
std::string notANumber(TextReader& in)
{
    const std::size_t line = in.lineNumber();
    const std::string text = offendingText(in);
    // "20,5" scans as 20 and leaves ",5": a European export.
    const bool decimalComma = text.size() >= 2 && text[0] == ',' && text[1] >= '0' && text[1] <= '9';
    return formatMessage(decimalComma ? MessageCode::PhysPropsDecimalComma : MessageCode::PhysPropsNotANumber, line,
                         text.c_str());
}

// Rows of twelve numbers, read across line ends. A read that finds no number keeps
// the previous row's values, so a final line end stores the last row twice; text
// that is no number, or a number no table can hold, refuses the file.
bool readRows(TextReader& in, const std::array<std::size_t, 4>& index, std::vector<Row>& rows, std::string& refusal)
{
    Row row{};
    bool foundNumbers = false;
    while (!in.atEnd()) {
        std::size_t read = 0;
        while (read < kNumbersPerRow && in.scanDouble(row[read])) {
            if (!std::isfinite(row[read])) {
                refusal = formatMessage(MessageCode::PhysPropsNotFinite, in.lineNumber(), row[read]);
                return false;
            }
            ++read;
        }
        if (read < kNumbersPerRow && !in.atEnd()) {
            refusal = notANumber(in);
            return false;
        }
        // Finite numbers can still overflow in the conversion (a density of 1e300).
        if (!std::isfinite(row[index[1]] / 1000.0) || !std::isfinite(row[index[2]] * row[index[3]] / 1000.0)) {
            refusal = formatMessage(MessageCode::PhysPropsRowNotFinite, in.lineNumber());
            return false;
        }
        foundNumbers = foundNumbers || read > 0;
        rows.push_back(row);
    }
    if (!foundNumbers) {
        refusal = messageText(MessageCode::PhysPropsNoRows);
        return false;
    }
    return true;
}

}  // namespace

PhysPropsImport importPhysProps(std::string_view bytes)
{
    PhysPropsImport result;
    TextReader in(bytes, ReadMode::EightBit);
    std::u16string header;
    if (!in.readLine(header, 2047)) {
        result.message = messageText(MessageCode::PhysPropsEmpty);
        return result;
    }
    // The line end is not part of the last title.
    if (!header.empty() && header.back() == u'\n')
        header.pop_back();
    const std::vector<std::u16string> columns = split(header, u"\t");
    std::array<std::size_t, 4> index{};
    for (std::size_t t = 0; t < kTitles.size(); ++t) {
        std::size_t found = 0;
        for (std::size_t c = 0; c < columns.size(); ++c) {
            if (columns[c] == kTitles[t]) {
                index[t] = c;
                ++found;
            }
        }
        const std::string title = utf16ToUtf8(kTitles[t]);
        if (found == 0) {
            result.message = formatMessage(MessageCode::PhysPropsMissingColumn, title.c_str());
            return result;
        }
        if (found > 1) {
            result.message = formatMessage(MessageCode::PhysPropsDuplicateColumn, title.c_str());
            return result;
        }
        if (index[t] >= kNumbersPerRow) {
            result.message = formatMessage(MessageCode::PhysPropsColumnBeyondRow, title.c_str());
            return result;
        }
    }

    std::vector<Row> rows;
    if (!readRows(in, index, rows, result.message))
        return result;

    std::vector<const Row*> selected;
    const Row* coldest = &rows.front();
    for (const Row& row : rows) {
        if (isHundredRow(row[0]))
            selected.push_back(&row);
        if (row[0] < (*coldest)[0])
            coldest = &row;
    }
    selected.push_back(coldest);  // last, out of temperature order, even when already selected

    for (const Row* row : selected) {
        const Row& r = *row;
        const double temperature = r[index[0]];
        result.conductivity.push_back({temperature, r[index[1]] / 1000.0});
        result.heatCapacity.push_back({temperature, r[index[2]] * r[index[3]] / 1000.0});
    }
    result.ok = true;
    return result;
}

}  // namespace zelko
