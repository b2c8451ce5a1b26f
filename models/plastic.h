#pragma once
// The flow-stress model interface shared by every cold and hot model.

#include <cstdint>
#include <memory>

#include "base/library.h"

namespace zelko {

enum ModelKind : std::int32_t { ColdModel = 0, HotModel = 1 };

class Plastic : public Library {
public:
    ~Plastic() override = default;

    // The base writes and reads no library block.
    bool writeLibraryBlock(TextWriter& out, int version) const override;
    bool readLibraryBlock(TextReader& in) override;
    // A deep copy: the same class with the same data and a copy of the held model,
    // so a screen can edit a copy and hand it back whole.
    virtual std::shared_ptr<Plastic> clone() const = 0;
    // The model's block of the material file, after its model line.
    virtual void readMaterialBlock(TextReader& in, int major, int minor) = 0;
    virtual void writeMaterialBlock(TextWriter& out, int major, int minor) const = 0;
    // Forwards to the held model (the law last fitted to a record).
    bool forwardReadLibraryBlock(TextReader& in);
    bool forwardWriteLibraryBlock(TextWriter& out, int version) const;

    std::int32_t modelKind = ColdModel;
    std::int32_t modelNumber = 0;
    std::shared_ptr<Plastic> heldModel;

protected:
    template <class Model>
    std::shared_ptr<Plastic> cloneAs() const
    {
        auto copy = std::make_shared<Model>(static_cast<const Model&>(*this));
        if (heldModel)
            copy->heldModel = heldModel->clone();
        return copy;
    }

    Plastic() = default;
    // A copy starts without a held model: the fitted law belongs to the original.
    Plastic(const Plastic& other) : Library(other), modelKind(other.modelKind), modelNumber(other.modelNumber) {}
    Plastic& operator=(const Plastic& other)
    {
        Library::operator=(other);
        modelKind = other.modelKind;
        modelNumber = other.modelNumber;
        return *this;
    }
};

}  // namespace zelko
