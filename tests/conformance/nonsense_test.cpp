// Frames and keys that make no sense on the road through the keyer: every call answers with a status of its list, gives a frame
// or nothing, and leaves its input as it was. The sanitizers watch what is read.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>

#include "frames/media/pixel_format.h"
#include "frames/media/video_props.h"
#include "keying/plugin/chroma_key.h"
#include "tests/conformance/dice.h"
#include "tests/conformance/frame_fixture.h"

namespace conformance {
namespace {

constexpr int32_t kNumbers[] = {INT32_MIN, INT32_MIN + 1,
                                -65536,    -1080,
                                -481,      -33,
                                -16,       -2,
                                -1,        0,
                                1,         2,
                                3,         7,
                                8,         15,
                                16,        31,
                                32,        33,
                                47,        48,
                                64,        128,
                                481,       720,
                                1080,      1920,
                                16384,     65535,
                                1 << 24,   INT32_MAX - 1,
                                INT32_MAX};
constexpr uint32_t kCodes[] = {eZFCC_ARGB32, eZFCC_RGB32, eZFCC_RGB24, eZFCC_UYVY, eZFCC_HDYC, eZFCC_YUY2, eZFCC_v210,
                               eZFCC_r210,   eZFCC_YVYU,  eZFCC_I420,  eZFCC_YV12, eZFCC_NV12, eZFCC_RGB8, 0x32323459,
                               0x34343459,   0xE436EB7B,  0x65FFAF79,  0x12345678, 0};
constexpr int32_t kFormats[] = {0, 0, 0, 0, 1, 4, 6, 14, 18, 23, 33, 34, 35, 255, 518, 0x200, 4622, 5126, -1, INT32_MIN};

bool IsListed(HRESULT hr) {
    const uint32_t listed[] = {0,          1,          0x80004001, 0x80004002, 0x80004003, 0x80004005,
                               0x80070057, 0x8007000E, 0x80040248, 0x80040201, 0x8000FFFF, 0xFFFFFFFA};
    return std::find(std::begin(listed), std::end(listed), static_cast<uint32_t>(hr)) != std::end(listed);
}

// A frame over a block of exactly so many bytes.
class Nonsense : public Frames {
protected:
    void SetUp() override {
        Frames::SetUp();
        ASSERT_EQ(zck::CreateObject<zck::CCoZChromaKey>(nullptr, ZIidOf<IZPlugin>(), m_plugin.PutVoid()), S_OK);
        Set("output.thread", "false");
    }
    void TearDown() override { m_plugin.Reset(); }

    void Set(const char *name, const char *value) {
        const ComPtr<IZProps> props = QueryFor<IZProps>(m_plugin.get());
        ASSERT_EQ(props->PropsSet(TextOf(name).get(), TextOf(value).get()), S_OK);
    }

    template <class T, size_t N>
    T One(const T (&of)[N]) {
        return of[static_cast<size_t>(m_dice(0, static_cast<int32_t>(N) - 1))];
    }
    // Mostly sizes that could be true, so that not everything is refused at the first look.
    int32_t Number() { return m_dice(0, 2) == 0 ? One(kNumbers) : m_dice(-40, 80); }

    Z_VID_PROPS Record() {
        Z_VID_PROPS p = {};
        p.eVideoFormat = static_cast<eZVideoFormat>(One(kFormats));
        p.fccType = static_cast<eZFCC>(One(kCodes));
        p.nWidth = Number();
        p.nHeight = Number();
        p.nRowBytes = m_dice(0, 1) == 0 ? Number() : 0;
        p.eInterlace = static_cast<eZInterlace>(m_dice(0, 3) == 0 ? One(kNumbers) : m_dice(0, 5));
        p.nAspectX = static_cast<int16_t>(Number());
        p.nAspectY = static_cast<int16_t>(Number());
        p.dblRate = m_dice(0, 3) == 0 ? -1e300 : 25;
        p.eScaleType = static_cast<eZScaleType>(Number());
        p.e3DFormat = static_cast<eZ3DFormat>(Number());
        // A format of no known pixel size needs no pixels for a large picture, and the clone of that would be large.
        const bool known = PixelBitsOf(p.fccType) != 0;
        if (!known) p.nWidth = std::clamp(p.nWidth, -100, 100);
        if (!known) p.nHeight = std::clamp(p.nHeight, -100, 100);
        return p;
    }
    static int PixelBitsOf(eZFCC fcc) { return zck::PixelBits(fcc); }

    tagRECT Rect() {
        tagRECT rect;
        rect.left = Number();
        rect.top = Number();
        rect.right = Number();
        rect.bottom = Number();
        return rect;
    }

    // The status, and that the output suits it.
    void Answered(HRESULT hr, const ComPtr<IZFrame> &out, const char *what, const Z_VID_PROPS &p) {
        ASSERT_TRUE(IsListed(hr)) << what << " 0x" << std::hex << static_cast<uint32_t>(hr) << " " << Words(p);
        ASSERT_EQ(hr == S_OK, static_cast<bool>(out)) << what << " " << Words(p);
    }

    void Key(CHROMA_KEY_RAW *raw) {
        raw->eType = One({eCKT_RGB, eCKT_HLS, eCKT_YUV, eCKT_Auto, eCKT_Alpha});
        raw->nKeysUsed = One({1, 2, 20, -5, 0});
        for (SINGLE_KEY &key : raw->arrKeys) {
            int32_t words[10];
            for (int32_t &word : words) word = m_dice(0, 4) == 0 ? One(kNumbers) : m_dice(0, 0xFFFFFF);
            words[9] = m_dice(-1, 1);
            std::memcpy(&key, words, sizeof key);
        }
        raw->nMinTransparent = Number();
        raw->nMaxTransparent = Number();
        raw->nEdgesSmooth = m_dice(-1, 3);
        raw->bColorCancel = m_dice(0, 2);
        raw->nInverseKey = Number();
    }

    // One record over one block, through everything that reads pixels by it.
    void Try(const Z_VID_PROPS &p, size_t size) {
        const std::unique_ptr<uint8_t[]> block(new uint8_t[size]);
        const Bytes noise = m_dice.Noise(size);
        std::memcpy(block.get(), noise.data(), size);
        const ComPtr<IZFrame> frame = Wrap(p, block.get(), static_cast<int32_t>(size));
        ASSERT_TRUE(frame);
        for (int i = 0; i < 3; ++i) {
            ComPtr<IZFrame> clone;
            const auto type = static_cast<eZFrameClone>(One({0, 1, 2, 3, 18, 785, 786, -1}));
            Answered(frame->FrameClone(clone.Put(), type, static_cast<eZFCC>(One(kCodes))), clone, "clone", p);
        }
        tagRECT rect = Rect();
        ComPtr<IZFrame> cut;
        Answered(frame->FrameCut(m_dice(-2, 4), m_dice(0, 1) == 0 ? &rect : nullptr, cut.Put()), cut, "cut", p);
        ComPtr<IZFrame> part;
        if (cut) Answered(cut->FrameClone(part.Put(), eZFC_Full, eZFCC_ARGB32), part, "clone of a cut", p);
        CHROMA_KEY_RAW raw = {};
        Key(&raw);
        ASSERT_EQ(QueryFor<IZChromaKey>(m_plugin.get())->KeyRawSet(&raw), S_OK);
        for (const ComPtr<IZFrame> &input : {frame, cut}) {
            ComPtr<IZFrame> keyed;
            if (input) Answered(m_plugin->OnMediaReceive(0, nullptr, input.get(), keyed.Put()), keyed, "keying", p);
        }
        ASSERT_EQ(std::memcmp(block.get(), noise.data(), size), 0) << "the input was changed: " << Words(p);
    }

    Dice m_dice{20151121};
    ComPtr<IZPlugin> m_plugin;
};

TEST_F(Nonsense, RecordsOverShortBlocks) {
    for (int round = 0; round < 3000; ++round) {
        if (round % 100 == 0) {
            Set("process.threads", One({"1", "2", "3", "5"}));
            Set("keying.borders", One({"", "", "4", "-70000 2147483647", "8 0 1000000 3"}));
        }
        Try(Record(), static_cast<size_t>(One({1, 2, 63, 64, 500, 4096, 9000})));
        ASSERT_FALSE(HasFailure()) << "round " << round;
    }
}

// Blocks that hold their picture and not a byte more, in every format and both row orders.
TEST_F(Nonsense, RecordsThatJustFit) {
    int keyed = 0;
    for (int round = 0; round < 1500; ++round) {
        if (round % 100 == 0) {
            Set("process.threads", One({"1", "2", "3", "5"}));
            Set("keying.borders", One({"", "", "4", "8 0 1 3"}));
        }
        Z_VID_PROPS p = {};
        p.fccType = static_cast<eZFCC>(One(kCodes));
        p.nWidth = m_dice(1, 70);
        p.nHeight = m_dice(1, 30) * (m_dice(0, 1) == 0 ? 1 : -1);
        p.nRowBytes = zck::RowBytes(p.fccType, p.nWidth) + One({0, 0, 1, 2, 4, 128});
        p.eInterlace = static_cast<eZInterlace>(m_dice(0, 3));
        const int64_t size = zck::VideoBytesNeeded(p);
        if (size < 1) continue;
        Try(p, static_cast<size_t>(size));
        ASSERT_FALSE(HasFailure()) << "round " << round;
        ++keyed;
    }
    EXPECT_GT(keyed, 1000);
}

TEST_F(Nonsense, NewFramesOfRecordsThatMakeNoSense) {
    const Bytes pixels(1 << 16, 7);
    for (int round = 0; round < 4000; ++round) {
        Z_VID_PROPS p = Record();
        // Only as much as there is to read, or nothing to read and little to fill.
        if (zck::FrameBufferSize(&p) > static_cast<int32_t>(pixels.size())) p.nHeight = p.nWidth = 0;
        Z_VID_PROPS updated = p;
        zck::VideoPropsUpdate(&updated, false);
        if (zck::FrameBufferSize(&updated) > static_cast<int32_t>(pixels.size())) continue;
        for (const int64_t from : {int64_t{0}, AddressOf(pixels.data())}) {
            ComPtr<IZFrame> made;
            const HRESULT hr = m_factory->FrameCreateFromProps(&p, from, made.Put(), TextOf("solid_color=Orange").get());
            Answered(hr, made, "creation", p);
            ASSERT_FALSE(HasFailure()) << "round " << round;
            if (made) {
                ASSERT_EQ(Video(made).size, zck::FrameBufferSize(&updated)) << Words(p);
            }
        }
    }
}

}    // namespace
}    // namespace conformance
