// Sound on its way from one file to another without being decoded.
#pragma once

#include <deque>
#include <mutex>
#include <optional>

#include "hosts/zkey/frame_sound.h"
#include "hosts/zkey/libav/libav.h"

namespace zkey {

/// Filled by the reading thread, emptied by the writing thread. Plain samples can leave their packets on the way, to travel in
/// frames: `TakeSamples` on the reading thread, `GiveBack` on the writing thread.
struct AudioTrack {
    AudioTrack(const AVCodecParameters *from, AVRational timeBase);

    void Put(Libav<AVPacket> packet);
    /// The next packet that does not travel, or nothing at the moment.
    Libav<AVPacket> Take();

    /// How a frame describes this sound; nothing when its bytes are no samples that a frame can state.
    const std::optional<Z_AUD_PROPS> &Samples() const { return m_samples; }
    /// True when sound from this time on is there, or sound without times.
    bool Reaches(int64_t time, AVRational unit) const;
    /// Moves the bytes of the packets that begin before `end` to the back of `samples`.
    void TakeSamples(int64_t end, AVRational unit, std::vector<uint8_t> &samples);
    /// Returns bytes to their packets, in the order in which they were taken.
    void GiveBack(SoundBytes bytes);
    /// The next packet that has all its bytes back, or nothing at the moment.
    Libav<AVPacket> TakeBack();

    const Libav<AVCodecParameters> parameters;
    const AVRational timeBase;

private:
    struct Traveller {
        Libav<AVPacket> packet;    ///< all but its bytes
        std::size_t size = 0;
        std::size_t back = 0;    ///< bytes that have come back
    };

    bool BeginsBefore(const AVPacket &packet, int64_t end, AVRational unit) const;

    const std::optional<Z_AUD_PROPS> m_samples;
    mutable std::mutex m_lock;
    std::deque<Libav<AVPacket>> m_packets;
    std::deque<Traveller> m_travellers;
    int64_t m_reached = AV_NOPTS_VALUE;    ///< where the last packet ends
};

}    // namespace zkey
