#pragma once
// The table that turns a screen's English texts into the chosen language and,
// while English is chosen, back again. One table per screen; it only grows, so a
// screen that lives through several language changes can map any of them back.

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace zelko {

// fgetws into a buffer of 512: a longer line of a translation file reads as several.
inline constexpr std::size_t kTranslationLineUnits = 511;

class TranslationTable {
public:
    using Entries = std::map<std::u16string, std::u16string, std::less<>>;

    // Adds the entries of one translation file (UTF-8, byte-order mark accepted),
    // one a line: the English text, a backslash, the translation. A later entry
    // replaces an earlier one with the same key.
    void load(std::string_view fileBytes);

    // Forward: the translation of text, or text itself. Reverse: the first key,
    // in key order, whose translation is text, or text itself.
    std::u16string translate(std::u16string_view text) const;

    void setReverse(bool reverse) { reverse_ = reverse; }
    bool reverse() const { return reverse_; }
    bool empty() const { return entries_.empty(); }
    const Entries& entries() const { return entries_; }

private:
    Entries entries_;
    bool reverse_ = false;
};

// installationFolder + "language/ZELKO_MAT/" + language + "/" + section + ".txt",
// with a separator after the folder unless it ends with one (an empty folder
// gives a path that begins with a separator).
std::u16string translationFilePath(std::u16string_view installationFolder, std::string_view languageName,
                                   std::u16string_view section);

}  // namespace zelko
