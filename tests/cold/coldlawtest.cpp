#include <gtest/gtest.h>

#include <cmath>

#include "cold/coldlaws.h"
#include "testutil.h"

namespace zelko {
namespace {

// Central differences agree with an analytic derivative to about 1e-6 relative
// at these step sizes; a wrong derivative is off by far more.
constexpr double kDerivativeTolerance = 1e-5;

RoomOri swiftRecord(std::size_t count = 60)
{
    RoomOri record;
    record.inputKind = TrueCurve;
    for (std::size_t i = 0; i < count; ++i) {
        const double e = 0.2 * static_cast<double>(i) / static_cast<double>(count - 1);
        record.curves[TrueCurve].push_back({e, 500.0 * std::pow(1.0 + e / 0.02, 0.22)});
    }
    record.neckingIndex = static_cast<int>(count) - 1;
    return record;
}

// A parameter set for each law, away from its boundaries.
std::vector<double> sampleParameters(ColdLawId law)
{
    switch (law) {
    case ColdLawId::Swift: return {450, 0.015, 0.25};
    case ColdLawId::Hollomon: return {900, 0.18};
    case ColdLawId::Ludwik: return {300, 700, 0.4};
    case ColdLawId::KimTuan: return {300, 0.002, 600, 0.35, 15};
    case ColdLawId::HockettSherby: return {300, 400, 6, 0.7};
    case ColdLawId::VoceGeneral: return {300, 350, 18, 0.8};
    case ColdLawId::ElMagd: return {300, 350, 18, 250};
    case ColdLawId::VoyiadjisAbed: return {300, 400, 12};
    }
    return {};
}

TEST(ColdLaws, PartialsAndSlopesAreTheDerivativesOfTheLaw)
{
    const RoomOri record = swiftRecord();
    for (const ColdLawId id : kColdLaws) {
        const auto law = makeColdLaw(id, record);
        SCOPED_TRACE(coldLawTitle(id));
        const std::vector<double> p = sampleParameters(id);
        ASSERT_EQ(p.size(), law->parameterCount());
        std::vector<double> d(p.size());
        for (const double e : {0.003, 0.05, 0.3}) {
            law->partialsAt(e, p.data(), d.data());
            for (std::size_t k = 0; k < p.size(); ++k) {
                std::vector<double> up = p, down = p;
                const double h = 1e-6 * std::max(1.0, std::fabs(p[k]));
                up[k] += h;
                down[k] -= h;
                const double numeric = (law->stressAt(e, up.data()) - law->stressAt(e, down.data())) / (2 * h);
                EXPECT_NEAR(d[k], numeric, kDerivativeTolerance * std::max(1.0, std::fabs(numeric)))
                    << "parameter " << k << " at strain " << e;
            }
            const double h = 1e-7;
            const double numericSlope = (law->stressAt(e + h, p.data()) - law->stressAt(e - h, p.data())) / (2 * h);
            EXPECT_NEAR(law->slopeAt(e, p.data()), numericSlope, kDerivativeTolerance * std::fabs(numericSlope));
        }
    }
}

TEST(ColdLaws, WholeCurveGradientMatchesThePointFormulas)
{
    // The vectorised kernels against the one-point formulas, including the
    // zero-strain first point where power terms vanish.
    const RoomOri record = swiftRecord(37);
    for (const ColdLawId id : kColdLaws) {
        const auto law = makeColdLaw(id, record);
        SCOPED_TRACE(coldLawTitle(id));
        const std::vector<double> p = sampleParameters(id);
        std::vector<double> expected(p.size(), 0.0), d(p.size());
        double sum = 0.0;
        for (const CurvePoint& point : record.curves[TrueCurve]) {
            const double r = law->stressAt(point.x, p.data()) - point.y;
            ASSERT_TRUE(std::isfinite(r));
            sum += r * r;
            law->partialsAt(point.x, p.data(), d.data());
            for (std::size_t k = 0; k < p.size(); ++k)
                expected[k] += 2 * r * d[k];
        }
        const std::vector<double> g = law->sumOfSquaresGradient(p);
        for (std::size_t k = 0; k < p.size(); ++k)
            EXPECT_NEAR(g[k], expected[k], 1e-9 * std::max(1.0, std::fabs(expected[k]))) << "parameter " << k;
        EXPECT_NEAR(law->objective(p, 1000), std::sqrt(sum / 37), 1e-9 * std::sqrt(sum));
    }
}

TEST(ColdLaws, ErrorDivisorsDifferOnPurpose)
{
    RoomOri record;
    record.inputKind = TrueCurve;
    record.curves[TrueCurve] = {{0.0, 110, 3, true}, {0.1, 100, 1, true}};
    record.neckingIndex = 1;
    const std::vector<double> constant = {100, 0, 1};  // Ludwik Y = 100, K = 0
    PLASTIC_4 ludwik(record);
    // Residuals 10 and 0, weights 3 and 1: Ludwik divides by the point count.
    EXPECT_DOUBLE_EQ(ludwik.objective(constant, 2), std::sqrt(3.0 * 100 / 2));
    PLASTIC_1 swift(record);
    const std::vector<double> flat = {100, 0.01, 0.0};  // Swift with n = 0 is the constant Y0
    EXPECT_DOUBLE_EQ(swift.objective(flat, 2), std::sqrt(3.0 * 100 / 4));  // by the sum of weights
    // A first point of two values makes the whole Swift error unweighted.
    record.curves[TrueCurve][0].hasWeight = false;
    EXPECT_DOUBLE_EQ(PLASTIC_1(record).objective(flat, 2), std::sqrt(100.0 / 2));
    EXPECT_DOUBLE_EQ(PLASTIC_1(record).objective(flat, 1), 10.0);  // over the first n points only
}

TEST(ColdLaws, ResultTextsKeepTheirOwnSpellings)
{
    RoomOri record = swiftRecord();
    PLASTIC_1 swift(record);
    swift.parameters = {450, 0.015, 0.25};
    swift.fitError = 1.5;
    const double slope = 0.25 * 450 * std::pow(1 + 0.2 / 0.015, -0.75) / 0.015;
    EXPECT_EQ(swift.resultText(), formatText("Y0 =       4.5000E+02 \ns0 =       1.5000E-02 \nn =       2.5000E-01\n"
                                             "Error =       1.5000E+00 MPa\nSlope at necking point = %16.4E",
                                             slope));
    PLASTIC_3 hollomon(record);
    hollomon.parameters = {900, 0.18};
    EXPECT_EQ(hollomon.resultText(), "K =       9.0000E+02 \nn =       1.8000E-01\nError =       0.0000E+00 MPa");
    PLASTIC_4 ludwik(record);
    ludwik.parameters = {300, 700, 0.4};
    EXPECT_NE(ludwik.resultText().find("Slope at necking point =       0.0000E+00"), std::string::npos);
    PLASTIC_Hockett_Sherby hockett(record);
    hockett.parameters = {300, 400, 6, 0.7};
    EXPECT_NE(hockett.resultText().find("V2 =       6.0000E+00 \n H1 =       7.0000E-01\nError"), std::string::npos);
    // A value that is no number never reaches the text.
    swift.parameters[0] = std::nan("");
    EXPECT_EQ(swift.resultText().find("nan"), std::string::npos);
}

TEST(ColdLaws, OnlySwiftHollomonAndLudwikWriteALibraryBlock)
{
    RoomOri record = swiftRecord();
    record.blockLeadValue = 7;
    const std::string head = "%8d\n                    7.0000E+00        1.0000E+05        1.0000E-04"
                             "        0.0000E+00        0.0000E+00        0.0000E+00\n";
    struct Case {
        ColdLawId law;
        std::string expected;
    };
    const Case cases[] = {
        {ColdLawId::Swift, formatText(head.c_str(), 1) + "                    4.5000E+02        2.5000E-01        1.5000E-02\n"},
        {ColdLawId::Hollomon, formatText(head.c_str(), 3) + "                    9.0000E+02        1.8000E-01        7.0000E+00\n"},
        {ColdLawId::Ludwik, formatText(head.c_str(), 4) + "                    3.0000E+02        7.0000E+02        4.0000E-01\n"},
    };
    for (const Case& c : cases) {
        const auto law = makeColdLaw(c.law, record);
        law->parameters = sampleParameters(c.law);
        TextWriter out(TextEncoding::EightBit);
        EXPECT_TRUE(law->writeLibraryBlock(out, 6));
        EXPECT_EQ(test::textOf(out), c.expected);
    }
    for (const ColdLawId id : kColdLaws) {
        if (id == ColdLawId::Swift || id == ColdLawId::Hollomon || id == ColdLawId::Ludwik)
            continue;
        const auto law = makeColdLaw(id, record);
        law->parameters = sampleParameters(id);
        TextWriter out(TextEncoding::EightBit);
        EXPECT_FALSE(law->writeLibraryBlock(out, 6));
        EXPECT_TRUE(out.text().empty());
    }
}

}  // namespace
}  // namespace zelko
