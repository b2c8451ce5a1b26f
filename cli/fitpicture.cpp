#include "cli/fitpicture.h"

#include <algorithm>
#include <cmath>
#include <system_error>

#include "base/exchangefolder.h"
#include "base/fileio.h"
#include "base/process.h"
#include "base/textfile.h"
#include "hot/gnuplot.h"

namespace zelko::cli {

namespace {

// A picture shows no more points than a screen has pixels across.
constexpr std::size_t kMostMeasuredPoints = 1500;
constexpr int kLawSamples = 200;
constexpr double kExtrapolatedStrain = 1.0;
constexpr int kHotPanelsPerRow = 3;
constexpr int kHotPanelHeight = 450;

void appendDataBlock(std::string& script, const std::string& name, const std::vector<std::pair<double, double>>& xy)
{
    script += "$" + name + " << EOD\n";
    for (const auto& [x, y] : xy)
        if (std::isfinite(x) && std::isfinite(y))
            script += formatText("%.9g %.9g\n", x, y);
    script += "EOD\n";
}

std::vector<std::pair<double, double>> lawSamples(const ColdLaw& law, double last)
{
    std::vector<std::pair<double, double>> xy;
    for (int i = 0; i <= kLawSamples; ++i) {
        const double e = last * i / kLawSamples;
        xy.emplace_back(e, law.stressAt(e, law.parameters.data()));
    }
    return xy;
}

}  // namespace

std::string coldFitScript(const std::string& title, const std::vector<const LawComparison*>& laws)
{
    std::string script;
    if (laws.empty() || !laws.front()->fitted)
        return script;
    const FitPoints points = laws.front()->fitted->fittedPoints();
    std::vector<std::pair<double, double>> measured;
    const std::size_t step = std::max<std::size_t>(1, points.size() / kMostMeasuredPoints);
    for (std::size_t i = 0; i < points.size(); i += step)
        measured.emplace_back(points.strain[i], points.stress[i]);
    appendDataBlock(script, "measured", measured);
    const double last = points.size() ? points.strain.back() : 0.0;
    for (std::size_t k = 0; k < laws.size(); ++k) {
        appendDataBlock(script, formatText("fit%zu", k), lawSamples(*laws[k]->fitted, last));
        appendDataBlock(script, formatText("far%zu", k), lawSamples(*laws[k]->fitted, kExtrapolatedStrain));
    }
    // Measured points last, in grey, so the laws do not hide them.
    const auto plots = [&](const char* prefix) {
        std::string plot = "plot ";
        for (std::size_t k = 0; k < laws.size(); ++k)
            plot += formatText("$%s%zu using 1:2 with lines lw 2 title %s, ", prefix, k,
                               gnuplotQuoted(formatText("%s (RMSE %.3g MPa)", coldLawTitle(laws[k]->law),
                                                        laws[k]->rmse))
                                   .c_str());
        return plot + "$measured using 1:2 with points pt 7 ps 0.6 lc rgb '#808080' title 'measured'\n";
    };
    double lowest = HUGE_VAL, highest = -HUGE_VAL;
    for (const auto& [e, s] : measured) {
        lowest = std::min(lowest, s);
        highest = std::max(highest, s);
    }
    // A law that starts at zero stress would squash the measured range into a line.
    const double margin = 0.1 * std::max(highest - lowest, 0.05 * std::fabs(highest));
    script += "set encoding utf8\nset multiplot layout 1, 2 title " + gnuplotQuoted(title) + " font ',14'\n";
    script += "set grid\nset xlabel 'true strain from the start point'\nset ylabel 'true stress (MPa)'\n";
    script += formatText("set title 'Measured range'\nunset key\nset xrange [0:%g]\nset yrange [%g:%g]\n", last,
                         lowest - margin, highest + margin);
    script += plots("fit");
    script += formatText("set title 'Extrapolated to true strain %g'\nset key top left font ',9'\nset xrange [0:%g]\n"
                         "set yrange [%g:*]\n",
                         kExtrapolatedStrain, kExtrapolatedStrain, 0.8 * lowest);
    script += plots("far") + "unset multiplot\n";
    return script;
}

int hotFitPictureHeight(const PLASTIC_HOT& model)
{
    const int rows = (static_cast<int>(model.temperatures.size()) + kHotPanelsPerRow - 1) / kHotPanelsPerRow;
    return std::max(1, rows) * kHotPanelHeight + 60;
}

std::string hotFitScript(const std::string& title, const PLASTIC_HOT& model)
{
    std::string script = "set encoding utf8\n";
    const std::size_t temperatures = model.temperatures.size();
    const std::size_t rates = model.strainRates.size();
    for (std::size_t t = 0; t < temperatures; ++t)
        for (std::size_t r = 0; r < rates; ++r) {
            const HotCurve& curve = model.curve(t, r);
            std::vector<std::pair<double, double>> measured, fitted;
            const std::size_t step = std::max<std::size_t>(1, curve.size() / 100);
            for (std::size_t i = 0; i < curve.size(); i += step) {
                measured.emplace_back(curve[i].strain, curve[i].stress);
                // Laws with a power of strain have no value at zero strain.
                if (curve[i].strain > 0.0)
                    fitted.emplace_back(curve[i].strain,
                                        model.evaluate(curve[i].strain, model.strainRates[r], model.temperatures[t]));
            }
            appendDataBlock(script, formatText("m%zu_%zu", t, r), measured);
            appendDataBlock(script, formatText("f%zu_%zu", t, r), fitted);
        }
    const int rows = (static_cast<int>(temperatures) + kHotPanelsPerRow - 1) / kHotPanelsPerRow;
    script += formatText("set multiplot layout %d, %d title %s font ',14'\n", std::max(1, rows), kHotPanelsPerRow,
                         gnuplotQuoted(title).c_str());
    script += "set grid\nset key below horizontal font ',9'\nset xlabel 'true strain'\nset ylabel 'true stress (MPa)'\n";
    for (std::size_t t = 0; t < temperatures; ++t) {
        script += formatText("set title '%g °C'\nplot ", model.temperatures[t]);
        for (std::size_t r = 0; r < rates; ++r)
            script += formatText("%s$m%zu_%zu using 1:2 with points pt 7 ps 0.4 lc %zu title '%g /s', "
                                 "$f%zu_%zu using 1:2 with lines lw 2 lc %zu notitle",
                                 r ? ", " : "", t, r, r + 1, model.strainRates[r], t, r, r + 1);
        script += "\n";
    }
    script += "unset multiplot\n";
    return script;
}

std::string pictureTitle(const Project& material, const std::string& subject)
{
    std::string title = utf16ToUtf8(material.title);
    // A title may keep the line end of the screen's text box.
    std::erase_if(title, [](char c) { return c == '\r' || c == '\n'; });
    return title.empty() ? subject : title + " - " + subject;
}

bool drawPicture(const std::string& script, const std::filesystem::path& png, int width, int height,
                 const Environment& environment, std::string& error)
{
    if (!ensureFolder(environment.exchangeFolder, error))
        return false;
    const std::filesystem::path scriptPath = environment.exchangeFolder / ("fit_picture-" + uniqueTag() + ".gp");
    bool drawn = saveFileAtomically(scriptPath, script, error);
    if (drawn) {
        const PngRequest request{scriptPath, png, width, height};
        drawn = renderGnuplotPng(request, environment, {}, error) == RenderEnd::Drawn;
    }
    std::error_code ignored;
    std::filesystem::remove(scriptPath, ignored);
    return drawn;
}

}  // namespace zelko::cli
