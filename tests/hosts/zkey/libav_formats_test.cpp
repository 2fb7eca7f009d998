// The same picture in clips of every format that FFmpeg's libraries write without loss: the library's conversion to blue,
// green, red is the witness for the colours, and the matte stays that of the RGB clip.
#include <gtest/gtest.h>

#include <cstring>

#include "hosts/zkey/libav/libav.h"
#include "tests/hosts/zkey/format_pictures.h"

namespace {

using namespace zkey;
using Bytes = std::vector<uint8_t>;

enum class Scan { Progressive, Top, Bottom };

struct Kind {
    const char *name;
    AVPixelFormat format;
    AVCodecID codec;
    const char *file;
    AVColorSpace space = AVCOL_SPC_SMPTE170M;
    AVColorRange range = AVCOL_RANGE_MPEG;
    Scan scan = Scan::Progressive;
};

constexpr auto kFull = AVCOL_RANGE_JPEG;
constexpr auto kLimited = AVCOL_RANGE_MPEG;
constexpr auto k601 = AVCOL_SPC_SMPTE170M;
constexpr auto k709 = AVCOL_SPC_BT709;

constexpr Kind kKinds[] = {
    {"420 601", AV_PIX_FMT_YUV420P, AV_CODEC_ID_FFV1, "a.mkv"},
    {"420 601 raw", AV_PIX_FMT_YUV420P, AV_CODEC_ID_RAWVIDEO, "a.nut", AVCOL_SPC_UNSPECIFIED},
    {"nv12 raw", AV_PIX_FMT_NV12, AV_CODEC_ID_RAWVIDEO, "a.nut", AVCOL_SPC_UNSPECIFIED},
    {"420 709", AV_PIX_FMT_YUV420P, AV_CODEC_ID_FFV1, "a.mkv", k709},
    {"420 601 full", AV_PIX_FMT_YUV420P, AV_CODEC_ID_FFV1, "a.mkv", k601, kFull},
    {"420 601 top", AV_PIX_FMT_YUV420P, AV_CODEC_ID_FFV1, "a.mkv", k601, kLimited, Scan::Top},
    {"420 709 bottom", AV_PIX_FMT_YUV420P, AV_CODEC_ID_FFV1, "a.mkv", k709, kLimited, Scan::Bottom},
    {"420 10 bits 709", AV_PIX_FMT_YUV420P10, AV_CODEC_ID_FFV1, "a.mkv", k709},
    {"420 10 bits 709 top", AV_PIX_FMT_YUV420P10, AV_CODEC_ID_FFV1, "a.mkv", k709, kLimited, Scan::Top},
    {"422 601", AV_PIX_FMT_YUV422P, AV_CODEC_ID_FFV1, "a.mkv"},
    {"422 709", AV_PIX_FMT_YUV422P, AV_CODEC_ID_FFV1, "a.mkv", k709},
    {"422 709 full", AV_PIX_FMT_YUV422P, AV_CODEC_ID_FFV1, "a.mkv", k709, kFull},
    {"422 601 top", AV_PIX_FMT_YUV422P, AV_CODEC_ID_FFV1, "a.mkv", k601, kLimited, Scan::Top},
    {"uyvy 601", AV_PIX_FMT_UYVY422, AV_CODEC_ID_RAWVIDEO, "a.mov"},
    {"uyvy 709", AV_PIX_FMT_UYVY422, AV_CODEC_ID_RAWVIDEO, "a.mov", k709},
    {"uyvy 601 bottom", AV_PIX_FMT_UYVY422, AV_CODEC_ID_RAWVIDEO, "a.mov", k601, kLimited, Scan::Bottom},
    {"yuyv 601", AV_PIX_FMT_YUYV422, AV_CODEC_ID_RAWVIDEO, "a.mov"},
    {"yuyv 709", AV_PIX_FMT_YUYV422, AV_CODEC_ID_RAWVIDEO, "a.mov", k709},
    {"v210 601", AV_PIX_FMT_YUV422P10, AV_CODEC_ID_V210, "a.mov"},
    {"v210 709", AV_PIX_FMT_YUV422P10, AV_CODEC_ID_V210, "a.mov", k709},
    {"v210 601 top", AV_PIX_FMT_YUV422P10, AV_CODEC_ID_V210, "a.mov", k601, kLimited, Scan::Top},
    {"444 601", AV_PIX_FMT_YUV444P, AV_CODEC_ID_FFV1, "a.mkv"},
};

Libav<AVFrame> NewFrame(AVPixelFormat format, AVColorSpace space, AVColorRange range) {
    Libav<AVFrame> frame(av_frame_alloc());
    frame->format = format;
    frame->width = kFormatWidth;
    frame->height = kFormatHeight;
    frame->colorspace = space;
    frame->color_range = range;
    EXPECT_EQ(av_frame_get_buffer(frame.get(), 0), 0);
    return frame;
}

/// One field of a frame, or all of it: its rows lie that far apart.
struct Rows {
    uint8_t *data[4];
    int step[4];
};

Rows RowsOf(const AVFrame &f, int field, int fields) {
    Rows r{};
    for (int i = 0; i < 4 && f.data[i] != nullptr; ++i) {
        r.data[i] = f.data[i] + std::ptrdiff_t{field} * f.linesize[i];
        r.step[i] = f.linesize[i] * fields;
    }
    return r;
}

/// The witness: the libraries' own conversion at its most careful, each field by itself.
void Scale(const AVFrame &from, AVFrame &to, const Kind &kind) {
    const int fields = kind.scan == Scan::Progressive ? 1 : 2;
    const int flags = SWS_BILINEAR | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT | SWS_FULL_CHR_H_INP;
    const int *matrix = sws_getCoefficients(kind.space == k709 ? SWS_CS_ITU709 : SWS_CS_ITU601);
    const auto full = [&](const AVFrame &f) { return f.format == AV_PIX_FMT_BGRA || kind.range == kFull ? 1 : 0; };
    for (int field = 0; field < fields; ++field) {
        const Libav<SwsContext> sws(sws_getContext(kFormatWidth, kFormatHeight / fields, AVPixelFormat(from.format),
                                                   kFormatWidth, kFormatHeight / fields, AVPixelFormat(to.format), flags,
                                                   nullptr, nullptr, nullptr));
        ASSERT_NE(sws, nullptr);
        ASSERT_GE(sws_setColorspaceDetails(sws.get(), matrix, full(from), matrix, full(to), 0, 1 << 16, 1 << 16), 0);
        const Rows in = RowsOf(from, field, fields);
        const Rows out = RowsOf(to, field, fields);
        sws_scale(sws.get(), in.data, in.step, 0, kFormatHeight / fields, out.data, out.step);
    }
}

Libav<AVFrame> FrameOf(const Bytes &pixels) {
    Libav<AVFrame> frame = NewFrame(AV_PIX_FMT_BGRA, AVCOL_SPC_RGB, kFull);
    for (int y = 0; y < kFormatHeight; ++y) {
        std::memcpy(frame->data[0] + std::ptrdiff_t{y} * frame->linesize[0],
                    &pixels[static_cast<std::size_t>(y * kFormatWidth * 4)], kFormatWidth * 4);
    }
    return frame;
}

Bytes BytesOf(const AVFrame &frame) {
    Bytes bytes;
    for (int y = 0; y < kFormatHeight; ++y) {
        const uint8_t *row = frame.data[0] + std::ptrdiff_t{y} * frame.linesize[0];
        bytes.insert(bytes.end(), row, row + kFormatWidth * 4);
    }
    return bytes;
}

AVFieldOrder OrderOf(Scan scan) {
    return scan == Scan::Top ? AV_FIELD_TT : scan == Scan::Bottom ? AV_FIELD_BB : AV_FIELD_PROGRESSIVE;
}

/// A clip of one frame.
void Write(AVFrame &frame, const Kind &kind, const std::string &path) {
    frame.interlaced_frame = kind.scan == Scan::Progressive ? 0 : 1;
    frame.top_field_first = kind.scan == Scan::Top ? 1 : 0;
    const AVCodec *codec = avcodec_find_encoder(kind.codec);
    ASSERT_NE(codec, nullptr);
    const Libav<AVCodecContext> encoder(avcodec_alloc_context3(codec));
    encoder->width = kFormatWidth;
    encoder->height = kFormatHeight;
    encoder->pix_fmt = kind.format;
    encoder->time_base = {1, 25};
    encoder->colorspace = kind.space;
    // QuickTime writes matrices together with these.
    encoder->color_primaries = kind.space == k709 ? AVCOL_PRI_BT709 : AVCOL_PRI_SMPTE170M;
    encoder->color_trc = kind.space == k709 ? AVCOL_TRC_BT709 : AVCOL_TRC_SMPTE170M;
    encoder->color_range = kind.range;
    encoder->field_order = OrderOf(kind.scan);
    encoder->flags |= kind.scan == Scan::Progressive ? 0 : AV_CODEC_FLAG_INTERLACED_DCT;
    if (kind.codec == AV_CODEC_ID_FFV1) {
        encoder->level = 3;    // with fields
        av_opt_set_int(encoder->priv_data, "coder", 1, 0);
    }
    encoder->strict_std_compliance = FF_COMPLIANCE_EXPERIMENTAL;
    ASSERT_EQ(avcodec_open2(encoder.get(), codec, nullptr), 0);
    AVFormatContext *out = nullptr;
    ASSERT_GE(avformat_alloc_output_context2(&out, nullptr, nullptr, path.c_str()), 0);
    AVStream *stream = avformat_new_stream(out, nullptr);
    stream->time_base = encoder->time_base;
    ASSERT_GE(avcodec_parameters_from_context(stream->codecpar, encoder.get()), 0);
    ASSERT_EQ(avio_open(&out->pb, path.c_str(), AVIO_FLAG_WRITE), 0);
    ASSERT_GE(avformat_write_header(out, nullptr), 0);
    const Libav<AVPacket> packet(av_packet_alloc());
    frame.pts = 0;
    ASSERT_EQ(avcodec_send_frame(encoder.get(), &frame), 0);
    ASSERT_EQ(avcodec_send_frame(encoder.get(), nullptr), 0);
    while (avcodec_receive_packet(encoder.get(), packet.get()) == 0) {
        packet->stream_index = 0;
        packet->duration = 1;
        av_packet_rescale_ts(packet.get(), encoder->time_base, stream->time_base);
        av_interleaved_write_frame(out, packet.get());
    }
    av_write_trailer(out);
    avio_closep(&out->pb);
    avformat_free_context(out);
}

class LibavFormats : public ::testing::Test {
protected:
    /// Writes the picture as a clip of the kind; gives what the witness sees in it.
    Bytes Make(const Bytes &pixels, const Kind &kind) {
        Libav<AVFrame> samples = NewFrame(kind.format, kind.space, kind.range);
        Scale(*FrameOf(pixels), *samples, kind);
        Write(*samples, kind, m_scratch.Path(kind.file));
        const Libav<AVFrame> seen = NewFrame(AV_PIX_FMT_BGRA, AVCOL_SPC_RGB, kFull);
        Scale(*samples, *seen, kind);
        return BytesOf(*seen);
    }

    Bytes Run(const Kind &kind, const std::string &options) { return RunToRaw(m_scratch, m_scratch.Path(kind.file), options); }

    Scratch m_scratch;
};

TEST_F(LibavFormats, ColoursAreThoseThatTheWitnessSees) {
    const Bytes patches = FormatPatches().pixels;
    for (const Kind &kind : kKinds) {
        const Bytes witness = Make(patches, kind);
        const Bytes seen = Run(kind, "--type Alpha");
        // The keyer's matrices have 8 bits behind the point and cut or round, the witness rounds: 1 each. From v210 the keyer
        // takes 8 bits and drops up to 3 of 4 steps of luma and chroma, 2.4 together.
        const bool v210 = kind.codec == AV_CODEC_ID_V210 && kind.space == k601;
        EXPECT_LE(WorstInPatches(seen, witness), v210 ? 4 : 2) << kind.name;
    }
}

TEST_F(LibavFormats, TheMatteIsThatOfTheRgbClip) {
    for (const bool interlaced : {false, true}) {
        const FormatPicture scene = FormatScene(interlaced);
        const Kind plain{"rgb", AV_PIX_FMT_BGRA, AV_CODEC_ID_RAWVIDEO, "a.nut", AVCOL_SPC_RGB, kFull, Scan::Progressive};
        Make(scene.pixels, plain);
        const Bytes rgb = Run(plain, kFormatKey);
        const double best = MatteError(rgb, scene.alpha);
        for (const Kind &kind : kKinds) {
            if ((kind.scan != Scan::Progressive) != interlaced) continue;
            Make(scene.pixels, kind);
            const Bytes keyed = Run(kind, kFormatKey);
            const double error = MatteError(keyed, scene.alpha);
            const double distance = MatteDistance(keyed, rgb);
            // One chroma sample for two or four pixels blurs the edge: that much, and no more.
            EXPECT_LT(error, best + 0.9) << kind.name;
            EXPECT_LT(distance, 2.3) << kind.name;
        }
    }
}

}    // namespace
