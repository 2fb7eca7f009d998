// Which records can be split into channels, and the widths of their samples.
#pragma once

#include "frames/audio/sample_kernels.h"
#include "zchromakey/media_types.h"

namespace zck {

/// Of a record's bits: integers of 9 to 16, 17 to 24 and 25 to 32 bits, floats of 25 to 32 (negative). Everything else is
/// stored, copied and saved, but not split: `None`.
StoredForm StoredFormOf(int32_t bits) noexcept;

/// What such samples are in a channel: integers of 16 bits stay, all others are floats.
WorkForm WorkFormOf(int32_t bits) noexcept;

/// Bytes of a sample in a block and in a channel.
int32_t StoredBytes(StoredForm form) noexcept;
int32_t WorkBytes(WorkForm form) noexcept;

/// The most bytes that a block of sound or a channel may have.
constexpr int64_t kAudioBytesMax = INT32_MAX;

/// The bytes of `samples` samples, or -1 for more than `kAudioBytesMax` and for a negative count.
int64_t AudioBytesChecked(const Z_AUD_PROPS &props, int64_t samples) noexcept;

}    // namespace zck
