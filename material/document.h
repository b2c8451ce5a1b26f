#pragma once
// The material document: the one material being prepared, as the screens and the
// command-line tool both work on it. It opens, saves and exports the material,
// and takes edits whole: a screen (or a command) works on a copy and commits it,
// so a cancelled screen or a failed fit leaves the material exactly as it was.

#include <filesystem>
#include <string>
#include <vector>

#include "base/environment.h"
#include "base/fileio.h"
#include "material/project.h"

namespace zelko {

class PendingOutputs;
// The largest material file the reader takes; a larger material is refused when
// saved, so no file is written that would not open again.
inline constexpr std::uintmax_t kMaxMaterialFileBytes = kMaxInputFileBytes;

class MaterialDocument {
public:
    explicit MaterialDocument(Environment environment = Environment::fromProcess());

    const Project& material() const { return material_; }
    const Environment& environment() const { return environment_; }
    // The layout version of the file last opened; the writer's for a new material.
    FileVersion version() const { return version_; }

    // Reads a .zmat as the Open command does: the file's content over the current
    // material (what the file does not mention keeps its value). A rejected file
    // changes nothing; error says why.
    [[nodiscard]] bool open(const std::filesystem::path& path, std::string& error);
    // What the file last opened lacked although it was read (e.g. it ends early),
    // one message each; empty for a whole file.
    const std::vector<std::string>& warnings() const { return warnings_; }
    // Writes the .zmat atomically: a failed save leaves the previous file, and so
    // does a material whose file would be beyond kMaxMaterialFileBytes.
    [[nodiscard]] bool save(const std::filesystem::path& path, std::string& error) const;
    // Writes the .z3dlib entry. Refused without a flow-stress model; a model with
    // no block of its own gives an entry without one (wroteModelBlock false).
    [[nodiscard]] bool exportLibrary(const std::filesystem::path& path, bool& wroteModelBlock, std::string& error) const;
    // The same two, staged among outputs that are put in place together: nothing
    // is replaced (and modified() stays) until the caller commits them.
    [[nodiscard]] bool save(PendingOutputs& outputs, const std::filesystem::path& path, std::string& error) const;
    [[nodiscard]] bool exportLibrary(PendingOutputs& outputs, const std::filesystem::path& path, bool& wroteModelBlock,
                                     std::string& error) const;

    // A copy to edit; hand it back with commit.
    Project copy() const { return material_; }
    void commit(Project edited);
    // The title as typed, keystroke by keystroke: one undo step for a run of
    // title edits, not one per character.
    void setTitle(std::u16string title);
    // Close: a new, empty material, with nothing to undo.
    void close();
    // Back to the material before the last commit (and forward again).
    bool canUndo() const { return !undo_.empty(); }
    bool canRedo() const { return !redo_.empty(); }
    void undo();
    void redo();
    // Whether the material changed since it was opened, saved or created.
    bool modified() const { return modified_; }

private:
    // A material fresh from a file or empty: nothing to undo, nothing unsaved.
    void forgetHistory();
    // Undo and redo: the material goes onto one stack, the other's top comes back.
    void step(std::vector<Project>& from, std::vector<Project>& to);
    Environment environment_;
    Project material_;
    FileVersion version_;
    std::vector<std::string> warnings_;
    std::vector<Project> undo_;
    std::vector<Project> redo_;
    mutable bool modified_ = false;
    bool lastCommitWasTitle_ = false;
};

// The material file's bytes and its reading, for callers that hold bytes.
std::string materialFileBytes(const Project& material);
// Reads bytes over material; false (material untouched) when the file is rejected.
// What an accepted file lacked goes to warnings when given.
[[nodiscard]] bool readMaterialBytes(std::string_view bytes, Project& material, FileVersion& version,
                                     std::vector<std::string>* warnings = nullptr);

// The library entry's bytes and whether the model wrote a block of its own.
struct LibraryEntry {
    std::string bytes;
    bool hasModelBlock = false;
};
LibraryEntry libraryEntryBytes(const Project& material);
// "the hot model 70 wrote no block; the entry's model section is empty"
std::string missingModelBlockWarning(const Plastic& model);

}  // namespace zelko
