// Luma and chroma samples of 8 bits in memory become frames that the library takes: packed 4:2:2 where nothing is lost
// by it, RGB32 with the right matrix and range otherwise.
#pragma once

#include <cstddef>
#include <cstdint>

#include "zchromakey/media_types.h"

namespace zkey {

/// Where the samples are. Packed formats are three planes with larger steps.
struct YuvPlanes {
    const uint8_t *y;
    const uint8_t *cb;
    const uint8_t *cr;
    std::ptrdiff_t lumaRow;    ///< bytes from row to row
    std::ptrdiff_t chromaRow;
    int lumaStep = 1;    ///< bytes from sample to sample
    int chromaStep = 1;
    int shiftX = 1;             ///< 1: one chroma sample for two pixels of a row
    int shiftY = 1;             ///< 1: one chroma row for two rows
    bool leftSited = true;      ///< a chroma sample lies on the first pixel of its pair, not in the middle
    bool interlaced = false;    ///< chroma rows belong to fields
    /// The library's format of this sampling that has the samples in this arrangement or nearly so; none for 4:2:2 planes.
    eZFCC arranged = eZFCC_Default;
};

/// Which byte of a pair of 4:2:2 pixels comes first: Cb, Y, Cr, Y or Y, Cb, Y, Cr.
enum class PairOrder { ChromaFirst, LumaFirst };

/// What the samples mean.
struct YuvMeaning {
    double kr = 0.299;
    double kb = 0.114;
    bool fullRange = false;

    bool IsBt601() const { return kr == 0.299 && !fullRange; }
    bool IsBt709() const { return kr == 0.2126 && !fullRange; }
};

inline constexpr YuvMeaning kBt601{0.299, 0.114, false};
inline constexpr YuvMeaning kBt709{0.2126, 0.0722, false};

/// The meaning of a picture that does not tell it: BT.709 from the size of high definition on.
YuvMeaning MeaningBySize(int width, int height);

/// Blue, green, red, 255. Chroma is interpolated between its samples.
void PlanesToRgb32(const YuvPlanes &planes, const YuvMeaning &meaning, int width, int height, uint8_t *dst,
                   std::ptrdiff_t step);
/// Pairs of pixels, for samples with `shiftX` 1 and `shiftY` 0. An odd last pixel fills its pair.
void PlanesToPacked(const YuvPlanes &planes, PairOrder order, int width, int height, uint8_t *dst, std::ptrdiff_t step);

}    // namespace zkey
