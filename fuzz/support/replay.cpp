// The main function of an entry without a fuzzer: gives it every file of the folders named on the command line, each as it
// is, cut short in several places, and with bytes changed. The changes are the same in every run.
#include <algorithm>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace {

using Bytes = std::vector<uint8_t>;

Bytes ReadFile(const std::filesystem::path &path) {
    std::ifstream stream(path, std::ios::binary);
    return Bytes{std::istreambuf_iterator<char>(stream), {}};
}

const Bytes *g_given = nullptr;

/// Tells which bytes ended the process, so that they can go into the corpus.
void TellGiven(int) {
    std::fprintf(stderr, "given:");
    for (const uint8_t byte : *g_given) std::fprintf(stderr, " %02X", byte);
    std::fprintf(stderr, "\n");
}

/// An exact block, so that a sanitizer sees a read behind its end.
void Give(const Bytes &bytes) {
    const Bytes exact(bytes);
    g_given = &exact;
    LLVMFuzzerTestOneInput(exact.data(), exact.size());
}

void GiveChanged(const Bytes &bytes, std::mt19937 &random) {
    constexpr int kCuts = 8;
    constexpr int kChanges = 64;
    for (int i = 0; i < kCuts; ++i)
        Give(Bytes(bytes.begin(), bytes.begin() + static_cast<int64_t>(random() % (bytes.size() + 1))));
    if (bytes.empty()) return;
    for (int i = 0; i < kChanges; ++i) {
        Bytes changed = bytes;
        for (uint32_t n = 1 + random() % 4; n > 0; --n) changed[random() % changed.size()] = static_cast<uint8_t>(random());
        Give(changed);
    }
}

}    // namespace

int main(int argc, char **argv) {
    std::vector<std::filesystem::path> files;
    for (int i = 1; i < argc; ++i) {
        for (const auto &entry : std::filesystem::directory_iterator(argv[i])) files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    std::mt19937 random(1);
    std::signal(SIGABRT, TellGiven);
    for (const std::filesystem::path &file : files) {
        const Bytes bytes = ReadFile(file);
        Give(bytes);
        GiveChanged(bytes, random);
    }
    std::printf("%zu files replayed\n", files.size());
    return files.empty() ? 1 : 0;
}
