#include "hot/processingmap.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "base/exchangefolder.h"
#include "base/fileio.h"
#include "base/numbers.h"
#include "base/process.h"
#include "hot/stresstable.h"
#include "numerics/vectormath.h"

namespace zelko {

char* writeFixed10(char* out, double value)
{
    const double magnitude = std::fabs(value);
    if (!(magnitude < 1e12)) {
        const std::string text = formatText("%10.4f", value);
        return std::copy(text.begin(), text.end(), out);
    }
    // magnitude·10⁴ is exactly p + error; the rounding looks at both, so it is
    // printf's: the exact binary value, ties to even.
    const double p = magnitude * 10000.0;
    const double error = std::fma(magnitude, 10000.0, -p);
    const auto whole = static_cast<unsigned long long>(p);
    bool up = false;
    if (p >= 0.5) {
        const double d = (p - static_cast<double>(whole)) - 0.5;
        up = d > 0.0 || (d == 0.0 && (error > 0.0 || (error == 0.0 && (whole & 1u) != 0)));
    }
    const unsigned long long units = whole + (up ? 1u : 0u);
    char text[32];
    char* end = text + sizeof text;
    char* at = end;
    unsigned long long rest = units;
    for (int i = 0; i < 4; ++i, rest /= 10)
        *--at = static_cast<char>('0' + rest % 10);
    *--at = '.';
    do {
        *--at = static_cast<char>('0' + rest % 10);
        rest /= 10;
    } while (rest > 0);
    if (std::signbit(value))
        *--at = '-';
    while (end - at < 10)
        *--at = ' ';
    return std::copy(at, end, out);
}

void appendFixed10(std::string& line, double value)
{
    char text[kFixed10Room];
    line.append(text, writeFixed10(text, value));
}

std::optional<ProcessingMap> computeProcessingMap(const PLASTIC_HOT& model, std::optional<std::size_t> onlyStrain,
                                                  std::string& error, const RunControl& control)
{
    const std::vector<double>& T = model.temperatures;
    const std::vector<double>& R = model.strainRates;
    for (const double rate : R)
        if (!(rate > 0.0) || !std::isfinite(rate)) {
            error = "the strain rates must be finite and above 0";
            return std::nullopt;
        }
    if (!allFinite(T)) {
        error = "the temperatures must be finite";
        return std::nullopt;
    }
    if (onlyStrain && *onlyStrain >= model.strains.size()) {
        error = "no such sample strain";
        return std::nullopt;
    }
    ProcessingMap map;
    if (onlyStrain)
        map.strains = {model.strains[*onlyStrain]};
    else
        map.strains = model.strains;
    const std::size_t NT = T.size() < 2 ? 0 : (T.size() - 1) * kMapNodesPerInterval;
    const std::size_t NR = R.size() < 2 ? 0 : (R.size() - 1) * kMapNodesPerInterval;
    const std::size_t NS = map.strains.size();
    if (NT * NR * NS > kMaxProcessingMapEntries) {
        error = formatText("the map would have %zu grid entries, more than the %zu it may hold", NT * NR * NS,
                           kMaxProcessingMapEntries);
        return std::nullopt;
    }
    for (std::size_t i = 0; i < NT; ++i)
        map.temperatures.push_back(T.front() + static_cast<double>(i) * (T.back() - T.front()) / static_cast<double>(NT));
    const double L0 = std::log10(R.empty() ? 1.0 : R.front());
    const double dL = NR == 0 ? 0.0 : (std::log10(R.back()) - L0) / static_cast<double>(NR);
    for (std::size_t j = 0; j < NR; ++j)
        map.logRates.push_back(L0 + static_cast<double>(j) * dL);
    const std::size_t entries = NT * NR * NS;
    // Every entry is written below; zeroing 150 MB first would cost a pass.
    map.stress_ = makeLargeArray<double>(entries);
    map.efficiency_ = makeLargeArray<double>(entries);
    map.flag_ = makeLargeArray<signed char>(entries);
    if (entries == 0) {
        control.report(100);
        return map;
    }

    // The model at the test temperatures only ([rate node][test temperature][strain]);
    // the nodes between are linear in temperature.
    std::vector<double> atTest(NR * T.size() * NS);
    for (std::size_t j = 0; j < NR; ++j) {
        if (control.stopRequested()) {
            error = std::string(kRunCancelled);
            return std::nullopt;
        }
        control.report(static_cast<int>(j * kEvaluationPercent / NR));
        const double rate = std::pow(10.0, map.logRates[j]);
        for (std::size_t a = 0; a < T.size(); ++a)
            for (std::size_t k = 0; k < NS; ++k)
                atTest[(j * T.size() + a) * NS + k] = model.evaluate(map.strains[k], rate, T[a]);
    }
    std::vector<Bracket> brackets(NT);
    for (std::size_t i = 0; i < NT; ++i)
        brackets[i] = bracketOf(T, map.temperatures[i]);

    const std::size_t row = NT * NS;
    const double dLnRate = dL * std::log(10.0);
    // ln σ of rows j and j + 1.
    std::vector<double> lnThis(row), lnNext(row);
    const auto fillRow = [&](std::size_t j, std::vector<double>& ln) {
        double* stress = &map.stress_[j * row];
        const double* test = &atTest[j * T.size() * NS];
        for (std::size_t i = 0; i < NT; ++i) {
            const Bracket& b = brackets[i];
            const double* lo = test + b.lo * NS;
            const double* hi = test + b.hi * NS;
            for (std::size_t k = 0; k < NS; ++k)
                stress[i * NS + k] = lo[k] + b.weight * (hi[k] - lo[k]);
        }
        std::copy_n(stress, row, ln.begin());
        logInPlace(ln.data(), row);  // a stress not above 0 gives no finite m below
    };
    // m, kept in the efficiency array until the flags of its row are set.
    double* m = map.efficiency_.get();
    fillRow(0, lnThis);
    for (std::size_t j = 0; j < NR; ++j) {
        if (j + 1 < NR)
            fillRow(j + 1, lnNext);
        double* mj = m + j * row;
        if (j + 2 < NR) {
            for (std::size_t e = 0; e < row; ++e) {
                const double sensitivity = (lnNext[e] - lnThis[e]) / dLnRate;
                mj[e] = std::isfinite(sensitivity) ? sensitivity : 0.0;
            }
        } else if (j > 0) {
            std::copy_n(mj - row, row, mj);
        } else {
            std::fill_n(mj, row, 0.0);
        }
        std::swap(lnThis, lnNext);
    }

    // ln(m/(m + 1)) of rows j and j + 1 for ξ.
    std::vector<double> qThis(row), qNext(row);
    const auto fillQ = [&](std::size_t j, std::vector<double>& q) {
        const double* mj = m + j * row;
        for (std::size_t e = 0; e < row; ++e)
            q[e] = mj[e] > 0.0 ? mj[e] / (mj[e] + 1.0) : 1.0;
        logInPlace(q.data(), row);
    };
    fillQ(0, qThis);
    for (std::size_t j = 0; j < NR; ++j) {
        signed char* flags = &map.flag_[j * row];
        double* mj = m + j * row;
        if (j + 3 < NR) {
            fillQ(j + 1, qNext);
            const double* mNext = mj + row;
            for (std::size_t e = 0; e < row; ++e) {
                if (!(mj[e] > 0.0) || !(mNext[e] > 0.0)) {
                    flags[e] = kNoSensitivity;
                    continue;
                }
                const double xi = (qNext[e] - qThis[e]) / dLnRate + mj[e];
                flags[e] = xi <= 0.0 ? kUnstable : kStable;
            }
            std::swap(qThis, qNext);
        } else if (j > 0) {
            std::copy_n(flags - row, row, flags);
        } else {
            std::fill_n(flags, row, kNoSensitivity);
        }
        // Row j's m is used no more: it becomes η = 2m/(m + 1) in percent.
        for (std::size_t e = 0; e < row; ++e) {
            const double eta = 200.0 * mj[e] / (mj[e] + 1.0);
            mj[e] = std::isfinite(eta) ? eta : 0.0;
        }
    }
    control.report(100);
    return map;
}

TextWriter processingMapData(const ProcessingMap& map, std::size_t k)
{
    TextWriter out(TextEncoding::EightBit);
    constexpr std::string_view header = "# Temperature, Strain rate, power, instability\n";
    // Half a million lines: growing the text as it goes would copy it over and over.
    out.reserve(header.size() + 1 + map.temperatureNodes() * (map.rateNodes() * 46 + 2));  // CRLF, a wider value
    out.put(header);
    // The rates' and the flags' columns repeat on every temperature node: spelled once.
    std::vector<std::string> rates(map.rateNodes());
    for (std::size_t j = 0; j < map.rateNodes(); ++j) {
        appendFixed10(rates[j], map.logRates[j]);
        rates[j] += ' ';
    }
    const auto flagIndex = [](MapFlag flag) { return flag == kStable ? 0 : flag == kNoSensitivity ? 1 : 2; };
    std::string flags[3];
    for (const MapFlag flag : {kStable, kNoSensitivity, kUnstable})
        appendFixed10(flags[flagIndex(flag)], static_cast<double>(flag));
    // A temperature node's lines at a time, written in place.
    constexpr std::size_t kLine = 3 * kFixed10Room + 4;
    std::string block(map.rateNodes() * kLine + 1, '\0');
    for (std::size_t i = 0; i < map.temperatureNodes(); ++i) {
        char temperature[kFixed10Room + 1];
        char* const temperatureEnd = writeFixed10(temperature, map.temperatures[i]);
        *temperatureEnd = ' ';
        const std::size_t temperatureLength = static_cast<std::size_t>(temperatureEnd - temperature) + 1;
        char* o = block.data();
        for (std::size_t j = 0; j < map.rateNodes(); ++j) {
            o = std::copy_n(temperature, temperatureLength, o);
            o = std::copy(rates[j].begin(), rates[j].end(), o);
            o = writeFixed10(o, map.efficiency(j, i, k));
            *o++ = ' ';
            const std::string& flag = flags[flagIndex(map.flag(j, i, k))];
            o = std::copy(flag.begin(), flag.end(), o);
            *o++ = '\n';
        }
        *o++ = '\n';
        out.put(std::string_view(block.data(), static_cast<std::size_t>(o - block.data())));
    }
    return out;
}

TextWriter processingMapScript(const PLASTIC_HOT& dataSet, double contourStep, const std::string& dataPath,
                               const MapPictureLabels& labels)
{
    const auto finite = [](double v) { return std::isfinite(v) ? v : 0.0; };
    const double t0 = dataSet.temperatures.empty() ? 0.0 : dataSet.temperatures.front();
    const double t1 = dataSet.temperatures.empty() ? 0.0 : dataSet.temperatures.back();
    const double l0 = dataSet.strainRates.empty() ? 0.0 : finite(std::log10(dataSet.strainRates.front()));
    const double l1 = dataSet.strainRates.empty() ? 0.0 : finite(std::log10(dataSet.strainRates.back()));
    const std::string file = gnuplotQuoted(dataPath);
    TextWriter out(TextEncoding::EightBit);
    if (labels.title.empty())
        out.put(std::string_view("reset\n"
                                 "set multiplot layout 1, 2 title \"Processing map\" font \",20\" offset 0, -2\n"));
    else
        out.put(std::string_view("reset\nset encoding utf8\nset multiplot layout 1, 2 title " + gnuplotQuoted(labels.title)
                                 + " font \",18\" offset 0, -2\nset cblabel \"efficiency (%)\" font \",12\"\n"));
    out.put(std::string_view("unset key\n"
                             "\n"
                             "set title \"Power dissipation map\" font \",16\"\n"
                             "set xlabel \"Temperature\" font \",14\"\n"
                             "set ylabel \"log (strain rate)\" font \",14\" offset -2\n"
                             "set pm3d map\n"
                             "unset surface\n"
                             "set size square\n"
                             "set contour base\n"
                             "set cntrlabel start 10 interval 500 font \",11\"\n"));
    out.format("set cntrparam levels incremental  0, %g, 100\n", finite(contourStep));
    out.put(std::string_view("set xtics autofreq 50\n"
                             "set xtics offset 0\n"
                             "set ytics autofreq 1\n"
                             "set ytics offset 0\n"));
    out.format("splot [%g:%g][%g:%g][0:100]", t0, t1, l0, l1);
    out.put(std::string_view(file + " using 1:2:3 with lines palette, \\\n"));
    out.put(std::string_view("              " + file + " using 1:2:3 with labels \n"));
    out.put(std::string_view("\n"
                             "set title \"Instability map\" font \",16\"\n"
                             "set pm3d map\n"
                             "set surface\n"
                             "set size square\n"
                             "set contour base\n"
                             "set cntrlabel start 10 interval 500 font \",11\"\n"
                             "set cbrange [: 0 ] noreverse writeback\n"));
    if (!labels.title.empty())
        out.put(std::string_view("set cblabel \"-2 unstable, -1 no rate sensitivity\" font \",12\"\n"));
    out.format("splot [%g:%g][%g:%g][:0]", t0, t1, l0, l1);
    out.put(std::string_view(file + " using 1:2:4\n"
                                    "unset multiplot\n"));
    return out;
}

namespace {

// Both files, in a folder made when missing.
bool writeMapFiles(const ProcessingMap& map, std::size_t k, const PLASTIC_HOT& dataSet, double contourStep,
                   const ProcessingMapFiles& files, std::string& error, const MapPictureLabels& labels = {})
{
    if (k >= map.strains.size()) {
        error = map.strains.empty() ? "no sample strains" : "no such sample strain";
        return false;
    }
    return ensureFolder(files.data.parent_path(), error) && saveFileAtomically(files.data, processingMapData(map, k).bytes(), error)
           && saveFileAtomically(files.script,
                                 processingMapScript(dataSet, contourStep, files.data.string(), labels).bytes(), error);
}

}  // namespace

std::optional<ProcessingMapFiles> writeProcessingMapFiles(const ProcessingMap& map, std::size_t k,
                                                          const PLASTIC_HOT& dataSet, double contourStep,
                                                          const std::filesystem::path& folder, std::string& error)
{
    const ProcessingMapFiles files{folder / "processing_map.dat", folder / "processing_map.txt"};
    if (!writeMapFiles(map, k, dataSet, contourStep, files, error))
        return std::nullopt;
    return files;
}

RenderEnd renderProcessingMapPng(const ProcessingMap& map, std::size_t k, const PLASTIC_HOT& dataSet,
                                 double contourStep, const PngRequest& picture, const Environment& environment,
                                 const RunControl& control, std::string& error, const MapPictureLabels& labels)
{
    // Its own data file and script: another map drawn meanwhile in the same
    // folder writes the described files again.
    const std::string stem = "processing_map-" + uniqueTag();
    const ProcessingMapFiles files{environment.exchangeFolder / (stem + ".dat"),
                                   environment.exchangeFolder / (stem + ".txt")};
    RenderEnd end = RenderEnd::Failed;
    if (writeMapFiles(map, k, dataSet, contourStep, files, error, labels)) {
        PngRequest request = picture;
        request.script = files.script;
        end = renderGnuplotPng(request, environment, control, error);
    }
    std::error_code ignored;
    std::filesystem::remove(files.data, ignored);
    std::filesystem::remove(files.script, ignored);
    return end;
}

EfficiencyRange efficiencyRange(const ProcessingMap& map, std::size_t k)
{
    EfficiencyRange range;
    if (k >= map.strains.size())
        return range;
    for (std::size_t j = 0; j < map.rateNodes(); ++j)
        for (std::size_t i = 0; i < map.temperatureNodes(); ++i) {
            const double eta = map.efficiency(j, i, k);
            if (!std::isfinite(eta))
                continue;
            range.min = range.empty ? eta : std::min(range.min, eta);
            range.max = range.empty ? eta : std::max(range.max, eta);
            range.empty = false;
        }
    return range;
}

bool drawsNoContour(const EfficiencyRange& range, double contourStep)
{
    if (range.empty || !(contourStep > 0.0))
        return true;
    // Levels at 0, step, 2·step ... up to 100: none lies within [min, max].
    const double firstLevel = std::ceil(std::max(range.min, 0.0) / contourStep) * contourStep;
    return firstLevel > range.max || firstLevel > 100.0;
}

}  // namespace zelko
