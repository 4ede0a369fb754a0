#include "scripts/ScriptRecords.h"
#include "scripts/cFileManager.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

/// A separate temporary folder, which TMPDIR names.
class ScriptRecords : public testing::Test {
protected:
    fs::path folder;

    void SetUp() override {
        std::string name = (fs::temp_directory_path() / "kestrel-records-XXXXXX").string();
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        folder = name;
        if (const char* const former = std::getenv("TMPDIR")) former_ = former;
        ::setenv("TMPDIR", name.c_str(), 1);
    }
    void TearDown() override {
        former_ ? ::setenv("TMPDIR", former_->c_str(), 1) : ::unsetenv("TMPDIR");
        fs::remove_all(folder);
    }

    /// The names in the folder, sorted.
    std::vector<std::string> files() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

private:
    std::optional<std::string> former_;
};

TEST_F(ScriptRecords, keepTheLastText) {
    EXPECT_EQ(getScriptStatus("run"), "<KST_NOT_EXISTS>");
    EXPECT_EQ(getScriptResult("run"), "<KST_NOT_EXISTS>");
    setScriptStatus("run", "a long first status");
    const std::string bytes("two\r\n\0\xFF lines\n", 13);
    setScriptStatus("run", bytes);
    setScriptResult("run", "");
    EXPECT_EQ(getScriptStatus("run"), bytes);
    EXPECT_EQ(getScriptResult("run"), "");
    EXPECT_EQ(files(), (std::vector<std::string>{"result_run.txt", "status_run.txt"}));
    EXPECT_TRUE(_scriptStatus.empty() && _scriptResult.empty());
}

TEST_F(ScriptRecords, haveOneFileForEachIdentifier) {
    const struct {
        std::string id, file;
    } cases[] = {
        {"", "status_.txt"},
        {"7F-a_b.c d", "status_7F-a_b.c d.txt"},
        {"Größe", "status_Größe.txt"},
        {"../../etc/x", "status_..%2F..%2Fetc%2Fx.txt"},
        {std::string("a\0b", 3), "status_a%00b.txt"},
        {"a", "status_a.txt"},
        {"..%2F", "status_..%252F.txt"},
    };
    for (const auto& [id, file] : cases) {
        setScriptStatus(id, "of " + id);
        EXPECT_TRUE(fs::is_regular_file(folder / file)) << file;
    }
    EXPECT_EQ(files().size(), std::size(cases));
    for (const auto& [id, file] : cases)
        EXPECT_EQ(getScriptStatus(id), "of " + id);
}

TEST_F(ScriptRecords, stayEmptyWhenTheyCannotBeWritten) {
    const std::string tooLong(300, 'x');
    setScriptStatus(tooLong, "lost");
    EXPECT_EQ(getScriptStatus(tooLong), "<KST_NOT_EXISTS>");
    fs::create_directory(folder / "result_folder.txt");
    setScriptResult("folder", "lost");
    EXPECT_EQ(getScriptResult("folder"), "<KST_NOT_EXISTS>");
}

TEST_F(ScriptRecords, areFoundInTheCurrentTemporaryFolder) {
    setScriptStatus("run", "there");
    ::setenv("TMPDIR", (folder.string() + "/").c_str(), 1);
    EXPECT_EQ(getScriptStatus("run"), "there");
    ::setenv("TMPDIR", (folder / "elsewhere").c_str(), 1);
    EXPECT_EQ(getScriptStatus("run"), "<KST_NOT_EXISTS>");
    ::unsetenv("TMPDIR");
    EXPECT_EQ(cFileManager::getTempDirectory(), "/tmp");
}

TEST_F(ScriptRecords, areRegularFilesOnly) {
    const fs::path file = folder / "file";
    setScriptStatus("x", "");
    fs::rename(folder / "status_x.txt", file);
    fs::create_symlink(file, folder / "link");
    fs::create_symlink(folder / "nowhere", folder / "broken");
    for (const fs::path& path : {file, folder / "link"})
        EXPECT_TRUE(cFileManager::fileExists(path)) << path;
    for (const fs::path& path : {folder / "broken", folder, folder / "absent", fs::path()})
        EXPECT_FALSE(cFileManager::fileExists(path)) << path;
}

} // namespace
