#pragma once
// Import of a JMatPro "*PhysProps.dat" export into the two thermal tables.

#include <string>
#include <string_view>

#include "base/tablepoint.h"

namespace zelko {

struct PhysPropsImport {
    bool ok = false;
    std::string message;  // why the file was refused (UTF-8)
    PropertyTable conductivity;
    PropertyTable heatCapacity;
};

// The file's bytes, read as 8-bit text.
PhysPropsImport importPhysProps(std::string_view bytes);

}  // namespace zelko
