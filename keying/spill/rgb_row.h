// One row of RGB to YUY2 and back, as the anti-spill takes RGB.
#pragma once

#include <cstdint>

#include "imaging/colour/convert.h"
#include "zchromakey/com.h"

namespace zck {

class SpillRgbRow {
public:
    /// For rows of `width` pixels of `fcc`; the statuses of `ConvertSameGeometry`.
    HRESULT Prepare(eZFCC fcc, int32_t width);

    /// `yuv` has room for width + 1 pixels. Of an odd width the last luma byte is left alone.
    void Into(const uint8_t *rgb, uint8_t *yuv) const { m_into.RunRows(rgb, yuv, 0, 1); }

    /// Alpha, if there is one, becomes 255.
    void Back(const uint8_t *yuv, uint8_t *rgb) const { m_back.RunRows(yuv, rgb, 0, 1); }

private:
    ConvertPlan m_into;
    ConvertPlan m_back;
};

}    // namespace zck
