#include "base/exchangefolder.h"

#include <system_error>

#include "base/messages.h"

namespace zelko {

bool ensureFolder(const std::filesystem::path& folder, std::string& error)
{
    std::error_code ec;
    std::filesystem::create_directories(folder, ec);
    if (std::filesystem::is_directory(folder, ec))
        return true;
    error = formatMessage(MessageCode::CannotCreateFolder, folder.string().c_str());
    return false;
}

}  // namespace zelko
