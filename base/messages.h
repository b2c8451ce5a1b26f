#pragma once
// Every message the engine gives a user, as a code; the texts (some of them
// printf formats) live in one table in messages.cpp. The screens and the
// command-line tool show messageText(code) or formatMessage(code, ...).

#include <string>
#include <string_view>

namespace zelko {

enum class MessageCode {
    None,
    // base: files
    CannotCreateFolder,
    // models
    // cold
    UnknownHardeningLaw,
    TooFewPointsToNecking,
    NoValidEngineeringPoints,
    TrueCurveNotANumber,
    IncorrectLengthUnit,
    IncorrectForceUnit,
    UnknownInputCurve,
    SpecimenNotPositive,
    SpecimenAreaZero,
    SpecimenGivesNoCurve,
    CurveNotANumber,
    NoAnalysisResultFile,
    AnalysisNotCompleted,
    AnalysisCurveNotUsable,
    CurveLineNotTwoOrThreeNumbers,
    CurveLineNotFinite,
    CurveTooShort,
    // hot
    RateNotPositive,
    TooManyTemperatures,
    TooManyStrains,
    TooFewStrainRates,
    NoTemperature,
    NoExchangeFolder,
    RawFileNotSaved,
    Model162Refused,
    // material
    NotAMaterialFile,
    NoFlowStressModel,
    ModelWroteNoBlock,
    SelectConductivityRow,
    SelectHeatCapacityRow,
    ConductivityTemperatureExists,
    HeatCapacityTemperatureExists,
    PhysPropsEmpty,
    PhysPropsMissingColumn,
    PhysPropsDuplicateColumn,
    PhysPropsColumnBeyondRow,
    PhysPropsNoRows,
    PhysPropsNotANumber,
    PhysPropsDecimalComma,
    PhysPropsNotFinite,
    PhysPropsRowNotFinite,
    CompositionOutOfRange,
    CompositionOverWhole,
    ModulusNotPositive,
    MaterialFileEndsEarly,
    MaterialTooLargeToRead,
};

std::string_view messageText(MessageCode code);
// The code's text as a printf format filled with the arguments.
std::string formatMessage(MessageCode code, ...);

}  // namespace zelko
