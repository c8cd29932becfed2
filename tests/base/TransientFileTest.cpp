#include "base/TransientFile.h"

#include "tests/support/TemporaryDirectory.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <memory>

namespace {

using base::TransientFile;

class TransientFileTest : public ::testing::Test {
protected:
    bool isThere() const {
        return std::filesystem::exists(std::filesystem::symlink_status(m_path));
    }

    TemporaryDirectory m_directory;
    std::filesystem::path m_path = m_directory.path() / "file";
    std::unique_ptr<TransientFile> m_file;
};

TEST_F(TransientFileTest, LivesAsLongAsItsObject) {
    m_file = std::make_unique<TransientFile>(m_path);
    EXPECT_TRUE(m_file->isInPlace());
    EXPECT_TRUE(m_file->isCreated());
    EXPECT_TRUE(std::filesystem::is_empty(m_path));
    m_file.reset();
    EXPECT_FALSE(isThere());
}

TEST_F(TransientFileTest, IsForItsOwnerAlone) {
    m_file = std::make_unique<TransientFile>(m_path);
    struct stat status = {};
    ASSERT_EQ(stat(m_path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0077U, 0U);
}

TEST_F(TransientFileTest, IsWrittenAndReadWhateverIsPutInItsPlace) {
    m_file = std::make_unique<TransientFile>(m_path);
    writeContent(m_directory.file("victim"), "precious");
    std::filesystem::rename(m_path, m_directory.file("moved"));
    std::filesystem::create_symlink(m_directory.file("victim"), m_path);
    ASSERT_EQ(write(m_file->descriptor(), "text", 4), 4);
    EXPECT_EQ(contentOf(m_file->openPath()), "text");
    EXPECT_EQ(contentOf(m_directory.file("victim")), "precious");
    EXPECT_EQ(contentOf(m_directory.file("moved")), "text");
}

TEST_F(TransientFileTest, StaysWhenItIsKept) {
    m_file = std::make_unique<TransientFile>(m_path);
    m_file->keep();
    m_file.reset();
    EXPECT_TRUE(isThere());
}

TEST_F(TransientFileTest, RemoveTakesItAwayAtOnce) {
    m_file = std::make_unique<TransientFile>(m_path);
    m_file->remove();
    EXPECT_FALSE(isThere());
    EXPECT_FALSE(m_file->isInPlace());
}

TEST_F(TransientFileTest, AnotherFileAtItsPathIsNoticedAndLeftAlone) {
    m_file = std::make_unique<TransientFile>(m_path);
    writeContent(m_directory.file("other"), "precious");
    std::filesystem::rename(m_directory.file("other"), m_path);
    EXPECT_FALSE(m_file->isInPlace());
    m_file.reset();
    EXPECT_EQ(contentOf(m_path), "precious");
}

TEST_F(TransientFileTest, LinkToTheVeryFileAtItsPathIsNoticed) {
    m_file = std::make_unique<TransientFile>(m_path);
    std::filesystem::rename(m_path, m_directory.file("moved"));
    std::filesystem::create_symlink(m_directory.file("moved"), m_path);
    EXPECT_FALSE(m_file->isInPlace());
}

TEST_F(TransientFileTest, DirectoryWithContentStays) {
    std::filesystem::create_directory(m_path);
    writeContent(m_path / "content", "precious");
    m_file = std::make_unique<TransientFile>(m_path);
    EXPECT_FALSE(m_file->isCreated());
    EXPECT_FALSE(m_file->isInPlace());
    m_file.reset();
    EXPECT_EQ(contentOf(m_path / "content"), "precious");
}

TEST_F(TransientFileTest, WithoutAFileOfItsOwnRemovesNothing) {
    const std::filesystem::path directory = m_directory.path() / "late";
    m_file = std::make_unique<TransientFile>(directory / "file");
    EXPECT_FALSE(m_file->isCreated());
    EXPECT_FALSE(m_file->isInPlace());
    std::filesystem::create_directory(directory);
    writeContent(directory / "file", "precious");
    m_file.reset();
    EXPECT_EQ(contentOf(directory / "file"), "precious");
}

} // namespace
