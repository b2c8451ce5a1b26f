#include "models/plastic.h"

namespace zelko {

bool Plastic::writeLibraryBlock(TextWriter&, int) const { return false; }

bool Plastic::readLibraryBlock(TextReader&) { return false; }

bool Plastic::forwardReadLibraryBlock(TextReader& in) { return heldModel ? heldModel->readLibraryBlock(in) : false; }

bool Plastic::forwardWriteLibraryBlock(TextWriter& out, int version) const
{
    return heldModel ? heldModel->writeLibraryBlock(out, version) : false;
}

}  // namespace zelko
