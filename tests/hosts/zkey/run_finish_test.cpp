// The whole program: what is done with the keyed picture.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "hosts/zkey/failure.h"
#include "tests/hosts/zkey/program.h"
#include "tests/hosts/zkey/scene_input.h"

namespace {

using namespace zkey;
using Bytes = std::vector<uint8_t>;

TEST(Run, FinishesAreDerivedFromTheSameKey) {
    const Scratch scratch;
    scratch.Write("in.raw", Scene(64, 36).pixels);
    const std::string command = "key " + scratch.Path("in.raw") + " --raw RGB32:64x36 -q ";
    const auto bytes = [&](const std::string &more) {
        const Outcome run = RunProgram(scratch, command + more + " -o " + scratch.Path("out.raw"));
        EXPECT_EQ(run.status, 0) << run.error;
        return scratch.Read("out.raw");
    };
    const Bytes keyed = bytes("");
    const Bytes straight = bytes("--alpha straight");
    const Bytes matte = bytes("--matte");
    const Bytes over = bytes("--over FF0000");
    ASSERT_EQ(keyed.size(), 64U * 36U * 4U);
    EXPECT_EQ(bytes("--alpha premultiplied"), keyed);
    for (std::size_t i = 0; i < keyed.size(); i += 4) {
        const int alpha = keyed[i + 3];
        ASSERT_EQ(straight[i + 3], alpha);
        if (alpha == 255) {
            ASSERT_EQ(straight[i + 1], keyed[i + 1]);
        }
        ASSERT_EQ(matte[i], alpha);
        ASSERT_EQ(matte[i + 3], 255);
        ASSERT_LE(std::abs(over[i + 2] - std::min(255, keyed[i + 2] + 255 - alpha)), 1);
        ASSERT_EQ(over[i], keyed[i]);
    }
}

TEST(Run, SpillTakesGreenOffTheEdgeAndLeavesTheFigure) {
    const Scratch scratch;
    const zck::ScenePicture scene = Scene(160, 90);
    scratch.Write("in.raw", scene.pixels);
    const std::string command = "key " + scratch.Path("in.raw") + " --raw RGB32:160x90 -q -o " + scratch.Path("out.raw") + " ";
    const auto keyed = [&](const char *spill) {
        const Outcome run = RunProgram(scratch, command + spill);
        EXPECT_EQ(run.status, 0) << run.error;
        return scratch.Read("out.raw");
    };
    const auto greenness = [&](const Bytes &picture) {
        int sum = 0;
        for (std::size_t i = 0; i < picture.size(); i += 4) {
            sum += std::max(0, picture[i + 1] - std::max<int>(picture[i], picture[i + 2]));
        }
        return sum;
    };
    const Bytes without = keyed("--spill 0");
    const Bytes with = keyed("");
    EXPECT_LT(greenness(with), greenness(without) / 2);
    // Where the figure and all around is solid, 1 part of 128 of the contrast goes, and chroma is that of pairs of pixels.
    double sum = 0;
    double count = 0;
    for (std::size_t y = 4; y < 86; ++y) {
        for (std::size_t x = 8; x < 152; ++x) {
            bool deep = true;
            for (std::size_t v = y - 4; v <= y + 4; ++v) {
                for (std::size_t u = x - 8; u <= x + 8; ++u) deep = deep && scene.alpha[v * 160 + u] == 255;
            }
            if (!deep) continue;
            const std::size_t at = (y * 160 + x) * 4;
            const auto luma = [&](const Bytes &p) { return 0.114 * p[at] + 0.587 * p[at + 1] + 0.299 * p[at + 2]; };
            EXPECT_NEAR(luma(with), luma(without), 4) << x << " " << y;
            sum += luma(with) - luma(without);
            ++count;
        }
    }
    ASSERT_GT(count, 100);
    EXPECT_NEAR(sum / count, 0, 2);
}

/// Two strips: green all around the border, half of the rest as well.
Bytes Strips(int width, int height) {
    Bytes b;
    for (int i = 0; i < width * height; ++i) {
        const bool screen = i % width < width / 2 || i % width > width - 4 || i / width < 4;
        b.insert(b.end(), {static_cast<uint8_t>(screen ? 40 : 90), static_cast<uint8_t>(screen ? 190 : 80), 60, 0});
    }
    return b;
}

TEST(Run, GarbageBecomesTransparentAndIsNotLookedAt) {
    const Scratch scratch;
    const Bytes picture = Strips(64, 32);
    scratch.Write("in.raw", picture);
    const std::string command = "key " + scratch.Path("in.raw") + " --raw RGB32:64x32 -q -o " + scratch.Path("out.raw");
    for (const char *key : {" -c C00000", " --type Alpha", " --matte -c C00000"}) {
        const bool matte = std::string_view(key).find("matte") != std::string_view::npos;
        const std::string options = std::string(command) + key;
        ASSERT_EQ(RunProgram(scratch, options).status, 0);
        const Bytes whole = scratch.Read("out.raw");
        const Outcome run = RunProgram(scratch, options + " --garbage 5,3,2,1");
        ASSERT_EQ(run.status, 0) << run.error;
        const Bytes keyed = scratch.Read("out.raw");
        for (std::size_t i = 0; i < 64 * 32; ++i) {
            const bool outside = i % 64 < 5 || i % 64 >= 62 || i / 64 < 3 || i / 64 >= 31;
            ASSERT_EQ(keyed[4 * i], outside ? 0 : whole[4 * i]) << i << key;
            ASSERT_EQ(keyed[4 * i + 3], matte ? 255 : outside ? 0 : whole[4 * i + 3]) << i << key;
        }
    }
    // A border that is no screen hides the screen, until it is garbage.
    Bytes framed(64 * 32 * 4, 100);
    for (std::size_t i = 0; i < 64 * 32; ++i) {
        if (i % 64 >= 8 && i % 64 < 56 && i / 64 >= 8) framed[4 * i + 1] = 220;
    }
    scratch.Write("in.raw", framed);
    EXPECT_EQ(RunProgram(scratch, command).status, kExitFailed);
    EXPECT_EQ(RunProgram(scratch, command + " --garbage 8,8,8,0").status, 0);
    EXPECT_EQ(scratch.Read("out.raw"), Bytes(64 * 32 * 4, 0));
    // What leaves nothing is a slip.
    for (const char *all : {"99,0,0,0", "32,0,32,0", "0,0,0,32", "1,16,1,16"}) {
        const Outcome run = RunProgram(scratch, command + " -c C00000 --garbage " + all);
        EXPECT_EQ(run.status, kExitUsage) << all;
        EXPECT_NE(run.error.find(std::string(all) + " leaves nothing of the picture, which has 64x32"), std::string::npos)
            << run.error;
    }
    EXPECT_EQ(RunProgram(scratch, command + " -c C00000 --garbage 32,0,31,31").status, 0);
}

}    // namespace
