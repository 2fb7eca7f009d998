// `ZAudioBuffer2`: sound that is gathered and mixed.
#pragma once

#include <memory>
#include <vector>

#include "frames/audio/channels_buffer.h"
#include "frames/audio/gain.h"
#include "frames/audio/resampler.h"

namespace zck {

/// Channels with their record. For one thread at a time.
class ZAudioBuffer2 final : public AutoObjBase<ZAudioBuffer2> {
public:
    ZAudioBuffer2() = default;
    /// Sound of this record will be gathered. With negative channels the buffer takes and gives nothing.
    explicit ZAudioBuffer2(const Z_AUD_PROPS &format) : m_format(format) {}

    const Z_AUD_PROPS &Format() const noexcept { return m_format; }
    ZChannelsBuffer &Channels() noexcept { return m_channels; }

    /// Empties channels, scratch and resamplers.
    void Clear() noexcept;

    /// Appends a block at the end, in the buffer's rate, bits and channels. A buffer without a format takes the block's, and
    /// with `bNewFormatIfEmpty` one without samples too. With `bMixDown` surplus channels are mixed into the buffer's, else
    /// they are left out. Answers the total of samples, or a failure: `E_INVALIDARG` for a record that is not strictly valid,
    /// `ERROR_NOT_SUPPORTED` as a result for a buffer of negative channels, `VFW_E_INVALID_MEDIA_TYPE` where one of the
    /// records has no working form, `E_OUTOFMEMORY`.
    int64_t Add(const Z_AUD_PROPS *props, const void *data, int64_t bytes, bool bNewFormatIfEmpty, bool bMixDown) noexcept;

    struct MixPart {
        int64_t samples = 0;     ///< 0: all
        int32_t channels = 0;    ///< 0: all
        int32_t destFirst = 0;
        int32_t sourceFirst = 0;
    };
    /// Adds samples of the source, which stays as it is, to the first ones of this buffer; both get their gain before. A buffer
    /// without samples becomes a copy of the source at gain 1, and at any other gain takes its record only. `S_FALSE` where
    /// nothing is mixed: no source, another rate, a source gain of 0 or below.
    HRESULT Mix(ZAudioBuffer2 *source, GainRamp sourceGain, GainRamp destGain, const MixPart &part) noexcept;

    /// Interleaves into `dest`, in the buffer's record or another. -1: all samples; more than there are: zeros behind them.
    HRESULT Get(const Z_AUD_PROPS *format, void *dest, int64_t samples) noexcept;

    int64_t Samples() const noexcept;

private:
    HRESULT AddConverted(const Z_AUD_PROPS &props, const void *data, int64_t bytes, bool bMixDown);
    HRESULT ResampleOne(int32_t channel, int32_t in, int64_t samples, uint32_t at, int64_t room, int64_t &made);
    void MixChannel(ZChannelsBuffer &from, int32_t source, int32_t dest, int64_t samples, const GainRamp &sourceGain,
                    const GainRamp &destGain) noexcept;

    Z_AUD_PROPS m_format = {};
    ZChannelsBuffer m_channels;
    ZChannelsBuffer m_scratch;
    std::vector<std::unique_ptr<Resampler>> m_resamplers;    // one for each channel
    int32_t m_resamplersIn = 0;
    int32_t m_resamplersOut = 0;
};

}    // namespace zck
