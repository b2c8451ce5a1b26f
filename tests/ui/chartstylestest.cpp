// The chart styles: the two name lists, their resource names, and colour tables
// that look like their names and keep text readable.

#include <QtTest>

#include <cstdlib>

#include "ui/chartstyles.h"

using namespace zelko::ui;

namespace {

// Text below this contrast is hard to read (WCAG's level for normal text).
constexpr double kReadableContrast = 4.5;

double contrast(const QColor& a, const QColor& b) { return contrastRatio(a, b); }

}  // namespace

class ChartStylesTest : public QObject {
    Q_OBJECT

private slots:
    void namesAreSplitAtSemicolons_data();
    void namesAreSplitAtSemicolons();
    void theListsInTheirOrder();
    void resourceNames();
    void everyNameHasItsColours();
    void palettesLookLikeTheirNames();
    void appearancesKeepTextReadable();
    void contrastOfKnownPairs();
    void linesAreMadeReadableKeepingTheirHue();
    void randomTableTakesRedGreenBlueInTurn();
};

void ChartStylesTest::namesAreSplitAtSemicolons_data()
{
    QTest::addColumn<QString>("list");
    QTest::addColumn<QStringList>("names");
    QTest::newRow("every name ends with a semicolon") << "A;B b;C;" << QStringList{"A", "B b", "C"};
    QTest::newRow("text after the last one is no name") << "A;B;tail" << QStringList{"A", "B"};
    QTest::newRow("no semicolon, no name") << "lonely" << QStringList{};
    QTest::newRow("empty list") << "" << QStringList{};
    QTest::newRow("an empty name is kept") << "A;;B;" << QStringList{"A", "", "B"};
}

void ChartStylesTest::namesAreSplitAtSemicolons()
{
    QFETCH(QString, list);
    QFETCH(QStringList, names);
    QCOMPARE(splitStyleNames(list), names);
}

void ChartStylesTest::theListsInTheirOrder()
{
    QCOMPARE(appearanceNames(), (QStringList{"Nature", "Gray", "Black"}));
    const QStringList palettes = paletteNames();
    QCOMPARE(palettes.size(), 31);
    QCOMPARE(palettes.constFirst(), QStringLiteral("Victorian"));
    QCOMPARE(palettes.at(1), QStringLiteral("Vibrant Pastel"));
    QCOMPARE(palettes.at(8), QStringLiteral("Primary Colors"));
    QCOMPARE(palettes.at(14), QStringLiteral("Nature"));
    QCOMPARE(palettes.at(16), QStringLiteral("Impresionism"));  // spelt as the list has it
    QCOMPARE(palettes.at(24), QStringLiteral("Fire"));
    QCOMPARE(palettes.constLast(), QStringLiteral("Blue"));
    QCOMPARE(palettes.join(u';') + u';', QString::fromLatin1(kPaletteList));
}

void ChartStylesTest::resourceNames()
{
    QCOMPARE(appearanceResourceName("Nature"), QStringLiteral("CHART_APPEARANCE_NATURE"));
    QCOMPARE(appearanceResourceName("Black"), QStringLiteral("CHART_APPEARANCE_BLACK"));
    QCOMPARE(paletteResourceName("Vibrant Pastel"), QStringLiteral("CHART_PALETTE_VIBRANTPASTEL"));
    QCOMPARE(paletteResourceName("Primary Colors"), QStringLiteral("CHART_PALETTE_PRIMARYCOLORS"));
    QCOMPARE(paletteResourceName("Nature"), QStringLiteral("CHART_PALETTE_NATURE"));
}

void ChartStylesTest::everyNameHasItsColours()
{
    for (const QString& name : appearanceNames())
        QVERIFY2(appearanceByResource(appearanceResourceName(name)).has_value(), qPrintable(name));
    QVERIFY(!appearanceByResource("CHART_APPEARANCE_PINK").has_value());
    QSet<QRgb> firstColours;
    for (const QString& name : paletteNames()) {
        const QList<QColor> colours = paletteByResource(paletteResourceName(name));
        QVERIFY2(colours.size() >= 8 && colours.size() <= 12, qPrintable(name));
        // no colour twice in a palette, so two curves never look alike
        QSet<QRgb> distinct;
        for (const QColor& colour : colours)
            distinct.insert(colour.rgb());
        QVERIFY2(distinct.size() == colours.size(), qPrintable(name));
        firstColours.insert(colours.constFirst().rgb() ^ colours.at(1).rgb());
    }
    // each palette is its own table, not one table under 31 names
    QCOMPARE(firstColours.size(), 31);
    QVERIFY(paletteByResource("CHART_PALETTE_VIBRANT PASTEL").isEmpty());
}

void ChartStylesTest::palettesLookLikeTheirNames()
{
    for (const QColor& colour : paletteByResource("CHART_PALETTE_GRAY"))
        QCOMPARE(colour.hsvSaturation(), 0);
    for (const QColor& colour : paletteByResource("CHART_PALETTE_FIRE")) {
        const int hue = colour.hsvHue();
        QVERIFY2(hue <= 50 || hue >= 345, qPrintable(colour.name()));  // reds, oranges, yellows
    }
    for (const QColor& colour : paletteByResource("CHART_PALETTE_BLUE")) {
        const int hue = colour.hsvHue();
        QVERIFY2(hue >= 190 && hue <= 240, qPrintable(colour.name()));
    }
    for (const QColor& colour : paletteByResource("CHART_PALETTE_GREEN")) {
        const int hue = colour.hsvHue();
        QVERIFY2(hue >= 75 && hue <= 175, qPrintable(colour.name()));
    }
    // Nature: greens and browns only
    for (const QColor& colour : paletteByResource("CHART_PALETTE_NATURE")) {
        const int hue = colour.hsvHue();
        QVERIFY2(hue >= 10 && hue <= 130, qPrintable(colour.name()));
    }
}

void ChartStylesTest::appearancesKeepTextReadable()
{
    for (const QString& name : appearanceNames()) {
        const ChartAppearance look = *appearanceByResource(appearanceResourceName(name));
        QVERIFY2(contrast(look.text, look.background) >= kReadableContrast, qPrintable(name));
        QVERIFY2(contrast(look.text, look.plotArea) >= kReadableContrast, qPrintable(name));
        // the grid shows, but fainter than the axes
        QVERIFY2(look.grid != look.plotArea, qPrintable(name));
        QVERIFY2(contrast(look.axis, look.plotArea) > contrast(look.grid, look.plotArea), qPrintable(name));
    }
    const auto nature = *appearanceByResource("CHART_APPEARANCE_NATURE");
    const auto gray = *appearanceByResource("CHART_APPEARANCE_GRAY");
    const auto black = *appearanceByResource("CHART_APPEARANCE_BLACK");
    QVERIFY(nature.background.lightness() > 200 && nature.background.red() > nature.background.blue());  // light, warm
    QCOMPARE(gray.background.hsvSaturation(), 0);
    QVERIFY(black.background.lightness() < 50 && black.text.lightness() > 200);
}

void ChartStylesTest::contrastOfKnownPairs()
{
    QCOMPARE(contrastRatio(Qt::black, Qt::white), 21.0);
    QCOMPARE(contrastRatio(Qt::white, Qt::black), 21.0);
    QCOMPARE(contrastRatio(QColor(0x336699), QColor(0x336699)), 1.0);
    // mid grey on white: WCAG's worked figure
    QVERIFY(std::abs(contrastRatio(QColor(0x777777), Qt::white) - 4.48) < 0.01);
}

void ChartStylesTest::linesAreMadeReadableKeepingTheirHue()
{
    for (const QString& appearance : appearanceNames()) {
        const QColor plot = appearanceByResource(appearanceResourceName(appearance))->plotArea;
        for (const QString& palette : paletteNames()) {
            for (const QColor& colour : paletteByResource(paletteResourceName(palette))) {
                const QColor line = readableOn(colour, plot);
                const QString what = appearance + '/' + palette + ' ' + colour.name() + " -> " + line.name();
                QVERIFY2(contrastRatio(line, plot) >= kReadableLineContrast, qPrintable(what));
                if (contrastRatio(colour, plot) >= kReadableLineContrast)
                    QVERIFY2(line == colour, qPrintable(what));  // readable colours stay as they are
                else if (colour.hslSaturation() > 40)
                    QVERIFY2(std::abs(line.hslHue() - colour.hslHue()) <= 4, qPrintable(what));
            }
        }
    }
    // darker on light, lighter on dark
    QVERIFY(readableOn(QColor(0xFFF1A8), Qt::white).lightness() < QColor(0xFFF1A8).lightness());
    QVERIFY(readableOn(QColor(0x3D3B6E), Qt::black).lightness() > QColor(0x3D3B6E).lightness());
}

void ChartStylesTest::randomTableTakesRedGreenBlueInTurn()
{
    std::srand(1);  // the state of a generator never seeded
    const std::vector<QColor> table = randomColourTable();
    QCOMPARE(int(table.size()), kRandomColourCount);
    std::srand(1);
    for (const QColor& colour : table) {
        const int red = std::rand() % 256;
        const int green = std::rand() % 256;
        const int blue = std::rand() % 256;
        QCOMPARE(colour, QColor(red, green, blue));
    }
    // the table does not seed: a second one goes on with the sequence
    QVERIFY(randomColourTable() != table);
}

QTEST_MAIN(ChartStylesTest)
#include "chartstylestest.moc"
