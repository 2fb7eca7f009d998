#include "keying/pipeline/to_rgb32.h"

#include <algorithm>
#include <limits>

#include "frames/media/pixel_format.h"
#include "imaging/colour/convert.h"
#include "platform/status.h"

namespace zck {

HRESULT ToRgb32(const uint8_t *src, int64_t srcBytes, uint8_t *dst, int64_t dstBytes, const Z_VID_PROPS &props,
                int64_t stride) {
    if (props.nWidth == 0 || props.nHeight == 0) return S_OK;
    if (4 * stride > std::numeric_limits<int32_t>::max()) return E_INVALIDARG;
    Z_VID_PROPS source = props;
    // A slice or a field has not the size of its frame's format, and must not be given it.
    source.eVideoFormat = eZVF_Custom;
    Z_VID_PROPS target = source;
    target.fccType = eZFCC_RGB32;
    target.nRowBytes = static_cast<int32_t>(4 * stride);
    // Other formats run from the top; RGB keeps its row order.
    if (!IsRgbFormat(props.fccType)) target.nHeight = -std::abs(props.nHeight);
    return ConvertSameGeometry(src, srcBytes, dst, dstBytes, &source, &target);
}

}    // namespace zck
