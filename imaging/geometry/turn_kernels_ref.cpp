#include <cstring>

#include "imaging/geometry/turn_kernels.h"

namespace zck {
namespace {

void Transpose4(uint8_t *dst, int64_t dstStep, const uint8_t *src, int64_t srcStep) {
    for (int64_t i = 0; i < kTurnBlock; ++i)
        for (int64_t j = 0; j < kTurnBlock; ++j) std::memcpy(dst + i * dstStep + 4 * j, src + j * srcStep + 4 * i, 4);
}

}    // namespace

void TurnKernelsInitRef(TurnKernels *table) { *table = {Transpose4}; }

}    // namespace zck
