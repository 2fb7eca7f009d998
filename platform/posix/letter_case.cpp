#include "platform/letter_case.h"

namespace zck {
namespace {

/// Letters of the scripts that have case, in runs. Within a run every `step`th unit is an upper case letter, and its lower
/// case stands `distance` further.
struct CaseRun {
    uint16_t first;
    uint16_t last;
    int16_t distance;
    uint16_t step;
};

constexpr CaseRun kRuns[] = {
    {0x00C0, 0x00D6, 32, 1},      // Latin-1
    {0x00D8, 0x00DE, 32, 1},      //
    {0x0100, 0x012E, 1, 2},       // Latin Extended-A
    {0x0132, 0x0136, 1, 2},       //
    {0x0139, 0x0147, 1, 2},       //
    {0x014A, 0x0176, 1, 2},       //
    {0x0178, 0x0178, -121, 1},    //
    {0x0179, 0x017D, 1, 2},       //
    {0x01CD, 0x01DB, 1, 2},       // Latin Extended-B
    {0x01DE, 0x01EE, 1, 2},       //
    {0x01F8, 0x021E, 1, 2},       //
    {0x0222, 0x0232, 1, 2},       //
    {0x0386, 0x0386, 38, 1},      // Greek
    {0x0388, 0x038A, 37, 1},      //
    {0x038C, 0x038C, 64, 1},      //
    {0x038E, 0x038F, 63, 1},      //
    {0x0391, 0x03A1, 32, 1},      //
    {0x03A3, 0x03AB, 32, 1},      //
    {0x0400, 0x040F, 80, 1},      // Cyrillic
    {0x0410, 0x042F, 32, 1},      //
    {0x0460, 0x0480, 1, 2},       //
    {0x048A, 0x04BE, 1, 2},       //
    {0x04C0, 0x04C0, 15, 1},      //
    {0x04C1, 0x04CD, 1, 2},       //
    {0x04D0, 0x052E, 1, 2},       //
    {0x0531, 0x0556, 48, 1},      // Armenian
    {0x1E00, 0x1E94, 1, 2},       // Latin Extended Additional
    {0x1EA0, 0x1EFE, 1, 2},       //
    {0x2160, 0x216F, 16, 1},      // Roman numerals
    {0x24B6, 0x24CF, 26, 1},      // letters in circles
    {0xFF21, 0xFF3A, 32, 1},      // wide Latin
};

OLECHAR LowerUnit(OLECHAR c) noexcept {
    if (c < 0x80) return AsciiLower(c);
    for (const CaseRun &run : kRuns) {
        if (c < run.first) break;
        if (c <= run.last && (c - run.first) % run.step == 0) return static_cast<OLECHAR>(c + run.distance);
    }
    return c;
}

}    // namespace

void LowerInPlace(Text &text) noexcept {
    for (OLECHAR &c : text) c = LowerUnit(c);
}

}    // namespace zck
