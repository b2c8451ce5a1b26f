#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#if !defined(_WIN32)
#include <sys/stat.h>
#endif

#include "base/fileio.h"
#include "foldernames.h"
#include "temporaryfolder.h"

namespace zelko {
namespace {

namespace fs = std::filesystem;

std::string bytesOf(const fs::path& path)
{
    std::string error;
    const auto bytes = readFileBytes(path, error);
    return bytes ? *bytes : "<" + error + ">";
}

void put(const fs::path& path, std::string_view bytes)
{
    std::string error;
    ASSERT_TRUE(saveFileAtomically(path, bytes, error)) << error;
}

class PendingOutputsTest : public ::testing::Test {
protected:
    fs::path file(std::string_view name) const { return temporary_.path() / name; }
    std::vector<std::string> names() const { return test::namesIn(temporary_.path()); }

    test::TemporaryFolder temporary_;
    std::string error;
};

TEST_F(PendingOutputsTest, NothingIsReplacedBeforeTheCommitAndEverythingAfter)
{
    put(file("m.zmat"), "previous material");
    {
        PendingOutputs outputs;
        ASSERT_TRUE(outputs.stage(file("m.zmat"), "new material", error)) << error;
        ASSERT_TRUE(outputs.stage(file("m.z3dlib"), "new entry", error)) << error;
        EXPECT_EQ(bytesOf(file("m.zmat")), "previous material");
        EXPECT_FALSE(fs::exists(file("m.z3dlib")));
        ASSERT_TRUE(outputs.commit(error)) << error;
    }
    EXPECT_EQ(bytesOf(file("m.zmat")), "new material");
    EXPECT_EQ(bytesOf(file("m.z3dlib")), "new entry");
    EXPECT_EQ(names(), (std::vector<std::string>{"m.z3dlib", "m.zmat"}));
}

TEST_F(PendingOutputsTest, AnOutputThatCannotBeStagedLeavesEveryTargetAsItWas)
{
    put(file("m.zmat"), "previous material");
    {
        PendingOutputs outputs;
        ASSERT_TRUE(outputs.stage(file("m.zmat"), "new material", error)) << error;
        // --export into a folder that was never made.
        EXPECT_FALSE(outputs.stage(file("missing/m.z3dlib"), "new entry", error));
        EXPECT_EQ(error, "cannot create a file in that folder");
    }  // the command gives up
    EXPECT_EQ(bytesOf(file("m.zmat")), "previous material");
    EXPECT_EQ(names(), std::vector<std::string>{"m.zmat"});

    PendingOutputs discarded;
    ASSERT_TRUE(discarded.stage(file("m.zmat"), "new material", error)) << error;
    discarded.discard();
    EXPECT_TRUE(discarded.commit(error));  // nothing left to commit
    EXPECT_EQ(bytesOf(file("m.zmat")), "previous material");
    EXPECT_EQ(names(), std::vector<std::string>{"m.zmat"});
}

TEST_F(PendingOutputsTest, ARenameThatFailsGivesBackTheFilesReplacedBeforeIt)
{
    put(file("a.zmat"), "previous a");
    put(file("c.z3dlib"), "previous c");
    PendingOutputs outputs;
    ASSERT_TRUE(outputs.stage(file("a.zmat"), "new a", error)) << error;
    ASSERT_TRUE(outputs.stage(file("b.zmat"), "new b", error)) << error;
    ASSERT_TRUE(outputs.stage(file("c.z3dlib"), "new c", error)) << error;
    // Another program puts a folder where c was, between staging and commit.
    fs::remove(file("c.z3dlib"));
    fs::create_directories(file("c.z3dlib") / "inside");

    fs::path failed;
    EXPECT_FALSE(outputs.commit(error, &failed));
    EXPECT_EQ(failed, file("c.z3dlib"));
    EXPECT_TRUE(error.starts_with("cannot replace the file: ")) << error;
    EXPECT_EQ(bytesOf(file("a.zmat")), "previous a");
    EXPECT_FALSE(fs::exists(file("b.zmat")));  // not there before the commit
    EXPECT_EQ(names(), (std::vector<std::string>{"a.zmat", "c.z3dlib"}));
}

TEST_F(PendingOutputsTest, TwoOutputsForOneFileAreRefused)
{
    fs::create_directories(file("sub"));
    PendingOutputs outputs;
    ASSERT_TRUE(outputs.stage(file("m.zmat"), "material", error)) << error;
    EXPECT_FALSE(outputs.stage(file("sub/../m.zmat"), "entry", error));
    EXPECT_EQ(error, "names the same file as " + file("m.zmat").string());
#if !defined(_WIN32)
    fs::create_symlink("m.zmat", file("link.zmat"));
    EXPECT_FALSE(outputs.stage(file("link.zmat"), "entry", error));
#endif
    ASSERT_TRUE(outputs.commit(error)) << error;
    EXPECT_EQ(bytesOf(file("m.zmat")), "material");
}

#if !defined(_WIN32)
mode_t modeOf(const fs::path& path)
{
    struct stat st {};
    EXPECT_EQ(::stat(path.c_str(), &st), 0);
    return st.st_mode & 07777;
}

TEST_F(PendingOutputsTest, ALinkIsWrittenThroughToItsFile)
{
    fs::create_directories(file("real"));
    put(file("real/m.zmat"), "previous");
    fs::create_symlink("real/m.zmat", file("link.zmat"));
    fs::create_symlink(file("link.zmat"), file("chain.zmat"));  // a link to a link, absolute
    fs::create_symlink("real/new.zmat", file("dangling.zmat"));  // a link made before its file

    put(file("link.zmat"), "through the link");
    EXPECT_TRUE(fs::is_symlink(file("link.zmat")));
    EXPECT_EQ(bytesOf(file("real/m.zmat")), "through the link");
    put(file("chain.zmat"), "through two links");
    EXPECT_TRUE(fs::is_symlink(file("chain.zmat")));
    EXPECT_EQ(bytesOf(file("real/m.zmat")), "through two links");
    put(file("dangling.zmat"), "made");
    EXPECT_TRUE(fs::is_symlink(file("dangling.zmat")));
    EXPECT_EQ(bytesOf(file("real/new.zmat")), "made");
    EXPECT_EQ(names(), (std::vector<std::string>{"chain.zmat", "dangling.zmat", "link.zmat", "real"}));
    EXPECT_EQ(test::namesIn(file("real")), (std::vector<std::string>{"m.zmat", "new.zmat"}));
}

TEST_F(PendingOutputsTest, AReplacedFileKeepsItsPermissions)
{
    for (const mode_t mode : {0600, 0640, 0444}) {
        SCOPED_TRACE(mode);
        put(file("m.zmat"), "previous");
        ASSERT_EQ(::chmod(file("m.zmat").c_str(), mode), 0);
        put(file("m.zmat"), "new");
        EXPECT_EQ(modeOf(file("m.zmat")), mode);
        fs::remove(file("m.zmat"));
    }
    // Through a link the file's permissions count, not the link's.
    put(file("private.zmat"), "previous");
    ASSERT_EQ(::chmod(file("private.zmat").c_str(), 0600), 0);
    fs::create_symlink("private.zmat", file("link.zmat"));
    put(file("link.zmat"), "new");
    EXPECT_EQ(modeOf(file("private.zmat")), 0600u);
}

TEST_F(PendingOutputsTest, WhatIsNoRegularFileIsRefusedAndKept)
{
    ASSERT_EQ(::mkfifo(file("pipe").c_str(), 0600), 0);  // a script's named pipe
    fs::create_symlink("pipe", file("link-to-pipe"));
    fs::create_directories(file("folder"));
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"pipe", "is not a regular file"},
        {"link-to-pipe", "is not a regular file"},
        {"folder", "is a folder, not a file"},
        {"folder/", "is a folder, not a file"},
    };
    for (const auto& [name, message] : cases) {
        SCOPED_TRACE(name);
        EXPECT_FALSE(saveFileAtomically(file(name), "x", error));
        EXPECT_EQ(error, message);
    }
    EXPECT_TRUE(fs::is_fifo(file("pipe")));
    EXPECT_TRUE(fs::is_symlink(file("link-to-pipe")));
    EXPECT_EQ(names(), (std::vector<std::string>{"folder", "link-to-pipe", "pipe"}));
}
#endif

TEST_F(PendingOutputsTest, NamesUpToTheFilesystemsLimitAreSaved)
{
    // 255 bytes is the usual limit of one name.
    const std::string longest = std::string(250, 'n') + ".zmat";
    put(file(longest), "long");
    EXPECT_EQ(bytesOf(file(longest)), "long");
    put(file(longest), "again");
    EXPECT_EQ(bytesOf(file(longest)), "again");

    const std::string tooLong = std::string(300, 'n') + ".zmat";
    EXPECT_FALSE(saveFileAtomically(file(tooLong), "x", error));
    EXPECT_EQ(error, "the file name is too long");
    EXPECT_EQ(names(), std::vector<std::string>{longest});
}

}  // namespace
}  // namespace zelko
