#include "base/fileio.h"

#include <atomic>
#include <chrono>
#include <fstream>
#include <system_error>

namespace zelko {

std::optional<std::string> readFileBytes(const std::filesystem::path& path, std::string& error,
                                         std::uintmax_t maxBytes)
{
    std::error_code ec;
    if (std::filesystem::is_directory(path, ec)) {
        error = "is a folder, not a file";
        return std::nullopt;
    }
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        error = "cannot open the file";
        return std::nullopt;
    }
    std::string bytes;
    char chunk[65536];
    while (in) {
        in.read(chunk, sizeof chunk);
        bytes.append(chunk, static_cast<std::size_t>(in.gcount()));
        if (bytes.size() > maxBytes) {
            error = "file too large";
            return std::nullopt;
        }
    }
    if (in.bad()) {
        error = "cannot read the file";
        return std::nullopt;
    }
    return bytes;
}

bool saveFileAtomically(const std::filesystem::path& path, std::string_view bytes, std::string& error)
{
    static std::atomic<unsigned> counter{0};
    const auto stamp = std::chrono::steady_clock::now().time_since_epoch().count();
    std::filesystem::path temporary = path;
    temporary += ".tmp" + std::to_string(stamp) + "-" + std::to_string(counter++);
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        if (!out) {
            error = "cannot create a file in that folder";
            return false;
        }
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        out.flush();
        if (!out) {
            out.close();
            std::error_code ignored;
            std::filesystem::remove(temporary, ignored);
            error = "cannot write the file (disk full?)";
            return false;
        }
    }
    std::error_code ec;
    std::filesystem::rename(temporary, path, ec);
    if (ec) {
        std::error_code ignored;
        std::filesystem::remove(temporary, ignored);
        error = "cannot replace the file: " + ec.message();
        return false;
    }
    return true;
}

}  // namespace zelko
