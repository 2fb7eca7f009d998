// The edge smoothing over whole planes, step by step, for the shapes that `SmoothStream` does not serve.
#pragma once

#include <cstdint>
#include <vector>

namespace zck {

/// The two sequences are not the same, and are not to be unified: results rely on both.
enum class SmoothKind {
    /// Inside one image: the first erosion changes the plane that later minima are taken against, and in every second round
    /// that plane itself takes the box filter's result.
    Image,
    /// Over a plane made by slices: every minimum is taken against the plane as it was.
    Seam,
};

/// Runs the rounds before the last filter on `a`, using `b`, both planes of `height` rows of `stride` bytes with slack of 64
/// bytes, and returns the plane that the last filter has to read: one of the two. `rounds` is 0 or more. The plane must
/// have an interior. With `Seam`, `alpha` is the plane that minima and border are taken from; it has the same stride.
uint8_t *SmoothRounds(SmoothKind kind, uint8_t *a, uint8_t *b, const uint8_t *alpha, int64_t stride, int32_t width,
                      int32_t height, int32_t rounds);

}    // namespace zck
