#include <cmath>
#include <cstring>

#include "hosts/zkey/failure.h"
#include "hosts/zkey/libav/audio_track.h"
#include "hosts/zkey/libav/encoder_choice.h"
#include "hosts/zkey/libav/libav.h"
#include "hosts/zkey/media.h"
#include "hosts/zkey/progress.h"
#include "hosts/zkey/yuv_planes.h"

namespace zkey {
namespace {

class LibavWriter : public MediaWriter {
public:
    explicit LibavWriter(const Delivery &delivery)
        : m_path(delivery.path), m_source(delivery.source), m_frame(av_frame_alloc()), m_packet(av_packet_alloc()) {
        av_log_set_level(AV_LOG_FATAL);
        const char *format = delivery.format.empty() ? nullptr : delivery.format.c_str();
        if (avformat_alloc_output_context2(&m_format, nullptr, format, LibavPath(m_path).c_str()) < 0) {
            FailUsage("cannot write " + m_path + ": no such kind of file; known are .mov, .webm, .mkv, .mp4, .png and more");
        }
        try {
            OpenEncoder(
                ChooseEncoder(*m_format->oformat, m_path, delivery.codec, delivery.finish, m_source.width, m_source.height));
            TurnAsSource(delivery.quiet);
            OpenSound(delivery.quiet);
            OpenFile();
        } catch (...) {
            Release();
            throw;
        }
    }
    ~LibavWriter() override { Release(); }
    LibavWriter(const LibavWriter &) = delete;
    LibavWriter &operator=(const LibavWriter &) = delete;

    void Write(const ImageView &picture, int64_t time) override {
        Check(av_frame_make_writable(m_frame.get()));
        FillFrame(picture);
        m_frame->pts = time;
        m_end = time + PictureTime();
        Encode(m_frame.get());
        MoveSound();
    }

    void PutSound(SoundBytes samples) override {
        if (m_source.audio) m_source.audio->GiveBack(samples);
    }

    void Close() override {
        Encode(nullptr);
        MoveSound();
        Check(av_write_trailer(m_format));
        if (m_format->pb != nullptr) {
            Check(m_format->pb->error);
            Check(avio_closep(&m_format->pb));
        }
    }

    std::string Unfinished() const override {
        char picture[4096];
        const bool one = av_get_frame_filename(picture, sizeof picture, m_path.c_str(), m_written + 1) < 0;
        return one || !IsSequence() ? m_path : picture;
    }

private:
    void Release() {
        if (m_format == nullptr) return;
        if (m_format->pb != nullptr && !IsSequence()) avio_closep(&m_format->pb);
        avformat_free_context(m_format);
        m_format = nullptr;
    }

    /// Each picture is a file of its own, which the libraries open by themselves.
    bool IsSequence() const { return (m_format->oformat->flags & AVFMT_NOFILE) != 0; }

    void Check(int status) const {
        if (status < 0) Fail("cannot write " + m_path + ": " + LibavError(status));
    }

    bool IsYuv() const {
        const AVPixFmtDescriptor *d = av_pix_fmt_desc_get(m_encoder->pix_fmt);
        return (d->flags & AV_PIX_FMT_FLAG_RGB) == 0 && d->nb_components >= 3;
    }

    void OpenEncoder(const EncoderChoice &choice) {
        m_stream = avformat_new_stream(m_format, nullptr);
        m_encoder.reset(avcodec_alloc_context3(choice.codec));
        if (m_stream == nullptr || !m_encoder) Fail("out of memory");
        m_encoder->width = m_source.width;
        m_encoder->height = m_source.height;
        m_encoder->pix_fmt = choice.pixels;
        m_encoder->time_base = {m_source.timeBase.num, m_source.timeBase.den};
        m_encoder->framerate = {m_source.rate.num, m_source.rate.den};
        m_encoder->sample_aspect_ratio = {m_source.pixelAspect.num, m_source.pixelAspect.den};
        m_encoder->thread_count = 0;
        if (IsYuv()) {
            const bool high = MeaningBySize(m_source.width, m_source.height).IsBt709();
            const bool jpeg = choice.pixels == AV_PIX_FMT_YUVJ444P || choice.pixels == AV_PIX_FMT_YUVJ420P;
            m_encoder->colorspace = high && !jpeg ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
            m_encoder->color_primaries = high ? AVCOL_PRI_BT709 : AVCOL_PRI_SMPTE170M;
            m_encoder->color_trc = high ? AVCOL_TRC_BT709 : AVCOL_TRC_SMPTE170M;
            m_encoder->color_range = jpeg ? AVCOL_RANGE_JPEG : AVCOL_RANGE_MPEG;
        }
        if ((m_format->oformat->flags & AVFMT_GLOBALHEADER) != 0) m_encoder->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
        MarkFields();
        OpenCodec(choice);
        Check(avcodec_parameters_from_context(m_stream->codecpar, m_encoder.get()));
        m_stream->time_base = m_encoder->time_base;
        m_stream->avg_frame_rate = m_encoder->framerate;
        m_stream->sample_aspect_ratio = m_encoder->sample_aspect_ratio;

        m_frame->format = m_encoder->pix_fmt;
        m_frame->width = m_encoder->width;
        m_frame->height = m_encoder->height;
        m_frame->colorspace = m_encoder->colorspace;
        m_frame->color_range = m_encoder->color_range;
        Check(av_frame_get_buffer(m_frame.get(), 0));
    }

    /// Interlaced pictures are told to the encoder, which compresses fields where it knows them, and to the container.
    void MarkFields() {
        if (!IsInterlaced(m_source.scan)) return;
        const bool top = m_source.scan == eZI_Field1First;
        m_encoder->field_order = top ? AV_FIELD_TT : AV_FIELD_BB;
        m_encoder->flags |= AV_CODEC_FLAG_INTERLACED_DCT;
        m_frame->interlaced_frame = 1;
        m_frame->top_field_first = top ? 1 : 0;
    }

    void OpenCodec(const EncoderChoice &choice) {
        AVDictionary *options = nullptr;
        std::string rest = choice.options;
        // A fixed quantiser is set through the context, not by a name.
        if (rest == "q=2") {
            m_encoder->flags |= AV_CODEC_FLAG_QSCALE;
            m_encoder->global_quality = 2 * FF_QP2LAMBDA;
            m_frame->quality = m_encoder->global_quality;
            rest.clear();
        }
        av_dict_parse_string(&options, rest.c_str(), "=", ":", 0);
        const int error = avcodec_open2(m_encoder.get(), choice.codec, &options);
        av_dict_free(&options);
        if (error < 0) {
            Fail("cannot write " + m_path + ": the encoder " + choice.codec->name + " refuses pictures of " +
                 std::to_string(m_source.width) + "x" + std::to_string(m_source.height) + ": " + LibavError(error));
        }
    }

    /// Phones store pictures lying on their side and tell players to turn them.
    void TurnAsSource(bool quiet) {
        const std::vector<int32_t> &matrix = m_source.displayMatrix;
        if (matrix.empty()) return;
        const double degrees = av_display_rotation_get(matrix.data());
        const std::string_view container = m_format->oformat->name;
        if (container == "mov" || container == "mp4" || container == "matroska") {
            uint8_t *to = av_stream_new_side_data(m_stream, AV_PKT_DATA_DISPLAYMATRIX, 9 * sizeof(int32_t));
            if (to == nullptr) Fail("out of memory");
            std::memcpy(to, matrix.data(), 9 * sizeof(int32_t));
        } else if (!quiet && std::fabs(degrees) > 1) {
            Note("players turn the input by " + std::to_string(std::lround(-degrees)) + " degrees; " + m_path +
                 " cannot ask for that, and its pictures are as they are stored");
        }
    }

    void OpenSound(bool quiet) {
        if (!m_source.audio || m_format->oformat->audio_codec == AV_CODEC_ID_NONE) return;
        const AVCodecParameters *p = m_source.audio->parameters.get();
        if (avformat_query_codec(m_format->oformat, p->codec_id, FF_COMPLIANCE_NORMAL) == 0) {
            if (!quiet) Note(m_path + " cannot hold sound of the kind " + avcodec_get_name(p->codec_id) + "; it is left out");
            return;
        }
        m_sound = avformat_new_stream(m_format, nullptr);
        if (m_sound == nullptr) Fail("out of memory");
        Check(avcodec_parameters_copy(m_sound->codecpar, p));
        m_sound->codecpar->codec_tag = 0;
        m_sound->time_base = m_source.audio->timeBase;
    }

    void OpenFile() {
        if (!IsSequence()) {
            Check(avio_open(&m_format->pb, LibavPath(m_path).c_str(), AVIO_FLAG_WRITE));
        } else if (m_path.find('%') == std::string::npos) {
            av_opt_set(m_format->priv_data, "update", "1", 0);
        }
        Check(avformat_write_header(m_format, nullptr));
    }

    void FillFrame(const ImageView &picture) {
        if (m_encoder->pix_fmt == AV_PIX_FMT_GRAY8) {
            for (int y = 0; y < picture.height; ++y) {
                uint8_t *to = m_frame->data[0] + std::ptrdiff_t{y} * m_frame->linesize[0];
                const uint8_t *from = picture.Row(y);
                for (int x = 0; x < picture.width; ++x) to[x] = from[std::ptrdiff_t{4} * x];
            }
            return;
        }
        constexpr int kFlags = SWS_BICUBIC | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INP | SWS_FULL_CHR_H_INT;
        const bool alpha = (av_pix_fmt_desc_get(m_encoder->pix_fmt)->flags & AV_PIX_FMT_FLAG_ALPHA) != 0;
        const bool full = m_encoder->color_range == AVCOL_RANGE_JPEG;
        m_scaler.reset(sws_getCachedContext(m_scaler.release(), picture.width, picture.height,
                                            alpha ? AV_PIX_FMT_BGRA : AV_PIX_FMT_BGR0, picture.width, picture.height,
                                            m_encoder->pix_fmt, kFlags, nullptr, nullptr, nullptr));
        if (!m_scaler) Fail("cannot write " + m_path + ": no way to " + av_get_pix_fmt_name(m_encoder->pix_fmt));
        const int *matrix = sws_getCoefficients(m_encoder->colorspace == AVCOL_SPC_BT709 ? SWS_CS_ITU709 : SWS_CS_ITU601);
        sws_setColorspaceDetails(m_scaler.get(), matrix, 1, matrix, full ? 1 : 0, 0, 1 << 16, 1 << 16);
        const uint8_t *planes[4] = {picture.pixels, nullptr, nullptr, nullptr};
        const int steps[4] = {static_cast<int>(picture.step), 0, 0, 0};
        sws_scale(m_scaler.get(), planes, steps, 0, picture.height, m_frame->data, m_frame->linesize);
    }

    void Encode(const AVFrame *frame) {
        Check(avcodec_send_frame(m_encoder.get(), frame));
        for (;;) {
            const int got = avcodec_receive_packet(m_encoder.get(), m_packet.get());
            if (got == AVERROR(EAGAIN) || got == AVERROR_EOF) return;
            Check(got);
            // One unit of time for a picture whose length the encoder does not tell.
            if (m_packet->duration == 0) m_packet->duration = PictureTime();
            av_packet_rescale_ts(m_packet.get(), m_encoder->time_base, m_stream->time_base);
            m_packet->stream_index = m_stream->index;
            Check(av_interleaved_write_frame(m_format, m_packet.get()));
            if (m_format->pb != nullptr) Check(m_format->pb->error);
            ++m_written;
        }
    }

    int64_t PictureTime() const {
        return std::max<int64_t>(1, av_rescale_q(1, av_inv_q(m_encoder->framerate), m_encoder->time_base));
    }

    /// Sound goes along with the pictures: what is due goes on, the rest waits, and after the last picture it ends.
    void MoveSound() {
        if (!m_source.audio) return;
        for (;;) {
            if (!m_held) m_held = m_source.audio->Samples() ? m_source.audio->TakeBack() : m_source.audio->Take();
            if (!m_held) return;
            const bool early = m_held->pts != AV_NOPTS_VALUE &&
                               av_compare_ts(m_held->pts, m_source.audio->timeBase, m_end, m_encoder->time_base) >= 0;
            if (early) return;
            const Libav<AVPacket> packet = std::move(m_held);
            if (m_sound == nullptr) continue;
            packet->stream_index = m_sound->index;
            av_packet_rescale_ts(packet.get(), m_source.audio->timeBase, m_sound->time_base);
            packet->pos = -1;
            Check(av_interleaved_write_frame(m_format, packet.get()));
        }
    }

    std::string m_path;
    SourceInfo m_source;
    AVFormatContext *m_format = nullptr;
    AVStream *m_stream = nullptr;
    AVStream *m_sound = nullptr;
    Libav<AVCodecContext> m_encoder;
    Libav<AVFrame> m_frame;
    Libav<AVPacket> m_packet;
    Libav<AVPacket> m_held;    ///< sound that is not due yet
    Libav<SwsContext> m_scaler;
    int m_written = 0;    ///< pictures that are in the output
    int64_t m_end = 0;    ///< when the last picture ends
};

}    // namespace

std::unique_ptr<MediaWriter> OpenLibavWriter(const Delivery &delivery) { return std::make_unique<LibavWriter>(delivery); }

}    // namespace zkey
