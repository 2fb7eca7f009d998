#include "props/values/formats.h"

#include <gtest/gtest.h>

#include "tests/props/values/say.h"

namespace zck {
namespace {

std::string Name(uint32_t value) { return Say(FormatToText(static_cast<eZFCC>(value))); }

TEST(FormatToText, PrintableBytesAreTheText) {
    EXPECT_EQ(Name(eZFCC_YUY2), "YUY2");
    EXPECT_EQ(Name(eZFCC_v210), "v210");
    EXPECT_EQ(Name(0x20202020), "    ");
    EXPECT_EQ(Name(0x7E7E7E7E), "~~~~");
    EXPECT_EQ(Name(0x56555941), "AYUV");
}

TEST(FormatToText, NumbersHaveNames) {
    const std::pair<uint32_t, const char *> names[] = {
        {0, "BI_RGB"},
        {1, "BI_RLE8"},
        {2, "BI_RLE4"},
        {3, "BI_BITFIELDS"},
        {0xE436EB78, "RGB1"},
        {0xE436EB79, "RGB4"},
        {0xE436EB7A, "RGB8"},
        {0xE436EB7B, "RGB565"},
        {0xE436EB7C, "RGB555"},
        {0xE436EB7D, "RGB24"},
        {0xE436EB7E, "RGB32"},
        {0x297C55AF, "ARGB1555"},
        {0x6E6415E6, "ARGB4444"},
        {0x773C9AC0, "ARGB32"},
    };
    for (const auto &[value, name] : names) EXPECT_EQ(Name(value), name);
}

TEST(FormatToText, UnknownNumbersAreHexadecimal) {
    EXPECT_EQ(Name(4), "0x4");
    EXPECT_EQ(Name(0x1F595559), "0x1F595559");
    EXPECT_EQ(Name(0x7F595559), "0x7F595559");
    EXPECT_EQ(Name(eZFCC_GPU_YUV422), "0x65FFAF79");
}

TEST(FormatFromText, KnowsItsNamesWithoutCase) {
    EXPECT_EQ(FormatFromText(In("argb32")), eZFCC_ARGB32);
    EXPECT_EQ(FormatFromText(In("RGB32")), eZFCC_RGB32);
    EXPECT_EQ(FormatFromText(In("rgb24")), eZFCC_RGB24);
    for (const char *four : {"YUY2", "YVYU", "UYVY", "YV12", "HDYC", "I420", "Y422", "NV12", "Y444", "v210", "r210"}) {
        EXPECT_EQ(Name(FormatFromText(In(four))), four);
    }
}

TEST(FormatFromText, GivesTheSpellingOfTheTable) {
    EXPECT_EQ(FormatFromText(In("V210")), eZFCC_v210);
    EXPECT_EQ(FormatFromText(In("yuy2")), eZFCC_YUY2);
}

TEST(FormatFromText, DoesNotReadAllThatIsWritten) {
    for (const char *other : {"BI_RGB", "RGB565", "0x1234", "AYUV", "", " YUY2", "YUY2 "}) {
        EXPECT_EQ(FormatFromText(In(other)), eZFCC_Default) << other;
    }
    EXPECT_EQ(FormatFromText(TextView()), eZFCC_Default);
}

}    // namespace
}    // namespace zck
