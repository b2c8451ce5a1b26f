#pragma once
// The named looks of the charts: three appearances (the colours of everything
// but the curves) and 31 palettes (the colours of the curves), each applied by
// its resource name, and the table of random colours the chart screens keep.

#include <QColor>
#include <QList>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <optional>
#include <vector>

namespace zelko::ui {

inline constexpr char kAppearanceList[] = "Nature;Gray;Black;";
inline constexpr char kPaletteList[] =
    "Victorian;Vibrant Pastel;Vibrant;Tropical;Summer;Spring Time;Rainbow;Purple;Primary Colors;"
    "Postmodern;Photodesign;Pastel;Office;Orange Green;Nature;Natural;Impresionism;Illustration;"
    "Harvest;Green Brown;Green Blue;Green;Gray;Four Color;Fire;Earth Tone;Danville;Caribbean;"
    "Cappuccino;Blue Gray;Blue;";

// The names of a list in which every name ends with a semicolon; whatever
// follows the last semicolon is no name.
QStringList splitStyleNames(QStringView list);
QStringList appearanceNames();
QStringList paletteNames();

// "CHART_APPEARANCE_" + the name in upper case.
QString appearanceResourceName(const QString& name);
// "CHART_PALETTE_" + the name without its spaces, in upper case.
QString paletteResourceName(const QString& name);

struct ChartAppearance {
    QColor background;  // around the plot, and the legend's
    QColor plotArea;
    QColor grid;
    QColor axis;        // axis lines and ticks
    QColor text;        // titles, tick labels, legend
};

// The look a resource name stands for; nothing for an unknown name.
std::optional<ChartAppearance> appearanceByResource(const QString& resourceName);
// The curve colours a resource name stands for (8 to 12); empty for an unknown name.
QList<QColor> paletteByResource(const QString& resourceName);

// Lines below this contrast with the plot area are hard to follow (WCAG's
// level for graphics).
inline constexpr double kReadableLineContrast = 3.0;
// WCAG's contrast ratio of two colours, 1 to 21.
double contrastRatio(const QColor& a, const QColor& b);
// The colour with its hue and saturation, made darker on a light plot area or
// lighter on a dark one until its lines stand out; unchanged when they do.
QColor readableOn(const QColor& colour, const QColor& plotArea);

// 300 colours, red, green and blue each the C runtime's rand() % 256 in that
// order; the generator is not seeded here.
inline constexpr int kRandomColourCount = 300;
std::vector<QColor> randomColourTable();

}  // namespace zelko::ui
