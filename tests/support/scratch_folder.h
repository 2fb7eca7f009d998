// A folder for the files of one test.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <system_error>

namespace zck::test {

/// A new folder among the temporary ones, removed with all that is in it. Names and paths are UTF-8 on every system.
class ScratchFolder {
public:
    ScratchFolder() {
        std::random_device random;
        do m_folder = std::filesystem::temp_directory_path() / ("zck_test_" + std::to_string(random()));
        while (!std::filesystem::create_directory(m_folder));
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }
    ScratchFolder(const ScratchFolder &) = delete;
    ScratchFolder &operator=(const ScratchFolder &) = delete;

    std::filesystem::path File(std::string_view name) const {
        return m_folder / std::filesystem::path(std::u8string(name.begin(), name.end()));
    }

    std::string Path() const { return Utf8(m_folder); }
    /// Of a file in it, which need not exist.
    std::string Path(std::string_view name) const { return Utf8(File(name)); }

    void Put(std::string_view name, std::string_view bytes) const {
        std::ofstream file(File(name), std::ios::binary);
        file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        EXPECT_TRUE(file.flush()) << name << " cannot be written";
    }

    std::string Bytes(std::string_view name) const {
        std::ifstream file(File(name), std::ios::binary);
        EXPECT_TRUE(file) << name << " cannot be read";
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

private:
    static std::string Utf8(const std::filesystem::path &path) {
        const std::u8string text = path.u8string();
        return {text.begin(), text.end()};
    }

    std::filesystem::path m_folder;
};

}    // namespace zck::test
