#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <future>
#include <numeric>
#include <thread>

#include "base/fileio.h"
#include "cold/coldfit.h"
#include "cold/coldlaws.h"
#include "cold/lawpolish.h"
#include "coldtestfolder.h"
#include "testutil.h"

namespace zelko {
namespace {

RoomOri trueRecord(double (*law)(double), std::size_t count = 80, double maxStrain = 0.2)
{
    RoomOri record;
    record.inputKind = TrueCurve;
    for (std::size_t i = 0; i < count; ++i) {
        const double e = maxStrain * static_cast<double>(i) / static_cast<double>(count - 1);
        record.curves[TrueCurve].push_back({e, law(e)});
    }
    record.neckingIndex = static_cast<int>(count) - 1;
    return record;
}

double swiftCurve(double e) { return 500.0 * std::pow(1.0 + e / 0.02, 0.22); }
double convexCurve(double e) { return 300.0 + 4000.0 * e * e; }  // wants a Swift exponent above 1

double distance(const std::vector<double>& a, const std::vector<double>& b)
{
    double sum = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        sum += (a[i] - b[i]) * (a[i] - b[i]);
    return std::sqrt(sum);
}

bool isPowerOfTwoStep(double step)
{
    const double k = -std::log2(step);
    return std::fabs(k - std::round(k)) < 1e-9 && k >= -1e-9;
}

TEST(ColdDescent, NoIterationsKeepTheStartAndReportItsError)
{
    RoomOri record = trueRecord(swiftCurve);
    record.maxIterations = 0;
    PLASTIC_1 swift(record);
    swift.fitPlain();
    const std::vector<double> start = {swiftCurve(0), 0.01, 0.2};
    EXPECT_EQ(swift.parameters, start);
    EXPECT_DOUBLE_EQ(swift.fitError, swift.objective(start, 1000));
}

TEST(ColdDescent, StepsAlongTheUnitGradientGrowingByATenthAfterEachAcceptedStep)
{
    RoomOri record = trueRecord(swiftCurve);
    record.targetError = 0.0;
    record.maxIterations = 1;
    PLASTIC_1 one(record);
    one.fitPlain();
    const std::vector<double> start = {swiftCurve(0), 0.01, 0.2};
    const double first = distance(one.parameters, start);
    EXPECT_TRUE(isPowerOfTwoStep(first)) << first;  // 1, halved until accepted
    // The first step points down the gradient.
    const std::vector<double> g = one.sumOfSquaresGradient(start);
    const double along = std::inner_product(g.begin(), g.end(), one.parameters.begin(), 0.0)
                         - std::inner_product(g.begin(), g.end(), start.begin(), 0.0);
    EXPECT_LT(along, 0.0);

    record.maxIterations = 2;
    PLASTIC_1 two(record);
    two.fitPlain();
    const double second = distance(two.parameters, one.parameters);
    EXPECT_TRUE(isPowerOfTwoStep(second / (1.1 * first))) << second / first;
    EXPECT_LT(two.fitError, one.fitError);

    // An error below the target ends the fit after its first accepted step.
    record.targetError = 1e9;
    record.maxIterations = 10000;
    PLASTIC_1 early(record);
    early.fitPlain();
    EXPECT_EQ(early.parameters, one.parameters);
}

TEST(ColdDescent, FixedParametersHoldTheirInitialValues)
{
    RoomOri record = trueRecord(swiftCurve);
    record.parameterBounds = {{480, 0, 1e4}, {0.03, 1e-6, 10}, {0.3, 0, 1}};
    record.fixedParameters = 0b111;
    PLASTIC_1 all(record);
    all.fitPlain();
    EXPECT_EQ(all.parameters, (std::vector<double>{480, 0.03, 0.3}));  // zero gradient: stops at once

    // A fixed exponent holds s0 too: only Y0 moves.
    record.fixedParameters = 0b100;
    PLASTIC_1 exponent(record);
    exponent.fitPlain();
    EXPECT_EQ(exponent.parameters[1], 0.01);
    EXPECT_EQ(exponent.parameters[2], 0.3);
    EXPECT_NE(exponent.parameters[0], swiftCurve(0));
}

TEST(ColdDescent, BoundsAndTheLawsOwnLimitsAreNeverCrossed)
{
    RoomOri record = trueRecord(convexCurve);
    PLASTIC_1 swift(record);
    swift.fitPlain();
    EXPECT_LT(swift.parameters[2], 1.0);  // the exponent stays below 1
    EXPECT_GT(swift.parameters[1], 0.0);  // and s0 above 0

    record = trueRecord(swiftCurve);
    record.parameterBounds = {{0, 0, 505}, {0.01, 0.005, 0.015}, {0.2, 0.1, 0.21}};
    PLASTIC_1 bounded(record);
    bounded.fitPlain();
    EXPECT_LE(bounded.parameters[0], 505);
    EXPECT_GE(bounded.parameters[1], 0.005);
    EXPECT_LE(bounded.parameters[1], 0.015);
    EXPECT_LE(bounded.parameters[2], 0.21);
}

TEST(ColdDescent, EveryLawImprovesOnItsStart)
{
    const RoomOri record = trueRecord(swiftCurve);
    for (const ColdLawId id : kColdLaws) {
        SCOPED_TRACE(coldLawTitle(id));
        const auto law = makeColdLaw(id, record);
        const double startError = law->objective(law->startParameters(), 1000);
        law->fitPlain();
        EXPECT_LT(law->fitError, startError);
        EXPECT_DOUBLE_EQ(law->fitError, law->objective(law->parameters, 1000));
        EXPECT_TRUE(law->admissible(law->parameters.data()));
    }
}

TEST(ColdLawList, NamesTheLawsByModelNumberInTheScreensOrder)
{
    EXPECT_STREQ(coldLawListEntry(0).text, "Simulation (8)");
    EXPECT_FALSE(coldLawListEntry(0).law);  // the simulation is not a law
    for (std::size_t i = 0; i < kColdLaws.size(); ++i) {
        const ColdLawListEntry entry = coldLawListEntry(static_cast<int>(i) + 1);
        ASSERT_TRUE(entry.law);
        EXPECT_EQ(*entry.law, kColdLaws[i]);
        EXPECT_STREQ(entry.text, coldLawTitle(kColdLaws[i]));
        // The title ends with the model number, which is the law's id and its model's number.
        const int number = static_cast<int>(kColdLaws[i]);
        EXPECT_NE(std::string(entry.text).find("(" + std::to_string(number) + ")"), std::string::npos);
        EXPECT_EQ(makeColdLaw(kColdLaws[i], RoomOri())->modelNumber, number);
    }
    EXPECT_STREQ(coldLawListEntry(9).text, "");
    EXPECT_FALSE(coldLawListEntry(-1).law);
    EXPECT_FALSE(makeColdLaw(static_cast<ColdLawId>(8), RoomOri()));
}

RoomOri engineeringRecord()
{
    RoomOri record;
    record.inputKind = EngineeringCurve;
    for (int i = 0; i <= 40; ++i) {
        const double e = 0.004 * i;
        record.curves[EngineeringCurve].push_back({e, swiftCurve(std::log(1 + e)) / (1 + e)});
    }
    record.startIndex = 2;
    record.neckingIndex = 30;
    record.blockLeadValue = 2;
    return record;
}

TEST(ColdFit, ReturnsTheLawAndTheTrueCurveAndChangesNothing)
{
    const RoomOri record = engineeringRecord();
    const ColdFitResult result = fitColdLaw(record, ColdLawId::Swift, {});
    ASSERT_TRUE(result.law) << result.message;
    EXPECT_FALSE(result.cancelled);
    EXPECT_TRUE(record.curves[TrueCurve].empty());
    EXPECT_FALSE(record.heldModel);
    ASSERT_TRUE(result.trueCurve);
    EXPECT_EQ(result.trueCurve->size(), 29u);  // rebuilt from start to necking
    EXPECT_EQ((*result.trueCurve)[0].x, 0.0);
    EXPECT_EQ(result.text, result.law->resultText());

    RoomOri applied = record;
    applyColdFit(result, applied);
    EXPECT_EQ(applied.curves[TrueCurve], *result.trueCurve);
    ASSERT_TRUE(applied.heldModel);
    EXPECT_NE(applied.heldModel.get(), result.law.get());  // a copy, with the parameters
    TextWriter direct, forwarded;
    result.law->writeLibraryBlock(direct, 6);
    EXPECT_TRUE(applied.forwardWriteLibraryBlock(forwarded, 6));
    EXPECT_EQ(direct.text(), forwarded.text());
    EXPECT_EQ(applied.heldModel->modelNumber, 1);

    // A curve entered as true is fitted as it is: nothing to give back.
    const ColdFitResult entered = fitColdLaw(trueRecord(swiftCurve, 20), ColdLawId::Ludwik, {});
    ASSERT_TRUE(entered.law);
    EXPECT_FALSE(entered.trueCurve);
}

TEST(ColdFit, SwiftComparisonTableGoesIntoTheFolderItIsGiven)
{
    const ColdFitResult result = fitColdLaw(engineeringRecord(), ColdLawId::Swift, {});
    ASSERT_TRUE(result.law);
    const test::ColdTestFolder folder;
    const std::filesystem::path exchange = folder.path() / "exchange" / "made";  // made when missing
    std::string error;
    ASSERT_TRUE(writeSwiftComparisonTable(*result.law, exchange, error)) << error;
    const auto bytes = readFileBytes(exchange / "ZELKO_MAT_PL1.dat", error);
    ASSERT_TRUE(bytes) << error;
    EXPECT_TRUE(test::sameBytes(*bytes, test::utf16File(swiftComparisonTable(*result.law))));
    TextReader table(*bytes, ReadMode::SniffBom);
    std::u16string line;
    table.readLine(line);
    EXPECT_EQ(line, u"          strain,      experiment,       predicted,        Error[%]\n");
    int rows = 0;
    while (table.readLine(line))
        ++rows;
    EXPECT_EQ(rows, 29);  // one line per fitted point

    // A folder that can't be made: a reason, and the table isn't written anywhere.
    test::writeFile(folder.path() / "file", "x");
    error.clear();
    EXPECT_FALSE(writeSwiftComparisonTable(*result.law, folder.path() / "file" / "sub", error));
    EXPECT_FALSE(error.empty());
}

TEST(ColdFit, HollomonNeckingConstraintUsesTheRecordsOwnIndex)
{
    RoomOri record = trueRecord(swiftCurve, 20);
    record.startIndex = 5;
    record.neckingIndex = 12;
    record.neckingConstraint = true;
    const ColdFitResult result = fitColdLaw(record, ColdLawId::Hollomon, {});
    ASSERT_TRUE(result.law);
    const CurvePoint neck = record.curves[TrueCurve][12];  // not 12 - 5
    EXPECT_DOUBLE_EQ(result.law->parameters[1], neck.x);
    EXPECT_DOUBLE_EQ(result.law->parameters[0], neck.y / std::pow(neck.x, neck.x));
}

TEST(ColdFit, SwiftNeckingConstraintTakesS0FromItsGrid)
{
    RoomOri record = trueRecord(swiftCurve, 40);
    record.neckingConstraint = true;
    record.maxIterations = 50;
    const ColdFitResult result = fitColdLaw(record, ColdLawId::Swift, {});
    ASSERT_TRUE(result.law);
    const double s0 = result.law->parameters[1];
    EXPECT_NEAR(s0 * 10000, std::round(s0 * 10000), 1e-6);
    EXPECT_GE(s0, 0.0001);
    EXPECT_LE(s0, 1.0);
}

TEST(ColdFit, WeightedFitIgnoresAPointOfWeightZero)
{
    RoomOri record = trueRecord(swiftCurve, 30);
    for (CurvePoint& p : record.curves[TrueCurve]) {
        p.weight = 1;
        p.hasWeight = true;
    }
    record.curves[TrueCurve][15].y += 200;  // a spike from a slipping extensometer
    record.curves[TrueCurve][15].weight = 0;
    RoomOri plain = record;
    plain.curves[TrueCurve][15].weight = 1;
    record.weighted = true;
    const ColdFitResult weighted = fitColdLaw(record, ColdLawId::VoceGeneral, {});
    const ColdFitResult unweighted = fitColdLaw(plain, ColdLawId::VoceGeneral, {});
    ASSERT_TRUE(weighted.law && unweighted.law);
    const double e = record.curves[TrueCurve][20].x;
    EXPECT_LT(std::fabs(weighted.law->stressAt(e, weighted.law->parameters.data()) - swiftCurve(e)),
              std::fabs(unweighted.law->stressAt(e, unweighted.law->parameters.data()) - swiftCurve(e)));
}

TEST(ColdFit, BadCurvesAreRefusedWithAMessage)
{
    RoomOri nan = trueRecord(swiftCurve, 10);
    nan.curves[TrueCurve][3].y = std::nan("");
    EXPECT_FALSE(fitColdLaw(nan, ColdLawId::Swift, {}).law);
    EXPECT_FALSE(fitColdLaw(nan, ColdLawId::Swift, {}).message.empty());

    RoomOri engineering;
    engineering.inputKind = EngineeringCurve;
    engineering.curves[EngineeringCurve] = {{0, 100}, {0.01, 200}};
    engineering.neckingIndex = 0;  // fewer than two points to fit
    EXPECT_FALSE(fitColdLaw(engineering, ColdLawId::Swift, {}).law);
    engineering.neckingIndex = 7;  // beyond the curve
    const ColdFitResult beyond = fitColdLaw(engineering, ColdLawId::Swift, {});
    EXPECT_FALSE(beyond.law);
    EXPECT_FALSE(beyond.trueCurve);
    RoomOri empty;
    empty.inputKind = TrueCurve;
    EXPECT_FALSE(fitColdLaw(empty, ColdLawId::Ludwik, {}).law);
    const ColdFitResult noLaw = fitColdLaw(empty, static_cast<ColdLawId>(8), {});  // the simulation's number
    EXPECT_FALSE(noLaw.law);
    EXPECT_EQ(noLaw.message, "There is no hardening law with that number.");
}

TEST(ColdFit, LeastSquaresPolishNeverWorsensAndStaysInBounds)
{
    RoomOri record = trueRecord(convexCurve);
    record.polishWithLeastSquares = true;
    RoomOri plain = record;
    plain.polishWithLeastSquares = false;
    for (const ColdLawId id : kColdLaws) {
        SCOPED_TRACE(coldLawTitle(id));
        const ColdFitResult polished = fitColdLaw(record, id, {});
        const ColdFitResult described = fitColdLaw(plain, id, {});
        ASSERT_TRUE(polished.law && described.law);
        EXPECT_LE(polished.law->fitError, described.law->fitError);
        EXPECT_TRUE(polished.law->admissible(polished.law->parameters.data()));
        const auto bounds = polished.law->bounds();
        for (std::size_t k = 0; k < bounds.size(); ++k) {
            EXPECT_GE(polished.law->parameters[k], bounds[k].minimum);
            EXPECT_LE(polished.law->parameters[k], bounds[k].maximum);
        }
    }
}

TEST(ColdFit, PolishLeavesConstrainedAndWeightedFitsAsTheyAre)
{
    // The polish minimises the plain error: run after these it would undo what
    // the necking condition or the weights asked for.
    RoomOri record = trueRecord(swiftCurve, 60);
    record.maxIterations = 300;
    for (CurvePoint& p : record.curves[TrueCurve]) {
        p.weight = p.x < 0.1 ? 1.0 : 0.2;
        p.hasWeight = true;
    }
    for (const ColdLawId id : {ColdLawId::Swift, ColdLawId::KimTuan, ColdLawId::VoceGeneral}) {
        SCOPED_TRACE(coldLawTitle(id));
        for (const bool necking : {true, false}) {
            RoomOri constrained = record;
            constrained.neckingConstraint = necking;
            constrained.weighted = !necking;
            RoomOri polished = constrained;
            polished.polishWithLeastSquares = true;
            const ColdFitResult alone = fitColdLaw(constrained, id, {});
            const ColdFitResult asked = fitColdLaw(polished, id, {});
            ASSERT_TRUE(alone.law && asked.law);
            EXPECT_EQ(asked.law->parameters, alone.law->parameters) << (necking ? "necking" : "weighted");
            EXPECT_EQ(asked.text, alone.text);
        }
        // Unconstrained, the same polish does move the fit: the cases above mean something.
        RoomOri plain = record;
        plain.polishWithLeastSquares = true;
        RoomOri unpolished = record;
        EXPECT_NE(fitColdLaw(plain, id, {}).law->parameters, fitColdLaw(unpolished, id, {}).law->parameters);
    }
}

// Progress as a fit reports it.
std::vector<int> progressOf(const RoomOri& record, ColdLawId id)
{
    std::vector<int> progress;
    RunControl control;
    control.progress = [&](int percent) { progress.push_back(percent); };
    EXPECT_TRUE(fitColdLaw(record, id, control).law);
    return progress;
}

void expectRisingToHundred(const std::vector<int>& progress)
{
    ASSERT_FALSE(progress.empty());
    EXPECT_GE(progress.front(), 0);
    EXPECT_EQ(progress.back(), 100);
    for (std::size_t i = 1; i < progress.size(); ++i)
        EXPECT_LT(progress[i - 1], progress[i]) << "at report " << i;  // only when the percent changes
}

TEST(ColdFit, ProgressRisesByIterationsToHundred)
{
    RoomOri record = trueRecord(convexCurve);
    record.targetError = 0.0;
    record.maxIterations = 400;
    const std::vector<int> plain = progressOf(record, ColdLawId::VoceGeneral);
    expectRisingToHundred(plain);
    EXPECT_EQ(plain.size(), 101u);  // every percent of 400 iterations, none twice

    // A weighted fit from the automatic start runs two descents: one rise in all.
    record.weighted = true;
    const std::vector<int> weighted = progressOf(record, ColdLawId::VoceGeneral);
    expectRisingToHundred(weighted);
    EXPECT_GT(weighted.size(), 90u);

    // A fit that reaches its target early jumps to 100.
    record.weighted = false;
    record.targetError = 1e9;
    EXPECT_EQ(progressOf(record, ColdLawId::VoceGeneral), (std::vector<int>{100}));
}

// A fit of several seconds: 20,000 points, 60,000 iterations, no target to stop at.
RoomOri longFit()
{
    RoomOri record = trueRecord(swiftCurve, 20000);
    record.targetError = 0.0;
    record.maxIterations = 60000;
    return record;
}

// The record's state that a fit could change.
void expectSameRecord(const RoomOri& a, const RoomOri& b)
{
    for (std::size_t kind = 0; kind < a.curves.size(); ++kind)
        EXPECT_EQ(a.curves[kind], b.curves[kind]) << "curve " << kind;
    EXPECT_EQ(a.heldModel, b.heldModel);
    EXPECT_EQ(a.startIndex, b.startIndex);
    EXPECT_EQ(a.neckingIndex, b.neckingIndex);
}

TEST(ColdFitCancel, AStopFromAnotherThreadEndsTheFitWithin50Milliseconds)
{
    // The request is heard at the next iteration; one iteration over 20,000
    // points takes well under a millisecond, the rest of the budget is the thread's.
    constexpr auto kDeadline = std::chrono::milliseconds(50);
    const RoomOri record = longFit();
    std::stop_source stop;
    std::promise<void> started;
    std::atomic<bool> told{false};
    RunControl control;
    control.stop = stop.get_token();
    control.progress = [&](int) {
        if (!told.exchange(true))
            started.set_value();  // the descent runs
    };
    ColdFitResult result;
    std::chrono::steady_clock::time_point returned;
    std::thread fit([&] {
        result = fitColdLaw(record, ColdLawId::Swift, control);
        returned = std::chrono::steady_clock::now();
    });
    started.get_future().wait();
    const auto requested = std::chrono::steady_clock::now();
    stop.request_stop();
    fit.join();
    EXPECT_LT(returned - requested, kDeadline);
    EXPECT_TRUE(result.cancelled);
    EXPECT_FALSE(result.law);
    EXPECT_TRUE(result.text.empty());
}

TEST(ColdFitCancel, ACancelledFitLeavesTheRecordAsItWas)
{
    for (const bool necking : {false, true}) {
        SCOPED_TRACE(necking ? "necking-constrained" : "plain");
        RoomOri record = engineeringRecord();
        record.neckingConstraint = necking;
        record.targetError = 0.0;
        const RoomOri before = record;
        std::stop_source stop;
        RunControl control;
        control.stop = stop.get_token();
        control.progress = [&](int) { stop.request_stop(); };  // after the first iteration
        const ColdFitResult result = fitColdLaw(record, ColdLawId::Swift, control);
        EXPECT_TRUE(result.cancelled);
        EXPECT_FALSE(result.law);
        EXPECT_FALSE(result.trueCurve);
        expectSameRecord(record, before);
        RoomOri applied = before;
        applyColdFit(result, applied);
        expectSameRecord(applied, before);
    }
}

TEST(ColdFitCancel, AStopBeforeThePolishEndsTheFitCancelled)
{
    RoomOri record = trueRecord(convexCurve, 200);
    record.polishWithLeastSquares = true;
    std::stop_source stop;
    RunControl control;
    control.stop = stop.get_token();
    control.progress = [&](int percent) {
        if (percent == 100)
            stop.request_stop();  // the descent is done; the polish is next
    };
    const ColdFitResult result = fitColdLaw(record, ColdLawId::KimTuan, control);
    EXPECT_TRUE(result.cancelled);
    EXPECT_FALSE(result.law);

    // And a stop requested before anything ran: no descent step at all.
    std::stop_source early;
    early.request_stop();
    RunControl stopped;
    stopped.stop = early.get_token();
    EXPECT_TRUE(fitColdLaw(trueRecord(swiftCurve), ColdLawId::Swift, stopped).cancelled);
}

}  // namespace
}  // namespace zelko
