#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <thread>

#include "cold/plastic_8.h"
#include "base/fileio.h"
#include "temporaryfolder.h"
#include "testutil.h"

namespace zelko {
namespace {

RoomOri loadRecord(int points)
{
    RoomOri record;
    record.diameter = 10;
    record.gaugeLength = 50;
    record.blockLeadValue = 0.5;
    for (int i = 0; i < points; ++i)
        record.curves[LoadDisplacement].push_back({0.1 + 0.01 * i, 1000.0 * i});
    record.startIndex = 0;
    record.endIndex = points - 1;
    return record;
}

std::string utf8File(const std::string& text)
{
    TextWriter out(TextEncoding::Utf8Bom);
    out.put(utf8ToUtf16(text));
    return out.bytes();
}

TEST(TensileJob, WritesTheJobListTheBatchAndTheControlDeck)
{
    const RoomOri record = loadRecord(3);
    TensileJobSettings settings;
    settings.fractureCriterion = 5;
    settings.fractureConstant = 0.25;
    settings.iterationSetting = 250;
    settings.finalInteger = 2;
    settings.finalValue = 1.5;
    const std::vector<JobFile> files = tensileJobFiles(record, "c45", settings);
    ASSERT_EQ(files.size(), 5u);
    const std::string list = "1\nf\nc45.tnsscf\nc45.tnssif\nc45.z2dsrf\nc45.tnsspf\n3\n";
    EXPECT_EQ(files[0].name, "c45.tnsprj");
    EXPECT_TRUE(test::sameBytes(files[0].bytes, utf8File(list)));
    EXPECT_EQ(files[3].name, "c45.tnsslf");
    EXPECT_EQ(files[3].bytes, files[0].bytes);
    EXPECT_EQ(files[4].name, "c45.bat");
    EXPECT_TRUE(test::sameBytes(files[4].bytes, utf8File("chcp 65001\ncall Z2DTS_V24R02.bat < c45.tnsslf\n")));
    EXPECT_EQ(files[1].name, "c45.tnsscf");
    EXPECT_TRUE(test::sameBytes(
        files[1].bytes,
        utf8File("tensile test\n"
                 "      50        3        2        1\n"
                 "       1        0        2        2        0\n"
                 "       1      200        0       20\n"
                 "               1.0000E-05        5.0000E-01\n"
                 "       1     5000\n"
                 "       0        8.0000E+01        9.0000E-01        2.0000E+00        3.0000E+00       30\n"
                 "       1        2.0000E-02        2.0000E-02\n"
                 "       0        0        0        0        0        5        0        0        0        0\n"
                 "               2.5000E-01 \n"
                 "               1.0000E+01        1.0000E+00        5.0000E-01        5.0000E-01        0.0000E+00"
                 "        0.0000E+00        0.0000E+00\n"
                 "               3.0000E+00        3.0000E-01        9.0000E-01\n\n"
                 "       1\n\n"
                 "       1        1        2.0000E-02\n\n"
                 "       1       -1        3        0\n"
                 "       1        0.0000E+00\n"
                 "       2        1.0000E-02\n"
                 "       3        2.0000E-02\n"
                 "\n       1       10\n\n"
                 "               5.0000E+00        2.5000E+01        0.0000E+00        0.0000E+00        5.0000E-01\n\n"
                 "       2\n\n"
                 "       2        1.0000E-02        1.0000E+03\n"
                 "       3        2.0000E-02        2.0000E+03\n"
                 "\n       1        1        1        1        1        0.0000E+00        2.0000E+01        0.0000E+00"
                 "        0.0000E+00\n\n"
                 "       1        0        1.0000E+00\n\n"
                 "       1      400     4000        0        0\n"
                 "       1        1.0000E-04        1.0000E-02        1.0000E+07        0.0000E+00        0.0000E+00\n"
                 "       1     -250\n\n"
                 "       2        1.5000E+00")));
    // A criterion without a constant writes no constant line.
    settings.fractureCriterion = 3;
    const std::string deck = test::textOf([&] {
        TextWriter w;
        w.put(utf8ToUtf16(tensileControlDeck(record, {0, 2}, 0.0, settings)));
        return w;
    }());
    EXPECT_EQ(deck.find("2.5000E-01 \n"), std::string::npos);
}

TEST(TensileJob, SelectsEvenlySpacedPointsFromStartToFracture)
{
    RoomOri record = loadRecord(100);
    record.startIndex = 10;
    record.endIndex = 90;
    const std::vector<int> selected = selectedJobPoints(record, 5);
    EXPECT_EQ(selected, (std::vector<int>{10, 30, 50, 70, 90}));
    record.endIndex = 12;
    EXPECT_EQ(selectedJobPoints(record, 20), (std::vector<int>{10, 11, 12}));
    EXPECT_TRUE(selectedJobPoints(RoomOri{}, 20).empty());
}

std::string progressFile(int markers, int pairs, bool finished)
{
    std::string text = "solver log\n";
    for (int m = 1; m <= markers; ++m) {
        text += " NCSTG IS GREATER THAN NSTG\n line a\n line b\n line c\n";
        text += formatText(" curve parameter = %d.5\n", m);
        // The first of the skipped lines is the rest of the count's own line.
        text += " 3\n skipped 1\n skipped 2\n";
        text += formatText(" %d\n", pairs);
        for (int i = 0; i < pairs; ++i)
            text += formatText(" %d %g %g\n", i + 1, 0.01 * i + m, 100.0 + i);
    }
    if (finished)
        text += " FINISHED_MAT\n";
    return text;
}

TEST(TensileProgress, ReadsFromTheLastMarkerAndThinsToTwenty)
{
    PLASTIC_8 model;
    ASSERT_TRUE(readTensileProgress(progressFile(3, 12, true), model));
    EXPECT_EQ(model.curveParameter, 3.5);  // read from the third marker
    ASSERT_EQ(model.identifiedCurve.size(), 12u);
    EXPECT_EQ(model.identifiedCurve[0], (std::pair<double, double>{3.0, 100.0}));

    ASSERT_TRUE(readTensileProgress(progressFile(1, 20, true), model));
    EXPECT_EQ(model.identifiedCurve.size(), 20u);
    ASSERT_TRUE(readTensileProgress(progressFile(1, 45, true), model));
    ASSERT_EQ(model.identifiedCurve.size(), 20u);
    EXPECT_EQ(model.identifiedCurve[0].second, 100.0);  // the first pair is kept
    EXPECT_EQ(model.identifiedCurve[1].second, 102.0);  // then every 45/20th

    // No marker: nothing is read and the curve stays.
    EXPECT_FALSE(readTensileProgress("just a log\n FINISHED_MAT\n", model));
    EXPECT_EQ(model.identifiedCurve.size(), 20u);
    // A marker after the finished line doesn't count.
    EXPECT_FALSE(readTensileProgress(" FINISHED_MAT\n" + progressFile(1, 3, false), model));
}

TEST(TensileProgress, LibraryBlockWritesThePairsById)
{
    PLASTIC_8 model;
    model.blockLeadValue = 1;
    model.curveParameter = 2;
    model.identifiedCurve = {{0.5, 100}, {1.0, 200}};
    const std::string head = "%8d\n                    1.0000E+00        1.0000E+05        1.0000E-04        0.0000E+00"
                             "        0.0000E+00        0.0000E+00\n                    2.0000E+00        1.0000E+00\n"
                             "       2\n";
    TextWriter eight;
    EXPECT_TRUE(model.writeLibraryBlock(eight, 6));
    EXPECT_EQ(test::textOf(eight), formatText(head.c_str(), 8) +
                                       "                    5.0000E-01        1.0000E+02\n"
                                       "                    1.0000E+00        2.0000E+02\n");
    model.modelNumber = 11;  // x, x^p y
    TextWriter eleven;
    model.writeLibraryBlock(eleven, 6);
    EXPECT_NE(test::textOf(eleven).find("5.0000E-01        2.5000E+01\n"), std::string::npos);
    PLASTIC_8 back;
    TextReader in = TextReader::fromText(eleven.text());
    EXPECT_TRUE(back.readLibraryBlock(in));
    EXPECT_EQ(back.modelNumber, 11);
    EXPECT_EQ(back.identifiedCurve, model.identifiedCurve);
    model.modelNumber = 9;  // no pairs for another id
    TextWriter other;
    model.writeLibraryBlock(other, 6);
    EXPECT_EQ(test::textOf(other), formatText(head.c_str(), 9));
}

// A finished job's progress file with the given curve lines after its count.
TensileResultStatus readFinishedJob(const std::filesystem::path& folder, const std::string& curve, PLASTIC_8& model)
{
    std::string error;
    EXPECT_TRUE(saveFileAtomically(folder / "run1.z2dsrf", "result", error)) << error;
    EXPECT_TRUE(saveFileAtomically(folder / "run1.tnsspf",
                                   " NCSTG IS GREATER THAN NSTG\n a\n b\n c\n p = 4 0.3\n 0\n" + curve
                                       + " FINISHED_MAT\n",
                                   error))
        << error;
    return readTensileResult(folder / "run1.tnsprj", model);
}

TEST(TensileResult, RefusesACurveWithoutPointsOrWithValuesThatAreNotNumbers)
{
    const test::TemporaryFolder folder;
    PLASTIC_8 model;
    ASSERT_EQ(readFinishedJob(folder.path(), " 2\n 1 0.1 300\n 2 0.2 350\n", model), TensileResultStatus::Read);
    EXPECT_EQ(model.identifiedCurve.size(), 2u);

    // A solver that stopped before its first stage writes a count of 0.
    EXPECT_EQ(readFinishedJob(folder.path(), " 0\n", model), TensileResultStatus::NoUsableCurve);
    // A diverged run prints nan and inf for the stresses.
    EXPECT_EQ(readFinishedJob(folder.path(), " 2\n 1 0.1 nan\n 2 0.2 350\n", model), TensileResultStatus::NoUsableCurve);
    EXPECT_EQ(readFinishedJob(folder.path(), " 2\n 1 0.1 300\n 2 inf 350\n", model), TensileResultStatus::NoUsableCurve);
    EXPECT_EQ(readFinishedJob(folder.path(), " 2\n 1 0.1 300\n 2 0.2 -1e999\n", model),
              TensileResultStatus::NoUsableCurve);
    EXPECT_STREQ(tensileResultMessage(TensileResultStatus::NoUsableCurve),
                 "The analysis result holds no usable flow curve (no points, or a value that is not a number).");

    // The curve parameter goes into the library entry as well.
    std::string error;
    ASSERT_TRUE(saveFileAtomically(folder.path() / "run1.tnsspf",
                                   " NCSTG IS GREATER THAN NSTG\n a\n b\n c\n p = 4 nan\n 0\n 1\n 1 0.1 300\n"
                                   " FINISHED_MAT\n",
                                   error));
    EXPECT_EQ(readTensileResult(folder.path() / "run1.tnsprj", model), TensileResultStatus::NoUsableCurve);
    // No marker line: the finished file holds no curve at all.
    ASSERT_TRUE(saveFileAtomically(folder.path() / "run1.tnsspf", " FINISHED_MAT\n", error));
    EXPECT_EQ(readTensileResult(folder.path() / "run1.tnsprj", model), TensileResultStatus::NoUsableCurve);
}

TEST(TensileSolver, RunsOnTheJobListAndReadsTheResultBack)
{
    const auto folder = std::filesystem::temp_directory_path() / "zelko-tensile-job";
    std::filesystem::remove_all(folder);
    const auto job = folder / "run1.tnsprj";
    std::string error;
    ASSERT_TRUE(writeTensileJob(loadRecord(30), job, {}, error)) << error;
    for (const char* name : {"run1.tnsprj", "run1.tnsscf", "run1.tnssif", "run1.tnsslf", "run1.bat"})
        EXPECT_TRUE(std::filesystem::exists(folder / name)) << name;

    PLASTIC_8 model;
    EXPECT_EQ(readTensileResult(job, model), TensileResultStatus::NoResultFile);
    EXPECT_STREQ(tensileResultMessage(TensileResultStatus::NoResultFile), "There is no analysis result file.");

    // A stand-in solver: copies its input to the result and writes a progress file.
    const auto solver = folder / "fake-solver.sh";
    {
        std::ofstream script(solver);
        script << "#!/bin/sh\ncat > run1.z2dsrf\nprintf ' NCSTG IS GREATER THAN NSTG\\n a\\n b\\n c\\n p = 4 0.3\\n"
                  " 0\\n 2\\n 1 0.1 300\\n 2 0.2 350\\n FINISHED_MAT\\n' > run1.tnsspf\n";
    }
    std::filesystem::permissions(solver, std::filesystem::perms::owner_all);
    Environment environment;
    environment.tensileSolver = solver.string();
    ASSERT_TRUE(startTensileSolver(job, environment, error)) << error;
    TensileResultStatus status = TensileResultStatus::NoResultFile;
    for (int i = 0; i < 100 && status != TensileResultStatus::Read; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        status = readTensileResult(job, model);
    }
    ASSERT_EQ(status, TensileResultStatus::Read);
    EXPECT_EQ(model.curveParameter, 0.3);
    EXPECT_EQ(model.identifiedCurve, (std::vector<std::pair<double, double>>{{0.1, 300}, {0.2, 350}}));
    EXPECT_EQ(*readFileBytes(folder / "run1.z2dsrf", error), *readFileBytes(folder / "run1.tnsslf", error));

    std::filesystem::remove(folder / "run1.tnsspf");
    EXPECT_EQ(readTensileResult(job, model), TensileResultStatus::NotCompleted);
    environment.tensileSolver = (folder / "missing").string();
    EXPECT_FALSE(startTensileSolver(job, environment, error));
    EXPECT_NE(error.find("not found"), std::string::npos);
    EXPECT_TRUE(std::filesystem::exists(folder / "run1.tnsscf"));  // the job stays for a later run
    std::filesystem::remove_all(folder);
}

// A job written into folder, ready for the solver.
std::filesystem::path writtenJob(const std::filesystem::path& folder)
{
    const auto job = folder / "run1.tnsprj";
    std::string error;
    EXPECT_TRUE(writeTensileJob(loadRecord(5), job, {}, error)) << error;
    return job;
}

// A stand-in solver that leaves a mark in its folder when it runs.
std::filesystem::path markingSolver(const std::filesystem::path& path, std::filesystem::perms perms)
{
    std::ofstream(path) << "#!/bin/sh\necho ran > ran.txt\n";
    std::filesystem::permissions(path, perms);
    return path;
}

TEST(TensileSolver, NeverHandsTheSolverOurOwnOutput)
{
    const test::TemporaryFolder folder;
    const auto job = writtenJob(folder.path());
    Environment environment;
    environment.tensileSolver = markingSolver(folder.path() / "solver.sh", std::filesystem::perms::owner_all).string();
    // A folder where the log would go: the log can't be opened.
    std::filesystem::create_directory(folder.path() / "run1.log");
    std::string error;
    EXPECT_FALSE(startTensileSolver(job, environment, error));
    EXPECT_NE(error.find("log"), std::string::npos) << error;
    EXPECT_NE(error.find("not started"), std::string::npos) << error;
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "ran.txt"));

    // Nor its input: a job list that can't be read starts nothing either.
    std::filesystem::remove(folder.path() / "run1.log");
    std::filesystem::remove(folder.path() / "run1.tnsslf");
    EXPECT_FALSE(startTensileSolver(job, environment, error));
    EXPECT_NE(error.find("job list"), std::string::npos) << error;
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "ran.txt"));
}

TEST(TensileSolver, RunsAJobGivenByARelativePath)
{
    // The child enters the job's folder: the log and the job list are the job's own,
    // not paths read again from inside the folder.
    const test::TemporaryFolder folder;
    const auto was = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    std::filesystem::create_directory("jobs");
    const auto job = writtenJob("jobs");
    {
        std::ofstream script("solver.sh");
        script << "#!/bin/sh\ncat > copied.txt\necho to-the-log\n";
    }
    std::filesystem::permissions("solver.sh", std::filesystem::perms::owner_all);
    Environment environment;
    environment.tensileSolver = "solver.sh";  // relative to where we were started
    std::string error;
    const bool started = startTensileSolver(job, environment, error);
    std::string log;
    for (int i = 0; i < 100 && log.empty(); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        log = readFileBytes("jobs/run1.log", error).value_or("");
    }
    const auto copied = readFileBytes("jobs/copied.txt", error);
    const auto jobList = readFileBytes("jobs/run1.tnsslf", error);
    std::filesystem::current_path(was);
    ASSERT_TRUE(started) << error;
    EXPECT_EQ(log, "to-the-log\n");
    ASSERT_TRUE(copied && jobList);
    EXPECT_EQ(*copied, *jobList);
}

TEST(TensileSolver, SaysWhyASolverThatIsThereCannotRun)
{
    const test::TemporaryFolder folder;
    const auto job = writtenJob(folder.path());
    Environment environment;
    std::string error;
    // Copied from a Windows share without its execute bit.
    environment.tensileSolver = markingSolver(folder.path() / "solver.sh", std::filesystem::perms::owner_read).string();
    EXPECT_FALSE(startTensileSolver(job, environment, error));
    EXPECT_NE(error.find("cannot be run: it is not executable"), std::string::npos) << error;
    EXPECT_EQ(error.find("not found"), std::string::npos) << error;

    // A folder of that name.
    environment.tensileSolver = folder.path().string();
    EXPECT_FALSE(startTensileSolver(job, environment, error));
    EXPECT_NE(error.find("cannot be run: it is a folder"), std::string::npos) << error;

    // Executable, but no program the system can start (a Windows executable).
    const auto windows = folder.path() / "Z2DTS_V24R02";
    std::ofstream(windows) << "MZ\x90";
    std::filesystem::permissions(windows, std::filesystem::perms::owner_all);
    environment.tensileSolver = windows.string();
    EXPECT_FALSE(startTensileSolver(job, environment, error));
    EXPECT_NE(error.find("cannot be run: Exec format error"), std::string::npos) << error;

    // Found on PATH without its execute bit: the same, not "not found".
    std::filesystem::permissions(windows, std::filesystem::perms::owner_read);
    environment.tensileSolver.clear();
    environment.searchPath = folder.path().string();
    EXPECT_FALSE(startTensileSolver(job, environment, error));
    EXPECT_NE(error.find("cannot be run: it is not executable"), std::string::npos) << error;
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "ran.txt"));
}

}  // namespace
}  // namespace zelko
