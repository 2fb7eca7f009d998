// What a frame does with its sound, on the sound's record, bytes and loudness block. Frames hold their media lock and call.
#pragma once

#include "frames/audio/channels_buffer.h"
#include "frames/audio/level_meter.h"

namespace zck {

/// The sound of a frame as it lies there. `data` holds `size` bytes.
struct AudioBlock {
    const Z_AUD_PROPS &props;
    uint8_t *data;
    uint32_t size;

    int64_t Samples() const noexcept;
    bool HasSamples() const noexcept { return Samples() > 0; }
};

/// Measures a block: RMS, VU and peaks of the first 32 channels, and `nValidChannels`. What the host alone sets (the other
/// arrays, track numbers) stays. Without a whole sample, and for bits without a working form, all of it becomes 0.
void LoudnessMeasure(const AudioBlock &audio, Z_AUDIO_LOUDNESS &loudness) noexcept;
/// Both of a loudness block: the levels of the sound as it came are those that it has.
void LoudnessMeasureBoth(const AudioBlock &audio, Z_ANC_DATA &levels) noexcept;

/// Gain of the channels that the map names (an empty text names all), from `dBStart` to `dBEnd`, in place, and their levels
/// into `audOutput`. Of a block that was not measured before, channels outside the map go into `audOriginal`. 0 dB measures a
/// block that is not measured, and changes nothing. `E_INVALIDARG` for not-a-number, `S_FALSE` without a whole sample,
/// `VFW_E_INVALID_MEDIA_TYPE` without a working form.
HRESULT AudioGain(const AudioBlock &audio, Z_ANC_DATA &levels, TextView map, double dBStart, double dBEnd) noexcept;

/// Other channels and bits, by a map and by mixing down: `channels` takes the channels and `out` the new block of record `to`.
/// Fails as `FromInterleaved`; `E_OUTOFMEMORY` also for a block that is too large. Nothing changes then.
HRESULT AudioConvert(const AudioBlock &audio, const Z_AUD_PROPS &to, TextView map, ZChannelsBuffer &channels,
                     CBLOBHolder<CHeapAlloc> &out) noexcept;

/// A new zeroed block of record `props` with the channels' samples. `E_OUTOFMEMORY`, also where it is too large.
HRESULT AudioJoin(ZChannelsBuffer &channels, const Z_AUD_PROPS &props, int64_t samples, CBLOBHolder<CHeapAlloc> &out) noexcept;

/// Adds samples of `source` from `sourcePos` to those of `dest` from `destPos`, `count` of them, both inside their blocks.
/// Without `bFade` the destination keeps its level, with it both cross over.
HRESULT AudioAdd(const AudioBlock &dest, int64_t destPos, const AudioBlock &source, int64_t sourcePos, int64_t count,
                 double dBStart, double dBEnd, bool bFade) noexcept;

}    // namespace zck
