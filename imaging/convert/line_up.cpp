#include "imaging/convert/line_up.h"

#include <algorithm>
#include <cstdlib>

#include "frames/media/pixel_format.h"
#include "imaging/colour/fill.h"

namespace zck {
namespace {

int64_t LinesOf(const Z_VID_PROPS &props) { return std::abs(static_cast<int64_t>(props.nHeight)); }

bool Meets(const Z_VID_PROPS &a, const Z_VID_PROPS &b, eZVideoFormat standard, int64_t least, int64_t most) {
    const auto inRange = [&](const Z_VID_PROPS &props) { return LinesOf(props) >= least && LinesOf(props) <= most; };
    return (a.eVideoFormat == standard && inRange(b)) || (b.eVideoFormat == standard && inRange(a));
}

bool BottomUp(const Z_VID_PROPS &props) { return IsRgbFormat(props.fccType) && props.nHeight > 0; }

void SetLines(Z_VID_PROPS &props, int64_t lines) { props.nHeight = static_cast<int32_t>(props.nHeight < 0 ? -lines : lines); }

}    // namespace

LineUp LineUpHeights(Z_VID_PROPS &source, Z_VID_PROPS &target, LineUpKind kind) {
    LineUp result;
    const int64_t more = LinesOf(target) - LinesOf(source);
    const bool meets = Meets(source, target, eZVF_NTSC, 480, 525) ||
                       (kind == LineUpKind::kNtscAndPal && Meets(source, target, eZVF_PAL, 576, 625));
    if (!meets || more == 0 || IsPlanarFormat((more > 0 ? target : source).fccType)) return result;

    // The top line of a bottom-up image is the last one in memory: its start stays.
    if (more > 0) {
        const int64_t firstRow = BottomUp(target) ? LinesOf(source) : 0;
        result.nTargetBlack = firstRow * target.nRowBytes;
        result.nTargetBlackRows = static_cast<int32_t>(more);
        if (!BottomUp(target)) result.nTargetStart = more * target.nRowBytes;
        SetLines(target, LinesOf(source));
    } else {
        if (!BottomUp(source)) result.nSourceStart = -more * source.nRowBytes;
        SetLines(source, LinesOf(target));
    }
    return result;
}

void LinesBlacken(const LineUp &lines, const Z_VID_PROPS &target, uint8_t *memory, int64_t bytes) {
    if (memory == nullptr || lines.nTargetBlackRows == 0) return;
    const int64_t rows = int64_t{lines.nTargetBlackRows} * target.nRowBytes;
    FillPlain(target.fccType, memory + lines.nTargetBlack, std::min(rows, bytes - lines.nTargetBlack), 0);
}

}    // namespace zck
