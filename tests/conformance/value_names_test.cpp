// Identifiers, names of pixel formats and their texts, against tables and a slow model.
#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "props/values/typed_value.h"
#include "tests/conformance/text_tools.h"
#include "tests/conformance/value_model.h"

namespace conformance {
namespace {

GUID IdOf(const std::array<uint8_t, 16> &bytes) {
    GUID id;
    std::memcpy(&id, bytes.data(), 16);
    return id;
}

TEST(Identifiers, PairsOfDigits) {
    const GUID want = {0x6B0F1D32, 0x8E54, 0x4C1B, {0x9A, 0x3E, 0x51, 0x07, 0xD2, 0xA4, 0x88, 0x03}};
    const GUID none = {};
    for (const char *s : {"{6B0F1D32-8E54-4C1B-9A3E-5107D2A48803}", "6b0f1d328e544c1b9a3e5107d2a48803",
                          "6B 0F,1D/32 8E5 544C1B9A3E5107D2A48803", "xx6B0F1D32-8E54-4C1B-9A3E-5107D2A48803 a"})
        EXPECT_TRUE(zck::IdentifierFromText(T(s)) == want) << s;
    EXPECT_TRUE(zck::IdentifierFromText(T("6-6B0F1D32-8-8E54-4C1B-9A3E-5107D2A48803-3")) == want);
    for (const char *s : {"", "{6B0F1D32-8E54-4C1B-9A3E-5107D2A488}", "{6B0F1D32-8E54-4C1B-9A3E-5107D2A4880301}",
                          "6 B 0 F 1 D 3 2 8 E 5 4 4 C 1 B 9 A 3 E 5 1 0 7 D 2 A 4 8 8 0 3", "no digits"})
        EXPECT_TRUE(zck::IdentifierFromText(T(s)) == none) << s;
    EXPECT_EQ(Say(zck::IdentifierToText(want)), "{6B0F1D32-8E54-4C1B-9A3E-5107D2A48803}");
    EXPECT_EQ(Say(zck::IdentifierToText(none)), "{00000000-0000-0000-0000-000000000000}");
}

TEST(Identifiers, AsTheModel) {
    std::mt19937 random(34);
    int found = 0;
    for (int i = 0; i < 20000; ++i) {
        std::string s;
        for (int pair = 0; pair < 15 + static_cast<int>(random() % 3); ++pair)
            s += AnyOf(random, "g-{ ", random() % 8 == 0 ? 2 : 0) + AnyOf(random, "0123456789abcdefABCDEF", 0) +
                 std::string(1, "0123456789abcdefABCDEF"[random() % 22]) +
                 std::string(1, "0123456789abcdefABCDEF"[random() % 22]);
        if (random() % 4 == 0) s.insert(random() % s.size(), 1, "0a-"[random() % 3]);
        const GUID want = IdOf(ModelIdentifier(s)), got = zck::IdentifierFromText(T(s));
        ASSERT_TRUE(got == want) << s;
        if (got != GUID{}) ++found;
        ASSERT_TRUE(zck::IdentifierFromText(zck::IdentifierToText(got)) == got);
    }
    EXPECT_GT(found, 5000);
}

constexpr eZFCC Format(uint32_t value) { return static_cast<eZFCC>(value); }

TEST(Formats, ToText) {
    const struct {
        uint32_t value;
        const char *text;
    } rows[] = {{0, "BI_RGB"},
                {1, "BI_RLE8"},
                {2, "BI_RLE4"},
                {3, "BI_BITFIELDS"},
                {4, "0x4"},
                {0xE436EB77, "0xE436EB77"},
                {0xE436EB78, "RGB1"},
                {0xE436EB79, "RGB4"},
                {0xE436EB7A, "RGB8"},
                {0xE436EB7B, "RGB565"},
                {0xE436EB7C, "RGB555"},
                {0xE436EB7D, "RGB24"},
                {0xE436EB7E, "RGB32"},
                {0xE436EB7F, "0xE436EB7F"},
                {0x297C55AF, "ARGB1555"},
                {0x6E6415E6, "ARGB4444"},
                {0x773C9AC0, "ARGB32"},
                {0x32595559, "YUY2"},
                {0x30313276, "v210"},
                {0x56555941, "AYUV"},
                {0x20202020, "    "},
                {0x7E7E7E7E, "~~~~"},
                {0x1F202020, "0x1F202020"},
                {0x7F414141, "0x7F414141"},
                {0x414141A0, "0x414141A0"},
                {0x1234, "0x1234"},
                {0x65FFAF79, "0x65FFAF79"}};
    for (const auto &row : rows) EXPECT_EQ(Say(zck::FormatToText(Format(row.value))), row.text) << std::hex << row.value;
}

TEST(Formats, FromText) {
    for (const char *s : {"YUY2", "YVYU", "UYVY", "YV12", "HDYC", "I420", "Y422", "NV12", "Y444", "v210", "r210"}) {
        uint32_t word = 0;
        for (size_t i = 4; i-- > 0;) word = word << 8 | static_cast<uint8_t>(s[i]);
        std::string other(s);
        for (char &c : other)
            c = static_cast<char>(std::isupper(static_cast<unsigned char>(c)) ? std::tolower(c) : std::toupper(c));
        EXPECT_EQ(zck::FormatFromText(T(s)), Format(word)) << s;
        EXPECT_EQ(zck::FormatFromText(T(other)), Format(word)) << other;
        EXPECT_EQ(Say(zck::FormatToText(Format(word))), s);
        for (const std::string &no : {std::string(" ") + s, s + std::string(" "), std::string(s, 3), s + std::string("2")})
            EXPECT_EQ(zck::FormatFromText(T(no)), Format(0)) << no;
    }
    EXPECT_EQ(zck::FormatFromText(T("ARGB32")), Format(0x773C9AC0));
    EXPECT_EQ(zck::FormatFromText(T("rgb32")), Format(0xE436EB7E));
    EXPECT_EQ(zck::FormatFromText(T("Rgb24")), Format(0xE436EB7D));
    for (const char *s :
         {"", "BI_RGB", "BI_RLE8", "RGB565", "RGB555", "RGB8", "RGB1", "ARGB1555", "0x1234", "AYUV", "YUYV", "BGR24"})
        EXPECT_EQ(zck::FormatFromText(T(s)), Format(0)) << s;
    EXPECT_EQ(zck::FormatFromText(kNothing), Format(0));
}

}    // namespace
}    // namespace conformance
