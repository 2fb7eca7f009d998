#include "tests/hosts/zkey/format_pictures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "tests/scene/scene.h"

namespace {

using Bytes = std::vector<uint8_t>;

constexpr std::size_t kPixels = std::size_t{kFormatWidth} * kFormatHeight;
constexpr int kPatch = 44;    // a divisor of the width
constexpr int kPatchRows = 48;

constexpr uint32_t kPatchColours[] = {0xE0AC90, 0x8D5A3C, 0x34B24A, 0x1E50C8, 0xC83232, 0xE6DC46, 0x3CBEC8, 0xB446B4,
                                      0xF0F0F0, 0x808080, 0x141414, 0x5A7832, 0x7A9CC0, 0xD2B48C, 0x465064, 0x9EDC82};

double MeanDistance(const Bytes &a, const Bytes &b, std::size_t first, std::size_t last) {
    EXPECT_EQ(a.size(), kPixels * 4);
    EXPECT_EQ(b.size(), kPixels * 4);
    if (a.size() != b.size()) return 255;
    double sum = 0;
    for (std::size_t i = 0; i < a.size(); i += 4) {
        for (std::size_t c = first; c <= last; ++c) sum += std::abs(a[i + c] - b[i + c]);
    }
    return sum / static_cast<double>(kPixels * (last - first + 1));
}

}    // namespace

const char *const kFormatKey = "-c 34B24A -t 30 -s 40";

FormatPicture FormatScene(bool interlaced) {
    zck::SceneParams p;
    p.width = kFormatWidth;
    p.height = kFormatHeight;
    zck::ScenePicture first = zck::RenderScene(p, 0);
    if (interlaced) {
        const zck::ScenePicture second = zck::RenderScene(p, 3);
        for (std::size_t y = 1; y < kFormatHeight; y += 2) {
            std::memcpy(&first.pixels[y * kFormatWidth * 4], &second.pixels[y * kFormatWidth * 4], kFormatWidth * 4);
            std::memcpy(&first.alpha[y * kFormatWidth], &second.alpha[y * kFormatWidth], kFormatWidth);
        }
    }
    return {std::move(first.pixels), std::move(first.alpha)};
}

FormatPicture FormatPatches() {
    FormatPicture picture{Bytes(kPixels * 4, 255), Bytes(kPixels, 255)};
    for (int y = 0; y < kFormatHeight; ++y) {
        for (int x = 0; x < kFormatWidth; ++x) {
            const auto index = static_cast<std::size_t>(y / kPatchRows * (kFormatWidth / kPatch) + x / kPatch);
            const uint32_t colour = kPatchColours[index % std::size(kPatchColours)];
            uint8_t *pixel = &picture.pixels[static_cast<std::size_t>(y * kFormatWidth + x) * 4];
            for (int c = 0; c < 3; ++c) pixel[c] = static_cast<uint8_t>(colour >> (8 * c));
        }
    }
    return picture;
}

Bytes RunToRaw(const Scratch &scratch, const std::string &input, const std::string &options) {
    const Outcome run = RunProgram(scratch, "key " + input + " " + options + " -q -f raw -o " + scratch.Path("result.raw"));
    EXPECT_EQ(run.status, 0) << run.error;
    Bytes result = scratch.Read("result.raw");
    EXPECT_EQ(result.size(), kPixels * 4);
    result.resize(kPixels * 4);
    return result;
}

double MatteError(const Bytes &keyed, const Bytes &alpha) {
    double sum = 0;
    for (std::size_t i = 0; i < kPixels; ++i) sum += std::abs(keyed[4 * i + 3] - alpha[i]);
    return sum / static_cast<double>(kPixels);
}

double MatteDistance(const Bytes &a, const Bytes &b) { return MeanDistance(a, b, 3, 3); }

double ColourDistance(const Bytes &a, const Bytes &b) { return MeanDistance(a, b, 0, 2); }

int WorstInPatches(const Bytes &a, const Bytes &b) {
    int worst = 0;
    for (int y = 0; y < kFormatHeight; ++y) {
        for (int x = 0; x < kFormatWidth; ++x) {
            const int inX = x % kPatch;
            const int inY = y % kPatchRows;
            // Chroma filters of the witness reach over a few pixels.
            if (std::min(inX, kPatch - 1 - inX) < 8 || std::min(inY, kPatchRows - 1 - inY) < 8) continue;
            const auto at = static_cast<std::size_t>(y * kFormatWidth + x) * 4;
            for (std::size_t c = 0; c < 3; ++c) worst = std::max(worst, std::abs(a[at + c] - b[at + c]));
        }
    }
    return worst;
}
