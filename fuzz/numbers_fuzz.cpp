// The number readers against the C library's strtod in the C locale (a fuzz
// target never sets a locale): wherever strtod reads a plain decimal field whole,
// the strict parser must agree with it bit for bit, and the lenient reader must
// take as much of the text as strtod does and give the same value.

#include <cerrno>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "base/numbers.h"
#include "base/textfile.h"
#include "fuzz/fuzzcheck.h"

using namespace zelko;

namespace {

bool sameDouble(double a, double b)
{
    return std::isnan(a) ? std::isnan(b) : std::memcmp(&a, &b, sizeof a) == 0;
}

bool isCSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r'; }

// strtod also reads hexadecimal, which no layout of ours holds.
bool isHex(const std::string& text)
{
    const std::size_t digits = (!text.empty() && (text[0] == '+' || text[0] == '-')) ? 1 : 0;
    return text.size() > digits + 1 && text[digits] == '0' && (text[digits + 1] == 'x' || text[digits + 1] == 'X');
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string field(fuzzBytes(data, size));
    // What strtod reads of the field; an embedded NUL ends its text early.
    errno = 0;
    char* end = nullptr;
    const double expected = std::strtod(field.c_str(), &end);
    const bool underflow = errno == ERANGE && expected == 0.0;
    const auto taken = static_cast<std::size_t>(end - field.c_str());
    const bool plain = !field.empty() && !isCSpace(field[0]) && !isHex(field);

    double value = 0.0;
    const NumberField read = parseNumberField(field, value);
    if (read == NumberField::Finite) {
        FUZZ_CHECK(plain && taken == field.size() && std::isfinite(expected) && !underflow);
        FUZZ_CHECK(sameDouble(value, expected));
        // What is written with enough digits reads back the same.
        FUZZ_CHECK(sameDouble(toDouble(formatText("%.17g", value)), value));
    } else if (read == NumberField::NotFinite) {
        FUZZ_CHECK(plain && taken == field.size() && (!std::isfinite(expected) || underflow));
        FUZZ_CHECK(!std::isfinite(value));
        FUZZ_CHECK(!std::isinf(expected) || value == expected);
    } else {
        FUZZ_CHECK(!plain || taken != field.size());
    }

    // The lenient reader: the same length as strtod (which also reads "nan(...)",
    // hexadecimal and leading white space, none of which it takes) and the same value.
    double lenient = -1.0;
    const std::size_t length = leadingDouble(widen(field), lenient);
    if (plain && std::memchr(field.data(), '(', taken) == nullptr)
        FUZZ_CHECK(length == taken);
    if (length > 0) {
        const std::string prefix = field.substr(0, length);
        char* prefixEnd = nullptr;
        FUZZ_CHECK(sameDouble(lenient, std::strtod(prefix.c_str(), &prefixEnd)));
        FUZZ_CHECK(prefixEnd == prefix.c_str() + prefix.size());
    } else {
        FUZZ_CHECK(lenient == 0.0);
    }
    return 0;
}
