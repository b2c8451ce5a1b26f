#include <gtest/gtest.h>

#include "material/heat.h"
#include "material/physprops.h"
#include "material/thermaltables.h"
#include "base/textfile.h"

namespace zelko {
namespace {

std::vector<double> temperaturesOf(const PropertyTable& table)
{
    std::vector<double> out;
    for (const TablePoint& p : table)
        out.push_back(p.temperature);
    return out;
}

TEST(ThermalPresets, ReplaceBothTablesWithEightPoints)
{
    PropertyTable k = {{5, 5}}, rc;
    applyThermalPreset(MaterialPreset::Steel, k, rc);
    ASSERT_EQ(k.size(), 8u);
    EXPECT_EQ(temperaturesOf(k), (std::vector<double>{20, 200, 800, 900, 1000, 1100, 1200, 1300}));
    EXPECT_EQ(k[7], (TablePoint{1300, 0.0333}));
    EXPECT_EQ(rc[4], (TablePoint{1000, 0.005224}));
    applyThermalPreset(MaterialPreset::Aluminum, k, rc);
    EXPECT_EQ(k[2], (TablePoint{800, 0.10862}));
    EXPECT_EQ(rc[7], (TablePoint{1300, 0.005084}));
}

TEST(ThermalEdits, AddComparesTemperaturesAsEightDecimalText)
{
    PropertyTable table;
    EXPECT_TRUE(addThermalPoint(table, {500, 1}).changed);
    EXPECT_TRUE(addThermalPoint(table, {20, 2}).changed);
    // Differs only beyond the eighth decimal: refused without a message.
    const ThermalEdit same = addThermalPoint(table, {500.000000001, 3});
    EXPECT_FALSE(same.changed);
    EXPECT_TRUE(same.message.empty());
    EXPECT_TRUE(addThermalPoint(table, {500.00000001, 4}).changed);
    EXPECT_EQ(temperaturesOf(table), (std::vector<double>{20, 500, 500.00000001}));
}

TEST(ThermalEdits, ModifyReportsInEachTablesOwnWords)
{
    PropertyTable table = {{20, 1}, {850.4, 2}, {1000, 3}};
    EXPECT_EQ(modifyThermalPoint(table, ThermalTable::Conductivity, -1, {1, 1}).message, "항목을 선택하세요.");
    EXPECT_EQ(modifyThermalPoint(table, ThermalTable::HeatCapacity, 3, {1, 1}).message, "항목을 선택하여 주십시오.");
    // The clash names the temperature with one decimal for conductivity, none for heat capacity.
    EXPECT_EQ(modifyThermalPoint(table, ThermalTable::Conductivity, 0, {850.4, 9}).message, "850.4 ℃는 이미 존재합니다.");
    EXPECT_EQ(modifyThermalPoint(table, ThermalTable::HeatCapacity, 0, {850.4, 9}).message, "850 ℃는 이미 존재합니다.");
    EXPECT_EQ(table, (PropertyTable{{20, 1}, {850.4, 2}, {1000, 3}}));

    // A row may keep its own temperature; the table is sorted again after a change.
    EXPECT_TRUE(modifyThermalPoint(table, ThermalTable::Conductivity, 1, {850.4, 7}).changed);
    EXPECT_TRUE(modifyThermalPoint(table, ThermalTable::Conductivity, 0, {1200, 8}).changed);
    EXPECT_EQ(table, (PropertyTable{{850.4, 7}, {1000, 3}, {1200, 8}}));

    EXPECT_EQ(removeThermalPoint(table, ThermalTable::HeatCapacity, 5).message, "항목을 선택하여 주십시오.");
    EXPECT_TRUE(removeThermalPoint(table, ThermalTable::HeatCapacity, 1).changed);
    EXPECT_EQ(temperaturesOf(table), (std::vector<double>{850.4, 1200}));
    EXPECT_EQ(thermalEditedCellText(0.0255), "0.02550000");
    EXPECT_EQ(thermalRedrawCellText(0.0255), "0.0255000");
}

// A JMatPro export: a tab-separated title line, then rows of twelve numbers.
std::string physProps(const std::vector<double>& temperatures, bool finalLineEnd)
{
    std::string text = "T (C)\tDensity-TOTAL\tA\tThermal conductivity-TOTAL\tB\tC\tD\tE\tF\tG\tH\t"
                       "Specific heat (J/(g K))\n";
    for (std::size_t i = 0; i < temperatures.size(); ++i) {
        const double t = temperatures[i];
        text += formatText("%g\t%g\t0\t%g\t0\t0\t0\t0\t0\t0\t0\t%g", t, 7.8 - t / 10000, 30 + t / 100, 0.45 + t / 10000);
        if (i + 1 < temperatures.size() || finalLineEnd)
            text += "\n";
    }
    return text;
}

TEST(PhysPropsImport, SelectsHundredsAndAppendsTheColdestRowLast)
{
    std::vector<double> temperatures;
    for (int t = 1500; t >= 50; t -= 50)
        temperatures.push_back(t);
    temperatures.push_back(25);
    const PhysPropsImport result = importPhysProps(physProps(temperatures, false));
    ASSERT_TRUE(result.ok) << result.message;
    std::vector<double> expected;
    for (int t = 1500; t >= 100; t -= 100)
        expected.push_back(t);
    expected.push_back(25);
    EXPECT_EQ(temperaturesOf(result.conductivity), expected);
    EXPECT_EQ(temperaturesOf(result.heatCapacity), expected);
    // W/(m K) to W/(mm C); g/cm^3 times J/(g K) to J/(mm^3 C).
    EXPECT_DOUBLE_EQ(result.conductivity.back().value, (30 + 0.25) / 1000);
    EXPECT_DOUBLE_EQ(result.heatCapacity.back().value, (7.8 - 0.0025) * (0.45 + 0.0025) / 1000);
}

TEST(PhysPropsImport, RepeatsRowsTheWayTheRowReaderDoes)
{
    // The coldest row is a multiple of 100, so it is listed twice.
    EXPECT_EQ(temperaturesOf(importPhysProps(physProps({300, 250, 100}, false)).conductivity),
              (std::vector<double>{300, 100, 100}));
    // A final line end makes the row reader store the last row a second time.
    EXPECT_EQ(temperaturesOf(importPhysProps(physProps({300, 250, 100}, true)).conductivity),
              (std::vector<double>{300, 100, 100, 100}));
    EXPECT_EQ(temperaturesOf(importPhysProps(physProps({350, 150}, true)).conductivity),
              (std::vector<double>{150}));
    // Rows may run over line ends: twelve numbers make a row wherever the breaks fall.
    std::string wrapped = physProps({200}, true);
    wrapped += "100 7.8 0 30\n0 0 0 0 0 0 0 0.5";
    EXPECT_EQ(temperaturesOf(importPhysProps(wrapped).conductivity), (std::vector<double>{200, 100, 100}));
}

TEST(PhysPropsImport, RefusesFilesItCannotReadWithAMessage)
{
    const std::string rows = "\n20 7.8 0 30 0 0 0 0 0 0 0 0.45\n";
    EXPECT_EQ(importPhysProps("T (C)\tDensity-TOTAL\tThermal conductivity-TOTAL" + rows).message,
              "The PhysProps file has no column \"Specific heat (J/(g K))\".");
    EXPECT_EQ(importPhysProps("T (C)\tT (C)\tDensity-TOTAL\tThermal conductivity-TOTAL\tSpecific heat (J/(g K))" + rows)
                  .message,
              "The PhysProps file has more than one column \"T (C)\".");
    EXPECT_FALSE(importPhysProps("").ok);
    EXPECT_FALSE(
        importPhysProps("T (C)\tDensity-TOTAL\tThermal conductivity-TOTAL\tSpecific heat (J/(g K))\nno numbers\n").ok);
    EXPECT_FALSE(importPhysProps(std::string("\x00\xff\x01\t\n", 5)).ok);
}

// The second of three rows replaced, so the fault sits on line 3 of the file.
std::string withSecondRow(const std::string& row, std::string_view lineEnd = "\n")
{
    std::string text = physProps({300, 200, 100}, true);
    const std::size_t second = text.find('\n', text.find('\n') + 1) + 1;
    text.replace(second, text.find('\n', second) - second, row);
    std::string ended;
    for (const char c : text)
        ended += c == '\n' ? std::string(lineEnd) : std::string(1, c);
    return ended;
}

TEST(PhysPropsImport, RefusesNumbersNoTableCanHoldAndNamesTheLine)
{
    const auto refusal = [](const std::string& text) {
        const PhysPropsImport result = importPhysProps(text);
        EXPECT_FALSE(result.ok);
        EXPECT_TRUE(result.conductivity.empty());
        return result.message;
    };
    // An export from a German or French desktop, with Windows line ends or without.
    for (const std::string_view lineEnd : {"\n", "\r\n"}) {
        EXPECT_EQ(refusal(withSecondRow("200\t7,8\t0\t32\t0\t0\t0\t0\t0\t0\t0\t0,47", lineEnd)),
                  "Line 3 of the PhysProps file holds \",8\" after a number: the file uses decimal commas; "
                  "export it with decimal points.");
    }
    // Beyond a double, and what a failed calculation writes.
    EXPECT_EQ(refusal(withSecondRow("200 7.8 0 1e400 0 0 0 0 0 0 0 0.5")),
              "Line 3 of the PhysProps file holds a number that is not finite (read as inf).");
    EXPECT_EQ(refusal(withSecondRow("200 7.8 0 30 0 0 0 0 0 0 0 nan")),
              "Line 3 of the PhysProps file holds a number that is not finite (read as nan).");
    EXPECT_EQ(refusal(withSecondRow("200 -Infinity 0 30 0 0 0 0 0 0 0 0.5")),
              "Line 3 of the PhysProps file holds a number that is not finite (read as -inf).");
    // Twelve numbers spread over two lines: the line named is the one the bad number stands on.
    EXPECT_EQ(refusal(withSecondRow("200 7.8 0 30 0 0\n0 0 0 0 0 NaN")),
              "Line 4 of the PhysProps file holds a number that is not finite (read as nan).");
    // A column JMatPro left blank as text, and a footer under the rows.
    EXPECT_EQ(refusal(withSecondRow("200 7.8 0 n/a 0 0 0 0 0 0 0 0.5")),
              "Line 3 of the PhysProps file holds \"n/a\" where a number belongs.");
    EXPECT_EQ(refusal(physProps({200, 100}, true) + "End of data\n"),
              "Line 4 of the PhysProps file holds \"End\" where a number belongs.");
    // Each number finite, but density times specific heat is not.
    EXPECT_EQ(refusal(withSecondRow("200 1e300 0 30 0 0 0 0 0 0 0 1e300")),
              "The row ending on line 3 of the PhysProps file gives a conductivity or heat capacity that is not finite.");
    // A row the selection would skip is refused all the same: no table holds it.
    EXPECT_NE(refusal(withSecondRow("250 7.8 0 30 0 0 0 0 0 0 0 nan")), "");
}

TEST(PhysPropsImport, KeepsTheLenientReadingsThatAreNoNonsense)
{
    // Numbers written with exponents, signs and no leading digit are numbers.
    const PhysPropsImport exponents = importPhysProps(withSecondRow("2E2 +7.8 0 3.2e1 0 0 0 0 0 0 0 .47"));
    ASSERT_TRUE(exponents.ok) << exponents.message;
    EXPECT_EQ(temperaturesOf(exponents.conductivity), (std::vector<double>{300, 200, 100, 100, 100}));
    EXPECT_DOUBLE_EQ(exponents.conductivity[1].value, 0.032);
    // A last row cut short takes the missing numbers from the row before, as the row reader always did.
    const PhysPropsImport cut = importPhysProps(physProps({300, 200}, true) + "100 7.9");
    ASSERT_TRUE(cut.ok) << cut.message;
    EXPECT_EQ(temperaturesOf(cut.conductivity), (std::vector<double>{300, 200, 100, 100}));
    EXPECT_DOUBLE_EQ(cut.conductivity.back().value, (30 + 2.0) / 1000);
}

}  // namespace
}  // namespace zelko

namespace zelko {
namespace {

TEST(HeatTable, TokenReaderReadsBothLayouts)
{
    HEAT written;
    written.points = {{20, 0.0255}, {1300, 0.0333}};
    for (const bool library : {false, true}) {
        SCOPED_TRACE(library);
        TextWriter out;
        if (library)
            written.writeLibraryBlock(out, 6);
        else
            written.writeMaterialBlock(out);
        HEAT read;
        TextReader in = TextReader::fromText(out.text());
        EXPECT_TRUE(read.readLibraryBlock(in));
        EXPECT_EQ(read.points, written.points);
    }
    HEAT negative;
    negative.points = {{1, 1}};
    TextReader in = TextReader::fromText(u" -5\n 20 0.1\n");
    negative.readLibraryBlock(in);
    EXPECT_TRUE(negative.points.empty());  // a count below 1 reads no points
    TextReader cut = TextReader::fromText(u" 3\n 20 0.1\n 30");
    negative.readLibraryBlock(cut);
    EXPECT_EQ(negative.points, (PropertyTable{{20, 0.1}, {30, 0}, {0, 0}}));  // the points not in the file are zero
}

}  // namespace
}  // namespace zelko
