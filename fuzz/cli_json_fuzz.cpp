// zelko-mat-cli's JSON reader on any bytes: a material or an error, never a crash.
// A material it accepts must come back the same through info's JSON.

#include <cstddef>
#include <cstdint>
#include <string>

#include "cli/materialjson.h"
#include "fuzz/fuzzcheck.h"

using namespace zelko;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    std::string error;
    const auto material = cli::materialFromJson(fuzzBytes(data, size), error);
    if (!material) {
        FUZZ_CHECK(!error.empty());  // the user is told why
        return 0;
    }
    TextWriter file;
    material->WriteMaterialFile(file);

    const std::string json = cli::jsonText(cli::materialToJson(*material, FORMAT_MAJOR, FORMAT_MINOR));
    const auto again = cli::materialFromJson(json, error);
    FUZZ_CHECK(again.has_value());
    TextWriter fileAgain;
    again->WriteMaterialFile(fileAgain);
    FUZZ_CHECK(fileAgain.text() == file.text());
    return 0;
}
