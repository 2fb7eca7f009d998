// The whole program on clips and pictures of FFmpeg's libraries, and on footage where it is at hand.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

#include "hosts/zkey/failure.h"
#include "hosts/zkey/libav/clip.h"
#include "tests/hosts/zkey/program.h"
#include "tests/scene/scene.h"

namespace {

using namespace zkey;
using Bytes = std::vector<uint8_t>;

constexpr int kWidth = 322;
constexpr int kHeight = 181;
constexpr int kFrames = 6;

/// A clip of the scene, as `zkey` itself writes it when nothing is keyed.
std::string SceneClip(const Scratch &scratch, const std::string &name, const std::string &options = "") {
    Bytes clip;
    zck::SceneParams p;
    p.width = kWidth;
    p.height = kHeight;
    p.frames = kFrames;
    for (int i = 0; i < kFrames; ++i) {
        const zck::ScenePicture picture = zck::RenderScene(p, i);
        clip.insert(clip.end(), picture.pixels.begin(), picture.pixels.end());
    }
    scratch.Write("scene.raw", clip);
    const Outcome run =
        RunProgram(scratch, "key " + scratch.Path("scene.raw") + " --raw RGB32:322x181@30 --type Alpha --over black -o " +
                                scratch.Path(name) + options);
    EXPECT_EQ(run.status, 0) << run.error;
    return scratch.Path(name);
}

/// Where a PNG starts, at this byte or behind it.
std::size_t StartOfPng(const Bytes &bytes, std::size_t at) {
    while (at + 3 < bytes.size() && !(bytes[at] == 0x89 && bytes[at + 1] == 'P' && bytes[at + 2] == 'N')) ++at;
    return at;
}

struct Decoded {
    int frames = 0;
    std::vector<int64_t> times;
    Bytes last;    ///< blue, green, red, alpha
    SourceInfo info;
};

Decoded Decode(const std::string &path) {
    Decoded d;
    Clip clip(path, true);
    d.info = clip.Info();
    Libav<SwsContext> scaler;
    while (const AVFrame *frame = clip.Next()) {
        ++d.frames;
        d.times.push_back(clip.Time());
        d.last.resize(static_cast<std::size_t>(frame->width) * static_cast<std::size_t>(frame->height) * 4);
        ConvertPicture(*frame, AV_PIX_FMT_BGRA, frame->width, frame->height, d.last.data(), frame->width * 4, scaler);
    }
    return d;
}

/// Mean distance of the alpha from the scene's own, in the last frame.
double AlphaError(const Bytes &bgra) {
    zck::SceneParams p;
    p.width = kWidth;
    p.height = kHeight;
    p.frames = kFrames;
    const zck::ScenePicture picture = zck::RenderScene(p, kFrames - 1);
    double sum = 0;
    for (std::size_t i = 0; i < picture.alpha.size(); ++i) sum += std::abs(bgra[4 * i + 3] - picture.alpha[i]);
    return sum / static_cast<double>(picture.alpha.size());
}

TEST(LibavRun, AClipIsKeyedWithNothingButAnOutput) {
    const Scratch scratch;
    const std::string input = SceneClip(scratch, "in.mp4");
    for (const char *output : {"out.mov", "out.mkv", "out_%02d.png"}) {
        SCOPED_TRACE(output);
        const Outcome run = RunProgram(scratch, "key " + input + " -o " + scratch.Path(output));
        ASSERT_EQ(run.status, 0) << run.error;
        EXPECT_NE(run.error.find("assumed a green screen"), std::string::npos);
        const Decoded d = Decode(scratch.Path(output));
        EXPECT_EQ(d.frames, kFrames);
        EXPECT_EQ(d.info.width, kWidth);
        EXPECT_EQ(d.info.height, kHeight);
        EXPECT_LT(AlphaError(d.last), 8);
    }
}

TEST(LibavRun, AnyPictureOfAClipCanBeReached) {
    const Scratch scratch;
    Bytes clip;
    for (int i = 0; i < 300; ++i) clip.insert(clip.end(), 32 * 32 * 4, static_cast<uint8_t>(i * 4 / 5));
    scratch.Write("in.raw", clip);
    for (const char *name : {"in.mp4", "in.mkv", "in_%03d.png"}) {
        SCOPED_TRACE(name);
        const Outcome run = RunProgram(scratch, "key " + scratch.Path("in.raw") + " --raw RGB32:32x32@30 -o " +
                                                    scratch.Path(name) + " --type Alpha --over black");
        ASSERT_EQ(run.status, 0) << run.error;
        Clip read(scratch.Path(name), false);
        Libav<SwsContext> scaler;
        for (const int at : {0, 90, 60, 299, 299, 60}) {
            if (!read.JumpTo(at)) {
                ADD_FAILURE() << at;
                continue;
            }
            Bytes picture(32 * 32 * 4);
            ConvertPicture(*read.Next(), AV_PIX_FMT_BGRA, 32, 32, picture.data(), 32 * 4, scaler);
            EXPECT_NEAR(picture[2000], at * 4 / 5, 2) << at;
        }
        EXPECT_EQ(read.Next() != nullptr, true);
        EXPECT_FALSE(read.JumpTo(400));
    }
}

TEST(LibavRun, FieldsStayMarked) {
    const Scratch scratch;
    scratch.Write("in.raw", Bytes(64 * 32 * 4 * 2, 90));
    for (const char *order : {"top", "bottom", "progressive"}) {
        for (const char *name : {"out.mov", "out.mkv", "out.y4m"}) {
            SCOPED_TRACE(std::string(order) + " " + name);
            const std::string over = std::string_view(name) == "out.y4m" ? " --over black" : "";
            const Outcome run = RunProgram(scratch, "key " + scratch.Path("in.raw") + " --raw RGB32:64x32:" + order + over +
                                                        " -c red -q -o " + scratch.Path(name));
            ASSERT_EQ(run.status, 0) << run.error;
            AVFormatContext *file = nullptr;
            ASSERT_EQ(avformat_open_input(&file, scratch.Path(name).c_str(), nullptr, nullptr), 0);
            const AVFieldOrder read = file->streams[0]->codecpar->field_order;
            avformat_close_input(&file);
            if (*order == 'p') {
                EXPECT_TRUE(read == AV_FIELD_PROGRESSIVE || read == AV_FIELD_UNKNOWN) << read;
            } else {
                EXPECT_EQ(read, *order == 't' ? AV_FIELD_TT : AV_FIELD_BB);
            }
        }
    }
}

TEST(LibavRun, AStillOfAClipIsItsFirstFrame) {
    const Scratch scratch;
    const Outcome run = RunProgram(scratch, "key " + SceneClip(scratch, "in.mp4") + " -c green -o " + scratch.Path("out.png"));
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.error.find("only the first frame"), std::string::npos) << run.error;
    const Outcome one =
        RunProgram(scratch, "key " + scratch.Path("in.mp4") + " -c green --frames 1 -o " + scratch.Path("out.png"));
    EXPECT_EQ(one.status, 0);
    EXPECT_EQ(one.error, "");
    EXPECT_EQ(Decode(scratch.Path("out.png")).frames, 1);
}

TEST(LibavRun, FilesThatCannotBeReadAreNamedAsWhatTheyAre) {
    const Scratch scratch;
    const std::string clip = SceneClip(scratch, "in.mp4");
    EXPECT_EQ(RunProgram(scratch, "key " + clip + " -c green -o " + scratch.Path("out.png")).status, 0);
    Bytes picture = scratch.Read("out.png");
    picture.resize(picture.size() / 2);
    const std::string part = scratch.Write("part.png", picture);
    picture.resize(20);
    const struct {
        std::string arguments;
        const char *says;
    } cases[] = {{scratch.Write("cut.png", picture) + " -c green", "cut.png is damaged, or no picture at all"},
                 {part + " -c green", "part.png is damaged\n"},
                 {scratch.Write("text.junk", Bytes(5000, 'x')) + " -c green", "raw frames need --raw"},
                 {clip + " -c green --over " + scratch.Write("empty.png", {}), "empty.png is empty\n"},
                 {clip + " -c green --over " + scratch.Path("text.junk"), "is no clip or picture that can be read\n"}};
    for (const auto &c : cases) {
        const Outcome run = RunProgram(scratch, "key " + c.arguments + " -o " + scratch.Path("x.mp4"));
        EXPECT_EQ(run.status, kExitFailed);
        EXPECT_NE(run.error.find(c.says), std::string::npos) << run.error;
    }
}

TEST(LibavRun, AClipThatBreaksOffIsTold) {
    const Scratch scratch;
    const std::string clip = SceneClip(scratch, "in.mkv");
    const std::string options = " -q -c green -o " + scratch.Path("out.mkv");
    EXPECT_EQ(RunProgram(scratch, "key " + clip + options).error, "");
    Bytes bytes = scratch.Read("in.mkv");
    bytes.resize(bytes.size() / 2);
    const std::string part = scratch.Write("part.mkv", bytes);
    const Outcome run = RunProgram(scratch, "key " + part + options);
    EXPECT_EQ(run.status, kExitDone);
    EXPECT_NE(run.error.find("part.mkv says that it has about 6 frames, but "), std::string::npos) << run.error;
    EXPECT_GT(Decode(scratch.Path("out.mkv")).frames, 0);
    EXPECT_EQ(RunProgram(scratch, "key " + part + options + " --frames 2").error, "");
}

TEST(LibavRun, DamagedPicturesAreLeftOutAndTold) {
    const Scratch scratch;
    SceneClip(scratch, "in.mov", " --codec png");
    Bytes bytes = scratch.Read("in.mov");
    // In the middle of the file lies the third or the fourth picture. The last one fails when the decoder is emptied.
    std::size_t last = 0;
    for (std::size_t at = 0; at + 3 < bytes.size(); at = StartOfPng(bytes, at + 1)) last = at;
    for (const std::size_t at : {StartOfPng(bytes, bytes.size() / 2), last}) {
        std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), 4000, 0);
    }
    const Outcome run =
        RunProgram(scratch, "key " + scratch.Write("bad.mov", bytes) + " -q -c green -o " + scratch.Path("out.mkv"));
    EXPECT_EQ(run.status, kExitDone);
    EXPECT_NE(run.error.find("bad.mov: 2 pictures are damaged and left out"), std::string::npos) << run.error;
    EXPECT_EQ(Decode(scratch.Path("out.mkv")).frames, kFrames - 2);
}

TEST(LibavRun, NamesMayHaveColons) {
    const Scratch scratch;
    const std::string clip = SceneClip(scratch, "in.mkv");
    // Relative names: behind a slash a colon is none of a protocol.
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(scratch.Path(""));
    std::filesystem::rename("in.mkv", "10:15.mkv");
    for (const char *out : {"a:b.mkv", "c:d.png", "e:%d.png"}) {
        const Outcome run = RunProgram(scratch, std::string("key 10:15.mkv -q -c green -o ") + out);
        EXPECT_EQ(run.status, kExitDone) << run.error;
    }
    EXPECT_TRUE(std::filesystem::exists("a:b.mkv") && std::filesystem::exists("c:d.png") && std::filesystem::exists("e:6.png"));
    std::filesystem::current_path(before);
}

TEST(LibavRun, CompositesAndMattesGoToOpaqueClips) {
    const Scratch scratch;
    const std::string input = SceneClip(scratch, "in.mkv");
    const std::string still = scratch.Path("still.png");
    ASSERT_EQ(RunProgram(scratch, "key " + input + " -c FFFFFF -t 0 -s 0 --over pureblue -o " + still).status, 0);
    for (const char *how : {"--matte", "--over checker", "--over FF8000", "--over BACK", "--over CLIP"}) {
        std::string options = how;
        if (const auto at = options.find("BACK"); at != std::string::npos) options.replace(at, 4, still);
        if (const auto at = options.find("CLIP"); at != std::string::npos) options.replace(at, 4, input);
        const Outcome run = RunProgram(scratch, "key " + input + " -q " + options + " -o " + scratch.Path("out.mp4"));
        EXPECT_EQ(run.status, 0) << how << run.error;
        EXPECT_EQ(Decode(scratch.Path("out.mp4")).frames, kFrames) << how;
    }
}

/// Adds a second of silence to a clip, so that there is sound to be carried over.
void AddSound(const std::string &from, const std::string &to) {
    AVFormatContext *in = nullptr;
    ASSERT_EQ(avformat_open_input(&in, from.c_str(), nullptr, nullptr), 0);
    ASSERT_GE(avformat_find_stream_info(in, nullptr), 0);
    AVFormatContext *out = nullptr;
    avformat_alloc_output_context2(&out, nullptr, nullptr, to.c_str());
    AVStream *video = avformat_new_stream(out, nullptr);
    avcodec_parameters_copy(video->codecpar, in->streams[0]->codecpar);
    video->codecpar->codec_tag = 0;
    video->time_base = in->streams[0]->time_base;
    AVStream *sound = avformat_new_stream(out, nullptr);
    sound->codecpar->codec_type = AVMEDIA_TYPE_AUDIO;
    sound->codecpar->codec_id = AV_CODEC_ID_PCM_S16LE;
    sound->codecpar->sample_rate = 8000;
    sound->codecpar->ch_layout = AV_CHANNEL_LAYOUT_MONO;
    sound->codecpar->format = AV_SAMPLE_FMT_S16;
    sound->codecpar->bits_per_coded_sample = 16;
    sound->codecpar->block_align = 2;
    sound->time_base = {1, 8000};
    ASSERT_EQ(avio_open(&out->pb, to.c_str(), AVIO_FLAG_WRITE), 0);
    ASSERT_GE(avformat_write_header(out, nullptr), 0);
    Libav<AVPacket> packet(av_packet_alloc());
    while (av_read_frame(in, packet.get()) == 0) {
        packet->stream_index = 0;
        av_packet_rescale_ts(packet.get(), in->streams[0]->time_base, video->time_base);
        av_interleaved_write_frame(out, packet.get());
    }
    for (int i = 0; i < 40; ++i) {
        av_new_packet(packet.get(), 400);
        std::fill_n(packet->data, 400, uint8_t{0});
        packet->pts = packet->dts = av_rescale_q(i * 200, AVRational{1, 8000}, sound->time_base);
        packet->duration = av_rescale_q(200, AVRational{1, 8000}, sound->time_base);
        packet->stream_index = 1;
        av_interleaved_write_frame(out, packet.get());
    }
    av_write_trailer(out);
    avio_closep(&out->pb);
    avformat_free_context(out);
    avformat_close_input(&in);
}

TEST(LibavRun, SoundIsCarriedOverOrItsLossIsTold) {
    const Scratch scratch;
    AddSound(SceneClip(scratch, "silent.mkv"), scratch.Path("in.mkv"));
    const std::string command = "key " + scratch.Path("in.mkv") + " -c 34B24A ";
    Outcome run = RunProgram(scratch, command + "-o " + scratch.Path("out.mov"));
    EXPECT_EQ(run.status, 0) << run.error;
    EXPECT_TRUE(run.error.empty()) << run.error;
    const Decoded d = Decode(scratch.Path("out.mov"));
    EXPECT_EQ(d.frames, kFrames);
    ASSERT_NE(d.info.audio, nullptr);
    int64_t samples = 0;
    while (const auto packet = d.info.audio->Take()) samples += packet->size / 2;
    // A fifth of a second of pictures, and the packet that the last one falls into.
    EXPECT_GE(samples, 8000 / 5);
    EXPECT_LE(samples, 8000 / 5 + 200);

    EXPECT_EQ(RunProgram(scratch, command + "--no-audio -o " + scratch.Path("mute.mov")).status, 0);
    EXPECT_EQ(Decode(scratch.Path("mute.mov")).info.audio, nullptr);

    run = RunProgram(scratch, command + "-o " + scratch.Path("out.webm"));
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.error.find("cannot hold sound of the kind pcm_s16le"), std::string::npos) << run.error;
}

TEST(LibavRun, FramesKeepTheirTimes) {
    const Scratch scratch;
    const std::string input = SceneClip(scratch, "in.mp4");
    ASSERT_EQ(RunProgram(scratch, "key " + input + " -q -o " + scratch.Path("out.mov")).status, 0);
    const Decoded d = Decode(scratch.Path("out.mov"));
    EXPECT_EQ(d.info.rate.num, 30);
    EXPECT_EQ(d.info.rate.den, 1);
    EXPECT_EQ(d.times, (std::vector<int64_t>{0, 1, 2, 3, 4, 5}));
}

TEST(LibavRun, RefusalsAreOneLine) {
    const Scratch scratch;
    const std::string input = SceneClip(scratch, "in.mp4");
    const struct {
        std::string arguments;
        int status;
        const char *says;
    } cases[] = {{input + " -o " + scratch.Path("a.mp4"), kExitUsage, "cannot hold alpha"},
                 {input + " -o " + scratch.Path("a.xyz"), kExitUsage, "no such kind of file"},
                 {input + " -o " + scratch.Path("a.mov") + " --codec nothing", kExitUsage, "no encoder"},
                 {input + " -o " + scratch.Path("a.mp4") + " --over nothing.png", kExitFailed, "cannot open nothing.png"},
                 {scratch.Write("x.mp4", Bytes(999, 'x')) + " -o " + scratch.Path("a.mov"), kExitFailed, "no clip or picture"},
                 {scratch.Path("none.mp4") + " -o " + scratch.Path("a.mov"), kExitFailed, "No such file"},
                 {input + " -f mov -o /dev/full", kExitFailed, "No space left"}};
    for (const auto &c : cases) {
        const Outcome run = RunProgram(scratch, "key " + c.arguments);
        EXPECT_EQ(run.status, c.status) << c.arguments;
        EXPECT_NE(run.error.find(c.says), std::string::npos) << run.error;
    }
}

/// Real pictures with a screen: the border, which shows it, must go, and something must stay.
TEST(LibavRun, FootageIsKeyedByItself) {
    const std::filesystem::path footage = ZKEY_FOOTAGE;
    if (!std::filesystem::exists(footage)) {
        std::printf("no footage in %s: real pictures are not tried\n", footage.string().c_str());
        return;
    }
    const Scratch scratch;
    int tried = 0;
    for (const auto &file : std::filesystem::directory_iterator(footage)) {
        const std::string name = file.path().filename().string();
        const bool screen = name.find("screen") != std::string::npos || name.find("composite_green") == 0;
        // Second pictures of composites have no screen or nothing else; the close-up of hair has hardly any.
        const bool part = name.find("_alpha") != std::string::npos || name.find("_foreground") != std::string::npos ||
                          name.find("_plate") != std::string::npos || name.find("hair_macro") != std::string::npos;
        if (!screen || part) continue;
        SCOPED_TRACE(name);
        const Outcome run = RunProgram(scratch, "key " + file.path().string() + " -o " + scratch.Path("out.png"));
        EXPECT_EQ(run.status, 0) << run.error;
        const Decoded d = Decode(scratch.Path("out.png"));
        std::size_t clear = 0;
        std::size_t solid = 0;
        for (std::size_t i = 3; i < d.last.size(); i += 4) {
            clear += d.last[i] == 0 ? 1 : 0;
            solid += d.last[i] == 255 ? 1 : 0;
        }
        const auto pixels = static_cast<double>(d.last.size() / 4);
        EXPECT_GT(static_cast<double>(clear) / pixels, 0.2);
        EXPECT_GT(static_cast<double>(solid) / pixels, 0.02);
        EXPECT_GT(static_cast<double>(clear + solid) / pixels, 0.85);
        ++tried;
    }
    EXPECT_GT(tried, 0);
}

}    // namespace
