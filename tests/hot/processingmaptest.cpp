#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <functional>
#include <random>
#include <thread>

#include <signal.h>

#include "base/fileio.h"
#include "hot/gnuplot.h"
#include "hot/processingmap.h"
#include "temporaryfolder.h"
#include "testutil.h"

namespace zelko {
namespace {

// m from differences of ln σ on a uniform grid: exact for a power law up to rounding.
constexpr double kSensitivityTolerance = 1e-9;

// A model with a law written out, so the map's m and ξ are known in closed form.
class LawModel : public PLASTIC_HOT {
public:
    explicit LawModel(std::function<double(double, double, double)> law) : law_(std::move(law))
    {
        temperatures = {1000, 1100};
        strainRates = {0.01, 1};
        strains = {0.2, 0.4};
    }
    double evaluate(double strain, double rate, double T) const override { return law_(strain, rate, T); }

private:
    std::function<double(double, double, double)> law_;
};

ProcessingMap mapOf(const PLASTIC_HOT& model)
{
    std::string error;
    auto map = computeProcessingMap(model, std::nullopt, error);
    EXPECT_TRUE(map) << error;
    return std::move(*map);
}

TEST(ProcessingMapGrid, FiftyNodesAnIntervalWithoutTheLastTestValues)
{
    LawModel model([](double, double rate, double) { return 100 * std::pow(rate, 0.2); });
    model.strainRates = {0.1, 1};
    const ProcessingMap map = mapOf(model);
    ASSERT_EQ(map.temperatureNodes(), 50u);
    ASSERT_EQ(map.rateNodes(), 50u);
    EXPECT_EQ(map.temperatures.front(), 1000.0);
    EXPECT_NEAR(map.temperatures.back(), 1000.0 + 49.0 / 50.0 * 100.0, 1e-12);
    EXPECT_EQ(map.logRates.front(), -1.0);
    EXPECT_NEAR(map.logRates.back(), -1.0 + 49.0 / 50.0, 1e-12);

    model.temperatures = {1000, 1050, 1100};
    model.strainRates = {0.001, 0.01, 0.1, 1};
    const ProcessingMap larger = mapOf(model);
    EXPECT_EQ(larger.temperatureNodes(), 100u);
    EXPECT_EQ(larger.rateNodes(), 150u);
    EXPECT_NEAR(larger.logRates[50], -2.0, 1e-12);

    // One temperature: no temperature node, a file with its header alone.
    model.temperatures = {1000};
    const ProcessingMap none = mapOf(model);
    EXPECT_EQ(none.temperatureNodes(), 0u);
    EXPECT_EQ(test::textOf(processingMapData(none, 0)), "# Temperature, Strain rate, power, instability\n");
}

TEST(ProcessingMapValues, PowerLawGivesItsExponentEverywhere)
{
    const LawModel model([](double e, double rate, double T) { return (2000 - T) * (1 + e) * std::pow(rate, 0.25); });
    const ProcessingMap map = mapOf(model);
    const double eta = 200 * 0.25 / 1.25;
    for (std::size_t j = 0; j < map.rateNodes(); j += 7)
        for (std::size_t i = 0; i < map.temperatureNodes(); i += 11)
            for (std::size_t k = 0; k < 2; ++k) {
                EXPECT_NEAR(map.efficiency(j, i, k), eta, eta * kSensitivityTolerance);
                EXPECT_EQ(map.flag(j, i, k), kStable);  // ξ = m > 0
            }
}

TEST(ProcessingMapValues, AConstantSensitivityDrawsNoContourBetweenTwoLevels)
{
    // m = 0.25 everywhere: η = 40 % flat, on no level of step 15 (30, 45), on one of step 10.
    const LawModel flat([](double, double rate, double T) { return (2000 - T) * std::pow(rate, 0.25); });
    const EfficiencyRange range = efficiencyRange(mapOf(flat), 0);
    ASSERT_FALSE(range.empty);
    EXPECT_NEAR(range.min, 40.0, 0.5);
    EXPECT_NEAR(range.max, 40.0, 0.5);
    EXPECT_TRUE(drawsNoContour({range.min, range.max, false}, 15.0));
    EXPECT_FALSE(drawsNoContour({39.0, 41.0, false}, 10.0));
    EXPECT_FALSE(drawsNoContour({5.0, 60.0, false}, 15.0));
    EXPECT_TRUE(drawsNoContour({101.0, 140.0, false}, 10.0));  // above the last level
    EXPECT_TRUE(drawsNoContour({}, 10.0));
    EXPECT_TRUE(efficiencyRange(mapOf(flat), 9).empty);
}

TEST(ProcessingMapValues, StressIsLinearInTemperatureBetweenTestTemperatures)
{
    const auto law = [](double, double rate, double T) { return std::exp(-T / 100) * 1e6 * std::pow(rate, 0.1); };
    const LawModel model(law);
    const ProcessingMap map = mapOf(model);
    const std::size_t i = 25;  // 1050 C, halfway
    const double rate = std::pow(10.0, map.logRates[3]);
    EXPECT_NEAR(map.stress(3, i, 0), (law(0, rate, 1000) + law(0, rate, 1100)) / 2, 1e-9);
    EXPECT_GT(map.stress(3, i, 0), law(0, rate, 1050));  // the chord lies above the convex law
}

TEST(ProcessingMapValues, FlagsForFallingStressAndForUnstableFlow)
{
    // Stress falling with rate: m < 0, flagged -1.
    const ProcessingMap falling = mapOf(LawModel([](double, double rate, double) { return 100 * std::pow(rate, -0.1); }));
    EXPECT_EQ(falling.flag(10, 10, 0), kNoSensitivity);
    EXPECT_LT(falling.efficiency(10, 10, 0), 0.0);

    // ln σ = b·x − c·x² in x = ln ε̇: m = b − 2c·x, and ξ = −2c / (m (m + 1)) + m.
    const double b = 0.05, c = 0.05;
    const ProcessingMap curved = mapOf(LawModel([=](double, double rate, double) {
        const double x = std::log(rate);
        return 100 * std::exp(b * x - c * x * x);
    }));
    const auto xi = [=](double x) {
        const double m = b - 2 * c * x;
        return -2 * c / (m * (m + 1)) + m;
    };
    const std::size_t last = curved.rateNodes() - 1;
    // At 1/s ξ is far below 0; at 0.01/s far above.
    ASSERT_LT(xi(std::log(10.0) * curved.logRates[last - 3]), -0.5);
    ASSERT_GT(xi(std::log(10.0) * curved.logRates[0]), 0.3);
    EXPECT_EQ(curved.flag(last - 3, 0, 0), kUnstable);
    EXPECT_EQ(curved.flag(0, 0, 0), kStable);
    // Everywhere the sign of ξ is clear, the flag has it.
    int checked = 0;
    for (std::size_t j = 0; j + 3 < curved.rateNodes(); ++j) {
        const double value = xi(std::log(10.0) * curved.logRates[j + 1]);
        if (std::fabs(value) < 0.02)
            continue;
        EXPECT_EQ(curved.flag(j, 7, 0), value < 0 ? kUnstable : kStable) << j << " " << value;
        ++checked;
    }
    EXPECT_GT(checked, 40);
    // The last two rate nodes copy m, the last three the flag, from the node before.
    EXPECT_EQ(curved.efficiency(last, 5, 1), curved.efficiency(last - 2, 5, 1));
    EXPECT_NE(curved.efficiency(last - 2, 5, 1), curved.efficiency(last - 3, 5, 1));
    EXPECT_EQ(curved.flag(last, 5, 1), curved.flag(last - 3, 5, 1));
}

TEST(ProcessingMapValues, InstabilityComparesEachRateNodeWithTheNext)
{
    // m is 0.2 on every rate interval but a few; ξ of node j takes m of nodes j
    // and j + 1: ξ = (ln(m₊/(m₊ + 1)) − ln(m/(m + 1)))/Δln ε̇ + m, Δln ε̇ = 0.04·ln 10.
    //  - m 1.0 then 0.85 (nodes 10, 11): ξ = −0.918 + 1.0 > 0 at node 10, where
    //    adding the next node's m instead would give −0.068; node 11 sees m fall
    //    to 0.2 (ξ ≈ −10): unstable;
    //  - m 0.01 at node 21: node 20 sees m fall (ξ ≈ −30), node 21 sees it rise;
    //  - m below 0 at node 34: it and node 33 have no sensitivity.
    constexpr std::size_t kSlow = 10, kDrop = 21, kFall = 34;
    const auto sensitivity = [](std::size_t j) {
        return j == kSlow ? 1.0 : j == kSlow + 1 ? 0.85 : j == kDrop ? 0.01 : j == kFall ? -0.1 : 0.2;
    };
    LawModel model([&](double, double rate, double) {
        // Rates 0.01 to 1 in 50 nodes: node j is at log10 rate −2 + 0.04·j.
        const auto node = static_cast<std::size_t>(std::lround((std::log10(rate) + 2.0) / 0.04));
        double lnStress = std::log(100.0);
        for (std::size_t s = 0; s < node; ++s)
            lnStress += sensitivity(s) * 0.04 * std::log(10.0);
        return std::exp(lnStress);
    });
    const ProcessingMap map = mapOf(model);
    ASSERT_EQ(map.rateNodes(), 50u);
    for (std::size_t j = 0; j + 3 < map.rateNodes(); ++j)
        for (const std::size_t i : {0u, 33u}) {
            const MapFlag expected = j == kFall || j + 1 == kFall        ? kNoSensitivity
                                     : j + 1 == kDrop || j == kSlow + 1 ? kUnstable
                                                                         : kStable;
            EXPECT_NEAR(map.efficiency(j, i, 1), 200 * sensitivity(j) / (sensitivity(j) + 1), 1e-9) << j;
            EXPECT_EQ(map.flag(j, i, 1), expected) << j;
        }
}

TEST(ProcessingMapValues, ProgressAndAStopWithinOneRateNode)
{
    const LawModel model([](double, double rate, double) { return 100 * std::pow(rate, 0.2); });
    std::vector<int> progress;
    std::string error;
    ASSERT_TRUE(computeProcessingMap(model, std::nullopt, error, {[&](int v) { progress.push_back(v); }, {}}));
    EXPECT_TRUE(std::is_sorted(progress.begin(), progress.end()));
    EXPECT_EQ(progress.front(), 0);
    EXPECT_EQ(progress.back(), 100);

    std::stop_source stop;
    progress.clear();
    const RunControl control{[&](int v) {
                                 progress.push_back(v);
                                 stop.request_stop();
                             },
                             stop.get_token()};
    EXPECT_FALSE(computeProcessingMap(model, std::nullopt, error, control));
    EXPECT_EQ(error, kRunCancelled);
    EXPECT_EQ(progress, std::vector<int>{0});
}

TEST(ProcessingMapValues, NoStressNoSensitivityAndLimits)
{
    const ProcessingMap map = mapOf(LawModel([](double e, double rate, double) { return e > 0.3 ? 0.0 * rate : NAN; }));
    EXPECT_EQ(map.efficiency(4, 4, 0), 0.0);
    EXPECT_EQ(map.flag(4, 4, 1), kNoSensitivity);
    const std::string text = test::textOf(processingMapData(map, 0));
    EXPECT_EQ(text.find("nan"), std::string::npos);

    std::string error;
    LawModel bad([](double, double, double) { return 1.0; });
    bad.strainRates = {0.0, 1.0};
    EXPECT_FALSE(computeProcessingMap(bad, std::nullopt, error));
    EXPECT_NE(error.find("above 0"), std::string::npos);
    LawModel large([](double, double, double) { return 1.0; });
    large.temperatures.assign(30, 0);
    large.strainRates.assign(150, 1);
    for (std::size_t i = 0; i < 30; ++i)
        large.temperatures[i] = 900 + 10.0 * i;
    for (std::size_t r = 0; r < 150; ++r)
        large.strainRates[r] = 0.001 * (r + 1);
    large.strains.assign(15, 0.1);
    EXPECT_FALSE(computeProcessingMap(large, std::nullopt, error));  // 1450 x 7450 x 15 entries
    EXPECT_TRUE(computeProcessingMap(large, 3, error));              // one strain is within bounds
}

TEST(ProcessingMapFiles, PrintfWidthsAndBlocks)
{
    std::mt19937_64 generator(70);
    std::uniform_real_distribution<double> unit(-1.0, 1.0);
    std::vector<double> values = {0.0, -0.0, 0.03125, -0.03125, 0.00005, 1.00005, -0.00004, 0.99995, 1e11, -123.45675,
                                  5e-5, 2.5e-5, 1.5e-4, 99999.99995};
    for (int i = 0; i < 200000; ++i)
        values.push_back(unit(generator) * std::pow(10.0, 6 * unit(generator)));
    for (int k = 0; k < 20000; ++k)  // exact and near ties at the fourth decimal
        values.push_back((k + 0.5) / 10000.0 + (k % 3 - 1) * 1e-17);
    for (const double v : values) {
        std::string line;
        appendFixed10(line, v);
        ASSERT_EQ(line, formatText("%10.4f", v)) << v;
    }

    const LawModel model([](double, double rate, double) { return 100 * std::pow(rate, 0.25); });
    std::string error;
    const auto map = computeProcessingMap(model, 1, error);
    const TextWriter data = processingMapData(*map, 0);
    const auto lines = split(std::string_view(test::textOf(data)), "\n");
    ASSERT_EQ(lines.size(), 1u + 50u * 50u);  // empty lines are not pieces
    EXPECT_EQ(lines[1], " 1000.0000    -2.0000    40.0000     1.0000");
    EXPECT_EQ(lines[50], " 1000.0000    -0.0400    40.0000     1.0000");
    EXPECT_EQ(lines[51], " 1002.0000    -2.0000    40.0000     1.0000");
    // 8-bit text with CRLF and an empty line after each temperature node.
    const std::string bytes = data.bytes();
    EXPECT_EQ(bytes.substr(0, 2), "# ");
    EXPECT_NE(bytes.find("40.0000     1.0000\r\n\r\n 1002.0000"), std::string::npos);
}

TEST(ProcessingMapFiles, ScriptLines)
{
    PLASTIC_HOT dataSet;
    dataSet.temperatures = {1050, 1250};
    dataSet.strainRates = {0.001, 5};
    EXPECT_EQ(test::textOf(processingMapScript(dataSet, 2.5, "/tmp/Z'S/processing_map.dat")),
              "reset\n"
              "set multiplot layout 1, 2 title \"Processing map\" font \",20\" offset 0, -2\n"
              "unset key\n"
              "\n"
              "set title \"Power dissipation map\" font \",16\"\n"
              "set xlabel \"Temperature\" font \",14\"\n"
              "set ylabel \"log (strain rate)\" font \",14\" offset -2\n"
              "set pm3d map\n"
              "unset surface\n"
              "set size square\n"
              "set contour base\n"
              "set cntrlabel start 10 interval 500 font \",11\"\n"
              "set cntrparam levels incremental  0, 2.5, 100\n"
              "set xtics autofreq 50\n"
              "set xtics offset 0\n"
              "set ytics autofreq 1\n"
              "set ytics offset 0\n"
              "splot [1050:1250][-3:0.69897][0:100]'/tmp/Z''S/processing_map.dat' using 1:2:3 with lines palette, \\\n"
              "              '/tmp/Z''S/processing_map.dat' using 1:2:3 with labels \n"
              "\n"
              "set title \"Instability map\" font \",16\"\n"
              "set pm3d map\n"
              "set surface\n"
              "set size square\n"
              "set contour base\n"
              "set cntrlabel start 10 interval 500 font \",11\"\n"
              "set cbrange [: 0 ] noreverse writeback\n"
              "splot [1050:1250][-3:0.69897][:0]'/tmp/Z''S/processing_map.dat' using 1:2:4\n"
              "unset multiplot\n");
}

TEST(ProcessingMapFiles, APictureIsTitledAndItsColourBarsLabelled)
{
    PLASTIC_HOT dataSet;
    dataSet.temperatures = {1050, 1250};
    dataSet.strainRates = {0.001, 5};
    const std::string plain = test::textOf(processingMapScript(dataSet, 2.5, "map.dat"));
    const std::string titled
        = test::textOf(processingMapScript(dataSet, 2.5, "map.dat", MapPictureLabels{"Steel 'A' - model 161, true strain 0.5"}));
    EXPECT_EQ(titled.find("\"Processing map\""), std::string::npos);
    EXPECT_NE(titled.find("set multiplot layout 1, 2 title 'Steel ''A'' - model 161, true strain 0.5' font"),
              std::string::npos);
    // One label before each map's splot, in that order.
    const auto efficiency = titled.find("set cblabel \"efficiency (%)\"");
    const auto flag = titled.find("set cblabel \"-2 unstable, -1 no rate sensitivity\"");
    const auto secondMap = titled.find("set title \"Instability map\"");
    ASSERT_NE(efficiency, std::string::npos);
    ASSERT_NE(flag, std::string::npos);
    EXPECT_LT(efficiency, titled.find("splot"));
    EXPECT_LT(secondMap, flag);
    // Everything else is the script as written for the exchange folder.
    EXPECT_EQ(titled.substr(titled.find("unset key")), plain.substr(plain.find("unset key")).insert(
        plain.substr(plain.find("unset key")).find("splot [1050:1250][-3:0.69897][:0]"),
        "set cblabel \"-2 unstable, -1 no rate sensitivity\" font \",12\"\n"));
}

using MapFolderTest = test::TemporaryFolderTest;

LawModel curvedModel()
{
    return LawModel([](double e, double rate, double T) {
        const double x = std::log(rate);
        return (2000 - T) * (1 + e) * std::exp(0.05 * x - 0.02 * x * x);
    });
}

bool isPng(const std::filesystem::path& path)
{
    std::string error;
    return readFileBytes(path, error).value_or(std::string()).substr(0, 8) == "\x89PNG\r\n\x1a\n";
}

// The files of the folder whose names begin so.
std::vector<std::string> filesStarting(const std::filesystem::path& folder, std::string_view prefix)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if (entry.path().filename().string().starts_with(prefix))
            names.push_back(entry.path().filename().string());
    return names;
}

TEST_F(MapFolderTest, WritesBothFilesAndGnuplotDrawsThem)
{
    const LawModel model = curvedModel();
    std::string error;
    const auto map = computeProcessingMap(model, 1, error);
    ASSERT_TRUE(map) << error;
    const auto files = writeProcessingMapFiles(*map, 0, model, 5.0, folder_, error);
    ASSERT_TRUE(files) << error;
    EXPECT_EQ(files->data, folder_ / "processing_map.dat");
    EXPECT_EQ(files->script, folder_ / "processing_map.txt");
    EXPECT_TRUE(test::sameBytes(*readFileBytes(files->data, error), processingMapData(*map, 0).bytes()));
    const std::string script = *readFileBytes(files->script, error);
    EXPECT_NE(script.find("'" + files->data.string() + "' using 1:2:4\r\n"), std::string::npos);

    const std::filesystem::path png = folder_ / "map.png";
    ASSERT_EQ(renderGnuplotPng({files->script, png, 800, 400}, environment_, {}, error), RenderEnd::Drawn) << error;
    EXPECT_TRUE(isPng(png));

    // A script gnuplot rejects: its complaint, and no picture.
    ASSERT_TRUE(saveFileAtomically(folder_ / "bad.txt", "plot sin(x) with nothing\n", error));
    EXPECT_EQ(renderGnuplotPng({folder_ / "bad.txt", folder_ / "bad.png", 100, 100}, environment_, {}, error),
              RenderEnd::Failed);
    EXPECT_TRUE(error.starts_with("gnuplot failed: ")) << error;
    EXPECT_NE(error.find("line 1: unrecognized plot type"), std::string::npos) << error;
    EXPECT_FALSE(std::filesystem::exists(folder_ / "bad.png"));

    Environment missing = environment_;
    missing.gnuplotProgram = (folder_ / "no-such-gnuplot").string();
    EXPECT_EQ(renderGnuplotPng({files->script, folder_ / "none.png", 100, 100}, missing, {}, error), RenderEnd::Failed);
    EXPECT_NE(error.find("gnuplot not found"), std::string::npos) << error;
    EXPECT_TRUE(filesStarting(folder_, "gnuplot_render").empty());  // its pictures are gone

    // A map without sample strains writes nothing.
    PLASTIC_HOT noStrains;
    noStrains.temperatures = {1000, 1100};
    noStrains.strainRates = {0.1, 1};
    const auto empty = computeProcessingMap(noStrains, std::nullopt, error);
    ASSERT_TRUE(empty);
    EXPECT_FALSE(writeProcessingMapFiles(*empty, 0, noStrains, 5.0, folder_ / "other", error));
    EXPECT_EQ(error, "no sample strains");
    EXPECT_FALSE(std::filesystem::exists(folder_ / "other"));
}

TEST_F(MapFolderTest, AMapDrawsFromFilesOfItsOwn)
{
    const LawModel model = curvedModel();
    std::string error;
    const auto map = computeProcessingMap(model, std::nullopt, error);
    ASSERT_TRUE(map);
    ASSERT_TRUE(std::filesystem::create_directories(folder_));
    // The described files hold another map: the picture does not read them.
    ASSERT_TRUE(saveFileAtomically(folder_ / "processing_map.txt", "plot sin(x) with nothing\n", error));
    const PngRequest picture{{}, folder_ / "map.png", 600, 300};
    ASSERT_EQ(renderProcessingMapPng(*map, 1, model, 5.0, picture, environment_, {}, error), RenderEnd::Drawn) << error;
    EXPECT_TRUE(isPng(folder_ / "map.png"));
    EXPECT_EQ(filesStarting(folder_, "processing_map"), std::vector<std::string>{"processing_map.txt"});
}

// A gnuplot stand-in: takes its picture's name from its commands, writes the
// commands there, and then sleeps, as a stuck gnuplot would.
std::filesystem::path fakeGnuplot(const std::filesystem::path& folder, std::string_view seconds)
{
    const std::filesystem::path program = folder / ("fake-gnuplot-" + std::string(seconds));
    std::string error;
    EXPECT_TRUE(saveFileAtomically(program,
                                   "#!/bin/sh\n"
                                   "echo $$ > \"$0.pid\"\n"
                                   "commands=$(cat)\n"
                                   "out=$(printf '%s\\n' \"$commands\" | sed -n \"s/^set output '\\(.*\\)'$/\\1/p\")\n"
                                   "printf '%s\\n' \"$commands\" > \"$out\"\n"
                                   "sleep "
                                       + std::string(seconds) + "\n",
                                   error));
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    return program;
}

bool running(const std::filesystem::path& program)
{
    std::string error;
    const auto pid = readFileBytes(program.string() + ".pid", error);
    return pid && ::kill(std::stoi(*pid), 0) == 0;
}

TEST_F(MapFolderTest, AStuckGnuplotIsKilledAtTheTimeLimit)
{
    ASSERT_TRUE(std::filesystem::create_directories(folder_));
    environment_.gnuplotProgram = fakeGnuplot(folder_, "30").string();
    std::string error;
    const PngRequest request{folder_ / "script.txt", folder_ / "map.png", 100, 100, std::chrono::milliseconds(300)};
    EXPECT_EQ(renderGnuplotPng(request, environment_, {}, error), RenderEnd::TimedOut);
    EXPECT_EQ(error, "gnuplot did not finish within 0.3 s and was stopped");
    EXPECT_FALSE(running(environment_.gnuplotProgram));
    EXPECT_FALSE(std::filesystem::exists(folder_ / "map.png"));
    EXPECT_TRUE(filesStarting(folder_, "gnuplot_render").empty());
}

TEST_F(MapFolderTest, AStopKillsGnuplotWithin50Milliseconds)
{
    ASSERT_TRUE(std::filesystem::create_directories(folder_));
    environment_.gnuplotProgram = fakeGnuplot(folder_, "30").string();
    std::stop_source stop;
    std::atomic<RenderEnd> end = RenderEnd::Drawn;
    std::string error;
    std::thread render([&] {
        end = renderGnuplotPng({folder_ / "script.txt", folder_ / "map.png", 100, 100}, environment_,
                               {{}, stop.get_token()}, error);
    });
    // It has drawn and sleeps once its picture is there.
    while (filesStarting(folder_, "gnuplot_render").empty() && end == RenderEnd::Drawn)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    const auto requested = std::chrono::steady_clock::now();
    stop.request_stop();
    render.join();
    const auto took = std::chrono::steady_clock::now() - requested;
    EXPECT_LT(took, std::chrono::milliseconds(50));
    EXPECT_EQ(end, RenderEnd::Cancelled);
    EXPECT_EQ(error, kRunCancelled);
    EXPECT_FALSE(running(environment_.gnuplotProgram));
    EXPECT_FALSE(std::filesystem::exists(folder_ / "map.png"));
}

TEST_F(MapFolderTest, APictureTooLargeToReadIsCalledSo)
{
    ASSERT_TRUE(std::filesystem::create_directories(folder_));
    // A gnuplot asked for a picture of 20,000 x 20,000 points writes some 300 MB
    // (here a sparse file of that size).
    const std::filesystem::path program = folder_ / "large-gnuplot";
    std::string error;
    ASSERT_TRUE(saveFileAtomically(program,
                                   "#!/bin/sh\n"
                                   "out=$(sed -n \"s/^set output '\\(.*\\)'$/\\1/p\")\n"
                                   "truncate -s 300M \"$out\"\n",
                                   error));
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    environment_.gnuplotProgram = program.string();
    const PngRequest request{folder_ / "script.txt", folder_ / "map.png", 100, 100};
    EXPECT_EQ(renderGnuplotPng(request, environment_, {}, error), RenderEnd::Failed);
    EXPECT_EQ(error, "gnuplot's picture is too large (300 MB, more than 256 MB): ask for a smaller picture");
    EXPECT_FALSE(std::filesystem::exists(folder_ / "map.png"));
    EXPECT_TRUE(filesStarting(folder_, "gnuplot_render").empty());
}

TEST_F(MapFolderTest, TwoRendersAtOnceEachGetTheirOwnPicture)
{
    ASSERT_TRUE(std::filesystem::create_directories(folder_));
    // Each stand-in writes its picture at once and exits later, so both pictures
    // exist while both renders run.
    environment_.gnuplotProgram = fakeGnuplot(folder_, "0.5").string();
    std::string errors[2];
    RenderEnd ends[2];
    std::vector<std::thread> renders;
    for (int r = 0; r < 2; ++r)
        renders.emplace_back([&, r] {
            ends[r] = renderGnuplotPng({folder_ / "script.txt", folder_ / formatText("map%d.png", r), 100 + r, 100},
                                       environment_, {}, errors[r]);
        });
    for (std::thread& render : renders)
        render.join();
    for (int r = 0; r < 2; ++r) {
        ASSERT_EQ(ends[r], RenderEnd::Drawn) << errors[r];
        std::string error;
        const std::string picture = *readFileBytes(folder_ / formatText("map%d.png", r), error);
        EXPECT_NE(picture.find(formatText("set terminal pngcairo size %d,100\n", 100 + r)), std::string::npos)
            << picture;
    }
}

}  // namespace
}  // namespace zelko
