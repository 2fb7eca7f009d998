// A plug-in, frames and a key for the tests of this folder.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "frames/factory/factory.h"
#include "frames/media/pixel_format.h"
#include "keying/plugin/chroma_key.h"
#include "platform/status.h"
#include "tests/support/awaited_keyer.h"
#include "zchromakey/zchromakey.h"

namespace zck {

inline constexpr int kWidth = 64;
inline constexpr int kHeight = 32;
inline constexpr uint32_t kGreen = 0xFF10C020;
inline constexpr uint32_t kSkin = 0xFF8090D0;

/// A plug-in, a frame factory and a key that takes pure screen pixels out.
class KeyerTest : public ::testing::Test {
protected:
    void SetUp() override {
        Create();
        ASSERT_EQ(FrameFactoryCreate(IID_IZFrames, reinterpret_cast<void **>(m_frames.Put())), S_OK);
    }

    /// Another plug-in takes the place of the present one.
    void Create() {
        ASSERT_EQ(CreateObject<test::AwaitedKeyer>(nullptr, IID_IZPlugin, reinterpret_cast<void **>(m_plugin.Put())), S_OK);
        m_key = QueryFor<IZChromaKey>(m_plugin.get());
        m_props = QueryFor<IZProps>(m_plugin.get());
        ASSERT_TRUE(m_key && m_props);
    }

    void AwaitOutput() { test::AwaitedKeyer::AwaitOutput(m_plugin.get()); }

    std::string Get(const char *name) {
        const Bstr bsName(TextFromUtf8(name));
        Bstr value;
        const HRESULT hr = m_props->PropsGet(bsName.get(), value.Put());
        return hr == S_OK ? Utf8FromText(value.view()) : "status " + std::to_string(hr);
    }

    void Set(const char *name, const char *value) {
        const Bstr bsName(TextFromUtf8(name));
        const Bstr bsValue(TextFromUtf8(value));
        ASSERT_EQ(m_props->PropsSet(bsName.get(), bsValue.get()), S_OK);
    }

    void SetKey(eCK_Type type) {
        CHROMA_KEY_RAW key{};
        key.eType = type;
        key.nKeysUsed = 1;
        key.arrKeys[0].nValue = 0x0020C010;    // red in the low byte
        key.arrKeys[0].nDelta = 0x00282828;
        key.arrKeys[0].nSmoothRange = 20;
        key.nMaxTransparent = 255;
        ASSERT_EQ(m_key->KeyRawSet(&key), S_OK);
    }

    /// Green on the left half, skin on the right one, top-down.
    ComPtr<IZFrame> Frame(eZFCC fcc = eZFCC_RGB32, int width = kWidth, int height = kHeight) {
        Z_VID_PROPS props{};
        props.fccType = fcc;
        props.nWidth = width;
        props.nHeight = -height;
        props.nRowBytes = RowBytes(fcc, width);
        props.eInterlace = eZI_Progressive;
        std::vector<uint32_t> pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
        for (std::size_t i = 0; i < pixels.size(); ++i)
            pixels[i] = i % static_cast<std::size_t>(width) < static_cast<std::size_t>(width) / 2 ? kGreen : kSkin;
        ComPtr<IZFrame> frame;
        EXPECT_EQ(m_frames->FrameCreateFromProps(&props, reinterpret_cast<int64_t>(pixels.data()), frame.Put(), nullptr), S_OK);
        return frame;
    }

    static std::vector<uint32_t> Pixels(IZFrame *frame) {
        int32_t bytes = 0;
        int64_t address = 0;
        if (frame == nullptr) {
            ADD_FAILURE() << "no frame";
            return std::vector<uint32_t>(kWidth * kHeight);
        }
        EXPECT_EQ(frame->FrameVideoGetBytes(&bytes, &address), S_OK);
        std::vector<uint32_t> pixels(static_cast<std::size_t>(bytes) / 4);
        if (!pixels.empty()) std::memcpy(pixels.data(), reinterpret_cast<const void *>(address), pixels.size() * 4);
        return pixels;
    }

    static uint32_t At(const std::vector<uint32_t> &pixels, int x, int y) {
        return pixels[static_cast<std::size_t>(y * kWidth + x)];
    }

    ComPtr<IZPlugin> m_plugin;
    ComPtr<IZFrames> m_frames;
    ComPtr<IZChromaKey> m_key;
    ComPtr<IZProps> m_props;
};

}    // namespace zck
