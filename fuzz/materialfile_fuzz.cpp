// The material file reader on any bytes, then the writers on whatever it read.

#include <cstddef>
#include <cstdint>

#include "fuzz/fuzzcheck.h"
#include "hot/plastic_hot.h"
#include "material/libraryexport.h"
#include "material/project.h"

using namespace zelko;

namespace {

bool sameKind(const Plastic* a, const Plastic* b)
{
    if (!a || !b)
        return a == b;
    return (dynamic_cast<const PLASTIC_HOT*>(a) != nullptr) == (dynamic_cast<const PLASTIC_HOT*>(b) != nullptr);
}

// The writer ends the title with a line end, so a title read without one (the
// file ended, or the line was cut short of 255 units) comes back with one.
std::u16string reopenedTitle(const std::u16string& title)
{
    if (title.size() < kTitleCapacity - 1 && (title.empty() || title.back() != u'\n'))
        return title + u'\n';
    return title;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    TextReader in(fuzzBytes(data, size), ReadMode::SniffBom);
    Project project;
    if (!project.ReadMaterialFile(in))
        return 0;
    // The view and the export rely on both handles naming one model.
    FUZZ_CHECK(project.activeModel == project.libraryModel());
    FUZZ_CHECK(project.title.size() <= kTitleCapacity - 1);

    TextWriter out(TextEncoding::Utf16Le);
    project.WriteMaterialFile(out);
    const std::string saved = out.bytes();

    if (project.libraryModel()) {
        TextWriter library(TextEncoding::EightBit);
        writeLibraryEntry(project, library);
        (void)library.bytes();
    }

    // What we save must open again, with the same kind of model. Files this long
    // come from counts with no points behind them; reading them back checks nothing new.
    if (out.text().size() > (std::size_t{1} << 20))
        return 0;
    TextReader again(saved, ReadMode::SniffBom);
    Project reopened;
    bool endedEarly = true;
    FUZZ_CHECK(reopened.ReadMaterialFile(again, nullptr, &endedEarly));
    FUZZ_CHECK(!endedEarly);  // what we write is whole
    FUZZ_CHECK(reopened.title == reopenedTitle(project.title));
    FUZZ_CHECK(sameKind(reopened.activeModel.get(), project.activeModel.get()));
    FUZZ_CHECK(reopened.activeModel == reopened.libraryModel());
    return 0;
}
