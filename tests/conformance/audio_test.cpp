// The sound of frames: every operation on every record, in any order.
#include <array>

#include "platform/process.h"
#include "tests/conformance/audio_fixture.h"
#include "tests/conformance/foreign_frame.h"
#include "tests/support/scratch_folder.h"

namespace conformance {
namespace {

constexpr int32_t kFew[] = {1, 1, 2, 2, 2, 3, 6, 7, 8, 11};
constexpr int32_t kMany[] = {16, 31, 32, 33, 127, 128, 130};
constexpr int32_t kBits[] = {16, 16, 16, 24, 24, 32, -32, -32, 9, 12, 17, 20, 25, 31, -25, -30};
constexpr int32_t kPoorBits[] = {1, 8, 33, 64, -1, -16, -24, -33, INT32_MIN, INT32_MAX};
constexpr int32_t kRates[] = {48000, 48000, 48000, 8000, 44100, 1, 2, 7, 0x7FFFFFFF};
constexpr double kDb[] = {0, 0, 0, 0, 6, -6, -3, -20.5, 12, 40, 200, -200, -kInfinity, kInfinity, 0.1, 1e-9};
constexpr const char *kMaps[] = {"",  "",        "",  "0",  "1,0",         "0,0", "5",           "0;1;2;3;4;5", "2 1 0",
                                 "x", "1.5,1-0", "-", "-1", "99999999999", "+1",  "7,6,5,4,3,2", "0x10",        "31,32,33"};

template <size_t N, class T>
T OneOf(Dice &dice, const T (&all)[N]) {
    return all[dice(0, N - 1)];
}

class Walk : public Sounds {
protected:
    void SetUp() override {
        Sounds::SetUp();
        m_pair = {New(), New()};
    }

    Z_AUD_PROPS Record() {
        const int32_t kind = m_dice(0, 19);
        Z_AUD_PROPS p = {kind == 0 ? OneOf(m_dice, kMany) : OneOf(m_dice, kFew), OneOf(m_dice, kRates),
                         kind == 1 ? OneOf(m_dice, kPoorBits) : OneOf(m_dice, kBits), m_dice(0, 3)};
        if (kind == 2) p.nChannels = OneOf(m_dice, {0, -1, INT32_MIN});
        if (kind == 3) p.nSamplesPerSec = m_dice(-1, 0);
        if (kind == 4) p.nBitsPerSample = 0;
        return p;
    }
    // Sound for a record, at times with bytes behind the last whole sample.
    Bytes Noise(const Z_AUD_PROPS &p, int32_t most = 40) {
        if (!SoundValid(p) || SampleWidth(p.nBitsPerSample) > 16) return m_dice.Noise(static_cast<size_t>(m_dice(0, 50)));
        const int32_t tail = m_dice(0, 3) == 0 ? m_dice(0, 9) : 0;
        return NoiseFor(m_dice, p, SoundBytes(p, m_dice(0, most)) + tail);
    }
    std::string Map() {
        if (m_dice(0, 30) != 0) return OneOf(m_dice, kMaps);
        std::string map;
        for (int i = 0; i < 131; ++i) map += std::to_string(m_dice(0, 9)) + ",";
        return map;
    }
    double Db() { return m_dice(0, 60) == 0 ? std::nan("") : OneOf(m_dice, kDb); }

    // One operation on the first of the pair, with the second for a partner. Says what was done.
    void Step();
    void Channel();
    void Raw();
    void Add(Sounding *source);
    void Wav();
    void Reset();
    void Reload();
    void FromAnotherProcess();
    void Same(HRESULT want, HRESULT got) {
        if (want != got) FAIL() << "status " << Hex(want) << " is " << Hex(got);
    }

    Dice m_dice{1};
    std::array<Sounding, 2> m_pair;
    std::string m_said;
    zck::test::ScratchFolder m_folder;
};

void Walk::Channel() {
    Sounding &a = m_pair[0];
    const int32_t index = OneOf(m_dice, {0, 1, 2, 5, 8, 31, 127, 128, 200, -1, INT32_MAX, INT32_MIN});
    const bool grow = m_dice(0, 1) != 0 && index < 9;
    m_said = "channel " + std::to_string(index) + (grow ? " grow" : "");
    Bytes want;
    Seen got = {-1, -1};
    const HRESULT status = a.model.Channel(index, grow, want);
    Same(status, a.frame->ZFAudioChannelGet(index, grow ? 7 : 0, &got.size, &got.address));
    if (FAILED(status)) {
        EXPECT_EQ(got.size, 0);
        EXPECT_EQ(got.address, 0);
        return;
    }
    ASSERT_EQ(got.size, static_cast<int32_t>(a.model.channels.of[0].size()));
    if (want.empty()) return;
    ASSERT_LT(FirstDifference(want, got.bytes(), a.model.channels.work == Work::Real), 0);
    if (m_dice(0, 1) == 0) return;
    const Bytes fresh = NoiseFor(m_dice, {1, 1, a.model.channels.work == Work::Short ? 16 : -32, 0}, got.size);
    std::copy(fresh.begin(), fresh.end(), got.data());
    if (index >= 0 && static_cast<size_t>(index) < a.model.channels.of.size())
        a.model.channels.of[static_cast<size_t>(index)] = fresh;
}

void Walk::Raw() {
    Sounding &a = m_pair[0];
    Z_AV_PROPS props = Props(a.frame);
    if (m_dice(0, 2) == 0) props.audProps = Record();
    const int32_t kind = m_dice(0, 3);
    if (kind == 0) props.ancData = {};
    if (kind == 1) {
        props.ancData.eFlags = eZAF_AL_Valid;
        props.ancData.audOutput.arrEBUMode_S[3] = 1.5F;
        props.ancData.audOutput.arrPeaks_TPL[31] = 2.5F;
        props.ancData.audOutput.nValidTracks = 4;
        props.ancData.audOriginal.nTracksSplitBit = 5;
        props.ancData.audOriginal.arrRMS[9] = -1;
    }
    m_said = "raw record " + Words(props.audProps);
    a.model.props = props.audProps;
    a.model.levels = props.ancData;
    Same(S_OK, QueryFor<IZFrame>(a.frame.get())->FrameAVPropsSet(&props));
}

void Walk::Add(Sounding *source) {
    Sounding &a = m_pair[0];
    const auto position = [this] { return OneOf(m_dice, {0, 0, 0, 1, 5, 20, 39, 1000, -1, INT32_MAX}); };
    int32_t want[2] = {position(), position()};
    if (a.model.Samples() < 1 && want[1] > 1000) want[1] = 3;
    int32_t got[2] = {want[0], want[1]};
    const int32_t count = OneOf(m_dice, {-1, -1, -1, 0, 1, 7, 100, INT32_MAX});
    const int32_t null = m_dice(0, 7);
    const double from = Db(), to = m_dice(0, 1) != 0 ? from : Db();
    const bool fade = m_dice(0, 1) != 0;
    m_said = "add from " + std::to_string(want[0]) + " to " + std::to_string(want[1]) + " count " + std::to_string(count) +
             " dB " + std::to_string(from) + " " + std::to_string(to) + (fade ? " fade" : "");
    const auto at = [null](int32_t *p, int32_t bit) { return (null & bit) == bit ? nullptr : p; };
    const HRESULT status =
        a.model.Add(source == nullptr ? nullptr : &source->model, at(&want[0], 3), at(&want[1], 5), count, from, to, fade);
    Same(status, a.frame->ZFAudioAdd(source == nullptr ? nullptr : source->frame.get(), at(&got[0], 3), at(&got[1], 5), count,
                                     from, to, fade ? -1 : 0));
    EXPECT_EQ(got[0], want[0]);
    EXPECT_EQ(got[1], want[1]);
}

// Writes the sound, adds it to files of all kinds, and reads some of it back.
void Walk::Wav() {
    Sounding &a = m_pair[0], &b = m_pair[1];
    const bool append = m_dice(0, 1) != 0;
    m_said = append ? "append" : "write";
    const Bstr name = TextOf(m_folder.Path("sound.wav").c_str());
    static const char *kFile = "sound.wav";
    const bool was = std::filesystem::exists(m_folder.File(kFile)) && m_dice(0, 9) != 0;
    if (!was) m_folder.Put(kFile, "");
    std::string file = append ? m_folder.Bytes(kFile) : "";
    HRESULT status = kBadSound;
    if (SoundValid(a.model.props) && !a.model.bytes.empty()) status = WavAppend(a.model.props, a.model.bytes, file);
    Same(status, a.frame->ZFAudioSaveToFile(name.get(), append ? 1 : 0));
    if (FAILED(status)) return;
    ASSERT_EQ(m_folder.Bytes(kFile), file);
    const int32_t first = OneOf(m_dice, {0, 0, 1, 10, 60, INT32_MAX, -1}),
                  count = OneOf(m_dice, {0, 0, 1, 7, 100, INT32_MAX, -1});
    if (count == 0 && b.model.Samples() > 0 && b.model.props.nSamplesPerSec < 10) return;
    m_said += " read " + std::to_string(first) + " " + std::to_string(count) + " of " + std::to_string(file.size());
    Same(b.model.FromWav(file, first, count), b.frame->ZFAudioFromFile(name.get(), first, count));
}

void Walk::Reset() {
    Sounding &a = m_pair[0];
    Bytes sound = Noise(a.model.props);
    const bool zeros = m_dice(0, 2) == 0, refused = m_dice(0, 9) == 0;
    m_said = "reset " + std::to_string(sound.size());
    const ComPtr<IZFrame_I> view = QueryFor<IZFrame_I>(a.frame.get());
    if (refused) return Same(E_INVALIDARG, view->FrameAudioReset(-1, AddressOf(sound.data())));
    const int64_t address = zeros || sound.empty() ? 0 : AddressOf(sound.data());
    Same(S_OK, m_dice(0, 1) != 0 ? view->FrameAudioReset(static_cast<int32_t>(sound.size()), address)
                                 : view->FrameAudioResetFwd(static_cast<int32_t>(sound.size()), address));
    a.model.channels = {};
    a.model.bytes = zeros ? Bytes(sound.size()) : sound;
}

// Stored and loaded again a frame has the same sound, and no split one.
void Walk::Reload() {
    Sounding &a = m_pair[0];
    m_said = "reload";
    const ComPtr<IZFrame_I> view = QueryFor<IZFrame_I>(a.frame.get());
    ComPtr<IUnknown> stream;
    ASSERT_EQ(view->ZFSaveToStream(stream.Put(), eZFC_Audio), S_OK);
    if (m_dice(0, 1) != 0) a.frame = New().frame;
    a.model.channels = {};
    Same(S_OK, QueryFor<IZFrame_I>(a.frame.get())->ZFLoadFromStream(stream.get(), eZFC_Audio));
}

// A clone of a frame that pretends to live elsewhere holds a block that was handed over.
void Walk::FromAnotherProcess() {
    Sounding &a = m_pair[0];
    m_said = "clone from elsewhere";
    ForeignFrame elsewhere(QueryFor<IZFrame>(a.frame.get()), Answers::FrameI);
    elsewhere.m_process = zck::CurrentProcessId() + 1;
    ComPtr<IZFrame_I> clone;
    ASSERT_EQ(m_factory->FrameCloneConvert(&elsewhere, clone.Put(), eZFC_Audio, eZFCC_Default), S_OK);
    a.frame = QueryFor<IZFFrame>(clone.get());
    a.model.channels = {};
}

void Walk::Step() {
    Sounding &a = m_pair[0], &b = m_pair[1];
    const std::string map = Map();
    const Bstr mapText = map.empty() && m_dice(0, 1) != 0 ? Bstr() : TextOf(map.c_str());
    const double from = Db(), to = m_dice(0, 2) == 0 ? Db() : from;
    switch (m_dice(0, 18)) {
        case 0:
        case 1: {
            Z_AUD_PROPS p = Record();
            Bytes sound = Noise(p);
            m_said = "set " + Words(p) + ", " + std::to_string(sound.size()) + " bytes";
            return Same(a.model.Set(&p, sound),
                        a.frame->ZFAudioSet(&p, static_cast<int32_t>(sound.size()), AddressOf(sound.data())));
        }
        case 2: {
            m_said = "set without a record";
            Bytes sound = Noise(a.model.props);
            return Same(a.model.Set(nullptr, sound),
                        a.frame->ZFAudioSet(nullptr, static_cast<int32_t>(sound.size()), AddressOf(sound.data())));
        }
        case 3: {
            Z_AUD_PROPS p = Record();
            int32_t samples = m_dice(-1, 9);
            // Too much is refused; much would only take time.
            if (SoundBytes(p, samples) > 100000 && SoundBytes(p, samples) <= INT32_MAX) samples = 0;
            m_said = "samples " + Words(p) + ", " + std::to_string(samples);
            return Same(a.model.SetSamples(&p, samples), a.frame->ZFAudioSamplesSet(&p, samples));
        }
        case 4:
        case 5:
            return Channel();
        case 6:
            m_said = "commit";
            return Same(a.model.Commit(), a.frame->ZFAudioChannelsCommit());
        case 7:
        case 8:
            m_said = "gain " + map + " dB " + std::to_string(from) + " " + std::to_string(to);
            return Same(a.model.Gain(map, from, to), a.frame->ZFAudioGain(mapText.get(), from, to));
        case 9:
            return Add(m_dice(0, 9) == 0 ? nullptr : m_dice(0, 9) == 0 ? &a : &b);
        case 10: {
            const bool fade = m_dice(0, 1) != 0, null = m_dice(0, 20) == 0;
            m_said = "mix dB " + std::to_string(from) + " " + std::to_string(to) + (fade ? " fade" : "");
            return Same(a.model.Mix(null ? nullptr : &b.model, from, to, fade),
                        a.frame->ZFAudioMix(null ? nullptr : b.frame.get(), from, to, fade ? 1 : 0,
                                            m_dice(0, 1) != 0 ? mapText.get() : nullptr));
        }
        case 11: {
            const int32_t dest = m_dice(0, 9);
            m_said = "copy " + map + (dest == 1 ? " to itself" : "");
            Sounding *to_ = dest == 0 ? nullptr : dest == 1 ? &a : &b;
            return Same(a.model.CopyTo(map, to_ == nullptr ? nullptr : &to_->model),
                        a.frame->ZFAudioCopyTo(mapText.get(), to_ == nullptr ? nullptr : to_->frame.get()));
        }
        case 12:
        case 13: {
            Z_AV_PROPS props = {};
            props.audProps = m_dice(0, 3) == 0 ? Z_AUD_PROPS{m_dice(-1, 1), 0, 0, 7} : Record();
            if (SampleWidth(props.audProps.nBitsPerSample) > 16) props.audProps.nBitsPerSample = 16;
            if (m_dice(0, 2) == 0 && SoundValid(a.model.props)) props.audProps.nChannels = a.model.props.nChannels;
            props.ancData.eFlags = eZAF_AL_Valid;
            const bool null = m_dice(0, 9) == 0;
            m_said = "properties " + Words(props.audProps) + " map " + map + (null ? " null" : "");
            return Same(a.model.SetProps(null ? Z_AUD_PROPS{} : props.audProps, map),
                        a.frame->ZFAVPropsSet(null ? nullptr : &props, mapText.get()));
        }
        case 14:
            return Raw();
        case 15:
            return Reset();
        case 16:
            return Reload();
        case 17:
            return FromAnotherProcess();
        default:
            return Wav();
    }
}

// Sequences of operations on two frames that exchange their parts.
TEST_F(Walk, AnyOperationOnAnyRecord) {
    for (uint32_t round = 0; round < 700; ++round) {
        m_dice = Dice(round);
        m_pair = {New(), New()};
        std::string story;
        for (int step = 0; step < 30; ++step) {
            if (m_dice(0, 4) == 0) std::swap(m_pair[0], m_pair[1]), story += "swap\n";
            m_said.clear();
            const std::string before = Words(m_pair[0].model.props) + " " + std::to_string(m_pair[0].model.bytes.size());
            Step();
            story += "[" + before + "] " + m_said + "\n";
            for (Sounding &one : m_pair) {
                const std::string difference = one.Check();
                ASSERT_EQ(difference, "") << "round " << round << "\n" << story;
            }
            ASSERT_FALSE(HasFailure()) << "round " << round << "\n" << story;
        }
    }
}

class SoundArguments : public Sounds {};

TEST_F(SoundArguments, OutputsMayBeMissingAndAreClearedFirst) {
    const Sounding one = New();
    int32_t size = 5;
    int64_t address = 5;
    EXPECT_EQ(one.frame->ZFAudioChannelGet(0, 1, &size, &address), Z_E_EMPTY);
    EXPECT_EQ(size, 0);
    EXPECT_EQ(address, 0);
    Z_AUD_PROPS p = {2, 48000, 16, 0};
    Bytes sound = {1, 0, 2, 0};
    ASSERT_EQ(one.frame->ZFAudioSet(&p, 4, AddressOf(sound.data())), S_OK);
    EXPECT_EQ(one.frame->ZFAudioChannelGet(1, 0, nullptr, nullptr), S_OK);
    EXPECT_EQ(one.frame->ZFAudioChannelGet(1, 0, &size, nullptr), S_OK);
    EXPECT_EQ(size, 2);
}

TEST_F(SoundArguments, WhatIsRefusedChangesNothing) {
    Sounding one = New();
    Z_AUD_PROPS p = {2, 48000, 16, 3}, huge = {2000000000, 48000, 16, 0}, wider = {INT32_MAX, 1, INT32_MIN, 0};
    Bytes sound = {1, 0, 2, 0};
    ASSERT_EQ(one.frame->ZFAudioSet(&p, 4, AddressOf(sound.data())), S_OK);
    one.model.Set(&p, sound);
    EXPECT_EQ(one.frame->ZFAudioSet(&huge, -1, AddressOf(sound.data())), E_INVALIDARG);
    EXPECT_EQ(one.frame->ZFAudioSamplesSet(nullptr, 1), E_INVALIDARG);
    EXPECT_EQ(one.frame->ZFAudioSamplesSet(&p, -1), E_INVALIDARG);
    EXPECT_EQ(one.frame->ZFAudioSamplesSet(&huge, 1), E_OUTOFMEMORY);
    EXPECT_EQ(one.frame->ZFAudioSamplesSet(&wider, INT32_MAX), E_OUTOFMEMORY);
    EXPECT_EQ(one.Check(), "");
    // As many channels would be 4 GB: refused before the sound goes, when rate and split are already taken over.
    Z_AV_PROPS props = {};
    props.audProps = {2000000000, 8000, 16, 9};
    EXPECT_EQ(one.frame->ZFAVPropsSet(&props, nullptr), E_OUTOFMEMORY);
    one.model.props = {2, 8000, 16, 9};
    EXPECT_EQ(one.Check(), "");
    // Where the picture is refused the sound is not looked at.
    props.vidProps = Picture(eZFCC_UYVY, 16, 8);
    props.audProps = {1, 48000, 24, 0};
    EXPECT_EQ(one.frame->ZFAVPropsSet(&props, nullptr), kBadSound);
    EXPECT_EQ(one.Check(), "");
    // A sum that leaves 31 bits.
    Sounding empty = New();
    int32_t at = INT32_MAX;
    EXPECT_EQ(empty.frame->ZFAudioAdd(one.frame.get(), nullptr, &at, -1, 0, 0, 0), E_OUTOFMEMORY);
    EXPECT_EQ(at, INT32_MAX);
    EXPECT_EQ(empty.Check(), "");
}

// Bytes of the frame's own sound may be what it is given.
TEST_F(SoundArguments, OwnBytes) {
    Sounding one = New();
    Z_AUD_PROPS p = {1, 48000, 16, 0};
    Bytes sound = {1, 0, 2, 0, 3, 0};
    ASSERT_EQ(one.frame->ZFAudioSet(&p, 6, AddressOf(sound.data())), S_OK);
    ASSERT_EQ(one.frame->ZFAudioSet(nullptr, 4, Audio(one.frame).address + 2), S_OK);
    EXPECT_EQ(Audio(one.frame).bytes(), (Bytes{2, 0, 3, 0}));
    ASSERT_EQ(one.frame->ZFAudioSet(nullptr, 0, Audio(one.frame).address), S_OK);
    EXPECT_EQ(Audio(one.frame).bytes(), Bytes());
}

}    // namespace
}    // namespace conformance
