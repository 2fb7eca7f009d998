// Standard-definition pictures come with more or fewer lines at the top (480 and 486, 576 and 625): a line of one is a line of
// the other, so they are lined up at the bottom and not scaled.
#pragma once

#include <cstdint>

#include "zchromakey/media_types.h"

namespace zck {

/// What lining up changes besides the heights. All in bytes from the start of the image's memory; zeros when nothing changes.
struct LineUp {
    int64_t nSourceStart = 0;        ///< where the source's image now starts
    int64_t nTargetStart = 0;        ///< where the target's image now starts
    int64_t nTargetBlack = 0;        ///< where the rows that the source does not have start
    int32_t nTargetBlackRows = 0;    ///< the top lines of the target, to be filled with black
};

/// Which standards are lined up.
enum class LineUpKind {
    kNtsc,          ///< 480 to 525 lines against `eZVF_NTSC`
    kNtscAndPal,    ///< and 576 to 625 lines against `eZVF_PAL`
};

/// Gives both records the smaller number of lines, each with its own sign, when one is of the standard, the other's lines are
/// in its range, and the numbers differ. The taller picture loses lines at its top; a planar picture that is the taller one
/// stays, since its planes cannot start elsewhere.
LineUp LineUpHeights(Z_VID_PROPS &source, Z_VID_PROPS &target, LineUpKind kind);

/// Blackens the lines that the source does not have, `nTargetBlackRows` whole rows as far as the memory goes. Formats that have
/// no fill keep their bytes. Nothing to do without memory.
void LinesBlacken(const LineUp &lines, const Z_VID_PROPS &target, uint8_t *memory, int64_t bytes);

}    // namespace zck
