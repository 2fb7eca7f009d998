#include "hosts/zkey/hand_over.h"

#include <cstring>

#include "hosts/zkey/frame_format.h"

namespace zkey {
namespace {

void CopyPlane(const uint8_t *from, std::ptrdiff_t fromRow, int fromStep, uint8_t *to, std::ptrdiff_t toRow, int toStep,
               int width, int height) {
    for (int y = 0; y < height; ++y, from += fromRow, to += toRow) {
        if (fromStep == 1 && toStep == 1) {
            std::memcpy(to, from, static_cast<std::size_t>(width));
            continue;
        }
        for (int x = 0; x < width; ++x) to[std::ptrdiff_t{x} * toStep] = from[std::ptrdiff_t{x} * fromStep];
    }
}

void StorePlanar(const YuvPlanes &p, int width, int height, uint8_t *pixels, const Z_VID_PROPS &props) {
    const PlanarFrame to = PlanesOfFrame(pixels, props);
    CopyPlane(p.y, p.lumaRow, p.lumaStep, to.y, to.lumaRow, 1, width, height);
    CopyPlane(p.cb, p.chromaRow, p.chromaStep, to.cb, to.chromaRow, to.chromaStep, width / 2, height / 2);
    CopyPlane(p.cr, p.chromaRow, p.chromaStep, to.cr, to.chromaRow, to.chromaStep, width / 2, height / 2);
}

}    // namespace

eZFCC HandOverFormat(const YuvPlanes &p, const YuvMeaning &meaning, int width, int height) {
    if (p.shiftX == 1 && p.shiftY == 0) {
        if (meaning.IsBt601()) return p.arranged == eZFCC_YUY2 ? eZFCC_YUY2 : eZFCC_UYVY;
        if (meaning.IsBt709()) return eZFCC_HDYC;
    }
    const bool whole = width % 2 == 0 && height % 2 == 0;
    if (IsPlanar(p.arranged) && meaning.IsBt601() && !p.interlaced && whole) return p.arranged;
    return eZFCC_RGB32;
}

void HandOver(const YuvPlanes &p, const YuvMeaning &meaning, int width, int height, uint8_t *pixels, const Z_VID_PROPS &props) {
    if (IsPlanar(props.fccType)) return StorePlanar(p, width, height, pixels, props);
    if (props.fccType == eZFCC_RGB32) return PlanesToRgb32(p, meaning, width, height, pixels, props.nRowBytes);
    PlanesToPacked(p, props.fccType == eZFCC_YUY2 ? PairOrder::LumaFirst : PairOrder::ChromaFirst, width, height, pixels,
                   props.nRowBytes);
}

}    // namespace zkey
