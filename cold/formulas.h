#pragma once
// The laws' values, partial derivatives with respect to their parameters, and
// slopes d(sigma)/d(eps). Strains at or below 0 give power terms of 0 (and no
// logarithm), so a curve that starts at zero strain never yields NaN.

#include <cmath>
#include <cstddef>

#include "cold/lawkernels.h"

namespace zelko {

namespace formula {

// x^n for x > 0, else 0; with ln x for the derivative with respect to n.
inline double powPositive(double x, double n, double& lnX)
{
    if (!(x > 0.0)) {
        lnX = 0.0;
        return 0.0;
    }
    lnX = std::log(x);
    return std::exp(n * lnX);
}

}  // namespace formula

struct SwiftFormula {  // Y0, s0, n
    static constexpr std::size_t kCount = 3;
    static constexpr LawKernelId kKernel = LawKernelId::Swift;
    static double value(double e, const double* p)
    {
        double lnG = 0.0;
        return p[0] * formula::powPositive(1.0 + e / p[1], p[2], lnG);
    }
    static void partials(double e, const double* p, double* d)
    {
        const double g = 1.0 + e / p[1];
        double lnG = 0.0;
        const double gn = formula::powPositive(g, p[2], lnG);
        const double gn1 = g > 0.0 ? gn / g : 0.0;
        d[0] = gn;
        d[1] = -p[0] * p[2] * gn1 * e / (p[1] * p[1]);
        d[2] = lnG * gn * p[0];
    }
    static double slope(double e, const double* p)
    {
        double lnG = 0.0;
        return p[2] * p[0] * formula::powPositive(1.0 + e / p[1], p[2] - 1.0, lnG) / p[1];
    }
    // s0 stays above 0 and the exponent below 1.
    static bool admissible(const double* p) { return p[1] > 0.0 && p[2] < 1.0; }
};

struct HollomonFormula {  // K, n
    static constexpr std::size_t kCount = 2;
    static constexpr LawKernelId kKernel = LawKernelId::Hollomon;
    static double value(double e, const double* p)
    {
        double lnE = 0.0;
        return p[0] * formula::powPositive(e, p[1], lnE);
    }
    static void partials(double e, const double* p, double* d)
    {
        double lnE = 0.0;
        const double en = formula::powPositive(e, p[1], lnE);
        d[0] = en;
        d[1] = p[0] * en * lnE;
    }
    static double slope(double e, const double* p)
    {
        double lnE = 0.0;
        return p[0] * p[1] * formula::powPositive(e, p[1] - 1.0, lnE);
    }
    static bool admissible(const double* p) { return p[0] > 0.0 && p[1] > 0.0 && p[1] < 1.0; }
};

struct LudwikFormula {  // Y, K, n
    static constexpr std::size_t kCount = 3;
    static constexpr LawKernelId kKernel = LawKernelId::Ludwik;
    static double value(double e, const double* p)
    {
        double lnE = 0.0;
        return p[0] + p[1] * formula::powPositive(e, p[2], lnE);
    }
    static void partials(double e, const double* p, double* d)
    {
        double lnE = 0.0;
        const double en = formula::powPositive(e, p[2], lnE);
        d[0] = 1.0;
        d[1] = en;
        d[2] = p[1] * en * lnE;
    }
    static double slope(double e, const double* p)
    {
        double lnE = 0.0;
        return p[1] * p[2] * formula::powPositive(e, p[2] - 1.0, lnE);
    }
    static bool admissible(const double* p) { return p[2] > 0.0; }
};

struct KimTuanFormula {  // YS, s0, T, m, C
    static constexpr std::size_t kCount = 5;
    static constexpr LawKernelId kKernel = LawKernelId::KimTuan;
    static double value(double e, const double* p)
    {
        double lnS = 0.0;
        return p[0] + p[2] * formula::powPositive(p[1] + e, p[3], lnS) * (1.0 - std::exp(-p[4] * e));
    }
    static void partials(double e, const double* p, double* d)
    {
        double lnS = 0.0;
        const double s = p[1] + e;
        const double sm = formula::powPositive(s, p[3], lnS);
        const double decay = std::exp(-p[4] * e);
        const double saturation = 1.0 - decay;
        d[0] = 1.0;
        d[1] = s > 0.0 ? p[2] * p[3] * sm / s * saturation : 0.0;
        d[2] = sm * saturation;
        d[3] = p[2] * sm * lnS * saturation;
        d[4] = p[2] * sm * e * decay;
    }
    static double slope(double e, const double* p)
    {
        double lnS = 0.0;
        const double s = p[1] + e;
        const double sm = formula::powPositive(s, p[3], lnS);
        const double decay = std::exp(-p[4] * e);
        const double sm1 = s > 0.0 ? sm / s : 0.0;
        return p[2] * (p[3] * sm1 * (1.0 - decay) + p[4] * sm * decay);
    }
    static bool admissible(const double* p) { return p[1] > 0.0 && p[4] >= 0.0; }
};

struct HockettSherbyFormula {  // YS, V1, V2, H1
    static constexpr std::size_t kCount = 4;
    static constexpr LawKernelId kKernel = LawKernelId::HockettSherby;
    static double value(double e, const double* p)
    {
        double lnE = 0.0;
        return p[0] + p[1] * (1.0 - std::exp(-p[2] * formula::powPositive(e, p[3], lnE)));
    }
    static void partials(double e, const double* p, double* d)
    {
        double lnE = 0.0;
        const double eh = formula::powPositive(e, p[3], lnE);
        const double decay = std::exp(-p[2] * eh);
        d[0] = 1.0;
        d[1] = 1.0 - decay;
        d[2] = p[1] * eh * decay;
        d[3] = p[1] * p[2] * eh * lnE * decay;
    }
    static double slope(double e, const double* p)
    {
        double lnE = 0.0;
        const double eh = formula::powPositive(e, p[3], lnE);
        const double eh1 = e > 0.0 ? eh / e : 0.0;
        return p[1] * p[2] * p[3] * eh1 * std::exp(-p[2] * eh);
    }
    static bool admissible(const double* p) { return p[2] >= 0.0 && p[3] > 0.0; }
};

struct VoceGeneralFormula {  // V0, V1, V2, V3
    static constexpr std::size_t kCount = 4;
    static constexpr LawKernelId kKernel = LawKernelId::VoceGeneral;
    static double value(double e, const double* p)
    {
        return p[0] + p[1] * (1.0 + p[3] * e) * (1.0 - std::exp(-p[2] * e));
    }
    static void partials(double e, const double* p, double* d)
    {
        const double decay = std::exp(-p[2] * e);
        d[0] = 1.0;
        d[1] = (1.0 + p[3] * e) * (1.0 - decay);
        d[2] = p[1] * (1.0 + p[3] * e) * e * decay;
        d[3] = p[1] * e * (1.0 - decay);
    }
    static double slope(double e, const double* p)
    {
        const double decay = std::exp(-p[2] * e);
        return p[1] * (p[2] * (1.0 + p[3] * e) * decay + p[3] * (1.0 - decay));
    }
    static bool admissible(const double* p) { return p[2] >= 0.0; }
};

struct ElMagdFormula {  // C0, C1, C2, C3
    static constexpr std::size_t kCount = 4;
    static constexpr LawKernelId kKernel = LawKernelId::ElMagd;
    static double value(double e, const double* p)
    {
        return p[0] + p[1] * (1.0 - std::exp(-p[2] * e)) + p[3] * e;
    }
    static void partials(double e, const double* p, double* d)
    {
        const double decay = std::exp(-p[2] * e);
        d[0] = 1.0;
        d[1] = 1.0 - decay;
        d[2] = p[1] * e * decay;
        d[3] = e;
    }
    static double slope(double e, const double* p) { return p[1] * p[2] * std::exp(-p[2] * e) + p[3]; }
    static bool admissible(const double* p) { return p[2] >= 0.0; }
};

struct VoyiadjisAbedFormula {  // V0, V1, V2
    static constexpr std::size_t kCount = 3;
    static constexpr LawKernelId kKernel = LawKernelId::VoyiadjisAbed;
    static double saturation(double e, double rate) { return e > 0.0 ? 1.0 - std::exp(-rate * e) : 0.0; }
    static double value(double e, const double* p) { return p[0] + p[1] * std::sqrt(saturation(e, p[2])); }
    static void partials(double e, const double* p, double* d)
    {
        const double f = saturation(e, p[2]);
        const double root = std::sqrt(f);
        d[0] = 1.0;
        d[1] = root;
        // d/dV2 of sqrt(1 - exp(-V2 e)) = e exp(-V2 e) / (2 sqrt(...)), which tends to 0 as e -> 0.
        d[2] = root > 0.0 ? p[1] * e * (1.0 - f) / (2.0 * root) : 0.0;
    }
    static double slope(double e, const double* p)
    {
        const double f = saturation(e, p[2]);
        const double root = std::sqrt(f);
        return root > 0.0 ? p[1] * p[2] * (1.0 - f) / (2.0 * root) : 0.0;
    }
    static bool admissible(const double* p) { return p[2] > 0.0; }
};

}  // namespace zelko
