// The sound of any file that FFmpeg's libraries decode, in the samples of a frame.
#include <bit>
#include <cstring>

#include "hosts/zkey/libav/libav.h"
#include "hosts/zkey/sound_file.h"

namespace zkey {
namespace {

/// How samples come from the decoder and how a frame holds them.
struct SampleWay {
    int32_t bits;    ///< of the frame's record
    int from;        ///< bytes of a decoded sample
    int to;          ///< bytes in the frame
    void (*convert)(const uint8_t *from, uint8_t *to);
};

void CopyTwo(const uint8_t *from, uint8_t *to) { std::memcpy(to, from, 2); }
void CopyFour(const uint8_t *from, uint8_t *to) { std::memcpy(to, from, 4); }
/// The low byte of such a decoded sample is 0.
void CopyUpperThree(const uint8_t *from, uint8_t *to) { std::memcpy(to, from + 1, 3); }

void WidenByte(const uint8_t *from, uint8_t *to) {
    to[0] = 0;
    to[1] = static_cast<uint8_t>(*from ^ 0x80U);
}

void NarrowDouble(const uint8_t *from, uint8_t *to) {
    double wide = 0;
    std::memcpy(&wide, from, sizeof wide);
    const auto value = static_cast<float>(wide);
    std::memcpy(to, &value, sizeof value);
}

/// A way of 0 bytes where there is none.
SampleWay WayOf(const AVCodecContext &decoder) {
    switch (av_get_packed_sample_fmt(decoder.sample_fmt)) {
        case AV_SAMPLE_FMT_U8:
            return {16, 1, 2, WidenByte};
        case AV_SAMPLE_FMT_S16:
            return {16, 2, 2, CopyTwo};
        case AV_SAMPLE_FMT_S32:
            if (decoder.bits_per_raw_sample == 24) return {24, 4, 3, CopyUpperThree};
            return {32, 4, 4, CopyFour};
        case AV_SAMPLE_FMT_FLT:
            return {-32, 4, 4, CopyFour};
        case AV_SAMPLE_FMT_DBL:
            return {-32, 8, 4, NarrowDouble};
        default:
            return {};
    }
}

class SoundDecoder {
public:
    explicit SoundDecoder(const std::string &path) : m_path(path), m_frame(av_frame_alloc()) {
        av_log_set_level(AV_LOG_FATAL);
        const int error = avformat_open_input(&m_format, LibavPath(path).c_str(), nullptr, nullptr);
        if (error == AVERROR_INVALIDDATA) Fail(path + " is no file with sound that can be read");
        if (error < 0) Fail("cannot open " + path + ": " + LibavError(error));
    }
    ~SoundDecoder() { avformat_close_input(&m_format); }
    SoundDecoder(const SoundDecoder &) = delete;
    SoundDecoder &operator=(const SoundDecoder &) = delete;

    Sound Decode() {
        OpenDecoder();
        const Libav<AVPacket> packet(av_packet_alloc());
        while (av_read_frame(m_format, packet.get()) >= 0) {
            if (packet->stream_index == m_stream) Take(avcodec_send_packet(m_decoder.get(), packet.get()));
            av_packet_unref(packet.get());
        }
        Take(avcodec_send_packet(m_decoder.get(), nullptr));
        if (m_sound.samples.empty()) Fail(m_path + " holds no sound");
        return std::move(m_sound);
    }

private:
    void OpenDecoder() {
        int error = avformat_find_stream_info(m_format, nullptr);
        if (error < 0) Fail("cannot read " + m_path + ": " + LibavError(error));
        const AVCodec *codec = nullptr;
        m_stream = av_find_best_stream(m_format, AVMEDIA_TYPE_AUDIO, -1, -1, &codec, 0);
        if (m_stream == AVERROR_DECODER_NOT_FOUND) Fail("cannot decode " + m_path + ": no decoder for its sound");
        if (m_stream < 0) Fail(m_path + " holds no sound");
        m_decoder.reset(avcodec_alloc_context3(codec));
        if (!m_decoder || !m_frame) Fail("out of memory");
        avcodec_parameters_to_context(m_decoder.get(), m_format->streams[m_stream]->codecpar);
        m_decoder->pkt_timebase = m_format->streams[m_stream]->time_base;
        error = avcodec_open2(m_decoder.get(), codec, nullptr);
        if (error < 0) Fail("cannot decode " + m_path + ": " + LibavError(error));
    }

    /// Damaged packets are left out.
    void Take(int sent) {
        if (sent < 0 && sent != AVERROR_INVALIDDATA) Fail("cannot decode " + m_path + ": " + LibavError(sent));
        while (avcodec_receive_frame(m_decoder.get(), m_frame.get()) >= 0) {
            Describe();
            Append();
        }
    }

    void Describe() {
        const SampleWay way = WayOf(*m_decoder);
        const Z_AUD_PROPS props{m_frame->ch_layout.nb_channels, m_frame->sample_rate, way.bits, 0};
        if (way.to == 0 || props.nChannels < 1 || props.nSamplesPerSec < 1) {
            Fail("cannot decode " + m_path + ": a frame cannot hold its samples");
        }
        const bool first = m_sound.samples.empty();
        const Z_AUD_PROPS &before = m_sound.props;
        if (!first && (before.nChannels != props.nChannels || before.nSamplesPerSec != props.nSamplesPerSec ||
                       before.nBitsPerSample != props.nBitsPerSample)) {
            Fail("cannot decode " + m_path + ": its sound changes channels, rate or samples");
        }
        m_way = way;
        m_sound.props = props;
    }

    void Append() {
        const bool planar = av_sample_fmt_is_planar(m_decoder->sample_fmt) != 0;
        const int channels = m_sound.props.nChannels;
        const std::size_t at = m_sound.samples.size();
        const std::size_t bytes = static_cast<std::size_t>(m_frame->nb_samples) * static_cast<std::size_t>(channels * m_way.to);
        if (at + bytes > INT32_MAX) Fail("the sound of " + m_path + " is too large: a frame has 2 GB at most");
        m_sound.samples.resize(at + bytes);
        uint8_t *to = m_sound.samples.data() + at;
        for (std::ptrdiff_t i = 0; i < m_frame->nb_samples; ++i) {
            for (int c = 0; c < channels; ++c, to += m_way.to) {
                const uint8_t *plane = m_frame->extended_data[planar ? c : 0];
                m_way.convert(plane + (planar ? i : i * channels + c) * m_way.from, to);
            }
        }
    }

    std::string m_path;
    AVFormatContext *m_format = nullptr;
    int m_stream = -1;
    Libav<AVCodecContext> m_decoder;
    Libav<AVFrame> m_frame;
    SampleWay m_way{};
    Sound m_sound;
};

}    // namespace

static_assert(std::endian::native == std::endian::little, "the frame's samples have their low byte first");

Sound DecodeSound(const std::string &path) { return SoundDecoder(path).Decode(); }

}    // namespace zkey
