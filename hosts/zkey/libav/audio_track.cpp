#include "hosts/zkey/libav/audio_track.h"

namespace zkey {

AudioTrack::AudioTrack(const AVCodecParameters *from, AVRational base)
    : parameters(avcodec_parameters_alloc()), timeBase(base) {
    avcodec_parameters_copy(parameters.get(), from);
}

void AudioTrack::Put(Libav<AVPacket> packet) {
    const std::lock_guard lock(m_lock);
    m_packets.push_back(std::move(packet));
}

Libav<AVPacket> AudioTrack::Take() {
    const std::lock_guard lock(m_lock);
    if (m_packets.empty()) return nullptr;
    Libav<AVPacket> packet = std::move(m_packets.front());
    m_packets.pop_front();
    return packet;
}

}    // namespace zkey
