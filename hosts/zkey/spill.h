// The screen's light on the figure's edge: what `--spill` says, and the entry of the key that takes it off.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "zchromakey/key_types.h"

namespace zkey {

/// All in percent, 0 to 100.
struct Spill {
    int32_t power = 25;     ///< how much of the screen's colour is taken off where the screen shines through; 0: none
    int32_t chroma = 50;    ///< how much paler the edge becomes
    int32_t luma = 0;       ///< how much darker the edge becomes
};

/// POWER[:CHROMA[:LUMA]]; CHROMA is as POWER and LUMA 0 if they are not given. Ends the program with a usage line when the text
/// is malformed.
Spill ParseSpill(std::string_view text);
/// The shortest text that `ParseSpill` reads so.
std::string SpillText(const Spill &spill);

/// An entry that cuts nothing out and takes the screen's light off. It reaches over the colours that the key makes translucent,
/// and with the power a little farther, but never as far as grey. One entry serves all colours of the screen, since each entry
/// costs the whole picture a hair of contrast. The engine moves colours away from the colour of its first entry, so this one
/// goes first. Nothing for a key that takes nothing out.
std::optional<SINGLE_KEY> SpillEntry(eCK_Type type, const std::vector<SINGLE_KEY> &keys, const Spill &spill);

}    // namespace zkey
