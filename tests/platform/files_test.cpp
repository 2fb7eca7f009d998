#include "platform/files.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>

#include "platform/status.h"

namespace zck {
namespace {

class Files : public testing::Test {
protected:
    Files() { std::filesystem::create_directories(m_folder); }
    ~Files() override { std::filesystem::remove_all(m_folder); }

    Text Path(std::u8string_view name) const {
        const std::u8string path = (m_folder / std::filesystem::path(name)).u8string();
        return TextFromUtf8(std::string(path.begin(), path.end()));
    }

    const std::filesystem::path m_folder =
        std::filesystem::temp_directory_path() /
        ("zck_files_" + std::to_string(std::chrono::steady_clock::now().time_since_epoch().count()));
};

TEST_F(Files, BytesComeBack) {
    std::string all;
    for (int i = 0; i < 300000; ++i) all.push_back(static_cast<char>(i * 7));
    std::string read;
    EXPECT_EQ(FileWrite(Path(u8"x"), all), S_OK);
    EXPECT_EQ(FileRead(Path(u8"x"), all.size(), read), S_OK);
    EXPECT_EQ(read, all);
    EXPECT_EQ(FileWrite(Path(u8"x"), "short"), S_OK);
    EXPECT_EQ(FileRead(Path(u8"x"), all.size(), read), S_OK);
    EXPECT_EQ(read, "short");
    EXPECT_EQ(FileWrite(Path(u8"x"), ""), S_OK);
    EXPECT_EQ(FileRead(Path(u8"x"), 0, read), S_OK);
    EXPECT_EQ(read, "");
}

TEST_F(Files, MoreThanAllowedIsRefused) {
    std::string read = "before";
    EXPECT_EQ(FileWrite(Path(u8"x"), "12345"), S_OK);
    EXPECT_EQ(FileRead(Path(u8"x"), 4, read), kErrorFileTooLarge);
    EXPECT_EQ(read, "");
}

TEST_F(Files, PathsOfAnyScript) {
    const std::u8string_view name = u8"\u00E4\u4E2D";
    EXPECT_FALSE(FileExists(Path(name)));
    EXPECT_EQ(FileWrite(Path(name), "x"), S_OK);
    EXPECT_TRUE(FileExists(Path(name)));
    EXPECT_TRUE(std::filesystem::exists(m_folder / std::filesystem::path(name)));
}

TEST_F(Files, Failures) {
    std::string read;
    EXPECT_EQ(FileRead(Path(u8"missing"), 10, read), kErrorFileNotFound);
    EXPECT_TRUE(FAILED(FileRead(Path(u8""), 10, read)));
    EXPECT_TRUE(FAILED(FileWrite(Path(u8"no/such/folder"), "x")));
    EXPECT_TRUE(FileExists(Path(u8"")));
    EXPECT_FALSE(FileExists({}));
    EXPECT_TRUE(FAILED(FileRead({}, 10, read)));
}

TEST_F(Files, AZeroInsideIsNoPath) {
    std::string read;
    Text path = Path(u8"x");
    EXPECT_EQ(FileWrite(path, "x"), S_OK);
    path.push_back(0);
    path.append(ZCK_TEXT("tail"));
    EXPECT_EQ(FileRead(path, 10, read), kErrorInvalidName);
    EXPECT_EQ(FileWrite(path, "y"), kErrorInvalidName);
    EXPECT_FALSE(FileExists(path));
}

}    // namespace
}    // namespace zck
