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

class Project {
public:
    Project();
    virtual ~Project();

    // Records 1 to 10 of the material file.
    void WriteMaterialFile(TextWriter& out) const;
    // False when the version line or the title keyword rejects the file; nothing
    // has been changed then.
    [[nodiscard]] bool ReadMaterialFile(TextReader& in);
    // The Open command's library reader; inert on a freshly opened stream.
    bool ReadLibraryFile(TextReader& in);

    // Stores one model in both handles, releasing what they held.
    void setModel(const std::shared_ptr<Plastic>& model);

    std::u16string title;
    std::shared_ptr<ELASTIC> elastic;
    std::shared_ptr<Plastic> activeModel;
    std::shared_ptr<Plastic> libraryModel;
    std::shared_ptr<HEAT> conductivity;
    std::shared_ptr<HEAT> heatCapacity;
};

// The title as the Save command stores it: the view's text passed through a
// format routine, of which only "%%" -> "%" is honoured; other "%" stay as typed.
std::u16string titleFromViewText(std::u16string_view text);

}  // namespace zelko
