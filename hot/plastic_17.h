#pragma once
// Hensel-Spittel (model 17): the law, its fit by steepest descent from
// logarithmic starting values, and its library block.

#include <array>
#include <string>
#include <vector>

#include <Eigen/Core>

#include "hot/plastic_hot.h"

namespace zelko {

class HotStressTable;

using HenselSpittelParameters = std::array<double, kHenselSpittelParameterCount>;

class PLASTIC_17 : public PLASTIC_HOT {
public:
    std::shared_ptr<Plastic> clone() const override { return cloneAs<PLASTIC_17>(); }
    PLASTIC_17() { modelNumber = 17; }

    bool writeLibraryBlock(TextWriter& out, int version) const override;
    double evaluate(double strain, double strainRate, double temperature) const override;
    bool hasLaw() const override { return true; }
};

// The Hensel-Spittel fit: a new model 17 with the parameters of the descent from
// logarithmic starting values. A stop ends it within one descent iteration.
HotFit fitHenselSpittel(const HotDataSet& dataSet, const HotFitOptions& options, const RunControl& control);

// σ = A·e^(m1·T)·ε^m2·ε̇^m3·e^(m4/ε)·(1+ε)^m5·e^(m7·ε)·ε̇^(m8·T)·T^m9, and 0 where the
// law has no finite value (strain or rate not above 0, T^m9 of a T not above 0).
double henselSpittelStress(const HenselSpittelParameters& p, double strain, double strainRate, double temperature);

// The weighted least-squares objective over a stress table's usable entries. Each
// entry keeps the logarithmic factors of the law, so a value costs one exponential.
class HenselSpittelObjective {
public:
    HenselSpittelObjective(const PLASTIC_HOT& dataSet, const HotStressTable& table, const std::vector<double>& rateWeights,
                           unsigned switches);

    double objective(const HenselSpittelParameters& p) const;
    void gradient(const HenselSpittelParameters& p, HenselSpittelParameters& g) const;
    // Puts back m5, m8 or m1 where the trial leaves its range (parameters not switched off).
    void guard(HenselSpittelParameters& trial, const HenselSpittelParameters& previous) const;
    void setStartM1(double m1) { startM1_ = m1; }

    // The ranges the guards hold: (1 + ε)^m5 at the extreme sample strains, and
    // ε̇^(m8·T) at the extreme rates, each at the lowest and highest temperature.
    bool m5InRange(double m5) const;
    bool m8InRange(double m8) const;

    std::size_t entryCount() const { return static_cast<std::size_t>(target_.size()); }
    // Row e: what m1 .. m9 multiply in ln σ at entry e; its stress and weight.
    const Eigen::Matrix<double, Eigen::Dynamic, 9>& factors() const { return factors_; }
    const Eigen::ArrayXd& stresses() const { return target_; }
    const Eigen::ArrayXd& weights() const { return weight_; }
    // The guards as limits: m5 and m8 within the ranges above, |m1| at least 0.8 of
    // its start on the start's side. Switched-off parameters are left unlimited.
    void guardLimits(HenselSpittelParameters& lower, HenselSpittelParameters& upper) const;

private:
    // Columns: what m1 .. m9 multiply in ln σ, one row an entry.
    Eigen::Matrix<double, Eigen::Dynamic, 9> factors_;
    Eigen::ArrayXd target_;
    Eigen::ArrayXd weight_;
    // Scratch of one evaluation, kept so the descent allocates nothing.
    mutable Eigen::ArrayXd exponential_;
    mutable Eigen::ArrayXd residual_;
    unsigned switches_ = 0;
    double startM1_ = 0.0;
    double strainLo_ = 0.0, strainHi_ = 0.0;
    double rateLo_ = 1.0, rateHi_ = 1.0;
    double temperatureLo_ = 0.0, temperatureHi_ = 0.0;
};

// Steps before the descent: logarithmic starting values, the m5 sanity rule, A
// through the largest stress, and a large A's decimal excess moved into m9.
HenselSpittelParameters henselSpittelStart(const PLASTIC_HOT& dataSet, const HotStressTable& table, unsigned switches,
                                           const HenselSpittelObjective& objective);

}  // namespace zelko
