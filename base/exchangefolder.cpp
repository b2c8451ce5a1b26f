#include "base/exchangefolder.h"

#include <system_error>


namespace zelko {

bool ensureFolder(const std::filesystem::path& folder, std::string& error)
{
    std::error_code ec;
    std::filesystem::create_directories(folder, ec);
    if (std::filesystem::is_directory(folder, ec))
        return true;
    error = "cannot create the folder " + folder.string();
    return false;
}

}  // namespace zelko
