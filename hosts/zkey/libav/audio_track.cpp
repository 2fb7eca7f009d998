#include "hosts/zkey/libav/audio_track.h"

#include <algorithm>
#include <cstring>

namespace zkey {
namespace {

constexpr int kMostChannels = 128;

/// Of a frame's record; 0 when a frame cannot state such samples.
int32_t SampleBits(AVCodecID codec) {
    switch (codec) {
        case AV_CODEC_ID_PCM_S16LE:
            return 16;
        case AV_CODEC_ID_PCM_S24LE:
            return 24;
        case AV_CODEC_ID_PCM_S32LE:
            return 32;
        case AV_CODEC_ID_PCM_F32LE:
            return -32;
        default:
            return 0;
    }
}

std::optional<Z_AUD_PROPS> PropsOf(const AVCodecParameters &p) {
    const int32_t bits = SampleBits(p.codec_id);
    const int channels = p.ch_layout.nb_channels;
    if (bits == 0 || channels < 1 || channels > kMostChannels || p.sample_rate < 1) return std::nullopt;
    return Z_AUD_PROPS{channels, p.sample_rate, bits, 0};
}

/// A packet without bytes, with all else that another one has.
Libav<AVPacket> ShellOf(const AVPacket &packet) {
    Libav<AVPacket> shell(av_packet_alloc());
    if (!shell || av_packet_copy_props(shell.get(), &packet) < 0) Fail("out of memory");
    return shell;
}

}    // namespace

AudioTrack::AudioTrack(const AVCodecParameters *from, AVRational base)
    : parameters(avcodec_parameters_alloc()), timeBase(base), m_samples(PropsOf(*from)) {
    avcodec_parameters_copy(parameters.get(), from);
}

void AudioTrack::Put(Libav<AVPacket> packet) {
    const std::lock_guard lock(m_lock);
    if (packet->pts != AV_NOPTS_VALUE) m_reached = packet->pts + packet->duration;
    m_packets.push_back(std::move(packet));
}

Libav<AVPacket> AudioTrack::Take() {
    const std::lock_guard lock(m_lock);
    if (m_packets.empty()) return nullptr;
    Libav<AVPacket> packet = std::move(m_packets.front());
    m_packets.pop_front();
    return packet;
}

Libav<AVPacket> AudioTrack::TakeBack() {
    const std::lock_guard lock(m_lock);
    if (m_travellers.empty() || m_travellers.front().back < m_travellers.front().size) return nullptr;
    Libav<AVPacket> packet = std::move(m_travellers.front().packet);
    m_travellers.pop_front();
    return packet;
}

bool AudioTrack::BeginsBefore(const AVPacket &packet, int64_t end, AVRational unit) const {
    return packet.pts == AV_NOPTS_VALUE || av_compare_ts(packet.pts, timeBase, end, unit) < 0;
}

bool AudioTrack::Reaches(int64_t time, AVRational unit) const {
    const std::lock_guard lock(m_lock);
    if (m_reached == AV_NOPTS_VALUE) return !m_packets.empty();
    return av_compare_ts(m_reached, timeBase, time, unit) >= 0;
}

void AudioTrack::TakeSamples(int64_t end, AVRational unit, std::vector<uint8_t> &samples) {
    const std::lock_guard lock(m_lock);
    while (!m_packets.empty() && BeginsBefore(*m_packets.front(), end, unit)) {
        const Libav<AVPacket> packet = std::move(m_packets.front());
        m_packets.pop_front();
        const auto size = static_cast<std::size_t>(packet->size);
        samples.insert(samples.end(), packet->data, packet->data + size);
        m_travellers.push_back({ShellOf(*packet), size, 0});
    }
}

void AudioTrack::GiveBack(SoundBytes bytes) {
    const std::lock_guard lock(m_lock);
    for (Traveller &t : m_travellers) {
        if (bytes.size == 0) return;
        const std::size_t count = std::min(bytes.size, t.size - t.back);
        if (count == 0) continue;
        if (t.back == 0 && av_grow_packet(t.packet.get(), static_cast<int>(t.size)) < 0) Fail("out of memory");
        std::memcpy(t.packet->data + t.back, bytes.data, count);
        t.back += count;
        bytes.data += count;
        bytes.size -= count;
    }
}

}    // namespace zkey
