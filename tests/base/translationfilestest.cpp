// The translation files shipped in language/: each screen's file exists in
// every language, reads cleanly and maps back to English without ambiguity.
#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>

#include "base/fileio.h"
#include "base/textfile.h"
#include "base/translationtable.h"

namespace zelko {
namespace {

const char* const kSections[] = {"Main",        "Option",         "Language",          "Elastic",    "Heat",
                                 "PlasticRoom", "PlasticRoomAdv", "Plastic8_advanced", "PlasticHot", "PlasticHotAdv",
                                 "PlasticHotMicros", "ProcessingMap"};
const char* const kLanguages[] = {"Korean", "Japanese"};

std::filesystem::path installationFolder() { return std::filesystem::path(ZELKO_TEST_DATA).parent_path().parent_path(); }

std::string fileBytes(const char* language, const char* section)
{
    const std::u16string path = translationFilePath(installationFolder().u16string(), language, widen(section));
    std::string error;
    return readFileBytes(std::filesystem::path(path), error).value_or("");
}

TEST(TranslationFiles, EveryLineIsAnEntryOfCleanUtf8)
{
    for (const char* language : kLanguages) {
        for (const char* section : kSections) {
            SCOPED_TRACE(std::string(language) + "/" + section);
            const std::string bytes = fileBytes(language, section);
            ASSERT_FALSE(bytes.empty());
            EXPECT_EQ(utf16ToUtf8(utf8ToUtf16(bytes)), bytes) << "not valid UTF-8";
            EXPECT_EQ(bytes.find('\r'), std::string::npos);
            EXPECT_FALSE(bytes.starts_with("\xEF\xBB\xBF"));
            EXPECT_TRUE(bytes.ends_with("\n"));
            std::size_t lines = 0;
            for (const std::u16string& line : split(utf8ToUtf16(bytes), u"\n")) {
                ++lines;
                const std::size_t backslash = line.find(u'\\');
                ASSERT_NE(backslash, std::u16string::npos) << utf16ToUtf8(line);
                EXPECT_GT(backslash, 0u) << utf16ToUtf8(line);
                EXPECT_LT(backslash + 1, line.size()) << "no translation: " << utf16ToUtf8(line);
                EXPECT_LT(line.size(), kTranslationLineUnits) << "read as two lines: " << utf16ToUtf8(line);
            }
            TranslationTable table;
            table.load(bytes);
            EXPECT_EQ(table.entries().size(), lines) << "a key appears twice";
        }
    }
}

TEST(TranslationFiles, LanguagesTranslateTheSameTexts)
{
    for (const char* section : kSections) {
        SCOPED_TRACE(section);
        std::set<std::u16string> keys[2];
        for (int i = 0; i < 2; ++i) {
            TranslationTable table;
            table.load(fileBytes(kLanguages[i], section));
            for (const auto& entry : table.entries())
                keys[i].insert(entry.first);
        }
        EXPECT_EQ(keys[0], keys[1]);
    }
}

TEST(TranslationFiles, EnglishComesBackUnchangedAfterAnyLanguage)
{
    // The main view's table holds every language loaded in a run, the last one
    // loaded winning; back in English each of its translations must lead to its
    // own key, and no English text may be taken for another text's translation.
    for (const char* section : kSections) {
        for (int last = 0; last < 2; ++last) {
            const char* language = kLanguages[last];
            SCOPED_TRACE(std::string(section) + ", " + language + " last");
            TranslationTable table;
            table.load(fileBytes(kLanguages[1 - last], section));
            table.load(fileBytes(language, section));
            table.setReverse(true);
            TranslationTable one;
            one.load(fileBytes(language, section));
            for (const auto& [key, value] : one.entries()) {
                EXPECT_EQ(table.translate(value), key) << utf16ToUtf8(value);
                EXPECT_EQ(table.translate(key), key) << "English text taken for a translation: " << utf16ToUtf8(key);
            }
        }
    }
}

}  // namespace
}  // namespace zelko
