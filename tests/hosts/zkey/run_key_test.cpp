// The whole program: the key that it is given, and the one that it finds by itself.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "hosts/zkey/failure.h"
#include "tests/hosts/zkey/program.h"
#include "tests/hosts/zkey/scene_input.h"

namespace {

using namespace zkey;
using Bytes = std::vector<uint8_t>;

TEST(Run, TheAssumedKeyCanBeGivenByHand) {
    const Scratch scratch;
    scratch.Write("in.raw", Scene(160, 90).pixels);
    const std::string command = "key " + scratch.Path("in.raw") + " --raw RGB32:160x90 -o ";
    // With options beside it too: what is told is the key that is used.
    for (const char *beside : {"", "-s 20", "-s +9 --type HLS --spill 0 --set nAlpha=30",
                               "-c C0A080 -t 10 --reverse --set nEdgesSmooth=2 --spill 60:20:10 --type RGB"}) {
        SCOPED_TRACE(beside);
        const Outcome assumed = RunProgram(scratch, command + scratch.Path("a.raw") + " " + beside);
        ASSERT_EQ(assumed.status, 0);
        const std::string mark = "the key is ";
        const std::size_t options = assumed.error.find(mark) + mark.size();
        ASSERT_GE(options, mark.size()) << assumed.error;
        const std::string given = assumed.error.substr(options, assumed.error.find_first_of("\r\n", options) - options);
        const Outcome again = RunProgram(scratch, command + scratch.Path("b.raw") + " " + given);
        ASSERT_EQ(again.status, 0) << again.error;
        EXPECT_TRUE(again.error.empty()) << again.error;
        EXPECT_EQ(scratch.Read("a.raw"), scratch.Read("b.raw"));
    }
}

/// Pictures of one colour, which gets darker from each to the next.
Bytes Darkening(int count, int width, int height) {
    Bytes clip;
    for (int i = 0; i < count; ++i) {
        for (int p = 0; p < width * height; ++p) {
            const int part = 4 * count - 2 * i;
            const auto share = [&](int value) { return static_cast<uint8_t>(value * part / (4 * count)); };
            clip.insert(clip.end(), {share(60), share(210), share(40), 0});
        }
    }
    return clip;
}

TEST(Run, AScreenWhoseLightDriftsIsGoneInAllPictures) {
    const Scratch scratch;
    scratch.Write("in.raw", Darkening(40, 16, 16));
    const std::string command =
        "key " + scratch.Path("in.raw") + " --raw RGB32:16x16 -q -o " + scratch.Path("out.raw") + " --set nMinTransparent=0 ";
    ASSERT_EQ(RunProgram(scratch, command).status, 0);
    EXPECT_EQ(scratch.Read("out.raw"), Bytes(40 * 16 * 16 * 4, 0));
    // The same with the key of the first picture shows that there is something to be found.
    ASSERT_EQ(RunProgram(scratch, command + "-c 28D23C -t 24,12,12 -s 60").status, 0);
    EXPECT_NE(scratch.Read("out.raw"), Bytes(40 * 16 * 16 * 4, 0));

    // A pipe: the first four pictures tell, and none of them is lost or comes twice.
    scratch.Write("in.raw", Darkening(4, 16, 16));
    const std::string pipe = "key - --raw RGB32:16x16 -q -o - --set nMinTransparent=0 ";
    EXPECT_EQ(RunProgram(scratch, pipe + "<" + scratch.Path("in.raw")).out, std::string(4 * 16 * 16 * 4, 0));
    for (const char *limit : {"1", "3"}) {
        EXPECT_EQ(RunProgram(scratch, pipe + "--frames " + limit + " <" + scratch.Path("in.raw")).out.size(),
                  static_cast<std::size_t>(*limit - '0') * 16 * 16 * 4);
    }
}

TEST(Run, KeyOptionsReachTheEngine) {
    const Scratch scratch;
    // Four blocks: green, a darker green, red, blue.
    Bytes pixels;
    for (int i = 0; i < 64 * 16; ++i) {
        const uint32_t colour[4] = {0x00C040, 0x008030, 0xC02020, 0x2020C0};
        const uint32_t c = colour[i % 64 / 16];
        for (const int shift : {0, 8, 16}) pixels.push_back(static_cast<uint8_t>(c >> shift));
        pixels.push_back(0);
    }
    scratch.Write("in.raw", pixels);
    const auto alphas = [&](const std::string &options) {
        const Outcome run = RunProgram(
            scratch, "key " + scratch.Path("in.raw") + " --raw RGB32:64x16 -o " + scratch.Path("out.raw") + " " + options);
        EXPECT_EQ(run.status, 0) << options << run.error;
        const Bytes keyed = scratch.Read("out.raw");
        std::array<int, 4> out{};
        for (std::size_t i = 0; i < 4; ++i) out[i] = keyed[(8 * 64 + i * 16 + 8) * 4 + 3];
        return out;
    };
    using Four = std::array<int, 4>;
    for (const char *type : {"RGB", "HLS", "YUV"}) {
        const std::string hard = std::string(" --type ") + type + " -t 8 -s 0";
        EXPECT_EQ(alphas("-c 00C040" + hard), (Four{0, 255, 255, 255})) << type;
        EXPECT_EQ(alphas("-c C02020" + hard), (Four{255, 255, 0, 255})) << type;
        EXPECT_EQ(alphas("-c 00C040 -c 2020C0" + hard + " -c C02020 -t 8 -s 0"),
                  (Four{alphas("-c 00C040 --type " + std::string(type))[0], alphas("-c 00C040 --type " + std::string(type))[1],
                        0, 0}))
            << type;
        EXPECT_EQ(alphas("-c 00C040" + hard + " -c 00C040 --reverse -t 8 -s 0"), (Four{255, 255, 255, 255})) << type;
    }
    EXPECT_EQ(alphas("-c 00C040 -t 8 -s 0 --type RGB --set nAlpha=100 --set nMaxTransparent=255")[0], 100);
    EXPECT_EQ(alphas("-c 00C040 -t 8 -s 0 --type RGB --set nInverseKey=1"), (Four{255, 0, 0, 0}));
    EXPECT_EQ(alphas("--type Alpha")[0], 0);
    EXPECT_EQ(alphas("--set nValue=0x40C000 --set nDelta=0x080808 --set nSmoothRange=0 --type RGB"), (Four{0, 255, 255, 255}));
}

TEST(Run, APictureThatLooksLikeNoScreenIsNotKeyedWithoutAWord) {
    const Scratch scratch;
    // A dull green lawn at less than half of the border.
    Bytes lawn;
    for (int i = 0; i < 64 * 64; ++i) {
        const uint8_t green = i % 64 < 28 ? 98 : 60;
        lawn.insert(lawn.end(), {40, green, 60, 0});
    }
    scratch.Write("in.raw", lawn);
    const std::string command = "key " + scratch.Path("in.raw") + " --raw RGB32:64x64 -o " + scratch.Path("out.raw");
    const Outcome refused = RunProgram(scratch, command);
    EXPECT_EQ(refused.status, kExitFailed);
    EXPECT_NE(refused.error.find("does not look like a green screen: only"), std::string::npos) << refused.error;
    EXPECT_TRUE(scratch.Read("out.raw").empty());
    // What it tells to do works.
    const std::size_t at = refused.error.find("-c ");
    ASSERT_NE(at, std::string::npos);
    EXPECT_EQ(
        RunProgram(scratch, command + " " + refused.error.substr(at, refused.error.find_first_of("\r\n", at) - at)).status, 0);
}

}    // namespace
