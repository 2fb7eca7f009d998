// Records that say anything at all, over memory that ends where it ends: every answer is a known status, nothing outside is
// touched, and what is refused is left as it was.
#include <algorithm>
#include <cstdlib>
#include <random>
#include <string>

#include "imaging/colour/color_convert.h"
#include "imaging/colour/convert.h"
#include "imaging/colour/planar_image.h"
#include "imaging/convert/copy_frame.h"
#include "imaging/convert/img_convert.h"
#include "tests/conformance/frame_fixture.h"

namespace conformance {
namespace {

constexpr HRESULT kNoRoute = static_cast<HRESULT>(0x80040201);
constexpr HRESULT kBadMedia = static_cast<HRESULT>(0x80040248);
constexpr size_t kGuard = 256;

class Dice {
public:
    explicit Dice(uint32_t seed) : m_random(seed) {}
    int32_t operator()(int32_t least, int32_t most) {
        return least + static_cast<int32_t>(m_random() % (static_cast<uint32_t>(most - least) + 1));
    }
    template <class T, size_t N>
    T OneOf(const T (&all)[N]) {
        return all[m_random() % N];
    }
    // Mostly a number that could be meant, else one that cannot.
    int32_t Near(int32_t meant) {
        const int32_t absurd[] = {
            0,   1,     -1,    2,       -2,       3,       meant - 1,  meant + 1, -meant,    meant / 2,     meant * 2,     -4,
            255, 65535, 65536, 1 << 24, -1 << 24, 1 << 30, -(1 << 30), INT32_MAX, INT32_MIN, INT32_MIN + 1, INT32_MAX - 1, 719};
        return (*this)(0, 2) != 0 ? meant : OneOf(absurd);
    }
    Bytes Noise(size_t n) {
        Bytes bytes(n);
        for (uint8_t &b : bytes) b = static_cast<uint8_t>(m_random());
        return bytes;
    }

private:
    std::mt19937 m_random;
};

constexpr eZFCC kFormats[] = {eZFCC_UYVY,   eZFCC_HDYC,    eZFCC_YUY2,      eZFCC_YVYU,      eZFCC_RGB24,    eZFCC_RGB32,
                              eZFCC_ARGB32, eZFCC_v210,    eZFCC_r210,      eZFCC_I420,      eZFCC_YV12,     eZFCC_NV12,
                              eZFCC_RGB8,   eZFCC_Default, Fcc(0xE436EB7B), Fcc(0x34343459), Fcc(0x39555659)};
constexpr eZVideoFormat kVideo[] = {eZVF_Custom, eZVF_Custom, eZVF_Custom, eZVF_PAL, eZVF_HD1080_50i, eZVF_Disabled};
constexpr eZInterlace kScans[] = {eZI_Default, eZI_Progressive, eZI_Field1First, eZI_Field2First};

Z_VID_PROPS AnyRecord(Dice &dice) {
    const eZFCC fcc = dice.OneOf(kFormats);
    const int32_t w = dice(1, 24), h = dice(1, 9);
    Z_VID_PROPS p = {};
    p.eVideoFormat = dice.OneOf(kVideo);
    p.fccType = fcc;
    // Of a format that nobody knows the size of pixels is not known either, and its picture is as large as it says.
    p.nWidth = Bits(fcc) != 0 ? dice.Near(w) : dice(-2, 300);
    p.nHeight = dice.Near(dice(0, 1) != 0 ? h : -h);
    p.nRowBytes = dice.Near(static_cast<int32_t>(Planar(fcc) ? w : Row(fcc, w)));
    p.nAspectX = static_cast<int16_t>(dice.Near(4));
    p.nAspectY = static_cast<int16_t>(dice.Near(3));
    p.eInterlace = dice.OneOf(kScans);
    return p;
}

// Bytes between guards of known noise.
class Block {
public:
    Block(Dice &dice, size_t size) : m_all(dice.Noise(size + 2 * kGuard)), m_before(m_all), m_size(size) {}
    uint8_t *data() { return m_all.data() + kGuard; }
    int64_t size() const { return static_cast<int64_t>(m_size); }
    bool GuardsHold() const {
        const auto end = static_cast<std::ptrdiff_t>(kGuard + m_size);
        return std::equal(m_all.begin(), m_all.begin() + kGuard, m_before.begin()) &&
               std::equal(m_all.begin() + end, m_all.end(), m_before.begin() + end);
    }
    bool Untouched() const { return m_all == m_before; }

private:
    Bytes m_all, m_before;
    size_t m_size;
};

bool Known(HRESULT hr) {
    const HRESULT all[] = {S_OK, S_FALSE, E_UNEXPECTED, E_FAIL, E_INVALIDARG, kNoRoute, kBadMedia, E_OUTOFMEMORY};
    return std::find(std::begin(all), std::end(all), hr) != std::end(all);
}

TEST(AbsurdRecords, ConversionsStayInsideTheirMemories) {
    const uint32_t seed = 97001;
    Dice dice(seed);
    zck::ImgScaleState state;
    int32_t done = 0, refused = 0;
    for (int32_t round = 0; round < 24000; ++round) {
        const Z_VID_PROPS sp = AnyRecord(dice), tp = AnyRecord(dice);
        Block src(dice, static_cast<size_t>(dice(1, 900))), dst(dice, static_cast<size_t>(dice(1, 900)));
        const tagRECT rect = {dice.Near(2), dice.Near(1), dice.Near(9), dice.Near(5)};
        const tagRECT *const part = dice(0, 1) != 0 ? &rect : nullptr;
        const zck::ImageView from = {{sp.fccType, sp.nWidth, sp.nHeight, 0}, sp.nRowBytes, src.size()};
        const zck::ImageView to = {{tp.fccType, tp.nWidth, tp.nHeight, 0}, tp.nRowBytes, dst.size()};
        HRESULT hr = S_OK;
        const int32_t road = dice(0, 3);
        if (road == 0) hr = zck::ConvertSameGeometry(src.data(), src.size(), dst.data(), dst.size(), &sp, &tp);
        if (road == 1) hr = zck::CopyFrameCC_Thread(src.data(), src.size(), dst.data(), dst.size(), &sp, &tp);
        if (road == 2) hr = zck::ImgConvert(&state, src.data(), src.size(), dst.data(), dst.size(), &sp, &tp);
        if (road == 3) hr = zck::ColorConvertViews(&state, src.data(), dst.data(), from, to, part, part);
        const std::string text = "road " + std::to_string(road) + " round " + std::to_string(round) + "\n" + Words(sp) + "\n" +
                                 Words(tp) + "\n memories " + std::to_string(src.size()) + " " + std::to_string(dst.size());
        ASSERT_TRUE(Known(hr)) << std::hex << hr << "\n" << text;
        ASSERT_TRUE(src.Untouched()) << text;
        ASSERT_TRUE(dst.GuardsHold()) << text;
        // Only a route that is not provided may have repeated an edge row.
        if (hr != S_OK && hr != E_FAIL) {
            ASSERT_TRUE(dst.Untouched()) << text;
        }
        ++(hr == S_OK ? done : refused);
    }
    EXPECT_GT(done, 800) << "seed " << seed;
    EXPECT_GT(refused, 8000);
}

TEST(AbsurdRecords, PlanesStayInsideTheirMemories) {
    const uint32_t seed = 97002;
    Dice dice(seed);
    int32_t loaded = 0, packed = 0;
    for (int32_t round = 0; round < 16000; ++round) {
        const Z_VID_PROPS sp = AnyRecord(dice), tp = AnyRecord(dice);
        Block src(dice, static_cast<size_t>(dice(1, 900))), scratch(dice, static_cast<size_t>(dice(1, 900)));
        Block dst(dice, static_cast<size_t>(dice(1, 900)));
        const bool given = dice(0, 3) != 0;
        zck::PlanarImage image;
        const HRESULT hr =
            zck::LoadPlanes(&image, given ? src.data() : nullptr, src.size(), &sp, scratch.data(), scratch.size());
        const std::string text = "round " + std::to_string(round) + "\n" + Words(sp) + "\n" + Words(tp);
        ASSERT_TRUE(hr == S_OK || hr == kNoRoute || hr == kBadMedia) << std::hex << hr << "\n" << text;
        ASSERT_TRUE(src.Untouched() && scratch.GuardsHold()) << text;
        if (hr != S_OK) {
            ASSERT_TRUE(scratch.Untouched() && !image.bPlanar) << text;
            continue;
        }
        ++loaded;
        // Upwards from the last row of a memory of whole rows.
        const bool up = tp.nRowBytes < 0;
        const int64_t last = up ? std::llabs(int64_t{tp.nRowBytes}) * (image.nHeight[0] - 1) : 0;
        if (last >= dst.size()) continue;
        const HRESULT back = zck::PackPlanes(&image, dst.data() + last, dst.size(), tp.fccType, tp.nRowBytes);
        ASSERT_TRUE(back == S_OK || back == kNoRoute || back == kBadMedia) << std::hex << back << "\n" << text;
        ASSERT_TRUE(dst.GuardsHold()) << text;
        ASSERT_TRUE(back == S_OK || dst.Untouched()) << text;
        packed += back == S_OK ? 1 : 0;
    }
    EXPECT_GT(loaded, 1000) << "seed " << seed;
    EXPECT_GT(packed, 100);
}

// Frames over a caller's block: whatever their record says, what is done with them stays in the block.
class AbsurdFrames : public Frames {};

TEST_F(AbsurdFrames, ARecordThatIsNoPictureIsNotWorkedOn) {
    Dice dice(97004);
    Block block(dice, 600);
    // Rows of planes that are shorter than the picture is wide, or none; a width below nothing; rows that no record tells.
    const eZFCC unpacked = Fcc(0xE436EB7B);
    struct Case {
        eZVideoFormat video;
        eZFCC fcc;
        int32_t width, height, row;
    };
    const Case cases[] = {{eZVF_Custom, eZFCC_I420, 5000, 8, 40}, {eZVF_Custom, eZFCC_NV12, 41, 8, 40},
                          {eZVF_PAL, eZFCC_YV12, 5000, 8, -40},   {eZVF_PAL, eZFCC_ARGB32, INT32_MIN, -5, 40},
                          {eZVF_PAL, eZFCC_UYVY, -7, 8, 40},      {eZVF_PAL, unpacked, 18, 400, -40}};
    for (const Case &c : cases) {
        Z_VID_PROPS own = {};
        own.eVideoFormat = c.video;
        own.fccType = c.fcc;
        own.nWidth = c.width;
        own.nHeight = c.height;
        own.nRowBytes = c.row;
        own.eInterlace = eZI_Field1First;
        Z_AV_PROPS props = {};
        props.vidProps = own;
        const ComPtr<IZFrame> frame = Wrap(Picture(eZFCC_RGB8, 1, 1), block.data(), static_cast<int32_t>(block.size()));
        ASSERT_EQ(frame->FrameAVPropsSet(&props), S_OK);
        const ComPtr<IZFFrame> wide = QueryFor<IZFFrame>(frame.get());
        Z_AV_PROPS asked = {};
        asked.vidProps = Picture(own.fccType, 8, -own.nHeight);
        asked.vidProps.nRowBytes = 40;
        for (const int32_t scan : {256, 512}) {
            asked.vidProps.eInterlace = static_cast<eZInterlace>(scan);
            EXPECT_EQ(wide->ZFAVPropsSet(&asked, nullptr), kBadMedia) << Words(own);
        }
        asked.vidProps.eInterlace = eZI_Progressive;
        if (Rgb(own.fccType)) {
            EXPECT_EQ(wide->ZFAVPropsSet(&asked, nullptr), kBadMedia) << Words(own);
        }
        EXPECT_EQ(Words(Props(frame).vidProps), Words(own));
        ComPtr<IZFrame> clone;
        const HRESULT hr = frame->FrameClone(clone.Put(), eZFC_Full, eZFCC_RGB24);
        EXPECT_EQ(hr, own.fccType == unpacked ? E_UNEXPECTED : kBadMedia) << Words(own);
        EXPECT_FALSE(clone);
        EXPECT_TRUE(block.Untouched()) << Words(own);
    }
}

TEST_F(AbsurdFrames, WorkOnPixelsStaysInTheBlock) {
    const uint32_t seed = 97003;
    Dice dice(seed);
    int32_t cloned = 0, kept = 0;
    for (int32_t round = 0; round < 16000; ++round) {
        Block block(dice, static_cast<size_t>(dice(1, 900)));
        const Z_VID_PROPS own = AnyRecord(dice);
        Z_AV_PROPS props = {};
        props.vidProps = own;
        const ComPtr<IZFrame> frame = Wrap(Picture(eZFCC_RGB8, 1, 1), block.data(), static_cast<int32_t>(block.size()));
        ASSERT_EQ(frame->FrameAVPropsSet(&props), S_OK);
        const std::string text = "round " + std::to_string(round) + "\n" + Words(own) + " in " + std::to_string(block.size());

        ComPtr<IZFrame> clone;
        const eZFCC to = dice.OneOf(kFormats);
        const HRESULT hr = frame->FrameClone(clone.Put(), Bits({dice(0, 1) != 0 ? eZFC_Full : eZFC_Reference}), to);
        ASSERT_TRUE(hr == S_OK || hr == kBadMedia || hr == E_UNEXPECTED || hr == E_INVALIDARG || hr == E_OUTOFMEMORY)
            << std::hex << hr << " to " << to << "\n"
            << text;
        ASSERT_EQ(static_cast<bool>(clone), hr == S_OK) << text;
        ASSERT_TRUE(block.Untouched()) << text;
        cloned += hr == S_OK ? 1 : 0;
        clone.Reset();

        tagRECT rect = {dice.Near(2), dice.Near(1), dice.Near(9), dice.Near(5)};
        ComPtr<IZFrame> cut;
        ASSERT_EQ(frame->FrameCut(dice(0, 3), &rect, cut.Put()), S_OK) << text;
        const HRESULT ofCut = cut->FrameClone(clone.Put(), eZFC_Full, to);
        ASSERT_TRUE(Known(ofCut)) << std::hex << ofCut << " to " << to << "\n" << text;
        ASSERT_TRUE(block.Untouched()) << text;
        clone.Reset();

        // The checked description may take a field out and turn the picture over, in place.
        for (const auto &target : {frame, cut}) {
            props.vidProps = AnyRecord(dice);
            if (dice(0, 1) != 0) props.vidProps.eInterlace = static_cast<eZInterlace>(dice(0, 1) != 0 ? 256 : 512);
            const HRESULT set = QueryFor<IZFFrame>(target.get())->ZFAVPropsSet(&props, nullptr);
            ASSERT_TRUE(set == S_OK || set == kBadMedia) << std::hex << set << "\n" << text;
            ASSERT_TRUE(block.GuardsHold()) << text << "\nasked " << Words(props.vidProps);
            kept += set == S_OK ? 1 : 0;
        }
    }
    EXPECT_GT(cloned, 800) << "seed " << seed;
    EXPECT_GT(kept, 800);
}

}    // namespace
}    // namespace conformance
