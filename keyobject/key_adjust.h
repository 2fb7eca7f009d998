// From the operator's adjustment to the integers of a raw key, and the part of it that can be taken back.
#pragma once

#include "zchromakey/key_types.h"

namespace zck {

/// Adds half away from zero and cuts the fraction off. The ends of 32 bits are the ends; not-a-number gives 0.
int32_t AdjustRounded(double x);

/// The field that a selector means; null for `eCKA_KeyType` and all that is no selector.
double *AdjustField(CK_ADJUST &adjust, eCK_Adjust selector);

/// Takes the widening of the half-widths back. A byte that was cut at 0 or 255 does not come back.
///
/// Here and below a count of entries outside of 0..15 is taken for 16, and written so.
void AdjustRemove(CHROMA_KEY_RAW &key, const CK_ADJUST &adjust);

/// Widens the half-widths and sets soft edges, spill fields, smoothing and thresholds. `bColorCancel` is set with an entry:
/// without one it stays.
void AdjustApply(CHROMA_KEY_RAW &key, const CK_ADJUST &adjust);

}    // namespace zck
