#pragma once
// The processing map: strain-rate sensitivity m, power-dissipation efficiency η
// and the instability flag on a fine temperature × log strain-rate grid, from a
// hot model; its data file and gnuplot script, and its picture.

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/environment.h"
#include "base/largearray.h"
#include "base/runcontrol.h"
#include "hot/gnuplot.h"
#include "hot/plastic_hot.h"

namespace zelko {

inline constexpr int kMapNodesPerInterval = 50;
// Stress, efficiency and flag take 17 bytes a grid entry; beyond this many
// entries a map is refused (30 temperatures, 9 rates and 15 strains make 8.7 million).
inline constexpr std::size_t kMaxProcessingMapEntries = 12'000'000;

// A contour every 0.1 % of efficiency is already more than a map can show;
// steps are taken from there up to 100 (percent).
inline constexpr double kSmallestContourStep = 0.1;

enum MapFlag : signed char { kStable = 1, kNoSensitivity = -1, kUnstable = -2 };

// The model's evaluation takes nearly all of a map's time: its share of the progress.
inline constexpr int kEvaluationPercent = 90;

class ProcessingMap {
public:
    std::vector<double> temperatures;  // T_i, i < NT
    std::vector<double> logRates;      // L_j = log10 of the rate, j < NR
    std::vector<double> strains;       // the sample strains computed

    std::size_t temperatureNodes() const { return temperatures.size(); }
    std::size_t rateNodes() const { return logRates.size(); }
    // [rate node][temperature node][strain]
    double stress(std::size_t j, std::size_t i, std::size_t k) const { return stress_[index(j, i, k)]; }
    double efficiency(std::size_t j, std::size_t i, std::size_t k) const { return efficiency_[index(j, i, k)]; }
    MapFlag flag(std::size_t j, std::size_t i, std::size_t k) const
    {
        return static_cast<MapFlag>(flag_[index(j, i, k)]);
    }

private:
    friend std::optional<ProcessingMap> computeProcessingMap(const PLASTIC_HOT&, std::optional<std::size_t>,
                                                             std::string&, const RunControl&);
    std::size_t index(std::size_t j, std::size_t i, std::size_t k) const
    {
        return (j * temperatures.size() + i) * strains.size() + k;
    }
    LargeArray<double> stress_;
    LargeArray<double> efficiency_;
    LargeArray<signed char> flag_;
};

// The map at every sample strain, or at the one given. The stress of a node is
// the model's at the node's rate for the two test temperatures around it,
// linear in temperature between them. Where a stress is not above 0, m is 0.
// Nothing, with a reason, for rates not above 0 or a grid too large, and with
// kRunCancelled on a stop, which ends it within one rate node.
std::optional<ProcessingMap> computeProcessingMap(const PLASTIC_HOT& model, std::optional<std::size_t> onlyStrain,
                                                  std::string& error, const RunControl& control = {});

// The smallest and largest efficiency (percent) over the grid at strain k, and
// whether a contour step draws no line there (the range lies between two levels:
// a law whose rate sensitivity does not change with rate draws an empty map).
struct EfficiencyRange {
    double min = 0.0;
    double max = 0.0;
    bool empty = true;  // no node
};
EfficiencyRange efficiencyRange(const ProcessingMap& map, std::size_t k);
bool drawsNoContour(const EfficiencyRange& range, double contourStep);

// printf's "%10.4f", appended; the data file has half a million lines of it.
void appendFixed10(std::string& line, double value);
// The same written from out, which has room for kFixed10Room characters; returns the end.
inline constexpr std::size_t kFixed10Room = 330;  // the widest: -DBL_MAX
char* writeFixed10(char* out, double value);

// "processing_map.dat" for the map's strain k: header, "%10.4f %10.4f %10.4f %10.4f\n"
// (T, log10 rate, η, flag) a node, an empty line after each temperature node.
// 8-bit text, since gnuplot cannot read UTF-16.
TextWriter processingMapData(const ProcessingMap& map, std::size_t k);
// What a picture of the map says beyond the exchange folder's script: a title
// naming material, model and strain, and labelled colour bars. Empty: the script
// as the external plot has always had it.
struct MapPictureLabels {
    std::string title;
};
// "processing_map.txt": draws both maps from the data file at dataPath.
TextWriter processingMapScript(const PLASTIC_HOT& dataSet, double contourStep, const std::string& dataPath,
                               const MapPictureLabels& labels = {});

struct ProcessingMapFiles {
    std::filesystem::path data;
    std::filesystem::path script;
};
// "processing_map.dat" and "processing_map.txt" in the folder (made when
// missing) for the map's strain k; the script's ranges come from the data set's
// lists. Nothing, with a reason, on failure or for a map without strains.
std::optional<ProcessingMapFiles> writeProcessingMapFiles(const ProcessingMap& map, std::size_t k,
                                                          const PLASTIC_HOT& dataSet, double contourStep,
                                                          const std::filesystem::path& folder, std::string& error);

// Draws the map's strain k with gnuplot into picture.png (picture.script is not
// used): from a data file and script of its own in the exchange folder, removed
// afterwards, so maps drawn at once never read each other's.
RenderEnd renderProcessingMapPng(const ProcessingMap& map, std::size_t k, const PLASTIC_HOT& dataSet,
                                 double contourStep, const PngRequest& picture, const Environment& environment,
                                 const RunControl& control, std::string& error, const MapPictureLabels& labels = {});

}  // namespace zelko
