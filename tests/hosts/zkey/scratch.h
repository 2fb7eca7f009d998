// A folder for the files of one test, removed at its end.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

class Scratch {
public:
    Scratch() {
        static std::atomic<int> count{0};
        const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
        m_folder =
            std::filesystem::temp_directory_path() / ("zkey_test_" + std::to_string(now) + "_" + std::to_string(++count));
        std::filesystem::create_directories(m_folder);
    }
    ~Scratch() {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }
    Scratch(const Scratch &) = delete;
    Scratch &operator=(const Scratch &) = delete;

    std::string Path(const std::string &name) const { return (m_folder / name).string(); }

    std::string Write(const std::string &name, const std::vector<uint8_t> &bytes) const {
        std::ofstream file(m_folder / name, std::ios::binary);
        file.write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        return Path(name);
    }

    std::vector<uint8_t> Read(const std::string &name) const {
        std::ifstream file(m_folder / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

    std::string Text(const std::string &name) const {
        const std::vector<uint8_t> bytes = Read(name);
        return {bytes.begin(), bytes.end()};
    }

private:
    std::filesystem::path m_folder;
};
