#include "base/messages.h"

#include <array>
#include <cstdarg>

#include "base/textfile.h"

namespace zelko {

namespace {

struct MessageEntry {
    MessageCode code;
    std::string_view text;
};

// In the order of the codes (checked below).
constexpr MessageEntry kMessages[] = {
    {MessageCode::None, ""},
    // base: files
    {MessageCode::CannotCreateFolder, "cannot create the folder %s"},
    // models
    // cold
    {MessageCode::UnknownHardeningLaw, "There is no hardening law with that number."},
    {MessageCode::TooFewPointsToNecking, "At least two points are needed between the start and the necking point."},
    {MessageCode::NoValidEngineeringPoints, "The engineering curve has no valid points between the start and the necking point."},
    {MessageCode::TrueCurveNotANumber, "The true curve holds a value that is not a number."},
    {MessageCode::IncorrectLengthUnit, "Incorrect length unit was selected."},
    {MessageCode::IncorrectForceUnit, "Incorrect force unit was selected"},
    {MessageCode::UnknownInputCurve, "Unknown kind of input curve."},
    {MessageCode::SpecimenNotPositive, "The diameter and the gauge length must be greater than 0."},
    {MessageCode::SpecimenAreaZero, "the specimen's cross-section at a diameter of %g mm is zero (or beyond any number): the curve gives no stresses"},
    {MessageCode::SpecimenGivesNoCurve, "the specimen size (diameter %g mm, gauge length %g mm) gives no usable curve: a strain or stress is not a finite number"},
    {MessageCode::CurveNotANumber, "The curve holds a value that is not a number."},
    {MessageCode::NoAnalysisResultFile, "There is no analysis result file."},
    {MessageCode::AnalysisNotCompleted, "Analysis has not been completed."},
    {MessageCode::AnalysisCurveNotUsable,
        "The analysis result holds no usable flow curve (no points, or a value that is not a number)."},
    {MessageCode::CurveLineNotTwoOrThreeNumbers, "line %zu: expected two or three numbers"},
    {MessageCode::CurveLineNotFinite, "line %zu: a value is not a finite number"},
    {MessageCode::CurveTooShort, "the curve has fewer than two points"},
    // hot
    {MessageCode::RateNotPositive, "Please enter a number greater than '0'."},
    {MessageCode::TooManyTemperatures, "The maximum number of temperature is 30."},
    {MessageCode::TooManyStrains, "The maximum number of strain is 15."},
    {MessageCode::TooFewStrainRates, "The strain-rate group need at least two number of items"},
    {MessageCode::NoTemperature, "The temperature group need at least one number of items"},
    {MessageCode::NoExchangeFolder, "It did not create Directory(c:\\temp\\ZELKO)."},
    {MessageCode::RawFileNotSaved, "It did not save a raw data file."},
    {MessageCode::Model162Refused, "162 model is not supported"},
    // material
    {MessageCode::NotAMaterialFile, "not a material file (version line or title rejected)"},
    {MessageCode::NoFlowStressModel, "the material has no flow-stress model, so it has no library entry"},
    {MessageCode::ModelWroteNoBlock, "the %s model %d wrote no block; the entry's model section is empty"},
    {MessageCode::SelectConductivityRow, "항목을 선택하세요."},
    {MessageCode::SelectHeatCapacityRow, "항목을 선택하여 주십시오."},
    // The two tables print the clash with one and with no decimal.
    {MessageCode::ConductivityTemperatureExists, "%.1f ℃는 이미 존재합니다."},
    {MessageCode::HeatCapacityTemperatureExists, "%.0f ℃는 이미 존재합니다."},
    {MessageCode::PhysPropsEmpty, "The PhysProps file is empty."},
    {MessageCode::PhysPropsMissingColumn, "The PhysProps file has no column \"%s\"."},
    {MessageCode::PhysPropsDuplicateColumn, "The PhysProps file has more than one column \"%s\"."},
    {MessageCode::PhysPropsColumnBeyondRow, "The column \"%s\" lies beyond the twelve numbers read for each row."},
    {MessageCode::PhysPropsNoRows, "The PhysProps file holds no rows of numbers."},
    {MessageCode::PhysPropsNotANumber, "Line %zu of the PhysProps file holds \"%s\" where a number belongs."},
    {MessageCode::PhysPropsDecimalComma,
        "Line %zu of the PhysProps file holds \"%s\" after a number: the file uses decimal commas; "
        "export it with decimal points."},
    {MessageCode::PhysPropsNotFinite, "Line %zu of the PhysProps file holds a number that is not finite (read as %g)."},
    {MessageCode::PhysPropsRowNotFinite,
        "The row ending on line %zu of the PhysProps file gives a conductivity or heat capacity that is not finite."},
    {MessageCode::CompositionOutOfRange, "the %s content %g wt%% lies outside 0 to 100 wt%%; no steel holds it"},
    {MessageCode::CompositionOverWhole,
        "the contents add up to %g wt%% (%s alone %g wt%%), more than the whole steel's 100 wt%%"},
    {MessageCode::ModulusNotPositive,
        "the estimate at %g C is %g MPa, no modulus: the %s content %g wt%% lies beyond what the method covers"},
    {MessageCode::MaterialFileEndsEarly, "the file ends early; part of the material may be missing"},
    {MessageCode::MaterialTooLargeToRead,
        "the material would be too large to read back (%.0f MB, more than the %.0f MB a material file may hold); "
        "nothing was saved"},
};

constexpr bool inCodeOrder()
{
    for (std::size_t i = 0; i < std::size(kMessages); ++i)
        if (static_cast<std::size_t>(kMessages[i].code) != i)
            return false;
    return true;
}
static_assert(inCodeOrder(), "the message table must list the codes in order");

}  // namespace

std::string_view messageText(MessageCode code)
{
    const auto index = static_cast<std::size_t>(code);
    return index < std::size(kMessages) ? kMessages[index].text : std::string_view();
}

std::string formatMessage(MessageCode code, ...)
{
    const std::string format(messageText(code));
    va_list args;
    va_start(args, code);
    std::string text = formatTextV(format.c_str(), args);
    va_end(args);
    return text;
}

}  // namespace zelko
