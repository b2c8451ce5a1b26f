#include "material/elastic.h"

namespace zelko {

double ELASTIC::value(int index) const
{
    const PropertyTable& table = tables.at(static_cast<std::size_t>(index));
    return table.empty() ? 0.0 : table.front().value;
}

void ELASTIC::setTable(int index, const PropertyTable& points)
{
    tables.at(static_cast<std::size_t>(index)) = points;
}

void ELASTIC::writeMaterialBlock(TextWriter& out, int index) const
{
    const auto i = static_cast<std::size_t>(index);
    const int form = propertyType.at(i);
    out.format("%8d\n", form);
    if (form == 1) {
        out.format("%25.4E\n", value(index));
    } else if (form == 2) {
        out.format("%8zd\n", tables[i].size());
        for (const TablePoint& p : tables[i])
            out.format("%25.4E %17.4E\n", p.temperature, p.value);
    }
}

void ELASTIC::readMaterialBlock(TextReader& in, int minor)
{
    if (minor >= 5)
        readCurrentLayout(in);
    else
        readOldLayout(in);
}

void ELASTIC::readCurrentLayout(TextReader& in)
{
    std::u16string line;
    for (std::size_t i = 0; i < tables.size(); ++i) {
        tables[i].clear();
        if (!in.readNonBlankLine(line))
            return;
        propertyType[i] = toInt(line);
        if (propertyType[i] == 1) {
            if (!in.readNonBlankLine(line))
                return;
            tables[i].push_back({0.0, toDouble(line)});
        } else if (propertyType[i] == 2) {
            if (!in.readNonBlankLine(line))
                return;
            const int count = toInt(line);
            tables[i].reserve(in.claim(count));
            for (int k = 0; k < count; ++k) {
                if (!in.readNonBlankLine(line))
                    return;
                const auto tokens = split(line, u" ");
                if (tokens.size() < 2)
                    return;  // a short point line ends the whole section
                tables[i].push_back({toDouble(tokens[0]), toDouble(tokens[1])});
            }
        }
    }
}

void ELASTIC::readOldLayout(TextReader& in)
{
    static constexpr std::u16string_view kSeparators = u", \t\n";
    std::u16string line;
    bool headerFound = false;
    while (!headerFound && in.readLine(line))
        headerFound = split(line, kSeparators).size() == 3;
    if (!headerFound)
        return;
    while (in.readLine(line)) {
        const auto tokens = split(line, kSeparators);
        if (tokens.size() == 4) {
            for (std::size_t i = 0; i < tables.size(); ++i)
                tables[i].push_back({0.0, toDouble(tokens[i])});
            return;
        }
    }
}

const char* elasticLibraryKeyword(int index)
{
    static const char* const kKeywords[kElasticPropertyCount] = {
        "*YoungsModulus                                              (MPa)\n",
        "*PoissonsRatio                                              (   )\n",
        "*Density                                                    (kgm/mm^3)\n",
        "*CoefficientofThermalExpansion                              (1/C)\n",
    };
    return kKeywords[index];
}

bool ELASTIC::writeLibraryBlock(TextWriter& out, int version) const
{
    for (int i = 0; i < kElasticPropertyCount; ++i) {
        out.put(std::string_view(elasticLibraryKeyword(i)));
        if (version >= 5) {
            writeMaterialBlock(out, i);
        } else {
            // The old layout tests Young's modulus table for every property.
            const bool haveValue = !tables[YoungsModulus].empty();
            out.put(std::string_view("      1\n"));
            out.format("      %.4E\n", haveValue && !tables[static_cast<std::size_t>(i)].empty()
                                           ? tables[static_cast<std::size_t>(i)].front().value
                                           : 0.0);
        }
    }
    return true;
}

bool ELASTIC::readLibraryBlock(TextReader& in)
{
    // Runs only while the end-of-file indicator is set: inert on a fresh stream.
    static const std::u16string kKeywordLines[kElasticPropertyCount] = {
        u"*YoungsModulus (MPa)", u"*PoissonsRatio\t(   )", u"*Density\t(kgm/mm^3)",
        u"*CoefficientofThermalExpansion\t(1/C)"};
    std::u16string line;
    while (in.atEnd()) {
        if (!in.readLine(line))
            break;
        for (int i = 0; i < kElasticPropertyCount; ++i)
            if (line == kKeywordLines[i])
                readCurrentLayout(in);
    }
    return true;
}

}  // namespace zelko
