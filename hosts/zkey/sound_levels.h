// The levels of a frame's sound, and how they are told.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "hosts/zkey/ref.h"
#include "zchromakey/frames.h"

namespace zkey {

/// Bits of the shortest samples that the library takes apart.
constexpr int32_t kShortestSample = 9;

/// Decibels below full scale; silence is minus infinity.
struct ChannelLevels {
    double peak = 0;    ///< of the largest sample
    /// What the library measured: it meters 32 channels.
    struct Metered {
        double rms;       ///< 0 for a sine of full scale
        double vu;        ///< the same of the slow meter
        double vuPeak;    ///< largest value of the slow meter
    };
    std::optional<Metered> metered;
};

struct SoundLevels {
    Z_AUD_PROPS props{};
    int32_t samples = 0;
    std::vector<ChannelLevels> channels;    ///< empty for samples that the library does not measure
};

SoundLevels LevelsOf(IZFrame *frame);
/// A line about the sound, and one for each channel.
std::string LevelsTable(const std::string &name, const SoundLevels &levels);
/// One JSON object in one line; levels that are no finite numbers are null.
std::string LevelsJson(const std::string &name, const SoundLevels &levels);

}    // namespace zkey
