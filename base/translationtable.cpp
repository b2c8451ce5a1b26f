#include "base/translationtable.h"

#include "base/textfile.h"

namespace zelko {

namespace {

#ifdef _WIN32
constexpr char16_t kSeparator = u'\\';
bool isSeparator(char16_t c) { return c == u'\\' || c == u'/'; }
#else
constexpr char16_t kSeparator = u'/';
bool isSeparator(char16_t c) { return c == u'/'; }
#endif

// The files are opened as UTF-8 text, where a byte-order mark decides: a UTF-16
// mark reads UTF-16, anything else reads UTF-8.
TextReader translationReader(std::string_view bytes)
{
    const bool hasMark = bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xEF\xBB\xBF");
    if (hasMark)
        return TextReader(bytes, ReadMode::SniffBom);
    std::string marked = "\xEF\xBB\xBF";
    marked.append(bytes);
    return TextReader(marked, ReadMode::SniffBom);
}

}  // namespace

void TranslationTable::load(std::string_view fileBytes)
{
    TextReader reader = translationReader(fileBytes);
    std::u16string line;
    while (reader.readLine(line, kTranslationLineUnits)) {
        const std::size_t backslash = line.find(u'\\');
        // Without a backslash the key keeps the line end, so it never matches a control.
        std::u16string key = backslash == std::u16string::npos ? line : line.substr(0, backslash);
        const std::size_t valueStart = backslash == std::u16string::npos ? 0 : backslash + 1;
        const std::u16string_view rest = std::u16string_view(line).substr(valueStart);
        entries_.insert_or_assign(std::move(key), std::u16string(rest.substr(0, rest.find(u'\n'))));
    }
}

std::u16string TranslationTable::translate(std::u16string_view text) const
{
    if (!reverse_) {
        const auto found = entries_.find(text);
        return std::u16string(found == entries_.end() ? text : std::u16string_view(found->second));
    }
    for (const auto& [key, value] : entries_)
        if (value == text)
            return key;
    return std::u16string(text);
}

std::u16string translationFilePath(std::u16string_view installationFolder, std::string_view languageName,
                                   std::u16string_view section)
{
    std::u16string path(installationFolder);
    if (path.empty() || !isSeparator(path.back()))
        path += kSeparator;
    const std::u16string separator(1, kSeparator);
    path += u"language" + separator + u"ZELKO_MAT" + separator + widen(languageName) + separator;
    path.append(section);
    path += u".txt";
    return path;
}

}  // namespace zelko
