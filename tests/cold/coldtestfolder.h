#pragma once
// A folder of its own for each cold test that writes files, so no test shares
// the process's exchange folder ($ZELKO_TEMP or its default) with another.

#include <atomic>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <system_error>

#include <unistd.h>

namespace zelko::test {

class ColdTestFolder {
public:
    ColdTestFolder()
    {
        static std::atomic<int> made{0};
        path_ = std::filesystem::temp_directory_path()
                / ("zelko-cold-test-" + std::to_string(::getpid()) + "-" + std::to_string(made++));
        std::filesystem::remove_all(path_);
        std::filesystem::create_directories(path_);
    }
    ~ColdTestFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    ColdTestFolder(const ColdTestFolder&) = delete;
    ColdTestFolder& operator=(const ColdTestFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

inline void writeFile(const std::filesystem::path& path, std::string_view bytes)
{
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

}  // namespace zelko::test
