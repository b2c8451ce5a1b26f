#include "project/exchangefolder.h"

#include <cstdlib>
#include <system_error>

namespace zelko {

std::filesystem::path exchangeFolder()
{
    if (const char* configured = std::getenv("ZELKO_TEMP"); configured && *configured)
        return std::filesystem::path(configured);
#ifdef _WIN32
    return std::filesystem::path("C:\\temp\\ZELKO");
#else
    std::error_code ec;
    std::filesystem::path temp = std::filesystem::temp_directory_path(ec);
    if (ec)
        temp = "/tmp";
    return temp / "ZELKO";
#endif
}

bool ensureExchangeFolder(std::string& error)
{
    const std::filesystem::path folder = exchangeFolder();
    std::error_code ec;
    std::filesystem::create_directories(folder, ec);
    if (std::filesystem::is_directory(folder, ec))
        return true;
    error = "cannot create the folder " + folder.string();
    return false;
}

}  // namespace zelko
