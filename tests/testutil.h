#pragma once
// Helpers shared by the engine tests.

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "base/textfile.h"

namespace zelko::test {

// Compares whole byte buffers and names the first differing offset.
inline ::testing::AssertionResult sameBytes(std::string_view actual, std::string_view expected)
{
    const std::size_t common = std::min(actual.size(), expected.size());
    for (std::size_t i = 0; i < common; ++i) {
        if (actual[i] != expected[i]) {
            const std::size_t from = i < 24 ? 0 : i - 24;
            // AssertionResult formats each piece on its own, so the hex digits are made here.
            const auto hex = [](char c) {
                constexpr char kDigits[] = "0123456789abcdef";
                const auto byte = static_cast<unsigned char>(c);
                return std::string{'0', 'x', kDigits[byte >> 4], kDigits[byte & 15]};
            };
            return ::testing::AssertionFailure()
                   << "first difference at byte " << i << ": got " << hex(actual[i]) << ", expected "
                   << hex(expected[i]) << "\n got ..."
                   << ::testing::PrintToString(std::string(actual.substr(from, 48))) << "\n want ..."
                   << ::testing::PrintToString(std::string(expected.substr(from, 48)));
        }
    }
    if (actual.size() != expected.size())
        return ::testing::AssertionFailure() << "sizes differ: got " << actual.size() << " bytes, expected "
                                             << expected.size() << " (first " << common << " agree)";
    return ::testing::AssertionSuccess();
}

// A UTF-16 file with byte-order mark and CRLF, as the program writes it, from
// text with "\n" line ends.
inline std::string utf16File(std::string_view text)
{
    TextWriter writer(TextEncoding::Utf16Le);
    writer.put(utf8ToUtf16(text));
    return writer.bytes();
}

inline TextReader utf16Reader(std::string_view text) { return TextReader(utf16File(text), ReadMode::SniffBom); }

// Written text back as UTF-8 with "\n" line ends, for readable comparisons.
inline std::string textOf(const TextWriter& writer) { return utf16ToUtf8(writer.text()); }

}  // namespace zelko::test
