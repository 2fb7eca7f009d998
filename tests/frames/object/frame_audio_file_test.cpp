// Sound files of frames, through both views.
#include "tests/frames/object/audio_fixture.h"
#include "tests/support/scratch_folder.h"

namespace zck::test {
namespace {

class AudioFile : public AudioTest {
protected:
    Bstr Name(const char *name = "sound.wav") const { return Bstr(TextFromUtf8(m_folder.Path(name))); }
    ScratchFolder m_folder;
};

TEST_F(AudioFile, ThereAndBack) {
    const auto frame = Sound<int16_t>({2, 44100, 16, 9}, {1, 2, 3, 4, 5, 6});
    const Bstr name = Name();
    ASSERT_EQ(S_OK, frame->ZFAudioSaveToFile(name.get(), 0));
    ASSERT_EQ(S_OK, As<IZFrame>(frame)->FrameAudioSaveToFile(name.get(), 1));
    const auto other = Sound<float>({1, 8000, -32, 5}, {0.5F});
    Z_AV_PROPS props = Props(other);
    props.ancData.eFlags = eZAF_AL_Valid;
    props.ancData.audOutput.arrEBUMode_M[0] = 3.0F;
    ASSERT_EQ(S_OK, As<IZFrame_I>(other)->FrameAVPropsSet(&props));
    ASSERT_EQ(S_OK, other->ZFAudioFromFile(name.get(), 2, INT32_MAX));
    EXPECT_EQ((Shorts{5, 6, 1, 2, 3, 4, 5, 6}), SamplesOf<int16_t>(other.get()));
    EXPECT_TRUE(SameRecord({2, 44100, 16, 0}, Record(other)));
    const Z_ANC_DATA levels = Levels(other);
    EXPECT_EQ(eZAF_None, levels.eFlags);
    EXPECT_EQ(0.0F, levels.audOutput.arrEBUMode_M[0]);
    EXPECT_EQ(2, levels.audOutput.nValidChannels);
    EXPECT_EQ(2, levels.audOriginal.nValidChannels);
    // The other view has the same way in; its flag means nothing.
    ASSERT_EQ(S_OK, As<IZFrame_I>(other)->FrameAudioForward(name.get(), 5, 9, 77));
    EXPECT_EQ((Shorts{5, 6}), SamplesOf<int16_t>(other.get()));
}

TEST_F(AudioFile, WithoutACountAsLongAsTheFrame) {
    const Bstr name = Name();
    ASSERT_EQ(S_OK, Sound<int16_t>({1, 48000, 16, 0}, Shorts(100, 7))->ZFAudioSaveToFile(name.get(), 0));
    const auto frame = Sound<int16_t>({1, 96000, 16, 0}, Shorts(21));
    ASSERT_EQ(S_OK, frame->ZFAudioFromFile(name.get(), 0, 0));
    // 10.5 samples: halves away from zero.
    EXPECT_EQ(Shorts(11, 7), SamplesOf<int16_t>(frame.get()));
    const auto empty = Empty();
    ASSERT_EQ(S_OK, empty->ZFAudioFromFile(name.get(), 0, 0));
    EXPECT_TRUE(SamplesOf<int16_t>(empty.get()).empty());
    EXPECT_EQ(48000, Record(empty).nSamplesPerSec);
}

TEST_F(AudioFile, RefusedAndUnchanged) {
    const Bstr name = Name();
    const Bstr nothing{TextView()};
    const auto frame = Sound<int16_t>(kMono16, {1, 2});
    EXPECT_EQ(E_INVALIDARG, Empty()->ZFAudioSaveToFile(nullptr, 0));
    EXPECT_EQ(E_INVALIDARG, frame->ZFAudioSaveToFile(nothing.get(), 0));
    EXPECT_EQ(E_INVALIDARG, frame->ZFAudioFromFile(nullptr, 0, 1));
    EXPECT_EQ(kVfwEInvalidMediaType, Empty()->ZFAudioSaveToFile(name.get(), 0));
    EXPECT_FALSE(std::filesystem::exists(m_folder.File("sound.wav")));
    EXPECT_EQ(kErrorFileNotFound, frame->ZFAudioFromFile(name.get(), 0, 1));
    ASSERT_EQ(S_OK, frame->ZFAudioSaveToFile(name.get(), 0));
    EXPECT_EQ(kErrorHandleEof, frame->ZFAudioFromFile(name.get(), 2, 1));
    EXPECT_EQ(E_INVALIDARG, frame->ZFAudioFromFile(name.get(), -1, 1));
    EXPECT_EQ(E_INVALIDARG, frame->ZFAudioFromFile(name.get(), 0, -1));
    EXPECT_EQ((Shorts{1, 2}), SamplesOf<int16_t>(frame.get()));
}

}    // namespace
}    // namespace zck::test
