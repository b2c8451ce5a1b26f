#include "cold/curvefile.h"

#include <algorithm>
#include <cmath>

#include "base/messages.h"
#include "base/numbers.h"
#include "base/textfile.h"

namespace zelko {

namespace {

bool parseNumber(std::string_view token, double& value)
{
    return parseNumberField(token, value) != NumberField::NotANumber;  // inf and nan are refused by name below
}

}  // namespace

std::optional<Curve> readCurveText(std::string_view bytes, std::string& error)
{
    if (bytes.starts_with("\xEF\xBB\xBF"))
        bytes.remove_prefix(3);
    // A point takes at least four bytes ("1 2\n"): room for every line up to that,
    // so a long curve is not copied again and again as it grows.
    Curve curve;
    curve.reserve(std::min<std::size_t>(static_cast<std::size_t>(std::count(bytes.begin(), bytes.end(), '\n')) + 1,
                                        bytes.size() / 4 + 1));
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
        double values[3] = {0, 0, 1};
        const std::size_t columns = tokens.size();
        bool numbers = columns <= 3;
        for (std::size_t i = 0; numbers && i < columns; ++i)
            numbers = parseNumber(tokens[i], values[i]);
        if (!numbers && !inData) {
            double ignored = 0;
            if (!parseNumber(tokens[0], ignored))
                continue;  // a header line of words
        }
        if (!numbers || columns < 2) {
            error = formatMessage(MessageCode::CurveLineNotTwoOrThreeNumbers, lineNumber);
            return std::nullopt;
        }
        if (!std::isfinite(values[0]) || !std::isfinite(values[1]) || !std::isfinite(values[2])) {
            error = formatMessage(MessageCode::CurveLineNotFinite, lineNumber);
            return std::nullopt;
        }
        inData = true;
        curve.push_back({values[0], values[1], values[2], columns == 3});
    }
    if (curve.size() < 2) {
        error = messageText(MessageCode::CurveTooShort);
        return std::nullopt;
    }
    return curve;
}

}  // namespace zelko
