// The meaning of a key record: its defaults, the operator's view of it, and the part that each entry plays.
#pragma once

#include <cstdint>

#include "zchromakey/key_types.h"

namespace zck {

/// Entries that a `CHROMA_KEY_RAW` has room for.
inline constexpr int32_t kKeysMax = 16;

/// The adjustment that a fresh plug-in and a reset key take.
CK_ADJUST AdjustDefaults();

/// The operator's view of a raw key, measured on one entry; an index below 1 means entry 0, one past the table the last entry.
/// The raw record has no trace of `dblPower`, `dblExclPower`, `dblExclTransparent` and `rangeAdjust`: they come back as 0,
/// not as their defaults.
CK_ADJUST AdjustFromRaw(const CHROMA_KEY_RAW &raw, int32_t keyIndex);

/// The entry cuts its colours out.
bool IsAlphaKey(const SINGLE_KEY &key);

/// The entry protects its colours from being cut out.
bool IsReverseKey(const SINGLE_KEY &key);

/// The entry moves spill colour away. `nAlpha` has no say: an entry that cuts nothing out can still cancel spill.
bool IsSpillKey(const SINGLE_KEY &key);

/// A colour or half-width of an entry in the byte order of pixels: those of type RGB hold red in the low byte, pixels hold blue
/// there.
int32_t InPixelOrder(int32_t word, eCK_Type type);

/// Entries to look at, 0 to `kKeysMax`. The record itself may keep a larger or negative count.
int32_t KeysUsed(const CHROMA_KEY_RAW &raw);

}    // namespace zck
