// What is cut off, turned and brought to another size: the plan, and what the program makes of it.
#include "hosts/zkey/picture_shape.h"

#include <gtest/gtest.h>

#include <functional>
#include <tuple>

#include "hosts/zkey/failure.h"
#include "tests/hosts/zkey/program.h"
#include "tests/hosts/zkey/scene_input.h"

namespace {

using namespace zkey;
using Bytes = std::vector<uint8_t>;

constexpr int32_t kOne = 1 << 16;

std::vector<int32_t> Matrix(int a, int b, int c, int d) {
    return {a * kOne, b * kOne, 0, c * kOne, d * kOne, 0, 0, 0, 1 << 30};
}

TEST(Turn, FollowsOneAnother) {
    EXPECT_EQ(Then(kTurnRight, kTurnLeft), Turn{});
    EXPECT_EQ(Then(kTurnRight, kTurnRight), kTurnAround);
    EXPECT_EQ(Then(kMirrorHorz, kMirrorVert), kTurnAround);
    // Mirrored left and right, then turned right: the left top corner goes to the right, then down.
    EXPECT_EQ(Then(kMirrorHorz, kTurnRight), (Turn{0, -1, -1, 0}));
    EXPECT_NE(Then(kTurnRight, kMirrorHorz), Then(kMirrorHorz, kTurnRight));
}

TEST(Turn, OfDisplayMatrices) {
    EXPECT_EQ(TurnOfDisplay({}), Turn{});
    EXPECT_EQ(TurnOfDisplay(Matrix(1, 0, 0, 1)), Turn{});
    EXPECT_EQ(TurnOfDisplay(Matrix(0, 1, -1, 0)), kTurnRight);
    EXPECT_EQ(TurnOfDisplay(Matrix(0, -1, 1, 0)), kTurnLeft);
    EXPECT_EQ(TurnOfDisplay(Matrix(-1, 0, 0, -1)), kTurnAround);
    EXPECT_EQ(TurnOfDisplay(Matrix(-1, 0, 0, 1)), kMirrorHorz);
    EXPECT_EQ(TurnOfDisplay(Matrix(0, 2, -2, 0)), kTurnRight);
    EXPECT_EQ(TurnOfDisplay(Matrix(1, 1, -1, 1)), std::nullopt);
    EXPECT_EQ(TurnOfDisplay(Matrix(0, 0, 0, 0)), std::nullopt);
    EXPECT_EQ(TurnOfDisplay(Matrix(1, 0, 1, 0)), std::nullopt);
}

TEST(Shape, WordsOfTheCommandLine) {
    EXPECT_EQ(ParseSize("1280x720").width, 1280);
    EXPECT_EQ(ParseSize("1280x-").height, 0);
    EXPECT_EQ(ParseSize("-x720").height, 720);
    EXPECT_EQ(ParseSize("720p").width, 1280);
    EXPECT_EQ(ParseSize("480p").width, 854);
    EXPECT_EQ(ParseSize("12.5%").percent, 12.5);
    for (const char *bad :
         {"", "x", "-x-", "12", "0x5", "5x0", "-5x5", "5x5x5", "40000x1", "p", "1p", "0%", "-5%", "%", "nan%", "20000%"})
        EXPECT_THROW(ParseSize(bad), Failure) << bad;
    EXPECT_EQ(ParseFit("Stretch"), "none");
    EXPECT_EQ(ParseFit("none"), "no-scale");
    EXPECT_THROW(ParseFit("fit"), Failure);
    EXPECT_EQ(ParseRotation("180"), kTurnAround);
    EXPECT_THROW(ParseRotation("90"), Failure);
    EXPECT_EQ(ParseMirror("V"), kMirrorVert);
    EXPECT_THROW(ParseMirror("x"), Failure);
    EXPECT_EQ(ParseScaling("auto"), 0);
    EXPECT_EQ(ParseScaling("16"), 16);
    EXPECT_THROW(ParseScaling("17"), Failure);
    EXPECT_THROW(ParseScaling("-1"), Failure);
}

TEST(Shape, SizesFollowThePictureAsItIsSeen) {
    const auto plan = [](const ShapeOptions &wish, Rational aspect, const Turn &display) {
        return PlanShape(wish, {720, 576}, {720, 576}, aspect, display);
    };
    Shape shape = plan({}, {16, 15}, {});
    EXPECT_FALSE(shape.changes);
    EXPECT_EQ(std::tuple(shape.width, shape.height, shape.pixelAspect.num, shape.pixelAspect.den),
              std::tuple(720, 576, 16, 15));
    ShapeOptions wish;
    wish.size = ParseSize("-x288");
    shape = plan(wish, {16, 15}, {});
    EXPECT_EQ(std::tuple(shape.width, shape.height, shape.pixelAspect.num), std::tuple(384, 288, 1));
    wish.size = ParseSize("50%");
    shape = plan(wish, {16, 15}, {});
    EXPECT_EQ(std::tuple(shape.width, shape.height, shape.pixelAspect.num), std::tuple(360, 288, 16));
    wish.size = ParseSize("288x-");
    shape = plan(wish, {16, 15}, kTurnRight);
    EXPECT_EQ(std::tuple(shape.width, shape.height), std::tuple(288, 384));
    wish.size = {};
    shape = plan(wish, {16, 15}, kTurnLeft);
    EXPECT_TRUE(shape.changes);
    EXPECT_EQ(std::tuple(shape.width, shape.height, shape.pixelAspect.num, shape.pixelAspect.den),
              std::tuple(576, 720, 15, 16));
    wish.crop = Borders{576, 0, 0, 0};
    EXPECT_THROW(plan(wish, {1, 1}, kTurnLeft), Failure);
    wish.crop = Borders{0, 0, 0, 576};
    EXPECT_THROW(plan(wish, {1, 1}, {}), Failure);
}

/// Every pixel is another colour.
Bytes Coloured(int width, int height) {
    Bytes bytes;
    for (int i = 0; i < width * height; ++i)
        bytes.insert(bytes.end(), {static_cast<uint8_t>(i), static_cast<uint8_t>(i >> 8), static_cast<uint8_t>(i * 7), 0});
    return bytes;
}

Outcome Reshape(const Scratch &scratch, const std::string &format, const std::string &options) {
    return RunProgram(scratch, "key " + scratch.Path("in.raw") + " -q --type Alpha --raw " + format + " -o " +
                                   scratch.Path("out.raw") + " " + options);
}

TEST(Shape, EveryPixelGoesWhereItShould) {
    const Scratch scratch;
    constexpr int kWidth = 37;
    constexpr int kHeight = 21;
    const Bytes in = Coloured(kWidth, kHeight);
    scratch.Write("in.raw", in);
    constexpr Borders kCrop{5, 3, 2, 1};
    constexpr int kInsideWidth = kWidth - 7;
    constexpr int kInsideHeight = kHeight - 4;
    // From a place of the result, which is w wide and h high, to one of the picture that was cut.
    const struct {
        const char *options;
        bool swaps;
        std::function<std::pair<int, int>(int, int, int, int)> from;
    } cases[] = {
        {"", false, [](int x, int y, int, int) { return std::pair(x, y); }},
        {"--rotate right", true, [](int x, int y, int w, int) { return std::pair(y, w - 1 - x); }},
        {"--rotate left", true, [](int x, int y, int, int h) { return std::pair(h - 1 - y, x); }},
        {"--rotate 180", false, [](int x, int y, int w, int h) { return std::pair(w - 1 - x, h - 1 - y); }},
        {"--mirror h", false, [](int x, int y, int w, int) { return std::pair(w - 1 - x, y); }},
        {"--mirror v", false, [](int x, int y, int, int h) { return std::pair(x, h - 1 - y); }},
        {"--mirror both", false, [](int x, int y, int w, int h) { return std::pair(w - 1 - x, h - 1 - y); }},
        {"--rotate right --mirror h", true, [](int x, int y, int, int) { return std::pair(y, x); }},
        {"--mirror h --rotate right", true, [](int x, int y, int w, int h) { return std::pair(h - 1 - y, w - 1 - x); }},
    };
    for (const auto &c : cases) {
        const Outcome run = Reshape(scratch, "RGB32:" + Size(kWidth, kHeight), std::string("--crop 5,3,2,1 ") + c.options);
        ASSERT_EQ(run.status, kExitDone) << run.error;
        const Bytes out = scratch.Read("out.raw");
        const int w = c.swaps ? kInsideHeight : kInsideWidth;
        const int h = c.swaps ? kInsideWidth : kInsideHeight;
        ASSERT_EQ(out.size(), std::size_t{4} * kInsideWidth * kInsideHeight) << c.options;
        for (int y = 0; y < h; ++y) {
            for (int x = 0; x < w; ++x) {
                const auto [fx, fy] = c.from(x, y, w, h);
                const std::size_t at = static_cast<std::size_t>(fx + kCrop.left + (fy + kCrop.top) * kWidth) * 4;
                const std::size_t to = static_cast<std::size_t>(x + y * w) * 4;
                ASSERT_TRUE(std::equal(&in[at], &in[at] + 3, &out[to])) << c.options << " " << x << "," << y;
            }
        }
    }
}

TEST(Shape, BarsAreTransparentAndCutsFill) {
    const Scratch scratch;
    Bytes grey;
    for (int i = 0; i < 64 * 32; ++i) grey.insert(grey.end(), {90, 90, 90, 255});
    scratch.Write("in.raw", grey);
    ASSERT_EQ(Reshape(scratch, "RGB32:64x32", "--size 32x32").status, kExitDone);
    Bytes out = scratch.Read("out.raw");
    ASSERT_EQ(out.size(), 32U * 32 * 4);
    for (int y = 0; y < 32; ++y) {
        const bool bar = y < 8 || y >= 24;
        EXPECT_EQ(out[static_cast<std::size_t>(y) * 32 * 4 + 3], bar ? 0 : 255) << y;
        EXPECT_EQ(out[static_cast<std::size_t>(y) * 32 * 4], bar ? 0 : 90) << y;
    }
    for (const char *options :
         {"--size 32x32 --fit crop", "--size 32x32 --fit stretch", "--size 50% --scaling 9", "--size 100x-"}) {
        ASSERT_EQ(Reshape(scratch, "RGB32:64x32", options).status, kExitDone) << options;
        out = scratch.Read("out.raw");
        for (std::size_t i = 0; i < out.size(); i += 4) {
            ASSERT_EQ(out[i], 90) << options << " " << i;
            ASSERT_EQ(out[i + 3], 255) << options << " " << i;
        }
    }
    EXPECT_EQ(out.size(), 100U * 50 * 4);
    EXPECT_EQ(Reshape(scratch, "RGB32:64x32", "--fit crop").status, kExitUsage);
    EXPECT_EQ(Reshape(scratch, "RGB32:64x32", "--crop 32,0,32,0").status, kExitUsage);
}

TEST(Shape, FieldsStayFields) {
    const Scratch scratch;
    Bytes in;
    for (int y = 0; y < 48; ++y) in.insert(in.end(), 64 * 4, static_cast<uint8_t>(y % 2 == 0 ? 200 : 40));
    scratch.Write("in.raw", in);
    for (const char *size : {"64x24", "128x96"}) {
        const Outcome run = Reshape(scratch, "RGB32:64x48:top", std::string("--fit stretch --size ") + size);
        ASSERT_EQ(run.status, kExitDone) << run.error;
        const Bytes out = scratch.Read("out.raw");
        const std::size_t row = size[0] == '6' ? 64 * 4 : 128 * 4;
        for (std::size_t y = 0; y < out.size() / row; ++y) ASSERT_EQ(out[y * row], y % 2 == 0 ? 200 : 40) << size << " " << y;
    }
}

}    // namespace
