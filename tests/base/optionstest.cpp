#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "base/fileio.h"
#include "base/options.h"
#include "temporaryfolder.h"
#include "testutil.h"

namespace zelko {
namespace {

// langId after reading bytes into options that held `before`.
int langIdAfterReading(std::string_view bytes, int before = 1)
{
    Option option;
    option.langId = before;
    option.read(bytes);
    return option.langId;
}

TEST(Language, NamesTheThreeLanguagesAndEnglishForAnyOtherNumber)
{
    Language language;
    const std::pair<int, const char*> cases[] = {
        {0, "English"}, {1, "Korean"}, {2, "Japanese"}, {3, "English"}, {7, "English"}, {-1, "English"}};
    for (const auto& [id, name] : cases) {
        language.langId = id;
        EXPECT_EQ(language.languageName(), name) << "langId " << id;
    }
}

TEST(Option, ReadsTheStoredLanguage)
{
    EXPECT_EQ(langIdAfterReading(R"({"Language":{"langId":2}})", 0), 2);
    // A number the program does not know is kept as stored; it shows English.
    EXPECT_EQ(langIdAfterReading(R"({"Language":{"langId":7}})", 0), 7);
    // jsoncpp converts what it can: a fraction is cut, true is 1.
    EXPECT_EQ(langIdAfterReading(R"({"Language":{"langId":1.9}})", 0), 1);
    EXPECT_EQ(langIdAfterReading(R"({"Language":{"langId":true}})", 0), 1);
    // Other keys are ignored, and so is anything after the document.
    EXPECT_EQ(langIdAfterReading("{\"Other\":5,\"Language\":{\"langId\":2,\"x\":[]}} trailing", 0), 2);
}

TEST(Option, MissingKeysGiveEnglish)
{
    EXPECT_EQ(langIdAfterReading(R"({"Language":{}})"), 0);
    EXPECT_EQ(langIdAfterReading("{}"), 0);
    EXPECT_EQ(langIdAfterReading(R"({"Language":null})"), 0);
    EXPECT_EQ(langIdAfterReading("null"), 0);
}

TEST(Option, UnusableFilesKeepTheLanguage)
{
    // A file truncated by a crash, an empty file, another program's INI file.
    EXPECT_EQ(langIdAfterReading(R"({"Language":{"langId":)"), 1);
    EXPECT_EQ(langIdAfterReading(""), 1);
    EXPECT_EQ(langIdAfterReading("[Language]\nlangId=2\n"), 1);
    EXPECT_EQ(langIdAfterReading(std::string("\xFF\xFE{\0}\0", 6)), 1);
    // Shapes jsoncpp would throw on when indexed, and numbers it can't make an int.
    EXPECT_EQ(langIdAfterReading("[1,2]"), 1);
    EXPECT_EQ(langIdAfterReading(R"("Language")"), 1);
    EXPECT_EQ(langIdAfterReading(R"({"Language":5})"), 1);
    EXPECT_EQ(langIdAfterReading(R"({"Language":[{"langId":2}]})"), 1);
    EXPECT_EQ(langIdAfterReading(R"({"Language":{"langId":"2"}})"), 1);
    EXPECT_EQ(langIdAfterReading(R"({"Language":{"langId":4294967296}})"), 1);
    EXPECT_EQ(langIdAfterReading(R"({"Language":{"langId":{}}})"), 1);
}

TEST(Option, SurvivesDeeplyNestedDocuments)
{
    // A hostile file must not overflow the stack.
    const std::string deep = std::string(100000, '[') + std::string(100000, ']');
    EXPECT_EQ(langIdAfterReading(deep), 1);
    const std::string deepObject = R"({"Language":)" + std::string(50000, '[') + "0" + std::string(50000, ']') + "}";
    EXPECT_EQ(langIdAfterReading(deepObject), 1);
}

TEST(Option, WritesJsoncppDefaultLayout)
{
    Option option;
    option.langId = 2;
    EXPECT_TRUE(test::sameBytes(option.toText(), "{\n\t\"Language\" : \n\t{\n\t\t\"langId\" : 2\n\t}\n}"));
    EXPECT_EQ(option.toJson().getMemberNames().size(), 1u);
    EXPECT_EQ(option.toJson()["Language"].getMemberNames().size(), 1u);
    option.langId = -3;
    EXPECT_TRUE(test::sameBytes(option.toText(), "{\n\t\"Language\" : \n\t{\n\t\t\"langId\" : -3\n\t}\n}"));
}

TEST(Option, SavesAndLoadsThroughAFile)
{
    test::TemporaryFolder folder;
    // A new user's settings folder has no PELD folder yet.
    const std::filesystem::path path = folder.path() / "PELD" / "ZELKO_MAT.ini";
    Option saved;
    saved.langId = 1;
    ASSERT_TRUE(saved.save(path));
    std::string error;
    EXPECT_EQ(readFileBytes(path, error).value_or(""), saved.toText());

    Option loaded;
    loaded.load(path);
    EXPECT_EQ(loaded.langId, 1);

    saved.langId = 2;
    ASSERT_TRUE(saved.save(path));
    loaded.load(path);
    EXPECT_EQ(loaded.langId, 2);
}

TEST(Option, MissingFileKeepsTheLanguageAndFailedSaveReportsIt)
{
    test::TemporaryFolder folder;
    Option option;
    option.langId = 2;
    option.load(folder.path() / "absent.ini");
    EXPECT_EQ(option.langId, 2);
    option.load(folder.path());  // a folder where the file should be
    EXPECT_EQ(option.langId, 2);

    // A file stands where the settings folder should be.
    const std::filesystem::path blocker = folder.path() / "PELD";
    std::ofstream(blocker) << "not a folder";
    EXPECT_FALSE(option.save(blocker / "ZELKO_MAT.ini"));
    std::string error;
    EXPECT_EQ(readFileBytes(blocker, error).value_or(""), "not a folder");
}

}  // namespace
}  // namespace zelko
