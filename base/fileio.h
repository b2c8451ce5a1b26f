#pragma once
// The file part of reading and writing: whole files in, whole files out.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/textfile.h"

namespace zelko {

// No file of this program comes near this size; a larger one is refused rather
// than read into memory.
inline constexpr std::uintmax_t kMaxInputFileBytes = 256u * 1024u * 1024u;

// The file's bytes, or nothing with a reason in error. A file larger than maxBytes
// is refused before it is read.
std::optional<std::string> readFileBytes(const std::filesystem::path& path, std::string& error,
                                         std::uintmax_t maxBytes = kMaxInputFileBytes);

// The same file decoded as TextReader(bytes, mode) decodes it, read straight into
// the reader's own memory (a large material is not held twice); the same reasons.
std::optional<TextReader> readTextFile(const std::filesystem::path& path, ReadMode mode, std::string& error,
                                       std::uintmax_t maxBytes = kMaxInputFileBytes);

// Writes a temporary file beside path and renames it over path, so a failed
// save leaves the previous file as it was.
bool saveFileAtomically(const std::filesystem::path& path, std::string_view bytes, std::string& error);

// Whether two names reach one file: relative parts, links and hard links followed.
// The file need not exist yet.
bool sameFile(const std::filesystem::path& a, const std::filesystem::path& b);

// The outputs of one command or screen, put in place together or not at all: each
// is written whole into a temporary file beside its target first, and only commit
// replaces the targets. Until then (and after a failed commit) every target is as
// it was; whatever was not committed is removed when the object goes.
//
// A target that is a symbolic link is written through to the file it names, and
// a file replaced keeps its permissions. A target that exists but is no regular
// file (a folder, a device, a pipe) is refused.
class PendingOutputs {
public:
    PendingOutputs() = default;
    ~PendingOutputs();
    PendingOutputs(const PendingOutputs&) = delete;
    PendingOutputs& operator=(const PendingOutputs&) = delete;

    // False with a reason when the bytes cannot go to path; nothing is staged then.
    [[nodiscard]] bool stage(const std::filesystem::path& path, std::string_view bytes, std::string& error);
    // A temporary file for path that another writer fills (gnuplot's picture); it
    // replaces path on commit. Empty with a reason as for stage.
    std::optional<std::filesystem::path> reserve(const std::filesystem::path& path, std::string& error);

    // A staged file filled piece by piece (a material too large to hold twice):
    // write() appends to its temporary; endStream() says whether every write went
    // through, withdrawing the file with the reason when one did not. withdraw()
    // takes it back out, its temporary removed.
    [[nodiscard]] bool beginStream(const std::filesystem::path& path, std::string& error);
    void write(std::string_view bytes);
    [[nodiscard]] bool endStream(std::string& error);
    void withdraw();

    // Renames every temporary over its target. When one fails, those already
    // replaced get their previous file back; error says why and failed names the
    // output (as given to stage).
    [[nodiscard]] bool commit(std::string& error, std::filesystem::path* failed = nullptr);
    // Removes every temporary; the targets stay as they are.
    void discard();

private:
    struct Output {
        std::filesystem::path given;      // for messages
        std::filesystem::path target;     // links resolved
        std::filesystem::path temporary;
        int registration = -1;            // in the list removed on a signal
    };
    std::optional<Output> prepare(const std::filesystem::path& path, std::string& error);
    void forget(Output& output);

    std::vector<Output> outputs_;
    std::unique_ptr<std::ofstream> stream_;  // the last output's, while it is filled
};

}  // namespace zelko
