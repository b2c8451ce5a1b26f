#include "material/tselikov.h"

#include <array>
#include <cmath>

#include "base/messages.h"

namespace zelko {

namespace {

struct Element {
    const char* name;
    double content;
    double term;  // what the element adds to the formula's sum
};

std::array<Element, 5> elementsOf(const ChemicalComposition& c)
{
    return {{
        {"carbon (C)", c.carbon, 42924 * c.carbon - 144000 * c.carbon * c.carbon},
        {"manganese (Mn)", c.manganese, -5289 * c.manganese},
        {"silicon (Si)", c.silicon, 20525 * c.silicon},
        {"phosphorus (P)", c.phosphorus, -12000 * c.phosphorus},
        {"sulfur (S)", c.sulfur, 174000 * c.sulfur},
    }};
}

// The refusal of a composition no steel has; empty when it is one.
std::string compositionProblem(const std::array<Element, 5>& elements)
{
    double sum = 0.0;
    const Element* largest = &elements.front();
    for (const Element& e : elements) {
        if (!(e.content >= 0.0 && e.content <= 100.0))  // NaN fails too
            return formatMessage(MessageCode::CompositionOutOfRange, e.name, e.content);
        sum += e.content;
        if (e.content > largest->content)
            largest = &e;
    }
    if (sum > 100.0)
        return formatMessage(MessageCode::CompositionOverWhole, sum, largest->name, largest->content);
    return {};
}

}  // namespace

ModulusEstimate tselikovYoungsModulus(const ChemicalComposition& c)
{
    static constexpr std::array<double, 13> kTemperatures = {20, 50, 100, 150, 200, 250, 300,
                                                             400, 500, 600, 700, 800, 900};
    ModulusEstimate estimate;
    const std::array<Element, 5> elements = elementsOf(c);
    estimate.message = compositionProblem(elements);
    if (!estimate.message.empty())
        return estimate;

    estimate.table.reserve(kTemperatures.size());
    for (const double t : kTemperatures) {
        const double sum = 308250 + 42924 * c.carbon - 144000 * c.carbon * c.carbon + 20525 * c.silicon
                           - 5289 * c.manganese - 12000 * c.phosphorus + 174000 * c.sulfur - 225.6 * t
                           + 0.01379 * t * t;
        const double modulus = 0.0981 * sum;
        if (!(std::isfinite(modulus) && modulus > 0.0)) {
            // Only the elements that lower the sum can take it this far; name the one that lowers it most.
            const Element* culprit = &elements.front();
            for (const Element& e : elements)
                if (e.term < culprit->term)
                    culprit = &e;
            estimate.message = formatMessage(MessageCode::ModulusNotPositive, t, modulus, culprit->name, culprit->content);
            estimate.table.clear();
            return estimate;
        }
        estimate.table.push_back({t, modulus});
    }
    estimate.ok = true;
    return estimate;
}

}  // namespace zelko
