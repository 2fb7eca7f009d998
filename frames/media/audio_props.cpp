#include "frames/media/audio_props.h"

#include <cstdlib>

namespace zck {
namespace {

int64_t BlockBytes(const Z_AUD_PROPS &p) { return p.nChannels * AudioSampleBytes(p.nBitsPerSample); }

}    // namespace

bool AudioPropsValid(const Z_AUD_PROPS *props, bool bStrict) {
    if (props == nullptr) return false;
    if (bStrict) return props->nChannels > 0 && props->nSamplesPerSec > 0 && props->nBitsPerSample != 0;
    return props->nChannels != 0 || props->nSamplesPerSec != 0 || props->nBitsPerSample != 0;
}

int64_t AudioSampleBytes(int32_t bits) { return (std::llabs(int64_t{bits}) + 7) / 8; }

int64_t AudioWorkSampleBytes(int32_t bits) {
    const int64_t bytes = AudioSampleBytes(bits);
    return bytes == 3 ? 4 : bytes;
}

int64_t AudioBytes(const Z_AUD_PROPS *props, int64_t samples) {
    if (!AudioPropsValid(props, true)) return 0;
    return static_cast<int64_t>(static_cast<uint64_t>(samples) * static_cast<uint64_t>(BlockBytes(*props)));
}

int64_t AudioSamples(const Z_AUD_PROPS *props, int64_t bytes) {
    return AudioPropsValid(props, true) ? bytes / BlockBytes(*props) : 0;
}

}    // namespace zck
