// The parts of a stored frame, and those that the caller's flags choose.
#pragma once

#include "frames/data/named_data.h"
#include "zchromakey/media_types.h"

namespace zck {

/// The flags are a set of `eZFrameClone` bits; others mean nothing.
constexpr bool ChoosesVideo(int32_t flags) { return (flags & (eZFC_Video | eZFC_VideoRef)) != 0; }
constexpr bool ChoosesAudio(int32_t flags) { return (flags & eZFC_Audio) != 0; }
constexpr bool ChoosesMedia(int32_t flags) { return ChoosesVideo(flags) || ChoosesAudio(flags); }
constexpr bool ChoosesData(int32_t flags) { return (flags & eZFC_Data) != 0; }

constexpr uint8_t kFrameMark[4] = {'Z', 'F', 'R', 'M'};    ///< in front of the stream form
constexpr uint32_t kTimeBytes = 48;
constexpr uint32_t kPropsBytes = 2144;
static_assert(sizeof(Z_TIME) == kTimeBytes && sizeof(Z_AV_PROPS) == kPropsBytes);

/// A frame as it is to be written. Points at what somebody else keeps while it is written.
struct FrameContent {
    int32_t flags = 0;
    uint32_t videoBytes = 0;
    uint64_t section = 0;    ///< the shared-memory section that holds the pixels, or 0
    const uint8_t *audio = nullptr;
    uint32_t audioBytes = 0;
    Z_TIME time = {};
    Z_AV_PROPS props = {};
    const NamedMaps *named = nullptr;
};

/// A frame as far as it was read. What did not come is not told.
struct FrameLoad {
    int32_t flags = 0;
    Z_TIME time = {};       ///< comes in with the frame's own, which a cut block changes only in part
    bool bVideo = false;    ///< the frame's old pixels go, whether new ones come or not
    bool bAudio = false;    ///< `audio` takes the place of the frame's sound
    bool bTime = false;     ///< `time` was read
    bool bProps = false;    ///< of `props` the parts that the flags choose were read
    CBLOBHolder<CHeapAlloc> audio;
    Z_AV_PROPS props = {};
    NamedMaps named;
};

}    // namespace zck
