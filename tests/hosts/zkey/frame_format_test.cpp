#include "hosts/zkey/frame_format.h"

#include <gtest/gtest.h>

#include "hosts/zkey/failure.h"

namespace {

using namespace zkey;

TEST(FrameFormat, RawSpecsAreReadInAllTheirForms) {
    struct Case {
        const char *text;
        eZFCC fcc;
        int32_t width, height, num, den;
        eZInterlace scan;
    };
    const Case cases[] = {
        {"UYVY:720x576", eZFCC_UYVY, 720, 576, 25, 1, eZI_Progressive},
        {"uyvy:720x576@25:top", eZFCC_UYVY, 720, 576, 25, 1, eZI_Field1First},
        {"v210:1920x1080@29.97:bottom", eZFCC_v210, 1920, 1080, 30000, 1001, eZI_Field2First},
        {"I420:1x1@30000/1001:progressive", eZFCC_I420, 1, 1, 30000, 1001, eZI_Progressive},
        {"RGB32:4096X2160@23.976", eZFCC_RGB32, 4096, 2160, 24000, 1001, eZI_Progressive},
        {"HDYC:16x2@12.5", eZFCC_HDYC, 16, 2, 12500, 1000, eZI_Progressive},
    };
    for (const Case &c : cases) {
        const RawSpec s = ParseRawSpec(c.text);
        EXPECT_EQ(s.fcc, c.fcc) << c.text;
        EXPECT_EQ(s.width, c.width) << c.text;
        EXPECT_EQ(s.height, c.height) << c.text;
        EXPECT_EQ(s.rate.num, c.num) << c.text;
        EXPECT_EQ(s.rate.den, c.den) << c.text;
        EXPECT_EQ(s.scan, c.scan) << c.text;
    }
}

TEST(FrameFormat, BadRawSpecsAreUsageErrors) {
    for (const char *bad : {"", "UYVY", "UYVY:", "ABCD:16x16", "UYVY:16", "UYVY:x16", "UYVY:16x", "UYVY:0x16", "UYVY:16x-2",
                            "UYVY:16x16@", "UYVY:16x16@fast", "UYVY:16x16@0", "UYVY:16x16:left", "RGB32:16x16:709",
                            "UYVY:16x16:top:left", "UYVY:16x16:", "UYVY:99999x16", "UYVY:16x16x3"}) {
        try {
            ParseRawSpec(bad);
            ADD_FAILURE() << bad;
        } catch (const Failure &f) {
            EXPECT_EQ(f.Status(), kExitUsage) << bad;
        }
    }
}

TEST(FrameFormat, WordsAndNamesAndSizesSayTheMatrix) {
    const struct {
        const char *text;
        bool bt709;
        bool full;
    } cases[] = {
        {"UYVY:1920x1080", false, false},      {"YUY2:1920x1080:top", false, false},       {"HDYC:720x576", true, false},
        {"UYVY:720x576:709:top", true, false}, {"HDYC:720x576:top:601:full", false, true}, {"v210:720x576", false, false},
        {"v210:1920x1080", true, false},       {"I420:1920x1080:601", false, false},       {"NV12:1920x1080:FULL", true, true}};
    for (const auto &c : cases) {
        const YuvMeaning m = ParseRawSpec(c.text).Meaning();
        EXPECT_EQ(m.kr, c.bt709 ? kBt709.kr : kBt601.kr) << c.text;
        EXPECT_EQ(m.fullRange, c.full) << c.text;
    }
    EXPECT_EQ(ParseRawSpec("HDYC:720x576:top:601:full").scan, eZI_Field1First);
}

TEST(FrameFormat, RowsAndFrames) {
    struct Case {
        eZFCC fcc;
        int32_t width, pipe, library;
    };
    const Case cases[] = {{eZFCC_RGB24, 5, 15, 16}, {eZFCC_RGB32, 5, 20, 20},       {eZFCC_UYVY, 5, 12, 12},
                          {eZFCC_YUY2, 6, 12, 12},  {eZFCC_v210, 1920, 5120, 5120}, {eZFCC_v210, 1921, 5248, 5248},
                          {eZFCC_RGB24, 16, 48, 48}};
    for (const Case &c : cases) {
        EXPECT_EQ(PipeRowBytes(c.fcc, c.width), c.pipe);
        EXPECT_EQ(LibraryRowBytes(c.fcc, c.width), c.library);
    }
    EXPECT_EQ(PipeFrameBytes(eZFCC_I420, 720, 576), 622080);
    EXPECT_EQ(PipeFrameBytes(eZFCC_NV12, 5, 3), 15 + 2 * 3 * 2);
    EXPECT_EQ(PipeFrameBytes(eZFCC_RGB32, 32768, 32768), int64_t{4} << 30);
}

TEST(FrameFormat, DescriptionsRunTopDown) {
    const Z_VID_PROPS rgb = DescribeFrame(eZFCC_RGB24, 33, 7, eZI_Progressive, 25);
    EXPECT_EQ(rgb.nHeight, -7);
    EXPECT_EQ(rgb.nRowBytes, 100);
    EXPECT_EQ(FrameBytes(rgb), 700);
    EXPECT_EQ(DescribeFrame(eZFCC_UYVY, 32, 8, eZI_Field1First, 25).nHeight, 8);
}

}    // namespace
