// Fewer channels out of many.
#include <algorithm>

#include "frames/audio/channels_buffer.h"

namespace zck {
namespace {

// A channel goes into others while the target has at most so many channels; -1 is none. The last two columns replace or
// follow the first two where the target has six channels or more.
struct Fold {
    int32_t channel;
    int32_t targetMax;
    int32_t into[2];
    int32_t intoOfSix[2];
};

constexpr Fold kFolds[] = {
    {2, 2, {0, 1}, {0, 1}},   {3, 3, {0, 1}, {0, 1}},  {4, 4, {0, -1}, {0, -1}},
    {5, 5, {1, -1}, {1, -1}}, {6, 6, {0, -1}, {0, 4}}, {7, 7, {1, -1}, {1, 5}},
    {8, 8, {0, 1}, {4, 5}},   {9, 9, {0, -1}, {0, 4}}, {10, 10, {1, -1}, {1, 5}},
};

}    // namespace

void ZChannelsBuffer::AddInto(int32_t target, int32_t source, bool bFloat) noexcept {
    const int64_t bytes = std::min(BytesOf(target), BytesOf(source));
    const SampleKernels &kernels = SampleKernelsGet();
    if (bFloat) {
        kernels.add32(reinterpret_cast<float *>(Channel(target)), reinterpret_cast<const float *>(Channel(source)), bytes / 4);
    } else {
        kernels.add16(reinterpret_cast<int16_t *>(Channel(target)), reinterpret_cast<const int16_t *>(Channel(source)),
                      bytes / 2);
    }
}

bool ZChannelsBuffer::MixDown(int32_t target, bool bFloat) noexcept {
    if (target < 1) return false;
    if (target >= Count() || Bytes() == 0) return SUCCEEDED(SetCount(target));
    if (target == 1) {
        for (int32_t c = 1; c < Count(); ++c) AddInto(0, c, bFloat);
    } else {
        for (const Fold &fold : kFolds) {
            if (fold.channel >= Count() || target > fold.targetMax) continue;
            for (const int32_t into : target >= 6 ? fold.intoOfSix : fold.into) {
                if (into >= 0) AddInto(into, fold.channel, bFloat);
            }
        }
    }
    return SUCCEEDED(SetCount(target));
}

}    // namespace zck
