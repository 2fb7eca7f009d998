// A key object, frames and what comes out of them, for the tests of this folder.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "frames/factory/factory.h"
#include "keying/key/key.h"
#include "keyobject/key_value.h"
#include "platform/status.h"
#include "zchromakey/zchromakey.h"

namespace zck::test {

inline constexpr uint32_t kGreen = 0xFF10C020;    // alpha, red, green, blue
inline constexpr uint32_t kBlue = 0xFF1020C0;
inline constexpr uint32_t kSkin = 0xFFD09080;

/// A key that keys `kGreen`: red in the low byte.
inline CHROMA_KEY_RAW GreenKey(eCK_Type type = eCKT_RGB) {
    CHROMA_KEY_RAW key = {};
    key.eType = type;
    key.nKeysUsed = 1;
    key.arrKeys[0].nValue = static_cast<int32_t>(0xFF20C010);
    key.arrKeys[0].nDelta = 0x01202020;
    return key;
}

/// The record is plain bytes without padding.
inline bool SameKey(const CHROMA_KEY_RAW &a, const CHROMA_KEY_RAW &b) { return std::memcmp(&a, &b, sizeof(a)) == 0; }
inline bool SameAdjust(const CK_ADJUST &a, const CK_ADJUST &b) { return std::memcmp(&a, &b, sizeof(a)) == 0; }

using Picture = std::function<uint32_t(int x, int y)>;

class KeyTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(FrameFactoryCreate(IID_IZFrames, m_frames.PutVoid()), S_OK);
        ASSERT_EQ(CreateObject<CCoZKeyValue>(nullptr, IID_IZKey, m_key.PutVoid()), S_OK);
        m_props = QueryFor<IZProps>(m_key.get());
    }

    /// Top-down `eZFCC_ARGB32` without padding.
    static Z_VID_PROPS PropsOf(int width, int height, eZFCC fcc = eZFCC_ARGB32) {
        Z_VID_PROPS props = {};
        props.fccType = fcc;
        props.nWidth = width;
        props.nHeight = -height;
        props.nRowBytes = 4 * width;
        props.eInterlace = eZI_Progressive;
        return props;
    }

    static std::vector<uint8_t> BytesOf(int width, int height, const Picture &picture) {
        std::vector<uint8_t> bytes;
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                for (uint32_t shift = 0; shift < 32; shift += 8) bytes.push_back(static_cast<uint8_t>(picture(x, y) >> shift));
        return bytes;
    }

    ComPtr<IZFrame> Frame(int width, int height, const Picture &picture) {
        Z_VID_PROPS props = PropsOf(width, height);
        std::vector<uint8_t> bytes = BytesOf(width, height, picture);
        ComPtr<IZFrame> frame;
        EXPECT_EQ(m_frames->FrameCreateFromProps(&props, reinterpret_cast<int64_t>(bytes.data()), frame.Put(), nullptr), S_OK);
        return frame;
    }

    /// Green on the left half, skin on the right one.
    static uint32_t HalfGreen(int x, int) { return x < 16 ? kGreen : kSkin; }
    ComPtr<IZFrame> HalfGreenFrame() { return Frame(32, 16, HalfGreen); }
    void SetHalfGreen() { ASSERT_EQ(m_key->KeyFrameSet(HalfGreenFrame().get(), nullptr), S_OK); }

    static Bstr Of(const std::string &text) { return Bstr(TextFromUtf8(text)); }
    void Store(const char *name, const std::string &value) {
        ASSERT_EQ(m_props->PropsSet(Of(name).get(), Of(value).get()), S_OK);
    }

    CHROMA_KEY_RAW Raw() const {
        CHROMA_KEY_RAW key = {};
        EXPECT_EQ(m_key->KeyRawGet(&key, nullptr), S_OK);
        return key;
    }
    CK_ADJUST Adjust() const {
        CHROMA_KEY_RAW key = {};
        CK_ADJUST adjust = {};
        EXPECT_EQ(m_key->KeyRawGet(&key, &adjust), S_OK);
        return adjust;
    }
    HRESULT RawSet(CHROMA_KEY_RAW key) { return m_key->KeyRawSet(&key, nullptr); }
    HRESULT RawSet(CHROMA_KEY_RAW key, CK_ADJUST adjust) { return m_key->KeyRawSet(&key, &adjust); }

    /// Each keeps what came out in `m_out`.
    HRESULT Detect(const std::string &options = "") { return m_key->KeyDetect(Of(options).get(), m_out.Put()); }
    HRESULT Add(int x, int y, const std::string &options = "") {
        return m_key->KeyAddPoint(x, y, Of(options).get(), m_out.Put());
    }
    HRESULT Exclude(int x, int y, const std::string &options = "") {
        return m_key->KeyExcludePoint(x, y, Of(options).get(), m_out.Put());
    }
    HRESULT Set(eCK_Adjust what, double value) { return m_key->KeyAdjustSet(what, value, m_out.Put()); }
    HRESULT Back() { return m_key->KeyStepBack(1, m_out.Put()); }
    HRESULT Forward() { return m_key->KeyStepFwd(1, m_out.Put()); }
    HRESULT Reset() { return m_key->KeyReset(m_out.Put()); }
    double Get(eCK_Adjust what) const {
        double value = -1;
        EXPECT_EQ(m_key->KeyAdjustGet(what, &value), S_OK);
        return value;
    }

    static Z_AV_PROPS PropsOf(IUnknown *object) {
        Z_AV_PROPS props = {};
        const ComPtr<IZFrame> frame = QueryFor<IZFrame>(object);
        EXPECT_EQ(frame ? frame->FrameAVPropsGet(&props) : E_NOINTERFACE, S_OK);
        return props;
    }

    /// Pixels of a 32-bit picture, in the order of memory and without padding; none of no frame.
    static std::vector<uint32_t> PixelsOf(IUnknown *object) {
        std::vector<uint32_t> pixels;
        const ComPtr<IZFrame> frame = QueryFor<IZFrame>(object);
        if (!frame) return pixels;
        const Z_VID_PROPS props = PropsOf(object).vidProps;
        int32_t bytes = 0;
        int64_t address = 0;
        EXPECT_EQ(frame->FrameVideoGetBytes(&bytes, &address), S_OK);
        const int rows = std::abs(props.nHeight);
        for (int y = 0; y < rows; ++y) {
            for (int x = 0; x < props.nWidth; ++x) {
                uint32_t pixel = 0;
                std::memcpy(&pixel, reinterpret_cast<const uint8_t *>(address) + int64_t{y} * props.nRowBytes + 4 * x, 4);
                pixels.push_back(pixel);
            }
        }
        return pixels;
    }
    std::vector<uint32_t> Pixels() const { return PixelsOf(m_out.get()); }
    /// Of a preview 32 pixels wide.
    uint32_t Pixel(int x, int y) const {
        const std::vector<uint32_t> pixels = Pixels();
        const auto at = static_cast<size_t>(y * 32 + x);
        return at < pixels.size() ? pixels[at] : 0xDEADDEAD;
    }

    ComPtr<IZFrames> m_frames;
    ComPtr<IZKey> m_key;
    ComPtr<IZProps> m_props;
    ComPtr<IUnknown> m_out;
};

}    // namespace zck::test
