#include "base/numbers.h"

#include <charconv>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <locale.h>
#include <string>
#if defined(__APPLE__)
#include <xlocale.h>
#endif

namespace zelko {

namespace {

#if defined(_WIN32)
_locale_t cLocale()
{
    static const _locale_t locale = _create_locale(LC_ALL, "C");
    return locale;
}
#else
// The calling thread reads and writes numbers in the C locale while this lives;
// other threads and the process locale are untouched.
class CLocaleScope {
public:
    CLocaleScope() : previous_(locale() ? uselocale(locale()) : locale_t(0)) {}
    ~CLocaleScope()
    {
        if (previous_)
            uselocale(previous_);
    }
    CLocaleScope(const CLocaleScope&) = delete;
    CLocaleScope& operator=(const CLocaleScope&) = delete;

private:
    static locale_t locale()
    {
        static const locale_t c = newlocale(LC_ALL_MASK, "C", locale_t(0));
        return c;
    }
    locale_t previous_;
};
#endif

// strtod's value for a number from_chars found out of range: ±HUGE_VAL, or what
// is left of a value too small (a subnormal or a signed zero).
double strtodInCLocale(const std::string& number)
{
#if defined(_WIN32)
    return _strtod_l(number.c_str(), nullptr, cLocale());
#else
    const CLocaleScope c;
    return std::strtod(number.c_str(), nullptr);
#endif
}

template <class Char>
bool isSpace(Char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f';
}

template <class Char>
bool isDigit(Char c)
{
    return c >= '0' && c <= '9';
}

template <class Char>
bool startsWithNoCase(std::basic_string_view<Char> text, std::size_t at, std::string_view word)
{
    if (text.size() - at < word.size())
        return false;
    for (std::size_t i = 0; i < word.size(); ++i) {
        const Char c = text[at + i];
        const Char lowered = (c >= 'A' && c <= 'Z') ? static_cast<Char>(c + 32) : c;
        if (lowered != static_cast<Char>(word[i]))
            return false;
    }
    return true;
}

template <class Char>
std::basic_string_view<Char> skipSpaces(std::basic_string_view<Char> text)
{
    std::size_t i = 0;
    while (i < text.size() && isSpace(text[i]))
        ++i;
    return text.substr(i);
}

// Length of the number strtod would take at the start of text, hexadecimal and
// "nan(...)" aside; 0 when there is none.
template <class Char>
std::size_t doublePrefixLength(std::basic_string_view<Char> text)
{
    std::size_t i = 0;
    if (i < text.size() && (text[i] == '+' || text[i] == '-'))
        ++i;
    const bool digitFirst = i < text.size() && (isDigit(text[i]) || text[i] == '.');
    if (!digitFirst && startsWithNoCase(text, i, "infinity"))
        return i + 8;
    if (!digitFirst && (startsWithNoCase(text, i, "inf") || startsWithNoCase(text, i, "nan")))
        return i + 3;
    std::size_t digits = 0;
    while (i < text.size() && isDigit(text[i])) {
        ++i;
        ++digits;
    }
    if (i < text.size() && text[i] == '.') {
        ++i;
        while (i < text.size() && isDigit(text[i])) {
            ++i;
            ++digits;
        }
    }
    if (digits == 0)
        return 0;
    if (i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
        std::size_t j = i + 1;
        if (j < text.size() && (text[j] == '+' || text[j] == '-'))
            ++j;
        if (j < text.size() && isDigit(text[j])) {
            while (j < text.size() && isDigit(text[j]))
                ++j;
            i = j;
        }
    }
    return i;
}

// The text as bytes for from_chars, without the "+" it does not take; false for a
// character beyond ASCII, which no number holds.
template <class Char>
bool narrowNumber(std::basic_string_view<Char> text, std::string& narrow)
{
    if (!text.empty() && text[0] == '+')
        text.remove_prefix(1);
    narrow.clear();
    narrow.reserve(text.size());
    for (const Char c : text) {
        if (static_cast<std::make_unsigned_t<Char>>(c) > 0x7F)
            return false;
        narrow.push_back(static_cast<char>(c));
    }
    return true;
}

// The value of a decimal number doublePrefixLength took, when at most 19
// significant digits make an integer below 2^53 and the power of ten is exact:
// one multiplication or division of two exact doubles, which rounds correctly,
// so the value is from_chars' own. False leaves the number to from_chars.
template <class Char>
bool exactDecimal(std::basic_string_view<Char> number, double& value)
{
    static constexpr double kPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                         1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
    std::size_t i = 0;
    const bool negative = number[0] == '-';
    if (number[0] == '+' || number[0] == '-')
        ++i;
    std::uint64_t mantissa = 0;
    int significant = 0;
    int exponent = 0;
    bool point = false;
    for (; i < number.size(); ++i) {
        const Char c = number[i];
        if (c == '.') {
            point = true;
            continue;
        }
        if (!isDigit(c))
            break;
        if (mantissa == 0 && c == '0') {
            exponent -= point ? 1 : 0;
            continue;
        }
        if (++significant > 19)
            return false;
        mantissa = mantissa * 10 + static_cast<std::uint64_t>(c - '0');
        exponent -= point ? 1 : 0;
    }
    if (i < number.size()) {  // the exponent doublePrefixLength kept
        ++i;
        bool negativeExponent = false;
        if (number[i] == '+' || number[i] == '-')
            negativeExponent = number[i++] == '-';
        if (number.size() - i > 4)
            return false;
        int written = 0;
        for (; i < number.size(); ++i)
            written = written * 10 + (number[i] - '0');
        exponent += negativeExponent ? -written : written;
    }
    if (mantissa == 0) {
        value = negative ? -0.0 : 0.0;
        return true;
    }
    if (mantissa > (std::uint64_t{1} << 53) || exponent < -22 || exponent > 22)
        return false;
    const auto m = static_cast<double>(mantissa);
    value = exponent < 0 ? m / kPowers[-exponent] : m * kPowers[exponent];
    if (negative)
        value = -value;
    return true;
}

template <class Char>
std::size_t leadingDoubleOf(std::basic_string_view<Char> text, double& value)
{
    value = 0.0;
    const std::size_t length = doublePrefixLength(text);
    if (length == 0)
        return 0;
    const Char first = text[text[0] == '+' || text[0] == '-' ? 1 : 0];
    if ((isDigit(first) || first == '.') && exactDecimal(text.substr(0, length), value))
        return length;
    std::string narrow;
    narrowNumber(text.substr(0, length), narrow);
    const auto [end, ec] = std::from_chars(narrow.data(), narrow.data() + narrow.size(), value);
    if (ec == std::errc::result_out_of_range)
        value = strtodInCLocale(narrow);
    return length;
}

template <class Char>
std::size_t leadingIntOf(std::basic_string_view<Char> text, int& value)
{
    std::size_t i = 0;
    bool negative = false;
    if (i < text.size() && (text[i] == '+' || text[i] == '-'))
        negative = text[i++] == '-';
    const std::size_t digitsStart = i;
    long long magnitude = 0;
    for (; i < text.size() && isDigit(text[i]); ++i)
        if (magnitude <= static_cast<long long>(INT_MAX) + 1)  // beyond it saturates below
            magnitude = magnitude * 10 + (text[i] - '0');
    if (i == digitsStart) {
        value = 0;
        return 0;
    }
    const long long signedValue = negative ? -magnitude : magnitude;
    value = signedValue > INT_MAX ? INT_MAX : signedValue < INT_MIN ? INT_MIN : static_cast<int>(signedValue);
    return i;
}

template <class Char>
int atoiOf(std::basic_string_view<Char> text)
{
    int value = 0;
    leadingIntOf(skipSpaces(text), value);
    return value;
}

template <class Char>
double atofOf(std::basic_string_view<Char> text)
{
    double value = 0.0;
    leadingDoubleOf(skipSpaces(text), value);
    return value;
}

template <class Char>
NumberField parseFieldOf(std::basic_string_view<Char> field, double& value)
{
    if (field.size() >= 2 && field[0] == '+' && field[1] == '-')
        return NumberField::NotANumber;  // one sign only
    std::string narrow;
    if (!narrowNumber(field, narrow))
        return NumberField::NotANumber;
    const char* const last = narrow.data() + narrow.size();
    const auto [end, ec] = std::from_chars(narrow.data(), last, value);
    if (ec == std::errc::invalid_argument || end != last)
        return NumberField::NotANumber;
    if (ec == std::errc::result_out_of_range) {
        const double nearest = strtodInCLocale(narrow);
        value = std::isinf(nearest) ? nearest : std::numeric_limits<double>::quiet_NaN();
        return NumberField::NotFinite;
    }
    return std::isfinite(value) ? NumberField::Finite : NumberField::NotFinite;
}

}  // namespace

int formatInCLocale(char* buffer, std::size_t size, const char* fmt, va_list args)
{
#if defined(_WIN32)
    // _vsnprintf_l does not say how long the text would be; _vscprintf_l does.
    va_list copy;
    va_copy(copy, args);
    const int needed = _vscprintf_l(fmt, cLocale(), copy);
    va_end(copy);
    if (needed >= 0 && static_cast<std::size_t>(needed) < size)
        _vsnprintf_l(buffer, size, fmt, cLocale(), args);
    else if (size > 0)
        buffer[0] = '\0';
    return needed;
#else
    const CLocaleScope c;
    return std::vsnprintf(buffer, size, fmt, args);
#endif
}

std::size_t leadingInt(std::u16string_view text, int& value) { return leadingIntOf(text, value); }

std::size_t leadingDouble(std::u16string_view text, double& value) { return leadingDoubleOf(text, value); }

int toInt(std::u16string_view text) { return atoiOf(text); }

double toDouble(std::u16string_view text) { return atofOf(text); }

int toInt(std::string_view text) { return atoiOf(text); }

double toDouble(std::string_view text) { return atofOf(text); }

NumberField parseNumberField(std::string_view field, double& value) { return parseFieldOf(field, value); }

NumberField parseNumberField(std::u16string_view field, double& value) { return parseFieldOf(field, value); }

const char* numberFieldProblem(NumberField result)
{
    switch (result) {
    case NumberField::Finite: return "";
    case NumberField::NotANumber: return "not a number";
    case NumberField::NotFinite: return "not a finite number";
    }
    return "";
}

}  // namespace zelko
