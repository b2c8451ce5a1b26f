#include "base/tabletext.h"

#include "base/textfile.h"

namespace zelko {

namespace {

constexpr std::u16string_view kCellEnd = u", ";

}  // namespace

std::u16string listExportText(const std::vector<std::u16string>& headers, const TextTable& rows)
{
    std::u16string text;
    for (const auto& header : headers) {
        text += std::u16string_view(header).substr(0, kListHeaderUnits);
        text += kCellEnd;
    }
    text += u'\n';
    for (const auto& row : rows) {
        for (const auto& cell : row) {
            text += cell;
            text += kCellEnd;
        }
        text += u'\n';
    }
    return text;
}

std::string listExportFile(const std::vector<std::u16string>& headers, const TextTable& rows)
{
    TextWriter writer(TextEncoding::Utf16Le);
    writer.put(listExportText(headers, rows));
    return std::move(writer).bytes();
}

}  // namespace zelko
