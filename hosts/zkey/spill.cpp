#include "hosts/zkey/spill.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

#include "hosts/zkey/failure.h"
#include "hosts/zkey/text.h"

namespace zkey {
namespace {

// Strengths that take all of it, in the units of the key: the key's whole chroma, a gain of nothing.
constexpr int32_t kAllPower = 64;
constexpr int32_t kAllChroma = 32;
constexpr int32_t kAllLuma = 64;
// The power also lightens by about this part of itself; luma takes it back.
constexpr int32_t kLightening = 4;
// What is taken off is as good as never what is there: paleness hides the rest, of either sign.
constexpr int32_t kPalerThanPower = 2;
// The mask fades out over some steps beyond its surface.
constexpr double kBeyondMask = 1.5;

/// A box of colours in the key's space, by middle and half-width.
using Channels = std::array<double, 3>;
struct Box {
    Channels middle{};
    Channels half{};
};

int32_t ByteOf(int32_t value, std::size_t channel) { return (value >> (8 * channel)) & 255; }

/// The colours that an entry makes transparent or translucent: the ramp of its alpha ends on an ellipsoid of this size.
Box ReachOf(const SINGLE_KEY &key, double part) {
    Box box;
    double stretch = 0;
    for (std::size_t c = 0; c < 3; ++c) {
        box.middle[c] = ByteOf(key.nValue, c);
        box.half[c] = std::max(ByteOf(key.nDelta, c), 1);
        stretch += std::pow((box.half[c] + key.nSmoothRange) / box.half[c], 2) / 3;
    }
    for (double &h : box.half) h *= std::sqrt(1 + part * std::max(stretch - 1, 0.0));
    return box;
}

bool Touch(const Box &a, const Box &b) {
    for (std::size_t c = 0; c < 3; ++c) {
        if (std::fabs(a.middle[c] - b.middle[c]) > a.half[c] + b.half[c]) return false;
    }
    return true;
}

Box Union(const Box &a, const Box &b) {
    Box both;
    for (std::size_t c = 0; c < 3; ++c) {
        const double low = std::min(a.middle[c] - a.half[c], b.middle[c] - b.half[c]);
        const double high = std::max(a.middle[c] + a.half[c], b.middle[c] + b.half[c]);
        both.middle[c] = (low + high) / 2;
        both.half[c] = (high - low) / 2;
    }
    return both;
}

/// How far grey of the same brightness lies from a colour in each channel.
Channels GreyFrom(eCK_Type type, const Channels &colour) {
    if (type == eCKT_HLS) return {0, 0, colour[2]};
    if (type == eCKT_YUV) return {0, std::fabs(colour[1] - 128), std::fabs(colour[2] - 128)};
    const double grey = (2 * colour[0] + 5 * colour[1] + colour[2]) / 8;
    return {std::fabs(colour[0] - grey), std::fabs(colour[1] - grey), std::fabs(colour[2] - grey)};
}

bool IsBeyond(const Channels &distance, const Channels &half, int32_t more) {
    double sum = 0;
    for (std::size_t c = 0; c < 3; ++c) sum += std::pow(distance[c] / std::max(half[c] + more, 1.0), 2);
    return sum >= kBeyondMask;
}

int32_t Pack(const Channels &v) {
    int32_t packed = 0;
    for (std::size_t c = 0; c < 3; ++c) packed |= std::clamp(static_cast<int32_t>(std::lround(v[c])), 1, 255) << (8 * c);
    return packed;
}

bool TakesOut(const SINGLE_KEY &key) { return key.nDelta != 0 && key.nReverseKey <= 0 && key.nAlpha != 255; }

int32_t ParsePercent(std::string_view whole, std::string_view text) {
    int32_t value = 0;
    if (!ParseWhole(text, value) || value < 0 || value > 100) {
        FailUsage("--spill " + std::string(whole) + ": \"" + std::string(text) +
                  "\" is no number from 0 to 100 (POWER[:CHROMA[:LUMA]], such as 50 or 50:20:10)");
    }
    return value;
}

}    // namespace

Spill ParseSpill(std::string_view text) {
    const std::size_t first = text.find(':');
    Spill spill;
    spill.power = ParsePercent(text, text.substr(0, first));
    spill.chroma = std::min(kPalerThanPower * spill.power, 100);
    if (first == std::string_view::npos) return spill;
    const std::string_view rest = text.substr(first + 1);
    const std::size_t second = rest.find(':');
    spill.chroma = ParsePercent(text, rest.substr(0, second));
    if (second != std::string_view::npos) spill.luma = ParsePercent(text, rest.substr(second + 1));
    return spill;
}

std::string SpillText(const Spill &spill) {
    std::string text = std::to_string(spill.power);
    if (spill.chroma != std::min(kPalerThanPower * spill.power, 100) || spill.luma != 0)
        text += ":" + std::to_string(spill.chroma);
    if (spill.luma != 0) text += ":" + std::to_string(spill.luma);
    return text;
}

std::optional<SINGLE_KEY> SpillEntry(eCK_Type type, const std::vector<SINGLE_KEY> &keys, const Spill &spill) {
    std::optional<Box> reach;
    for (const SINGLE_KEY &key : keys) {
        if (!TakesOut(key)) continue;
        const Box box = ReachOf(key, spill.power / 100.0);
        // A colour far from the first belongs to something else, which the engine would tint.
        if (!reach) {
            reach = box;
        } else if (Touch(*reach, box)) {
            reach = Union(*reach, box);
        }
    }
    if (!reach || (spill.power == 0 && spill.chroma == 0 && spill.luma == 0)) return {};
    SINGLE_KEY entry{};
    entry.nValue = Pack(reach->middle);
    entry.nDelta = Pack(reach->half);
    entry.nAlpha = 255;
    const Channels grey = GreyFrom(type, reach->middle);
    while (entry.nCancelRange > -255 && !IsBeyond(grey, reach->half, entry.nCancelRange)) --entry.nCancelRange;
    entry.nCancelPower = kAllPower * spill.power / 100;
    entry.nCancelChroma = -kAllChroma * spill.chroma / 100;
    entry.nCancelLuma = -kAllLuma * spill.luma / 100 - entry.nCancelPower / kLightening;
    return entry;
}

}    // namespace zkey
