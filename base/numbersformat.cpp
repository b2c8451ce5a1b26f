// printf's common conversions without the C library: the material file alone
// holds over half a million numbers, and vsnprintf parses its format and takes
// the locale for each. std::to_chars rounds the exact binary value as glibc does,
// so the bytes are the same; whatever is not handled here goes to vsnprintf.

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <type_traits>

#include "base/numbers.h"

namespace zelko {

namespace {

// Precisions above this go to vsnprintf, so a double always fits the buffer.
constexpr int kMaxFastPrecision = 100;
constexpr std::size_t kDoubleBuffer = 320 + kMaxFastPrecision;

char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; }

// "%.Pe" through the shortest digits when they are no more than P + 1: with at most
// 15 significant digits two neighbouring results are farther apart than two
// neighbouring doubles, so the shortest digits are the rounded ones. Subnormals
// hold fewer digits and take the general path.
char* scientificFromShortest(char* first, char* last, double value, int precision)
{
    if (precision > 14 || (value != 0.0 && std::fabs(value) < std::numeric_limits<double>::min()))
        return nullptr;
    char shortest[32];
    const auto [end, ec] = std::to_chars(shortest, shortest + sizeof shortest, value, std::chars_format::scientific);
    if (ec != std::errc())
        return nullptr;
    const char* p = shortest;
    const char* e = std::find(p, static_cast<const char*>(end), 'e');
    const bool negative = *p == '-';
    if (negative)
        ++p;
    const int digits = static_cast<int>(e - p) - (e - p > 1 ? 1 : 0);  // "d" or "d.ddd"
    if (digits > precision + 1)
        return nullptr;
    const auto exponentLength = static_cast<std::size_t>(end - e);
    const std::size_t length = (negative ? 1u : 0u) + 1u + (precision > 0 ? 1u + static_cast<std::size_t>(precision) : 0u)
                               + exponentLength;
    if (static_cast<std::size_t>(last - first) < length)
        return nullptr;
    char* o = first;
    if (negative)
        *o++ = '-';
    *o++ = *p;
    if (precision > 0) {
        *o++ = '.';
        const int copied = digits - 1;
        if (copied > 0)
            o = std::copy(p + 2, e, o);
        o = std::fill_n(o, precision - copied, '0');
    }
    return std::copy(e, static_cast<const char*>(end), o);
}

struct Directive {
    bool left = false;
    int width = 0;
    int precision = -1;
    char length = 0;  // 'H' hh, 'h', 'l', 'q' ll, 'z', 'j', 't'
    char conversion = 0;
};

// Parses the conversion after a "%"; false for anything left to vsnprintf.
bool parseDirective(const char*& f, Directive& directive)
{
    for (;; ++f) {
        if (*f == '-')
            directive.left = true;
        else if (*f == '+' || *f == ' ' || *f == '#' || *f == '0' || *f == '\'' || *f == 'I')
            return false;
        else
            break;
    }
    const auto number = [&f](int& value) {
        value = 0;
        while (*f >= '0' && *f <= '9') {
            if (value > 100000)
                return false;
            value = value * 10 + (*f++ - '0');
        }
        return true;
    };
    if (!number(directive.width))
        return false;
    if (*f == '.') {
        ++f;
        if (!number(directive.precision))
            return false;
    }
    switch (*f) {
    case 'h': directive.length = f[1] == 'h' ? (++f, 'H') : 'h'; ++f; break;
    case 'l': directive.length = f[1] == 'l' ? (++f, 'q') : 'l'; ++f; break;
    case 'z': case 'j': case 't': directive.length = *f++; break;
    default: break;
    }
    directive.conversion = *f;
    if (directive.conversion == '\0')
        return false;
    ++f;
    switch (directive.conversion) {
    case 'd': case 'i': case 'u':
        return directive.precision < 0;
    case 'e': case 'E': case 'f': case 'F': case 'g': case 'G':
        return (directive.length == 0 || directive.length == 'l') && directive.precision <= kMaxFastPrecision;
    case 's': case 'c':
        return directive.length == 0;
    default:
        return false;
    }
}

void appendPadded(std::string& out, const Directive& directive, const char* text, std::size_t length)
{
    const std::size_t width = static_cast<std::size_t>(directive.width);
    const std::size_t pad = width > length ? width - length : 0;
    if (!directive.left)
        out.append(pad, ' ');
    out.append(text, length);
    if (directive.left)
        out.append(pad, ' ');
}

template <class Int>
void appendInteger(std::string& out, const Directive& directive, Int value)
{
    char text[24];
    const auto result = std::to_chars(text, text + sizeof text, value);
    appendPadded(out, directive, text, static_cast<std::size_t>(result.ptr - text));
}

void appendSigned(std::string& out, const Directive& directive, va_list& args)
{
    switch (directive.length) {
    case 'H': appendInteger(out, directive, static_cast<signed char>(va_arg(args, int))); break;
    case 'h': appendInteger(out, directive, static_cast<short>(va_arg(args, int))); break;
    case 'l': appendInteger(out, directive, va_arg(args, long)); break;
    case 'q': appendInteger(out, directive, va_arg(args, long long)); break;
    case 'z': appendInteger(out, directive, va_arg(args, std::make_signed_t<std::size_t>)); break;
    case 'j': appendInteger(out, directive, va_arg(args, std::intmax_t)); break;
    case 't': appendInteger(out, directive, va_arg(args, std::ptrdiff_t)); break;
    default: appendInteger(out, directive, va_arg(args, int)); break;
    }
}

void appendUnsigned(std::string& out, const Directive& directive, va_list& args)
{
    switch (directive.length) {
    case 'H': appendInteger(out, directive, static_cast<unsigned char>(va_arg(args, unsigned))); break;
    case 'h': appendInteger(out, directive, static_cast<unsigned short>(va_arg(args, unsigned))); break;
    case 'l': appendInteger(out, directive, va_arg(args, unsigned long)); break;
    case 'q': appendInteger(out, directive, va_arg(args, unsigned long long)); break;
    case 'z': appendInteger(out, directive, va_arg(args, std::size_t)); break;
    case 'j': appendInteger(out, directive, va_arg(args, std::uintmax_t)); break;
    case 't': appendInteger(out, directive, static_cast<std::make_unsigned_t<std::ptrdiff_t>>(va_arg(args, std::ptrdiff_t))); break;
    default: appendInteger(out, directive, va_arg(args, unsigned)); break;
    }
}

}  // namespace

char* formatDouble(char* first, char* last, double value, char conversion, int precision)
{
    if (precision < 0)
        precision = 6;
    const bool uppercase = conversion == 'E' || conversion == 'F' || conversion == 'G';
    char* end = nullptr;
    switch (conversion) {
    case 'e': case 'E':
        end = std::isfinite(value) ? scientificFromShortest(first, last, value, precision) : nullptr;
        if (!end) {
            const auto result = std::to_chars(first, last, value, std::chars_format::scientific, precision);
            end = result.ec == std::errc() ? result.ptr : nullptr;
        }
        break;
    case 'f': case 'F': {
        const auto result = std::to_chars(first, last, value, std::chars_format::fixed, precision);
        end = result.ec == std::errc() ? result.ptr : nullptr;
        break;
    }
    case 'g': case 'G': {
        const auto result = std::to_chars(first, last, value, std::chars_format::general, std::max(precision, 1));
        end = result.ec == std::errc() ? result.ptr : nullptr;
        break;
    }
    default:
        return nullptr;
    }
    if (!end || !uppercase)
        return end;
    if (!std::isfinite(value))
        std::transform(first, end, first, upper);  // INF, NAN
    else if (conversion != 'F')
        std::replace(first, end, 'e', 'E');
    return end;
}

void appendFormattedV(std::string& out, const char* fmt, va_list args)
{
    const std::size_t start = out.size();
    va_list fast;
    va_copy(fast, args);
    bool handled = true;
    for (const char* f = fmt; *f != '\0' && handled;) {
        const char* percent = std::strchr(f, '%');
        if (!percent) {
            out.append(f);
            break;
        }
        out.append(f, static_cast<std::size_t>(percent - f));
        f = percent + 1;
        if (*f == '%') {
            out.push_back('%');
            ++f;
            continue;
        }
        Directive directive;
        if (!parseDirective(f, directive)) {
            handled = false;
            break;
        }
        switch (directive.conversion) {
        case 'd': case 'i':
            appendSigned(out, directive, fast);
            break;
        case 'u':
            appendUnsigned(out, directive, fast);
            break;
        case 'c': {
            const char c = static_cast<char>(va_arg(fast, int));
            appendPadded(out, directive, &c, 1);
            break;
        }
        case 's': {
            const char* s = va_arg(fast, const char*);
            if (!s) {
                handled = false;  // glibc's "(null)" is its own affair
                break;
            }
            std::size_t length = 0;
            while ((directive.precision < 0 || length < static_cast<std::size_t>(directive.precision)) && s[length] != '\0')
                ++length;
            appendPadded(out, directive, s, length);
            break;
        }
        default: {
            char text[kDoubleBuffer];
            const char* end = formatDouble(text, text + sizeof text, va_arg(fast, double), directive.conversion, directive.precision);
            if (!end)
                handled = false;
            else
                appendPadded(out, directive, text, static_cast<std::size_t>(end - text));
            break;
        }
        }
    }
    va_end(fast);
    if (handled)
        return;
    out.resize(start);
    va_list copy;
    va_copy(copy, args);
    char small[512];
    const int needed = formatInCLocale(small, sizeof small, fmt, copy);
    va_end(copy);
    if (needed < 0)
        return;
    if (static_cast<std::size_t>(needed) < sizeof small) {
        out.append(small, static_cast<std::size_t>(needed));
        return;
    }
    out.resize(start + static_cast<std::size_t>(needed) + 1);
    formatInCLocale(out.data() + start, static_cast<std::size_t>(needed) + 1, fmt, args);
    out.resize(start + static_cast<std::size_t>(needed));
}

}  // namespace zelko
