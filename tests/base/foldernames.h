#pragma once
// What a folder holds, for tests of saves: a leftover temporary shows up here.

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace zelko::test {

// Every name in the folder, sorted.
inline std::vector<std::string> namesIn(const std::filesystem::path& folder)
{
    std::vector<std::string> names;
    for (const std::filesystem::directory_entry& entry : std::filesystem::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace zelko::test
