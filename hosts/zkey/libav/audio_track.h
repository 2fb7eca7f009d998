// Sound on its way from one file to another without being decoded.
#pragma once

#include <deque>
#include <mutex>

#include "hosts/zkey/libav/libav.h"

namespace zkey {

/// Filled by the reading thread, emptied by the writing thread.
struct AudioTrack {
    AudioTrack(const AVCodecParameters *from, AVRational timeBase);

    void Put(Libav<AVPacket> packet);
    /// The next packet, or nothing at the moment.
    Libav<AVPacket> Take();

    const Libav<AVCodecParameters> parameters;
    const AVRational timeBase;

private:
    std::mutex m_lock;
    std::deque<Libav<AVPacket>> m_packets;
};

}    // namespace zkey
