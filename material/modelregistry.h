#pragma once
// Makes a flow-stress model from its kind and number: the records the material
// and library readers install, and every model class of the family, by the
// forming system's model ids.

#include <memory>
#include <span>

#include "models/plastic.h"

namespace zelko {

struct ModelId {
    ModelKind kind;
    int number;
};

// The record the material reader installs for a model line: a tensile record
// for kind 0, a hot data set for kind 1; nothing for another kind.
std::shared_ptr<Plastic> createRecordOfKind(int kind);
// Model numbers that the oldest layout (minor <= 4) files as hot.
bool isOldLayoutHotNumber(int number);
// The record the library reader installs for a model number; nothing for others.
std::shared_ptr<Plastic> createLibraryRecord(int number);

// A new model of the id's own class (a cold law, the tensile simulation or a hot
// type); nothing for an id the family doesn't have.
std::shared_ptr<Plastic> createModel(ModelId id);
// Every id createModel knows, cold first.
std::span<const ModelId> knownModelIds();

}  // namespace zelko
