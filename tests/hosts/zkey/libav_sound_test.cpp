// Sound of clips: plain samples travel in the frames, all other sound is copied; and zkey audio on what FFmpeg decodes.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "hosts/zkey/libav/clip.h"
#include "hosts/zkey/sound_file.h"
#include "tests/hosts/zkey/program.h"
#include "tests/hosts/zkey/scene_input.h"
#include "tests/hosts/zkey/wav_bytes.h"

namespace {

using namespace zkey;
using Bytes = std::vector<uint8_t>;

constexpr int kRate = 44100;
constexpr int kPacket = 1001;    // samples; none of the pictures begins with a packet
constexpr int kPackets = 16;
constexpr int kFrames = 6;

struct Form {
    AVCodecID codec;
    int bytes;
    int bits;    ///< of a frame's record; 0 where it has none
};

constexpr Form kForms[] = {{AV_CODEC_ID_PCM_S16LE, 2, 16},
                           {AV_CODEC_ID_PCM_S24LE, 3, 24},
                           {AV_CODEC_ID_PCM_S32LE, 4, 32},
                           {AV_CODEC_ID_PCM_F32LE, 4, -32},
                           {AV_CODEC_ID_PCM_S16BE, 2, 0}};

/// Bytes of all values; as float they are no numbers too.
Bytes Noise(std::size_t size) {
    std::minstd_rand next(5);
    Bytes out(size);
    for (uint8_t &b : out) b = static_cast<uint8_t>(next() >> 8);
    return out;
}

Bytes NoiseOf(const Form &form) { return Noise(static_cast<std::size_t>(kPackets * kPacket * 2 * form.bytes)); }

void AddStream(AVFormatContext *out, const Form &form) {
    AVStream *sound = avformat_new_stream(out, nullptr);
    AVCodecParameters *p = sound->codecpar;
    p->codec_type = AVMEDIA_TYPE_AUDIO;
    p->codec_id = form.codec;
    p->sample_rate = kRate;
    p->ch_layout = AV_CHANNEL_LAYOUT_STEREO;
    p->bits_per_coded_sample = 8 * form.bytes;
    p->block_align = 2 * form.bytes;
    sound->time_base = {1, kRate};
}

/// A clip of the scene at 25 pictures a second with stereo noise; where it comes `late`, it lies behind the pictures and is
/// read when they are.
std::string NoisyClip(const Scratch &scratch, const Form &form, bool late = false) {
    Bytes pictures;
    for (int i = 0; i < kFrames; ++i) {
        const auto picture = Scene(96, 54, i).pixels;
        pictures.insert(pictures.end(), picture.begin(), picture.end());
    }
    scratch.Write("scene.raw", pictures);
    const Outcome run =
        RunProgram(scratch, "key " + scratch.Path("scene.raw") + " --raw RGB32:96x54@25 --type Alpha --over black -o " +
                                scratch.Path("mute.mkv"));
    EXPECT_EQ(run.status, 0) << run.error;
    const std::string path = scratch.Path(late ? "noisy.mkv" : "noisy.mov");
    AVFormatContext *in = nullptr;
    AVFormatContext *out = nullptr;
    EXPECT_EQ(avformat_open_input(&in, scratch.Path("mute.mkv").c_str(), nullptr, nullptr), 0);
    EXPECT_GE(avformat_find_stream_info(in, nullptr), 0);
    avformat_alloc_output_context2(&out, nullptr, nullptr, path.c_str());
    AVStream *video = avformat_new_stream(out, nullptr);
    avcodec_parameters_copy(video->codecpar, in->streams[0]->codecpar);
    video->codecpar->codec_tag = 0;
    video->time_base = in->streams[0]->time_base;
    video->avg_frame_rate = {25, 1};
    AddStream(out, form);
    EXPECT_EQ(avio_open(&out->pb, path.c_str(), AVIO_FLAG_WRITE), 0);
    EXPECT_GE(avformat_write_header(out, nullptr), 0);
    const auto write = [&](AVPacket *p) {
        EXPECT_GE(late ? av_write_frame(out, p) : av_interleaved_write_frame(out, p), 0);
        av_packet_unref(p);
    };
    const Libav<AVPacket> packet(av_packet_alloc());
    while (av_read_frame(in, packet.get()) == 0) {
        packet->stream_index = 0;
        packet->duration = av_rescale_q(1, AVRational{1, 25}, in->streams[0]->time_base);
        av_packet_rescale_ts(packet.get(), in->streams[0]->time_base, video->time_base);
        write(packet.get());
    }
    const Bytes noise = NoiseOf(form);
    const std::size_t size = noise.size() / kPackets;
    for (std::size_t i = 0; i < kPackets; ++i) {
        av_new_packet(packet.get(), static_cast<int>(size));
        std::copy_n(noise.data() + i * size, size, packet->data);
        packet->pts = packet->dts = static_cast<int64_t>(i) * kPacket;
        packet->duration = kPacket;
        av_packet_rescale_ts(packet.get(), AVRational{1, kRate}, out->streams[1]->time_base);
        packet->stream_index = 1;
        write(packet.get());
    }
    av_write_trailer(out);
    avio_closep(&out->pb);
    avformat_free_context(out);
    avformat_close_input(&in);
    return path;
}

/// All sound of a clip, as it lies in the file.
Bytes SoundBytesOf(const std::string &path) {
    Clip clip(path, true);
    while (clip.Next() != nullptr) {
    }
    Bytes out;
    if (clip.Info().audio == nullptr) return out;
    while (const auto packet = clip.Info().audio->Take()) out.insert(out.end(), packet->data, packet->data + packet->size);
    return out;
}

// The pictures last 6 / 25 seconds, which end within a packet of each size that a container makes.
void ExpectStartOfNoise(const std::string &path, const Form &form) {
    const Bytes sound = SoundBytesOf(path);
    const Bytes noise = NoiseOf(form);
    const std::size_t sample = static_cast<std::size_t>(2 * form.bytes);
    EXPECT_GE(sound.size() / sample, static_cast<std::size_t>(kRate * kFrames / 25)) << path;
    ASSERT_LE(sound.size(), noise.size());
    EXPECT_TRUE(std::equal(sound.begin(), sound.end(), noise.begin())) << path;
}

TEST(LibavSound, GoesThroughTheFramesSampleForSample) {
    for (const Form &form : kForms) {
        const Scratch scratch;
        const std::string in = NoisyClip(scratch, form);
        for (const char *options : {"", " --prop output.thread=true", " --exact"}) {
            for (const char *name : {"out.mov", "out.mkv"}) {
                const Outcome run = RunProgram(scratch, "key " + in + " -c 34B24A -o " + scratch.Path(name) + options);
                EXPECT_EQ(run.status, 0) << run.error;
                ExpectStartOfNoise(scratch.Path(name), form);
            }
        }
    }
}

TEST(LibavSound, LateSoundIsNotLost) {
    const Scratch scratch;
    const std::string in = NoisyClip(scratch, kForms[0], true);
    ASSERT_EQ(RunProgram(scratch, "key " + in + " -c 34B24A -o " + scratch.Path("out.mov")).status, 0);
    ExpectStartOfNoise(scratch.Path("out.mov"), kForms[0]);
    // A clip that is stopped has the sound of its pictures.
    ASSERT_EQ(RunProgram(scratch, "key " + in + " -c 34B24A --frames 2 -o " + scratch.Path("two.mov")).status, 0);
    const std::size_t samples = SoundBytesOf(scratch.Path("two.mov")).size() / 4;
    EXPECT_GE(samples, static_cast<std::size_t>(kRate * 2 / 25));
    EXPECT_LT(samples, static_cast<std::size_t>(kRate * 4 / 25));
}

TEST(LibavSound, EachPictureGetsItsOwn) {
    for (const bool late : {false, true}) {
        const Scratch scratch;
        Clip clip(NoisyClip(scratch, kForms[1], late), true);
        Bytes all;
        for (int i = 0; clip.Next() != nullptr; ++i) {
            Sound sound;
            clip.TakeSound(sound);
            EXPECT_EQ(sound.props.nBitsPerSample, 24);
            EXPECT_EQ(sound.props.nChannels, 2);
            EXPECT_EQ(sound.props.nSamplesPerSec, kRate);
            all.insert(all.end(), sound.samples.begin(), sound.samples.end());
            // Up to the end of this picture, and the rest of the packet that lies there.
            const std::size_t due = static_cast<std::size_t>(kRate * (i + 1) / 25) * 6;
            EXPECT_GE(all.size(), due) << i;
            EXPECT_LE(all.size(), due + 2 * kPacket * 6) << i;
            EXPECT_EQ(clip.Info().audio->TakeBack(), nullptr);
        }
        // Bytes come back in any pieces; packets come out whole.
        for (std::size_t at = 0; at < all.size(); at += 999) {
            clip.Info().audio->GiveBack({all.data() + at, std::min<std::size_t>(999, all.size() - at)});
        }
        Bytes back;
        while (const auto packet = clip.Info().audio->TakeBack()) {
            back.insert(back.end(), packet->data, packet->data + packet->size);
        }
        EXPECT_EQ(back, all);
    }
}

TEST(LibavSound, WhatAFrameCannotStateIsCopied) {
    const Scratch scratch;
    Clip clip(NoisyClip(scratch, kForms[4]), true);
    ASSERT_NE(clip.Next(), nullptr);
    EXPECT_FALSE(clip.Info().audio->Samples());
    Sound sound;
    clip.TakeSound(sound);
    EXPECT_TRUE(sound.samples.empty());
}

TEST(LibavSound, AStoredFrameHasTheSoundOfItsPicture) {
    const Scratch scratch;
    const std::string in = NoisyClip(scratch, kForms[0]);
    ASSERT_EQ(RunProgram(scratch, "frame save " + in + " -c 34B24A -o " + scratch.Path("f.zf")).status, 0);
    const Outcome shown = RunProgram(scratch, "frame show " + scratch.Path("f.zf"));
    EXPECT_NE(shown.out.find(" samples, 2 channels, 44100 Hz, 16 bits\n"), std::string::npos) << shown.out;
    const Bytes noise = NoiseOf(kForms[0]);
    const std::string start(noise.begin(), noise.begin() + kRate / 25 * 4);
    EXPECT_NE(scratch.Text("f.zf").find(start), std::string::npos);
}

TEST(LibavSound, AudioCommandDecodes) {
    for (const Form &form : kForms) {
        if (form.bits == -32) continue;    // noise is no sound there
        const Scratch scratch;
        const Sound sound = DecodeSound(NoisyClip(scratch, form));
        EXPECT_EQ(sound.props.nBitsPerSample, form.bits == 0 ? 16 : form.bits);
        EXPECT_EQ(sound.props.nSamplesPerSec, kRate);
        Bytes noise = NoiseOf(form);
        if (form.bits == 0) {
            for (std::size_t i = 0; i < noise.size(); i += 2) std::swap(noise[i], noise[i + 1]);
        }
        EXPECT_EQ(sound.samples, noise);
    }
    // WAV files with samples that the library does not read.
    const Scratch scratch;
    scratch.Write("double.wav", WavBytes(3, 1, 8000, 64, BytesOf(std::vector<double>{0.5, 0.1, -1})));
    const Sound narrow = DecodeSound(scratch.Path("double.wav"));
    EXPECT_EQ(narrow.props.nBitsPerSample, -32);
    EXPECT_EQ(narrow.samples, BytesOf(std::vector<float>{0.5F, 0.1F, -1}));
    scratch.Write("law.wav", WavBytes(6, 1, 8000, 8, Bytes(800, 0xD5)));
    const Outcome law = RunProgram(scratch, "audio " + scratch.Path("law.wav"));
    EXPECT_NE(law.out.find("1 channel, 8000 Hz, 16 bits, 800 samples"), std::string::npos) << law.out << law.error;
    EXPECT_NE(RunProgram(scratch, "audio " + scratch.Write("x.bin", Bytes(999, 'x'))).error.find("is no file with sound"),
              std::string::npos);
    const Outcome mute =
        RunProgram(scratch, "audio " + scratch.Write("p.wav", {'R', 'I', 'F', 'F', 0, 0, 0, 0, 'W', 'A', 'V', 'E'}));
    EXPECT_EQ(mute.status, kExitFailed) << mute.out;
}

}    // namespace
