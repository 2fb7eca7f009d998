// The folder for the files of one test, which are mostly pictures.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tests/support/scratch_folder.h"

class Scratch : public zck::test::ScratchFolder {
public:
    /// Gives the file's path.
    std::string Write(const std::string &name, const std::vector<uint8_t> &bytes) const {
        Put(name, {reinterpret_cast<const char *>(bytes.data()), bytes.size()});
        return Path(name);
    }

    /// Empty where the program wrote no such file.
    std::vector<uint8_t> Read(const std::string &name) const {
        std::error_code none;
        const std::uintmax_t size = std::filesystem::file_size(File(name), none);
        std::vector<uint8_t> bytes(none ? 0 : static_cast<std::size_t>(size));
        std::ifstream(File(name), std::ios::binary).read(reinterpret_cast<char *>(bytes.data()), std::ssize(bytes));
        return bytes;
    }

    std::string Text(const std::string &name) const {
        const std::vector<uint8_t> bytes = Read(name);
        return {bytes.begin(), bytes.end()};
    }
};
