// What the engines keep between conversions.
#pragma once

#include <cstdint>
#include <vector>

#include "imaging/colour/color_convert.h"
#include "imaging/scale/resize_planes.h"
#include "imaging/scale/resize_sharp.h"
#include "platform/worker_pool.h"

namespace zck {

/// Of one plane (or of an RGB image, plane 0): tap tables, resizers and scratch.
struct ImgScaleState : ImgConvertState {
    PlaneResizer plane[3];
    std::vector<uint8_t> scratch[3];
};

/// The state of the engines for one caller at a time: scratch and tables grow on demand and stay, and a conversion of a kind
/// that has been before allocates nothing. Scratch carries no pixels from call to call.
struct FieldConverter {
    PlaneScaler scaler;            ///< of `ConvertFrame2`
    PlaneScaler lower;             ///< of the lower half, where two threads make the picture
    ImgScaleState mode[4];         ///< of `ConvertFrame3`: progressive, fields stay fields, even rows only, odd rows only
    WorkerPool *pool = nullptr;    ///< that `ConvertFrame2` may use for large pictures; results do not depend on it
};

}    // namespace zck
