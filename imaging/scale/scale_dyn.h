// The system's own vertical scaler, which knows fields.
#pragma once

#include <cstdint>

#include "imaging/scale/scale_options.h"
#include "imaging/scale/tap_table.h"
#include "platform/sync.h"

namespace zck {

/// Keeps the tap tables between calls. Calls with one scaler run one after the other.
struct DynScaler {
    CriticalSection cs;
    TapTables taps;
};

/// The tap tables for a pair of heights, as `TapTables::Init`.
HRESULT Init_Dyn(TapTables *tables, int64_t srcHeight, int64_t dstHeight, int32_t mode, int32_t taps, double factor);

/// Filters the rows of an image of `srcHeight` rows into one of `dstHeight` rows; `width` is in bytes, whatever they mean.
/// Images whose height is negative are entered at their last row and walked upwards. `factor` is the width of the filter: 0
/// for two taps, below 0 for the nearest row alone. Heights that agree (in fields: row for row) are copied.
///
/// `flags`: see `ScaleFlags`. A field order that changes moves the picture by one line, and the line at the edge is repeated;
/// a picture that is too low for that (one row, with both flags two) does not move.
///
/// With three taps the bytes behind the last block of 16 are made in a way of their own: see `BlendRows`.
///
/// Reads only the rows that the taps name and, for that remainder, what lies between them and the last byte of the row with the
/// highest address. S_OK, also without size, and then nothing is written; `E_OUTOFMEMORY`, nothing written.
HRESULT Scale_Dyn(DynScaler *scaler, const uint8_t *src, uint8_t *dst, int32_t srcHeight, int32_t dstHeight, int32_t width,
                  int64_t srcStep, int64_t dstStep, double factor, int32_t flags);

/// Taps that `Scale_Dyn` gives a row.
int32_t ScaleDynTaps(int64_t srcHeight, int64_t dstHeight, int32_t mode, double factor);

}    // namespace zck
