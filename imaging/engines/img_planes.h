// Planes for the high-quality stage: parts of 4:2:2 and 4:2:0 images as three planes and back.
#pragma once

#include <cstdint>
#include <vector>

#include "imaging/colour/image_layout.h"
#include "zchromakey/com.h"

namespace zck {

struct ImgPlane {
    uint8_t *p = nullptr;
    int64_t step = 0;
    int32_t width = 0;
    int32_t rows = 0;
};

struct ImgPlanes {
    ImgPlane plane[3];    ///< Y, Cb, Cr
};

/// Which rows of a picture share a row of 4:2:0 chroma.
enum class ChromaRows : int32_t {
    Progressive,    ///< 2 n and 2 n + 1
    ByField,        ///< 4 n + k and 4 n + k + 2 share row 2 n + k
};

/// Planes in a buffer, all 0, rows a multiple of 4 bytes apart. Chroma is half as wide; of 4:2:0 it has (rows + 1) / 2 rows.
/// The buffer has room for two more rows of luma behind the planes.
ImgPlanes ScratchPlanes(std::vector<uint8_t> *scratch, int32_t width, int32_t rows, bool half);

/// The rectangle of a 4:2:2 image as 4:2:2 or (`half`) 4:2:0 planes in scratch; the latter's chroma is the mean of two rows,
/// ties up, or one row alone where the other is missing.
ImgPlanes PlanesOf422(const uint8_t *image, const ImageLayout &layout, const tagRECT &rc, bool half, ChromaRows chroma,
                      std::vector<uint8_t> *scratch);

/// The rectangle of a 4:2:0 image where it stands; the chroma of NV12 is split into scratch (`JoinNv12` brings it back).
ImgPlanes PlanesOf420(const uint8_t *image, const ImageLayout &layout, const tagRECT &rc, std::vector<uint8_t> *scratch);

/// Planes into the rectangle of a 4:2:2 image; `half`: they are 4:2:0.
void PackPlanes422(const ImgPlanes &planes, bool half, ChromaRows chroma, uint8_t *image, const ImageLayout &layout,
                   const tagRECT &rc);

/// Split chroma into the rectangle of an NV12 image; nothing to do for the other formats.
void JoinNv12(const ImgPlanes &planes, uint8_t *image, const ImageLayout &layout, const tagRECT &rc);

}    // namespace zck
