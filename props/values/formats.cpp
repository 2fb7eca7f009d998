#include "props/values/formats.h"

#include "props/values/numbers.h"

namespace zck {
namespace {

struct NamedFormat {
    uint32_t value;
    TextView name;
};

constexpr NamedFormat kNumericFormats[] = {
    {0, ZCK_TEXT("BI_RGB")},
    {1, ZCK_TEXT("BI_RLE8")},
    {2, ZCK_TEXT("BI_RLE4")},
    {3, ZCK_TEXT("BI_BITFIELDS")},
    {0xE436EB78, ZCK_TEXT("RGB1")},
    {0xE436EB79, ZCK_TEXT("RGB4")},
    {0xE436EB7A, ZCK_TEXT("RGB8")},
    {0xE436EB7B, ZCK_TEXT("RGB565")},
    {0xE436EB7C, ZCK_TEXT("RGB555")},
    {0xE436EB7D, ZCK_TEXT("RGB24")},
    {0xE436EB7E, ZCK_TEXT("RGB32")},
    {0x297C55AF, ZCK_TEXT("ARGB1555")},
    {0x6E6415E6, ZCK_TEXT("ARGB4444")},
    {0x773C9AC0, ZCK_TEXT("ARGB32")},
};

constexpr uint32_t Word(TextView four) {
    return static_cast<uint32_t>(four[0]) | static_cast<uint32_t>(four[1]) << 8 | static_cast<uint32_t>(four[2]) << 16 |
           static_cast<uint32_t>(four[3]) << 24;
}

constexpr NamedFormat Four(TextView name) { return {Word(name), name}; }

constexpr NamedFormat kReadFormats[] = {
    {eZFCC_ARGB32, ZCK_TEXT("ARGB32")},
    {eZFCC_RGB32, ZCK_TEXT("RGB32")},
    {eZFCC_RGB24, ZCK_TEXT("RGB24")},
    Four(ZCK_TEXT("YUY2")),
    Four(ZCK_TEXT("YVYU")),
    Four(ZCK_TEXT("UYVY")),
    Four(ZCK_TEXT("YV12")),
    Four(ZCK_TEXT("HDYC")),
    Four(ZCK_TEXT("I420")),
    Four(ZCK_TEXT("Y422")),
    Four(ZCK_TEXT("NV12")),
    Four(ZCK_TEXT("Y444")),
    Four(ZCK_TEXT("v210")),
    Four(ZCK_TEXT("r210")),
};
static_assert(Word(ZCK_TEXT("v210")) == eZFCC_v210 && Word(ZCK_TEXT("r210")) == eZFCC_r210);

}    // namespace

Text FormatToText(eZFCC format) {
    const uint32_t value = format;
    Text four;
    for (uint32_t shift = 0; shift < 32; shift += 8) {
        const uint32_t byte = value >> shift & 0xFF;
        if (byte >= 0x20 && byte <= 0x7E) four.push_back(static_cast<OLECHAR>(byte));
    }
    if (four.size() == 4) return four;
    for (const NamedFormat &known : kNumericFormats) {
        if (known.value == value) return Text(known.name);
    }
    return Text(ZCK_TEXT("0x")).append(HexToText(value));
}

eZFCC FormatFromText(TextView text) noexcept {
    for (const NamedFormat &known : kReadFormats) {
        if (EqualNoCase(known.name, text)) return static_cast<eZFCC>(known.value);
    }
    return eZFCC_Default;
}

}    // namespace zck
