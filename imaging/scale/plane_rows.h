// The rows of an image's planes, made as they are asked for, so that no whole plane is ever made of a packed picture.
#pragma once

#include <cstdint>
#include <vector>

#include "imaging/scale/scale_image.h"

namespace zck {

/// As what the rows of an image are read.
enum class ReadAs : int32_t {
    Planes,    ///< Y, Cb, Cr as `LoadPlanes` has them: of 4:2:2 and RGB 4:2:2 planes, of 4:2:0 its own
    Pixels,    ///< of RGB 4-byte pixels in plane 0; those of RGB24 get alpha 255
};

/// A ring of unpacked rows. Planes that stand in the image as they are read are not copied.
class PlaneRows {
public:
    /// `rowsAtOnce`: rows that the reader holds at one time.
    void Open(const ScaleImage &image, ReadAs as, int32_t rowsAtOnce);
    /// Row `y` of a plane; good until a row is asked for that is `rowsAtOnce` or more away from it.
    const uint8_t *Row(int32_t plane, int32_t y);

private:
    bool Direct(int32_t plane) const;
    void Unpack(uint8_t *slot, int32_t y) const;

    ScaleImage m_image;
    ReadAs m_as = ReadAs::Planes;
    int64_t m_nSlot = 0;            // bytes of a row's planes
    int64_t m_offset[3] = {};       // of a plane in the slot
    std::vector<int32_t> m_held;    // the row that each slot holds, or -1
    std::vector<uint8_t> m_ring;
};

}    // namespace zck
