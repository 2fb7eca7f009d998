// The whole program: what it keys reaches the last pixel of each picture, at any size and in any format.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "hosts/zkey/padding.h"
#include "hosts/zkey/yuv_planes.h"
#include "tests/hosts/zkey/program.h"
#include "tests/hosts/zkey/scene_input.h"

namespace {

using namespace zkey;
using Bytes = std::vector<uint8_t>;

/// The share of pixels in a part of the picture that are screen and not keyed out, or figure and not solid.
double WrongShare(const Bytes &keyed, const zck::ScenePicture &scene, int width, int left, int top, int right, int bottom) {
    int wrong = 0;
    int counted = 0;
    for (int y = top; y < bottom; ++y) {
        for (int x = left; x < right; ++x) {
            const auto i = static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
            const int alpha = keyed[i * 4 + 3];
            if (scene.alpha[i] != 0 && scene.alpha[i] != 255) continue;
            ++counted;
            wrong += scene.alpha[i] == 0 ? alpha > 60 : alpha < 195;
        }
    }
    return counted == 0 ? 0 : static_cast<double>(wrong) / counted;
}

TEST(Run, NoStripIsLeftUnkeyedAtAnySize) {
    const Scratch scratch;
    for (const auto &[width, height] : {std::pair{1080, 1920}, {680, 440}, {333, 201}, {41, 99}, {17, 33}}) {
        SCOPED_TRACE(Size(width, height));
        const zck::ScenePicture scene = Scene(width, height);
        scratch.Write("in.raw", scene.pixels);
        const std::string command = "key " + scratch.Path("in.raw") + " --raw RGB32:" + Size(width, height) + " -o " +
                                    scratch.Path("out.raw") + " -q --prop process.threads=7 ";
        const Outcome run = RunProgram(scratch, command);
        ASSERT_EQ(run.status, 0) << run.error;
        const Bytes keyed = scratch.Read("out.raw");
        ASSERT_EQ(keyed.size(), scene.pixels.size());
        EXPECT_LT(WrongShare(keyed, scene, width, 0, 0, width, height), 0.02);
        EXPECT_LT(WrongShare(keyed, scene, width, std::max(0, width - 16), 0, width, height), 0.02);
        EXPECT_LT(WrongShare(keyed, scene, width, 0, std::max(0, height - 8), width, height), 0.05);

        // The same without padding shows what the check is there for.
        if (width % 16 < 8) continue;
        ASSERT_EQ(RunProgram(scratch, command + "--exact").status, 0);
        EXPECT_GT(WrongShare(scratch.Read("out.raw"), scene, width, width / 16 * 16, 0, width, height - height % 7), 0.3);
    }
}

/// A frame of one colour, which is the key colour, in every format: nothing of it may stay.
TEST(Run, EveryFormatIsKeyedToTheLastPixel) {
    const Scratch scratch;
    constexpr uint8_t kY = 120;
    constexpr uint8_t kCb = 90;
    constexpr uint8_t kCr = 80;
    for (const NamedFormat *f = FormatTable(); f->name != nullptr; ++f) {
        for (const auto &[width, height] : {std::pair{33, 35}, {1, 1}}) {
            for (const char *scan : {"progressive", "top"}) {
                if (width == 1 && *scan == 't') continue;
                SCOPED_TRACE(std::string(f->name) + " " + Size(width, height) + " " + scan);
                Bytes frame(static_cast<std::size_t>(PipeFrameBytes(f->fcc, width, height)));
                const bool planar = f->fcc == eZFCC_I420 || f->fcc == eZFCC_YV12 || f->fcc == eZFCC_NV12;
                const auto luma = static_cast<std::size_t>(width * height);
                const std::size_t quarter = (frame.size() - std::min(luma, frame.size())) / 2;
                for (std::size_t i = 0; i < frame.size(); ++i) {
                    const uint8_t packed[4][4] = {{kCb, kY, kCr, kY}, {kY, kCb, kY, kCr}, {kY, kCr, kY, kCb}, {10, 200, 20, 0}};
                    if (planar && i < luma) {
                        frame[i] = kY;
                    } else if (planar && f->fcc == eZFCC_NV12) {
                        frame[i] = (i - luma) % 2 == 0 ? kCb : kCr;
                    } else if (planar) {
                        frame[i] = ((i - luma) < quarter) == (f->fcc == eZFCC_I420) ? kCb : kCr;
                    } else if (f->fcc == eZFCC_RGB24) {
                        frame[i] = packed[3][i % 3];
                    } else {
                        const int row = IsRgb(f->fcc) ? 3 : f->fcc == eZFCC_YUY2 ? 1 : f->fcc == eZFCC_YVYU ? 2 : 0;
                        frame[i] = packed[row][i % 4];
                    }
                }
                if (f->fcc == eZFCC_v210) {
                    const uint32_t samples[4] = {kCb * 4, kY * 4, kCr * 4, kY * 4};
                    for (std::size_t w = 0; w < frame.size() / 4; ++w) {
                        uint32_t word = 0;
                        for (std::size_t j = 0; j < 3; ++j) word |= samples[(w % 32 * 3 + j) % 4] << (10 * j);
                        std::memcpy(&frame[w * 4], &word, 4);
                    }
                }
                scratch.Write("in.raw", frame);
                const Outcome run =
                    RunProgram(scratch, "key " + scratch.Path("in.raw") + " --raw " + f->name + ":" + Size(width, height) +
                                            ":" + scan + " -o " + scratch.Path("out.raw") + " --prop process.threads=3");
                ASSERT_EQ(run.status, 0) << run.error;
                const Bytes keyed = scratch.Read("out.raw");
                ASSERT_EQ(keyed.size(), luma * 4);
                EXPECT_EQ(keyed, Bytes(keyed.size(), 0));
            }
        }
    }
}

TEST(Run, ExactIsTheSameWhereNothingHasToBePadded) {
    const Scratch scratch;
    scratch.Write("in.raw", Scene(160, 90).pixels);
    const std::string command = "key " + scratch.Path("in.raw") + " --raw RGB32:160x90 -q --prop process.threads=2 -o ";
    ASSERT_EQ(RunProgram(scratch, command + scratch.Path("a.raw")).status, 0);
    ASSERT_EQ(RunProgram(scratch, command + scratch.Path("b.raw") + " --exact").status, 0);
    EXPECT_EQ(scratch.Read("a.raw"), scratch.Read("b.raw"));
}

TEST(Run, BordersLeaveNoStripUnkeyed) {
    const Scratch scratch;
    constexpr std::size_t kWidth = 44, kHeight = 21;
    Bytes picture(kWidth * kHeight * 4, 0);
    for (std::size_t i = 2; i < picture.size(); i += 4) {
        picture[i] = 0xC0;
        picture[i + 1] = 255;
    }
    scratch.Write("in.raw", picture);
    struct Case {
        const char *borders;
        std::size_t left, top, right, bottom;
    };
    // Inwards to whole blocks of 16 pixels from a multiple of 8, and to rows for all of three threads.
    const Case cases[] = {{"8 2 12 3", 8, 2, 24, 17},   {"5 1 0 0", 8, 1, 44, 21}, {"0 0 0 1", 0, 0, 44, 18},
                          {"0 0 1 0", 0, 0, 32, 21},    {"3", 8, 3, 40, 18},       {"8,1", 8, 1, 24, 19},
                          {"20 9 20 9", 24, 9, 40, 12}, {"0 3", 0, 3, 44, 18}};
    for (const Case &c : cases) {
        const Outcome run = RunProgram(scratch, "key " + scratch.Path("in.raw") + " --raw RGB32:44x21 -c C00000 -q -o " +
                                                    scratch.Path("out.raw") +
                                                    " --prop process.threads=3 --prop \"keying.borders=" + c.borders + "\"");
        ASSERT_EQ(run.status, 0) << run.error;
        const Bytes keyed = scratch.Read("out.raw");
        ASSERT_EQ(keyed.size(), picture.size());
        for (std::size_t y = 0; y < kHeight; ++y) {
            for (std::size_t x = 0; x < kWidth; ++x) {
                const bool inside = x >= c.left && x < c.right && y >= c.top && y < c.bottom;
                ASSERT_EQ(keyed[4 * (y * kWidth + x) + 3] == 0, inside) << x << ", " << y << " of " << c.borders;
            }
        }
    }
}

}    // namespace
