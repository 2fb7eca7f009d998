// The whole program on raw frames and YUV4MPEG2 clips: what it writes, what it says, how it ends.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "hosts/zkey/failure.h"
#include "hosts/zkey/padding.h"
#include "hosts/zkey/yuv_planes.h"
#include "tests/hosts/zkey/program.h"
#include "tests/scene/scene.h"

namespace {

using namespace zkey;
using Bytes = std::vector<uint8_t>;

std::string Size(int width, int height) { return std::to_string(width) + "x" + std::to_string(height); }

zck::ScenePicture Scene(int width, int height, int index = 0) {
    zck::SceneParams p;
    p.width = width;
    p.height = height;
    return zck::RenderScene(p, index);
}

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

TEST(Run, TheOutputThreadGivesTheSameFramesInTheSameOrder) {
    const Scratch scratch;
    Bytes clip;
    for (int i = 0; i < 5; ++i) {
        const zck::ScenePicture picture = Scene(96, 54, 7 * i);
        clip.insert(clip.end(), picture.pixels.begin(), picture.pixels.end());
    }
    scratch.Write("in.raw", clip);
    const std::string command = "key " + scratch.Path("in.raw") + " --raw RGB32:96x54 -q -o ";
    ASSERT_EQ(RunProgram(scratch, command + scratch.Path("a.raw")).status, 0);
    ASSERT_EQ(RunProgram(scratch, command + scratch.Path("b.raw") + " --prop output.thread=true").status, 0);
    EXPECT_EQ(scratch.Read("a.raw").size(), clip.size());
    EXPECT_EQ(scratch.Read("a.raw"), scratch.Read("b.raw"));
    // A clip of one frame has its only result still to come when it ends.
    ASSERT_EQ(RunProgram(scratch, command + scratch.Path("c.raw") + " --prop output.thread=true --frames 1").status, 0);
    EXPECT_EQ(scratch.Read("c.raw").size(), clip.size() / 5);
}

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

TEST(Run, PipesCarryClipsThrough) {
    const Scratch scratch;
    Bytes clip;
    const std::string head = "YUV4MPEG2 W32 H16 F25:1 Ip C444\n";
    clip.insert(clip.end(), head.begin(), head.end());
    for (int i = 0; i < 3; ++i) {
        const std::string mark = "FRAME\n";
        clip.insert(clip.end(), mark.begin(), mark.end());
        clip.insert(clip.end(), 32 * 16, 120);
        clip.insert(clip.end(), 32 * 16, 90);
        clip.insert(clip.end(), 32 * 16, 80);
    }
    scratch.Write("in.y4m", clip);
    const Outcome raw = RunProgram(scratch, "key - -o - <" + scratch.Path("in.y4m"));
    EXPECT_EQ(raw.status, 0);
    EXPECT_EQ(raw.out.size(), 3U * 32 * 16 * 4);
    EXPECT_NE(raw.error.find("zkey: no colour given, assumed a green screen; the key is -c "), std::string::npos) << raw.error;
    // Nothing but that line: progress is for terminals.
    EXPECT_EQ(std::count(raw.error.begin(), raw.error.end(), '\n'), 1);

    const Outcome matte = RunProgram(scratch, "key - -q --matte -f y4m -o - <" + scratch.Path("in.y4m"));
    EXPECT_EQ(matte.status, 0);
    EXPECT_EQ(matte.out.substr(0, 10), "YUV4MPEG2 ");
    EXPECT_NE(matte.out.find("Cmono"), std::string::npos);
    EXPECT_TRUE(matte.error.empty()) << matte.error;
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

TEST(Run, EndsWithOneLineAndAStatus) {
    const Scratch scratch;
    const std::string green = scratch.Write("green.raw", [] {
        Bytes b;
        for (int i = 0; i < 16 * 16; ++i) b.insert(b.end(), {40, 190, 30, 0});
        return b;
    }());
    const std::string grey = scratch.Write("grey.raw", Bytes(16 * 16 * 4, 128));
    const std::string out = " -o " + scratch.Path("out.raw");
    const std::string raw = " --raw RGB32:16x16";
    const struct {
        std::string arguments;
        int status;
        const char *says;
    } cases[] = {
        {"", kExitUsage, "zkey key INPUT"},
        {"kay", kExitUsage, "unknown command"},
        {green + " -o x.mov", kExitUsage, "the command is missing: zkey key"},
        {"key " + green + " --raw FOO:16x16" + out, kExitUsage, "is none of RGB24, RGB32"},
        {"key " + green + " --raw RGB32" + out, kExitUsage, "the size is missing"},
        {"key " + green + raw + out + " --prop process.thread=2", kExitUsage,
         "no property \"process.thread\"; it has background"},
        {"key " + green + raw + out + " --prop output.thread=perhaps", kExitUsage, "true or false"},
        {"key " + green + raw + out + " --prop keying.borders=1,2,x", kExitUsage, "left top right bottom"},
        {"key " + green + raw + out + " --prop dll-path=x", kExitUsage, "can only be read"},
        {"key " + green + raw + out + " --set nMinTransparent=256", kExitUsage, "give 0 to 255"},
        {"key " + green + raw + out + " --garbage 1,2,3", kExitUsage, "left, top, right and bottom"},
        {"key " + green + raw + out + " --key k.xml -t 3", kExitUsage, "do not go with a saved key"},
        {"key " + green + raw + out + " --key " + scratch.Path("none.xml"), kExitFailed, "cannot open"},
        {"key --save-key " + scratch.Path("k.xml"), kExitUsage, "no input"},
        {"key " + green + raw, kExitUsage, "no output"},
        {"key " + green + raw + out + " --color gren", kExitUsage, "unknown colour \"gren\""},
        {"key " + green + raw + out + " --tolernce 4", kExitUsage, "unknown option --tolernce"},
        {"key " + green + " --raw RGB32:0x16" + out, kExitUsage, "too small"},
        {"key " + green + raw + " -o " + green, kExitUsage, "overwrite"},
        {"key " + green + raw + " --matte --over checker" + out, kExitUsage, "exclude"},
        {"key " + green + raw + out + " --prop process.threads=0", kExitUsage, "process.threads"},
        {"key " + green + raw + " -o " + scratch.Path("x.y4m"), kExitUsage, "no alpha"},
        {"key " + scratch.Path("missing.raw") + raw + out, kExitFailed, "cannot open"},
        {"key " + scratch.Path("missing.y4m") + out, kExitFailed, "cannot open"},
        {"key " + green + " --raw RGB32:16x17" + out, kExitFailed, "0 frames of 1088 bytes and 1024 bytes over"},
        {"key " + green + " --raw RGB32:4x4 --exact" + out, kExitFailed, "too small"},
        {"key " + grey + raw + out, kExitFailed, "no green or blue screen"},
        {"key " + green + raw + " -o " + scratch.Path("no/folder/out.raw"), kExitFailed, "there is no folder"},
        {"key " + scratch.Write("empty.raw", {}) + raw + out, kExitFailed, "is empty"},
        {"key -" + raw + out + " <" + scratch.Path("empty.raw"), kExitFailed, "- is empty"},
        {"key " + scratch.Write("text.y4m", {'h', 'i', '\n'}) + out, kExitFailed, "no YUV4MPEG2"},
    };
    for (const auto &c : cases) {
        const Outcome run = RunProgram(scratch, c.arguments);
        EXPECT_EQ(run.status, c.status) << c.arguments;
        EXPECT_NE(run.error.find(c.says), std::string::npos) << c.arguments << "\n" << run.error;
        if (c.arguments.empty()) continue;
        EXPECT_EQ(std::count(run.error.begin(), run.error.end(), '\n'), 1) << run.error;
        EXPECT_EQ(run.error.substr(0, 6), "zkey: ");
    }
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

TEST(Run, PicturesBeforeAFailureStay) {
    const Scratch scratch;
    Bytes clip(16 * 16 * 4 * 2 + 7, 90);
    scratch.Write("in.raw", clip);
    const std::string options = " --raw RGB32:16x16 -c green -o " + scratch.Path("out.raw");
    const Outcome run = RunProgram(scratch, "key -" + options + " <" + scratch.Path("in.raw"));
    EXPECT_EQ(run.status, kExitFailed);
    EXPECT_NE(run.error.find("ends in the middle of frame 3"), std::string::npos) << run.error;
    // The frames that were on their way may be lost, but no frame is cut.
    EXPECT_EQ(scratch.Read("out.raw").size() % (16 * 16 * 4), 0U);
    // A file tells at once, and whole frames can be had.
    const std::string file = "key " + scratch.Path("in.raw") + options;
    EXPECT_NE(RunProgram(scratch, file).error.find("2 frames of 1024 bytes and 7 bytes over"), std::string::npos);
    EXPECT_EQ(RunProgram(scratch, file + " --frames 2").status, 0);
    EXPECT_EQ(scratch.Read("out.raw").size(), 2U * 16 * 16 * 4);
}

TEST(Run, HelpsOnRequest) {
    const Scratch scratch;
    EXPECT_NE(RunProgram(scratch, "--help").out.find("zkey key INPUT"), std::string::npos);
    const Outcome help = RunProgram(scratch, "key --help");
    EXPECT_EQ(help.status, 0);
    for (const char *word :
         {"--color", "--tolerance", "--softness", "--reverse", "--spill",    "--type",   "--set",      "--over",
          "--matte", "--alpha",     "--exact",    "--prop",    "--raw",      "--quiet",  "--no-audio", "--frames",
          "--codec", "--format",    "v210",       "--key",     "--save-key", "--garbage"}) {
        EXPECT_NE(help.out.find(word), std::string::npos) << word;
    }
    EXPECT_EQ(RunProgram(scratch, "--version").out.substr(0, 5), "zkey ");
}

}    // namespace
