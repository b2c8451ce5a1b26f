#pragma once
// Temporary files that a save has not yet put in place. A terminal's Ctrl+C or a
// batch system's SIGTERM must not leave them behind: the handler installed here
// removes every live one, then ends the process as the signal would have.

#include <filesystem>

namespace zelko {

// A slot in the registry for one temporary file; -1 when the registry is full
// (the file is still written, only not removed on a signal).
int registerTemporaryFile(const std::filesystem::path& path);
// The file was renamed or removed: its name must no longer be removed on a signal.
void releaseTemporaryFile(int slot);

// Installs the handler for SIGINT and SIGTERM (and SIGHUP where there is one).
// Call once at the start of a program that saves files.
void removeTemporaryFilesOnSignals();

}  // namespace zelko
