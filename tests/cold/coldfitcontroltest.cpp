// The fit's progress and its stop request.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <stop_token>
#include <thread>
#include <vector>

#include "cold/coldfit.h"
#include "coldrecords.h"

namespace zelko {
namespace {

using namespace test;  // the records of coldrecords.h

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
    }
}

TEST(ColdFitCancel, AStopBeforeThePolishEndsTheFitCancelled)
{
    const RoomOri record = trueRecord(convexCurve, 200);
    std::stop_source stop;
    RunControl control;
    control.stop = stop.get_token();
    control.progress = [&](int percent) {
        if (percent == 100)
            stop.request_stop();  // the descent is done; the polish is next
    };
    const ColdFitResult result = fitColdLaw(record, ColdLawId::KimTuan, control, FitMethod::DescentThenLeastSquares);
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
