#include "cold/plastic_8.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "base/fileio.h"
#include "base/messages.h"
#include "base/numbers.h"

namespace zelko {

namespace {

constexpr std::u16string_view kMarker = u" NCSTG IS GREATER THAN NSTG\n";
constexpr std::u16string_view kFinished = u" FINISHED_MAT\n";
constexpr std::size_t kThinnedPairs = 20;

std::string utf8Job(const std::string& text)
{
    TextWriter out(TextEncoding::Utf8Bom);
    out.put(utf8ToUtf16(text));
    return out.bytes();
}

bool usableCurve(const PLASTIC_8& model)
{
    return !model.identifiedCurve.empty() && std::isfinite(model.curveParameter)
           && allFinite(model.identifiedCurve, [](const auto& point) { return std::array{point.first, point.second}; });
}

std::string jobList(const std::string& base)
{
    return "1\nf\n" + base + ".tnsscf\n" + base + ".tnssif\n" + base + ".z2dsrf\n" + base + ".tnsspf\n3\n";
}

}  // namespace

bool PLASTIC_8::writeLibraryBlock(TextWriter& out, int) const
{
    out.format("%8d\n", modelNumber);
    out.format("%30.4E %17.4E %17.4E %17.4E %17.4E %17.4E\n", blockLeadValue, 100000.0, 0.0001, 0.0, 0.0, 0.0);
    out.format("%30.4E %17.4E\n", curveParameter, blockLeadValue);
    out.format("%8zd\n", identifiedCurve.size());
    for (const auto& [x, y] : identifiedCurve) {
        if (modelNumber == 8)
            out.format("%30.4E %17.4E\n", x, y);
        else if (modelNumber == 11)
            out.format("%30.4E %17.4E\n", x, std::pow(x, curveParameter) * y);
    }
    return true;
}

bool PLASTIC_8::readLibraryBlock(TextReader& in)
{
    int number = 0, count = 0;
    double lead[6] = {};
    if (!in.scanInt(number))
        return false;
    for (double& v : lead)
        in.scanDouble(v);
    double parameter = 0.0, leadAgain = 0.0;
    if (!in.scanDouble(parameter) || !in.scanDouble(leadAgain) || !in.scanInt(count))
        return false;
    modelNumber = number;
    blockLeadValue = lead[0];
    curveParameter = parameter;
    identifiedCurve.assign(in.claim(count), {0.0, 0.0});
    for (auto& [x, y] : identifiedCurve) {
        if (!in.scanDouble(x) || !in.scanDouble(y))
            break;
        if (modelNumber == 11 && x > 0.0)
            y /= std::pow(x, curveParameter);
    }
    return true;
}

std::vector<int> selectedJobPoints(const RoomOri& record, int maxPoints)
{
    const int size = static_cast<int>(record.curves[LoadDisplacement].size());
    const int first = std::clamp(record.startIndex, 0, std::max(0, size - 1));
    const int last = record.endIndex > first && record.endIndex < size ? record.endIndex : size - 1;
    std::vector<int> selected;
    if (size == 0 || last < first)
        return selected;
    const int span = last - first;
    const int count = std::max(1, std::min(maxPoints, span + 1));
    for (int k = 0; k < count; ++k)
        selected.push_back(count == 1 ? first : first + static_cast<int>(static_cast<long long>(span) * k / (count - 1)));
    return selected;
}

std::string tensileControlDeck(const RoomOri& record, const std::vector<int>& selected, double offset,
                               const TensileJobSettings& s)
{
    const Curve& points = record.curves[LoadDisplacement];
    const auto displacement = [&](int i) { return points[static_cast<std::size_t>(i)].x - offset; };
    const auto load = [&](int i) { return points[static_cast<std::size_t>(i)].y; };
    const int count = static_cast<int>(selected.size());
    std::string d = "tensile test\n";
    d += formatText("%8d %8d %8d %8d\n", 50, 3, 2, 1);
    d += formatText("%8d %8d %8d %8d %8d\n", 1, 0, 2, 2, 0);
    d += formatText("%8d %8d %8d %8d\n", 1, 200, 0, 20);
    d += formatText("%25.4E %17.4E\n", 1e-05, 0.5);
    d += formatText("%8d %8d\n", 1, 5000);
    d += formatText("%8d %17.4E %17.4E %17.4E %17.4E %8d\n", 0, 80.0, 0.9, 2.0, 3.0, 30);
    d += formatText("%8d %17.4E %17.4E\n", 1, 0.02, 0.02);
    d += formatText("%8d %8d %8d %8d %8d %8d %8d %8d %8d %8d\n", 0, 0, 0, 0, 0, s.fractureCriterion, 0, 0, 0, 0);
    if (s.fractureCriterion == 5 || s.fractureCriterion == 6 || s.fractureCriterion == 8)
        d += formatText("%25.4E \n", s.fractureConstant);
    d += formatText("%25.4E %17.4E %17.4E %17.4E %17.4E %17.4E %17.4E\n", 10.0, 1.0, 0.5, 0.5, 0.0, 0.0, 0.0);
    d += formatText("%25.4E %17.4E %17.4E\n\n", 3.0, 0.3, 0.9);
    d += formatText("%8d\n\n", 1);
    d += formatText("%8d %8d %17.4E\n\n", 1, 1, count > 0 ? displacement(selected.back()) : 0.0);
    d += formatText("%8d %8d %8d %8d\n", 1, -1, count, 0);
    for (int k = 0; k < count; ++k)
        d += formatText("%8d %17.4E\n", k + 1, displacement(selected[static_cast<std::size_t>(k)]));
    d += formatText("\n%8d %8d\n\n", 1, 10);
    d += formatText("%25.4E %17.4E %17.4E %17.4E %17.4E\n\n", record.diameter / 2, record.gaugeLength / 2,
                    count > 0 ? displacement(selected.front()) : 0.0, count > 0 ? load(selected.front()) : 0.0,
                    record.blockLeadValue);
    d += formatText("%8d\n\n", count - 1);
    for (int k = 1; k < count; ++k)
        d += formatText("%8d %17.4E %17.4E\n", k + 1, displacement(selected[static_cast<std::size_t>(k)]),
                        load(selected[static_cast<std::size_t>(k)]));
    d += formatText("\n%8d %8d %8d %8d %8d %17.4E %17.4E %17.4E %17.4E\n\n", 1, 1, 1, 1, 1, 0.0, 20.0, 0.0, 0.0);
    d += formatText("%8d %8d %17.4E\n\n", 1, 0, 1.0);
    d += formatText("%8d %8d %8d %8d %8d\n", 1, 400, 4000, 0, 0);
    d += formatText("%8d %17.4E %17.4E %17.4E %17.4E %17.4E\n", 1, 0.0001, 0.01, 10000000.0, 0.0, 0.0);
    d += formatText("%8d %8d\n\n", 1, s.iterationSetting <= 200 ? s.iterationSetting : -s.iterationSetting);
    d += formatText("%8d %17.4E", s.finalInteger, s.finalValue);
    return d;
}

std::vector<JobFile> tensileJobFiles(const RoomOri& record, const std::string& base, const TensileJobSettings& settings)
{
    const std::vector<int> selected = selectedJobPoints(record, settings.maxSelectedPoints);
    // Displacements are counted from the first selected point.
    const double offset = selected.empty() ? 0.0 : record.curves[LoadDisplacement][static_cast<std::size_t>(selected[0])].x;
    std::string measured = formatText("%8zd\n", record.curves[LoadDisplacement].size());
    int number = 1;
    for (const CurvePoint& p : record.curves[LoadDisplacement])
        measured += formatText("%8d %17.4E %17.4E\n", number++, p.x - offset, p.y);
    const std::string list = jobList(base);
    return {
        {base + ".tnsprj", utf8Job(list)},
        {base + ".tnsscf", utf8Job(tensileControlDeck(record, selected, offset, settings))},
        {base + ".tnssif", utf8Job(measured)},
        {base + ".tnsslf", utf8Job(list)},
        {base + ".bat", utf8Job(formatText("chcp 65001\ncall Z2DTS_V%2dR%02d.bat < %s.tnsslf\n", 24, 2, base.c_str()))},
    };
}

bool writeTensileJob(const RoomOri& record, const std::filesystem::path& jobFile, const TensileJobSettings& settings,
                     std::string& error)
{
    if (!allFinite(record.curves[LoadDisplacement], [](const CurvePoint& p) { return std::array{p.x, p.y}; })) {
        error = "the load-displacement curve holds a value that is not a number";
        return false;
    }
    if (record.curves[LoadDisplacement].empty()) {
        error = "there is no load-displacement curve to simulate";
        return false;
    }
    std::error_code ec;
    const std::filesystem::path folder = jobFile.parent_path().empty() ? std::filesystem::path(".") : jobFile.parent_path();
    std::filesystem::create_directories(folder, ec);
    for (const JobFile& file : tensileJobFiles(record, jobFile.stem().string(), settings))
        if (!saveFileAtomically(folder / file.name, file.bytes, error))
            return false;
    return true;
}

bool readTensileProgress(std::string_view bytes, PLASTIC_8& model)
{
    std::u16string line;
    std::size_t markers = 0;
    {
        TextReader first(bytes, ReadMode::EightBit);
        while (first.readLine(line, 255) && line != kFinished)
            if (line == kMarker)
                ++markers;
    }
    if (markers == 0)
        return false;
    TextReader in(bytes, ReadMode::EightBit);
    for (std::size_t seen = 0; seen < markers && in.readLine(line, 255);)
        if (line == kMarker)
            ++seen;
    model.identifiedCurve.clear();
    for (int i = 0; i < 3; ++i)
        in.readLine(line, 255);
    std::u16string word;
    for (int i = 0; i < 4 && in.readToken(word); ++i)
        if (i == 3)
            model.curveParameter = toDouble(word);
    in.readLine(line, 255);
    int skip = 0;
    if (in.scanInt(skip))
        for (long long i = 0; i < skip && in.readLine(line, 255); ++i) {
        }
    int count = 0;
    if (in.scanInt(count)) {
        for (long long i = 0; i < count; ++i) {
            int index = 0;
            double strain = 0.0, stress = 0.0;
            if (!in.scanInt(index) || !in.scanDouble(strain) || !in.scanDouble(stress))
                break;
            model.identifiedCurve.emplace_back(strain, stress);
        }
    }
    const std::size_t size = model.identifiedCurve.size();
    if (size > kThinnedPairs) {
        std::vector<std::pair<double, double>> thinned;
        for (std::size_t k = 0; k < kThinnedPairs; ++k)
            thinned.push_back(model.identifiedCurve[k * size / kThinnedPairs]);
        model.identifiedCurve = std::move(thinned);
    }
    return true;
}

TensileResultStatus readTensileResult(const std::filesystem::path& jobFile, PLASTIC_8& model)
{
    std::filesystem::path base = jobFile;
    base.replace_extension();
    std::string error;
    if (!readFileBytes(std::filesystem::path(base).concat(".z2dsrf"), error))
        return TensileResultStatus::NoResultFile;
    const std::optional<std::string> progress = readFileBytes(std::filesystem::path(base).concat(".tnsspf"), error);
    // The solver ends its progress file with the finished line.
    if (!progress || progress->find(" FINISHED_MAT") == std::string::npos)
        return TensileResultStatus::NotCompleted;
    if (!readTensileProgress(*progress, model) || !usableCurve(model))
        return TensileResultStatus::NoUsableCurve;
    return TensileResultStatus::Read;
}

const char* tensileResultMessage(TensileResultStatus status)
{
    switch (status) {
    case TensileResultStatus::NoResultFile: return messageText(MessageCode::NoAnalysisResultFile).data();
    case TensileResultStatus::NotCompleted: return messageText(MessageCode::AnalysisNotCompleted).data();
    case TensileResultStatus::NoUsableCurve: return messageText(MessageCode::AnalysisCurveNotUsable).data();
    case TensileResultStatus::Read: break;
    }
    return "";
}

}  // namespace zelko
