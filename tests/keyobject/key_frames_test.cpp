// The frames of a key object: what it takes, what it gives back, and what a preview is.
#include "keyobject/key_frames.h"

#include <cstring>

#include "keyobject/key_adjust.h"
#include "tests/keyobject/key_frames_fixture.h"

namespace zck::test {
namespace {

TEST_F(KeyFramesTest, WithoutAReferenceThereIsNoPreviewAndNoFailure) {
    ComPtr<IUnknown> background;
    m_out = m_key.get();
    IUnknown *filled = m_key.get();
    EXPECT_EQ(m_key->KeyFrameGet(&filled, background.Put()), S_OK);
    EXPECT_EQ(filled, nullptr);
    EXPECT_FALSE(background);
    EXPECT_EQ(m_key->KeyFrameGet(nullptr, nullptr), S_OK);
}

TEST_F(KeyFramesTest, ObjectsThatAreNoFramesAreRefusedBeforeAnythingChanges) {
    SetHalfGreen();
    const ComPtr<IZFrame> other = Frame(8, 8, [](int, int) { return kSkin; });
    EXPECT_EQ(m_key->KeyFrameSet(m_key.get(), other.get()), E_NOINTERFACE);
    EXPECT_EQ(m_key->KeyFrameSet(other.get(), m_key.get()), E_NOINTERFACE);
    ComPtr<IUnknown> background;
    EXPECT_EQ(m_key->KeyFrameGet(m_out.Put(), background.Put()), S_OK);
    EXPECT_EQ(PropsOf(m_out.get()).vidProps.nWidth, 32);
    EXPECT_FALSE(background);
}

TEST_F(KeyFramesTest, TheBackgroundComesBackAsItWasGiven) {
    const ComPtr<IZFrame> background = Frame(8, 8, [](int, int) { return kSkin; });
    const ComPtr<IUnknown> given = QueryFor<IUnknown>(background.get());
    ComPtr<IUnknown> out;
    ASSERT_EQ(m_key->KeyFrameSet(nullptr, background.get()), S_OK);
    ASSERT_EQ(m_key->KeyFrameGet(nullptr, out.Put()), S_OK);
    EXPECT_EQ(out.get(), given.get());
    // A reference alone clears it, and so does nothing at all.
    SetHalfGreen();
    ASSERT_EQ(m_key->KeyFrameGet(nullptr, out.Put()), S_OK);
    EXPECT_FALSE(out);
    ASSERT_EQ(m_key->KeyFrameSet(nullptr, background.get()), S_OK);
    ASSERT_EQ(m_key->KeyFrameSet(nullptr, nullptr), S_OK);
    ASSERT_EQ(m_key->KeyFrameGet(m_out.Put(), out.Put()), S_OK);
    EXPECT_FALSE(out);
    EXPECT_TRUE(m_out);
}

TEST_F(KeyFramesTest, ThePreviewIsKeyedAndPremultiplied) {
    SetHalfGreen();
    ASSERT_EQ(RawSet(GreenKey()), S_OK);
    ASSERT_EQ(Preview(), S_OK);
    EXPECT_EQ(Pixel(2, 8), 0u);
    EXPECT_EQ(Pixel(29, 8), kSkin);
    const Z_VID_PROPS props = PropsOf(m_out.get()).vidProps;
    EXPECT_EQ(props.fccType, eZFCC_ARGB32);
    EXPECT_EQ(props.nHeight, -16);
}

TEST_F(KeyFramesTest, AKeyThatKeysNothingGivesThePremultipliedClone) {
    const ComPtr<IZFrame> frame = Frame(32, 16, [](int, int) { return 0x80FF8040u; });
    ASSERT_EQ(m_key->KeyFrameSet(frame.get(), nullptr), S_OK);
    for (const eCK_Type type : {eCKT_Alpha, eCKT_None, eCKT_Auto}) {
        ASSERT_EQ(RawSet(GreenKey(type)), S_OK);
        ASSERT_EQ(Preview(), S_OK);
        EXPECT_EQ(Pixel(5, 5), 0x80804020u) << type;
        EXPECT_EQ(Raw().eType, type);
    }
    // The reference itself is as it was.
    EXPECT_EQ(PixelsOf(frame.get())[0], 0x80FF8040u);
}

TEST_F(KeyFramesTest, Rgb32WithoutAlphaIsBlackAsLongAsNoKeyActs) {
    Z_VID_PROPS props = PropsOf(32, 16, eZFCC_RGB32);
    std::vector<uint8_t> bytes = BytesOf(32, 16, [](int, int) { return kSkin & 0xFFFFFF; });
    ComPtr<IZFrame> frame;
    ASSERT_EQ(m_frames->FrameCreateFromProps(&props, reinterpret_cast<int64_t>(bytes.data()), frame.Put(), nullptr), S_OK);
    ASSERT_EQ(m_key->KeyFrameSet(frame.get(), nullptr), S_OK);
    ASSERT_EQ(Preview(), S_OK);
    EXPECT_EQ(Pixel(5, 5), 0u);
    ASSERT_EQ(RawSet(GreenKey()), S_OK);
    ASSERT_EQ(Preview(), S_OK);
    EXPECT_EQ(Pixel(5, 5), kSkin);
}

TEST_F(KeyFramesTest, ThePreviewHasTheReferencesTimeAndData) {
    const ComPtr<IZFrame> frame = HalfGreenFrame();
    Z_TIME time = {};
    time.rtStartTime = 77;
    ASSERT_EQ(frame->FrameTimeSet(&time), S_OK);
    const char data[] = "abcd";
    ASSERT_EQ(frame->FrameDataSet(0x38303643, 4, reinterpret_cast<int64_t>(data)), S_OK);
    ASSERT_EQ(m_key->KeyFrameSet(frame.get(), nullptr), S_OK);
    ASSERT_EQ(Preview(), S_OK);
    const ComPtr<IZFrame> preview = QueryFor<IZFrame>(m_out.get());
    ASSERT_TRUE(preview);
    Z_TIME got = {};
    ASSERT_EQ(preview->FrameTimeGet(&got), S_OK);
    EXPECT_EQ(got.rtStartTime, 77);
    int32_t bytes = 0;
    int64_t at = 0;
    EXPECT_EQ(preview->FrameDataGet(0x38303643, &bytes, &at), S_OK);
    EXPECT_EQ(bytes, 4);
}

TEST_F(KeyFramesTest, PreviewsAreNewFramesEachTime) {
    SetHalfGreen();
    ASSERT_EQ(Preview(), S_OK);
    const ComPtr<IUnknown> first = m_out;
    ASSERT_EQ(Preview(), S_OK);
    EXPECT_NE(first.get(), m_out.get());
    // What is written into one reaches neither the next nor the reference.
    const ComPtr<IZFrame> frame = QueryFor<IZFrame>(m_out.get());
    int32_t bytes = 0;
    int64_t at = 0;
    ASSERT_EQ(frame->FrameVideoGetBytes(&bytes, &at), S_OK);
    std::memset(reinterpret_cast<void *>(at), 0x55, static_cast<size_t>(bytes));
    ASSERT_EQ(Preview(), S_OK);
    EXPECT_EQ(Pixels(), PixelsOf(first.get()));
}

TEST_F(KeyFramesTest, PreviewsFollowTheOwnerOfATopDownReference) {
    const ComPtr<IZFrame> frame = HalfGreenFrame();
    ASSERT_EQ(m_key->KeyFrameSet(frame.get(), nullptr), S_OK);
    int32_t bytes = 0;
    int64_t at = 0;
    ASSERT_EQ(frame->FrameVideoGetBytes(&bytes, &at), S_OK);
    std::memset(reinterpret_cast<void *>(at), 0xFF, 4);
    ASSERT_EQ(Preview(), S_OK);
    EXPECT_EQ(Pixel(0, 0), 0xFFFFFFFFu);
}

TEST_F(KeyFramesTest, OtherFormatsAreConvertedOnce) {
    ASSERT_EQ(RawSet(GreenKey()), S_OK);
    Z_VID_PROPS props = PropsOf(32, 16, eZFCC_RGB24);
    props.nHeight = 16;    // bottom-up
    props.nRowBytes = 96;
    std::vector<uint8_t> bytes;
    for (int i = 0; i < 32 * 16; ++i) {
        const uint32_t pixel = i < 32 ? kGreen : kSkin;    // the row at the bottom
        for (uint32_t shift = 0; shift < 24; shift += 8) bytes.push_back(static_cast<uint8_t>(pixel >> shift));
    }
    ComPtr<IZFrame> frame;
    ASSERT_EQ(m_frames->FrameCreateFromProps(&props, reinterpret_cast<int64_t>(bytes.data()), frame.Put(), nullptr), S_OK);
    ASSERT_EQ(m_key->KeyFrameSet(frame.get(), nullptr), S_OK);
    CK_ADJUST adjust = AdjustDefaults();
    adjust.dblSmooth = 0;
    ASSERT_EQ(RawSet(GreenKey(), adjust), S_OK);
    ASSERT_EQ(Preview(), S_OK);
    EXPECT_EQ(PropsOf(m_out.get()).vidProps.nHeight, -16);
    EXPECT_EQ(Pixel(5, 15), 0u);
    EXPECT_EQ(Pixel(5, 0), kSkin);
}

TEST_F(KeyFramesTest, AFailingCloneLeavesAReferenceWithoutAView) {
    SetHalfGreen();
    const ComPtr<IZFrame> background = Frame(8, 8, [](int, int) { return kSkin; });
    ASSERT_EQ(m_key->KeyFrameSet(nullptr, background.get()), S_OK);
    for (const HRESULT status : {E_OUTOFMEMORY, S_OK}) {
        OwnFrameState state = Own();
        state.cloneStatus = status;
        state.cloneEmpty = true;
        EXPECT_EQ(SetOwn(state), status == S_OK ? E_UNEXPECTED : status);
        ComPtr<IUnknown> out;
        EXPECT_EQ(m_key->KeyFrameGet(m_out.Put(), out.Put()), S_OK);
        EXPECT_FALSE(m_out);
        EXPECT_TRUE(out);
        // An adjustment changes the key, and only then finds no view.
        EXPECT_EQ(Set(eCKA_Power, 0.5), kVfwEWrongState);
        EXPECT_FALSE(m_out);
        EXPECT_EQ(Get(eCKA_Power), 0.5);
    }
}

TEST_F(KeyFramesTest, AReferenceWithoutPixelsIsTakenAndGivesNoPreview) {
    OwnFrameState state = Own();
    state.bytes.clear();
    ASSERT_EQ(SetOwn(state), S_OK);
    EXPECT_EQ(Set(eCKA_Power, 0.5), kVfwEInvalidMediaType);
    EXPECT_EQ(Get(eCKA_Power), 0.5);
    EXPECT_EQ(Back(), kVfwEInvalidMediaType);
    EXPECT_EQ(Reset(), kVfwEInvalidMediaType);
    EXPECT_FALSE(m_out);
    // The same by a frame of the library.
    ComPtr<IZFrame> empty;
    ASSERT_EQ(m_frames->FrameCreate(0, nullptr, empty.Put()), S_OK);
    ASSERT_EQ(m_key->KeyFrameSet(empty.get(), nullptr), S_OK);
    EXPECT_EQ(Reset(), kVfwEInvalidMediaType);
}

TEST_F(KeyFramesTest, RecordsThatDoNotSuitThePixelsAreRefused) {
    const std::pair<const char *, std::function<void(OwnFrameState &)>> cases[] = {
        {"short", [](OwnFrameState &s) { s.bytes.resize(32 * 16 * 4 - 1); }},
        {"told short", [](OwnFrameState &s) { s.told = 32 * 16 * 4 - 1; }},
        {"negative", [](OwnFrameState &s) { s.told = -1; }},
        {"format", [](OwnFrameState &s) { s.props.fccType = eZFCC_YUY2; }},
        {"width", [](OwnFrameState &s) { s.props.nWidth = 0; }},
        {"negative width", [](OwnFrameState &s) { s.props.nWidth = -32; }},
        {"height", [](OwnFrameState &s) { s.props.nHeight = 0; }},
        {"rows", [](OwnFrameState &s) { s.props.nRowBytes = 127; }},
        {"negative rows", [](OwnFrameState &s) { s.props.nRowBytes = -128; }},
        {"huge", [](OwnFrameState &s) { s.props.nHeight = INT32_MIN; }},
        {"wraps", [](OwnFrameState &s) { s.props.nRowBytes = 0x40000000, s.props.nHeight = 4; }},
    };
    for (const auto &[name, change] : cases) {
        OwnFrameState state = Own();
        change(state);
        ASSERT_EQ(SetOwn(state), S_OK) << name;
        EXPECT_EQ(Reset(), kVfwEInvalidMediaType) << name;
        EXPECT_FALSE(m_out) << name;
    }
}

TEST_F(KeyFramesTest, ALastRowMayEndWithItsPixels) {
    OwnFrameState state = Own();
    state.props.nWidth = 30;
    state.bytes.resize(32 * 16 * 4 - 8);
    ASSERT_EQ(SetOwn(state), S_OK);
    ASSERT_EQ(RawSet(GreenKey()), S_OK);
    ASSERT_EQ(Preview(), S_OK);
    const std::vector<uint32_t> pixels = Pixels();
    ASSERT_EQ(pixels.size(), 30u * 16);
    EXPECT_EQ(pixels[0], 0u);
    EXPECT_EQ(pixels.back(), kSkin);
}

TEST_F(KeyFramesTest, CutsArePreviewedLikeTheirOwnPictures) {
    const ComPtr<IZFrame> frame = HalfGreenFrame();
    tagRECT rect = {3, 2, 29, 16};
    ComPtr<IZFrame> cut;
    ASSERT_EQ(frame->FrameCut(-1, &rect, cut.Put()), S_OK);
    const ComPtr<IZFrame> whole = Frame(26, 14, [](int x, int) { return HalfGreen(x + 3, 0); });
    std::vector<uint32_t> expected;
    for (IZFrame *reference : {whole.get(), cut.get()}) {
        ASSERT_EQ(m_key->KeyFrameSet(reference, nullptr), S_OK);
        ASSERT_EQ(RawSet(GreenKey()), S_OK);
        ASSERT_EQ(Preview(), S_OK);
        if (reference == whole.get()) expected = Pixels();
    }
    EXPECT_EQ(Pixels(), expected);
    EXPECT_EQ(expected.size(), 26u * 14);
}

TEST_F(KeyFramesTest, AForeignBottomUpViewStaysSo) {
    OwnFrameState state = Own();
    state.props.nHeight = 16;
    ASSERT_EQ(SetOwn(state), S_OK);
    ASSERT_EQ(Preview(), S_OK);
    EXPECT_EQ(PropsOf(m_out.get()).vidProps.nHeight, 16);
}

TEST_F(KeyFramesTest, SmallPicturesCannotBeSmoothed) {
    CK_ADJUST adjust = AdjustDefaults();
    for (const auto &[width, height] : {std::pair(2, 16), {32, 2}, {1, 1}}) {
        const ComPtr<IZFrame> frame = Frame(width, height, [](int, int) { return kGreen; });
        ASSERT_EQ(m_key->KeyFrameSet(frame.get(), nullptr), S_OK);
        ASSERT_EQ(RawSet(GreenKey(), adjust), S_OK);
        EXPECT_EQ(Set(eCKA_Power, 0.25), StatusOf(0xFFFFFFFA));
        EXPECT_EQ(Get(eCKA_Power), 0.25);
        EXPECT_FALSE(m_out);
        EXPECT_EQ(Set(eCKA_Smooth, 0), S_OK);
        EXPECT_EQ(Pixels().size(), static_cast<size_t>(width * height));
    }
}

TEST_F(KeyFramesTest, FieldsFollowTheKeyAndNotTheFrame) {
    const ComPtr<IZFrame> frame = Frame(32, 16, [](int x, int y) { return (x / 3 + y / 3) % 2 == 0 ? kGreen : kSkin; });
    Z_AV_PROPS props = PropsOf(frame.get());
    std::vector<uint32_t> previews[2][2];
    for (const eZInterlace interlace : {eZI_Progressive, eZI_Field1First}) {
        props.vidProps.eInterlace = interlace;
        ASSERT_EQ(frame->FrameAVPropsSet(&props), S_OK);
        ASSERT_EQ(m_key->KeyFrameSet(frame.get(), nullptr), S_OK);
        for (const int fields : {0, 1}) {
            CHROMA_KEY_RAW key = GreenKey();
            key.nInterlacedVideo = fields;
            ASSERT_EQ(RawSet(key), S_OK);
            ASSERT_EQ(Preview(), S_OK);
            previews[interlace == eZI_Progressive ? 0 : 1][fields] = Pixels();
            EXPECT_EQ(PropsOf(m_out.get()).vidProps.eInterlace, interlace);
        }
    }
    EXPECT_EQ(previews[0][0], previews[1][0]);
    EXPECT_EQ(previews[0][1], previews[1][1]);
    EXPECT_NE(previews[0][0], previews[0][1]);
}

TEST_F(KeyFramesTest, MillionsOfRoundsOfSmoothingAreBounded) {
    SetHalfGreen();
    ASSERT_EQ(RawSet(GreenKey()), S_OK);
    // Planes rest after fewer rounds than this; a pair more changes nothing.
    ASSERT_EQ(Set(eCKA_Smooth, 400.0), S_OK);
    const std::vector<uint32_t> rested = Pixels();
    ASSERT_EQ(Set(eCKA_Smooth, 1e12), S_OK);
    EXPECT_EQ(Raw().nEdgesSmooth, INT32_MAX);
    const std::vector<uint32_t> odd = Pixels();
    ASSERT_EQ(Set(eCKA_Smooth, 200000000.0), S_OK);
    EXPECT_EQ(Pixels(), rested);
    ASSERT_EQ(Set(eCKA_Smooth, 400.1), S_OK);
    EXPECT_EQ(Pixels(), odd);
}

TEST_F(KeyFramesTest, ForeignFramesMayCallBack) {
    OwnFrameState state = Own();
    int depth = 0;
    HRESULT inside = E_FAIL;
    state.onClone = [&](eZFrameClone) {
        if (depth++ != 0) return;
        ComPtr<IUnknown> out;
        inside = m_key->KeyAdjustSet(eCKA_Transparent, 0.75, out.Put());
        CHROMA_KEY_RAW key = {};
        EXPECT_EQ(m_key->KeyRawGet(&key, nullptr), S_OK);
    };
    depth = 1;
    ASSERT_EQ(SetOwn(state), S_OK);
    depth = 0;
    EXPECT_EQ(Set(eCKA_Power, 0.5), S_OK);
    EXPECT_EQ(inside, S_OK);
    EXPECT_EQ(Get(eCKA_Power), 0.5);
    EXPECT_EQ(Get(eCKA_Transparent), 0.75);
    m_key->KeyFrameSet(HalfGreenFrame().get(), nullptr);
}

TEST_F(KeyFramesTest, ReplacedFramesDieOutsideOfTheLocks) {
    int calls = 0;
    OwnFrameState state = Own();
    state.onRelease = [&] {
        ++calls;
        ComPtr<IUnknown> out;
        EXPECT_EQ(m_key->KeyFrameGet(nullptr, out.Put()), S_OK);
        EXPECT_EQ(m_key->KeyFrameSet(nullptr, nullptr), S_OK);
    };
    ASSERT_EQ(m_key->KeyFrameSet(OwnFrame::Create(state).get(), nullptr), S_OK);
    SetHalfGreen();
    EXPECT_EQ(calls, 1);
    ASSERT_EQ(m_key->KeyFrameSet(nullptr, OwnFrame::Create(state).get()), S_OK);
    ASSERT_EQ(m_key->KeyFrameSet(nullptr, nullptr), S_OK);
    EXPECT_EQ(calls, 2);
}

}    // namespace
}    // namespace zck::test
