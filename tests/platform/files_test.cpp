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
    // Of a file that was to be created it is the folder that is missing.
    constexpr HRESULT kErrorPathNotFound = StatusOf(0x80070003);
    EXPECT_EQ(FileWrite(Path("missing/a"), "x"), kErrorPathNotFound);
    File file;
    EXPECT_EQ(file.Open(Path("missing/a"), FileMode::Create), kErrorPathNotFound);
    EXPECT_EQ(file.Open(Path("missing/a"), FileMode::Update), kErrorPathNotFound);
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

TEST_F(Files, PlacesOfAnOpenFile) {
    File file;
    size_t n = 0;
    uint64_t size = 99;
    char bytes[8] = {};
    EXPECT_TRUE(FAILED(file.Size(size)));
    EXPECT_TRUE(FAILED(file.ReadAt(0, bytes, 1, n)));
    EXPECT_EQ(kErrorFileNotFound, file.Open(Path("x"), FileMode::Read));
    ASSERT_EQ(S_OK, file.Open(Path("x"), FileMode::Update));
    EXPECT_EQ(S_OK, file.WriteAt(0, "12345", 5, n));
    EXPECT_EQ(5u, n);
    // Behind the end: zeros between.
    EXPECT_EQ(S_OK, file.WriteAt(6, "7", 1, n));
    EXPECT_EQ(S_OK, file.ReadAt(4, bytes, 8, n));
    EXPECT_EQ(3u, n);
    EXPECT_EQ(std::string("5\0"
                          "7",
                          3),
              std::string(bytes, 3));
    EXPECT_EQ(S_OK, file.ReadAt(100, bytes, 8, n));
    EXPECT_EQ(0u, n);
    EXPECT_EQ(S_OK, file.SetSize(2));
    EXPECT_EQ(S_OK, file.Size(size));
    EXPECT_EQ(2u, size);
    // Others read meanwhile.
    File reader;
    ASSERT_EQ(S_OK, reader.Open(Path("x"), FileMode::Read));
    EXPECT_EQ(S_OK, reader.ReadAt(0, bytes, 8, n));
    EXPECT_EQ(2u, n);
    EXPECT_TRUE(FAILED(reader.WriteAt(0, "x", 1, n)));
    EXPECT_EQ(0u, n);
}

TEST_F(Files, OldFilesAreKeptOrEmptied) {
    uint64_t size = 0;
    ASSERT_EQ(S_OK, FileWrite(Path("x"), "12345"));
    {
        File kept;
        ASSERT_EQ(S_OK, kept.Open(Path("x"), FileMode::Update));
        EXPECT_EQ(S_OK, kept.Size(size));
        EXPECT_EQ(5u, size);
    }
    File emptied;
    ASSERT_EQ(S_OK, emptied.Open(Path("x"), FileMode::Create));
    EXPECT_EQ(S_OK, emptied.Size(size));
    EXPECT_EQ(0u, size);
}

}    // namespace
}    // namespace zck
