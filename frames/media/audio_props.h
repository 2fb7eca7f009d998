// Arithmetic on `Z_AUD_PROPS`. Counts are signed 64 bits and are not clamped; a sum beyond them wraps.
#pragma once

#include <cstdint>

#include "zchromakey/media_types.h"

namespace zck {

// Strict: channels and rate positive, bits not 0. Loose: any of the three is set. A null record is never valid.
bool AudioPropsValid(const Z_AUD_PROPS *props, bool bStrict);

// Bytes that a sample of |bits| bits takes on the wire.
int64_t AudioSampleBytes(int32_t bits);

// The same in working buffers, where 3 bytes take 4.
int64_t AudioWorkSampleBytes(int32_t bits);

// Bytes of `samples` samples in every channel; 0 unless the record is strictly valid.
int64_t AudioBytes(const Z_AUD_PROPS *props, int64_t samples);

// Whole samples in `bytes`; 0 unless the record is strictly valid.
int64_t AudioSamples(const Z_AUD_PROPS *props, int64_t bytes);

}    // namespace zck
