#pragma once
// The file part of reading and writing: whole files in, whole files out.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace zelko {

// No file of this program comes near this size; a larger one is refused rather
// than read into memory.
inline constexpr std::uintmax_t kMaxInputFileBytes = 256u * 1024u * 1024u;

// The file's bytes, or nothing with a reason in error.
std::optional<std::string> readFileBytes(const std::filesystem::path& path, std::string& error,
                                         std::uintmax_t maxBytes = kMaxInputFileBytes);

// Writes a temporary file beside path and renames it over path, so a failed
// save leaves the previous file as it was.
bool saveFileAtomically(const std::filesystem::path& path, std::string_view bytes, std::string& error);

}  // namespace zelko
