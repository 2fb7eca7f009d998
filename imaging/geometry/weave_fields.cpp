#include "imaging/geometry/weave_fields.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "frames/media/video_props.h"
#include "imaging/colour/route.h"
#include "imaging/colour/row_order.h"
#include "platform/status.h"

namespace zck {
namespace {

// The rows of an image from the top of the picture.
struct Rows {
    uint8_t *first;
    uint8_t *end;
    int64_t step;
    uint8_t *Row(int64_t y) const { return first + y * step; }
};

HRESULT Open(const uint8_t *p, int64_t bytes, const Z_VID_PROPS &props, ROI *size, Rows *rows) {
    Z_VID_PROPS record = props;
    int64_t offset = 0;
    const HRESULT hr = NormaliseRecord(&record, &offset, size);
    if (hr != S_OK) return hr;
    if (record.nWidth < 1 || record.nHeight == 0) return E_UNEXPECTED;
    auto *const memory = const_cast<uint8_t *>(p);
    *rows = {memory + offset, memory + bytes, record.nRowBytes};
    record.nRowBytes = std::abs(record.nRowBytes);
    return VideoBytesNeeded(record) > bytes ? kVfwEInvalidMediaType : S_OK;
}

}    // namespace

HRESULT WeaveFields(const uint8_t *a, int64_t aBytes, const uint8_t *b, int64_t bBytes, const Z_VID_PROPS *props, uint8_t *dst,
                    int64_t dstBytes, const Z_VID_PROPS *dstProps) {
    if (a == nullptr || b == nullptr || props == nullptr || dst == nullptr || dstProps == nullptr) return E_POINTER;
    const ConvertRoute *const route = ConvertRouteFind(props->fccType, dstProps->fccType);
    if (route == nullptr) return kVfwEInvalidSubtype;
    if (route->routine == nullptr) return E_FAIL;
    ROI size = {0, 0};
    Rows even = {};
    Rows odd = {};
    Rows to = {};
    HRESULT hr = Open(a, aBytes, *props, &size, &even);
    if (hr == S_OK) hr = Open(b, bBytes, *props, &size, &odd);
    if (hr == S_OK) hr = Open(dst, dstBytes, *dstProps, &size, &to);
    if (hr != S_OK) return hr;
    if ((dstProps->eInterlace == eZI_Field2First) != (to.step < 0)) std::swap(even, odd);
    const int64_t rows = size.height / 2;
    // With an alpha to write the rows go one by one instead of two by two.
    const int64_t stride = route->nAlphaArg < 0 ? 1 : 2;
    for (int64_t parity = 0; parity < 2; ++parity) {
        const Rows &from = parity == 0 ? even : odd;
        for (int64_t r = 0; r < rows; ++r) {
            const int64_t y = parity + stride * r;
            route->routine({from.Row(y), from.end, to.Row(y), to.end, size.width});
        }
    }
    return S_OK;
}

}    // namespace zck
