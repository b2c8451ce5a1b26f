#pragma once
// The tensile simulation model: the flow curve identified by the external
// two-dimensional tensile-test solver, and the job that asks it for one.

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "base/environment.h"
#include "models/roomori.h"

namespace zelko {

// Ductile-fracture criteria offered with the job; 5, 6 and 8 carry a constant.
struct FractureCriterion {
    int number;
    const char* name;
};
inline constexpr FractureCriterion kFractureCriteria[] = {
    {0, "None"},
    {3, "Cockroft & Latham Normalized"},
    {4, "McClintock"},
    {5, "Oyane, Okimoto & Shima"},
    {6, "Rice & Tracey"},
    {7, "Brozzo, Deluca & Rendina"},
    {9, "Freudenthal"},
};

struct TensileJobSettings {
    int fractureCriterion = 0;
    double fractureConstant = 0.0;  // "Oyane Constant (c)" or "Rice & Tracey Constant (A)"
    int iterationSetting = 100;     // N of the deck; above 200 it is written negative
    int finalInteger = 0;
    double finalValue = 0.0;
    int maxSelectedPoints = 20;
};

class PLASTIC_8 : public RoomOri {
public:
    PLASTIC_8() { modelNumber = 8; }
    explicit PLASTIC_8(const RoomOri& record) : RoomOri(record) { modelNumber = 8; }
    std::shared_ptr<Plastic> clone() const override { return cloneAs<PLASTIC_8>(); }

    bool writeLibraryBlock(TextWriter& out, int version) const override;
    bool readLibraryBlock(TextReader& in) override;

    double curveParameter = 0.0;
    std::vector<std::pair<double, double>> identifiedCurve;  // strain, stress
};

// The points of the load-displacement list the solver matches: evenly spaced from
// the start to the end (fracture) index, both kept.
std::vector<int> selectedJobPoints(const RoomOri& record, int maxPoints);

// The five job files, by name and bytes (UTF-8 with byte-order mark, CRLF).
struct JobFile {
    std::string name;
    std::string bytes;
};
std::vector<JobFile> tensileJobFiles(const RoomOri& record, const std::string& baseName,
                                     const TensileJobSettings& settings);
std::string tensileControlDeck(const RoomOri& record, const std::vector<int>& selected, double offset,
                               const TensileJobSettings& settings);

// Writes the job files into the folder; false with a reason when one can't be written.
bool writeTensileJob(const RoomOri& record, const std::filesystem::path& jobFile, const TensileJobSettings& settings,
                     std::string& error);

// Reads the progress file text: false when it has no marker line (the curve is
// left as it was). More than 20 pairs are thinned to 20.
bool readTensileProgress(std::string_view bytes, PLASTIC_8& model);

enum class TensileResultStatus { Read, NoResultFile, NotCompleted, NoUsableCurve };
// Looks for the job's result and progress files and reads the identified curve.
// A finished job whose curve has no points, or a value that is not a finite
// number, is NoUsableCurve: such a curve must not reach a library.
TensileResultStatus readTensileResult(const std::filesystem::path& jobFile, PLASTIC_8& model);
// "There is no analysis result file." / "Analysis has not been completed." / ...
const char* tensileResultMessage(TensileResultStatus status);

// Starts the solver detached in the job's folder with the job list on its input.
bool startTensileSolver(const std::filesystem::path& jobFile, const Environment& environment, std::string& error);

}  // namespace zelko
