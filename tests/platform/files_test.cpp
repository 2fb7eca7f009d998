#include "platform/files.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "platform/status.h"
#include "tests/support/scratch_folder.h"

namespace zck {
namespace {

class Files : public testing::Test {
protected:
    Text Path(std::string_view name) const { return TextFromUtf8(m_folder.Path(name)); }

    const test::ScratchFolder m_folder;
};

TEST_F(Files, BytesComeBack) {
    std::string all;
    for (int i = 0; i < 300000; ++i) all.push_back(static_cast<char>(i * 7));
    std::string read;
    EXPECT_EQ(FileWrite(Path("x"), all), S_OK);
    EXPECT_EQ(FileRead(Path("x"), all.size(), read), S_OK);
    EXPECT_EQ(read, all);
    EXPECT_EQ(FileWrite(Path("x"), "short"), S_OK);
    EXPECT_EQ(FileRead(Path("x"), all.size(), read), S_OK);
    EXPECT_EQ(read, "short");
    EXPECT_EQ(FileWrite(Path("x"), ""), S_OK);
    EXPECT_EQ(FileRead(Path("x"), 0, read), S_OK);
    EXPECT_EQ(read, "");
}

TEST_F(Files, MoreThanAllowedIsRefused) {
    std::string read = "before";
    EXPECT_EQ(FileWrite(Path("x"), "12345"), S_OK);
    EXPECT_EQ(FileRead(Path("x"), 4, read), kErrorFileTooLarge);
    EXPECT_EQ(read, "");
}

TEST_F(Files, PathsOfAnyScript) {
    const std::string_view name = "\u00E4\u4E2D";
    EXPECT_FALSE(FileExists(Path(name)));
    EXPECT_EQ(FileWrite(Path(name), "x"), S_OK);
    EXPECT_TRUE(FileExists(Path(name)));
    EXPECT_TRUE(std::filesystem::exists(m_folder.File(name)));
}

TEST_F(Files, Failures) {
    std::string read;
    EXPECT_EQ(FileRead(Path("missing"), 10, read), kErrorFileNotFound);
    EXPECT_TRUE(FAILED(FileRead(Path(""), 10, read)));
    EXPECT_TRUE(FAILED(FileWrite(Path("no/such/folder"), "x")));
    EXPECT_TRUE(FileExists(Path("")));
    EXPECT_FALSE(FileExists({}));
    EXPECT_TRUE(FAILED(FileRead({}, 10, read)));
}

TEST_F(Files, AZeroInsideIsNoPath) {
    std::string read;
    Text path = Path("x");
    EXPECT_EQ(FileWrite(path, "x"), S_OK);
    path.push_back(0);
    path.append(ZCK_TEXT("tail"));
    EXPECT_EQ(FileRead(path, 10, read), kErrorInvalidName);
    EXPECT_EQ(FileWrite(path, "y"), kErrorInvalidName);
    EXPECT_FALSE(FileExists(path));
}

}    // namespace
}    // namespace zck
