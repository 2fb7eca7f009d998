// Planes or RGB images to another size, format and place in the target, row by row.
#pragma once

#include <cstdint>

#include "imaging/scale/plane_rows.h"
#include "imaging/scale/resizer.h"
#include "imaging/scale/scale_image.h"
#include "zchromakey/com.h"

namespace zck {

/// Between two RGB images pixels are resized as they are (alpha is a channel like the others; a copy keeps it, and RGB24 has
/// 255). All else goes by way of planes: the source's luma and chroma are resized to those of the target, whose chroma is 4:2:2
/// or 4:2:0 as its format says, and packed. The rectangles of both images say what becomes what; rectangles of one size are
/// copied. What lies outside the target's rectangle becomes black: planes 16, 128, 128, pixels of RGB made of RGB 0 in all
/// bytes, alpha included. An odd last column of 4:2:2, and of RGB made of planes, is not written.
///
/// Super-sampling only reduces: a plane that grows in a direction takes the cubic instead.
///
/// Target rows are made one by one, with source rows unpacked as they are needed; nothing is allocated once the scratch has
/// grown. One scaler serves one thread.
class PlaneScaler {
public:
    /// S_OK; 0x80040201 for a format without planes; `E_FAIL` for rectangles of different sizes of which one has a side of 0 in
    /// a plane, and for an unknown quality; `E_OUTOFMEMORY`. After a failure the scaler must not run. The images lie inside
    /// their memory, the rectangles inside their images.
    HRESULT Prepare(const ScaleImage &source, const ScaleImage &target, int32_t nLuma, int32_t nChroma);

    /// Makes target rows y0 to y1 - 1; with 4:2:0 both must be even, or the picture's end.
    void Run(int32_t y0, int32_t y1);
    int32_t Rows() const { return m_target.rows; }

private:
    struct Part {
        PlaneArea source;
        PlaneArea target;
        PlaneArea whole;    // of the target's plane
        int32_t pixel;      // bytes
        uint8_t fill;
        bool copy;
        Resizer resizer;
    };
    struct Reader;

    HRESULT PreparePart(int32_t plane, int32_t quality);
    void MakeRow(int32_t plane, int32_t y, uint8_t *dst);
    void RgbRow(int32_t y);
    void PackedRow(int32_t y);
    void ChromaRow420(int32_t y);

    ScaleImage m_source;
    ScaleImage m_target;
    bool m_bPixels = false;
    Part m_part[3] = {};
    PlaneRows m_rows;
    std::vector<uint8_t> m_out;    // one target row's planes
    uint8_t *m_outPlane[3] = {};
};

/// `Prepare` and all rows.
HRESULT ResizePlanes(PlaneScaler *scaler, const ScaleImage &source, const ScaleImage &target, int32_t nLuma, int32_t nChroma);

}    // namespace zck
