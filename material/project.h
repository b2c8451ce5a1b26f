#pragma once
// The one material being prepared: title, elastic and thermal sets, flow-stress model.

#include <memory>
#include <string>

#include "models/plastic.h"
#include "material/elastic.h"
#include "material/heat.h"

namespace zelko {

inline constexpr int FORMAT_MAJOR = 21;
inline constexpr int FORMAT_MINOR = 6;
inline constexpr std::size_t kTitleCapacity = 256;  // wide characters, terminator included

// The layout version of a material file: the two numbers of its first line.
struct FileVersion {
    int major = FORMAT_MAJOR;
    int minor = FORMAT_MINOR;
};

// A value: copying a project copies every set and model (Plastic::clone), so a
// screen edits a copy and the document commits it whole or drops it.
class Project {
public:
    Project();
    Project(const Project& other);
    Project& operator=(const Project& other);
    Project(Project&& other) noexcept = default;
    Project& operator=(Project&& other) noexcept = default;
    virtual ~Project();

    // Records 1 to 10 of the material file.
    void WriteMaterialFile(TextWriter& out) const;
    // False when the version line or the title keyword rejects the file; nothing
    // has been changed then.
    // The version of an accepted file goes to version when one is given, and to
    // endedEarly whether the file stops short of the layout's end (it is still
    // read as far as it goes).
    [[nodiscard]] bool ReadMaterialFile(TextReader& in, FileVersion* version = nullptr, bool* endedEarly = nullptr);
    // The Open command's library reader; inert on a freshly opened stream.
    bool ReadLibraryFile(TextReader& in);

    // Makes the model the active one, releasing what was held.
    void setModel(const std::shared_ptr<Plastic>& model);
    // The model whose kind, number and block the library export takes: the law
    // last fitted to the active record when it holds one, else the record itself.
    // Derived, never stored, so the two handles can't drift apart.
    std::shared_ptr<Plastic> libraryModel() const;

    std::u16string title;
    std::shared_ptr<ELASTIC> elastic;
    std::shared_ptr<Plastic> activeModel;  // the record the material file stores
    std::shared_ptr<HEAT> conductivity;
    std::shared_ptr<HEAT> heatCapacity;
};

// The title as the Save command stores it: the view's text passed through a
// format routine, of which only "%%" -> "%" is honoured; other "%" stay as typed.
std::u16string titleFromViewText(std::u16string_view text);

}  // namespace zelko
