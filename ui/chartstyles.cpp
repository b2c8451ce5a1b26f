#include "ui/chartstyles.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <initializer_list>

namespace zelko::ui {

namespace {

struct Palette {
    const char* resource;
    std::initializer_list<unsigned> colours;  // 0xRRGGBB
};

// Each palette is drawn to look like its name; the first colours are the most
// distinct, as a chart with two curves uses only those.
const Palette kPalettes[] = {
    {"CHART_PALETTE_VICTORIAN",
     {0x7B1E3A, 0x2F5D50, 0xB08D3C, 0x3D3B6E, 0x8C4A2F, 0x6A7F4B, 0x9E6B8A, 0x4E3B31, 0xC9A66B, 0x5B7C99}},
    {"CHART_PALETTE_VIBRANTPASTEL",
     {0xFF7F9F, 0x5FC9F8, 0xFFC24B, 0x7ED491, 0xB28DFF, 0xFF9F6B, 0x4FD1C5, 0xF27FD1, 0xA3D65C, 0x8FA8FF}},
    {"CHART_PALETTE_VIBRANT",
     {0xE6194B, 0x1F78FF, 0xFFB000, 0x12A150, 0x9B30FF, 0xFF6A00, 0x00B5C8, 0xE6007E, 0x7CB500, 0x3F3FBF}},
    {"CHART_PALETTE_TROPICAL",
     {0xFF5E5B, 0x00A6A6, 0xFFB400, 0x2E8B57, 0xFF7BAC, 0x00CED1, 0xF28C28, 0x6A994E, 0xD7263D, 0x1B998B}},
    {"CHART_PALETTE_SUMMER",
     {0xF9A03F, 0x2A9D8F, 0xE76F51, 0x3A86FF, 0xF4D35E, 0x43AA8B, 0xEE6C4D, 0x90BE6D, 0xFF8FAB, 0x277DA1}},
    {"CHART_PALETTE_SPRINGTIME",
     {0x8BC34A, 0xF48FB1, 0x4FC3F7, 0xFFD54F, 0xBA68C8, 0x81C784, 0xFFAB91, 0x9575CD, 0xAED581, 0x64B5F6}},
    {"CHART_PALETTE_RAINBOW",
     {0xE53935, 0xFB8C00, 0xFDD835, 0x43A047, 0x1E88E5, 0x3949AB, 0x8E24AA, 0xD81B60, 0x00ACC1, 0x7CB342}},
    {"CHART_PALETTE_PURPLE",
     {0x6A1B9A, 0xAB47BC, 0x4A148C, 0xCE93D8, 0x7E57C2, 0x8E24AA, 0xB39DDB, 0x5E35B1, 0xE1BEE7, 0x9575CD}},
    {"CHART_PALETTE_PRIMARYCOLORS",
     {0xE00000, 0x0033CC, 0xFFCC00, 0x009933, 0x000000, 0xFF6600, 0x660099, 0x00A0E0}},
    {"CHART_PALETTE_POSTMODERN",
     {0xE4572E, 0x29335C, 0xF3A712, 0x669BBC, 0xA8C686, 0xDB2B39, 0x534D56, 0xF0CEA0, 0x2E282A, 0x17BEBB}},
    {"CHART_PALETTE_PHOTODESIGN",
     {0x2B4C7E, 0xC9753D, 0x567EBB, 0x606D5D, 0xDCE0D9, 0x8D5B4C, 0x1F2833, 0xB4A27D, 0x4F7CAC, 0xA13D2D}},
    {"CHART_PALETTE_PASTEL",
     {0xA8D8EA, 0xF6B8B8, 0xB5EAD7, 0xFFDAC1, 0xC7CEEA, 0xE2F0CB, 0xFFB7B2, 0xD5AAFF, 0xFFF1A8, 0x9AD1D4}},
    {"CHART_PALETTE_OFFICE",
     {0x4472C4, 0xED7D31, 0xA5A5A5, 0xFFC000, 0x5B9BD5, 0x70AD47, 0x264478, 0x9E480E, 0x636363, 0x997300}},
    {"CHART_PALETTE_ORANGEGREEN",
     {0xF57C00, 0x388E3C, 0xFFA726, 0x66BB6A, 0xE65100, 0x1B5E20, 0xFFCC80, 0xA5D6A7, 0xBF360C, 0x7CB342}},
    {"CHART_PALETTE_NATURE",
     {0x2E7D32, 0x8D6E63, 0x7CB342, 0x5D4037, 0xC0A062, 0x33691E, 0xA1887F, 0x9CCC65, 0x4E6E3A, 0xD4A373}},
    {"CHART_PALETTE_NATURAL",
     {0x6B8E23, 0xA0522D, 0x8FBC8F, 0xD2B48C, 0x556B2F, 0xCD853F, 0x708090, 0xBC8F8F, 0x8B7355, 0x9ACD32}},
    {"CHART_PALETTE_IMPRESIONISM",
     {0x5B7DB1, 0xE3A857, 0x8DB580, 0xC97B84, 0x9C89B8, 0xF0C987, 0x6FA3A8, 0xD98E5F, 0x7F9C6B, 0xB5A1D6}},
    {"CHART_PALETTE_ILLUSTRATION",
     {0x264653, 0xE76F51, 0x2A9D8F, 0xF4A261, 0xE9C46A, 0x8AB17D, 0xB56576, 0x6D597A, 0x355070, 0xEAAC8B}},
    {"CHART_PALETTE_HARVEST",
     {0xC1440E, 0xD99A2B, 0x7A4B2A, 0xE8C547, 0x8C2F1B, 0xA67C52, 0xF2A541, 0x5E3A1F, 0xB5651D, 0x9B8B3A}},
    {"CHART_PALETTE_GREENBROWN",
     {0x2F6B3A, 0x7B5230, 0x6FA35B, 0xA47551, 0x1E4D2B, 0xC49A6C, 0x98C379, 0x4E3421, 0x3F8F5A, 0x8A6A48}},
    {"CHART_PALETTE_GREENBLUE",
     {0x1B7F5E, 0x1F5FA8, 0x4CAF7D, 0x4A90D9, 0x0E5E4A, 0x2C3E8C, 0x7FD1AE, 0x8EC1F0, 0x2A9D8F, 0x3D5A80}},
    {"CHART_PALETTE_GREEN",
     {0x1B5E20, 0x43A047, 0x81C784, 0x2E7D32, 0x66BB6A, 0x004D40, 0xA5D6A7, 0x388E3C, 0x00796B, 0xC5E1A5}},
    {"CHART_PALETTE_GRAY",
     {0x202020, 0x707070, 0x404040, 0xA0A0A0, 0x585858, 0x888888, 0x303030, 0xB8B8B8, 0x4C4C4C, 0x949494}},
    {"CHART_PALETTE_FOURCOLOR",
     {0xD62728, 0x1F77B4, 0x2CA02C, 0xFFBF00, 0x8B1A1A, 0x123F6B, 0x1A5E1A, 0xB38600}},
    {"CHART_PALETTE_FIRE",
     {0xB71C1C, 0xFF8F00, 0xE53935, 0xFFC107, 0x7F0000, 0xF4511E, 0xFFD54F, 0xD84315, 0xFF6F00, 0x5D0F0F}},
    {"CHART_PALETTE_EARTHTONE",
     {0x8B5A2B, 0x6B8E23, 0xA0522D, 0xBDB76B, 0x5C4033, 0xCD853F, 0x556B2F, 0xD2B48C, 0x704214, 0x8F9779}},
    {"CHART_PALETTE_DANVILLE",
     {0x8E2C2C, 0x2D4F73, 0xC7A252, 0x4F7942, 0x6B4C7A, 0xB5651D, 0x3C6E71, 0x9C2A4B, 0x7D6B4F, 0x355C7D}},
    {"CHART_PALETTE_CARIBBEAN",
     {0x0096C7, 0xFF6B6B, 0x00B894, 0xFDCB6E, 0x0A558C, 0xE17055, 0x48CAE4, 0x55A630, 0xF8A5C2, 0x00756F}},
    {"CHART_PALETTE_CAPPUCCINO",
     {0x4B3621, 0xA67B5B, 0x6F4E37, 0xC8A27C, 0x3B2A1E, 0x8B6B4F, 0xD9BFA0, 0x5C4033, 0xB08968, 0x7F5539}},
    {"CHART_PALETTE_BLUEGRAY",
     {0x37474F, 0x5C7A99, 0x78909C, 0x1F3A5F, 0x90A4AE, 0x4F6D8F, 0x546E7A, 0xA7B8CC, 0x263238, 0x6C8EAD}},
    {"CHART_PALETTE_BLUE",
     {0x0D47A1, 0x42A5F5, 0x1565C0, 0x90CAF9, 0x01579B, 0x1E88E5, 0x0277BD, 0x64B5F6, 0x283593, 0x4FC3F7}},
};

struct Appearance {
    const char* resource;
    ChartAppearance look;
};

const Appearance kAppearances[] = {
    // light and warm
    {"CHART_APPEARANCE_NATURE",
     {QColor(0xF4EEDC), QColor(0xFFFDF5), QColor(0xE2D8BF), QColor(0x7A6A4F), QColor(0x3B3222)}},
    // neutral
    {"CHART_APPEARANCE_GRAY",
     {QColor(0xE4E4E4), QColor(0xF8F8F8), QColor(0xD0D0D0), QColor(0x6E6E6E), QColor(0x242424)}},
    // dark with light text
    {"CHART_APPEARANCE_BLACK",
     {QColor(0x141414), QColor(0x202020), QColor(0x3C3C3C), QColor(0xA0A0A0), QColor(0xECECEC)}},
};

}  // namespace

QStringList splitStyleNames(QStringView list)
{
    QStringList names;
    qsizetype start = 0;
    for (qsizetype end = list.indexOf(u';'); end >= 0; end = list.indexOf(u';', start)) {
        names.append(list.mid(start, end - start).toString());
        start = end + 1;
    }
    return names;
}

QStringList appearanceNames() { return splitStyleNames(QString::fromLatin1(kAppearanceList)); }

QStringList paletteNames() { return splitStyleNames(QString::fromLatin1(kPaletteList)); }

QString appearanceResourceName(const QString& name) { return QStringLiteral("CHART_APPEARANCE_") + name.toUpper(); }

QString paletteResourceName(const QString& name)
{
    QString packed = name;
    packed.remove(QLatin1Char(' '));
    return QStringLiteral("CHART_PALETTE_") + packed.toUpper();
}

std::optional<ChartAppearance> appearanceByResource(const QString& resourceName)
{
    for (const Appearance& appearance : kAppearances)
        if (resourceName == QLatin1String(appearance.resource))
            return appearance.look;
    return std::nullopt;
}

QList<QColor> paletteByResource(const QString& resourceName)
{
    for (const Palette& palette : kPalettes) {
        if (resourceName != QLatin1String(palette.resource))
            continue;
        QList<QColor> colours;
        for (unsigned rgb : palette.colours)
            colours.append(QColor(QRgb(rgb)));
        return colours;
    }
    return {};
}

double contrastRatio(const QColor& a, const QColor& b)
{
    const auto luminance = [](const QColor& colour) {
        const auto channel = [](double c) { return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4); };
        return 0.2126 * channel(colour.redF()) + 0.7152 * channel(colour.greenF()) + 0.0722 * channel(colour.blueF());
    };
    const double la = luminance(a);
    const double lb = luminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

QColor readableOn(const QColor& colour, const QColor& plotArea)
{
    constexpr float kStep = 0.02f;
    const bool darken = plotArea.lightnessF() >= 0.5f;
    float hue = 0, saturation = 0, lightness = 0, alpha = 0;
    colour.getHslF(&hue, &saturation, &lightness, &alpha);
    QColor readable = colour;
    while (contrastRatio(readable, plotArea) < kReadableLineContrast && (darken ? lightness > 0.0f : lightness < 1.0f)) {
        lightness = std::clamp(lightness + (darken ? -kStep : kStep), 0.0f, 1.0f);
        readable = QColor::fromHslF(hue, saturation, lightness, alpha).toRgb();
    }
    return readable;
}

std::vector<QColor> randomColourTable()
{
    std::vector<QColor> table;
    table.reserve(kRandomColourCount);
    for (int i = 0; i < kRandomColourCount; ++i) {
        // Three statements, so the order red, green, blue is the order of the calls.
        const int red = std::rand() % 256;
        const int green = std::rand() % 256;
        const int blue = std::rand() % 256;
        table.emplace_back(red, green, blue);
    }
    return table;
}

}  // namespace zelko::ui
