// Sound files of other programs, whole and damaged: what is read of them, and what adding to them leaves.
#include "tests/conformance/audio_fixture.h"
#include "tests/support/scratch_folder.h"

namespace conformance {
namespace {

std::string Word(uint64_t value, int bytes = 4) {
    std::string s;
    for (int i = 0; i < bytes; ++i) s += static_cast<char>(value >> (8 * i));
    return s;
}

std::string Chunk(const std::string &id, const std::string &bytes, uint32_t more = 0) {
    return id + Word(bytes.size() + more) + bytes + std::string(bytes.size() % 2, '\0');
}

class Files : public Sounds {
protected:
    // A file put together as programs do, with here and there a number that is none of theirs.
    std::string AnyFile();
    std::string AnyFormat(const Z_AUD_PROPS &p);
    void Read(const std::string &file);
    void Append(std::string file);

    template <class T>
    T OneOf(std::initializer_list<T> all) {
        return all.begin()[m_dice(0, static_cast<int32_t>(all.size()) - 1)];
    }

    Dice m_dice{1};
    zck::test::ScratchFolder m_folder;
    Bstr m_name = TextOf(m_folder.Path("a.wav").c_str());
};

std::string Files::AnyFormat(const Z_AUD_PROPS &p) {
    const auto channels = static_cast<uint32_t>(p.nChannels), bits = static_cast<uint32_t>(std::abs(p.nBitsPerSample));
    const uint32_t width = (bits + 7) / 8;
    const bool extended = m_dice(0, 1) != 0, real = p.nBitsPerSample < 0;
    const uint32_t tag = m_dice(0, 15) == 0 ? static_cast<uint32_t>(m_dice(0, 7)) : extended ? 0xFFFEU : real ? 3U : 1U;
    const uint32_t align = m_dice(0, 15) == 0 ? OneOf({0U, 1U, 3U, 0xFFFFU, channels * 8}) : channels * width;
    const uint32_t field = m_dice(0, 7) == 0 ? OneOf({0U, 1U, 8U, 20U, 24U, 32U, 0x8000U, 0xFFFFU})
                                             : OneOf({bits, width * 8, width == 3 ? 32 : bits});
    std::string s = Word(tag, 2) + Word(channels, 2) + Word(static_cast<uint32_t>(p.nSamplesPerSec)) +
                    Word(static_cast<uint32_t>(m_dice(0, 99))) + Word(align, 2) + Word(field, 2);
    if (m_dice(0, 30) == 0) s.resize(static_cast<size_t>(m_dice(0, 15)));
    if (!extended) return s + (m_dice(0, 3) == 0 ? Word(0, 2) : "");
    s += Word(OneOf({22U, 22U, 22U, 22U, 24U, 21U, 0U, 0xFFFFU}), 2) + Word(OneOf({bits, bits, bits, 0U, 24U}), 2) + Word(3);
    std::string id = Word(real ? 3 : 1) + Word(0x00100000) + std::string("\x80\x00\x00\xAA\x00\x38\x9B\x71", 8);
    if (m_dice(0, 15) == 0) id[static_cast<size_t>(m_dice(0, 15))] ^= 1;
    return (s + id + std::string(static_cast<size_t>(m_dice(0, 1)) * 2, 'x'))
        .substr(0, static_cast<size_t>(m_dice(0, 15) == 0 ? m_dice(16, 40) : 99));
}

std::string Files::AnyFile() {
    const Z_AUD_PROPS p = {OneOf({1, 1, 1, 2, 2, 2, 3, 6, 8, 33, 0}),
                           OneOf({48000, 48000, 44100, 8000, 8000, 1, 0x7FFFFFFF, 0, -1}),
                           OneOf({16, 16, 24, 20, 32, -32, 8, 12, -16}), 0};
    const auto other = [this] {
        std::string s;
        for (int32_t i = m_dice(0, 2); i > 0; --i)
            s += Chunk(OneOf<std::string>({"LIST", "fact", "junk", "fmt ", "DATA"}),
                       std::string(static_cast<size_t>(m_dice(0, 9)), 'j'));
        return s;
    };
    const Bytes sound = m_dice.Noise(static_cast<size_t>(m_dice(0, 200)));
    std::string s = "WAVE";
    if (m_dice(0, 9) != 0 || m_dice(0, 1) != 0) s += (m_dice(0, 9) == 0 ? other() : "") + Chunk("fmt ", AnyFormat(p));
    s += other() + "data";
    s += Word(OneOf<uint32_t>(
        {static_cast<uint32_t>(sound.size()), static_cast<uint32_t>(sound.size()), 0, 0xFFFFFFFF, 0x7FFFFFFF, 100, 7}));
    s += std::string(sound.begin(), sound.end()) + (m_dice(0, 1) != 0 ? other() : "");
    s = OneOf<std::string>({"RIFF", "RIFF", "RIFF", "RIFF", "RIFF", "RIFF", "RIFF", "RIFX", "riff"}) +
        Word(static_cast<uint32_t>(m_dice(0, 999))) + s;
    if (m_dice(0, 9) == 0) s.resize(static_cast<size_t>(m_dice(0, static_cast<int32_t>(s.size()))));
    if (m_dice(0, 9) == 0 && !s.empty()) {
        char &c = s[static_cast<size_t>(m_dice(0, std::min(60, static_cast<int32_t>(s.size()) - 1)))];
        c = static_cast<char>(c ^ (1 << m_dice(0, 7)));
    }
    return s;
}

void Files::Read(const std::string &file) {
    Sounding one = New();
    if (m_dice(0, 1) != 0) {
        Z_AUD_PROPS p = {1, OneOf({48000, 44100, 7}), 16, 3};
        ASSERT_EQ(one.frame->ZFAudioSamplesSet(&p, 25), S_OK);
        one.model.SetSamples(&p, 25);
    }
    const int32_t first = OneOf({0, 0, 0, 3, 10, 300, INT32_MAX, -1}), count = OneOf({0, 1, 5, INT32_MAX, INT32_MAX, -1});
    const HRESULT want = one.model.FromWav(file, first, count);
    ASSERT_EQ(Hex(one.frame->ZFAudioFromFile(m_name.get(), first, count)), Hex(want)) << first << " " << count;
    ASSERT_EQ(one.Check(), "") << first << " " << count;
}

void Files::Append(std::string file) {
    Sounding one = New();
    WavSeen seen;
    Z_AUD_PROPS p = {1, 48000, 16, 0};
    if (m_dice(0, 3) != 0 && WavRead(file, seen)) p = seen.props;
    const Bytes sound = m_dice.Noise(static_cast<size_t>(m_dice(1, 50)));
    Bytes copy = sound;
    ASSERT_EQ(one.frame->ZFAudioSet(&p, static_cast<int32_t>(copy.size()), AddressOf(copy.data())), S_OK);
    const HRESULT want = WavAppend(p, sound, file);
    ASSERT_EQ(Hex(one.frame->ZFAudioSaveToFile(m_name.get(), m_dice(0, 1) != 0 ? 1 : -5)), Hex(want));
    ASSERT_EQ(m_folder.Bytes("a.wav"), file) << Words(p) << " read as " << Words(seen.props);
}

TEST_F(Files, AnyFileIsReadAndAddedTo) {
    int32_t sounding = 0;
    for (uint32_t round = 0; round < 500; ++round) {
        m_dice = Dice(round);
        const std::string file = AnyFile();
        m_folder.Put("a.wav", file);
        WavSeen seen;
        sounding += WavRead(file, seen) ? 1 : 0;
        Read(file);
        ASSERT_FALSE(HasFailure()) << round;
        Append(file);
        ASSERT_FALSE(HasFailure()) << round;
    }
    EXPECT_GT(sounding, 100);
}

// Too many chunks in front of the sound, and as many as there may be.
TEST_F(Files, ChunksWithoutEnd) {
    for (const int32_t more : {0, 1}) {
        std::string file = "RIFF" + Word(0) + "WAVE" + Chunk("fmt ", WavHead({1, 8000, 16, 0}, 0).substr(20, 16));
        for (int32_t i = 0; i < 65534 + more; ++i) file += Chunk("junk", "");
        file += Chunk("data", "abcd");
        m_folder.Put("a.wav", file);
        Read(file);
    }
}

// The name comes first, then the numbers, then the file.
TEST_F(Files, Names) {
    const Sounding one = New();
    EXPECT_EQ(one.frame->ZFAudioFromFile(nullptr, -1, -1), E_INVALIDARG);
    EXPECT_EQ(one.frame->ZFAudioFromFile(TextOf("").get(), 0, 0), E_INVALIDARG);
    EXPECT_EQ(one.frame->ZFAudioSaveToFile(nullptr, 0), E_INVALIDARG);
    EXPECT_EQ(one.frame->ZFAudioSaveToFile(TextOf("").get(), 1), E_INVALIDARG);
    EXPECT_EQ(one.frame->ZFAudioFromFile(m_name.get(), 0, 0), Z_E_FILE_NOT_FOUND);
    EXPECT_EQ(one.frame->ZFAudioSaveToFile(m_name.get(), 0), kBadSound);
    EXPECT_FALSE(std::filesystem::exists(m_folder.File("a.wav")));
    const ComPtr<IZFrame_I> view = QueryFor<IZFrame_I>(one.frame.get());
    m_folder.Put("a.wav", WavFile({1, 8000, 16, 0}, {1, 2, 3, 4}));
    EXPECT_EQ(view->FrameAudioForward(m_name.get(), 1, INT32_MAX, 77), S_OK);
    EXPECT_EQ(Audio(one.frame).bytes(), (Bytes{3, 4}));
    EXPECT_EQ(view->FrameAudioSaveToFile(m_name.get(), 1), S_OK);
    EXPECT_EQ(m_folder.Bytes("a.wav"), WavFile({1, 8000, 16, 0}, {1, 2, 3, 4, 3, 4}));
    EXPECT_EQ(one.frame->ZFAudioFromFile(m_name.get(), 3, 0), Z_E_HANDLE_EOF);
}

}    // namespace
}    // namespace conformance
