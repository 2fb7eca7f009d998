#include "hosts/zkey/libav/clip.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#include "hosts/zkey/failure.h"

namespace zkey {
namespace {

// As many pictures are decoded at most on the way to the one that is wanted.
constexpr int kMostPassed = 100;
// As many pictures in a row may be damaged before the clip is given up.
constexpr int kMostDamaged = 1000;
// As many bytes of pictures are read ahead at most, to find the sound of the present one.
constexpr int64_t kMostWaiting = int64_t{1} << 24;

AVRational SteadyRate(AVFormatContext *format, AVStream *stream) {
    const AVRational guess = av_guess_frame_rate(format, stream, nullptr);
    return guess.num > 0 && guess.den > 0 ? guess : AVRational{25, 1};
}

bool IsPicture(const AVFormatContext *format, const std::string &path) {
    const std::string_view name = format->iformat->name;
    return name.ends_with("_pipe") || (name == "image2" && path.find('%') == std::string::npos);
}

}    // namespace

Clip::Clip(const std::string &path, bool audio, const char *hint)
    : m_path(path), m_frame(av_frame_alloc()), m_packet(av_packet_alloc()) {
    av_log_set_level(AV_LOG_FATAL);
    int error = avformat_open_input(&m_format, LibavPath(path).c_str(), nullptr, nullptr);
    if (error < 0) {
        Fail(error == AVERROR_INVALIDDATA ? path + " is no clip or picture that can be read" + hint
                                          : "cannot open " + path + ": " + LibavError(error));
    }
    try {
        error = avformat_find_stream_info(m_format, nullptr);
        if (error < 0) Fail("cannot read " + path + ": " + LibavError(error));
        Describe(audio);
    } catch (...) {
        avformat_close_input(&m_format);
        throw;
    }
}

Clip::~Clip() { avformat_close_input(&m_format); }

void Clip::Describe(bool audio) {
    const AVCodec *codec = nullptr;
    const int index = av_find_best_stream(m_format, AVMEDIA_TYPE_VIDEO, -1, -1, &codec, 0);
    if (index == AVERROR_DECODER_NOT_FOUND) Fail("cannot decode " + m_path + ": no decoder for its pictures");
    if (index < 0) Fail(m_path + " holds no picture");
    m_stream = m_format->streams[index];
    m_decoder.reset(avcodec_alloc_context3(codec));
    avcodec_parameters_to_context(m_decoder.get(), m_stream->codecpar);
    m_decoder->pkt_timebase = m_stream->time_base;
    m_decoder->thread_count = 0;
    const int error = avcodec_open2(m_decoder.get(), codec, nullptr);
    if (error < 0) Fail("cannot decode " + m_path + ": " + LibavError(error));

    m_info.width = m_decoder->width;
    m_info.height = m_decoder->height;
    if (m_info.width < 1 || m_info.height < 1) {
        Fail(m_path +
             (IsPicture(m_format, m_path) ? " is damaged, or no picture at all" : " holds no picture that can be read"));
    }
    const AVRational rate = SteadyRate(m_format, m_stream);
    const AVRational mean = m_stream->avg_frame_rate;
    m_steady = mean.num <= 0 || mean.den <= 0 || std::fabs(av_q2d(mean) / av_q2d(rate) - 1) < 0.01;
    m_info.rate = {rate.num, rate.den};
    m_info.timeBase = m_steady ? Rational{rate.den, rate.num} : Rational{m_stream->time_base.num, m_stream->time_base.den};
    const AVRational aspect = av_guess_sample_aspect_ratio(m_format, m_stream, nullptr);
    if (aspect.num > 0 && aspect.den > 0) m_info.pixelAspect = {aspect.num, aspect.den};
    m_info.still = IsPicture(m_format, m_path);
    m_info.frames = m_info.still ? 1 : m_stream->nb_frames;
    if (m_info.frames == 0 && m_format->duration > 0) {
        m_info.frames = std::llround(static_cast<double>(m_format->duration) / AV_TIME_BASE * av_q2d(rate));
    }

    const uint8_t *display = av_stream_get_side_data(m_stream, AV_PKT_DATA_DISPLAYMATRIX, nullptr);
    if (display != nullptr) {
        m_info.displayMatrix.resize(9);
        std::memcpy(m_info.displayMatrix.data(), display, 9 * sizeof(int32_t));
    }

    m_sound = audio ? av_find_best_stream(m_format, AVMEDIA_TYPE_AUDIO, -1, index, nullptr, 0) : -1;
    if (m_sound >= 0) {
        const AVStream *sound = m_format->streams[m_sound];
        m_info.audio = std::make_shared<AudioTrack>(sound->codecpar, sound->time_base);
    }
    for (unsigned i = 0; i < m_format->nb_streams; ++i) {
        const bool wanted = static_cast<int>(i) == index || static_cast<int>(i) == m_sound;
        m_format->streams[i]->discard = wanted ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    }
}

AVFrame *Clip::Next() {
    if (std::exchange(m_found, false)) return m_frame.get();
    for (int damaged = 0;;) {
        av_frame_unref(m_frame.get());
        const int got = avcodec_receive_frame(m_decoder.get(), m_frame.get());
        if (got == 0) {
            if (m_frame->width != m_info.width || m_frame->height != m_info.height) {
                Fail(m_path + ": the size of the picture changes from " + std::to_string(m_info.width) + "x" +
                     std::to_string(m_info.height) + " to " + std::to_string(m_frame->width) + "x" +
                     std::to_string(m_frame->height));
            }
            StampTime();
            return m_frame.get();
        }
        if (got == AVERROR_EOF) return nullptr;
        // A damaged picture is left out; the decoder goes on with the next, but need not get anywhere.
        if (got == AVERROR_INVALIDDATA && ++damaged < kMostDamaged) {
            ++m_lost;
            continue;
        }
        if (got != AVERROR(EAGAIN)) Fail("cannot decode " + m_path + ": " + LibavError(got));
        if (!FeedDecoder()) return nullptr;
    }
}

bool Clip::JumpTo(int64_t picture) {
    const AVRational length{m_info.rate.den, m_info.rate.num};
    const int64_t start = m_stream->start_time != AV_NOPTS_VALUE ? m_stream->start_time : 0;
    // Half a picture early, so that rounded stamps do not miss it.
    const int64_t halves = std::max<int64_t>(0, 2 * picture - 1);
    const int64_t target = start + av_rescale_q(halves, AVRational{length.num, 2 * length.den}, m_stream->time_base);
    const int64_t furthest = av_rescale_q(kMostPassed, length, m_stream->time_base);
    if (m_stamp == AV_NOPTS_VALUE || target <= m_stamp || target > m_stamp + furthest) {
        if (av_seek_frame(m_format, m_stream->index, target, AVSEEK_FLAG_BACKWARD) < 0) return false;
        avcodec_flush_buffers(m_decoder.get());
        m_waiting.clear();
        m_waitingBytes = 0;
        m_draining = false;
    }
    m_found = false;
    for (int i = 0; i < kMostPassed; ++i) {
        if (Next() == nullptr) return false;
        if (m_stamp == AV_NOPTS_VALUE || m_stamp >= target) break;
    }
    m_found = true;
    return true;
}

bool Clip::ReadPacket() {
    // A file that breaks off ends here, with the pictures that it still gave.
    if (av_read_frame(m_format, m_packet.get()) < 0) return false;
    if (m_packet->stream_index == m_sound) {
        KeepSound();
    } else if (m_packet->stream_index == m_stream->index) {
        m_waiting.emplace_back(av_packet_alloc());
        if (!m_waiting.back()) Fail("out of memory");
        m_waitingBytes += m_packet->size;
        av_packet_move_ref(m_waiting.back().get(), m_packet.get());
    }
    av_packet_unref(m_packet.get());
    return true;
}

bool Clip::FeedDecoder() {
    if (m_draining) return false;
    while (m_waiting.empty()) {
        if (ReadPacket()) continue;
        m_draining = true;
        return avcodec_send_packet(m_decoder.get(), nullptr) == 0;
    }
    const Libav<AVPacket> packet = std::move(m_waiting.front());
    m_waiting.pop_front();
    m_waitingBytes -= packet->size;
    const int sent = avcodec_send_packet(m_decoder.get(), packet.get());
    if (sent < 0 && sent != AVERROR_INVALIDDATA) Fail("cannot decode " + m_path + ": " + LibavError(sent));
    if (sent < 0) ++m_lost;
    return true;
}

int64_t Clip::PictureEnd() const {
    const AVRational length{m_info.rate.den, m_info.rate.num};
    return m_time + std::max<int64_t>(1, av_rescale_q(1, length, AVRational{m_info.timeBase.num, m_info.timeBase.den}));
}

void Clip::TakeSound(Sound &sound) {
    if (!m_info.audio || !m_info.audio->Samples()) return;
    const AVRational unit{m_info.timeBase.num, m_info.timeBase.den};
    const int64_t end = PictureEnd();
    while (!m_info.audio->Reaches(end, unit) && m_waitingBytes < kMostWaiting && ReadPacket()) {
    }
    sound.props = *m_info.audio->Samples();
    m_info.audio->TakeSamples(end, unit, sound.samples);
}

void Clip::KeepSound() {
    Libav<AVPacket> packet(av_packet_clone(m_packet.get()));
    // Sound counts from the first picture, as the pictures do.
    const int64_t origin = m_start != AV_NOPTS_VALUE ? m_start : m_stream->start_time;
    if (packet && origin != AV_NOPTS_VALUE) {
        const int64_t shift = av_rescale_q(origin, m_stream->time_base, m_info.audio->timeBase);
        if (packet->pts != AV_NOPTS_VALUE) packet->pts -= shift;
        if (packet->dts != AV_NOPTS_VALUE) packet->dts -= shift;
    }
    if (packet) m_info.audio->Put(std::move(packet));
}

void Clip::StampTime() {
    const int64_t stamp = m_stamp = m_frame->best_effort_timestamp;
    if (stamp == AV_NOPTS_VALUE) {
        ++m_time;
        return;
    }
    if (m_start == AV_NOPTS_VALUE) m_start = m_stream->start_time != AV_NOPTS_VALUE ? m_stream->start_time : stamp;
    const AVRational unit{m_info.timeBase.num, m_info.timeBase.den};
    const int64_t time = av_rescale_q_rnd(stamp - m_start, m_stream->time_base, unit, AV_ROUND_NEAR_INF);
    m_time = std::max(time, m_time + 1);
}

}    // namespace zkey
