#include "keying/slices/finish_alpha.h"

#include <cstring>
#include <vector>

#include "frames/media/pixel_format.h"
#include "frames/media/row_count.h"
#include "frames/media/video_props.h"
#include "keying/kernels/filter_plane.h"
#include "keying/pipeline/by_fields.h"
#include "keying/pipeline/image_view.h"
#include "keying/pipeline/smooth_plane.h"
#include "keying/slices/slices.h"
#include "platform/status.h"

namespace zck {
namespace {

constexpr int64_t kPlaneMax = int64_t{1} << 40;
constexpr int64_t kSlack = 64;

HRESULT SmoothSeam(const KeyView &view, int32_t edges, std::vector<uint8_t> *rowScratch) {
    if (view.width < 3 || view.height < 3) return StatusOf(0x80000000U | static_cast<uint32_t>(kFilterSizeError));
    const int64_t plane = view.stride * view.height;
    if (plane > kPlaneMax) return E_OUTOFMEMORY;
    // The plane as it came, and the two that the rounds swap.
    std::vector<uint8_t> block(static_cast<size_t>(3 * plane + kSlack));
    uint8_t *alpha = block.data();
    uint8_t *a = alpha + plane;
    for (int64_t y = 0; y < view.height; ++y) {
        const AlphaRow row(view, y, rowScratch);
        std::memcpy(alpha + y * view.stride, row.Get(), static_cast<size_t>(view.width));
    }
    std::memcpy(a, alpha, static_cast<size_t>(plane));
    const uint8_t *last = SmoothRounds(SmoothKind::Seam, a, a + plane, alpha, view.stride, view.width, view.height, edges - 1);
    for (int64_t y = 1; y < view.height - 1; ++y) {
        const AlphaRow row(view, y, rowScratch);
        const uint8_t *middle = last + y * view.stride + 1;
        KeyingKernelsGet().gauss(row.Get() + 1, middle - view.stride, middle, middle + view.stride, view.width - 2);
    }
    return S_OK;
}

HRESULT FinishView(const KeyView &view, const CHROMA_KEY_RAW &key) {
    const KeyingKernels &kernels = KeyingKernelsGet();
    std::vector<uint8_t> rowScratch;
    if (key.nEdgesSmooth > 0) {
        const HRESULT hr = SmoothSeam(view, key.nEdgesSmooth, &rowScratch);
        if (FAILED(hr)) return hr;
    }
    const bool invert = (key.nInverseKey & 1) != 0;
    for (int64_t y = 0; y < view.height && invert; ++y) {
        const AlphaRow row(view, y, &rowScratch);
        kernels.invert(row.Get(), view.width, true);
    }
    for (int64_t y = 0; y < view.height && view.Is32(); ++y) {
        const int64_t offset = y * 4 * view.stride;
        if (view.bounds.pixelBytes - offset < int64_t{4} * view.width) break;
        const AlphaRow row(view, y, &rowScratch);
        kernels.merge(view.pixels + offset, view.pixels + offset, row.Get(), view.width);
    }
    return S_OK;
}

}    // namespace

HRESULT FinishAlphaWithin(uint8_t *pixels, uint8_t *alpha, const Z_VID_PROPS *props, const CHROMA_KEY_RAW *key,
                          const KeyBounds &bounds) {
    if (pixels == nullptr || alpha == nullptr || props == nullptr || key == nullptr) return E_POINTER;
    const HRESULT hr = CheckProps(*props);
    if (FAILED(hr)) return hr;
    return Guarded([&] {
        if (key->nInterlacedVideo >= 1) return ByFields(pixels, alpha, *props, *key, bounds, FinishAlphaWithin);
        return FinishView(MakeView(pixels, alpha, props, AlphaStride(*props), bounds), *key);
    });
}

HRESULT FinishAlpha(uint8_t *pixels, uint8_t *alpha, const Z_VID_PROPS *props, const CHROMA_KEY_RAW *key) {
    if (pixels == nullptr || alpha == nullptr || props == nullptr || key == nullptr) return E_POINTER;
    const int64_t rows = RowCount(props->nHeight);
    const int64_t stride = AlphaStride(*props);
    // The late byte of an inversion stays within its own row.
    return FinishAlphaWithin(pixels, alpha, props, key, {rows * props->nRowBytes, rows * stride, props->nRowBytes, stride});
}

void PremultiplyFrame(uint8_t *pixels, const Z_VID_PROPS &props, int64_t pixelBytes) {
    if (!Is32BitFormat(props.fccType)) return;
    const int64_t rows = RowCount(props.nHeight);
    for (int64_t y = 0; y < rows; ++y) {
        const int64_t offset = y * props.nRowBytes;
        if (pixelBytes - offset < int64_t{4} * props.nWidth) return;
        KeyingKernelsGet().premultiply(pixels + offset, props.nWidth);
    }
}

}    // namespace zck
