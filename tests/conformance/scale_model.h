// Dull scaling and the engines over it, step by step over whole images, against which the library's are compared. Resampling is
// done in real numbers. Nothing here is shared with the library but the public records.
#pragma once

#include <cstdint>
#include <vector>

#include "tests/conformance/picture_model.h"

namespace conformance {

// The rows of an image in a memory, from a place on, in steps of any sign.
struct RowsAt {
    Bytes *memory;
    int64_t start;
    int64_t step;
    uint8_t &At(int64_t y, int64_t byte) const { return memory->at(static_cast<size_t>(start + y * step + byte)); }
};

// The vertical scaler: heights with their signs, `start` is the first row in memory.
void ScaleRowsModel(const RowsAt &src, const RowsAt &dst, int32_t srcHeight, int32_t dstHeight, int32_t width, double factor,
                    int32_t flags);

// Resampling of pixels of `pixel` bytes, each a channel, both ways at once.
void ResizeModel(const RowsAt &src, int32_t w, int32_t h, const RowsAt &dst, int32_t tw, int32_t th, int32_t pixel,
                 int32_t code);

struct FitModel {
    tagRECT src;
    tagRECT dst;
};
FitModel FitRectsModel(const Z_VID_PROPS &sp, const Z_VID_PROPS &tp);

// Null outputs are not wanted.
struct EngineOutputs {
    Bytes *dst;
    Bytes *first;
    Bytes *second;
};

// Whether the engines convert without scaling, where there is a route.
bool IsStraightModel(const EngineOutputs &out, const Z_VID_PROPS &sp, const Z_VID_PROPS &tp);

// Both engines where they scale, or where there is no route. False when they fail.
bool Frame2Model(const Bytes &src, const EngineOutputs &out, const Z_VID_PROPS &sp, const Z_VID_PROPS &tp, int32_t q);
bool Frame3Model(const Bytes &src, const EngineOutputs &out, const Z_VID_PROPS &sp, const Z_VID_PROPS &tp, int32_t q);

}    // namespace conformance
