#pragma once
// Base of everything that has a block in the forming system's material library.

#include "base/textfile.h"

namespace zelko {

class Library {
public:
    virtual ~Library() = default;
    // Writes the object in the library layout; true when a block was written.
    virtual bool writeLibraryBlock(TextWriter& out, int version) const = 0;
    virtual bool readLibraryBlock(TextReader& in) = 0;

    double referenceValue = 1000.0;

protected:
    Library() = default;
    Library(const Library&) = default;
    Library& operator=(const Library&) = default;
};

}  // namespace zelko
