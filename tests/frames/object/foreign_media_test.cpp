// What a clone asks a frame for that is not ours: what its type wants, and nothing else.
#include "platform/status.h"
#include "tests/frames/object/foreign_frame.h"
#include "tests/frames/object/frame_fixture.h"

namespace zck::test {
namespace {

/// Its pixels and its sound cannot be had.
class SilentQuorvex final : public RefusingQuorvex {
public:
    HRESULT Z_STDCALL FrameProcessIdGet(uint32_t *process) override {
        *process = CurrentProcessId();
        return S_OK;
    }
    HRESULT Z_STDCALL FrameInfoGet(Z_TIME *time, Z_AV_PROPS *props, int32_t *video, int32_t *audio) override {
        if (time != nullptr) time->rtStartTime = 77;
        if (props != nullptr) props->vidProps = Record(eZFCC_UYVY, 64, 48);
        if (video != nullptr) *video = 64 * 48 * 2;
        if (audio != nullptr) *audio = 400;
        return S_OK;
    }
    HRESULT Z_STDCALL FrameVideoGetBytes(int32_t *, int64_t *) override { return kErrorEmpty; }
    HRESULT Z_STDCALL FrameAudioGetBytes(int32_t *, int64_t *) override { return E_FAIL; }
    HRESULT Z_STDCALL FrameInfoPtrGet(Z_TIME *, Z_AV_PROPS *, int32_t *, int64_t *, int32_t *, int64_t *) override {
        return E_UNEXPECTED;
    }
};

class ForeignMedia : public FrameTest {
protected:
    void SetUp() override {
        FrameTest::SetUp();
        ASSERT_EQ(S_OK, CreateObject<SilentQuorvex>(nullptr, ZIidOf<IZFrame_I>(), m_source.PutVoid()));
    }
    void TearDown() override {
        m_source.Reset();
        FrameTest::TearDown();
    }

    HRESULT CloneOf(int32_t type, eZFCC fcc, ComPtr<IZFrame_I> &clone) {
        return m_factory->FrameCloneConvert(m_source.get(), clone.Put(), static_cast<eZFrameClone>(type), fcc);
    }

    ComPtr<IZFrame_I> m_source;
};

TEST_F(ForeignMedia, IsAskedForByTheTypeOnly) {
    ComPtr<IZFrame_I> clone;
    for (const int32_t type : {0, 256, 512}) {
        ASSERT_EQ(S_OK, CloneOf(type, eZFCC_Default, clone)) << type;
        EXPECT_EQ(0, VideoOf(clone).size);
        EXPECT_EQ(0, AudioOf(clone).size);
        EXPECT_EQ(64, PropsOf(clone).vidProps.nWidth);
        Z_TIME time = {};
        EXPECT_EQ(S_OK, clone->FrameTimeGet(&time));
        EXPECT_EQ(77, time.rtStartTime);
    }
    // A new name for the pixels does not ask for them either.
    ASSERT_EQ(S_OK, CloneOf(0, eZFCC_HDYC, clone));
    EXPECT_EQ(eZFCC_HDYC, PropsOf(clone).vidProps.fccType);
}

TEST_F(ForeignMedia, RefusalsAreHandedOnWithoutAClone) {
    ComPtr<IZFrame_I> clone;
    EXPECT_EQ(kErrorEmpty, CloneOf(eZFC_Video, eZFCC_Default, clone));
    EXPECT_EQ(kErrorEmpty, CloneOf(eZFC_VideoRef, eZFCC_Default, clone));
    EXPECT_EQ(E_FAIL, CloneOf(eZFC_Audio, eZFCC_Default, clone));
    // A conversion asks for everything at once, whatever the type.
    EXPECT_EQ(E_UNEXPECTED, CloneOf(0, eZFCC_ARGB32, clone));
    EXPECT_FALSE(clone);
    EXPECT_EQ(1U, (m_source->AddRef(), m_source->Release()));
}

// A clone by reference names the section of its source, of whichever family that is.
TEST_F(ForeignMedia, TheSectionIsAskedOfEitherFamily) {
    ForeignState state;
    state.props.vidProps = Record(eZFCC_UYVY, 64, 48);
    state.video = Pattern(64 * 48 * 2);
    state.section = 0x1234567890;
    ComPtr<IZFrame_I> quorvex;
    const auto first = ForeignCreate<ForeignQuorvex, IZFrame_I>(state);
    ASSERT_EQ(S_OK, m_factory->FrameCloneConvert(first.get(), quorvex.Put(), eZFC_VideoRef, eZFCC_Default));
    ComPtr<IZFFrame> clone;
    const auto second = ForeignCreate<ForeignTessilu, IZFFrame>(state);
    ASSERT_EQ(S_OK, As<IZFFactory>(m_factory)->ZFCloneConvert(second.get(), clone.Put(), eZFC_VideoRef, eZFCC_Default));
    const auto tessilu = As<IZFrame_I>(clone);
    for (const auto &frame : {quorvex, tessilu}) {
        int64_t id = 0;
        EXPECT_EQ(S_OK, frame->FrameBufferIdGet(&id));
        EXPECT_EQ(state.section, id);
        ZF_INFO info = {};
        EXPECT_EQ(S_OK, As<IZFFrame>(frame)->ZFInfoGet(&info));
        EXPECT_EQ(state.section, info.llSectionId);
    }
    // One that has none, and one that does not say.
    int64_t id = 7;
    state.section = 0;
    EXPECT_EQ(kErrorEmpty, quorvex->FrameBufferIdGet(&id));
    EXPECT_EQ(kErrorEmpty, tessilu->FrameBufferIdGet(&id));
    EXPECT_EQ(0, id);
    state.section = 5;
    state.infoStatus = E_FAIL;
    EXPECT_EQ(kErrorEmpty, tessilu->FrameBufferIdGet(&id));
}

}    // namespace
}    // namespace zck::test
