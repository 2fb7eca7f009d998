#include "imaging/colour/planar_image.h"

#include <algorithm>
#include <cstdlib>

#include "frames/media/pixel_format.h"
#include "imaging/colour/image_layout.h"
#include "imaging/primitives/convert422.h"
#include "imaging/primitives/copy.h"
#include "imaging/primitives/planar.h"
#include "imaging/primitives/row_kernels.h"
#include "platform/status.h"

namespace zck {
namespace {

using FromPlanes = int32_t (*)(const uint8_t *const *, const int64_t *, uint8_t *, int64_t, ROI);
using ToPlanes = int32_t (*)(const uint8_t *, int64_t, uint8_t *const *, const int64_t *, ROI);

struct Steps {
    int64_t step[3];
    explicit Steps(const PlanarImage &image) : step{image.nRowBytes[0], image.nRowBytes[1], image.nRowBytes[2]} {}
};

void SetPlane(PlanarImage &image, int i, uint8_t *data, int64_t rowBytes, int64_t width, int64_t height) {
    image.plane[i] = data;
    image.nRowBytes[i] = static_cast<int32_t>(rowBytes);
    image.nWidth[i] = static_cast<int32_t>(width);
    image.nHeight[i] = static_cast<int32_t>(height);
    image.rect[i] = {0, 0, image.nWidth[i], image.nHeight[i]};
}

int64_t LumaRow(const ImageLayout &l, bool split) { return split || !Is420(l.kind) ? l.width : l.step[0]; }

// Bytes of the planes one behind the other. Rows are as wide as the picture unless a 4:2:0 record has longer ones.
int64_t BytesOfPlanes(const ImageLayout &l) {
    const int64_t row = LumaRow(l, l.kind == PixelClass::Nv12);
    const int64_t chromaRows = Is420(l.kind) ? l.chromaRows : l.rows;
    return row * l.rows + 2 * (row / 2) * chromaRows;
}

bool LayoutOf(const Z_VID_PROPS &props, ImageLayout &l) {
    return ImageLayoutMake(props.fccType, props.nWidth, props.nHeight, std::llabs(int64_t{props.nRowBytes}), &l);
}

bool Wraps(const ImageLayout &l, const uint8_t *src) { return src != nullptr && l.kind == PixelClass::Planes420; }

void LayPlanes(PlanarImage &image, const ImageLayout &l, uint8_t *scratch) {
    const int64_t row = LumaRow(l, l.kind == PixelClass::Nv12);
    const int64_t chromaRows = Is420(l.kind) ? l.chromaRows : l.rows;
    uint8_t *const chroma = scratch + row * l.rows;
    SetPlane(image, 0, scratch, row, l.width, l.rows);
    SetPlane(image, 1, chroma, row / 2, l.width / 2, chromaRows);
    SetPlane(image, 2, chroma + row / 2 * chromaRows, row / 2, l.width / 2, chromaRows);
    // In memory Cr comes first.
    if (Is420(l.kind) && FormatFind(image.fcc)->bCrFirst) std::swap(image.plane[1], image.plane[2]);
}

ToPlanes Splitter(PixelClass kind) {
    switch (kind) {
        case PixelClass::Uyvy:
            return CbYCr422ToYCbCr422_8u_C2P3R;
        case PixelClass::Yuy2:
            return YCbCr422_8u_C2P3R;
        case PixelClass::Yvyu:
            return YCrCb422ToYCbCr422_8u_C2P3R;
        case PixelClass::Rgb24:
            return BGRToYCbCr422_8u_C3P3R;
        case PixelClass::Rgb32:
            return BGRToYCbCr422_8u_AC4P3R;
        case PixelClass::Planes420:
        case PixelClass::Nv12:
        case PixelClass::None:
            break;
    }
    return nullptr;
}

// An odd last column has luma only, and of 4:2:2 only this byte of its group is sure to be there.
void FillLastColumn(const PlanarImage &image, const ImageLayout &l, const uint8_t *first) {
    const int64_t x = l.width - 1;
    uint8_t *const luma = image.plane[0] + x;
    if (l.kind == PixelClass::Rgb24 || l.kind == PixelClass::Rgb32) {
        uint8_t cb, cr;
        uint8_t *const dst[3] = {luma, &cb, &cr};
        const int64_t steps[3] = {image.nRowBytes[0], 0, 0};
        Splitter(l.kind)(first + x * PixelBytes(l.kind), l.step[0], dst, steps, {1, l.rows});
        return;
    }
    const uint8_t *const byte = first + 2 * x + (l.kind == PixelClass::Uyvy ? 1 : 0);
    for (int64_t y = 0; y < l.rows; ++y) luma[y * image.nRowBytes[0]] = byte[y * l.step[0]];
}

HRESULT Fill(const PlanarImage &image, const ImageLayout &l, const uint8_t *src) {
    const Steps steps(image);
    const ROI even = {l.width & ~1, l.rows};
    const uint8_t *const first = src + l.offset[0];
    if (l.kind != PixelClass::Nv12) {
        if (even.width != l.width) FillLastColumn(image, l, first);
        return even.width == 0 || Splitter(l.kind)(first, l.step[0], image.plane, steps.step, even) == 0 ? S_OK : E_FAIL;
    }
    const ROI pairs = {l.width & ~1, l.rows & ~1};
    const bool copied = Copy_8u_C1R(first, l.step[0], image.plane[0], steps.step[0], {l.width, l.rows}) == 0;
    if (!copied) return E_FAIL;
    if (pairs.width == 0 || pairs.height == 0) return S_OK;
    return YCbCr420_8u_P2P3R(first, l.step[0], src + l.offset[1], l.step[1], image.plane, steps.step, pairs) == 0 ? S_OK
                                                                                                                  : E_FAIL;
}

int32_t ToUyvy(const uint8_t *const *src, const int64_t *step, uint8_t *dst, int64_t dstStep, ROI size) {
    for (int64_t y = 0; y < size.height; ++y)
        PrimitiveKernelsGet().join_uyvy(dst + y * dstStep, src[0] + y * step[0], src[1] + y * step[1], src[2] + y * step[2],
                                        size.width);
    return kPrimitiveOk;
}

int32_t ToBgra(const uint8_t *const *src, const int64_t *step, uint8_t *dst, int64_t dstStep, ROI size) {
    for (int64_t y = 0; y < size.height; ++y)
        PrimitiveKernelsGet().planes_to_bgra(dst + y * dstStep, src[0] + y * step[0], src[1] + y * step[1],
                                             src[2] + y * step[2], size.width, 255);
    return kPrimitiveOk;
}

FromPlanes Packer(PixelClass kind) {
    switch (kind) {
        case PixelClass::Yuy2:
            return YCbCr422_8u_P3C2R;
        case PixelClass::Uyvy:
            return ToUyvy;
        case PixelClass::Yvyu:
            return YCbCr422ToYCrCb422_8u_P3C2R;
        case PixelClass::Rgb24:
            return YCbCr422ToBGR_8u_P3C3R;
        case PixelClass::Rgb32:
            return ToBgra;
        case PixelClass::Planes420:
        case PixelClass::Nv12:
        case PixelClass::None:
            break;
    }
    return nullptr;
}

bool CopyPlane(const PlanarImage &image, int i, uint8_t *dst, int64_t step) {
    const ROI size = {image.nWidth[i], image.nHeight[i]};
    if (size.width < 1 || size.height < 1) return true;
    return Copy_8u_C1R(image.plane[i], image.nRowBytes[i], dst, step, size) == 0;
}

HRESULT Pack420(const PlanarImage &image, const ImageLayout &l, uint8_t *dst) {
    bool done = CopyPlane(image, 0, dst + l.offset[0], l.step[0]);
    if (l.kind == PixelClass::Planes420) {
        for (int i = 1; i < 3; ++i) done = done && CopyPlane(image, i, dst + l.offset[i], l.step[i]);
        return done ? S_OK : E_FAIL;
    }
    const ROI pairs = {image.nWidth[1] * 2, image.nHeight[1] * 2};
    if (done && pairs.width > 0 && pairs.height > 0)
        done = YCbCr420_8u_P3P2R(image.plane, Steps(image).step, dst, l.step[0], dst + l.offset[1], l.step[1], pairs) == 0;
    return done ? S_OK : E_FAIL;
}

}    // namespace

int64_t PlanesScratch(const Z_VID_PROPS &props, bool hasSource) {
    ImageLayout l;
    if (!LayoutOf(props, l) || (hasSource && l.kind == PixelClass::Planes420)) return 0;
    return BytesOfPlanes(l);
}

HRESULT LoadPlanes(PlanarImage *image, const uint8_t *src, int64_t srcBytes, const Z_VID_PROPS *props, uint8_t *scratch,
                   int64_t scratchBytes) {
    if (image == nullptr) return E_POINTER;
    *image = {};
    if (props == nullptr) return E_POINTER;
    if (PixelClassOf(props->fccType) == PixelClass::None) return kVfwEInvalidSubtype;
    ImageLayout l;
    if (!LayoutOf(*props, l)) return kVfwEInvalidMediaType;
    if (src != nullptr && l.bytes > srcBytes) return kVfwEInvalidMediaType;
    const bool wraps = Wraps(l, src);
    if (!wraps && scratch == nullptr) return E_POINTER;
    if (!wraps && BytesOfPlanes(l) > scratchBytes) return kVfwEInvalidMediaType;
    image->fcc = props->fccType;
    // A wrapped image is only read, as the caller was told.
    LayPlanes(*image, l, wraps ? const_cast<uint8_t *>(src) : scratch);
    image->bPlanar = true;
    return wraps || src == nullptr ? S_OK : Fill(*image, l, src);
}

HRESULT PackPlanes(const PlanarImage *image, uint8_t *dst, int64_t dstBytes, eZFCC fcc, int32_t rowBytes) {
    if (image == nullptr || dst == nullptr) return E_POINTER;
    if (!image->bPlanar || image->plane[0] == nullptr || image->nWidth[0] < 1 || image->nHeight[0] < 1) return E_FAIL;
    const PixelClass kind = PixelClassOf(fcc);
    if (kind == PixelClass::None || Is420(kind) != Is420(PixelClassOf(image->fcc))) return kVfwEInvalidSubtype;
    ImageLayout l;
    // Top-down: the sign of the rows is the caller's.
    if (!ImageLayoutMake(fcc, image->nWidth[0], -image->nHeight[0], std::llabs(int64_t{rowBytes}), &l) || l.bytes > dstBytes ||
        (rowBytes < 0 && Is420(kind)))
        return kVfwEInvalidMediaType;
    if (Is420(kind)) return Pack420(*image, l, dst);
    const ROI even = {image->nWidth[0] & ~1, image->nHeight[0]};
    if (even.width == 0) return S_OK;
    return Packer(kind)(image->plane, Steps(*image).step, dst, rowBytes, even) == 0 ? S_OK : E_FAIL;
}

}    // namespace zck
