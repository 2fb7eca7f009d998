// Conversion at one size: every cell of the table, field order, odd widths, memory ends; fills and colours.
#include "imaging/colour/convert.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "imaging/colour/fill.h"
#include "imaging/colour/row_order.h"
#include "platform/processor.h"
#include "tests/conformance/convert_model.h"
#include "tests/conformance/media_model.h"

namespace conformance {
namespace {

using zck::ConvertSameGeometry;

constexpr HRESULT kNoRoute = static_cast<HRESULT>(0x80040201);
constexpr HRESULT kBadMedia = static_cast<HRESULT>(0x80040248);
constexpr eZFCC kClasses[] = {eZFCC_RGB32, eZFCC_ARGB32, eZFCC_RGB24, eZFCC_UYVY, eZFCC_HDYC, eZFCC_YUY2, eZFCC_v210};
constexpr size_t kGuard = 64;

class Noise {
public:
    explicit Noise(uint32_t seed) : m_random(seed) {}
    uint32_t operator()(uint32_t below) { return static_cast<uint32_t>(m_random() % below); }
    void Fill(Bytes &bytes, uint32_t kind) {
        for (uint8_t &b : bytes)
            b = static_cast<uint8_t>(kind == 0 ? m_random() : kind == 1 ? m_random() % 4 : 255 - m_random() % 4);
    }

private:
    std::mt19937 m_random;
};

size_t MemoryOf(const Z_VID_PROPS &p) {
    return static_cast<size_t>(std::abs(p.nHeight)) *
           static_cast<size_t>(std::max(p.nRowBytes, static_cast<int32_t>(Row(p.fccType, p.nWidth))));
}

// Runs the library into guarded memory and compares with the model.
void CompareAtOneLevel(const Bytes &src, const Z_VID_PROPS &sp, const Z_VID_PROPS &tp, size_t dstSize, bool sized,
                       Noise &noise) {
    Bytes all(kGuard + dstSize + kGuard);
    noise.Fill(all, 0);
    const Bytes before = all;
    const Bytes srcBefore = src;
    Bytes want(all.begin() + kGuard, all.end() - kGuard);
    const Converted should = ConvertModel(src, want, sp, tp);
    const HRESULT hr = sized ? ConvertSameGeometry(src.data(), static_cast<int64_t>(src.size()), all.data() + kGuard,
                                                   static_cast<int64_t>(dstSize), &sp, &tp)
                             : ConvertSameGeometry(src.data(), all.data() + kGuard, &sp, &tp);
    const std::string text =
        Words(sp) + "\n -> " + Words(tp) + "\n memories " + std::to_string(src.size()) + " " + std::to_string(dstSize);
    ASSERT_EQ(hr, should.hr) << text;
    ASSERT_EQ(src, srcBefore) << text;
    for (size_t i = 0; i < kGuard; ++i) {
        ASSERT_EQ(all[i], before[i]) << "before the target, " << i << " " << text;
        ASSERT_EQ(all[kGuard + dstSize + i], before[kGuard + dstSize + i]) << "behind the target, " << i << " " << text;
    }
    for (size_t i = 0; i < dstSize; ++i)
        ASSERT_EQ(all[kGuard + i], want[i]) << "at " << i << " of row bytes " << tp.nRowBytes << ", was "
                                            << static_cast<int>(before[kGuard + i]) << "; " << text;
}

void Compare(const Bytes &src, const Z_VID_PROPS &sp, const Z_VID_PROPS &tp, size_t dstSize, bool sized, Noise &noise) {
    for (const zck::KernelLevel level : {zck::KernelLevel::Reference, zck::KernelLevel::Avx2}) {
        zck::KernelLevelLimit(level);
        ASSERT_NO_FATAL_FAILURE(CompareAtOneLevel(src, sp, tp, dstSize, sized, noise))
            << (level == zck::KernelLevel::Avx2 ? "vector" : "reference") << " rows";
    }
}

Z_VID_PROPS RandomPicture(Noise &noise, eZFCC fcc, int32_t width, int32_t height) {
    Z_VID_PROPS p = Picture(fcc, width, Rgb(fcc) && noise(2) != 0 ? -height : height);
    if (noise(3) == 0) p.nRowBytes += static_cast<int32_t>(noise(70));
    if (noise(5) == 0) p.nRowBytes = static_cast<int32_t>(noise(4));    // too small, so the regular row counts; 0 too
    const eZInterlace orders[] = {eZI_Progressive, eZI_Default, eZI_Field1First, eZI_Field2First};
    p.eInterlace = orders[noise(4)];
    return p;
}

TEST(Convert, EveryCellAgreesWithTheModel) {
    const uint32_t seed = 77001;
    Noise noise(seed);
    for (int round = 0; round < 160; ++round)
        for (const eZFCC from : kClasses)
            for (const eZFCC to : kClasses) {
                const int32_t w = 1 + static_cast<int32_t>(noise(30)), h = 1 + static_cast<int32_t>(noise(6));
                const Z_VID_PROPS sp = RandomPicture(noise, from, w, h);
                const bool other = noise(4) == 0;
                const Z_VID_PROPS tp = RandomPicture(noise, to, other ? 1 + static_cast<int32_t>(noise(30)) : w,
                                                     other ? 1 + static_cast<int32_t>(noise(6)) : h);
                Bytes src(MemoryOf(sp));
                noise.Fill(src, noise(3));
                ASSERT_NO_FATAL_FAILURE(Compare(src, sp, tp, MemoryOf(tp), false, noise))
                    << "seed " << seed << " round " << round;
            }
}

TEST(Convert, ViewsWhoseLastRowEndsEarly) {
    const uint32_t seed = 77002;
    Noise noise(seed);
    for (int round = 0; round < 160; ++round)
        for (const eZFCC from : kClasses)
            for (const eZFCC to : kClasses) {
                const int32_t w = 1 + static_cast<int32_t>(noise(30)), h = 1 + static_cast<int32_t>(noise(6));
                Z_VID_PROPS sp = RandomPicture(noise, from, w, h), tp = RandomPicture(noise, to, w, h);
                // Bytes after the last pixel of the last row; whole groups of 4:2:2, so that nobody argues about halves.
                const auto cut = [&](Z_VID_PROPS p) {
                    p.nRowBytes = std::max(p.nRowBytes, static_cast<int32_t>(Row(p.fccType, p.nWidth)));
                    const int64_t need = Need(p) + (Rgb(p.fccType) || p.fccType == eZFCC_v210 ? 0 : p.nWidth % 2 * 2);
                    const size_t most = MemoryOf(p) + 40;
                    const uint32_t choice = noise(4);
                    if (choice == 0) return static_cast<size_t>(need > 8 ? Need(p) - 4 : 0);    // refused
                    return choice == 1 ? static_cast<size_t>(need) : choice == 2 ? most : static_cast<size_t>(need + noise(9));
                };
                const size_t srcSize = cut(sp), dstSize = cut(tp);
                if (srcSize == 0 || dstSize == 0) continue;
                Bytes src(srcSize);
                noise.Fill(src, noise(3));
                ASSERT_NO_FATAL_FAILURE(Compare(src, sp, tp, dstSize, true, noise)) << "seed " << seed << " round " << round;
            }
}

TEST(Convert, WideRowsAgreeWithTheModel) {
    const uint32_t seed = 77003;
    Noise noise(seed);
    for (const eZFCC from : kClasses)
        for (const eZFCC to : kClasses)
            for (const int32_t w : {63, 64, 65, 66, 67, 191, 720, 1001, 1920}) {
                const Z_VID_PROPS sp = Picture(from, w, 3), tp = Picture(to, w, Rgb(to) ? -3 : 3);
                Bytes src(MemoryOf(sp));
                noise.Fill(src, noise(3));
                ASSERT_NO_FATAL_FAILURE(Compare(src, sp, tp, MemoryOf(tp), false, noise)) << "seed " << seed;
            }
}

TEST(Convert, StatusesOfBadInput) {
    const Z_VID_PROPS ok = Picture(eZFCC_UYVY, 8, 2);
    Bytes src(MemoryOf(ok) * 4), dst(MemoryOf(ok) * 4);
    EXPECT_EQ(ConvertSameGeometry(nullptr, dst.data(), &ok, &ok), E_POINTER);
    EXPECT_EQ(ConvertSameGeometry(src.data(), nullptr, &ok, &ok), E_POINTER);
    EXPECT_EQ(ConvertSameGeometry(src.data(), dst.data(), nullptr, &ok), E_POINTER);
    EXPECT_EQ(ConvertSameGeometry(src.data(), dst.data(), &ok, nullptr), E_POINTER);
    for (const eZFCC fcc : {eZFCC_I420, eZFCC_YV12, eZFCC_NV12, eZFCC_YVYU, eZFCC_r210, eZFCC_RGB8, Fcc(0x34343459)}) {
        Z_VID_PROPS p = Picture(fcc, 8, 2);
        EXPECT_EQ(ConvertSameGeometry(src.data(), dst.data(), &p, &ok), kNoRoute) << std::hex << fcc;
        EXPECT_EQ(ConvertSameGeometry(src.data(), dst.data(), &ok, &p), kNoRoute) << std::hex << fcc;
        p.nWidth = 0;
        EXPECT_EQ(ConvertSameGeometry(src.data(), dst.data(), &p, &ok), E_UNEXPECTED) << std::hex << fcc;
    }
    for (const eZFCC rgb : {eZFCC_RGB32, eZFCC_ARGB32, eZFCC_RGB24}) {
        const Z_VID_PROPS p = Picture(rgb, 8, 2), v = Picture(eZFCC_v210, 8, 2);
        EXPECT_EQ(ConvertSameGeometry(src.data(), dst.data(), &p, &v), E_FAIL);
    }
    Z_VID_PROPS p = ok;
    p.nWidth = 0;
    EXPECT_EQ(ConvertSameGeometry(src.data(), dst.data(), &p, &ok), E_UNEXPECTED);
    EXPECT_EQ(ConvertSameGeometry(src.data(), dst.data(), &ok, &p), E_UNEXPECTED);
    p = ok;
    p.nHeight = 0;
    EXPECT_EQ(ConvertSameGeometry(src.data(), dst.data(), &p, &ok), E_UNEXPECTED);
    p = ok;
    p.nWidth = -4;
    EXPECT_EQ(ConvertSameGeometry(src.data(), dst.data(), &p, &ok), E_UNEXPECTED);
    p = {};
    EXPECT_EQ(ConvertSameGeometry(src.data(), dst.data(), &p, &ok), E_UNEXPECTED);
    EXPECT_EQ(ConvertSameGeometry(src.data(), 31, dst.data(), 32, &ok, &ok), kBadMedia);
    EXPECT_EQ(ConvertSameGeometry(src.data(), 32, dst.data(), 31, &ok, &ok), kBadMedia);
    EXPECT_EQ(ConvertSameGeometry(src.data(), 32, dst.data(), 32, &ok, &ok), S_OK);
}

TEST(Convert, OneLineOfAStandardWidthStaysOneLine) {
    Z_VID_PROPS sp = Picture(eZFCC_UYVY, 720, 1), tp = Picture(eZFCC_YUY2, 720, 1);
    sp.eVideoFormat = tp.eVideoFormat = eZVF_PAL;
    Noise noise(5);
    Bytes src(1440), dst(1440);
    noise.Fill(src, 0);
    ASSERT_EQ(ConvertSameGeometry(src.data(), dst.data(), &sp, &tp), S_OK);
    for (size_t i = 0; i < 1440; ++i) ASSERT_EQ(dst[i], src[i ^ 1]);
}

TEST(Convert, WorkedPixels) {
    Z_VID_PROPS hd = Picture(eZFCC_HDYC, 4, 1), rgb = Picture(eZFCC_RGB32, 4, -1);
    const uint8_t black[8] = {128, 16, 128, 16, 128, 16, 128, 16};
    uint8_t bgra[16] = {};
    ASSERT_EQ(ConvertSameGeometry(black, bgra, &hd, &rgb), S_OK);
    for (int i = 0; i < 16; ++i) EXPECT_EQ(bgra[i], i % 4 == 3 ? 255 : 0);
    uint8_t white[16], groups[8];
    std::fill(white, white + 16, uint8_t{255});
    ASSERT_EQ(ConvertSameGeometry(white, groups, &rgb, &hd), S_OK);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(groups[i * 2 + 1], (222 * 255 + 4080) >> 8);
        EXPECT_EQ(groups[i * 2 + 1], 237);
    }
    // Ten bits: value 0 of word 0 is Cb0, in bits 2 to 9.
    Z_VID_PROPS uyvy = Picture(eZFCC_UYVY, 6, 1), v210 = Picture(eZFCC_v210, 6, 1);
    const uint8_t in[12] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    uint8_t words[128] = {};
    ASSERT_EQ(ConvertSameGeometry(in, words, &uyvy, &v210), S_OK);
    const uint32_t want[4] = {1U << 2 | 2U << 12 | 3U << 22, 4U << 2 | 5U << 12 | 6U << 22, 7U << 2 | 8U << 12 | 9U << 22,
                              10U << 2 | 11U << 12 | 12U << 22};
    for (int i = 0; i < 4; ++i) {
        uint32_t word;
        std::memcpy(&word, words + 4 * i, 4);
        EXPECT_EQ(word, want[i]) << i;
    }
    uyvy.fccType = eZFCC_YUY2;
    ASSERT_EQ(ConvertSameGeometry(in, words, &uyvy, &v210), S_OK);
    uint32_t word;
    std::memcpy(&word, words, 4);
    EXPECT_EQ(word, 2U << 2 | 1U << 12 | 4U << 22);
    // Coming back, the low two bits are cut off.
    std::memset(words, 0xFF, 16);
    uyvy.fccType = eZFCC_UYVY;
    uint8_t out[12];
    ASSERT_EQ(ConvertSameGeometry(words, out, &v210, &uyvy), S_OK);
    for (const uint8_t b : out) EXPECT_EQ(b, 255);
}

TEST(Convert, Bt709WalkedOverAllLumaAndChroma) {
    Z_VID_PROPS hd = Picture(eZFCC_HDYC, 256, 1), rgb = Picture(eZFCC_RGB32, 256, -1);
    Noise noise(9);
    for (int u = 0; u < 256; u += 3)
        for (int v = 0; v < 256; v += 5) {
            Bytes src(512);
            for (size_t x = 0; x < 256; x += 2) {
                src[x * 2] = static_cast<uint8_t>(u);
                src[x * 2 + 1] = static_cast<uint8_t>(x);
                src[x * 2 + 2] = static_cast<uint8_t>(v);
                src[x * 2 + 3] = static_cast<uint8_t>(x + 1);
            }
            ASSERT_NO_FATAL_FAILURE(Compare(src, hd, rgb, 1024, false, noise));
        }
}

TEST(Convert, Bt601WalkedOverPlanesOfColour) {
    Z_VID_PROPS yuv = Picture(eZFCC_UYVY, 256, 1), rgb = Picture(eZFCC_RGB32, 256, -1);
    Noise noise(10);
    for (int a = 0; a < 256; a += 3)
        for (int b = 0; b < 256; b += 7) {
            Bytes src(512), pixels(1024);
            for (size_t x = 0; x < 256; x += 2) {
                src[x * 2] = static_cast<uint8_t>(a);
                src[x * 2 + 1] = static_cast<uint8_t>(x);
                src[x * 2 + 2] = static_cast<uint8_t>(b);
                src[x * 2 + 3] = static_cast<uint8_t>(x + 1);
            }
            for (size_t x = 0; x < 256; ++x) {
                pixels[x * 4] = static_cast<uint8_t>(a);
                pixels[x * 4 + 1] = static_cast<uint8_t>(x);
                pixels[x * 4 + 2] = static_cast<uint8_t>(b);
            }
            ASSERT_NO_FATAL_FAILURE(Compare(src, yuv, rgb, 1024, false, noise));
            ASSERT_NO_FATAL_FAILURE(Compare(pixels, rgb, yuv, 512, false, noise));
        }
}

TEST(RowOrder, BottomUpPicturesAreEnteredAtTheirLastRow) {
    Bytes memory(4096);
    Z_VID_PROPS p = Picture(eZFCC_RGB32, 10, 7);
    uint8_t *at = memory.data();
    zck::ROI size = {0, 0};
    ASSERT_EQ(zck::NormaliseRowOrder(&at, &p, &size), S_OK);
    EXPECT_EQ(at, memory.data() + 6 * 40);
    EXPECT_EQ(p.nRowBytes, -40);
    EXPECT_EQ(p.nHeight, 7);
    EXPECT_EQ(size.width, 10);
    EXPECT_EQ(size.height, 7);

    p = Picture(eZFCC_RGB32, 12, -5);
    at = memory.data();
    ASSERT_EQ(zck::NormaliseRowOrder(&at, &p, &size), S_OK);
    EXPECT_EQ(at, memory.data());
    EXPECT_EQ(p.nRowBytes, 48);
    EXPECT_EQ(size.width, 10);    // the smaller of both
    EXPECT_EQ(size.height, 5);

    p = Picture(eZFCC_UYVY, 8, 5);
    ASSERT_EQ(zck::NormaliseRowOrder(&at, &p, nullptr), S_OK);
    EXPECT_EQ(at, memory.data());
    EXPECT_EQ(p.nRowBytes, 16);

    p = {};
    EXPECT_EQ(zck::NormaliseRowOrder(&at, &p, &size), E_UNEXPECTED);
    p = Picture(eZFCC_UYVY, 8, 5);
    EXPECT_EQ(zck::NormaliseRowOrder(static_cast<uint8_t **>(nullptr), &p, &size), E_POINTER);
    uint8_t *none = nullptr;
    EXPECT_EQ(zck::NormaliseRowOrder(&none, &p, &size), E_POINTER);

    // A half-filled record is completed first.
    p = {};
    p.eVideoFormat = eZVF_HD1080_50i;
    p.fccType = eZFCC_RGB24;
    p.nHeight = 1;
    size = {0, 0};
    at = memory.data();
    Bytes large(5760 * 1080);
    at = large.data();
    ASSERT_EQ(zck::NormaliseRowOrder(&at, &p, &size), S_OK);
    EXPECT_EQ(at, large.data() + 1079 * 5760);
    EXPECT_EQ(size.height, 1080);
    // But one line that has row bytes is one line.
    p = {};
    p.eVideoFormat = eZVF_HD1080_50i;
    p.fccType = eZFCC_RGB24;
    p.nHeight = 1;
    p.nRowBytes = 5760;
    size = {0, 0};
    at = large.data();
    ASSERT_EQ(zck::NormaliseRowOrder(&at, &p, &size), S_OK);
    EXPECT_EQ(at, large.data());
    EXPECT_EQ(size.height, 1);
}

TEST(FieldOrder, OneLineMovesAndTheEdgeRepeats) {
    // Rows of a copy are numbered by their bytes. Target bottom-up swaps the direction.
    struct Case {
        eZInterlace from, to;
        int32_t height;
        int want[4];    // by picture rows of the target
    };
    const Case cases[] = {
        {eZI_Field2First, eZI_Field1First, -4, {0, 0, 1, 2}},    // d = -2: the target moves on
        {eZI_Field1First, eZI_Field2First, -4, {1, 2, 3, 3}}, {eZI_Field1First, eZI_Field2First, 4, {0, 0, 1, 2}},
        {eZI_Field2First, eZI_Field1First, 4, {1, 2, 3, 3}},  {eZI_Field1First, eZI_Field1First, -4, {0, 1, 2, 3}},
        {eZI_Progressive, eZI_Field2First, -4, {0, 1, 2, 3}}};
    for (const Case &c : cases) {
        Z_VID_PROPS sp = Picture(eZFCC_RGB32, 4, -4), tp = Picture(eZFCC_RGB32, 4, c.height);
        sp.eInterlace = c.from;
        tp.eInterlace = c.to;
        Bytes src(64), dst(64);
        for (size_t i = 0; i < 64; ++i) src[i] = static_cast<uint8_t>(i / 16);
        ASSERT_EQ(ConvertSameGeometry(src.data(), dst.data(), &sp, &tp), S_OK);
        for (size_t y = 0; y < 4; ++y) {
            const size_t row = c.height < 0 ? y : 3 - y;
            EXPECT_EQ(dst[row * 16], c.want[y]) << c.from << c.to << c.height << " row " << y;
            EXPECT_EQ(dst[row * 16 + 15], c.want[y]);
        }
    }
}

TEST(FieldOrder, TheFormatsOwnOrderCounts) {
    Z_VID_PROPS sp = Picture(eZFCC_UYVY, 720, 486), tp = Picture(eZFCC_YUY2, 720, 486);
    sp.eVideoFormat = eZVF_NTSC;    // field 2 first
    sp.eInterlace = eZI_Default;
    tp.eInterlace = eZI_Field1First;
    Noise noise(3);
    Bytes src(MemoryOf(sp));
    noise.Fill(src, 0);
    Compare(src, sp, tp, MemoryOf(tp), false, noise);
}

TEST(Colours, YuvOfEveryColour) {
    for (uint32_t r = 0; r < 256; ++r)
        for (uint32_t g = 0; g < 256; g += r % 3 == 0 ? 1 : 5)
            for (uint32_t b = 0; b < 256; b += 3) {
                const uint32_t colour = r | g << 8 | b << 16 | 0x55000000;
                const Yuv c = FillYuv(colour);
                const uint32_t y = c.y, cb = c.cb, cr = c.cr;
                ASSERT_EQ(zck::ColorToYUY2(colour), y | cb << 8 | y << 16 | cr << 24) << std::hex << colour;
                ASSERT_EQ(zck::ColorToUYVY(colour), cb | y << 8 | cr << 16 | y << 24) << std::hex << colour;
            }
    EXPECT_EQ(zck::ColorToUYVY(0), 0x10801080U);
}

TEST(Fills, PlainFillsWholeUnitsOnly) {
    Noise noise(44);
    const uint32_t colour = 0x80123456;
    for (const eZFCC fcc : AllCodes())
        for (uint32_t n = 0; n < 30; ++n) {
            Bytes got(48), want;
            noise.Fill(got, 0);
            want = got;
            const Yuv c = FillYuv(colour);
            Bytes unit;
            if (fcc == eZFCC_YUY2) unit = {c.y, c.cb, c.y, c.cr};
            if (fcc == eZFCC_UYVY || fcc == eZFCC_HDYC) unit = {c.cb, c.y, c.cr, c.y};
            if (fcc == eZFCC_RGB32 || fcc == eZFCC_ARGB32) unit = {0x12, 0x34, 0x56, 0x80};
            if (fcc == eZFCC_RGB24) unit = {0x12, 0x34, 0x56};
            if (!unit.empty())
                for (uint32_t i = 0; i < n / unit.size() * unit.size(); ++i) want[i] = unit[i % unit.size()];
            zck::FillPlain(fcc, got.data(), n, colour);
            ASSERT_EQ(got, want) << std::hex << fcc << " " << n;
        }
}

TEST(Fills, ImagesAgreeWithTheModel) {
    const uint32_t seed = 88;
    Noise noise(seed);
    const double opacities[] = {1.0,
                                1.5,
                                0.999,
                                0.5,
                                0.25,
                                1.0 / 128,
                                0.0078,
                                0.01,
                                0,
                                -1,
                                1e300,
                                std::numeric_limits<double>::infinity(),
                                -std::numeric_limits<double>::infinity(),
                                std::numeric_limits<double>::quiet_NaN()};
    for (const eZFCC fcc : AllCodes())
        for (const double opacity : opacities)
            for (int round = 0; round < 12; ++round) {
                const int32_t w = 1 + static_cast<int32_t>(noise(20)), h = 1 + static_cast<int32_t>(noise(4));
                Z_VID_PROPS p = Picture(fcc, w, noise(2) != 0 ? h : -h);
                if (p.nRowBytes == 0) p.nRowBytes = 4;
                p.nRowBytes += static_cast<int32_t>(noise(6));
                Bytes got(static_cast<size_t>(p.nRowBytes) * static_cast<size_t>(h) + 64);
                noise.Fill(got, noise(3));
                Bytes want = got;
                const uint32_t colour = noise(0xFFFFFFFF);
                const HRESULT should = FillModel(p, want, colour, opacity);
                ASSERT_EQ(zck::FillImage(&p, got.data(), colour, opacity), should) << Words(p) << " " << opacity;
                ASSERT_EQ(got, want) << Words(p) << " " << opacity << " seed " << seed;
            }
    Z_VID_PROPS p = Picture(eZFCC_RGB32, 4, 4);
    Bytes memory(64);
    EXPECT_EQ(zck::FillImage(&p, nullptr, 0, 1.0), E_INVALIDARG);
    EXPECT_EQ(zck::FillImage(nullptr, memory.data(), 0, 1.0), E_INVALIDARG);
}

}    // namespace
}    // namespace conformance
