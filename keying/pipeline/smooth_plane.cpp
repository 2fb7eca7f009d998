#include "keying/pipeline/smooth_plane.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "keying/kernels/filter_plane.h"
#include "keying/kernels/kernels.h"

namespace zck {
namespace {

struct Size {
    int64_t stride;
    int32_t width;
    int32_t height;
};

void CopyBorder(uint8_t *dst, const uint8_t *src, const Size &size) {
    if (dst == src) return;
    const auto bytes = static_cast<size_t>(size.width);
    const int64_t last = (size.height - 1) * size.stride;
    std::memcpy(dst, src, bytes);
    std::memcpy(dst + last, src + last, bytes);
    for (int64_t y = 0; y < size.height; ++y) {
        dst[y * size.stride] = src[y * size.stride];
        dst[y * size.stride + size.width - 1] = src[y * size.stride + size.width - 1];
    }
}

// So that no transparent ring grows from a border that nothing wrote.
void OpaqueBorder(uint8_t *dst, const Size &size) {
    const auto bytes = static_cast<size_t>(size.width);
    std::memset(dst, 255, bytes);
    std::memset(dst + (size.height - 1) * size.stride, 255, bytes);
    for (int64_t y = 0; y < size.height; ++y) {
        dst[y * size.stride] = 255;
        dst[y * size.stride + size.width - 1] = 255;
    }
}

void JoinPlane(uint8_t *dst, const uint8_t *src, const Size &size) {
    for (int64_t y = 0; y < size.height; ++y) {
        KeyingKernelsGet().join(dst + y * size.stride, src + y * size.stride, size.width, 0);
    }
}

struct Planes {
    uint8_t *a;
    uint8_t *b;
};

void ImageRound(Planes *p, uint8_t *origin, const Size &size, uint8_t *scratch) {
    ErodePlane(p->a, size.stride, size.width, size.height, scratch);
    BoxPlane(p->b, size.stride, p->a, size.stride, size.width, size.height);
    JoinPlane(p->b, origin, size);
    std::swap(p->a, p->b);
    // After the swap this is the older plane.
    CopyBorder(p->b, origin, size);
}

void SeamRound(Planes *p, const uint8_t *alpha, const Size &size, uint8_t *scratch) {
    ErodePlane(p->a, size.stride, size.width, size.height, scratch);
    BoxPlane(p->b, size.stride, p->a, size.stride, size.width, size.height);
    JoinPlane(p->b, alpha, size);
    CopyBorder(p->b, alpha, size);
    std::swap(p->a, p->b);
}

// A count of rounds may be anything, while the planes come to rest after a few: two rounds that change nothing are the end.
constexpr int32_t kRestCheck = 32;

}    // namespace

uint8_t *SmoothRounds(SmoothKind kind, uint8_t *a, uint8_t *b, const uint8_t *alpha, int64_t stride, int32_t width,
                      int32_t height, int32_t rounds) {
    const Size size{stride, width, height};
    const auto bytes = static_cast<size_t>((height - 1) * stride + width);
    std::vector<uint8_t> scratch(FilterScratchBytes(width));
    std::vector<uint8_t> restA;
    std::vector<uint8_t> restB;
    Planes p{a, b};
    if (kind == SmoothKind::Image && rounds > 0) OpaqueBorder(b, size);
    for (int32_t left = rounds; left > 0; --left) {
        // The planes swap in each round, so that only an even count of rounds leads back to the same state.
        const int32_t done = rounds - left;
        if (done >= kRestCheck && done % 2 == 0) {
            const bool rest =
                restA.size() == bytes && std::equal(restA.begin(), restA.end(), a) && std::equal(restB.begin(), restB.end(), b);
            if (rest) left = (left - 1) % 2 + 1;
            restA.assign(a, a + bytes);
            restB.assign(b, b + bytes);
        }
        if (kind == SmoothKind::Image) {
            ImageRound(&p, a, size, scratch.data());
        } else {
            SeamRound(&p, alpha, size, scratch.data());
        }
    }
    return p.a;
}

}    // namespace zck
