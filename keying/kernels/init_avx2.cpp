#include "keying/kernels/kernels_avx2.h"

namespace zck {

void KeyingKernelsInitAvx2(KeyingKernels *table) {
    table->distance = avx2::Distance;
    table->join = avx2::Join;
    table->invert = avx2::Invert;
    table->merge = avx2::Merge;
    table->premultiply = avx2::Premultiply;
    table->merge_premultiply = avx2::MergePremultiply;
    table->to_hls = avx2::ToHls;
    table->to_yuv = avx2::ToYuv;
    table->from_yuv = avx2::FromYuv;
    table->flat = avx2::Flat;
    table->add_const = avx2::AddConst;
    table->add_plane = avx2::AddPlane;
    table->threshold = avx2::Threshold;
    table->erode = avx2::Erode;
    table->dilate = avx2::Dilate;
    table->box = avx2::Box;
    table->gauss = avx2::Gauss;
}

}    // namespace zck
