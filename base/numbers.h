#pragma once
// Numbers to text and back. The file layouts and the messages spell numbers the
// C way ("1.5", never "1,5") whatever locale the process runs in, so nothing here
// reads the process locale.

#include <cmath>
#include <cstdarg>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <type_traits>

namespace zelko {

// vsnprintf in the C locale: the result and the return value are those of
// vsnprintf, but the text is complete only when the return value is below size.
// The calling thread's own locale is left as it was.
int formatInCLocale(char* buffer, std::size_t size, const char* fmt, va_list args);

// vsnprintf in the C locale, appended to out. The conversions the layouts use
// (d i u c s, e E f F g G, "%%", with "-", a width and a precision) are made here
// to the same bytes; other flags, "*" and other conversions go to vsnprintf.
void appendFormattedV(std::string& out, const char* fmt, va_list args);

// printf's "%.<precision><conversion>" of value for e, E, f, F, g or G (a negative
// precision is printf's default, 6) written from first; the end of the text, or
// null when it does not fit before last or the conversion is none of those.
char* formatDouble(char* first, char* last, double value, char conversion, int precision);

// The C library's lenient reading, which the file layouts rely on (atoi, atof and
// the scanf conversions): the longest number at the very start of text, no white
// space skipped. Returns its length, 0 (and a value of 0) when none stands there.
// Integers out of range saturate; a double too large is ±HUGE_VAL and one too
// small is what strtod makes of it. No hexadecimal, as the layouts never hold any.
std::size_t leadingInt(std::u16string_view text, int& value);
std::size_t leadingDouble(std::u16string_view text, double& value);

// atoi and atof: white space skipped, then the leading number; 0 when there is none.
int toInt(std::u16string_view text);
double toDouble(std::u16string_view text);
int toInt(std::string_view text);
double toDouble(std::string_view text);

enum class NumberField { Finite, NotANumber, NotFinite };

// The strict reading of a whole field (curve files, CSV fields, option values): an
// optional sign and a decimal number that fills the field, no white space, no
// hexadecimal. An empty field or trailing text is NotANumber. NotFinite is inf or
// nan, or a value beyond what a double holds; value is then not finite either
// (±inf when too large, nan when too small to tell from zero).
NumberField parseNumberField(std::string_view field, double& value);
NumberField parseNumberField(std::u16string_view field, double& value);
// "not a number" or "not a finite number", as the messages put it.
const char* numberFieldProblem(NumberField result);

// True when every value project gives for the elements of range is finite; project
// returns one double or an array of them (e.g. a curve point's x and y).
template <class Range, class Projection = std::identity>
bool allFinite(const Range& range, Projection project = {})
{
    for (const auto& element : range) {
        const auto values = std::invoke(project, element);
        if constexpr (std::is_arithmetic_v<std::remove_cvref_t<decltype(values)>>) {
            if (!std::isfinite(values))
                return false;
        } else {
            for (const double v : values)
                if (!std::isfinite(v))
                    return false;
        }
    }
    return true;
}

}  // namespace zelko
