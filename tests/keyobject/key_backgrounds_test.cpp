// Previews of a key object over a background.
#include <algorithm>
#include <cstring>

#include "tests/keyobject/key_frames_fixture.h"

namespace zck::test {
namespace {

/// Backgrounds that can be fitted and mixed.
class KeyBackgrounds : public KeyFramesTest {
protected:
    void SetUp() override {
        KeyFramesTest::SetUp();
        SetHalfGreen();
    }
    OwnFrameState Background() {
        OwnFrameState state = Own(8, 8);
        state.convertStatus = S_OK;
        state.overlayStatus = S_OK;
        state.onConvert = [this](const Z_VID_PROPS &wanted) { m_wanted.push_back(wanted); };
        state.onOverlay = [this](OwnFrameState &, IZFrame *over) { m_over = over; };
        return state;
    }
    HRESULT SetBackground(OwnFrameState state) { return m_key->KeyFrameSet(nullptr, OwnFrame::Create(std::move(state)).get()); }

    std::vector<Z_VID_PROPS> m_wanted;
    ComPtr<IZFrame> m_over;
};

TEST_F(KeyBackgrounds, AreFittedOnceAndMixedEachTime) {
    ASSERT_EQ(SetBackground(Background()), S_OK);
    ASSERT_EQ(RawSet(GreenKey()), S_OK);
    for (int i = 0; i < 3; ++i) {
        m_over.Reset();
        ASSERT_EQ(Preview(), S_OK);
        ASSERT_TRUE(m_over);
        EXPECT_EQ(PixelsOf(m_over.get())[0], 0u);
        EXPECT_EQ(Pixel(0, 0), 0x77777777u);
    }
    ASSERT_EQ(m_wanted.size(), 1u);
    EXPECT_EQ(m_wanted[0].nWidth, 32);
    EXPECT_EQ(m_wanted[0].nHeight, -16);
    EXPECT_EQ(m_wanted[0].fccType, eZFCC_Default);
    EXPECT_EQ(m_wanted[0].nRowBytes, 0);
    // Another size, and another background.
    ASSERT_EQ(SetBackground(Background()), S_OK);
    ASSERT_EQ(Preview(), S_OK);
    EXPECT_EQ(m_wanted.size(), 2u);
    const ComPtr<IZFrame> small = Frame(4, 4, HalfGreen);
    ASSERT_EQ(m_key->KeyFrameSet(small.get(), OwnFrame::Create(Background()).get()), S_OK);
    ASSERT_EQ(Preview(), S_OK);
    ASSERT_EQ(m_wanted.size(), 3u);
    EXPECT_EQ(m_wanted[2].nHeight, -4);
}

TEST_F(KeyBackgrounds, OfOtherFamiliesAreAskedForAPositiveHeight) {
    OwnFrameState state = Background();
    state.props.fccType = eZFCC_YUY2;
    ASSERT_EQ(SetBackground(state), S_OK);
    ASSERT_EQ(Preview(), S_OK);
    ASSERT_EQ(m_wanted.size(), 1u);
    EXPECT_EQ(m_wanted[0].nHeight, 16);
}

TEST_F(KeyBackgrounds, ThatCannotBeMixedAreShownPlain) {
    OwnFrameState state = Background();
    state.overlayStatus = E_FAIL;
    ASSERT_EQ(SetBackground(state), S_OK);
    EXPECT_EQ(Set(eCKA_Power, 0.5), S_OK);
    EXPECT_EQ(Pixel(20, 2), 0x77777777u);
}

TEST_F(KeyBackgrounds, ThatCannotBeFittedFailTheEditsPreview) {
    OwnFrameState state = Background();
    state.convertStatus = E_FAIL;
    ASSERT_EQ(SetBackground(state), S_OK);
    EXPECT_EQ(Set(eCKA_Power, 0.5), E_FAIL);
    EXPECT_FALSE(m_out);
    EXPECT_EQ(Get(eCKA_Power), 0.5);
}

TEST_F(KeyBackgrounds, OfTheLibraryShowThroughWhereTheKeyIs) {
    const ComPtr<IZFrame> background = Frame(8, 8, [](int, int) { return kBlue; });
    ASSERT_EQ(m_key->KeyFrameSet(nullptr, background.get()), S_OK);
    ASSERT_EQ(RawSet(GreenKey()), S_OK);
    ASSERT_EQ(Preview(), S_OK);
    ASSERT_TRUE(m_out);
    EXPECT_EQ(PropsOf(m_out.get()).vidProps.nWidth, 32);
    EXPECT_EQ(Pixel(2, 8), kBlue);
    EXPECT_NE(Pixel(20, 2), kBlue);
    // The background itself stays.
    EXPECT_EQ(PixelsOf(background.get()), std::vector<uint32_t>(64, kBlue));
    // One that states more pixels than it has cannot be fitted.
    Z_AV_PROPS stated = {};
    ASSERT_EQ(background->FrameAVPropsGet(&stated), S_OK);
    stated.vidProps.nHeight = -9;
    ASSERT_EQ(background->FrameAVPropsSet(&stated), S_OK);
    ASSERT_EQ(m_key->KeyFrameSet(nullptr, background.get()), S_OK);
    EXPECT_EQ(Set(eCKA_Power, 0.5), Z_E_INVALID_VIDEO_PROPS);
    EXPECT_FALSE(m_out);
}

// The mix of the wide view has no RGB24: the plain background is seen.
TEST_F(KeyBackgrounds, OfRgb24AreShownPlain) {
    const ComPtr<IZFrame> blue = Frame(32, 16, [](int, int) { return kBlue; });
    ComPtr<IZFrame> background;
    ASSERT_EQ(blue->FrameClone(background.Put(), eZFC_Video, eZFCC_RGB24), S_OK);
    ASSERT_EQ(m_key->KeyFrameSet(nullptr, background.get()), S_OK);
    ASSERT_EQ(RawSet(GreenKey()), S_OK);
    ASSERT_EQ(Preview(), S_OK);
    EXPECT_EQ(PropsOf(m_out.get()).vidProps.fccType, eZFCC_RGB24);
    int32_t size = 0;
    int64_t address = 0;
    ASSERT_EQ(QueryFor<IZFrame>(m_out.get())->FrameVideoGetBytes(&size, &address), S_OK);
    const auto *bytes = reinterpret_cast<const uint8_t *>(static_cast<uintptr_t>(address));
    for (int32_t i = 0; i < 32 * 16 * 3; ++i) ASSERT_EQ(bytes[i], static_cast<uint8_t>(kBlue >> (i % 3 * 8))) << i;
}

// Colours are those of a composite of the keyed pixels, already multiplied, over each pixel of the background.
TEST_F(KeyBackgrounds, ArePutTogetherByteByByte) {
    const ComPtr<IZFrame> background = Frame(
        32, 16, [](int x, int y) { return static_cast<uint32_t>(x) * 0x05030107u + static_cast<uint32_t>(y) * 0x0B0D1113u; });
    ASSERT_EQ(RawSet(GreenKey()), S_OK);
    ASSERT_EQ(Preview(), S_OK);
    const std::vector<uint32_t> front = PixelsOf(m_out.get());
    ASSERT_EQ(m_key->KeyFrameSet(nullptr, background.get()), S_OK);
    ASSERT_EQ(Preview(), S_OK);
    const std::vector<uint32_t> back = PixelsOf(background.get());
    const std::vector<uint32_t> made = PixelsOf(m_out.get());
    for (size_t i = 0; i < made.size(); ++i)
        for (int j = 0; j < 32; j += 8) {
            const uint32_t rest = 255 - (front[i] >> 24);
            const uint32_t sum = (front[i] >> j & 255) + ((back[i] >> j & 255) * rest + 127) / 255;
            ASSERT_EQ(std::min(sum, 255u), made[i] >> j & 255) << i << ", " << j;
        }
}

// Time comes from the keyed frame only where the background has none; its sound stays behind.
TEST_F(KeyBackgrounds, GiveThePreviewTheirRecordTimeAndData) {
    const auto dress = [](IZFrame *frame, double rate, int64_t start, const char *data) {
        Z_AV_PROPS props = {};
        ASSERT_EQ(frame->FrameAVPropsGet(&props), S_OK);
        props.vidProps.dblRate = rate;
        ASSERT_EQ(frame->FrameAVPropsSet(&props), S_OK);
        Z_TIME time = {};
        time.rtStartTime = start;
        ASSERT_EQ(frame->FrameTimeSet(&time), S_OK);
        ASSERT_EQ(frame->FrameDataSet(0x38303643, 4, reinterpret_cast<int64_t>(data)), S_OK);
    };
    const ComPtr<IZFrame> keyed = HalfGreenFrame();
    const ComPtr<IZFrame> background = Frame(32, 16, [](int, int) { return kBlue; });
    dress(keyed.get(), 25, 77, "abcd");
    dress(background.get(), 50, 500, "efgh");
    ASSERT_EQ(RawSet(GreenKey()), S_OK);
    for (const int64_t start : {500, 0}) {
        Z_TIME time = {};
        time.rtStartTime = start;
        ASSERT_EQ(background->FrameTimeSet(&time), S_OK);
        ASSERT_EQ(m_key->KeyFrameSet(keyed.get(), background.get()), S_OK);
        ASSERT_EQ(Preview(), S_OK);
        const ComPtr<IZFrame> preview = QueryFor<IZFrame>(m_out.get());
        ASSERT_TRUE(preview);
        EXPECT_EQ(PropsOf(preview.get()).vidProps.dblRate, 50);
        ASSERT_EQ(preview->FrameTimeGet(&time), S_OK);
        EXPECT_EQ(time.rtStartTime, start == 0 ? 77 : 500);
        int32_t bytes = 0;
        int64_t at = 0;
        ASSERT_EQ(preview->FrameDataGet(0x38303643, &bytes, &at), S_OK);
        EXPECT_EQ(std::memcmp(reinterpret_cast<const void *>(at), "efgh", 4), 0);
    }
}

}    // namespace
}    // namespace zck::test
