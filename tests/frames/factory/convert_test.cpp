// Clones in another pixel format, whole and unfilled.
#include "imaging/colour/convert.h"

#include <algorithm>
#include <cstring>

#include "frames/media/pixel_format.h"
#include "frames/views/frame_shell.h"
#include "imaging/convert/img_convert.h"
#include "tests/frames/object/foreign_frame.h"
#include "tests/frames/object/frame_fixture.h"
#include "tests/support/formats.h"

namespace zck::test {
namespace {

constexpr int32_t kC608 = 0x38303643;

class ConvertedClones : public FrameTest {
protected:
    // The target of a conversion that starts from zeroed bytes.
    static std::vector<uint8_t> Expected(const Z_VID_PROPS &from, const std::vector<uint8_t> &pixels, const Z_VID_PROPS &to) {
        std::vector<uint8_t> bytes(static_cast<size_t>(FrameBufferSize(&to)));
        EXPECT_EQ(S_OK, ConvertSameGeometry(pixels.data(), static_cast<int64_t>(pixels.size()), bytes.data(),
                                            static_cast<int64_t>(bytes.size()), &from, &to));
        return bytes;
    }

    static bool AllZero(const std::vector<uint8_t> &bytes) {
        return std::all_of(bytes.begin(), bytes.end(), [](uint8_t b) { return b == 0; });
    }

    // Leaves sections with other pixels in the pool.
    void Soil(int32_t size) {
        std::vector<ComPtr<IZFrame>> frames(4);
        for (auto &frame : frames) {
            ASSERT_EQ(S_OK, m_factory->FrameCreate(size, nullptr, frame.Put()));
            std::memset(VideoOf(frame).data(), 0xEE, static_cast<size_t>(size));
        }
    }
};

TEST_F(ConvertedClones, EveryRouteGivesTheBytesOfTheConversion) {
    const eZFCC formats[] = {eZFCC_ARGB32, eZFCC_RGB32, eZFCC_RGB24, eZFCC_UYVY, eZFCC_HDYC, eZFCC_YUY2, eZFCC_v210};
    for (const eZFCC from : formats) {
        for (const int32_t sign : {-1, 1}) {
            if (sign < 0 && !IsRgbFormat(from)) continue;
            for (const int32_t width : {48, 47, 46, 45, 1}) {
                const auto frame = SoundFrame(Record(from, width, sign * 6));
                const Z_VID_PROPS source = PropsOf(frame).vidProps;
                for (const eZFCC to : formats) {
                    const bool same =
                        from == to || (from == eZFCC_UYVY && to == eZFCC_HDYC) || (from == eZFCC_HDYC && to == eZFCC_UYVY);
                    if (same && !(IsRgbFormat(to) && sign > 0)) continue;
                    if (IsRgbFormat(from) && IsRgbFormat(to) && sign < 0 && from != eZFCC_RGB24 && to != eZFCC_RGB24) continue;
                    Z_VID_PROPS target = source;
                    target.fccType = to;
                    target.nRowBytes = RowBytes(to, width);
                    target.nHeight = IsRgbFormat(to) ? -6 : 6;
                    Soil(FrameBufferSize(&target));
                    ComPtr<IZFrame> clone;
                    const HRESULT hr = frame->FrameClone(clone.Put(), eZFC_Props, to);
                    ASSERT_EQ(S_OK, hr) << std::hex << from << " to " << to;
                    if (to == eZFCC_v210 && IsRgbFormat(from)) {
                        // Not provided: the failure of the conversion is forgotten.
                        EXPECT_TRUE(AllZero(VideoOf(clone).Copy())) << width;
                        continue;
                    }
                    EXPECT_EQ(Expected(source, VideoOf(frame).Copy(), target), VideoOf(clone).Copy())
                        << std::hex << from << " to " << to << std::dec << " width " << width << " sign " << sign;
                    const Z_AV_PROPS made = PropsOf(clone);
                    EXPECT_EQ(0, std::memcmp(&target, &made.vidProps, sizeof(target)));
                    // Sound always comes along, whatever the type.
                    EXPECT_EQ(400, AudioOf(clone).size);
                    EXPECT_EQ(5, made.audProps.nTrackSplitBits);
                    EXPECT_EQ(3, made.bLocked);
                }
            }
        }
    }
}

TEST_F(ConvertedClones, DataComesTextsAndObjectsDoNot) {
    const auto frame = SoundFrame(Record(eZFCC_UYVY, 64, 48));
    const auto tessilu = As<IZFFrame>(frame);
    EXPECT_EQ(S_OK, frame->FrameDataSet(kC608, 0, 5));
    EXPECT_EQ(S_OK, tessilu->ZFObjectSet(Bstr(ZCK_TEXT("o")).get(), m_factory.get()));
    EXPECT_EQ(S_OK, tessilu->ZFTextSet(Bstr(ZCK_TEXT("t")).get(), Bstr(ZCK_TEXT("__zf_remove__")).get()));
    ComPtr<IZFFrame> clones[2];
    ASSERT_EQ(S_OK, tessilu->ZFClone(clones[0].Put(), eZFC_Full, eZFCC_ARGB32));
    clones[1] = As<IZFFrame>(Clone(frame.get(), eZFC_Full, eZFCC_ARGB32));
    for (const auto &clone : clones) {
        ZF_INFO info = {};
        ASSERT_EQ(S_OK, clone->ZFInfoGet(&info));
        EXPECT_EQ(1, info.nDataCount);
        EXPECT_EQ(0, info.nObjectCount);
        EXPECT_EQ(0, info.nTextCount);
        EXPECT_EQ(eZFCC_ARGB32, info.avProps.vidProps.fccType);
        EXPECT_EQ(-48, info.avProps.vidProps.nHeight);
        EXPECT_EQ(400, info.cbAudio);
        EXPECT_EQ(1234567, info.time.rtStartTime);
        EXPECT_EQ(2, info.avProps.audProps.nChannels);
    }
    EXPECT_EQ(VideoOf(As<IZFrame>(clones[0])).Copy(), VideoOf(As<IZFrame>(clones[1])).Copy());
    EXPECT_EQ(S_OK, tessilu->ZFObjectSet(Bstr(ZCK_TEXT("o")).get(), nullptr));
}

TEST_F(ConvertedClones, ForeignFramesOfBothFamilies) {
    ForeignState state;
    state.props.vidProps = Record(eZFCC_UYVY, 64, 48);
    state.video = Pattern(64 * 48 * 2);
    state.audio = Pattern(40);
    const auto ours = Frame(state.props.vidProps);
    const std::vector<uint8_t> expected = VideoOf(Clone(ours.get(), eZFC_Full, eZFCC_ARGB32)).Copy();

    const auto quorvex = ForeignCreate<ForeignQuorvex, IZFrame_I>(state);
    ComPtr<IZFrame_I> clone;
    ASSERT_EQ(S_OK, m_factory->FrameCloneConvert(quorvex.get(), clone.Put(), eZFC_VideoRef, eZFCC_ARGB32));
    EXPECT_EQ(expected, VideoOf(clone).Copy());
    EXPECT_EQ(state.audio, AudioOf(clone).Copy());

    const auto tessilu = ForeignCreate<ForeignTessilu, IZFFrame>(state);
    ComPtr<IZFFrame> other;
    const auto factory = As<IZFFactory>(m_factory);
    ASSERT_EQ(S_OK, factory->ZFCloneConvert(tessilu.get(), other.Put(), eZFC_VideoRef, eZFCC_ARGB32));
    EXPECT_EQ(expected, VideoOf(As<IZFrame>(other)).Copy());
    EXPECT_EQ(state.audio, AudioOf(As<IZFrame>(other)).Copy());
    ASSERT_EQ(S_OK, factory->ZFCloneConvert(quorvex.get(), other.Put(), eZFC_VideoRef, eZFCC_ARGB32));
    EXPECT_EQ(expected, VideoOf(As<IZFrame>(other)).Copy());

    // From another process, through the section.
    state.process += 1;
    state.video.clear();
    state.videoSize = 64 * 48 * 2;
    ASSERT_EQ(S_OK, ours->FrameBufferIdGet(&state.section));
    ASSERT_EQ(S_OK, m_factory->FrameCloneConvert(quorvex.get(), clone.Put(), eZFC_Full, eZFCC_ARGB32));
    EXPECT_EQ(expected, VideoOf(clone).Copy());
    EXPECT_EQ(state.audio, AudioOf(clone).Copy());
}

struct AbsurdCase {
    const char *name;
    HRESULT status;
    Z_VID_PROPS (*change)(Z_VID_PROPS);
};

TEST_F(ConvertedClones, RecordsThatStateMoreThanThereIsAreRefused) {
    const AbsurdCase cases[] = {
        {"one row more", kVfwEInvalidMediaType, [](Z_VID_PROPS p) { return ++p.nHeight, p; }},
        {"longer rows", kVfwEInvalidMediaType, [](Z_VID_PROPS p) { return p.nRowBytes += 4, p; }},
        {"wider", kVfwEInvalidMediaType, [](Z_VID_PROPS p) { return p.nWidth += 2, p; }},
        {"huge", kVfwEInvalidMediaType, [](Z_VID_PROPS p) { return p.nWidth = p.nHeight = p.nRowBytes = INT32_MAX, p; }},
        {"lowest", kVfwEInvalidMediaType, [](Z_VID_PROPS p) { return p.nHeight = INT32_MIN, p; }},
        {"another format", kVfwEInvalidMediaType, [](Z_VID_PROPS p) { return p.fccType = eZFCC_RGB24, p; }},
        {"a standard format without size", kVfwEInvalidMediaType,
         [](Z_VID_PROPS p) { return p.eVideoFormat = eZVF_PAL, p.nWidth = 0, p; }},
        {"a smaller format than the rows", kVfwEInvalidMediaType, [](Z_VID_PROPS p) { return p.fccType = eZFCC_NV12, p; }},
        {"nothing", kVfwEInvalidMediaType, [](Z_VID_PROPS) { return Z_VID_PROPS{}; }},
    };
    for (const AbsurdCase &c : cases) {
        const auto frame = Frame(Record(eZFCC_UYVY, 64, 48));
        Z_AV_PROPS props = PropsOf(frame);
        props.vidProps = c.change(props.vidProps);
        ASSERT_EQ(S_OK, frame->FrameAVPropsSet(&props));
        ComPtr<IZFrame> clone;
        EXPECT_EQ(c.status, frame->FrameClone(clone.Put(), eZFC_Full, eZFCC_ARGB32)) << c.name;
        EXPECT_FALSE(clone) << c.name;
        ComPtr<IZFFrame> other;
        EXPECT_EQ(c.status, As<IZFFrame>(frame)->ZFClone(other.Put(), eZFC_Full, eZFCC_ARGB32)) << c.name;
        EXPECT_FALSE(other) << c.name;
        // A plain copy takes the bytes as they are.
        EXPECT_EQ(S_OK, frame->FrameClone(clone.Put(), eZFC_Full, eZFCC_Default)) << c.name;
    }
}

// Rows of packed formats are never shorter than their pixels, so that an absurd number counts as the regular one.
TEST_F(ConvertedClones, NegativeRowBytesAreTheRegularOnes) {
    const auto frame = Frame(Record(eZFCC_UYVY, 64, 48));
    const std::vector<uint8_t> expected = VideoOf(Clone(frame.get(), eZFC_Full, eZFCC_ARGB32)).Copy();
    Z_AV_PROPS props = PropsOf(frame);
    props.vidProps.nRowBytes = INT32_MIN;
    ASSERT_EQ(S_OK, frame->FrameAVPropsSet(&props));
    EXPECT_EQ(expected, VideoOf(Clone(frame.get(), eZFC_Full, eZFCC_ARGB32)).Copy());
}

// A height of 1 asks for the format's height elsewhere; with row bytes it is the one line that the buffer has.
TEST_F(ConvertedClones, OneLinePicturesAreOneLine) {
    ComPtr<IZFrame_I> frame;
    ASSERT_EQ(S_OK, m_factory->FrameAlloc(2560, 0, nullptr, frame.Put()));
    const std::vector<uint8_t> pixels = Pattern(2560);
    std::memcpy(VideoOf(frame).data(), pixels.data(), pixels.size());
    Z_AV_PROPS props = {};
    props.vidProps = VideoPropsFromFormat(eZVF_HD720_50p, eZFCC_UYVY);
    props.vidProps.nHeight = 1;
    ASSERT_EQ(S_OK, frame->FrameAVPropsSet(&props));
    const auto clone = Clone(frame.get(), eZFC_Full, eZFCC_ARGB32);
    ASSERT_TRUE(clone);
    EXPECT_EQ(5120, VideoOf(clone).size);
    Z_VID_PROPS target = props.vidProps;
    target.fccType = eZFCC_ARGB32;
    target.nHeight = -1;
    target.nRowBytes = 5120;
    EXPECT_EQ(Expected(props.vidProps, pixels, target), VideoOf(clone).Copy());
}

// Between planes, YVYU and everything else, over soiled buffers; an odd last column is 0.
TEST_F(ConvertedClones, PlanesAndYvyuAreConverted) {
    const std::vector<eZFCC> formats = test::PictureFormats();
    ImgScaleState state;
    for (const eZFCC from : formats)
        for (const eZFCC to : formats)
            for (const int32_t width : {48, 47, 1}) {
                if (ConvertRouteFind(from, to) != nullptr || from == to) continue;
                Z_VID_PROPS source = Record(from, width, 6);
                if (IsPlanarFormat(from)) source.nRowBytes = width;
                const auto frame = Frame(source);
                Z_VID_PROPS target = source;
                target.fccType = to;
                target.nRowBytes = RowBytes(to, width);
                target.nHeight = IsRgbFormat(to) ? -6 : 6;
                Soil(FrameBufferSize(&target));
                const std::vector<uint8_t> pixels = VideoOf(frame).Copy();
                std::vector<uint8_t> expected(static_cast<size_t>(FrameBufferSize(&target)));
                const HRESULT hr = ImgConvert(&state, pixels.data(), static_cast<int64_t>(pixels.size()), expected.data(),
                                              static_cast<int64_t>(expected.size()), &source, &target);
                ASSERT_EQ(width == 1 ? S_FALSE : S_OK, hr);
                ASSERT_EQ(width == 1, AllZero(expected));
                const auto clone = Clone(frame.get(), eZFC_Full, to);
                ASSERT_TRUE(clone) << std::hex << from << " to " << to;
                EXPECT_EQ(expected, VideoOf(clone).Copy())
                    << std::hex << from << " to " << to << std::dec << " width " << width;
                const Z_AV_PROPS made = PropsOf(clone);
                EXPECT_EQ(0, std::memcmp(&target, &made.vidProps, sizeof(target)));
            }
}

TEST_F(ConvertedClones, FormatsWithoutConversionGiveZeros) {
    std::vector<std::pair<eZFCC, eZFCC>> pairs = {
        {eZFCC_ARGB32, eZFCC_v210}, {eZFCC_v210, eZFCC_I420}, {eZFCC_I420, eZFCC_v210}};
    const auto closed = [](const FormatRow &row) {
        return (row.bPacked || row.bPlanar) && row.pixels == PixelClass::None && row.route == RouteClass::None;
    };
    for (const eZFCC none : test::FormatsWhere(closed)) {
        pairs.emplace_back(none, eZFCC_ARGB32);
        pairs.emplace_back(eZFCC_UYVY, none);
    }
    for (const auto &[from, to] : pairs) {
        Z_VID_PROPS source = Record(from, 48, 6);
        if (IsPlanarFormat(from)) source.nRowBytes = 48;
        const auto frame = Frame(source);
        Soil(48 * 6 * 16);
        const auto clone = Clone(frame.get(), eZFC_Full, to);
        ASSERT_TRUE(clone) << std::hex << from << " to " << to;
        EXPECT_GT(VideoOf(clone).size, 0);
        EXPECT_TRUE(AllZero(VideoOf(clone).Copy())) << std::hex << from << " to " << to;
    }
}

TEST_F(ConvertedClones, CutsAreConvertedAlone) {
    const auto frame = Frame(Record(eZFCC_UYVY, 64, 48));
    tagRECT rect = {};
    rect.left = 10;
    rect.top = 5;
    rect.right = 64;
    rect.bottom = 48;
    ComPtr<IZFrame> cut;
    ASSERT_EQ(S_OK, frame->FrameCut(0, &rect, cut.Put()));
    const auto clone = Clone(cut.get(), eZFC_Full, eZFCC_ARGB32);
    const auto whole = Clone(frame.get(), eZFC_Full, eZFCC_ARGB32);
    ASSERT_EQ(54 * 43 * 4, VideoOf(clone).size);
    for (int32_t y = 0; y < 43; ++y) {
        EXPECT_EQ(0, std::memcmp(VideoOf(clone).data() + y * 54 * 4, VideoOf(whole).data() + (y + 5) * 256 + 40, 54 * 4)) << y;
    }
}

TEST_F(ConvertedClones, BottomUpPicturesAreTurned) {
    const auto frame = Frame(Record(eZFCC_ARGB32, 16, 8));
    const auto clone = Clone(frame.get(), eZFC_VideoRef, eZFCC_ARGB32);
    EXPECT_EQ(-8, PropsOf(clone).vidProps.nHeight);
    for (int32_t y = 0; y < 8; ++y) {
        EXPECT_EQ(0, std::memcmp(VideoOf(frame).data() + y * 64, VideoOf(clone).data() + (7 - y) * 64, 64)) << y;
    }
}

// What a conversion leaves out of its target is 0, from a used pool too.
TEST_F(ConvertedClones, ScaledFramesHoldNothingOfEarlierOnes) {
    const auto frame = SoundFrame(Record(eZFCC_ARGB32, 64, -48));
    ComPtr<IZFrames> fresh;
    ASSERT_EQ(S_OK, FrameFactoryCreate(ZIidOf<IZFrames>(), fresh.PutVoid()));
    for (const eZFCC fcc : {eZFCC_UYVY, eZFCC_ARGB32, eZFCC_RGB24, eZFCC_I420, eZFCC_YVYU})
        for (const int32_t width : {32, 33, 34})
            for (const TextView options : {ZCK_TEXT(""), ZCK_TEXT("scaling_quality=14"), ZCK_TEXT("rotate=left"),
                                           ZCK_TEXT("mirror=horz"), ZCK_TEXT("rotate=right mirror=both")}) {
                Z_VID_PROPS target = Record(fcc, width, IsRgbFormat(fcc) ? -20 : 20);
                if (width == 34) target.nRowBytes += 8;
                ComPtr<IZFrame> clean;
                ComPtr<IZFrame> used;
                ComPtr<IZFrame> local;
                Z_VID_PROPS record = PropsOf(frame).vidProps;
                ASSERT_EQ(S_OK, fresh->FrameCreateFromProps(&record, VideoOf(frame).address, local.Put(), nullptr));
                const HRESULT hr = local->FrameConvert(&target, clean.Put(), Bstr(options).get());
                ASSERT_TRUE(hr == S_OK || fcc == eZFCC_I420);
                if (FrameBufferSize(&target) > 0) Soil(FrameBufferSize(&target));
                Soil(64 * 48 * 4);
                ASSERT_EQ(hr, frame->FrameConvert(&target, used.Put(), Bstr(options).get()));
                if (FAILED(hr)) continue;
                EXPECT_EQ(VideoOf(clean).Copy(), VideoOf(used).Copy()) << std::hex << fcc << std::dec << " " << width;
            }
}

class Shells : public ConvertedClones {
protected:
    void SetUp() override {
        ConvertedClones::SetUp();
        m_shells = As<IZFrameShell>(m_factory);
    }
    void TearDown() override {
        m_shells.Reset();
        ConvertedClones::TearDown();
    }

    // Fills an unfilled clone as its text says.
    static void Fill(const ZF_SHELL &shell) {
        const auto *source = At<const uint8_t>(shell.pbSource);
        auto *target = At<uint8_t>(shell.pbClone);
        std::memset(target, 0, static_cast<size_t>(shell.cbClone));
        if (shell.bConvert == 0) {
            ASSERT_LE(shell.cbClone, shell.cbSource);
            std::memcpy(target, source, static_cast<size_t>(shell.cbClone));
        } else {
            ASSERT_EQ(S_OK, ConvertSameGeometry(source, shell.cbSource, target, shell.cbClone, &shell.source, &shell.clone));
        }
    }

    void Same(IZFrame *frame, int32_t type, eZFCC fcc, HRESULT expected) {
        const auto whole = Clone(frame, type, fcc);
        ComPtr<IZFrame_I> clone;
        ComPtr<IZFrame_I> local;
        ZF_SHELL shell = {};
        ASSERT_EQ(expected,
                  m_shells->CloneShell(frame, static_cast<eZFrameClone>(type), fcc, clone.Put(), local.Put(), &shell));
        EXPECT_EQ(expected == S_OK, static_cast<bool>(local));
        if (expected == S_OK) Fill(shell);
        const Z_AV_PROPS a = PropsOf(whole);
        const Z_AV_PROPS b = PropsOf(clone);
        EXPECT_EQ(0, std::memcmp(&a, &b, sizeof(a)));
        EXPECT_EQ(VideoOf(whole).Copy(), VideoOf(clone).Copy());
        EXPECT_EQ(AudioOf(whole).Copy(), AudioOf(clone).Copy());
        ZF_INFO info = {};
        ZF_INFO other = {};
        ASSERT_EQ(S_OK, As<IZFFrame>(whole)->ZFInfoGet(&info));
        ASSERT_EQ(S_OK, As<IZFFrame>(clone)->ZFInfoGet(&other));
        EXPECT_EQ(info.nDataCount, other.nDataCount);
        EXPECT_EQ(info.nObjectCount, other.nObjectCount);
        EXPECT_EQ(info.time.rtStartTime, other.time.rtStartTime);
    }

    ComPtr<IZFrameShell> m_shells;
};

TEST_F(Shells, FilledTheyAreTheClone) {
    for (const eZFCC fcc : {eZFCC_UYVY, eZFCC_HDYC, eZFCC_ARGB32, eZFCC_RGB32, eZFCC_RGB24, eZFCC_v210}) {
        for (const int32_t height : {48, -48}) {
            if (height < 0 && !IsRgbFormat(fcc)) continue;
            const auto frame = SoundFrame(Record(fcc, 63, height));
            EXPECT_EQ(S_OK, frame->FrameDataSet(kC608, 0, 5));
            ComPtr<IZFrame> other;
            ASSERT_EQ(S_OK, m_factory->FrameCreate(0, nullptr, other.Put()));
            EXPECT_EQ(S_OK, As<IZFFrame>(frame)->ZFObjectSet(Bstr(ZCK_TEXT("o")).get(), other.get()));
            Same(frame.get(), eZFC_Full, eZFCC_ARGB32, S_OK);
        }
    }
}

TEST_F(Shells, ClonesWithNothingToWriteAreComplete) {
    const auto frame = SoundFrame(Record(eZFCC_ARGB32, 16, -8));
    Same(frame.get(), eZFC_Reference, eZFCC_ARGB32, S_FALSE);
    Same(frame.get(), eZFC_Audio, eZFCC_ARGB32, S_FALSE);
    ComPtr<IZFrame> empty;
    ASSERT_EQ(S_OK, m_factory->FrameCreate(0, nullptr, empty.Put()));
    Same(empty.get(), eZFC_Full, eZFCC_ARGB32, S_FALSE);
    // A record that states more than there is: the plain copy, as it is.
    Z_AV_PROPS props = PropsOf(frame);
    props.vidProps.nHeight = -9;
    ASSERT_EQ(S_OK, frame->FrameAVPropsSet(&props));
    Same(frame.get(), eZFC_Full, eZFCC_ARGB32, S_FALSE);
}

TEST_F(Shells, FramesMakeThemToo) {
    const auto frame = SoundFrame(Record(eZFCC_UYVY, 64, 48));
    m_shells = As<IZFrameShell>(frame);
    ASSERT_TRUE(m_shells);
    Same(frame.get(), eZFC_Full, eZFCC_ARGB32, S_OK);
}

TEST_F(Shells, Refusals) {
    const auto frame = Frame(Record(eZFCC_UYVY, 64, 48));
    ComPtr<IZFrame_I> clone;
    ComPtr<IZFrame_I> local;
    ZF_SHELL shell = {};
    EXPECT_EQ(E_INVALIDARG, m_shells->CloneShell(nullptr, eZFC_Full, eZFCC_ARGB32, clone.Put(), local.Put(), &shell));
    EXPECT_EQ(E_INVALIDARG, m_shells->CloneShell(frame.get(), eZFC_Full, eZFCC_ARGB32, nullptr, local.Put(), &shell));
    EXPECT_EQ(E_INVALIDARG, m_shells->CloneShell(frame.get(), eZFC_Full, eZFCC_ARGB32, clone.Put(), nullptr, &shell));
    EXPECT_EQ(E_INVALIDARG, m_shells->CloneShell(frame.get(), eZFC_Full, eZFCC_ARGB32, clone.Put(), local.Put(), nullptr));
    Z_AV_PROPS props = PropsOf(frame);
    props.vidProps.nHeight = 49;
    ASSERT_EQ(S_OK, frame->FrameAVPropsSet(&props));
    EXPECT_EQ(kVfwEInvalidMediaType,
              m_shells->CloneShell(frame.get(), eZFC_Full, eZFCC_ARGB32, clone.Put(), local.Put(), &shell));
    EXPECT_FALSE(clone || local);
}

TEST_F(Shells, TheSourcesPixelsAreHeld) {
    auto frame = Frame(Record(eZFCC_UYVY, 64, 48));
    const std::vector<uint8_t> pixels = VideoOf(frame).Copy();
    ComPtr<IZFrame_I> clone;
    ComPtr<IZFrame_I> local;
    ZF_SHELL shell = {};
    ASSERT_EQ(S_OK, m_shells->CloneShell(frame.get(), eZFC_Full, eZFCC_ARGB32, clone.Put(), local.Put(), &shell));
    frame.Reset();
    Soil(64 * 48 * 2);
    EXPECT_EQ(0, std::memcmp(pixels.data(), At<void>(shell.pbSource), pixels.size()));
}

}    // namespace
}    // namespace zck::test
